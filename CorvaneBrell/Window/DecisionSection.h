// Active changes that the user has to decide about: a row with a box each, and below them what can be done
// with the ticked ones.
#pragma once

#include <functional>

#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class DecisionSection final : public QWidget {
    Q_OBJECT
public:
    using Act = void (AppModel::*)(const std::vector<Uuid>& ticked);

    // The model must outlive the section.
    DecisionSection(AppModel& model, const QString& heading, const QString& explanation);

    // A button for the ticked changes that can take it. Its text while none is ticked, and for %1 of them.
    void addAction(const QString& none, const QString& some, Act act,
                   bool (ChangeRow::*canTakeIt)() const = &ChangeRow::isTicked);

    // How many changes are shown at most; moreWanted says that it has grown.
    std::size_t limit() const { return changes_->limit(); }
    // The first of so many; without any the section hides.
    void setChanges(const std::vector<ActiveChange>& first, std::size_t all);

signals:
    void moreWanted();

private:
    struct Action {
        QPushButton* button;
        QString none, some;
        bool (ChangeRow::*canTakeIt)() const;
    };

    void perform(Act act, bool (ChangeRow::*canTakeIt)() const);
    std::vector<Uuid> ticked(bool (ChangeRow::*canTakeIt)() const) const;
    void showTicks();

    AppModel& model_;
    RecordList<ChangeRow>* changes_;
    QHBoxLayout* buttons_;
    std::vector<Action> actions_;
};

}  // namespace brell
