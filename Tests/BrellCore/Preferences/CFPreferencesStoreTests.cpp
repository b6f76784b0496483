#include "BrellCore/Preferences/CFPreferencesStore.h"

#include <gtest/gtest.h>

#include "Tests/BrellCore/Preferences/Operations.h"
#include "Tests/Support/StandInDefaults.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;

const PrefKey tileSize{"com.apple.dock", "tilesize"}, autohide{"com.apple.dock", "autohide"};
const PrefKey delay{"NSGlobalDomain", "NSWindowResizeTime"}, stranger{"com.apple.finder", "x"};

class CFPreferencesStoreTest : public ::testing::Test {
protected:
    using Calls = std::vector<std::string>;

    Calls callsOf(const std::function<void()>& action) const {
        defaults->calls.clear();
        action();
        return std::exchange(defaults->calls, {});
    }
    DefaultsObject stored(const PrefKey& key) const { return defaults->saved.at({key.domain, key.name}); }

    const std::shared_ptr<StandInDefaults> defaults = std::make_shared<StandInDefaults>();
    CFPreferencesStore store{{"com.apple.dock", "NSGlobalDomain"}, true, defaults};
};

}  // namespace

TEST_F(CFPreferencesStoreTest, AnotherTypeIsRemovedForGoodBeforeTheNewValueIsSet) {
    defaults->saveElsewhere(tileSize, PlistValue{48.0});
    EXPECT_EQ(store.exactValue(tileSize), StoredValue(48.0));

    EXPECT_EQ(callsOf([&] { store.write(48, tileSize); }),
              (Calls{"remove com.apple.dock tilesize", "synchronize com.apple.dock",
                     "set com.apple.dock tilesize"}));
    store.synchronize("com.apple.dock");
    EXPECT_EQ(store.exactValue(tileSize), StoredValue(48));
    EXPECT_EQ(stored(tileSize), DefaultsObject(PlistValue{std::int64_t{48}}));

    defaults->saveElsewhere(tileSize, PlistValue{PlistDictionary{}});
    EXPECT_EQ(failureOf<StoreError>([&] { store.exactValue(tileSize); }),
              StoreFailure(UnsupportedType{tileSize, "dictionary"}));
    EXPECT_EQ(callsOf([&] { store.put(StoredValue("x"), tileSize); }).size(), 3u);
    for (const PrefValue& value :
         {PrefValue("\x01"), PrefValue("\xFF"), PrefValue(PrefValue::StringArray{"\uFFFF"})})
        EXPECT_EQ(callsOf([&] { EXPECT_NE(messageOf([&] { store.write(value, autohide); }), ""); }), Calls());
    EXPECT_EQ(
        messageOf([&] { store.write("\x01", autohide); }),
        "com.apple.dock autohide could not be written: Brell writes no string (with characters a property "
        "list can't hold).");
}

TEST_F(CFPreferencesStoreTest, TheSameTypeAndAnAbsentKeyAreSetDirectly) {
    defaults->saveElsewhere(autohide, PlistValue{false});
    EXPECT_EQ(store.exactValue(autohide), StoredValue(false));
    const Calls direct{"set com.apple.dock autohide"};
    EXPECT_EQ(callsOf([&] { store.write(true, autohide); }), direct);
    EXPECT_EQ(callsOf([&] { store.remove(autohide); }), Calls{"remove com.apple.dock autohide"});
    EXPECT_EQ(callsOf([&] { store.write(1, autohide); }), direct);
}

TEST_F(CFPreferencesStoreTest, EachReadingAsksItsOwnPlace) {
    defaults->saveElsewhere(delay, PlistValue{0.2});
    defaults->savedHere[{"com.apple.dock", "tilesize"}] = PlistValue{PlistDictionary{}};
    defaults->forced[{"com.apple.dock", "autohide"}] = PlistValue{true};
    CFPreferencesStore unchecked({"com.apple.dock"}, false, defaults);

    EXPECT_EQ(store.exactValue(delay), StoredValue(0.2));
    EXPECT_EQ(store.effectiveValue({"com.apple.dock", delay.name}), StoredValue(0.2));
    EXPECT_EQ(store.exactValue({"com.apple.dock", delay.name}), StoredValue::absent());
    EXPECT_EQ(store.exactValue(autohide), StoredValue::absent());
    EXPECT_EQ(store.effectiveValue(autohide), StoredValue(true));
    EXPECT_FALSE(store.hasByHostValue(autohide));
    EXPECT_TRUE(store.hasByHostValue(tileSize));
    EXPECT_EQ(store.exactValue(tileSize), StoredValue::absent());
    EXPECT_FALSE(unchecked.isForced(autohide));
    EXPECT_TRUE(store.isForced(autohide));
    EXPECT_FALSE(store.isForced(tileSize));
    // Forced for every application: either answer counts, and only here.
    EXPECT_FALSE(store.isForced(delay));
    for (const char* answering : {"(any application)", "com.corvane.brell"}) {
        defaults->forced = {{{answering, delay.name}, PlistValue{0.1}},
                            {{answering, tileSize.name}, PlistValue{0.1}}};
        EXPECT_TRUE(store.isForced(delay)) << answering;
        EXPECT_FALSE(store.isForced(tileSize)) << answering;
    }
}

