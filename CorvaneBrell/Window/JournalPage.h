// Every change of ours that is active, what others did to them, what happened so far, and every way back.
#pragma once

#include <optional>
#include <set>

#include "CorvaneBrell/Window/ActiveChangeRow.h"
#include "CorvaneBrell/Window/DriftedChangeRow.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class HistoryList;
class ReadingLine;

class JournalPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit JournalPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    QWidget* driftSection();
    QWidget* fileActions();
    void showProof();
    void showChanges();
    std::set<Uuid> showDrifted();
    void showActive(const std::set<Uuid>& drifted);
    void showSummary(std::size_t drifted);
    void showTicks();
    DriftedChange driftedChange(const JournalEntry& entry, std::vector<std::string> lines,
                                bool isNewest) const;
    std::vector<const DriftedEntry*> driftedAgents() const;
    std::optional<Uuid> newestActive() const;
    bool isLocked() const { return model_.state().startupError.has_value(); }  // nothing can be changed
    std::vector<Uuid> ticked() const;
    QString terminalCommands() const;

    AppModel& model_;
    bool asked_ = false;
    QPushButton* restoreAll_;
    QPushButton* copyCommands_ = nullptr;
    Paragraph* summary_;
    ReadingLine* reading_;
    QVBoxLayout* proof_;
    QWidget* proofLine_ = nullptr;
    std::optional<UndoProof> shownProof_;
    RecordList<DriftedChangeRow>* drifted_;
    QPushButton* applyAgain_;
    QWidget* driftSection_;
    RecordList<ActiveChangeRow>* active_;
    QWidget* files_;
    HistoryList* history_;
};

}  // namespace brell
