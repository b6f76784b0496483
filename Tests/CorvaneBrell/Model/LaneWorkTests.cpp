// The work of the lanes over the sample Mac, without a model and without a main loop.

#include <unistd.h>

#include <sstream>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/ChangeWork.h"
#include "CorvaneBrell/Model/ReadingWork.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "Tests/CorvaneBrell/SampleMacFixture.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Obstacles.h"
#include "Tests/Support/SystemCalls.h"

namespace brell::testing {

namespace {

const std::string duskwatch = "com.halverson.duskwatch";

class LaneWorkTest : public SampleMacTest {
protected:
    PendingApply wishFor(const std::string& id) const {
        const Tweak& tweak = *dependencies.catalog.tweak(id);
        return {tweak, tweak.targets(), std::nullopt, false};
    }
    Uuid made(const std::string& id) { return changes.apply(wishFor(id)).made.at(0).id; }
    Progress inTheTest() {
        return {Posted<Activity>([this](Activity activity) { told.push_back(std::move(activity)); }),
                [this] { return isEnding; }};
    }
    LaunchAgentRecord agent(const std::string& label) const {
        for (const LaunchAgentRecord& one : dependencies.reader.listUserAgents())
            if (one.label() == label) return one;
        throw std::runtime_error("no agent " + label);
    }

