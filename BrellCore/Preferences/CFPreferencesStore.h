// The preference store over macOS's user defaults.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Preferences/UserDefaultsCalls.h"

namespace brell {

// Holds nothing but its settings: copies are alike. Exact and per-host readings include what other processes
// have saved. A write is saved, and confirmed, by the synchronize that follows it.
class CFPreferencesStore final : public PreferenceStore {
public:
    // Without the forced check no key counts as managed, and the platform is not asked.
    CFPreferencesStore(DomainSet allowedDomains, bool forcedCheck, std::shared_ptr<UserDefaultsCalls> calls);

    const DomainSet& allowedDomains() const override { return allowedDomains_; }
    std::vector<std::string> keys(const std::string& domain) override;
    StoredValue exactValue(const PrefKey& key) override;
    StoredValue effectiveValue(const PrefKey& key) override;
    bool hasByHostValue(const PrefKey& key) override;
    bool isForced(const PrefKey& key) override;
    // A value of another type is removed, and its removal saved, before the new one is set.
    void write(const PrefValue& value, const PrefKey& key) override;
    void remove(const PrefKey& key) override;
    void synchronize(const std::string& domain) override;
    std::unique_ptr<PreferenceReader> reader() override;

private:
    class OneLook;
    using Seen = std::set<std::pair<std::string, HostScope>>;  // domains known to be fresh

    StoredValue exactValue(const PrefKey& key, Seen* seen) const;
    bool hasByHostValue(const PrefKey& key, Seen* seen) const;
    std::optional<DefaultsObject> freshValue(const PrefKey& key, HostScope hosts, Seen* seen) const;
    DefaultsApplication applicationOf(const std::string& domain) const;

    DomainSet allowedDomains_;
    bool forcedCheck_;
    std::shared_ptr<UserDefaultsCalls> calls_;
};

}  // namespace brell
