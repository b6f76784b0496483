#include "CorvaneBrell/Model/JournalWords.h"

#include <map>

#include "CorvaneBrell/Model/EntryText.h"

namespace brell::JournalWords {

namespace {

bool wasTurnedOn(const AgentCapture& before) {
    return before.override == AgentOverride::disabled;
}

std::string position(const AgentCapture& agent) {
    if (agent.override == AgentOverride::disabled) return agent.wasLoaded ? "off, but still loaded" : "off";
    return agent.wasLoaded ? "on" : "on, but not loaded";
}

// An interrupted change is followed by nothing, or by the restore that ended it.
bool isInterruption(const HistoryLine& begun, const HistoryLine* next) {
    return begun.event == EntryStatus::capturing && (!next || next->event == EntryStatus::restored);
}

}  // namespace

std::vector<std::string> keyLines(const JournalEntry& entry) {
    if (entry.agent)
        return {std::string(wasTurnedOn(*entry.agent) ? "Turned on" : "Turned off") + "; back to " +
                position(*entry.agent)};
    std::vector<std::string> lines;
    for (const JournaledWrite& write : entry.writes)
        lines.push_back(write.key.rendered() + ": " + write.written.rendered() + "; back to " +
                        write.original.rendered());
    return lines;
}

std::string wayBack(const JournalEntry& entry) {
    if (entry.agent) return position(*entry.agent);
    if (entry.writes.size() == 1) return entry.writes.front().original.rendered();
    std::string text;
    for (const JournaledWrite& write : entry.writes) {
        if (!text.empty()) text += ", ";
        text += write.key.name + " " + write.original.rendered();
    }
    return text;
}

std::string event(const HistoryLine& line) {
    const std::string reason = line.entry.failure ? ": " + *line.entry.failure : "";
    switch (line.event) {
        case EntryStatus::capturing: return "Interrupted" + reason;
        case EntryStatus::applied: return "Applied";
        case EntryStatus::failed: return "Failed" + (reason.empty() ? ": no reason was recorded." : reason);
        case EntryStatus::restored: break;
    }
    return "Restored" + reason;
}

std::vector<ToldLine> told(const std::vector<HistoryLine>& history, const TweakCatalog& catalog) {
    std::vector<ToldLine> lines;
    std::map<Uuid, const HistoryLine*> next;
    for (auto line = history.rbegin(); line != history.rend(); ++line) {
        const HistoryLine*& later = next[line->entry.id];
        if (line->event != EntryStatus::capturing || isInterruption(*line, later))
            lines.push_back({line->at, line->event, entryTitle(line->entry, catalog), event(*line)});
        later = &*line;
    }
    return lines;
}

}  // namespace brell::JournalWords