    std::ostringstream out;
    Dependencies dependencies{options, out};
    std::vector<Activity> told;
    bool isEnding = false;
    Progress progress = inTheTest();
    ChangeWork changes{dependencies, progress};
    ReadingWork readings{dependencies, progress};
};

}  // namespace

TEST_F(LaneWorkTest, AJobTellsItsStepsAndBeginsNoneOnceBrellEnds) {
    const DriftedEntry earlier{dependencies.journal->entry(made("dock.size")).value(), {}};
    const Uuid jpeg = made("shot.jpg");
    const AgentConfirmRequest switching = readings.agentConfirm({agent(duskwatch)}, false);
    const std::function<void()> jobs[] = {
        [&] {
            changes.applyPreset({{}, {{"dock.autohide", "", WouldChange{}}}, {}, {}});
        },
        [&] { changes.applyAgain({earlier}); }, [&] { changes.keepTheirs({earlier.entry.id}); },
        [&] { changes.switchAgents(switching); }, [&] { changes.restoreConfirmed({.others = {jpeg}}, {}); }};
    for (const auto& job : jobs) {
        SCOPED_TRACE(&job - jobs);
        progress = inTheTest();
        told.clear();
        const auto before = dependencies.journal->all();
        isEnding = true;
        job();
        EXPECT_EQ(dependencies.journal->all(), before);
        isEnding = false;
        job();
        EXPECT_EQ(told.at(0), (Activity{"", 0, 1}));
    }
}

TEST_F(LaneWorkTest, APartlyTickedDriftLeavesTheRestForAnotherUndo) {
    const Uuid replaced = made("finder.show_hidden");
    changes.restoreConfirmed({.others = {replaced}}, {});
    const SessionChange action{"two", {made("dock.autohide"), made("dock.size")}, {replaced}};
    writeFromOutside(autohide, "no");
    writeFromOutside(tileSize, 50);

    const ChangeOutcome asked = changes.undoAction(action);
    ASSERT_TRUE(asked.question);
    EXPECT_EQ(asked.question->entries.size(), 2u);
    writeFromOutside(autohide, "never");  // while the question is open
    const ChangeOutcome stale = changes.restoreConfirmed(*asked.question, {action.made[0]});
    ASSERT_TRUE(stale.question);
    EXPECT_EQ(stale.question->undoing, action);
    EXPECT_NE(stale.question->id, asked.question->id) << "which is another question";
    EXPECT_EQ(stored(autohide), StoredValue("never")) << "which nobody was asked about";
    const ChangeOutcome partly = changes.restoreConfirmed(*stale.question, {action.made[0]});
    EXPECT_EQ(stored(autohide), StoredValue(false));
    EXPECT_EQ(stored(tileSize), StoredValue(50)) << "not ticked";
    EXPECT_FALSE(partly.question) << "it was answered";

    const ChangeOutcome again = changes.undoAction(action);
    ASSERT_TRUE(again.question);
    ASSERT_EQ(again.question->entries.size(), 1u);
    EXPECT_EQ(again.question->entries[0].entry.id, action.made[1]);
    EXPECT_EQ(stored(showHidden), StoredValue::absent())
        << "what it restored waits until all of it is undone";
    for (const ChangeOutcome& unfinished : {asked, partly, again}) EXPECT_EQ(unfinished.undo, UndoNote());

    // Asked with the sheet that shows what the undo does; another one drifts while that is open.
    const Uuid dark = made("shot.jpg");
    const DriftRequest shown = readings.undoing({"three", {action.made[1], dark}, {}}).changes;
    EXPECT_EQ(shown.others, std::vector{dark});
    writeFromOutside({"com.apple.screencapture", "type"}, "tiff");
    const ChangeOutcome late = changes.restoreConfirmed(shown, {});
    ASSERT_TRUE(late.question);
    EXPECT_EQ(late.question->entries.front().entry.id, dark);
    EXPECT_EQ(stored(tileSize), StoredValue(50)) << "asked for, and not ticked";

    const ChangeOutcome whole = changes.restoreConfirmed(*again.question, {action.made[1]});
    EXPECT_EQ(stored(tileSize), StoredValue(41));
    EXPECT_EQ(stored(showHidden), StoredValue(true));
    ASSERT_EQ(whole.made.size(), 1u);
    EXPECT_EQ(whole.undo, (UndoNote{{}, action, {{replaced, whole.made[0].id}}}));
}

TEST_F(LaneWorkTest, WhatWaitsIsLeftWhenTheRestoreBeforeItFails) {
    const JournalEntry entry = dependencies.engine.apply(*dependencies.catalog.tweak("dock.size"));
    setContents(sample.preferences() / "com.apple.dock.plist", "damaged");
    const DriftRequest request{
        .entries = {driftedEntry(entry, readKeys(entry, dependencies.store), dependencies.catalog)},
        .pendingAfterDrift = wishFor("finder.show_hidden")};
    const ChangeOutcome outcome = changes.restoreConfirmed(request, {request.entries[0].entry.id});
    EXPECT_EQ(outcome.failures.size(), 1u);
    EXPECT_TRUE(outcome.made.empty());
    EXPECT_EQ(stored(showHidden), StoredValue::absent());
}

TEST_F(LaneWorkTest, ValuesThatAnUndoWritesAgainAreToldInOneLine) {
    JournalEntry entry = dependencies.journal->entry(made("dock.size")).value();
    entry.writes[0].written = PrefValue("a\n\u202Eb");
    entry.status = EntryStatus::restored;
    dependencies.journal->upsert(entry);
    EXPECT_EQ(readings.undoing({"", {}, {entry.id}}).steps.at(0).lines,
              Texts{"com.apple.dock tilesize: again \"a  b\""});

    const Uuid anew = made("dock.size");
    EXPECT_TRUE(readings.undoing({"", {}, {entry.id}}).steps.empty()) << "an undo leaves that as it is";
    EXPECT_EQ(readings.undoing({"", {anew}, {entry.id}}).steps.size(), 2u) << "which this one undoes first";
}

TEST_F(LaneWorkTest, WhatAnotherProgramPutBackMeanwhileIsNoFailureOfTheRest) {
    const Uuid size = made("dock.size"), jpeg = made("shot.jpg");
    Dependencies other(options, out);
    other.engine.restore(size, false);
    EXPECT_EQ(changes.restoreConfirmed({.others = {size, jpeg}}, {}).failures, Texts{});
    EXPECT_EQ(messageOf([&] { readings.restoring("", {size}); }), nothingToRestore);
    EXPECT_EQ(changes.restoreConfirmed({.others = {size, jpeg}}, {}).failures, Texts{nothingToRestore});
}

// Between the last look at it and the lock.
TEST_F(LaneWorkTest, WhatASheetDidNotShowIsNotOverwritten) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    const Uuid jpeg = made("shot.jpg");
    const SessionChange action{"size", {made("dock.size")}, {}};
    writeFromOutside(tileSize, 50);
    const DriftRequest undoing = changes.undoAction(action).question.value();
    for (const DriftRequest& shown : {undoing, DriftRequest{.entries = undoing.entries, .others = {jpeg}}}) {
        SCOPED_TRACE(shown.others.size());
        ChangeOutcome outcome;
        {
            const EachCall others(dependencies.journalDirectory(),
                                  before(SystemCall::flock, [&] { writeFromOutside(tileSize, 77); }));
            outcome = changes.restoreConfirmed(shown, {action.made[0]});
        }
        EXPECT_EQ(stored(tileSize), StoredValue(77));
        EXPECT_TRUE(outcome.restored.empty()) << "the answer was for all of it";
        EXPECT_EQ(outcome.question.value().entries.at(0).words, "Now 77, back to 41");
        writeFromOutside(tileSize, 50);
    }
}

