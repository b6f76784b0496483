#include "BrellCore/Review/Spotlight.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include "BrellCore/Support/Lines.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// mdutil answers for a volume under the place where the system keeps its data volume, too.
constexpr std::string_view dataVolume = "/System/Volumes/Data";

VolumeIndexStatus statusOf(std::string volume, const std::vector<std::string>& lines) {
    VolumeIndexStatus status{std::move(volume), std::nullopt, join(lines, " ")};
    if (lines.size() != 1) return status;
    std::string_view words = lines.front();
    if (words.ends_with('.')) words.remove_suffix(1);
    if (words == "Indexing enabled") status.indexing = true;
    if (words == "Indexing disabled") status.indexing = false;
    return status;
}

bool beginsWithWhiteSpace(std::string_view line) {
    return !line.empty() && isWhite(line.front());
}

// The status that names the volume; nothing when only others are named.
const VolumeIndexStatus* answerFor(const std::string& volume, const std::vector<VolumeIndexStatus>& answers) {
    for (const std::string& name : {volume, std::string(dataVolume) + (volume == "/" ? "" : volume)})
        for (const VolumeIndexStatus& answer : answers)
            if (answer.volume == name) return &answer;
    return nullptr;
}

bool isOtherVolume(const fs::path& entry, const fs::path& root) {
    std::error_code error;
    const bool folder = fs::is_directory(entry, error);
    return folder && !fs::equivalent(entry, root, error) && !error;
}

}  // namespace

std::vector<VolumeIndexStatus> MdutilParser::parse(std::string_view text) {
    std::vector<VolumeIndexStatus> statuses;
    std::optional<std::string> volume;
    std::vector<std::string> lines;
    const auto finish = [&] {
        if (volume) statuses.push_back(statusOf(*volume, lines));
        volume.reset();
        lines.clear();
    };
    forEachLine(text, [&](std::string_view line) {
        const std::string_view content = stripped(line);
        if (content.empty()) return;
        if (beginsWithWhiteSpace(line)) {
            if (volume) lines.emplace_back(content);
        } else if (content.starts_with('/') && content.ends_with(':')) {
            finish();
            volume = content.substr(0, content.size() - 1);
        }
    });
    finish();
    return statuses;
}

std::vector<std::string> SpotlightStatusReader::mountedVolumes(const fs::path& root) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(root / "Volumes", error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with('.') && isOtherVolume(entry->path(), root)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    std::vector<std::string> volumes{"/"};
    for (const std::string& name : names) volumes.push_back("/Volumes/" + name);
    return volumes;
}

std::vector<VolumeIndexStatus> SpotlightStatusReader::statuses(
    const std::vector<std::string>& volumes) const {
    std::vector<VolumeIndexStatus> statuses;
    for (const std::string& volume : volumes) {
        VolumeIndexStatus status{volume, std::nullopt, {}};
        try {
            const CommandResult result = runner.run(AllowedCommand::mdutilStatus(volume));
            const auto answers = MdutilParser::parse(result.stdoutText);
            if (const VolumeIndexStatus* answer = answerFor(volume, answers))
                status = {volume, answer->indexing, answer->raw};
            else
                status.raw = stripped(result.output());
        } catch (const std::exception& error) {
            status.raw = error.what();
        }
        status.raw = excerpt(status.raw, mostOfASentence);
        statuses.push_back(std::move(status));
    }
    return statuses;
}

}  // namespace brell
