#include "CorvaneBrell/Model/SessionUndo.h"

#include <algorithm>
#include <map>
#include <set>

namespace brell {

std::string nothingLeft(const SessionChange& action) {
    return "There is nothing left to undo of “" + action.name +
           "”: all of it was undone or changed anew since.";
}

SessionUndo SessionUndo::after(const UndoNote& note) const {
    SessionUndo next = *this;
    std::vector<SessionChange>& actions = next.actions_;
    if (note.undone) {
        const auto last = std::find(actions.rbegin(), actions.rend(), *note.undone);
        if (last != actions.rend()) actions.erase(std::next(last).base());
    }
    const std::map<Uuid, Uuid> remade(note.remade.begin(), note.remade.end());
    for (SessionChange& action : actions)
        for (Uuid& id : action.made)
            if (const auto fresh = remade.find(id); fresh != remade.end()) id = fresh->second;
    if (note.done) actions.push_back(*note.done);
    return next;
}

SessionUndo SessionUndo::pruned(const std::vector<JournalEntry>& entries) const {
    std::set<Uuid> wanted;
    for (const JournalEntry& entry : entries)
        if (entry.isActive()) wanted.insert(entry.id);
    SessionUndo pruned;
    for (auto action = actions_.rbegin(); action != actions_.rend(); ++action) {
        const std::vector<Uuid>& made = action->made;
        const auto isWanted = [&](const Uuid& id) { return wanted.contains(id); };
        if (!made.empty() && std::none_of(made.begin(), made.end(), isWanted)) continue;
        wanted.insert(action->restored.begin(), action->restored.end());
        pruned.actions_.insert(pruned.actions_.begin(), *action);
    }
    return pruned;
}

}  // namespace brell