TEST_F(LaneWorkTest, AnInterruptedAgentRunsWhatWasShownAndHoldsUpNoSetting) {
    JournalEntry agent =
        changes.switchAgents(readings.agentConfirm({this->agent(duskwatch)}, false)).made.at(0);
    agent.status = EntryStatus::capturing;
    dependencies.journal->upsert(agent);
    breakOff(dependencies.engine, *dependencies.catalog.tweak("dock.autohide"));
    std::optional<std::size_t> openWhenAsked;  // of launchd
    std::optional<ToolFault> fault = ToolFault::hanging();
    auto& tools = dynamic_cast<SimulatedTools&>(*dependencies.machine.runner);
    tools.interfere([&](const AllowedCommand&) {
        if (!openWhenAsked) openWhenAsked = dependencies.engine.interruptedEntries().size();
        return fault;
    });
    const RecoveryCommands shown = readings.recovering({agent});
    EXPECT_FALSE(openWhenAsked);
    EXPECT_EQ(changes.recover(shown).recoveryFailures->size(), 1u);
    EXPECT_EQ(openWhenAsked, 1u) << "the setting is back";

    fault.reset();
    openWhenAsked.reset();
    const RecoveryCommands other{{agent.id, {{"launchctl"}, {}}}};
    for (const RecoveryCommands& unseen : {RecoveryCommands(), other})
        EXPECT_EQ(changes.recover(unseen).recoveryFailures,
                  Texts{"Duskwatch is put back by other commands than were shown. Look at it again."});
    RecoveryCommands refused = shown;  // in the sheet; the reason may be gone by now
    refused.at(agent.id).refusal = "It stays.";
    EXPECT_EQ(changes.recover(refused).recoveryFailures, Texts{"It stays."});
    EXPECT_FALSE(openWhenAsked);
    EXPECT_EQ(changes.recover(shown).restored.size(), 1u);
}

TEST_F(LaneWorkTest, LaunchdIsAskedOnceForEachAgentThatASheetShows) {
    const AgentConfirmRequest both =
        readings.agentConfirm({agent(duskwatch), agent("com.lumenfold.sync")}, false);
    std::vector<DriftedEntry> made;
    for (const JournalEntry& entry : changes.switchAgents(both).made) made.push_back({entry, {}});
    std::size_t asked = 0;
    std::optional<ToolFault> fault;
    auto& tools = dynamic_cast<SimulatedTools&>(*dependencies.machine.runner);
    tools.interfere([&](const AllowedCommand&) { return ++asked, fault; });
    const std::vector<Uuid> ids{made[0].entry.id, made[1].entry.id};
    EXPECT_EQ(readings.restoring("", ids).changes.others.size(), 2u);
    EXPECT_EQ(asked, 3u) << "the overrides and each agent";

    fault = ToolFault::hanging();
    const RestoreStep unknown = readings.restoring("", ids).steps.at(0);
    EXPECT_EQ(asked, 4u) << "not again by the next agent";
    EXPECT_NE(unknown.words.find("Not known whether it can be put back: "), std::string::npos);
    EXPECT_EQ(unknown.lines.at(0).find("/bin/launchctl enable"), 0u);

    made[0].entry.agent->plistPath = "/elsewhere/a.plist";
    dependencies.journal->upsert(made[0].entry);
    const std::vector<DriftedEntry> known = readings.driftedAgents();
    ASSERT_EQ(known.size(), 1u) << "what launchd is not needed for";
    EXPECT_EQ(known[0].refusal, "/elsewhere/a.plist is outside your LaunchAgents folder.");

    fault.reset();
    const RestoreRequest again = readings.applyingAgain(made);
    EXPECT_EQ(again.again, std::vector{made[1]});
    EXPECT_EQ(again.steps[0].lines,
              Texts{"No command: /elsewhere/a.plist is outside your LaunchAgents folder."});
    EXPECT_EQ(messageOf([&] { readings.applyingAgain({made[0]}); }),
              again.steps[0].title +
                  " can't be applied again. /elsewhere/a.plist is outside your LaunchAgents folder.");
}

