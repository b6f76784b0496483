#include "BrellCore/Background/AgentFolder.h"

#include "BrellCore/Background/AgentToggleError.h"
#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Background/LaunchAgentReader.h"
#include "BrellCore/Support/FileContents.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

AgentToggleError refused(std::string text) {
    return AgentToggleError({AgentToggleProblem::refused, std::move(text)});
}

bool isJobName(const fs::path& file) {
    return file.filename().native().ends_with(".plist");
}

}  // namespace

AgentFolder::AgentFolder(const fs::path& directory) : directory_(resolvedPath(directory)) {}

bool AgentFolder::holds(const fs::path& path) const {
    return isJobName(path) && resolvedPath(path.parent_path()) == directory_;
}

bool AgentFolder::isDirectlyInside(const fs::path& resolved) const {
    return isJobName(resolved) && resolved.parent_path() == directory_;
}

bool AgentFolder::hasLabel(const fs::path& file, const std::string& label) const {
    return isDirectlyInside(resolvedPath(file)) &&
           LaunchAgentPlist::readOrRaise(file, LinksOut::left).label == label;
}

std::vector<fs::path> AgentFolder::jobFiles() const {
    std::error_code failed;
    std::vector<fs::path> files = LaunchAgentReader::jobFiles(directory_, failed);
    if (failed && failed != std::errc::no_such_file_or_directory)
        throw refused("Your LaunchAgents folder " + directory_.string() +
                      " can't be read: " + failed.message() + ".");
    return files;
}

std::optional<fs::path> AgentFolder::jobFile(const std::string& label, const fs::path& preferred) const {
    std::optional<ReadFailure> unread;
    const auto isIt = [&](const fs::path& file) {
        try {
            return hasLabel(file, label);
        } catch (const ReadError& error) {
            if (!unread) unread = error.failure();
            return false;
        }
    };
    if (isIt(preferred)) return resolvedPath(preferred);
    for (const fs::path& file : jobFiles())
        if (isIt(file)) return resolvedPath(file);
    if (unread) throw refused(describe(*unread));  // it may be the one
    return std::nullopt;
}

}  // namespace brell