TEST_F(CFPreferencesStoreTest, AValueOfNoKnownKindIsNamed) {
    defaults->saveElsewhere(autohide, PlistValue{PlistBigInteger{"18446744073709551615"}});
    EXPECT_EQ(failureOf<StoreError>([&] { store.exactValue(autohide); }),
              StoreFailure(UnsupportedType{autohide, "number (out of range)"}));
    defaults->saveElsewhere(autohide, ForeignObject{"CFNull"});
    EXPECT_EQ(failureOf<StoreError>([&] { store.exactValue(autohide); }),
              StoreFailure(UnsupportedType{autohide, "CFNull"}));
    EXPECT_EQ(failureOf<StoreError>([&] { store.effectiveValue(autohide); }),
              StoreFailure(UnsupportedType{autohide, "CFNull"}));
}

TEST_F(CFPreferencesStoreTest, AReaderAsksOnceADomainWhatOthersSaved) {
    defaults->saveElsewhere(tileSize, PlistValue{std::int64_t{64}});
    const Calls asked = callsOf([&] {
        const auto reader = store.reader();
        EXPECT_EQ(reader->exactValue(tileSize), StoredValue(64));
        EXPECT_FALSE(reader->hasByHostValue(tileSize));
        EXPECT_EQ(reader->exactValue(autohide), StoredValue::absent());
        EXPECT_FALSE(reader->hasByHostValue(autohide));
        EXPECT_EQ(reader->exactValue(delay), StoredValue::absent());
        EXPECT_EQ(failureOf<StoreError>([&] { reader->exactValue(stranger); }),
                  StoreFailure(DomainNotAllowed{stranger.domain}));
    });
    EXPECT_EQ(asked, (Calls{"synchronize com.apple.dock", "synchronize (any application)"}));
    defaults->saveElsewhere(tileSize, PlistValue{std::int64_t{48}});
    EXPECT_EQ(store.reader()->exactValue(tileSize), StoredValue(48));
}

TEST_F(CFPreferencesStoreTest, AWriteThatCouldNotBeSavedIsAFailureAlthoughItIsStillRead) {
    defaults->saveElsewhere(tileSize, PlistValue{48.0});
    EXPECT_EQ(store.exactValue(tileSize), StoredValue(48.0));
    defaults->locked = true;
    const StoreFailure notSaved = SynchronizeFailed{"com.apple.dock"};

    EXPECT_EQ(failureOf<StoreError>([&] { store.write(36, tileSize); }),
              notSaved);  // at the removal of the real
    EXPECT_EQ(failureOf<StoreError>([&] { store.write(true, autohide); }), std::nullopt);
    EXPECT_EQ(failureOf<StoreError>([&] { store.synchronize("com.apple.dock"); }), notSaved);
    EXPECT_EQ(store.exactValue(autohide), StoredValue(true));
    EXPECT_EQ(stored(tileSize), DefaultsObject(PlistValue{48.0}));

    defaults->refusal = "macOS does not take it.";
    EXPECT_EQ(failureOf<StoreError>([&] { store.write(true, autohide); }),
              StoreFailure(StoreIo{"com.apple.dock autohide could not be written: macOS does not take it."}));
}

TEST_F(CFPreferencesStoreTest, OtherDomainsNeverReachThePlatform) {
    const StoreFailure refused = DomainNotAllowed{"com.apple.finder"};
    for (const std::function<void()>& operation : operationsOn(store, stranger))
        EXPECT_EQ(failureOf<StoreError>(operation), refused);
    CFPreferencesStore unchecked({"com.apple.dock"}, false, defaults);
    EXPECT_EQ(failureOf<StoreError>([&] { unchecked.isForced(stranger); }), refused);
    EXPECT_EQ(defaults->calls, Calls());
}

}  // namespace brell
