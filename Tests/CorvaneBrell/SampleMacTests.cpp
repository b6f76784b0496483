#include "CorvaneBrell/SampleMac/SampleMac.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "BrellCore/Background/BTMReader.h"
#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Review/Spotlight.h"
#include "Tests/Support/Testing.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using testing::contentsOf;
using testing::messageOf;
using testing::setContents;
using testing::TemporaryFolder;
using testing::thrownBy;
using Command = AllowedCommand;

struct SampleMacTest : ::testing::Test {
    std::string ask(const Command& command) { return tools->run(command).stdoutText; }
    std::pair<int, std::string> change(const Command& command) {
        const CommandResult result = tools->run(command);
        EXPECT_EQ(result.stdoutText, "");
        return {result.exitCode, result.stderrText};
    }
    LoadedState loaded(const std::string& label) {
        return LaunchctlParser::parsePrint(tools->run(Command::launchctlPrint("gui/501/" + label)));
    }
    std::string fileOf(const std::string& label) const {
        return (mac.launchAgents() / (label + ".plist")).string();
    }

    TemporaryFolder folder;
    SampleMac mac{folder.path / "mac"};
    std::unique_ptr<SimulatedTools> tools = mac.openTools();
};

// Every file and link below a folder, with what it holds.
std::map<std::string, std::string> everythingIn(const fs::path& folder) {
    std::map<std::string, std::string> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().lexically_relative(folder).string();
        if (entry.is_symlink())
            found[name] = "-> " + fs::read_symlink(entry.path()).string();
        else if (entry.is_regular_file())
            found[name] = contentsOf(entry.path());
    }
    return found;
}

// Toggleable, admin only or in the system's settings; "!" for crash-looping; on; allowed, if that is known:
// "t 1y Title | subtitle".
std::string line(const LoginItemRow& row) {
    const std::string allowed = row.allowedInSystemSettings ? *row.allowedInSystemSettings ? "y" : "n" : "?";
    return std::string(1, "tas"[static_cast<int>(row.badge)]) + (row.isCrashLooping ? "!" : " ") +
           (row.isOn ? "1" : "0") + allowed + " " + row.title + " | " + row.subtitle;
}

TEST_F(SampleMacTest, HasAnItemForEveryStateThatTheListCanShow) {
    const LaunchAgentReader reader{*tools, mac.home(), SampleMac::uid, mac.systemRoot()};
    std::vector<std::string> lines;
    for (const LoginItemRow& row :
         LoginItemsMerger::merge(reader.userAgents(), reader.systemAgents(),
                                 BTMReader{*tools, [] { return SampleMac::isAdmin; }}.dump(), SampleMac::uid))
        lines.push_back(line(row));
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "t 1? Duskwatch | com.halverson.duskwatch · at login, kept running",
                         "t 1? Fernwright Notes | org.fernwright.notes · on demand",
                         "t 1y Google apps (Chrome, Drive) | com.google.keystone.agent · every 3600 s",
                         "t 1? helper | com.apple.cleanup-helper · at login",
                         "t 1? Homebrew service | homebrew.mxcl.postgresql@16 · at login, kept running",
                         "t 1y Homebrew service | homebrew.mxcl.redis · at login, kept running",
                         "t 1y Lumenfold Sync | com.lumenfold.sync · at login, kept running",
                         "t 1? pebble-index | com.pebblewick.indexer · at login, on a schedule",
                         "t 1? quillmark | io.quillmark.backup · on a schedule",
                         "t 1? sh | com.saltmarsh.watcher · at login, kept running",
                         "t 0y Spotify | com.spotify.client.startuphelper · at login",
                         "t 0? Tallowgate | com.tallowgate.agent · at login, kept running",
                         "t!1? telemetry | com.orrerylabs.telemetry · at login, kept running",
                         "t 1? Verdigris Relay | io.verdigris.relay · at login, every 900 s, kept running",
                         "t 1y Zoom | us.zoom.updater · every 86400 s",
                         "a 1n Duskwatch | com.halverson.duskwatch.menu · at login",
                         "a 1y duskwatchd | com.halverson.duskwatchd · at login, kept running",
                         "a 1? Microsoft apps (Office, OneDrive) | com.microsoft.update.agent · every 7200 s",
                         "a 1y Printer Setup Helper | Ashgrove Print GmbH · background daemon",
                         "a 0y Security software | com.malwarebytes.guard · kept running",
                         "s 1n Lumenfold Helper | Lumenfold · login item",
                         "s 1y Lumenfold Sync | Lumenfold · app",
                         "s 1y Marginalia | Ines Okonjo · login item",
                         "s 1y nameless | untitled.plist · at login",
                         "s 1? Unknown | org.millrace.feeds.plist · on demand"}));
}

