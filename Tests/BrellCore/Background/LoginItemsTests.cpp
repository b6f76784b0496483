#include "BrellCore/Background/LoginItems.h"

#include <gtest/gtest.h>

#include "BrellCore/Background/CollationKey.h"
#include "BrellCore/Background/JobPath.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

constexpr std::uint32_t uid = 501;

LaunchAgentRecord record(std::optional<std::string> label, const std::string& path,
                         AgentScope scope = AgentScope::user) {
    LaunchAgentRecord made{{}, scope, AgentOverride::absent, LoadedState::unknown()};
    made.plist.path = path;
    made.plist.label = std::move(label);
    return made;
}

LaunchAgentRecord agent(const std::string& label) {
    return record(label, "/Users/jo/Library/LaunchAgents/" + label + ".plist");
}

BTMItem item(std::string id, BTMItemType type = BTMItemType::legacyAgent, std::optional<std::string> url = {},
             std::optional<std::string> bundleID = {}) {
    BTMItem made;
    made.id = std::move(id);
    made.type = type;
    made.url = std::move(url);
    made.bundleID = std::move(bundleID);
    return made;
}

std::vector<LoginItemRow> merge(const std::vector<LaunchAgentRecord>& user, std::vector<BTMItem> items,
                                const std::vector<LaunchAgentRecord>& system = {}) {
    const BTMDump dump{{{uid, std::move(items)}}};
    return LoginItemsMerger::merge(user, system, &dump, uid);
}

// Each row as the record's label, an arrow and the id of its item.
std::vector<std::string> pairs(const std::vector<LoginItemRow>& rows) {
    std::vector<std::string> texts;
    for (const LoginItemRow& row : rows)
        texts.push_back((row.record ? row.record->label().value_or("?") : "") + ">" +
                        (row.btm ? row.btm->id : ""));
    return texts;
}

using testing::Texts;

// A row's words, in one line.
std::string told(const LoginItemRow& row) {
    constexpr const char* badges[] = {"switch", "admin", "app"};
    std::string text = row.title + " | " + row.subtitle + " | " + badges[static_cast<int>(row.badge)] +
                       (row.isOn ? ", on" : ", off");
    if (row.allowedInSystemSettings) text += *row.allowedInSystemSettings ? ", allowed" : ", not allowed";
    return text;
}

TEST(LoginItemsMerger, MatchesByIdentifierFileOrBundle) {
    const std::string file = "/Users/jo/Library/LaunchAgents/a b.plist";
    const auto jo = record("com.example.a", file), unlabelled = record({}, file);
    const auto agentType = BTMItemType::legacyAgent;
    const auto matches = [](const LaunchAgentRecord& user, const BTMItem& known) {
        return merge({user}, {known}).size() == 1;
    };
    for (const Texts& row : testing::sampleRows("LoginItems/urls.txt"))
        EXPECT_EQ(matches(jo, item("x", agentType, row[0])), row[1] == "matches") << row[0];
    EXPECT_TRUE(matches(jo, item("12.com.example.a")));
    EXPECT_TRUE(matches(jo, item("12.com.example.a", BTMItemType::other)));
    EXPECT_FALSE(matches(jo, item("12.com.example.a", BTMItemType::app)));
    EXPECT_TRUE(matches(jo, item("x", agentType, {}, "com.example.a")));
    EXPECT_TRUE(matches(unlabelled, item("x", agentType, file)));
    EXPECT_FALSE(matches(unlabelled, item("", agentType, {}, "")));
    EXPECT_FALSE(matches(record("", file), item("12.", agentType, {}, "")));
    const std::string daemonFile = "/Library/LaunchDaemons/d.plist";
    const auto daemon = record("com.example.d", daemonFile, AgentScope::systemDaemon);
    EXPECT_EQ(merge({}, {item("x", BTMItemType::legacyDaemon, daemonFile)}, {daemon}).size(), 1u);
}

