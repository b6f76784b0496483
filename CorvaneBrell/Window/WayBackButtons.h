// The two ways back from an active change of the journal: this one alone, or with every later one.
#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <optional>

#include "CorvaneBrell/Model/AppModel.h"

class QPushButton;

namespace brell {

class WayBackButtons final : public QWidget {
    Q_OBJECT
public:
    // The model must outlive the buttons.
    explicit WayBackButtons(AppModel& model, QWidget* parent = nullptr);

    // title is the change's name; the newest change has no later ones.
    void setEntry(const JournalEntry& entry, const QString& title, bool isNewest, bool isLocked);
    // What else is to be done with the change, above the buttons.
    void addAbove(QWidget* control) { column_->insertWidget(0, control); }

private:
    std::optional<Uuid> entry_;
    QVBoxLayout* column_;
    QPushButton* restore_;
    QPushButton* undoSince_;
};

}  // namespace brell
