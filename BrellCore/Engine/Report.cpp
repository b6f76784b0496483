#include "BrellCore/Engine/Report.h"

#include <algorithm>
#include <functional>
#include <set>

#include "BrellCore/Support/Text.h"

namespace brell::Report {

namespace {

using Lines = std::vector<std::string>;

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Viewers make links of these, however they are written, and not of file URLs.
bool beginsAddress(std::string_view before) {
    constexpr std::size_t longest = std::string_view("https:").size();
    const std::string end = lowerCaseAscii(before.substr(before.size() - std::min(before.size(), longest)));
    return end.ends_with("http:") || end.ends_with("https:") || end.ends_with("ftp:");
}

// True for a character that would end its cell, or begin a link, an image, HTML or what reads as another
// character. The rest of the cell begins with it.
bool isMarkup(std::string_view rest, std::string_view before, bool isFirstOfItsKind) {
    const char next = rest.size() > 1 ? rest[1] : ' ';
    switch (rest.front()) {
        case '|':
        case '<':
        case '`': return true;  // between two of which a backslash would stand for itself
        case '\\': return isPrintableAscii(next) && next != ' ' && !isLetterOrDigit(next);
        case '&': return next == '#' || isLetterOrDigit(next);
        case '(': return before.ends_with(']');
        case '/': return next == '/' && beginsAddress(before);
        case '.': return before.ends_with("www");
        // These only work in pairs: the first of a kind stays as it is.
        case '*':
        case '_':
        case '~': return !isFirstOfItsKind;
        default: return false;
    }
}

// One table cell that reads as the text, whatever the text is.
std::string cell(std::string_view text) {
    const std::string line = oneLine(text);
    const std::string_view whole = line;
    std::string escaped;
    std::set<char> met;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const bool isFirst = met.insert(whole[i]).second;
        if (isMarkup(whole.substr(i), whole.substr(0, i), isFirst)) escaped += '\\';
        escaped += whole[i];
    }
    return escaped.empty() ? "-" : escaped;
}

std::string row(const std::vector<std::string>& cells) {
    std::string line = "|";
    for (const std::string& text : cells) line += " " + cell(text) + " |";
    return line;
}

std::string joinedWrites(const JournalEntry& entry,
                         const std::function<std::string(const JournaledWrite&)>& text) {
    std::vector<std::string> texts;
    for (const JournaledWrite& write : entry.writes) texts.push_back(text(write));
    return join(texts, "; ");
}

void appendChangeTable(Lines& lines, const TweakCatalog& catalog, const std::vector<JournalEntry>& entries) {
    lines.push_back("| Tweak | Writes | Original | Written | Applied |");
    lines.push_back("|---|---|---|---|---|");
    for (const JournalEntry& entry : entries)
        lines.push_back(
            row({catalog.titleOf(entry.tweakID),
                 joinedWrites(entry, [](const JournaledWrite& write) { return write.key.rendered(); }),
                 joinedWrites(entry, [](const JournaledWrite& write) { return write.original.rendered(); }),
                 joinedWrites(entry, [](const JournaledWrite& write) { return write.written.rendered(); }),
                 iso8601(entry.appliedAt)}));
}

void appendAgentTable(Lines& lines, const std::vector<JournalEntry>& entries) {
    lines.push_back("| Login item | Direction | Before | Changed |");
    lines.push_back("|---|---|---|---|");
    for (const JournalEntry& entry : entries) {
        const AgentCapture agent =
            entry.agent.value_or(AgentCapture{entry.tweakID, "", false, AgentOverride::absent});
        lines.push_back(row({agent.label, agent.turnedOn() ? "turned on" : "turned off",
                             "override " + std::string(rawValue(agent.override)) + ", " +
                                 (agent.wasLoaded ? "loaded" : "not loaded"),
                             iso8601(entry.appliedAt)}));
    }
}

void appendHistory(Lines& lines, const TweakCatalog& catalog, const std::vector<HistoryLine>& history) {
    lines.push_back("| When | Event | Tweak |");
    lines.push_back("|---|---|---|");
    for (const HistoryLine& line : history)
        lines.push_back(
            row({iso8601(line.at), std::string(rawValue(line.event)), catalog.titleOf(line.entry.tweakID)}));
}

}  // namespace

std::string markdown(Journal& journal, const TweakCatalog& catalog, std::string_view osVersion,
                     TimeStamp date, const std::vector<JournalEntry>& drifted,
                     const std::optional<std::string>& lack) {
    std::vector<JournalEntry> preferences, agents;
    for (JournalEntry& entry : journal.active())
        (entry.kind == EntryKind::preference ? preferences : agents).push_back(std::move(entry));

    Lines lines{"# What changed on this Mac", "", iso8601(date) + " · macOS " + std::string(osVersion), ""};
    // First, because the summary counts and claims without them.
    if (lack) lines.insert(lines.end(), {"Changes are missing from this report: " + cell(*lack) + ".", ""});
    lines.insert(lines.end(), {"## Summary", "", "- Active changes: " + std::to_string(preferences.size()),
                               "- Login items changed by Brell: " + std::to_string(agents.size())});
    if (!drifted.empty()) lines.push_back("- Changed outside Brell: " + std::to_string(drifted.size()));

    lines.insert(lines.end(), {"", "## Active changes", ""});
    if (preferences.empty())
        lines.push_back("None. Every setting Brell changed is back to what it was.");
    else
        appendChangeTable(lines, catalog, preferences);

    lines.insert(lines.end(), {"", "## Login items changed by Brell", ""});
    if (agents.empty())
        lines.push_back("None.");
    else
        appendAgentTable(lines, agents);

    if (!drifted.empty()) {
        lines.insert(lines.end(),
                     {"", "## Changed outside Brell", "",
                      "These keys no longer hold the value Brell wrote. Brell does not overwrite them "
                      "without asking.",
                      ""});
        appendChangeTable(lines, catalog, drifted);
    }

    lines.insert(lines.end(), {"", "## History", ""});
    const std::vector<HistoryLine> history = journal.history();
    if (history.empty())
        lines.push_back("No events recorded.");
    else
        appendHistory(lines, catalog, history);
    return join(lines, "\n");
}

}  // namespace brell::Report
