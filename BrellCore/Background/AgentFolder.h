// The user's LaunchAgents folder: which job files lie in it, and which of them has a label now.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brell {

class AgentFolder {
public:
    // Looks up the links that lead to the folder, once; the folder need not exist.
    explicit AgentFolder(const std::filesystem::path& directory);

    // True when the path, which may be a link itself, is that of a job file directly in the folder.
    bool holds(const std::filesystem::path& path) const;
    // The same of a path without links.
    bool isDirectlyInside(const std::filesystem::path& resolved) const;

    // The job file that has this label: the preferred one if it has it, else the first by name; without
    // links. A link that leads out of the folder is none of them. Raises AgentToggleError when that can't be
    // told.
    std::optional<std::filesystem::path> jobFile(const std::string& label,
                                                 const std::filesystem::path& preferred) const;

private:
    std::vector<std::filesystem::path> jobFiles() const;
    bool hasLabel(const std::filesystem::path& file, const std::string& label) const;

    const std::filesystem::path directory_;  // links resolved
};

}  // namespace brell
