// Every change of ours that is active, what others did to them, what happened so far, and every way back.
#pragma once

#include <optional>
#include <set>

#include "CorvaneBrell/Window/DecisionSection.h"
#include "CorvaneBrell/Window/Page.h"

namespace brell {

class HistoryList;

class JournalPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit JournalPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    QWidget* fileActions();
    void showChanges();
    void showToDecide(DecisionSection& section, const std::vector<const DriftedEntry*>& changes);
    void showActive(const std::vector<const DriftedEntry*>& apart);  // all but these
    void showSummary(std::size_t drifted, std::size_t refused);
    std::vector<const DriftedEntry*> toDecide() const;
    ActiveChange activeChange(const JournalEntry& entry, bool isNewest) const;
    ActiveChange driftedChange(const DriftedEntry& drifted, bool isNewest) const;
    std::optional<Uuid> newestActive() const;
    std::size_t foreignCount() const;
    bool isLocked() const { return brell::isLocked(model_.state()); }
    QString terminalCommands() const;

    AppModel& model_;
    QPushButton* restoreAll_;
    QPushButton* copyCommands_ = nullptr;
    Paragraph* summary_;
    DecisionSection* drifted_;
    DecisionSection* refused_;
    RecordList<ChangeRow>* active_;
    QWidget* files_;
    HistoryList* history_;
};

}  // namespace brell
