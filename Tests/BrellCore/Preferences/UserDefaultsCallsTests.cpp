// The macOS source of the user defaults, compiled here over a stand-in for CoreFoundation that keeps the
// ownership rules of the real one and knows every object that is alive. On a Mac the real one would be in its
// place.
#ifndef __APPLE__

#include "BrellCore/Preferences/UserDefaultsCalls.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <tuple>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "Tests/Support/Testing.h"

namespace {

using namespace brell;
using namespace brell::testing;

// A text, the bytes of a data object, or those of a property list in a file form.
struct Object {
    std::string bytes;
    CFTypeID type = 1;
    int owners = 1;
};

std::deque<Object> made;  // never freed, so that a late use of one is noticed, too
Object anyApplication{"*"}, anyHost{"any host"}, currentHost{"current host"}, currentUser{"user"};

using Place = std::tuple<std::string, std::string, std::string>;  // application, host and key
std::map<Place, Object*> preferences;
std::string locked;  // an application on hosts, which can't be saved
bool takesPropertyLists = true;

// An object that is owned.
Object* objectOf(CFTypeRef reference) {
    auto* object = static_cast<Object*>(const_cast<void*>(reference));
    EXPECT_GT(object->owners, 0) << "used after its last owner let it go";
    return object;
}

std::size_t ownedObjects() {
    return static_cast<std::size_t>(
        std::count_if(made.begin(), made.end(), [](const Object& object) { return object.owners > 0; }));
}

template <class Reference>
Reference created(std::string bytes, CFTypeID type = 1) {
    return reinterpret_cast<Reference>(&made.emplace_back(Object{std::move(bytes), type}));
}

const std::string& textOf(CFTypeRef reference) {
    return objectOf(reference)->bytes;
}

std::string bytesAt(const UInt8* bytes, CFIndex count) {
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)};
}

CFTypeRef copyOf(const Place& place) {
    const auto found = preferences.find(place);
    return found == preferences.end() ? nullptr : CFRetain(found->second);
}

}  // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFStringRef kCFPreferencesAnyApplication = reinterpret_cast<CFStringRef>(&anyApplication);
const CFStringRef kCFPreferencesAnyHost = reinterpret_cast<CFStringRef>(&anyHost);
const CFStringRef kCFPreferencesCurrentHost = reinterpret_cast<CFStringRef>(&currentHost);
const CFStringRef kCFPreferencesCurrentUser = reinterpret_cast<CFStringRef>(&currentUser);

CFTypeRef CFRetain(CFTypeRef object) {
    ++objectOf(object)->owners;
    return object;
}

void CFRelease(CFTypeRef object) {
    EXPECT_GE(--objectOf(object)->owners, 0);
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return objectOf(object)->type;
}

// NOLINTBEGIN(cppcoreguidelines-macro-usage)
#define BRELL_TYPE(KIND, NUMBER)     \
    CFTypeID CF##KIND##GetTypeID() { \
        return NUMBER;               \
    }
BRELL_TYPE(String, 21)
BRELL_TYPE(Number, 22)
BRELL_TYPE(Data, 23)
BRELL_TYPE(Date, 24)
BRELL_TYPE(Array, 25)
BRELL_TYPE(Dictionary, 26)
#undef BRELL_TYPE
// NOLINTEND(cppcoreguidelines-macro-usage)

CFStringRef CFCopyTypeIDDescription(CFTypeID type) {
    return type == 0 ? nullptr : created<CFStringRef>("CFType" + std::to_string(type));
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean) {
    EXPECT_EQ(encoding, CFStringEncoding{kCFStringEncodingUTF8});
    const std::string text = bytesAt(bytes, count);
    return isXmlText(text) ? created<CFStringRef>(text) : nullptr;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding) {
    const std::string& text = textOf(string);
    if (static_cast<CFIndex>(text.size()) >= size) return false;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex count) {
    return created<CFDataRef>(bytesAt(bytes, count));
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return reinterpret_cast<const UInt8*>(textOf(data).data());
}

CFIndex CFDataGetLength(CFDataRef data) {
    return static_cast<CFIndex>(textOf(data).size());
}