TEST(LoginItemsMerger, TakesTheFirstItemThatIsLeftForEachRecordInTurn) {
    // The bundle matches earlier in the dump than the identifier: the dump's order decides.
    EXPECT_EQ(
        pairs(merge({agent("a"), agent("a"), agent("a")}, {item("other", BTMItemType::legacyAgent, {}, "a"),
                                                           item("1.a"), item("2.a", BTMItemType::app)})),
        (Texts{"a>other", "a>1.a", "a>", ">2.a"}));

    // The user's own section comes before those of the machine, whatever their numbers.
    const BTMDump dump{{{0, {item("0.a")}}, {-2, {item("2.a")}}, {uid, {item("5.a")}}, {502, {item("9.a")}}}};
    EXPECT_EQ(pairs(LoginItemsMerger::merge({agent("a"), agent("a"), agent("a")}, {}, &dump, uid)),
              (Texts{"a>5.a", "a>2.a", "a>0.a"}));
}

TEST(LoginItemsMerger, LeavesOutWhatIsNobodysBusinessAndRepetitions) {
    const auto rows =
        merge({agent("com.corvane.brell"), agent("com.corvane.brell.x"), agent("com.corvane.brellx")},
              {item("developer", BTMItemType::developer), item("tile", BTMItemType::dockTile),
               item("look", BTMItemType::quicklook), item("spot", BTMItemType::spotlight),
               item("vendor", BTMItemType::app, {}, "com.apple.x"), item("3.com.apple.y"),
               item("hidden by its label com.apple.", BTMItemType::app, {}, "com.corvane.brell.y"),
               item("4.com.apple.z", BTMItemType::app, {}, "com.example.z"), item("twice"),
               item("twice", BTMItemType::app)});
    EXPECT_EQ(pairs(rows), (Texts{"com.corvane.brellx>", ">twice"}));
}

TEST(LoginItemsMerger, TellsAboutARecord) {
    LaunchAgentRecord looping = agent("com.example.tool");
    looping.plist.program = "/Applications/Tool.app/Contents/MacOS/tool";
    looping.plist.runAtLoad = true;
    looping.loaded = {LoadedState::Kind::loaded, "spawn scheduled", 5, 78, {}};
    looping.override = AgentOverride::disabled;
    BTMItem known = item("7.com.example.tool");
    known.enabled = true;
    known.allowed = false;

    const LoginItemRow expected{"user:/Users/jo/Library/LaunchAgents/com.example.tool.plist",
                                "Tool",
                                "com.example.tool · at login",
                                LoginItemBadge::toggleable,
                                looping,
                                known,
                                AgentExplainer::explain("com.example.tool", {}, looping.plist.program),
                                true,
                                false,
                                false};  // the override counts for the user's own, not the item's switch
    EXPECT_EQ(merge({looping}, {known}), std::vector{expected});

    const auto daemon =
        record("com.example.tool", "/Library/LaunchDaemons/x.plist", AgentScope::systemDaemon);
    known.enabled = false;
    EXPECT_EQ(told(merge({}, {known}, {daemon}).front()),
              "com.example.tool | com.example.tool · on demand | admin, off, not allowed");
    for (const std::optional<std::string>& noLabel :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        const LaunchAgentRecord unlabelled = record(noLabel, "/Users/jo/Library/LaunchAgents/y.plist");
        EXPECT_EQ(told(LoginItemsMerger::merge({unlabelled}, {}, nullptr, uid).front()),
                  "Unknown | y.plist · on demand | app, on");
    }

    LaunchAgentRecord linked = record({}, "/Users/jo/Library/LaunchAgents/z.plist");
    linked.plist.leadsTo = "/Users/jo/Documents/z.plist";
    const LoginItemRow link = LoginItemsMerger::merge({linked}, {}, nullptr, uid).front();
    EXPECT_EQ(told(link), "z | z.plist · a link to /Users/jo/Documents/z.plist | app, on");
    EXPECT_EQ(
        link.explanation.what,
        "A link to /Users/jo/Documents/z.plist. Brell does not look behind it, so that macOS need not ask "
        "you about that folder.");
}

