#include "Trust/Recovery.h"

#include <algorithm>

namespace brell::trust {

namespace {

Goal reached(const fs::path& world) {
    const fs::path directory = Journal::defaultDirectory(SampleMac(world).home());
    return {conditionOf(world), activeTweaks(*Journal::open(directory)),
            fs::exists(trashFor(directory) / Journal::fileName)};
}

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

// A user can tell from it what could not be done to which thing.
bool isClear(const std::string& sentence, const Stage& stage) {
    if (!isWhole(sentence)) return false;
    std::vector<std::string> names{stage.world().string(), "The change journal", "com.apple.",
                                   "NSGlobalDomain", "/bin/launchctl "};
    for (const std::string& job : testing::namesIn(SampleMac(stage.world()).launchAgents()))
        names.push_back(job.substr(0, job.rfind('.')));
    for (const JournalEntry& entry : stage.setting().entries)
        if (entry.agent) names.push_back(entry.agent->label);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& name) { return contains(sentence, name); });
}

// Every difference from the original condition has an active entry that undoes it.
Faults checkRecorded(const Stage& stage) {
    std::set<std::string> recorded;
    const auto journal = Journal::open(Journal::defaultDirectory(SampleMac(stage.world()).home()));
    for (const JournalEntry& entry : journal->active()) recorded.merge(namesOf(entry));
    Faults faults;
    append(faults, differences(stage.setting().original, conditionOf(stage.world()), recorded),
           "half done: no active entry is about ");
    return faults;
}

Faults checkSentences(const Stage& stage, const Attempt& made) {
    Faults faults;
    if (made.foreignError) faults.push_back("an error of a foreign type: " + *made.foreignError);
    for (const std::string& sentence : made.sentences)
        if (!isClear(sentence, stage)) faults.push_back("no clear sentence: " + sentence);
    return faults;
}

// An agent that an undo left half way is one that changed: the user is sent to the Journal page.
bool restoredAsTold(Rig& rig, const std::string& sentence) {
    if (!sentence.ends_with("restore it from the Journal first.")) return false;
    for (const JournalEntry& entry : rig.journal.active())
        if (entry.kind == EntryKind::launchAgent) rig.engine.restore(entry.id, false);
    return true;
}

// A user lets Brell recover what was interrupted, then asks once more. Nobody else changed
// anything, so that nothing has to be confirmed.
Faults tryAgain(const Stage& stage, const Scene& scene, Rig& rig, const Goal& goal) {
    Faults faults;
    if (!rig.engine.driftedEntries().empty()) faults.push_back("a change of Brell's own counts as drift");
    for (const auto& [id, reason] : rig.engine.recoverInterrupted().failed)
        faults.push_back("recovery before the next try: " + reason);
    if (reached(stage.world()) == goal) return faults;
    const Attempt again = attempt(scene, rig);
    for (const std::string& sentence : again.sentences)
        if (!restoredAsTold(rig, sentence)) faults.push_back("the next try: " + sentence);
    if (again.foreignError) faults.push_back("the next try: " + *again.foreignError);
    return faults;
}

}  // namespace

bool isWhole(const std::string& sentence) {
    for (const char* raw : {"filesystem error", "std::", "basic_", "terminate", "bad_"})
        if (contains(sentence, raw)) return false;
    // A tool's own words come last in these.
    const bool quotesTool = sentence.starts_with("launchctl refused: ") ||
                            sentence.starts_with("After the change, launchd reports something else: ");
    return sentence.ends_with('.') || quotesTool;
}

Goal goalOf(const Stage& stage, const Scene& scene) {
    Ready rig(stage, scene);
    for (const std::string& sentence : scene.perform(rig)) throw std::runtime_error(sentence);
    return reached(stage.world());
}

Attempt attempt(const Scene& scene, Rig& rig) {
    try {
        return {scene.perform(rig), std::nullopt};
    } catch (const EngineError& error) {
        return {{error.what()}, std::nullopt};
    } catch (const JournalError& error) {
        return {{error.what()}, std::nullopt};
    } catch (const AgentToggleError& error) {
        return {{error.what()}, std::nullopt};
    } catch (const std::exception& error) {
        return {{}, error.what()};
    }
}

Faults judgeAttempt(const Stage& stage, const Scene& scene, Rig& rig, const Attempt& made, bool troubleLasted,
                    const Goal& goal) try {
    Faults faults = checkSentences(stage, made);
    if (stage.isDamagedNow()) append(faults, attempt(scene, rig).sentences, "the next try: ");
    append(faults, checkRecorded(stage));
    const auto untold = rig.engine.untoldScriptTrouble();
    if (untold && !isClear(*untold, stage)) faults.push_back("no clear sentence: " + *untold);
    if (!made.succeeded()) append(faults, tryAgain(stage, scene, rig, goal));
    const Goal now = reached(stage.world());
    append(faults, differences(goal.condition, now.condition));
    if (now.activeTweaks != goal.activeTweaks) faults.push_back("not the entries of the goal are active");
    if (now.hasLeft != goal.hasLeft) faults.push_back("the journal is not where it was to be");
    // A script that can't be written at all says so, and is written with the next change.
    append(faults, made.succeeded() && untold && troubleLasted ? judgeProgram(stage, {}) : judge(stage, {}));
    return faults;
} catch (const std::exception& error) {
    return {std::string("afterwards: ") + error.what()};
}

}  // namespace brell::trust
