// The handful of calls to macOS's user defaults that a store needs, without Apple's types, so that what is
// decided around them can be tried on any system.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "BrellCore/Support/PropertyList.h"

namespace brell {

// Whose preferences: those of the application with this identifier, or those that every application sees.
struct DefaultsApplication {
    std::optional<std::string> identifier;  // nothing for any application
    bool operator==(const DefaultsApplication&) const = default;
};

// A value may hold for every machine that the user logs in to, or for this one only.
enum class HostScope { any, current };

// A value that no property list holds; only its name is of use.
struct ForeignObject {
    std::string typeWord;
    bool operator==(const ForeignObject&) const = default;
};

using DefaultsObject = std::variant<PlistValue, ForeignObject>;

// All of it is about the current user. Any thread may call. Raises StoreError for what can't be said to the
// platform: text that is not UTF-8, values that no property list holds.
class UserDefaultsCalls {
public:
    virtual ~UserDefaultsCalls();

    // The keys that are stored for exactly this application and any machine.
    virtual std::vector<std::string> copyKeys(const DefaultsApplication& application) = 0;
    // The value stored for exactly this application and these machines; nothing when nothing is. Readings may
    // be as old as the last synchronize.
    virtual std::optional<DefaultsObject> copyValue(const std::string& key,
                                                    const DefaultsApplication& application,
                                                    HostScope hosts) = 0;
    // The value that the application sees after the platform's whole search.
    virtual std::optional<DefaultsObject> copyAppValue(const std::string& key,
                                                       const DefaultsApplication& application) = 0;
    virtual bool appValueIsForced(const std::string& key, const DefaultsApplication& application) = 0;

    // For any machine; kept in memory until synchronize. An integer over a real of the same value is lost.
    virtual void setValue(const std::string& key, const PlistValue& object,
                          const DefaultsApplication& application) = 0;
    virtual void removeValue(const std::string& key, const DefaultsApplication& application) = 0;

    // Saves what was set for these machines and reads what others saved. False when it could not be saved;
    // readings then still give the unsaved values.
    [[nodiscard]] virtual bool synchronize(const DefaultsApplication& application, HostScope hosts) = 0;
};

// The real ones. macOS only.
std::shared_ptr<UserDefaultsCalls> systemUserDefaults();

}  // namespace brell