TEST(LoginItemsMerger, TellsAboutAnItemThatLaunchdDoesNotKnow) {
    BTMItem app = item("2.com.example.app", BTMItemType::loginItem, "file:///Applications/Ex%20ample.app/");
    app.name = app.developer = app.bundleID = "";  // as good as not told
    BTMItem helper =
        item("8.com.example.helper", BTMItemType::legacyDaemon, "/Library/LaunchDaemons/h.plist");
    helper.name = "Helper";
    helper.developer = "Example Corp";
    helper.enabled = true;
    const auto rows = merge({}, {app, helper});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(told(rows[0]), "Helper | Example Corp · background daemon | admin, on, allowed");
    EXPECT_EQ(rows[0].explanation.what, "A background item with no program listed.");
    EXPECT_EQ(told(rows[1]), "Ex ample | com.example.app · login item | app, off, allowed");
}

TEST(LoginItemsMerger, SortsByBadgeThenTitleWithoutCaseThenID) {
    const auto named = [](std::string id, std::string name, std::optional<std::string> url = {}) {
        BTMItem made = item(std::move(id), BTMItemType::app, std::move(url));
        made.name = std::move(name);
        return made;
    };
    EXPECT_EQ(pairs(merge({agent("z")},
                          {named("1", "zebra"), named("2", "Äpfel"), named("3", "apfel"), named("5", "Beta"),
                           named("4", "beta"), named("6", "zz", "file:///Library/x.app")})),
              (Texts{"z>", ">6", ">3", ">2", ">4", ">5", ">1"}));
}

TEST(CollationKey, OrdersTextForPeople) {
    const std::vector<std::string> ordered{"",        "a b",         "ab",       "ABc", "ec", "\u00E9clair",
                                           "Eclipse", "stra\u00DFe", "Strasses", "\xFF"};
    for (std::size_t i = 1; i < ordered.size(); ++i)
        EXPECT_LT(collationKey(ordered[i - 1]), collationKey(ordered[i])) << ordered[i];
    EXPECT_EQ(collationKey("\xC3\x89T\xC3\x89"), collationKey("e\xCC\x81t\xC3\xA9"));
}

TEST(ResolvedPath, MeansWhatTheSystemWouldOpen) {
    const testing::TemporaryFolder folder;
    const std::filesystem::path root = std::filesystem::canonical(folder.path);
    std::filesystem::create_directories(root / "far/inside");
    std::filesystem::create_directory_symlink("far/inside", root / "link");
    std::filesystem::create_directory_symlink("nowhere", root / "dead");
    EXPECT_EQ(resolvedPath(root / "link/../missing.plist"), root / "far/missing.plist");
    EXPECT_EQ(resolvedPath(root / "dead/../far"), root / "dead/../far") << "there is no such folder";
    EXPECT_EQ(resolvedPath(root / "dead"), root / "dead");
    EXPECT_EQ(standardizedPath((root / "link/../b/./").string()), root / "far/b");
}

TEST(StandardizedPath, IsTheSameForEveryWayToWriteAPath) {
    for (const char* path : {"/a/b", "/a/b/", "//a//b", "/a/./b", "/a/x/../b", "/../a/b/."})
        EXPECT_EQ(standardizedPath(path), "/a/b") << path;
    EXPECT_EQ(standardizedPath("//"), "/");
    EXPECT_EQ(pathOfItemUrl("file://localhost/a%09%Af%aF"), "/a\t\xAF\xAF");
    for (const char* url : {"file://", "file://host", "relative", "", "file:///a%zz"})
        EXPECT_EQ(pathOfItemUrl(url), std::nullopt) << url;
}

}  // namespace
}  // namespace brell
