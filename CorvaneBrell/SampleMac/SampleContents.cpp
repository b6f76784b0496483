#include "CorvaneBrell/SampleMac/SampleContents.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "BrellCore/Background/LaunchAgentPlist.h"
#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/SampleMac/SampleJobs.h"
#include "CorvaneBrell/SampleMac/SampleTaskDump.h"
#include "CorvaneBrell/SampleMac/SimulatedLaunchd.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using namespace std::chrono_literals;

constexpr const char* lockName = ".furnishing.lock";

void add(const fs::path& file, std::string_view contents) {
    if (fs::exists(fs::symlink_status(file))) return;
    constexpr unsigned permissions = 0644;
    replaceFile(file, contents, Durability::readersOnly, permissions);
}

void addLink(const fs::path& link, const fs::path& target) {
    if (fs::exists(fs::symlink_status(link))) return;
    fs::create_directories(link.parent_path());
    fs::create_symlink(target, link);
}

std::string bytesOf(const SampleContents::SampleAgent& agent) {
    const auto* job = std::get_if<PlistDictionary>(&agent.contents);
    return job ? writeXmlPropertyList({*job}) : std::string(std::get<std::string_view>(agent.contents));
}

void addAgentFile(const SampleContents::SampleAgent& agent, const fs::path& home) {
    const fs::path file = home / "Library/LaunchAgents" / agent.fileName;
    if (agent.isLink) {
        add(home / "Dotfiles" / agent.fileName, bytesOf(agent));
        addLink(file, fs::path("../../Dotfiles") / agent.fileName);
    } else {
        add(file, bytesOf(agent));
    }
}

// The program of a job. One app was thrown away, and its agent stayed behind.
void addProgram(const fs::path& jobFile, const fs::path& root) {
    constexpr std::string_view gone = "/Applications/Fernwright Notes.app/";
    const auto program = LaunchAgentPlist::read(jobFile).executable();
    if (!program || program->starts_with(gone)) return;
    const fs::path file = root / fs::path(*program).relative_path();
    fs::create_directories(file.parent_path());
    add(file, "");
}

// launchd's knowledge after the last login.
void addKnowledge(LaunchdState& state, const SampleContents::SampleAgent& agent, const fs::path& root,
                  const fs::path& file) {
    const LaunchAgentPlist plist = LaunchAgentPlist::read(file);
    if (!plist.label) return;
    if (agent.override != AgentOverride::absent)
        state.overrides[*plist.label] = agent.override == AgentOverride::disabled;
    if (agent.behaviour != JobBehaviour{}) state.behaviours[*plist.label] = agent.behaviour;
    if (!agent.state) return;
    const SampleContents::JobState& job = *agent.state;
    state.jobs[*plist.label] = {file.lexically_relative(root).generic_string(),
                                commandLine(plist),
                                std::string(job.state),
                                job.runs,
                                job.lastExitCode,
                                job.pid};
}

// The startup volume stands in the list under its name, as on every Mac.
constexpr std::string_view startupVolume = "Sample HD";

struct Volume {
    std::string_view name;
    std::string_view answer;  // of mdutil
};
constexpr std::array<Volume, 3> volumes{{
    {"Archive", "/Volumes/Archive:\n\tIndexing disabled.\n"},
    {"Field Recordings", "/System/Volumes/Data/Volumes/Field Recordings:\n\tIndexing enabled. \n"},
    {"Time Vault", "/Volumes/Time Vault:\n\tError: unknown indexing state.\n"},
}};

}  // namespace

FileLock SampleContents::lock(const fs::path& root) {
    auto lock = FileLock::acquire(root / lockName, 30s);
    if (!lock) throw std::runtime_error(root.string() + " is being filled by another process.");
    return std::move(*lock);
}

bool SampleContents::hasBegun(const fs::path& root) {
    return fs::exists(root / lockName);
}

void SampleContents::addJobs(const fs::path& root, const fs::path& home) {
    for (const SystemJob& job : systemJobs()) {
        add(root / job.path, writeXmlPropertyList({job.job}));
        addProgram(root / job.path, root);
    }
    add(home / "Library/LaunchAgents/com.tallowgate.agent.plist.bak", "kept by an installer");
    LaunchdState state;
    for (const SampleAgent& agent : userAgents()) {
        const fs::path file = home / "Library/LaunchAgents" / agent.fileName;
        addAgentFile(agent, home);
        addProgram(file, root);
        addKnowledge(state, agent, root, file);
    }
    const fs::path file = SimulatedLaunchd::stateFile(root);
    if (!fs::exists(file)) writeLaunchdState(file, state);
}

void SampleContents::addTaskDump(const fs::path& root) {
    add(taskDumpFile(root), sampleTaskDump);
}

fs::path SampleContents::taskDumpFile(const fs::path& root) {
    return root / "private/var/db/background-tasks.txt";
}

void SampleContents::addVolumes(const fs::path& root) {
    for (const Volume& volume : volumes) fs::create_directories(root / "Volumes" / volume.name);
    addLink(root / "Volumes" / startupVolume, "..");
}

std::optional<std::string> SampleContents::mdutilAnswer(std::string_view volume) {
    if (volume == "/") return "/:\n\tIndexing enabled. \n";
    for (const Volume& known : volumes)
        if (volume == fmt::format("/Volumes/{}", known.name)) return std::string(known.answer);
    return std::nullopt;
}

}  // namespace brell