TEST_F(LaneWorkTest, LoginItemsAreToldAsTheyAreRead) {
    std::vector<LoginItems> soFar;
    const Posted<LoginItems> show([&](LoginItems known) { soFar.push_back(std::move(known)); });
    const LoginItems items = readings.loginItems(show, {true});
    ASSERT_EQ(soFar.size(), 2u) << "from the files, with launchd's answers";
    EXPECT_FALSE(soFar[1].tasks);
    EXPECT_TRUE(items.tasks);
    EXPECT_GT(items.rows.size(), soFar[1].rows.size());
    Texts whats;
    for (const Activity& activity : told)
        if (whats.empty() || whats.back() != activity.what) whats.push_back(activity.what);
    EXPECT_EQ(whats, (Texts{"Reading the LaunchAgents", "Asking launchd about each LaunchAgent",
                            "Reading macOS's list of background items"}));

    std::map<std::optional<bool>, int> allowed;
    for (const LoginItemRow& row : items.rows) ++allowed[row.allowedInSystemSettings];
    EXPECT_EQ(allowed, (std::map<std::optional<bool>, int>{{std::nullopt, 12}, {false, 2}, {true, 11}}));
    const auto factsOf = [&](const char* file) { return items.facts.at(sample.launchAgents() / file); };
    EXPECT_EQ(items.facts.size(), 3u) << "of the others there is nothing to tell";
    EXPECT_EQ(factsOf("org.fernwright.notes.plist"),
              (JobFacts{"/Applications/Fernwright Notes.app/Contents/MacOS/quicknote", {}, {}}));
    EXPECT_EQ(factsOf("com.google.keystone.agent.plist"), (JobFacts{{}, {"Google Chrome"}, {}}));

    fs::remove(SampleContents::taskDumpFile(sample.systemRoot()));
    EXPECT_EQ(readings.loginItems(show, {false, items.tasks}).rows, items.rows) << "as it was read before";
    EXPECT_EQ(soFar[2].rows.size(), items.rows.size()) << "in the meantime, too";
    EXPECT_EQ(readings.loginItems({}, {}).rows, soFar[1].rows);

    const fs::path theirs = sample.launchAgents() / "untitled.plist";
    if (::geteuid() == 0 && ::chown(theirs.c_str(), 12345, 12345) == 0) {
        EXPECT_EQ(readings.loginItems({}, {}).facts.at(theirs).otherOwner, 12345u);
    }
}

