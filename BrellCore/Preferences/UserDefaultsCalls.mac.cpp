// The calls as CoreFoundation has them. Values cross as property lists in their binary form, which both sides
// read and write completely: CoreFoundation's own writer tells booleans from numbers, reals from integers by
// their kind and not by their width, and integers beyond 64 bits from the others; its reader keeps a byte
// order mark at the start of a text, which it drops from XML.
#include "BrellCore/Preferences/UserDefaultsCalls.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <type_traits>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

// Owns what a function with Create or Copy in its name gave; empty when it gave nothing.
template <class Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

const UInt8* bytesOf(const std::string& text) {
    return reinterpret_cast<const UInt8*>(text.data());
}

Owned<CFStringRef> cfString(const std::string& text) {
    // Without its byte order mark it would be the name of another key.
    const bool wouldLose = text.starts_with(byteOrderMark);
    Owned<CFStringRef> made(wouldLose ? nullptr
                                      : CFStringCreateWithBytes(kCFAllocatorDefault, bytesOf(text),
                                                                static_cast<CFIndex>(text.size()),
                                                                kCFStringEncodingUTF8, false));
    if (!made)
        throw StoreError(
            StoreIo{"macOS takes no preference key or domain that is not UTF-8 or begins with a "
                    "byte order mark, such as \"" +
                    excerpt(text) + "\"."});
    return made;
}

Owned<CFStringRef> identifier(const DefaultsApplication& application) {
    if (application.identifier) return cfString(*application.identifier);
    CFRetain(kCFPreferencesAnyApplication);
    return Owned<CFStringRef>(kCFPreferencesAnyApplication);
}

CFStringRef host(HostScope hosts) {
    return hosts == HostScope::any ? kCFPreferencesAnyHost : kCFPreferencesCurrentHost;
}

// The word for an object that is no property list of ours: nested too deeply, with text that is none, or of a
// kind for which only the platform has a name.
std::string typeWord(CFTypeRef object) {
    const CFTypeID type = CFGetTypeID(object);
    const std::pair<CFTypeID, PlistValue> known[] = {
        {CFStringGetTypeID(), {std::string()}}, {CFNumberGetTypeID(), {PlistBigInteger()}},
        {CFDataGetTypeID(), {PlistData()}},     {CFDateGetTypeID(), {PlistDate()}},
        {CFArrayGetTypeID(), {PlistArray(1)}},  {CFDictionaryGetTypeID(), {PlistDictionary()}}};
    for (const auto& [id, example] : known)
        if (id == type) return propertyListTypeName(example);
    const Owned<CFStringRef> description(CFCopyTypeIDDescription(type));
    std::array<char, 128> text{};
    const bool fits =
        description && CFStringGetCString(description.get(), text.data(), static_cast<CFIndex>(text.size()),
                                          kCFStringEncodingUTF8);
    return fits ? text.data() : "unknown";
}

std::string_view view(CFDataRef data) {
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
            static_cast<std::size_t>(CFDataGetLength(data))};
}

DefaultsObject received(CFPropertyListRef object) {
    const Owned<CFDataRef> binary(
        CFPropertyListCreateData(kCFAllocatorDefault, object, kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    if (!binary) return ForeignObject{typeWord(object)};
    try {
        return readPropertyList(view(binary.get()));
    } catch (const PlistError&) {
        return ForeignObject{typeWord(object)};
    }
}

Owned<CFPropertyListRef> sendable(const PlistValue& value) try {
    const std::string binary = writeBinaryPropertyList(value);
    const Owned<CFDataRef> data(
        CFDataCreate(kCFAllocatorDefault, bytesOf(binary), static_cast<CFIndex>(binary.size())));
    Owned<CFPropertyListRef> object(data ? CFPropertyListCreateWithData(kCFAllocatorDefault, data.get(),
                                                                        kCFPropertyListImmutable, nullptr,
                                                                        nullptr)
                                         : nullptr);
    if (!object) throw StoreError(StoreIo{"macOS does not take the value as a property list."});
    return object;
} catch (const PlistError& error) {
    throw StoreError(StoreIo{error.what()});
}

std::optional<DefaultsObject> copied(const Owned<CFPropertyListRef>& object) {
    return object ? std::optional(received(object.get())) : std::nullopt;
}

class CoreFoundationCalls final : public UserDefaultsCalls {
public:
    std::vector<std::string> copyKeys(const DefaultsApplication& application) override {
        const Owned<CFArrayRef> keys(CFPreferencesCopyKeyList(
            identifier(application).get(), kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
        if (!keys) return {};
        const DefaultsObject list = received(keys.get());  // texts are a property list, too
        const auto* value = std::get_if<PlistValue>(&list);
        const auto names = value ? PrefValue::fromPropertyList(*value) : std::nullopt;
        const auto* texts = names ? names->as<PrefValue::StringArray>() : nullptr;
        if (!texts) throw StoreError(StoreIo{"macOS gave keys of preferences that are no texts."});
        return *texts;
    }

    std::optional<DefaultsObject> copyValue(const std::string& key, const DefaultsApplication& application,
                                            HostScope hosts) override {
        return copied(Owned<CFPropertyListRef>(CFPreferencesCopyValue(
            cfString(key).get(), identifier(application).get(), kCFPreferencesCurrentUser, host(hosts))));
    }

    std::optional<DefaultsObject> copyAppValue(const std::string& key,
                                               const DefaultsApplication& application) override {
        return copied(Owned<CFPropertyListRef>(
            CFPreferencesCopyAppValue(cfString(key).get(), identifier(application).get())));
    }

    bool appValueIsForced(const std::string& key, const DefaultsApplication& application) override {
        return CFPreferencesAppValueIsForced(cfString(key).get(), identifier(application).get());
    }

    void setValue(const std::string& key, const PlistValue& object,
                  const DefaultsApplication& application) override {
        set(key, sendable(object).get(), application);
    }

    void removeValue(const std::string& key, const DefaultsApplication& application) override {
        set(key, nullptr, application);
    }

    bool synchronize(const DefaultsApplication& application, HostScope hosts) override {
        return CFPreferencesSynchronize(identifier(application).get(), kCFPreferencesCurrentUser,
                                        host(hosts));
    }

private:
    static void set(const std::string& key, CFPropertyListRef object,
                    const DefaultsApplication& application) {
        CFPreferencesSetValue(cfString(key).get(), object, identifier(application).get(),
                              kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    }
};

}  // namespace

std::shared_ptr<UserDefaultsCalls> systemUserDefaults() {
    return std::make_shared<CoreFoundationCalls>();
}

}  // namespace brell
