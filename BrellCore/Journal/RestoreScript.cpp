#include "BrellCore/Journal/RestoreScript.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <set>

#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Journal/EntryOrder.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Lines.h"
#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/Text.h"

namespace brell::RestoreScript {

namespace {

constexpr std::string_view nothingToRestore =
    "echo 'Nothing to restore: Brell has no active change on record.'";

std::string domainArgument(const std::string& domain) {
    return domain == globalDomain ? "-g" : quote(domain);
}

std::string putBackCommand(const JournaledWrite& write) {
    const std::string place = domainArgument(write.key.domain) + " " + quote(write.key.name);
    if (write.original.isAbsent()) return "defaults delete " + place;
    const PrefValue& original = *write.original.value;
    return "defaults write " + place + " " + std::string(original.defaultsFlag()) + " " + valueArgs(original);
}

constexpr std::string_view applied = " (applied ", reset = " (reset to default ";

// A line that names a change; or one of a value, which may be any text.
bool isCommentLine(std::string_view line) {
    return line.starts_with("# ") &&
           (line.find(applied) != std::string_view::npos || line.find(reset) != std::string_view::npos);
}

std::vector<std::string> entryLines(const JournalEntry& entry) {
    std::vector<std::string> lines{nameOf(entry)};
    switch (entry.kind) {
        case EntryKind::preference:
            for (const JournaledWrite& write : entry.writes) lines.push_back(preferenceLine(write));
            break;
        case EntryKind::launchAgent:
            if (entry.agent)
                for (std::string& line : agentLines(*entry.agent)) lines.push_back(std::move(line));
            break;
    }
    return lines;
}

std::vector<JournalEntry> activeNewestFirst(const std::vector<JournalEntry>& entries) {
    std::vector<JournalEntry> active;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(active),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    return newestFirst(std::move(active));
}

std::optional<std::string> textOf(const std::filesystem::path& file) {
    constexpr std::size_t mostBytes = 256 * 1024 * 1024;
    auto script = readFile(file, mostBytes);
    return script ? std::optional(std::move(script->bytes)) : std::nullopt;
}

// In the order of the lines; one may stand there twice.
std::vector<std::string_view> namesIn(std::string_view script) {
    std::vector<std::string_view> names;
    forEachLine(script, [&](std::string_view line) {
        if (isCommentLine(line)) names.push_back(line);
    });
    return names;
}

std::filesystem::path nameAside(const std::filesystem::path& file, TimeStamp now) {
    return freeName(file, std::string(beforeEnding) + localMoment(now));
}

}  // namespace

std::string render(const std::vector<JournalEntry>& entries, TimeStamp writtenAt) {
    std::vector<std::string> lines{
        "#!/bin/sh",
        "# Corvane Brell restore script, written " + iso8601(writtenAt) + ".",
        "# Run it in Terminal (sh restore.sh) to put back every setting Brell changed, newest change first.",
        "# A preference is restored only if it still holds the value Brell wrote; "
        "arrays and keys Brell removed are restored unconditionally.",
        "set -u",
        R"sh(restore() { domain="$1"; key="$2"; expect="$3"; shift 3)sh",
        R"sh(  current="$(defaults read "$domain" "$key" 2>/dev/null)")sh",
        R"sh(  if [ "$current" = "$expect" ]; then "$@"; else echo "skip $domain $key (now: ${current:-absent})"; fi; })sh",
        ""};
    const std::vector<JournalEntry> active = activeNewestFirst(entries);
    for (const JournalEntry& entry : active)
        for (std::string& line : entryLines(entry)) lines.push_back(std::move(line));
    if (active.empty()) lines.emplace_back(nothingToRestore);
    lines.push_back("");
    lines.push_back(
        "echo 'Done. Relaunch Finder and the Dock, or log out and back in, for every change to take "
        "effect.'");
    return join(lines, "\n") + "\n";
}

void save(const std::filesystem::path& file, std::string_view text) {
    // Run with sh and perhaps copied, so that others may read it; nobody else may write it.
    constexpr unsigned permissions = 0644;
    replaceFile(file, text, Durability::powerCut, permissions);
}

std::optional<std::filesystem::path> keepAside(const std::filesystem::path& file, TimeStamp now) {
    const auto script = textOf(file);
    if (!script) return std::nullopt;
    // One that was edited by hand may say that there is nothing, and undo something.
    if (namesIn(*script).empty() && script->find(nothingToRestore) != std::string::npos) return std::nullopt;
    const auto copy = nameAside(file, now);
    replaceFile(copy, *script, Durability::powerCut);
    return copy;
}

std::optional<std::filesystem::path> keepUnread(const std::filesystem::path& file, TimeStamp now) {
    std::error_code failed;
    if (std::filesystem::is_directory(std::filesystem::symlink_status(file, failed))) return std::nullopt;
    const auto aside = nameAside(file, now);
    if (giveName(file, aside) && ::rename(file.c_str(), aside.c_str()) != 0)
        throw ReplaceError({ReplaceStep::rename, aside, errno});
    return aside;
}

std::vector<std::filesystem::path> allIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> scripts;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().string().starts_with(fileName)) scripts.push_back(entry.path());
    return scripts;
}