TEST_F(SampleMacTest, ReadsAgentsOfEveryKind) {
    const LaunchAgentReader reader{*tools, mac.home(), SampleMac::uid, mac.systemRoot()};
    std::map<std::string, LaunchAgentRecord> records;
    for (LaunchAgentRecord& record : reader.userAgents())
        records.emplace(fs::path(record.plist.path).stem().string(), std::move(record));
    EXPECT_EQ(records.size(), 17u);

    using Loaded = LoadedState;
    const auto running = [](std::int64_t runs, std::optional<std::int64_t> exit, std::int64_t pid) {
        return Loaded{Loaded::Kind::loaded, "running", runs, exit, pid};
    };
    EXPECT_EQ(records.at("com.orrerylabs.telemetry").loaded,
              (Loaded{Loaded::Kind::loaded, "spawn scheduled", 2214, 78, {}}));
    EXPECT_EQ(records.at("com.saltmarsh.watcher").loaded, running(2, 1, 1033));  // not as its script says
    EXPECT_EQ(records.at("com.saltmarsh.watcher").plist.arguments.size(), 3u);
    EXPECT_EQ(records.at("com.tallowgate.agent").loaded, running(1, {}, 702));
    EXPECT_EQ(records.at("com.tallowgate.agent").override, AgentOverride::disabled);
    EXPECT_EQ(records.at("us.zoom.updater").override, AgentOverride::enabled);
    EXPECT_EQ(records.at("org.fernwright.notes").loaded, Loaded::notLoaded());
    EXPECT_TRUE(records.at("homebrew.mxcl.postgresql@16").loaded.isUnknown());
    EXPECT_TRUE(records.at("untitled").loaded.isUnknown());

    const LaunchAgentPlist& binary = records.at("io.verdigris.relay").plist;
    EXPECT_EQ(binary.executable(), "/Applications/Verdigris Relay.app/Contents/MacOS/relay");
    EXPECT_EQ(binary.trigger(), "at login, every 900 s, kept running");
    EXPECT_EQ(binary.associatedBundleIDs, std::vector<std::string>{"io.verdigris.app"});
    EXPECT_EQ(records.at("com.google.keystone.agent").plist.associatedBundleIDs,
              std::vector<std::string>{"com.google.Chrome"});
    EXPECT_EQ(records.at("io.quillmark.backup").plist.trigger(), "on a schedule");
    EXPECT_TRUE(fs::is_symlink(fileOf("io.quillmark.backup")));
}

TEST_F(SampleMacTest, HasVolumesInEveryStateOfTheIndex) {
    const std::vector<VolumeIndexStatus> expected{
        {"/", true, "Indexing enabled."},
        {"/Volumes/Archive", false, "Indexing disabled."},
        {"/Volumes/Field Recordings", true, "Indexing enabled."},
        {"/Volumes/Time Vault", std::nullopt, "Error: unknown indexing state."}};
    EXPECT_EQ(SpotlightStatusReader{*tools}.statuses(SpotlightStatusReader::mountedVolumes(mac.systemRoot())),
              expected);
    EXPECT_EQ(tools->run(Command::mdutilStatus("/Volumes/Gone")),
              (CommandResult{1, "Error: could not resolve path `/Volumes/Gone'.\n", ""}));
}

