// User defaults as those of macOS were seen to behave: what one process reads and sets is its own until it
// synchronizes; an integer over a real of the same value is dropped without a word; what could not be saved
// is still read.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Preferences/UserDefaultsCalls.h"

namespace brell::testing {

inline std::string nameOf(const DefaultsApplication& application) {
    return application.identifier.value_or("(any application)");
}

// For one thread.
class StandInDefaults final : public UserDefaultsCalls {
public:
    using Values = std::map<std::pair<std::string, std::string>, DefaultsObject>;  // by application and key

    std::vector<std::string> copyKeys(const DefaultsApplication& application) override {
        std::vector<std::string> keys;
        for (const auto& [place, object] : seen)
            if (place.first == nameOf(application)) keys.push_back(place.second);
        return keys;
    }

    std::optional<DefaultsObject> copyValue(const std::string& key, const DefaultsApplication& application,
                                            HostScope hosts) override {
        return found(hosts == HostScope::any ? seen : seenHere, key, application);
    }

    std::optional<DefaultsObject> copyAppValue(const std::string& key,
                                               const DefaultsApplication& application) override {
        for (const Values* values : {&forced, &seenHere, &seen})
            if (auto value = found(*values, key, application)) return value;
        return found(seen, key, {});
    }

    bool appValueIsForced(const std::string& key, const DefaultsApplication& application) override {
        return found(forced, key, application).has_value();
    }

    void setValue(const std::string& key, const PlistValue& object,
                  const DefaultsApplication& application) override {
        if (!refusal.empty()) throw StoreError(StoreIo{refusal});
        calls.push_back("set " + nameOf(application) + " " + key);
        unsaved = true;
        const auto held = found(seen, key, application);
        const auto* integer = object.as<std::int64_t>();
        const auto* real = held ? std::get<PlistValue>(*held).as<double>() : nullptr;
        if (integer && real && *real == static_cast<double>(*integer)) return;
        seen.insert_or_assign({nameOf(application), key}, object);
    }

    void removeValue(const std::string& key, const DefaultsApplication& application) override {
        calls.push_back("remove " + nameOf(application) + " " + key);
        unsaved = true;
        seen.erase({nameOf(application), key});
    }

    bool synchronize(const DefaultsApplication& application, HostScope hosts) override {
        if (hosts == HostScope::current) {
            seenHere = savedHere;
            return true;
        }
        calls.push_back("synchronize " + nameOf(application));
        if (unsaved && locked) return false;
        if (unsaved)
            saved = seen;
        else
            seen = saved;
        unsaved = false;
        return true;
    }

    // Another process saves this.
    void saveElsewhere(const PrefKey& key, DefaultsObject object) {
        const std::string application = key.domain == globalDomain ? nameOf({}) : key.domain;
        saved.insert_or_assign({application, key.name}, std::move(object));
    }

    Values saved, savedHere, forced;
    bool locked = false;  // nothing can be saved
    std::string refusal;  // of every value, in a whole sentence
    std::vector<std::string> calls;

private:
    static std::optional<DefaultsObject> found(const Values& values, const std::string& key,
                                               const DefaultsApplication& application) {
        const auto value = values.find({nameOf(application), key});
        return value == values.end() ? std::nullopt : std::optional(value->second);
    }

    Values seen, seenHere;  // by this process
    bool unsaved = false;   // something was set since the last time
};

}  // namespace brell::testing