std::string nameOf(const JournalEntry& entry) {
    const std::string_view what = entry.direction == EntryDirection::resetToDefault ? reset : applied;
    return oneLine("# " + entry.tweakID + std::string(what) + iso8601(entry.appliedAt) + ")");
}

std::vector<std::string> unknownChanges(const std::filesystem::path& file, Journal& journal) {
    // Before the journal: of what others add to both meanwhile, it knows what the script says.
    const std::string script = textOf(file).value_or("");
    const std::vector<std::string_view> names = namesIn(script);
    std::set<std::string_view> unknown(names.begin(), names.end());
    const auto know = [&](const std::vector<JournalEntry>& entries) {
        for (const JournalEntry& entry : entries)
            for (const std::string& line : entryLines(entry))
                forEachLine(line, [&](std::string_view part) { unknown.erase(part); });
    };
    if (!unknown.empty()) know(journal.active());  // which nearly always are all that it undoes
    if (!unknown.empty()) know(journal.all());
    return {unknown.begin(), unknown.end()};
}

std::string undoesUnknown(const std::filesystem::path& file) {
    return file.string() + " undoes changes that the journal does not know";
}

std::string quote(std::string_view text) {
    std::string word = "'";
    for (;;) {
        const std::size_t plain = std::min(text.find('\''), text.size());
        word += text.substr(0, plain);
        if (plain == text.size()) return word + "'";
        word += R"('\'')";
        text.remove_prefix(plain + 1);
    }
}

std::string valueArgs(const PrefValue& value) {
    if (const auto* flag = value.as<bool>()) return *flag ? "true" : "false";
    if (const auto* integer = value.as<std::int64_t>()) return std::to_string(*integer);
    if (const auto* real = value.as<double>()) return shortestDecimal(*real);
    if (const auto* text = value.as<std::string>()) return quote(*text);
    std::vector<std::string> elements;
    for (const std::string& element : std::get<PrefValue::StringArray>(value.payload))
        elements.push_back(quote(element));
    return join(elements, " ");
}

std::optional<std::string> defaultsReadText(const PrefValue& value) {
    if (const auto* flag = value.as<bool>()) return *flag ? "1" : "0";
    if (const auto* integer = value.as<std::int64_t>()) return std::to_string(*integer);
    if (const auto* text = value.as<std::string>()) return *text;
    const auto* real = value.as<double>();
    if (!real) return std::nullopt;
    const bool integral = std::fabs(*real) < 1e15 && std::nearbyint(*real) == *real;
    return integral ? std::to_string(static_cast<std::int64_t>(*real)) : shortestDecimal(*real);
}

std::string preferenceLine(const JournaledWrite& write) {
    const std::string command = putBackCommand(write);
    auto expected = write.written.value ? defaultsReadText(*write.written.value) : std::nullopt;
    if (!expected) return command;
    // The script's $(...) takes every line feed off the end of what it reads.
    while (expected->ends_with('\n')) expected->pop_back();
    return "restore " + domainArgument(write.key.domain) + " " + quote(write.key.name) + " " +
           quote(*expected) + " " + command;
}

std::vector<std::string> agentLines(const AgentCapture& agent) {
    std::vector<std::string> lines;
    for (const AgentCommand& command : AgentCommands::undoingByScript(agent)) {
        lines.push_back(AgentCommands::shellLine(command.verb, agent, quote));
        if (command.verb == AgentCommand::Verb::bootstrap) lines.back() += " 2>/dev/null || true";
    }
    return lines;
}

}  // namespace brell::RestoreScript
