// The calls as CoreFoundation has them. Values cross as property lists in their file forms, which both sides
// read and write completely: CoreFoundation's own writer tells booleans from numbers, reals from integers by
// their kind and not by their width, and integers beyond 64 bits from the others.
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
    Owned<CFStringRef> made(CFStringCreateWithBytes(
        kCFAllocatorDefault, bytesOf(text), static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
    if (!made)
        throw StoreError(StoreIo{"macOS takes no preference key or domain that is not UTF-8, such as \"" +
                                 oneLine(text) + "\"."});
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

// The platform's own name of the object's kind.
std::string typeWord(CFTypeRef object) {
    const Owned<CFStringRef> description(CFCopyTypeIDDescription(CFGetTypeID(object)));
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
    const std::string xml = writeXmlPropertyList(value);
    const Owned<CFDataRef> data(
        CFDataCreate(kCFAllocatorDefault, bytesOf(xml), static_cast<CFIndex>(xml.size())));
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
