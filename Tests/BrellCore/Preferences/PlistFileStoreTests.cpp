#include "BrellCore/Preferences/PlistFileStore.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "BrellCore/Support/Failure.h"
#include "BrellCore/Support/PropertyList.h"
#include "Tests/BrellCore/Preferences/Operations.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;
using Strings = PrefValue::StringArray;
using Values = PlistFileStore::Values;

const PrefKey autohide{"com.apple.dock", "autohide"}, tileSize{"com.apple.dock", "tilesize"};
const PrefKey stranger{"com.apple.finder", "autohide"};

class PlistFileStoreTest : public ::testing::Test {
protected:
    const TemporaryFolder folder;
    const fs::path directory = folder.path / "Library" / "Preferences";
    const fs::path file = directory / "com.apple.dock.plist";
    PlistFileStore store{directory, {"com.apple.dock", "NSGlobalDomain"}};

    void setFile(PlistDictionary dictionary) const {
        setContents(file, writeXmlPropertyList({std::move(dictionary)}));
    }
};

class PlistFileStoreConcurrencyTest : public PlistFileStoreTest {};

}  // namespace

TEST_F(PlistFileStoreTest, WritesOneKeyIntoItsFileAndRemovesIt) {
    const std::string empty = "<plist version=\"1.0\"><dict/></plist>";
    setContents(file, empty);
    for (const PrefKey& key : {autohide, PrefKey{"NSGlobalDomain", "delay"}}) store.remove(key);
    EXPECT_EQ(contentsOf(file), empty);
    EXPECT_EQ(namesIn(directory), Names{"com.apple.dock.plist"});
    setFile({{{"tilesize", {std::int64_t{36}}}, {"z \u00E9", {std::string(" <&>\n")}}}});
    store.write(Strings{"a", ""}, autohide);
    store.put(StoredValue(0.1), {"NSGlobalDomain", "delay"});

    EXPECT_EQ(store.exactValue(autohide), StoredValue(Strings{"a", ""}));
    EXPECT_EQ(
        store.snapshot(),
        (std::map<std::string, Values>{
            {"com.apple.dock", {{"autohide", Strings{"a", ""}}, {"tilesize", 36}, {"z \u00E9", " <&>\n"}}},
            {"NSGlobalDomain", {{"delay", 0.1}}}}));

    store.put(StoredValue::absent(), autohide);
    EXPECT_EQ(store.exactValue(autohide), StoredValue::absent());
    EXPECT_EQ(store.exactValue(tileSize), StoredValue(36));
    store.remove({"NSGlobalDomain", "delay"});
    EXPECT_EQ(store.snapshot().count("NSGlobalDomain"), 0u);
    EXPECT_EQ(namesIn(directory), (Names{"NSGlobalDomain.plist", "com.apple.dock.plist"}));
}

TEST_F(PlistFileStoreTest, EveryOperationRefusesOtherDomainsFirst) {
    store.failNextWrite(stranger);
    store.markUnsupported(stranger);
    for (const std::function<void()>& operation : operationsOn(store, stranger))
        EXPECT_EQ(failureOf<StoreError>(operation), StoreFailure(DomainNotAllowed{"com.apple.finder"}));
    EXPECT_EQ(describe(StoreFailure(DomainNotAllowed{"com.apple.finder"})),
              "The domain com.apple.finder is not one Brell may change.");
    EXPECT_EQ(namesIn(directory), Names());
}

TEST_F(PlistFileStoreTest, PlaysTheSituationsThatTheRealStoreMeets) {
    store.write(1, autohide);
    store.failNextWrite(autohide);
    store.write(2, tileSize);
    EXPECT_EQ(messageOf([&] { store.write(3, autohide); }),
              "simulated write failure for com.apple.dock autohide");
    EXPECT_EQ(store.exactValue(autohide), StoredValue(1));
    store.write(3, autohide);
    store.ignoreWrites(autohide);
    for (int i = 0; i < 2; ++i) store.write(4, autohide);
    EXPECT_EQ(store.exactValue(autohide), StoredValue(3));
    store.remove(autohide);
    EXPECT_EQ(store.exactValue(autohide), StoredValue::absent());
}

TEST_F(PlistFileStoreTest, FollowsFilesThatOthersChange) {
    PlistFileStore another(directory, store.allowedDomains());
    EXPECT_EQ(store.exactValue(autohide), StoredValue::absent());
    // Many changes of one length within the same tick of the file system's clock.
    for (int size = 10; size < 60; ++size) {
        another.write(size, tileSize);
        if (size % 3 == 1) continue;  // two changes between readings can bring a file's number back
        EXPECT_EQ(store.exactValue(tileSize), StoredValue(size));
    }
    store.write(true, autohide);
    another.write("left", {"com.apple.dock", "orientation"});
    EXPECT_EQ(store.snapshot().at("com.apple.dock"),
              (Values{{"autohide", true}, {"orientation", "left"}, {"tilesize", 59}}));

    // In place, of the same size, and the time set back.
    std::string edited = contentsOf(file);
    edited.replace(edited.find("59"), 2, "48");
    const auto time = fs::last_write_time(file);
    const fs::path clock = folder.path / "clock";
    do setContents(clock, "");
    while (fs::last_write_time(clock) <= time);  // it moves on in steps
    setContents(file, edited);
    fs::last_write_time(file, time);
    EXPECT_EQ(store.exactValue(tileSize), StoredValue(48));

    fs::remove(file);
    EXPECT_EQ(store.exactValue(autohide), StoredValue::absent());
}

