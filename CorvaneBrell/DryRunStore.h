// A preference store that remembers what would be written instead of writing it.
#pragma once

#include <map>
#include <mutex>
#include <ostream>
#include <vector>

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

// Reads what this run "wrote" or "removed" before it asks the real store. Prints one line for each change
// that it holds back. Any thread may call it; what it remembers ends with it.
class DryRunStore final : public PreferenceStore {
public:
    // Both must outlive it.
    DryRunStore(PreferenceStore& base, std::ostream& out) : base_(base), out_(out) {}

    const DomainSet& allowedDomains() const override { return base_.allowedDomains(); }
    std::vector<std::string> keys(const std::string& domain) override;
    StoredValue exactValue(const PrefKey& key) override;
    StoredValue effectiveValue(const PrefKey& key) override;
    bool hasByHostValue(const PrefKey& key) override { return base_.hasByHostValue(key); }
    bool isForced(const PrefKey& key) override { return base_.isForced(key); }
    void write(const PrefValue& value, const PrefKey& key) override;
    void remove(const PrefKey& key) override;
    void synchronize(const std::string& domain) override { checkAllowed(domain); }

private:
    std::optional<StoredValue> remembered(const PrefKey& key);
    void remember(const PrefKey& key, StoredValue stored);

    PreferenceStore& base_;
    std::ostream& out_;
    std::mutex mutex_;  // guards overlay_
    std::map<PrefKey, StoredValue> overlay_;
};

}  // namespace brell
