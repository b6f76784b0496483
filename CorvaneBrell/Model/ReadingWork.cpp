#include "CorvaneBrell/Model/ReadingWork.h"

#include <sys/stat.h>

#include <algorithm>
#include <stdexcept>

#include "BrellCore/Background/JobProgram.h"
#include "BrellCore/Engine/Drift.h"
#include "BrellCore/Journal/JournalLeaving.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/ChangeWork.h"
#include "CorvaneBrell/Model/ValueWords.h"
#include "CorvaneBrell/Platform/ApplicationNames.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::size_t mostPresetBytes = 1024 * 1024;

// For reading: of equal times the later change stands first.
std::vector<JournalEntry> latestOnTop(std::vector<JournalEntry> entries) {
    std::reverse(entries.begin(), entries.end());
    const auto later = [](const JournalEntry& one, const JournalEntry& other) {
        return one.appliedAt > other.appliedAt;
    };
    // In a journal written by one clock they are in order already.
    if (!std::is_sorted(entries.begin(), entries.end(), later))
        std::stable_sort(entries.begin(), entries.end(), later);
    return entries;
}

std::optional<std::uint32_t> ownerOf(const fs::path& file) {
    struct stat status;
    if (::stat(file.c_str(), &status) != 0) return std::nullopt;
    return static_cast<std::uint32_t>(status.st_uid);
}

// Or can't be undone as it is, so that the user has to say what becomes of it.
bool isNoLongerInForce(const JournalEntry& entry, PreferenceReader& preferences) {
    if (entry.kind == EntryKind::launchAgent) return entry.isActive() && !entry.agent;
    if (entry.status == EntryStatus::capturing)
        return holdsOtherType(entry, preferences) || whyNeverPutBack(entry, preferences);
    return entry.status == EntryStatus::applied && !isInForce(entry, preferences);
}

// Why it can't be undone, whatever others did.
std::optional<std::string> refusalOf(const JournalEntry& entry, PreferenceReader& preferences) {
    if (auto why = whyOnlyKept(entry)) return why;
    return whyNeverPutBack(entry, preferences);
}

// Also one that is not there; not one that leads to a disk that is not attached.
bool isListed(const fs::path& folder) {
    std::error_code failed, unknown;
    const fs::directory_iterator first(folder, failed);
    return !failed || fs::symlink_status(folder, unknown).type() == fs::file_type::not_found;
}

}  // namespace

bool isDamaged(const fs::path& journalDirectory) try {
    return journalDamage(journalDirectory).has_value();
} catch (const JournalError&) {
    return false;
}

Everything ReadingWork::everything(const Posted<>& begun) {
    begun();
    Everything everything;
    const auto tweaks = deps_.catalog.available(deps_.macOSMajor());
    std::vector<StatusReading> readings = deps_.engine.statuses(tweaks);
    for (std::size_t i = 0; i < tweaks.size(); ++i) {
        if (const auto* failure = std::get_if<StatusFailure>(&readings[i]))
            everything.statusErrors.emplace(tweaks[i]->id, excerpt(describe(*failure), mostOfASentence));
        else
            everything.statuses.emplace(tweaks[i]->id, std::get<TweakStatus>(std::move(readings[i])));
    }
    try {
        readEntries(everything);
    } catch (const JournalError& error) {
        everything.error = error.what();
        everything.isDamaged = isDamaged(deps_.journalDirectory());
    }
    const auto preferences = deps_.store.reader();
    for (const JournalEntry& entry : everything.entries) {
        if (!isNoLongerInForce(entry, *preferences)) continue;
        everything.drifted.push_back(driftedEntry(entry, readKeys(entry, *preferences), deps_.catalog));
        everything.drifted.back().refusal = refusalOf(entry, *preferences);
    }
    return everything;
}

// A change that is not finished was interrupted, unless another program is making it.
void ReadingWork::readEntries(Everything& everything) {
    everything.lack = lackOfChanges(*deps_.journal);
    everything.entries = latestOnTop(deps_.journal->all());
    for (const JournalEntry& entry : everything.entries)
        if (entry.isActive()) deps_.titles.learn(entry);
    if (std::none_of(everything.entries.begin(), everything.entries.end(),
                     [](const auto& entry) { return entry.status == EntryStatus::capturing; }))
        return;
    const auto atRest = deps_.journal->allAtRest();
    everything.isChangedElsewhere = !atRest;
    if (atRest) everything.entries = latestOnTop(*atRest);  // it may be finished by now
}

