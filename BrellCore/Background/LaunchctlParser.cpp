#include "BrellCore/Background/LaunchctlParser.h"

#include <utility>

#include "BrellCore/Support/Lines.h"
#include "BrellCore/Support/Numbers.h"

namespace brell {

namespace {

constexpr std::string_view notFound = "Could not find service";
constexpr std::string_view overridesBlock = "disabled services";

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::string_view indentationOf(std::string_view line) {
    return line.substr(0, line.find_first_not_of(" \t\r\v\f"));
}

bool opensBlock(std::string_view trimmedLine) {
    return trimmedLine.ends_with("= {") || trimmedLine.ends_with("=> {");
}

// The lines of print's answer that stand directly in the job's block, which is the first that is opened:
//
//     gui/501/com.example.agent = {
//         state = running
//         arguments = {
//             /bin/sh
//         }
//         runs = 1
//     }
//
// A nested block lasts until the brace with the indentation of its first line. Nothing inside is looked at:
// arguments and environment are printed raw, and one that contains line feeds and braces can look like
// anything.
class OwnLines {
public:
    // True when the line stands outside every nested block.
    bool isOutermost(std::string_view line) {
        const std::string_view content = stripped(line);
        if (inNested_) {
            inNested_ = content != "}" || indentationOf(line) != ownIndentation_;
            return false;
        }
        if (content.empty()) return true;
        if (!inJob_ && opensBlock(content)) {
            inJob_ = true;
            knowsOwn_ = false;
            return true;
        }
        if (!std::exchange(knowsOwn_, true)) ownIndentation_ = indentationOf(line);
        inNested_ = opensBlock(content) && isOwn(line);
        return !inNested_;
    }

    // Of an outermost line: whether it is one of the job's, not the rest of a value with a line feed.
    bool isOwn(std::string_view line) const { return knowsOwn_ && indentationOf(line) == ownIndentation_; }

private:
    bool inJob_ = false;
    bool knowsOwn_ = false;
    std::string_view ownIndentation_;
    bool inNested_ = false;
};

std::optional<std::int64_t> numberBeforeColon(std::string_view value) {
    return parseInteger(stripped(value.substr(0, value.find(':'))));
}

// "Segmentation fault: 11", as a shell tells it: 139.
std::optional<std::int64_t> exitCodeOfSignal(std::string_view value) {
    const auto signal = parseInteger(stripped(value.substr(value.rfind(':') + 1)));
    const bool isOne = signal && *signal > 0 && *signal < 128;
    return isOne ? std::optional(128 + *signal) : std::nullopt;
}

// The path and the state count where they stand first. The numbers stand behind the raw arguments, so of
// several the last is launchd's own.
class JobFields {
public:
    void take(std::string_view line) {
        const auto field = splitAtFirst(stripped(line), " = ");
        if (!field) return;
        const auto& [key, value] = *field;
        if (key == "state" && !hasState_) {
            job.state = value;
            hasState_ = true;
        } else if (key == "path" && !job.path) {
            job.path = value;
        } else if (key == "pid") {
            job.pid = parseInteger(value);
        } else if (key == "runs") {
            job.runs = parseInteger(value);
        } else if (key == "exit timeout") {
            job.exitTimeout = parseInteger(value);
        } else if (key == "last exit code") {
            job.lastExitCode = numberBeforeColon(value);
        } else if (key == "last terminating signal") {
            job.lastExitCode = exitCodeOfSignal(value);
        }
    }

    LoadedState job{LoadedState::Kind::loaded, {}, {}, {}, {}};

private:
    bool hasState_ = false;
};

struct Override {
    std::string_view label;
    AgentOverride override;
};

// "com.example.agent" => disabled. A label may hold quotes, and even what looks like the end of one.
std::optional<Override> overrideIn(std::string_view line) {
    if (!line.starts_with('"')) return std::nullopt;
    line.remove_prefix(1);
    const std::size_t arrow = line.rfind("\" => ");
    const std::size_t close = arrow == std::string_view::npos ? line.find('"') : arrow;
    if (close == std::string_view::npos) return std::nullopt;
    const std::string_view label = line.substr(0, close);
    const std::string_view rest = line.substr(close + 1);
    if (contains(rest, "=> disabled")) return Override{label, AgentOverride::disabled};
    if (contains(rest, "=> enabled")) return Override{label, AgentOverride::enabled};
    return std::nullopt;
}

}  // namespace

bool LoadedState::isCrashLooping() const {
    return isLoaded() && lastExitCode.value_or(0) != 0 && contains(state, "spawn scheduled");
}

AgentOverrides LaunchctlParser::parsePrintDisabled(std::string_view text) {
    AgentOverrides overrides;
    bool isListed = true;
    forEachLine(text, [&](std::string_view line) {
        line = stripped(line);
        if (opensBlock(line)) isListed = line.starts_with(overridesBlock);
        if (line == "}") isListed = false;
        if (const auto entry = isListed ? overrideIn(line) : std::nullopt)
            overrides.insert_or_assign(std::string(entry->label), entry->override);
    });
    return overrides;
}

LoadedState LaunchctlParser::parsePrint(const CommandResult& result) {
    // Before the exit code, which is not 0 then.
    if (contains(result.stderrText, notFound)) return LoadedState::notLoaded();
    if (!result.succeeded())
        return contains(result.stdoutText, notFound) ? LoadedState::notLoaded() : LoadedState::unknown();

    // Of a job that is loaded, print tells much.
    if (stripped(result.stdoutText).empty()) return LoadedState::unknown();

    OwnLines lines;
    JobFields fields;
    bool found = true;
    forEachLine(result.stdoutText, [&](std::string_view line) {
        if (!lines.isOutermost(line)) return;
        if (contains(line, notFound)) found = false;  // an argument may well contain these words
        if (lines.isOwn(line)) fields.take(line);
    });
    return found ? fields.job : LoadedState::notLoaded();
}

}  // namespace brell