TEST_F(SampleMacTest, AnswersLikeLaunchctl) {
    const std::string on = "homebrew.mxcl.redis";
    const std::string off = "com.spotify.client.startuphelper";
    const auto bootstrap = [&](const std::string& file) {
        return change(Command::launchctlBootstrap("gui/501", file));
    };
    const auto bootout = [&](const std::string& label) {
        return change(Command::launchctlBootout("gui/501", label));
    };
    const std::pair<int, std::string> done{0, ""};
    const std::pair<int, std::string> inputOutput{5, "Bootstrap failed: 5: Input/output error\n"};

    EXPECT_EQ(bootstrap(fileOf(on)), (std::pair{17, std::string("Bootstrap failed: 17: File exists\n")}));
    EXPECT_EQ(bootstrap(fileOf(off)), inputOutput);
    EXPECT_EQ(bootstrap(fileOf("com.example.missing")), inputOutput);
    EXPECT_EQ(bootstrap(fileOf("org.millrace.feeds")), inputOutput);
    EXPECT_EQ(bootstrap("/Library/LaunchAgents/of.another.mac.plist"), inputOutput);
    EXPECT_EQ(bootout(off), (std::pair{3, std::string("Boot-out failed: 3: No such process\n")}));
    EXPECT_EQ(
        tools->run(Command::launchctlPrint("gui/501/" + off)),
        (CommandResult{
            113, "", "Bad request.\nCould not find service \"" + off + "\" in domain for user gui: 501\n"}));

    EXPECT_EQ(change(Command::launchctlDisable("gui/501", on)), done);
    EXPECT_TRUE(loaded(on).isLoaded());
    EXPECT_EQ(bootout(on), done);
    EXPECT_EQ(bootstrap(fileOf(on)), inputOutput);
    EXPECT_EQ(change(Command::launchctlEnable("gui/501", on)), done);
    EXPECT_EQ(bootstrap(fileOf(on)), done);
    EXPECT_EQ(loaded(on).runs, 1);
    EXPECT_EQ(LaunchctlParser::parsePrintDisabled(ask(Command::launchctlPrintDisabled("gui/501"))).at(on),
              AgentOverride::enabled);

    for (const std::string domain : {"gui/502", "user/501"}) {
        EXPECT_EQ(tools->run(Command::launchctlPrint(domain + "/" + on)).exitCode, 112);
        EXPECT_EQ(tools->run(Command::launchctlPrintDisabled(domain)).exitCode, 112);
        EXPECT_EQ(change(Command::launchctlBootout(domain, on)).first, 125);
        EXPECT_EQ(change(Command::launchctlBootstrap(domain, fileOf(on))).first, 125);
        EXPECT_EQ(change(Command::launchctlDisable(domain, on)).first, 125);
    }
    EXPECT_TRUE(loaded(on).isLoaded());
    EXPECT_EQ(messageOf([&] { tools->run(Command::launchctlEnable("gui/501", "two words")); }),
              "Refused to run a command with an invalid label two words.");
}

TEST_F(SampleMacTest, ASlowJobStaysListedForItsNumberOfAsks) {
    const std::string slow = "com.pebblewick.indexer";
    EXPECT_EQ(change(Command::launchctlBootout("gui/501", slow)),
              (std::pair{36, std::string("Boot-out failed: 36: Operation now in progress\n")}));
    for (int ask = 0; ask < 6; ++ask) {
        EXPECT_EQ(loaded(slow).state, "SIGTERMed") << ask;
        EXPECT_EQ(change(Command::launchctlBootstrap("gui/501", fileOf(slow))).first, 5);
        tools = mac.openTools();  // another process asks on
    }
    EXPECT_EQ(loaded(slow), LoadedState::notLoaded());
    EXPECT_EQ(change(Command::launchctlBootstrap("gui/501", fileOf(slow))).first, 0);
    EXPECT_EQ(loaded(slow).state, "running");
}