ToldHistory ReadingWork::history(std::optional<int> days, const ToldHistory& shown) {
    const std::vector<HistoryLine> lines = deps_.journal->history(days);
    for (const HistoryLine& line : lines) deps_.titles.learn(line.entry);
    auto told = toldHistory(lines, deps_.titles);
    return told == *shown ? shown : std::make_shared<const std::vector<ToldLine>>(std::move(told));
}

// First what the files say, then what launchd says of each agent, then with the task database, which takes
// seconds.
LoginItems ReadingWork::loginItems(const Posted<LoginItems>& soFar, const TaskSource& tasks) {
    progress_.tell("Reading the LaunchAgents");
    LoginItems items;
    std::vector<LaunchAgentRecord> user;
    const std::vector<LaunchAgentRecord> system = deps_.reader.systemAgents();
    try {
        user = deps_.reader.listUserAgents();
    } catch (const std::exception& error) {
        items.error = error.what();  // the others are shown all the same
    }
    items.mayReadTasks = deps_.machine.isAdmin();
    items.tasks = tasks.kept;
    const auto merge = [&] {
        items.rows = LoginItemsMerger::merge(user, system, items.tasks.get(), deps_.machine.uid);
        deps_.titles.learn(items.rows);
    };
    const auto showSoFar = [&] {
        if (!soFar) return;
        merge();
        soFar(items);
    };
    for (std::size_t i = 0; i < user.size() && !progress_.isEnding(); ++i) noteRefusal(user[i], items);
    noteFacts(user, items);
    noteFacts(system, items);
    showSoFar();
    for (std::size_t i = 0; i < user.size() && !progress_.isEnding(); ++i) {
        progress_.tell("Asking launchd about each LaunchAgent", i, user.size());
        user[i].loaded = deps_.reader.loadedState(user[i].plist);
        noteRefusal(user[i], items);  // it may be loaded from another file
    }
    showSoFar();
    if (tasks.isRead) items.tasks = taskList(std::nullopt);
    merge();
    items.seen = SeenItems::in(items.rows, items.tasks != nullptr);
    // The jobs of a folder that is out of reach are not gone.
    if (!isListed(deps_.reader.userAgentsDirectory())) items.seen.jobs.reset();
    return items;
}

std::shared_ptr<const BTMDump> ReadingWork::taskList(const std::optional<CommandPatience>& patience) {
    progress_.tell("Reading macOS's list of background items");
    if (progress_.isEnding()) return nullptr;
    auto dump = deps_.btmReader.dump(patience);
    return dump ? std::make_shared<const BTMDump>(*std::move(dump)) : nullptr;
}

std::shared_ptr<const BTMDump> ReadingWork::firstTaskList(const Cancellation& isCancelled) {
    constexpr double secondsToType = 120;
    return taskList(CommandPatience{
        secondsToType, [this, isCancelled] { return isCancelled->load() || progress_.isEnding(); }});
}

// The home belongs to the user, and so should the files in it.
void ReadingWork::noteFacts(const std::vector<LaunchAgentRecord>& jobs, LoginItems& items) {
    const auto user = ownerOf(deps_.machine.home);
    const auto& named = deps_.machine.applicationName ? deps_.machine.applicationName : applicationName;
    for (const LaunchAgentRecord& job : jobs) {
        if (progress_.isEnding()) return;
        JobFacts facts{missingProgram(job.plist, deps_.machine.systemRoot, deps_.machine.home), {}, {}};
        for (const std::string& bundleID : job.plist.associatedBundleIDs)
            if (const auto app = named(bundleID)) facts.apps.push_back(excerpt(*app));
        const auto& owner = job.plist.fileOwnerUID;
        if (job.scope == AgentScope::user && user && owner && owner != user) facts.otherOwner = owner;
        if (facts != JobFacts()) items.facts.emplace(job.id(), std::move(facts));
    }
}

void ReadingWork::noteRefusal(const LaunchAgentRecord& agent, LoginItems& items) const {
    if (auto why = deps_.toggle.whyNotSwitched(agent))
        items.refusals.insert_or_assign(agent.id(), *std::move(why));
}

