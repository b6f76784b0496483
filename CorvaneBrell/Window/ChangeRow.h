// One active change of the journal, with the ways back: this one alone, or with every later one. One that
// others changed since, or that can't be undone, can be ticked, to be applied again or closed.
#pragma once

#include <optional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Row.h"

class QAction;
class QCheckBox;
class QPushButton;

namespace brell {

class SelectableText;

struct ActiveChange {
    JournalEntry entry;
    std::string title;
    std::string words;                      // "Large, back to 41"
    std::vector<std::string> lines;         // of a key each: what was done, or what others did to it since
    std::optional<std::string> otherMacOS;  // a sentence when it was made on another version
    bool isInterrupted;
    bool isNewest;                          // there are no later ones
    bool isLocked;                          // nothing can be changed at all
    std::optional<std::string> notOffered;  // here, and what can be done all the same; nothing where it is
    std::optional<std::string> refusal;     // why its undo is refused
    bool operator==(const ActiveChange&) const = default;
};

class ChangeRow final : public Row {
    Q_OBJECT
public:
    using Record = ActiveChange;
    enum class Kind { inForce, toDecide };

    // The model must outlive the row.
    ChangeRow(AppModel& model, Kind kind, QWidget* parent = nullptr);
    static std::string keyOf(const Record& record) { return record.entry.id.text(); }
    void setRecord(const Record& record);

    const Uuid& entryID() const { return record_->entry.id; }
    // To be closed, or applied again where that can be done.
    bool isTicked() const;
    bool canBeMadeAgain() const { return !record_->notOffered; }

signals:
    void ticked();

private:
    void showButtons();
    QWidget* makeDetails();

    std::optional<Record> record_;
    SelectableText* lines_ = nullptr;  // in the details, once they were opened
    QCheckBox* tick_ = nullptr;        // of one that is to be decided about
    QPushButton* restore_;
    QToolButton* more_;
    QAction* undoSince_;
};

}  // namespace brell
