// Whatever the entries hold, a shell takes it for words of the commands that were meant and for nothing else.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/Numbers.h"
#include "Fuzz/Checks.h"

namespace {

using namespace brell;
using namespace brell::fuzz;

// A word as the shell sees it. The program's own words stand bare, data does not.
struct Word {
    std::string text;
    bool bare;
    bool operator==(const Word&) const = default;
};
using Command = std::vector<Word>;
using Commands = std::vector<Command>;

Word asIs(std::string_view text) {
    return {std::string(text), true};
}
Word asData(std::string_view text) {
    return {std::string(text), false};
}

// As much of the shell's grammar as a script may use; anything else is a finding.
class Shell {
public:
    explicit Shell(std::string_view script) : left_(script) {}

    Commands commands() {
        Commands all;
        while (!left_.empty()) {
            Command command = line();
            if (!command.empty()) all.push_back(std::move(command));
        }
        return all;
    }

private:
    static constexpr std::string_view userDomain = "\"gui/$(id -u)";

    Command line() {
        Command words;
        if (left_.starts_with('#')) left_.remove_prefix(std::min(left_.find('\n'), left_.size()));
        while (!left_.empty() && left_.front() != '\n') {
            if (left_.front() == ' ')
                left_.remove_prefix(1);
            else
                words.push_back(word());
        }
        require(!left_.empty());  // the last line has its end, too
        left_.remove_prefix(1);
        return words;
    }

    Word word() {
        Word word{{}, true};
        while (!left_.empty() && left_.front() != ' ' && left_.front() != '\n') {
            word.bare = word.bare && left_.front() != '\'';
            take(word.text);
        }
        return word;
    }

    void take(std::string& text) {
        if (left_.front() == '\'') return takeQuoted(text);
        if (left_.starts_with(userDomain)) {
            left_.remove_prefix(userDomain.size());
            text += "gui/501";
            if (left_.starts_with('/')) takeOne(text);
            require(left_.starts_with('"'));
            return left_.remove_prefix(1);
        }
        const bool escaped = left_.front() == '\\';
        if (escaped) left_.remove_prefix(1);
        require(!left_.empty() && (escaped ? left_.front() == '\'' : isPlain(left_.front())));
        takeOne(text);
    }

    void takeQuoted(std::string& text) {
        const std::size_t end = left_.find('\'', 1);
        require(end != std::string_view::npos);
        text += left_.substr(1, end - 1);
        left_.remove_prefix(end + 1);
    }

    void takeOne(std::string& text) {
        text += left_.front();
        left_.remove_prefix(1);
    }

    // ">" and "|" mean something; they stand only in words that are compared as a whole.
    static bool isPlain(char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               std::string_view("-+./>|").find(c) != std::string_view::npos;
    }

    std::string_view left_;
};

// The bytes, cut at each NUL: no text for a shell can hold one.
class Fields {
public:
    explicit Fields(std::string_view bytes) : left_(bytes) {}

