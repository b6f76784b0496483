// Every change of ours that is active, what others did to them, what happened so far, and every way back.
#pragma once

#include <optional>
#include <set>

#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class HistoryList;

class JournalPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit JournalPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    QWidget* driftSection();
    QWidget* fileActions();
    void showChanges();
    std::set<Uuid> showDrifted();
    void showActive(const std::set<Uuid>& drifted);
    void showSummary(std::size_t drifted);
    void showTicks();
    std::string driftedWords(const JournalEntry& entry) const;
    ActiveChange activeChange(const JournalEntry& entry, std::string words, std::vector<std::string> lines,
                              bool isNewest) const;
    std::vector<const DriftedEntry*> driftedAgents() const;
    std::optional<Uuid> newestActive() const;
    std::size_t foreignCount() const;
    bool isLocked() const { return brell::isLocked(model_.state()); }
    std::vector<Uuid> ticked() const;
    std::vector<Uuid> tickedAgain() const;  // those of them that can be
    QString terminalCommands() const;

    AppModel& model_;
    QPushButton* restoreAll_;
    QPushButton* copyCommands_ = nullptr;
    Paragraph* summary_;
    RecordList<ChangeRow>* drifted_;
    QPushButton* applyAgain_;
    QPushButton* keepTheirs_;
    QWidget* driftSection_;
    RecordList<ChangeRow>* active_;
    QWidget* files_;
    HistoryList* history_;
};

}  // namespace brell
