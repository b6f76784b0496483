// One active change of the journal, with the ways back: this one alone, or with every later one. One that
// others changed since can be applied again or closed, too.
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
    bool isNewest;                           // there are no later ones
    bool isLocked;                           // nothing can be changed at all
    std::optional<std::string> whyNotAgain;  // it can't be applied again; nothing where it can
    bool operator==(const ActiveChange&) const = default;
};

class ChangeRow final : public Row {
    Q_OBJECT
public:
    using Record = ActiveChange;
    enum class Kind { inForce, drifted };

    // The model must outlive the row.
    ChangeRow(AppModel& model, Kind kind, QWidget* parent = nullptr);
    static std::string keyOf(const Record& record) { return record.entry.id.text(); }
    void setRecord(const Record& record);

    const Uuid& entryID() const { return record_->entry.id; }
    // To be closed, or applied again where that can be done.
    bool isTicked() const;
    bool canBeMadeAgain() const { return !record_->whyNotAgain; }

signals:
    void ticked();

private:
    void showButtons();
    QWidget* makeDetails();

    std::optional<Record> record_;
    SelectableText* lines_ = nullptr;  // in the details, once they were opened
    QCheckBox* tick_ = nullptr;        // of one that drifted
    QPushButton* restore_;
    QToolButton* more_;
    QAction* undoSince_;
};

}  // namespace brell