    bool empty() const { return left_.empty(); }
    std::string next() {
        const std::size_t end = std::min(left_.find('\0'), left_.size());
        std::string field(left_.substr(0, end));
        left_.remove_prefix(std::min(end + 1, left_.size()));
        return field;
    }

private:
    std::string_view left_;
};

PrefValue::StringArray elements(std::string_view text) {
    PrefValue::StringArray strings{""};
    for (const char c : text)
        if (c == ',')
            strings.emplace_back();
        else
            strings.back() += c;
    return strings;
}

// The first byte says what kind it is, the others what it holds.
StoredValue valueOf(const std::string& field) {
    const std::string rest = field.substr(std::min<std::size_t>(1, field.size()));
    switch (field.empty() ? ' ' : field.front()) {
        case 'b': return PrefValue(rest == "true");
        case 'i': return PrefValue(parseInteger(rest).value_or(7));
        case 'd': {
            const double number = parseReal(rest).value_or(0.5);
            return PrefValue(std::isfinite(number) ? number : 1e300);
        }
        case 's': return PrefValue(rest);
        case 'l': return PrefValue(rest.empty() ? PrefValue::StringArray() : elements(rest));
        default: return StoredValue::absent();
    }
}

JournalEntry entryOf(Fields& fields) {
    JournalEntry entry{};
    entry.tweakID = fields.next();
    const std::string kind = fields.next();
    entry.status = kind.starts_with('r') ? EntryStatus::restored : EntryStatus::applied;
    entry.appliedAt += std::chrono::seconds(kind.size());
    if (!kind.ends_with('g')) {
        entry.writes.resize(1 + kind.size() % 3);
        for (JournaledWrite& write : entry.writes) {
            write.key = {fields.next(), fields.next()};
            write.original = valueOf(fields.next());
            write.written = valueOf(fields.next());
        }
        return entry;
    }
    entry.kind = EntryKind::launchAgent;
    entry.agent = AgentCapture{fields.next(), fields.next(), kind.size() % 2 == 0,
                               kind.size() % 4 < 2 ? AgentOverride::disabled : AgentOverride::absent};
    return entry;
}

std::vector<JournalEntry> entriesOf(Fields fields) {
    constexpr std::size_t most = 4;  // enough to stand before, between and behind others
    std::vector<JournalEntry> entries;
    while (!fields.empty() && entries.size() < most) entries.push_back(entryOf(fields));
    return entries;
}

void append(Command& command, const Command& words) {
    command.insert(command.end(), words.begin(), words.end());
}

Command valueWords(const PrefValue& value) {
    if (const auto* text = value.as<std::string>()) return {asData(*text)};
    Command words;
    if (const auto* strings = value.as<PrefValue::StringArray>())
        for (const std::string& element : *strings) words.push_back(asData(element));
    else
        words.push_back(asIs(value.as<bool>() ? value.rendered() : RestoreScript::valueArgs(value)));
    return words;
}

// The text that `defaults read` prints, as $(...) gives it.
std::string expectedText(const PrefValue& value) {
    std::string text = RestoreScript::defaultsReadText(value).value();
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

Command wordsOf(const JournaledWrite& write) {
    const Word domain = write.key.domain == globalDomain ? asIs("-g") : asData(write.key.domain);
    Command words;
    if (write.written.value && !write.written.value->as<PrefValue::StringArray>())
        words = {asIs("restore"), domain, asData(write.key.name), asData(expectedText(*write.written.value))};
    append(words, {asIs("defaults"), asIs(write.original.value ? "write" : "delete"), domain,
                   asData(write.key.name)});
    if (write.original.value) {
        words.push_back(asIs(write.original.value->defaultsFlag()));
        append(words, valueWords(*write.original.value));
    }
    return words;
}

Commands commandsOf(const AgentCapture& agent) {
    const bool wasDisabled = agent.override == AgentOverride::disabled;
    Commands commands{
        {asIs("launchctl"), asIs(wasDisabled ? "disable" : "enable"), asData("gui/501/" + agent.label)}};
    if (agent.wasLoaded)
        commands.push_back({asIs("launchctl"), asIs("bootstrap"), asIs("gui/501"), asData(agent.plistPath),
                            asIs("2>/dev/null"), asIs("||"), asIs("true")});
    return commands;
}

Commands commandsOf(std::vector<JournalEntry> entries) {
    std::erase_if(entries, [](const JournalEntry& entry) { return entry.status == EntryStatus::restored; });
    std::stable_sort(entries.begin(), entries.end(), [](const JournalEntry& one, const JournalEntry& other) {
        return one.appliedAt > other.appliedAt;
    });
    Commands commands;
    for (const JournalEntry& entry : entries) {
        for (const JournaledWrite& write : entry.writes) commands.push_back(wordsOf(write));
        if (entry.agent)
            for (Command& command : commandsOf(*entry.agent)) commands.push_back(std::move(command));
    }
    return commands;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto entries = entriesOf(Fields({reinterpret_cast<const char*>(bytes), size}));
    static const std::string none = RestoreScript::render({}, {});
    static const std::string head = none.substr(0, none.find("\necho") + 1);
    static const std::string tail = none.substr(none.find("\necho 'Done.") + 1);

    const Commands expected = commandsOf(entries);
    const std::string script = RestoreScript::render(entries, {});
    if (expected.empty() && script == none) return 0;
    require(script.starts_with(head) && script.ends_with(tail));
    const std::size_t length = script.size() - head.size() - tail.size();
    require(Shell(std::string_view(script).substr(head.size(), length)).commands() == expected);
    return 0;
}