TEST_F(PlistFileStoreTest, AValueOfAnotherKindKeepsItsWholeDomainFromChanging) {
    setFile({{{"autohide", {true}}, {"persistent-apps", {PlistDictionary()}}, {"when", {PlistDate{0}}}}});
    const std::string before = contentsOf(file);

    const StoreFailure failure = UnsupportedType{{"com.apple.dock", "persistent-apps"}, "dictionary"};
    EXPECT_EQ(failureOf<StoreError>([&] { store.exactValue(autohide); }), failure);
    EXPECT_EQ(failureOf<StoreError>([&] { store.effectiveValue(tileSize); }), failure);
    EXPECT_EQ(failureOf<StoreError>([&] { store.write(false, autohide); }), failure);
    EXPECT_EQ(failureOf<StoreError>([&] { store.remove(autohide); }), failure);
    EXPECT_EQ(failureOf<StoreError>([&] { store.snapshot(); }), failure);
    EXPECT_EQ(contentsOf(file), before);
    store.write(1, {"NSGlobalDomain", "other"});
    EXPECT_EQ(store.exactValue({"NSGlobalDomain", "other"}), StoredValue(1));
}

TEST_F(PlistFileStoreTest, FilesThatCannotBeReadAreNamedAndLeftAlone) {
    const std::string sentence = "The preference file " + file.string() + " could not be read: ";
    setFile({{{"autohide", {true}}}});
    const std::string whole = contentsOf(file);
    for (std::size_t length = 0; length + 1 < whole.size(); length += 7) {
        setContents(file, whole.substr(0, length));
        EXPECT_TRUE(messageOf([&] { store.exactValue(autohide); }).starts_with(sentence)) << length;
        EXPECT_TRUE(messageOf([&] { store.write(true, autohide); }).starts_with(sentence)) << length;
        EXPECT_EQ(contentsOf(file), whole.substr(0, length));
    }
    setContents(file, writeXmlPropertyList({PlistArray{{std::string("a")}}}));
    EXPECT_EQ(messageOf([&] { store.remove(autohide); }), sentence + "it does not hold a dictionary.");

    fs::remove(file);
    store.write(1, autohide);
    fs::remove(file);
    fs::create_directory(file);
    const auto reader = store.reader();
    for (const PrefKey& key : {autohide, tileSize, autohide})
        EXPECT_EQ(messageOf([&] { reader->exactValue(key); }), sentence + "it is not an ordinary file.");

    setContents(folder.path / "plain", "");
    EXPECT_TRUE(thrownBy<fs::filesystem_error>([&] { PlistFileStore(folder.path / "plain" / "x", {}); }));
}

TEST_F(PlistFileStoreTest, AFailedSaveLeavesTheFileAndTheReadings) {
    store.write(1, autohide);
    const std::string before = contentsOf(file);
    const std::string sentence = "The preference file " + file.string() + " could not be written: ";

    for (const PrefValue& value : {PrefValue("\x01"), PrefValue("\xFF"), PrefValue(Strings{"\uFFFF"})})
        EXPECT_TRUE(messageOf([&] { store.write(value, autohide); }).starts_with(sentence));
    if (systemCallsAreWatched()) {
        const FailingCall full(directory, SystemCall::write, ENOSPC);
        EXPECT_EQ(messageOf([&] { store.write(2, autohide); }), sentence + systemMessage(ENOSPC) + ".");
    }
    EXPECT_EQ(contentsOf(file), before);
    EXPECT_EQ(store.exactValue(autohide), StoredValue(1));
    EXPECT_EQ(namesIn(directory), Names{"com.apple.dock.plist"});

    // Read as it is, but too large when it is written in the other form.
    const std::string marks(4'000'000, '&');
    setContents(file, "<plist><dict><key>k</key><string><![CDATA[" + marks + "]]></string></dict></plist>");
    const std::string small = contentsOf(file);
    EXPECT_EQ(messageOf([&] { store.write(2, autohide); }),
              sentence + "it would hold more than 16777216 bytes.");
    EXPECT_EQ(contentsOf(file), small);
    EXPECT_EQ(store.exactValue({"com.apple.dock", "k"}), StoredValue(marks));
}

TEST_F(PlistFileStoreConcurrencyTest, WritersOfOneDomainKeepEachOthersKeys) {
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 4; ++writer)
        threads.emplace_back([&, writer] {
            for (int i = 0; i < 20; ++i) {
                const PrefKey key{"com.apple.dock", std::to_string(writer) + "." + std::to_string(i)};
                store.write(i, key);
                EXPECT_EQ(store.exactValue(key), StoredValue(i));
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(store.snapshot().at("com.apple.dock").size(), 80u);
}

}  // namespace brell
