#include "Trust/Verdict.h"

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "BrellCore/Journal/RestoreScript.h"
#include "Tests/Support/Shell.h"

namespace brell::trust {

namespace {

std::string textIn(const Condition& condition, const std::string& name) {
    const auto found = condition.find(name);
    return found == condition.end() ? "nothing" : found->second;
}

std::string textOf(const StoredValue& stored) {
    return stored.isAbsent() ? "nothing" : stored.rendered();
}

// The keys that hold what an entry wrote, and the agents, whose undo the journal shows as done with the true
// original; none that an active entry is about.
std::set<std::string> endedNames(const std::vector<JournalEntry>& entries, const Condition& original,
                                 const Condition& now) {
    std::set<std::string> ended;
    for (const JournalEntry& entry : entries) {
        if (entry.agent) ended.insert(entry.agent->label);
        for (const JournaledWrite& write : entry.writes) {
            const std::string name = write.key.rendered();
            if (textOf(write.original) == textIn(original, name) &&
                textOf(write.written) == textIn(now, name))
                ended.insert(name);
        }
    }
    for (const JournalEntry& entry : entries)
        if (entry.isActive())
            for (const std::string& name : namesOf(entry)) ended.erase(name);
    return ended;
}

// The differences that the claim does not allow.
Faults notBack(const Claim& claim, const std::vector<JournalEntry>& entries, const Condition& original,
               const Condition& now) {
    return differences(original, now,
                       claim.macMayLag ? endedNames(entries, original, now) : std::set<std::string>());
}

Faults checkEntries(const Stage& stage, const Claim& claim, const std::vector<JournalEntry>& found) {
    if (claim.entries && found != *claim.entries) return {"the journal does not hold what was saved"};
    Faults faults;
    for (const JournalEntry& known : stage.setting().entries)
        if (std::none_of(found.begin(), found.end(),
                         [&](const JournalEntry& entry) { return entry.id == known.id; }))
            faults.push_back("the entry of " + known.tweakID + " is lost");
    return faults;
}

// Never is the folder gone and a change active.
Faults checkLeft(const Stage& stage, const std::vector<JournalEntry>& entries) {
    const bool isActive = std::any_of(entries.begin(), entries.end(), std::mem_fn(&JournalEntry::isActive));
    return stage.hasLeft() && isActive ? Faults{"an active change went with the journal"} : Faults();
}

// A user does this first where the journal can't be read. The damaged one is there for good.
Faults rebuildIfDamaged(const Stage& stage) {
    if (!stage.setting().damaged) return {};
    Faults faults;
    if (stage.isDamagedNow()) append(faults, rebuildFromHistory(stage.journalDirectory()), "rebuilding: ");
    for (const std::string& name : testing::namesIn(stage.journalDirectory()))
        if (name.starts_with("journal.json.") &&
            below(stage.journalDirectory(), name) == stage.setting().damaged)
            return faults;
    faults.push_back("the damaged journal is lost");
    return faults;
}

Faults recoverAndRestore(Rig& rig) {
    Faults faults;
    const auto report = [&](const char* what, const RestoreAllOutcome& outcome) {
        for (const auto& [id, reason] : outcome.failed) faults.push_back(std::string(what) + ": " + reason);
    };
    report("recovery", rig.engine.recoverInterrupted());
    std::set<Uuid> confirmed;
    for (const JournalEntry& entry : rig.engine.driftedEntries()) confirmed.insert(entry.id);
    report("restoring everything", rig.engine.restoreAll(confirmed));
    if (!rig.journal.active().empty()) faults.push_back("an entry is still active");
    return faults;
}

// The script can take no job away: one that was turned on ends at the next logout. And it can load none that
// is disabled, or whose file has another name now: one that was loaded all the same is gone until the next
// login.
Condition asScriptLeavesIt(Condition original, const Condition& now,
                           const std::vector<JournalEntry>& entries) {
    const std::set<std::pair<std::string, std::string>> allowed{{"disabled, not loaded", "disabled, loaded"},
                                                                {"nothing", "enabled, loaded"},
                                                                {"disabled, loaded", "disabled, not loaded"}};
    for (const auto& [name, state] : now)
        if (allowed.contains({textIn(original, name), state})) original[name] = state;
    for (const JournalEntry& entry : entries)
        if (entry.agent && !fs::exists(entry.agent->plistPath) && !now.contains(entry.agent->label))
            original.erase(entry.agent->label);
    return original;
}

}  // namespace

void append(Faults& faults, Faults more, const std::string& prefix) {
    for (std::string& fault : more) faults.push_back(prefix + fault);
}

Faults differences(const Condition& original, const Condition& now, const std::set<std::string>& except) {
    Faults faults;
    Condition either = original;
    either.insert(now.begin(), now.end());
    for (const auto& [name, text] : either)
        if (textIn(original, name) != textIn(now, name) && !except.contains(name))
            faults.push_back(name + " holds " + textIn(now, name) + ", originally " + textIn(original, name));
    return faults;
}

std::set<std::string> namesOf(const JournalEntry& entry) {
    std::set<std::string> names;
    for (const JournaledWrite& write : entry.writes) names.insert(write.key.rendered());
    if (entry.agent) names.insert(entry.agent->label);
    return names;
}

Faults judgeProgram(const Stage& stage, const Claim& claim) try {
    Faults faults = rebuildIfDamaged(stage);
    Rig rig(stage.world());
    const std::vector<JournalEntry> entries = Journal::open(stage.journalNow())->all();
    append(faults, checkEntries(stage, claim, entries));
    append(faults, checkLeft(stage, entries));
    append(faults, recoverAndRestore(rig));
    append(faults, notBack(claim, entries, stage.setting().original, conditionOf(stage.world())));
    return faults;
} catch (const std::exception& error) {
    return {std::string("the next run fails: ") + error.what()};
}

Faults judgeScript(const Stage& stage, const Claim& claim) try {
    letJobsEnd(stage.world());
    const fs::path directory = stage.journalDirectory();
    const std::vector<JournalEntry> entries =
        stage.isDamagedNow() ? stage.setting().entries : Journal::open(stage.journalNow())->all();
    const fs::path script = directory / RestoreScript::fileName;
    Faults faults;
    if (fs::exists(script)) {
        const testing::Finished finished = testing::runLine(
            "sh " + testing::shellWord(script) + " 2>&1",
            {{"PATH", stage.tools().string() + ":" BRELL_STAND_INS ":" + std::getenv("PATH")},
             {"DEFAULTS_FOLDER", SampleMac(stage.world()).preferences()},
             {"BRELL_SAMPLE_MAC", stage.world()}});
        if (finished.status != 0) faults.push_back("the script fails: " + finished.output);
    }
    const Condition now = conditionOf(stage.world());
    append(faults, notBack(claim, entries, asScriptLeavesIt(stage.setting().original, now, entries), now));
    return faults;
} catch (const std::exception& error) {
    return {error.what()};
}

Faults judge(const Stage& stage, const Claim& claim) {
    stage.keep("stopped");
    Faults faults = judgeProgram(stage, claim);
    stage.show("stopped");
    append(faults, judgeScript(stage, claim), "script alone: ");
    return faults;
}

}  // namespace brell::trust