CFDataRef CFPropertyListCreateData(CFAllocatorRef, CFPropertyListRef object, CFPropertyListFormat format,
                                   CFOptionFlags, CFErrorRef*) {
    EXPECT_EQ(format, kCFPropertyListBinaryFormat_v1_0);
    return textOf(object).empty() ? nullptr : created<CFDataRef>(textOf(object));
}

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data, CFOptionFlags,
                                               CFPropertyListFormat*, CFErrorRef*) {
    std::string bytes = textOf(data);
    // From XML the real one drops a byte order mark at the start of a text.
    for (std::size_t at; (at = bytes.find(">\uFEFF")) != std::string::npos;) bytes.erase(at + 1, 3);
    return takesPropertyLists ? created<CFPropertyListRef>(std::move(bytes)) : nullptr;
}

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef application, CFStringRef user,
                                         CFStringRef host) {
    EXPECT_EQ(user, kCFPreferencesCurrentUser);
    return copyOf({textOf(application), textOf(host), textOf(key)});
}

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application) {
    return copyOf({textOf(application), "seen", textOf(key)});
}

Boolean CFPreferencesAppValueIsForced(CFStringRef key, CFStringRef application) {
    return preferences.count({textOf(application), "forced", textOf(key)}) > 0;
}

CFArrayRef CFPreferencesCopyKeyList(CFStringRef application, CFStringRef user, CFStringRef host) {
    EXPECT_EQ(user, kCFPreferencesCurrentUser);
    PlistArray keys;
    for (const auto& [place, object] : preferences)
        if (std::get<0>(place) == textOf(application) && std::get<1>(place) == textOf(host))
            keys.push_back({std::get<2>(place)});
    if (keys.empty()) return nullptr;
    return created<CFArrayRef>(takesPropertyLists ? writeBinaryPropertyList({keys}) : std::string());
}

void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef application,
                           CFStringRef user, CFStringRef host) {
    EXPECT_EQ(user, kCFPreferencesCurrentUser);
    Object*& stored = preferences[{textOf(application), textOf(host), textOf(key)}];
    if (stored) CFRelease(stored);
    stored = value ? objectOf(CFRetain(value)) : nullptr;
    if (!stored) preferences.erase({textOf(application), textOf(host), textOf(key)});
}

Boolean CFPreferencesSynchronize(CFStringRef application, CFStringRef, CFStringRef host) {
    return locked != textOf(application) + " on " + textOf(host);
}

}  // extern "C"

namespace {

const DefaultsApplication dock{"com.apple.dock"}, every{};

class UserDefaultsCallsTest : public ::testing::Test {
protected:
    ~UserDefaultsCallsTest() override {
        for (const auto& [place, object] : preferences) CFRelease(object);
        preferences.clear();
        locked.clear();
        takesPropertyLists = true;
        EXPECT_EQ(ownedObjects(), 0u) << "Objects are left that nobody lets go.";
        made.clear();
    }
    static void store(const Place& place, std::string bytes, CFTypeID type = 1) {
        preferences[place] = objectOf(created<CFTypeRef>(std::move(bytes), type));
    }
    std::optional<DefaultsObject> exact(const std::string& key,
                                        const DefaultsApplication& application) const {
        return calls->copyValue(key, application, HostScope::any);
    }

    const std::shared_ptr<UserDefaultsCalls> calls = systemUserDefaults();
};

}  // namespace

TEST_F(UserDefaultsCallsTest, EachKindIsReadAsItWasSetAndOwnedByThePreferencesAlone) {
    const std::string mark = "\uFEFF";
    const PlistArray words{{std::string("a")}, {std::string("\u00E9")}, {mark + "b"}};
    for (const PlistValue& value :
         {PlistValue{true}, PlistValue{std::int64_t{-48}}, PlistValue{0.15}, PlistValue{std::string("<&>")},
          PlistValue{mark + "a"}, PlistValue{mark}, PlistValue{words}}) {
        calls->setValue("k", value, dock);
        EXPECT_EQ(exact("k", dock), std::optional<DefaultsObject>(value));
    }
    EXPECT_EQ(exact("k", every), std::nullopt);
    EXPECT_EQ(ownedObjects(), 1u);
    calls->removeValue("k", dock);
    EXPECT_EQ(exact("k", dock), std::nullopt);
    EXPECT_EQ(ownedObjects(), 0u);
}