Volumes ReadingWork::volumes(const Posted<Volumes>& soFar) {
    Volumes statuses;
    const std::vector<std::string> volumes = SpotlightStatusReader::mountedVolumes(deps_.machine.systemRoot);
    for (const std::string& volume : volumes) {
        if (progress_.isEnding()) break;
        progress_.tell("Asking each volume about Spotlight", statuses.size(), volumes.size());
        for (VolumeIndexStatus& status : deps_.spotlight.statuses({volume})) {
            status.volume = excerpt(status.volume, mostOfASentence);  // asked already; from here on a name
            statuses.push_back(std::move(status));
        }
        soFar(statuses);
    }
    return statuses;
}

AgentConfirmRequest ReadingWork::agentConfirm(const std::vector<LaunchAgentRecord>& agents, bool turnOn) {
    AgentConfirmRequest request{Uuid::random(), "", {}, {}, {}, turnOn, {}};
    for (const LaunchAgentRecord& agent : agents) {
        if (progress_.isEnding()) break;
        progress_.tell(request.agents.size() + request.refusals.size(), agents.size());
        try {
            checkJobFile(agent);
            const AgentPreview preview =
                deps_.toggle.preview(agent, turnOn ? AgentSwitch::on : AgentSwitch::off);
            request.commands.insert(request.commands.end(), preview.commands.begin(), preview.commands.end());
            request.targets.push_back(preview.target);
            request.agents.push_back(agent);
        } catch (const std::exception& error) {
            request.refusals.push_back(error.what());
        }
    }
    request.title = std::string(turnOn ? "Turn on " : "Turn off ") +
                    (request.agents.size() == 1 ? request.agents.front().label().value_or("")
                                                : std::to_string(request.agents.size()) + " items");
    return request;
}

LeavingRequest ReadingWork::leaving(const std::vector<Uuid>& concerned) {
    if (const auto lack = lackOfChanges(*deps_.journal))
        throw std::runtime_error(*lack + ". Rebuild the journal first, or run that script and remove it.");
    const auto preferences = deps_.store.reader();
    LeavingRequest request =
        leavingRequest(latestOnTop(deps_.journal->all()), concerned, deps_.titles, *preferences);
    request.folder = pathWords(deps_.journalDirectory().string(), deps_.catalog.home());
    if (request.active.empty())
        request.whyNotToTrash = request.isProved()
                                    ? whyNotToLeave(*deps_.journal)
                                    : "not everything could be put back, and its journal says how it was";
    return request;
}

DecodedPreset ReadingWork::preset(const fs::path& file) {
    const auto contents = readFile(file, mostPresetBytes);
    if (!contents) throw std::runtime_error("There is no file " + file.string() + ".");
    try {
        DecodedPreset decoded = PresetFile::decode(contents->bytes, deps_.catalog);
        PresetFile::checkName(decoded.preset.name);
        return decoded;
    } catch (const PresetFileError& error) {
        throw std::runtime_error("The preset " + file.string() + " could not be imported. " + error.what());
    }
}

RebuildRequest ReadingWork::rebuildRequest(const fs::path& directory, RebuiltFor use) {
    auto plan = planRebuild(directory, rebuildProgress());
    if (!plan) throw std::runtime_error("Reading the history was ended.");
    if (plan->entries.empty())
        throw std::runtime_error(
            "There is no history to rebuild the journal from. The restore script beside it "
            "puts back what was changed when it was last written.");
    return brell::rebuildRequest(*std::move(plan), use, deps_.titles, *deps_.store.reader());
}

RebuildReport ReadingWork::rebuildJournal(const fs::path& directory, const RebuildPlan& plan,
                                          RebuiltFor use) {
    const auto rebuilt = brell::rebuildJournal(directory, plan, rebuildProgress());
    if (!rebuilt) throw std::runtime_error("Rebuilding the journal was ended; nothing was changed.");
    return rebuildReport(*rebuilt, use);
}

RebuildProgress ReadingWork::rebuildProgress() {
    return [this](std::uintmax_t done, std::uintmax_t total) {
        constexpr std::uintmax_t hundredths = 100;
        if (total > 0) progress_.tell(static_cast<std::size_t>(done * hundredths / total), hundredths);
        return !progress_.isEnding();
    };
}

std::string ReadingWork::restoreScript() {
    return deps_.engine.restoreScriptText();
}

}  // namespace brell
