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

// A folder that can't be listed and a file that can't be read may hold what is looked for.
void checkCanBeListed(const fs::path& folder) {
    std::error_code failed;
    const fs::directory_iterator first(folder, failed);
    if (failed && failed != std::errc::no_such_file_or_directory)
        throw refused("Your LaunchAgents folder " + folder.string() + " can't be read: " + failed.message() +
                      ".");
}

void checkCanBeRead(const fs::path& file) try {
    readFile(file, LaunchAgentPlist::mostBytes);
} catch (const ReadError& error) {
    if (error.failure().code != 0) throw refused(error.what());  // else it is no job file at all
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
    return isDirectlyInside(resolvedPath(file)) && LaunchAgentPlist::read(file).label == label;
}

std::optional<fs::path> AgentFolder::jobFile(const std::string& label, const fs::path& preferred) const {
    if (hasLabel(preferred, label)) return resolvedPath(preferred);
    checkCanBeListed(directory_);
    for (const LaunchAgentPlist& plist : LaunchAgentReader::plists(directory_, LinksOut::left))
        if (plist.label == label) return resolvedPath(plist.path);
    if (isDirectlyInside(resolvedPath(preferred))) checkCanBeRead(preferred);
    return std::nullopt;
}

}  // namespace brell