TEST_F(UserDefaultsCallsTest, EveryCallAsksAboutItsOwnApplicationAndMachines) {
    const std::string one = writeXmlPropertyList({std::int64_t{1}});
    const std::optional<DefaultsObject> found(PlistValue{std::int64_t{1}});
    store({"*", "any host", "k"}, one);
    store({"com.apple.dock", "current host", "here"}, one);
    store({"com.apple.dock", "seen", "k"}, one);
    store({"com.apple.dock", "forced", "k"}, one);

    store({"com.apple.dock", "any host", "\u00E9"}, one);
    EXPECT_EQ(calls->copyKeys(every), std::vector<std::string>{"k"});
    EXPECT_EQ(calls->copyKeys(dock), std::vector<std::string>{"\u00E9"});
    EXPECT_EQ(calls->copyKeys({"com.apple.finder"}), std::vector<std::string>());
    EXPECT_EQ(exact("k", every), found);
    EXPECT_EQ(exact("here", dock), std::nullopt);
    EXPECT_EQ(calls->copyValue("here", dock, HostScope::current), found);
    EXPECT_EQ(calls->copyAppValue("k", dock), found);
    EXPECT_EQ(calls->copyAppValue("k", every), std::nullopt);
    EXPECT_TRUE(calls->appValueIsForced("k", dock));
    EXPECT_FALSE(calls->appValueIsForced("k", every));
    locked = "* on any host";
    EXPECT_FALSE(calls->synchronize(every, HostScope::any));
    EXPECT_TRUE(calls->synchronize(every, HostScope::current));
    EXPECT_TRUE(calls->synchronize(dock, HostScope::any));
}

TEST_F(UserDefaultsCallsTest, WhatNoPropertyListHoldsIsNamedByItsKind) {
    store({"com.apple.dock", "any host", "odd"}, "", 7);
    store({"com.apple.dock", "any host", "nameless"}, "", 0);
    store({"com.apple.dock", "any host", "damaged"}, "bplist00", 9);
    EXPECT_EQ(exact("odd", dock), std::optional<DefaultsObject>(ForeignObject{"CFType7"}));
    EXPECT_EQ(exact("nameless", dock), std::optional<DefaultsObject>(ForeignObject{"unknown"}));
    EXPECT_EQ(exact("damaged", dock), std::optional<DefaultsObject>(ForeignObject{"CFType9"}));
    // As values nested too deeply, or with half a character, can't be read.
    const std::pair<CFTypeID, const char*> words[] = {
        {CFStringGetTypeID(), "string (with characters a property list can't hold)"},
        {CFNumberGetTypeID(), "number (out of range)"},
        {CFDataGetTypeID(), "data"},
        {CFDateGetTypeID(), "date"},
        {CFArrayGetTypeID(), "array (not all strings)"},
        {CFDictionaryGetTypeID(), "dictionary"}};
    for (const auto& [type, word] : words) {
        store({"com.apple.dock", "any host", word}, "bplist00", type);
        EXPECT_EQ(exact(word, dock), std::optional<DefaultsObject>(ForeignObject{word}));
    }
}

TEST_F(UserDefaultsCallsTest, NothingIsLeftBehindWhenACallIsRefused) {
    const auto refused = [](const std::function<void()>& action) {
        return thrownBy<StoreError>(action).has_value();
    };
    const std::string noText = "\xFF";
    EXPECT_EQ(
        messageOf([&] { exact("k", {"dock" + noText}); }),
        "macOS takes no preference key or domain that is not UTF-8 or begins with a byte order mark, such "
        "as \"dock\uFFFD\".");
    for (const std::string& name : {noText, std::string("\uFEFFk")}) {
        EXPECT_TRUE(refused([&] { exact(name, dock); }));
        EXPECT_TRUE(refused([&] { calls->setValue(name, {true}, dock); }));
        EXPECT_TRUE(refused([&] { calls->setValue("k", {true}, {name}); }));
    }
    EXPECT_TRUE(refused([&] { calls->setValue("k", {noText}, dock); }));
    takesPropertyLists = false;
    EXPECT_TRUE(refused([&] { calls->setValue("k", {true}, dock); }));
    store({"com.apple.dock", "any host", "k"}, "");
    EXPECT_TRUE(refused([&] { calls->copyKeys(dock); }));
    CFRelease(preferences.begin()->second);
    preferences.clear();
    EXPECT_EQ(ownedObjects(), 0u);
    EXPECT_TRUE(preferences.empty());
}

#endif
