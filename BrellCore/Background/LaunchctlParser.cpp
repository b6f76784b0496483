#include "BrellCore/Background/LaunchctlParser.h"

#include <utility>

#include "BrellCore/Background/Lines.h"
#include "BrellCore/Support/Numbers.h"

namespace brell {

namespace {

constexpr std::string_view notFound = "Could not find service";

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::string_view indentationOf(std::string_view line) {
    return line.substr(0, line.find_first_not_of(" \t\r\v\f"));
}

bool opensBlock(std::string_view trimmedLine) {
    return trimmedLine.ends_with("= {") || trimmedLine.ends_with("=> {");
}

// The lines of print's answer that stand directly in the job's block:
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
    // Whether the line stands outside every nested block.
    bool isOutermost(std::string_view line) {
        const std::string_view content = stripped(line);
        const std::string_view indentation = indentationOf(line);
        if (inNested_) {
            inNested_ = content != "}" || indentation != nestedIndentation_;
            return false;
        }
        if (content.empty()) return true;
        if (!std::exchange(seenFirst_, true) && opensBlock(content)) return true;  // it names the job
        if (!std::exchange(knowsOwn_, true)) ownIndentation_ = indentation;
        inNested_ = opensBlock(content) && isOwn(line);
        if (inNested_) nestedIndentation_ = indentation;
        return !inNested_;
    }

    // Of an outermost line: whether it is one of the job's, not the rest of a value with a line feed.
    bool isOwn(std::string_view line) const { return knowsOwn_ && indentationOf(line) == ownIndentation_; }

private:
    bool seenFirst_ = false;
    bool knowsOwn_ = false;
    std::string_view ownIndentation_;
    bool inNested_ = false;
    std::string_view nestedIndentation_;
};

std::optional<std::int64_t> numberBeforeColon(std::string_view value) {
    return parseInteger(stripped(value.substr(0, value.find(':'))));
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
        } else if (key == "last exit code") {
            job.lastExitCode = numberBeforeColon(value);
        }
    }

    LoadedState job{LoadedState::Kind::loaded, {}, {}, {}, {}};

private:
    bool hasState_ = false;
};

}  // namespace

bool LoadedState::isCrashLooping() const {
    return isLoaded() && lastExitCode.value_or(0) != 0 && contains(state, "spawn scheduled");
}

AgentOverrides LaunchctlParser::parsePrintDisabled(std::string_view text) {
    AgentOverrides overrides;
    forEachLine(text, [&](std::string_view line) {
        line = stripped(line);
        if (!line.starts_with('"')) return;
        const std::size_t close = line.find('"', 1);
        if (close == std::string_view::npos) return;
        const std::string label(line.substr(1, close - 1));
        const std::string_view rest = line.substr(close + 1);
        if (contains(rest, "=> disabled"))
            overrides[label] = AgentOverride::disabled;
        else if (contains(rest, "=> enabled"))
            overrides[label] = AgentOverride::enabled;
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
