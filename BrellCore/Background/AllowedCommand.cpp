#include "BrellCore/Background/AllowedCommand.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "BrellCore/Background/CommandRunning.h"
#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

using Kind = AllowedCommand::Kind;

enum class Operands { subject, service, subjectAndItem, none };

struct Shape {
    std::string_view executable;
    std::string_view word;  // the first argument
    Operands operands;      // how the others are made
    bool isWrite;
};

// In the order of the kinds.
constexpr std::array<Shape, 8> shapes{{
    {AllowedCommand::launchctl, "print", Operands::subject, false},
    {AllowedCommand::launchctl, "print-disabled", Operands::subject, false},
    {AllowedCommand::launchctl, "bootout", Operands::service, true},
    {AllowedCommand::launchctl, "bootstrap", Operands::subjectAndItem, true},
    {AllowedCommand::launchctl, "enable", Operands::service, true},
    {AllowedCommand::launchctl, "disable", Operands::service, true},
    {AllowedCommand::mdutil, "-s", Operands::subject, false},
    {AllowedCommand::sfltool, "dumpbtm", Operands::none, false},
}};

const Shape& shapeOf(Kind kind) {
    return shapes[static_cast<std::size_t>(kind)];
}

constexpr std::string_view digits = "0123456789";
constexpr std::size_t mostUidDigits = 10;

bool isUserNumber(std::string_view text) {
    return !text.empty() && text.size() <= mostUidDigits &&
           text.find_first_not_of(digits) == std::string_view::npos;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool isDomain(std::string_view text) {
    for (const std::string_view prefix : {"gui/", "user/"})
        if (text.starts_with(prefix)) return isUserNumber(text.substr(prefix.size()));
    return false;
}

// A zero byte would end the argument early for the program that gets it, after every check was made on the
// rest.
bool isAbsolutePath(std::string_view text) {
    return text.starts_with("/") && !contains(text, {"\0", 1});
}

bool isJobFile(std::string_view path) {
    return isAbsolutePath(path) && path.ends_with(".plist") && !contains(path, "/../") &&
           contains(path, "/Library/LaunchAgents/");
}

bool isVolume(std::string_view path) {
    return isAbsolutePath(path) && !contains(path, "..");
}

void require(bool valid, std::string_view kind, std::string_view value) {
    if (valid) return;
    throw CommandError({CommandProblem::invalidArgument, std::string(kind) + " " + std::string(value)});
}

// The pieces between slashes without empty ones; the third is all that is left after the second.
std::vector<std::string> targetPieces(std::string_view target) {
    std::vector<std::string> pieces;
    while (!target.empty()) {
        const std::size_t slash = pieces.size() < 2 ? target.find('/') : std::string_view::npos;
        const std::string_view piece = target.substr(0, slash);
        if (!piece.empty()) pieces.emplace_back(piece);
        target.remove_prefix(slash == std::string_view::npos ? target.size() : slash + 1);
    }
    return pieces;
}

void requireTarget(const std::string& target) {
    const std::vector<std::string> pieces = targetPieces(target);
    require(pieces.size() >= 2, "target", target);
    const std::string domain = pieces[0] + "/" + pieces[1];
    require(isDomain(domain), "domain", domain);
    if (pieces.size() == 3) require(AgentCommands::isPlainLabel(pieces[2]), "label", pieces[2]);
}

std::string quoted(std::string_view element) {
    return contains(element, " ") ? "'" + std::string(element) + "'" : std::string(element);
}

}  // namespace

AllowedCommand AllowedCommand::launchctlPrint(std::string target) {
    return {Kind::launchctlPrint, std::move(target), {}};
}
AllowedCommand AllowedCommand::launchctlPrintDisabled(std::string domain) {
    return {Kind::launchctlPrintDisabled, std::move(domain), {}};
}
AllowedCommand AllowedCommand::launchctlBootout(std::string domain, std::string label) {
    return {Kind::launchctlBootout, std::move(domain), std::move(label)};
}
AllowedCommand AllowedCommand::launchctlBootstrap(std::string domain, std::string plistPath) {
    return {Kind::launchctlBootstrap, std::move(domain), std::move(plistPath)};
}
AllowedCommand AllowedCommand::launchctlEnable(std::string domain, std::string label) {
    return {Kind::launchctlEnable, std::move(domain), std::move(label)};
}
AllowedCommand AllowedCommand::launchctlDisable(std::string domain, std::string label) {
    return {Kind::launchctlDisable, std::move(domain), std::move(label)};
}
AllowedCommand AllowedCommand::mdutilStatus(std::string volumePath) {
    return {Kind::mdutilStatus, std::move(volumePath), {}};
}
AllowedCommand AllowedCommand::sfltoolDumpBTM() {
    return {Kind::sfltoolDumpBTM, {}, {}};
}

std::string_view AllowedCommand::executable() const {
    return shapeOf(kind).executable;
}

std::vector<std::string> AllowedCommand::arguments() const {
    const std::string word(shapeOf(kind).word);
    switch (shapeOf(kind).operands) {
        case Operands::subject: return {word, subject};
        case Operands::service: return {word, subject + "/" + item};
        case Operands::subjectAndItem: return {word, subject, item};
        case Operands::none: break;
    }
    return {word};
}

bool AllowedCommand::isWrite() const {
    return shapeOf(kind).isWrite;
}

std::string AllowedCommand::rendered() const {
    std::vector<std::string> elements{quoted(executable())};
    for (const std::string& argument : arguments()) elements.push_back(quoted(argument));
    return join(elements, " ");
}

void AllowedCommand::validate() const {
    switch (kind) {
        case Kind::launchctlPrint: return requireTarget(subject);
        case Kind::launchctlPrintDisabled: return require(isDomain(subject), "domain", subject);
        case Kind::launchctlBootout:
        case Kind::launchctlEnable:
        case Kind::launchctlDisable:
            require(isDomain(subject), "domain", subject);
            return require(AgentCommands::isPlainLabel(item), "label", item);
        case Kind::launchctlBootstrap:
            require(isDomain(subject), "domain", subject);
            return require(isJobFile(item), "plist path", item);
        case Kind::mdutilStatus: return require(isVolume(subject), "volume", subject);
        case Kind::sfltoolDumpBTM: return;
    }
}

}  // namespace brell