// Any installer may leave a job file.
TEST_F(LaneWorkTest, WhatAJobFileSaysIsToldInOneLineAndCut) {
    const std::string evil = "Apple&#10;\u202E" + std::string(3'000'000, 'x');
    const fs::path file = sample.launchAgents() / "a\n\u202E.plist";
    setContents(file, jobFile(evil, "<key>Program</key><string>" + evil.substr(0, 900'000) + "</string>"));
    fs::create_directories(sample.systemRoot() / "Volumes" / "a\n\u202E");
    const LoginItems items = readings.loginItems({}, {});
    const auto row = std::find_if(items.rows.begin(), items.rows.end(), [&](const LoginItemRow& one) {
        return one.record && one.record->id() == file;
    });
    ASSERT_NE(row, items.rows.end());
    EXPECT_GT(row->record->label()->size(), 3'000'000u) << "what is compared stays exact";
    const AgentConfirmRequest refused = readings.agentConfirm({*row->record}, false);
    LaunchAgentRecord renamed = *row->record;
    renamed.plist.label = "com.example.other";
    const AgentConfirmRequest other = readings.agentConfirm({renamed}, false);
    for (const std::string& text :
         {row->title, row->subtitle, row->explanation.app, row->explanation.what,
          items.refusals.at(file.string()), refused.refusals.at(0), other.refusals.at(0),
          readings.volumes(Posted<Volumes>([](const Volumes&) {})).back().volume}) {
        EXPECT_EQ(text, oneLine(text));
        EXPECT_LT(text.size(), 1300u) << text.substr(0, 60);
    }
}

TEST_F(LaneWorkTest, AFirstReadingOfTheTaskListEndsWithThePatienceOfTheUser) {
    const auto isCancelled = std::make_shared<std::atomic<bool>>(false);
    EXPECT_TRUE(readings.firstTaskList(isCancelled));
    auto& tools = dynamic_cast<SimulatedTools&>(*dependencies.machine.runner);
    tools.failNext(AllowedCommand::Kind::sfltoolDumpBTM, ToolFault::hanging());
    *isCancelled = true;
    EXPECT_FALSE(readings.firstTaskList(isCancelled));
}

TEST_F(LaneWorkTest, AFileIsSavedOnlyWhereAnOrdinaryOneMayStand) {
    const Preset preset = Presets::shipped().back();
    const fs::path elsewhere = folder.path / "elsewhere", file = folder.path / "mine.corvanepreset";
    setContents(elsewhere / "victim", PresetFile::encode(preset));
    for (const Obstacle obstacle : obstacles) {
        SCOPED_TRACE(nameOf(obstacle));
        place(obstacle, file, elsewhere);
        const auto before = everythingIn(elsewhere);
        const std::string unread = messageOf([&] { readings.preset(file); });
        EXPECT_EQ(unread.empty(), obstacle == Obstacle::linkToFile);
        EXPECT_TRUE(unread.empty() || unread.find(file.string()) != std::string::npos) << unread;

        const std::string unsaved = messageOf([&] { readings.savePreset(file, preset); });
        EXPECT_EQ(unsaved, obstacle == Obstacle::huge
                               ? ""
                               : file.string() + " is not an ordinary file; choose another name.");
        EXPECT_EQ(everythingIn(elsewhere), before);
        EXPECT_EQ(namesIn(folder.path), (Names{"elsewhere", "mac", "mine.corvanepreset"}));
    }
    EXPECT_EQ(contentsOf(file), PresetFile::encode(preset)) << "in place of the huge one";
    const fs::path unnamed = folder.path / std::string(300, 'x');
    EXPECT_EQ(messageOf([&] { readings.savePreset(unnamed, preset); }),
              unnamed.string() + " could not be saved: " + systemMessage(ENAMETOOLONG) + ".");
}

TEST_F(LaneWorkTest, AFileIsSavedOverNothingOfTheJournal) {
    made("dock.autohide");
    const fs::path journal = dependencies.journalDirectory();
    const auto before = everythingIn(journal);
    fs::create_directory_symlink(journal, folder.path / "link");
    for (const char* name :
         {"../../../../../../link/journal.json", "history/report.md", "../Corvane Brell/.relaunches.lock",
          "journal.json", "Restore.sh", "history", ".journal.lock", "dry-run.txt", "journal.json.rebuilding",
          "journal.json.damaged-2026-01-02-030405", "journal.json.before-2026-01-02-030405",
          "restore.sh.before-2026-01-02-030405-2"}) {
        const fs::path file = journal / name;
        EXPECT_EQ(messageOf([&] { readings.saveReport(file); }),
                  file.string() + " belongs to Brell's journal; choose another name.");
        EXPECT_EQ(everythingIn(journal), before);
    }
    readings.saveReport(journal / "report.md");
    EXPECT_NE(contentsOf(journal / "report.md").find("Hide the Dock automatically"), std::string::npos);
}

TEST_F(LaneWorkTest, AReportSaysFirstThatChangesAreMissingFromIt) {
    made("dock.size");
    const fs::path journal = dependencies.journalDirectory(), file = folder.path / "report.md";
    const std::string older = contentsOf(journal / "journal.json");
    made("dock.autohide");
    const std::string lack =
        "\n\nChanges are missing from this report: " + (journal / "restore.sh").string() +
        " undoes changes that the journal does not know.\n\n## Summary\n";
    readings.saveReport(file);
    EXPECT_EQ(contentsOf(file).find("missing"), std::string::npos);
    setContents(journal / "journal.json", older);
    Dependencies opened(options, out);
    ReadingWork(opened, progress).saveReport(file);
    EXPECT_NE(contentsOf(file).find(lack), std::string::npos) << contentsOf(file).substr(0, 400);
}

}  // namespace brell::testing