TEST_F(SampleMacTest, TheSameCommandsOnTwoMacsGiveTheSameAnswersAndFiles) {
    const SampleMac twin(folder.path / "twin");
    const auto twinTools = twin.openTools();
    EXPECT_EQ(everythingIn(mac.systemRoot()), everythingIn(twin.systemRoot()));

    const std::string label = "com.lumenfold.sync";
    const auto script = [&](const SampleMac& on) {
        return std::vector{Command::launchctlBootout("gui/501", label),
                           Command::launchctlBootout("gui/501", label),
                           Command::launchctlPrint("gui/501/" + label),
                           Command::launchctlEnable("gui/501", label),
                           Command::launchctlBootstrap(
                               "gui/501", (on.launchAgents() / "org.fernwright.notes.plist").string()),
                           Command::launchctlPrint("gui/501"),
                           Command::launchctlPrintDisabled("gui/501"),
                           Command::sfltoolDumpBTM()};
    };
    const auto commands = script(mac);
    const auto twinCommands = script(twin);
    for (std::size_t i = 0; i < commands.size(); ++i) {
        CommandResult twinAnswer = twinTools->run(twinCommands[i]);
        const std::string root = twin.systemRoot().string();
        for (std::size_t at; (at = twinAnswer.stdoutText.find(root)) != std::string::npos;)
            twinAnswer.stdoutText.replace(at, root.size(), mac.systemRoot().string());
        EXPECT_EQ(tools->run(commands[i]), twinAnswer) << commands[i].rendered();
    }
    EXPECT_EQ(everythingIn(mac.systemRoot()), everythingIn(twin.systemRoot()));
}

TEST_F(SampleMacTest, LeavesWhatIsThereAsItIs) {
    change(Command::launchctlBootout("gui/501", "homebrew.mxcl.redis"));
    fs::remove(fileOf("us.zoom.updater"));
    setContents(fileOf("com.google.keystone.agent"), "edited");
    const auto before = everythingIn(mac.systemRoot());
    SampleMac(mac.systemRoot());
    EXPECT_EQ(everythingIn(mac.systemRoot()), before);

    // A folder of the days when there were only preferences gets the rest.
    const fs::path older = folder.path / "older";
    setContents(older / "Users/sam/Library/Preferences/com.apple.dock.plist", "mine");
    SampleMac opened(older);
    EXPECT_EQ(contentsOf(opened.preferences() / "com.apple.dock.plist"), "mine");
    EXPECT_FALSE(fs::exists(opened.preferences() / "com.apple.finder.plist"));
    EXPECT_EQ(contentsOf(SimulatedLaunchd::stateFile(opened.systemRoot())),
              contentsOf(SimulatedLaunchd::stateFile(SampleMac(folder.path / "new").systemRoot())));
}

TEST_F(SampleMacTest, SaysThatItsStateIsDamagedAndKeepsIt) {
    const fs::path file = SimulatedLaunchd::stateFile(mac.systemRoot());
    const std::string whole = contentsOf(file);
    std::string otherType = whole;
    otherType.replace(otherType.find("<integer>"), 9, "<string>");
    otherType.replace(otherType.find("</integer>"), 10, "</string>");
    for (const std::string& damaged : {whole.substr(0, whole.size() / 2), std::string(),
                                       std::string("<plist><dict/></plist>"), otherType}) {
        setContents(file, damaged);
        const auto error =
            thrownBy<CommandError>([&] { tools->run(Command::launchctlDisable("gui/501", "a")); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->failure().problem, CommandProblem::cannotStart);
        EXPECT_EQ(contentsOf(file), damaged);
    }
}

TEST_F(SampleMacTest, GoesWrongOnRequest) {
    const std::string label = "homebrew.mxcl.redis";
    const auto disable = Command::launchctlDisable("gui/501", label);
    const auto isDisabled = [&] {
        return ask(Command::launchctlPrintDisabled("gui/501")).find("\"" + label + "\" => disabled") !=
               std::string::npos;
    };
    tools->failNext(disable.kind, ToolFault::refusing(150, "no"));
    tools->failNext(disable.kind, ToolFault::hanging());
    tools->failNext(disable.kind, ToolFault::lying());
    tools->failNext(disable.kind, ToolFault::hangingAfterwards());
    EXPECT_EQ(tools->run(disable), (CommandResult{150, "", "no"}));
    const std::string stopped =
        "The command did not finish in time and was stopped: " + disable.rendered() + ".";
    EXPECT_EQ(messageOf([&] { tools->run(disable); }), stopped);
    EXPECT_TRUE(tools->run(disable).succeeded());
    EXPECT_FALSE(isDisabled());
    EXPECT_EQ(messageOf([&] { tools->run(disable); }), stopped);
    EXPECT_TRUE(isDisabled());
}

}  // namespace
}  // namespace brell
