// The actions of this session that the user can undo, the last one first.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// One action: undoing it restores what it made and makes again what it restored.
struct SessionChange {
    std::string name;  // of the tweak or agent
    std::vector<Uuid> made;
    std::vector<Uuid> restored;
    bool runsCommands = false;  // undoing it does, which shows them first
    bool operator==(const SessionChange&) const = default;
};

// Why undoing it does nothing: others undid all of it, or changed it anew.
std::string nothingLeft(const SessionChange& action);
// The same of changes that were to be restored.
inline constexpr const char* nothingToRestore =
    "There is nothing left to restore: all of it was put back or closed since.";

// The meaning of a change for the undoing of actions.
struct UndoNote {
    std::optional<SessionChange> done;          // an action that can be undone from now on
    std::optional<SessionChange> undone;        // an action that was undone, all of it
    std::vector<std::pair<Uuid, Uuid>> remade;  // entries that were made again, and what they are now
    bool operator==(const UndoNote&) const = default;
};

// A plain value.
class SessionUndo {
public:
    // The action that is undone next; nullptr when there is none.
    const SessionChange* next() const { return actions_.empty() ? nullptr : &actions_.back(); }
    std::size_t size() const { return actions_.size(); }

    SessionUndo after(const UndoNote& note) const;
    // Without actions whose changes were undone in another way since, by the entries that the journal has.
    // One whose changes a later action replaced stays: it can be undone after that.
    SessionUndo pruned(const std::vector<JournalEntry>& entries) const;

    bool operator==(const SessionUndo&) const = default;

private:
    std::vector<SessionChange> actions_;  // the last one is undone first
};

}  // namespace brell
