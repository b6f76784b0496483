#include "CorvaneBrell/DryRunStore.h"

#include <set>

#include "CorvaneBrell/Console.h"

namespace brell {

std::vector<std::string> DryRunStore::keys(const std::string& domain) {
    const std::vector<std::string> base = base_.keys(domain);
    std::set<std::string> keys(base.begin(), base.end());
    const std::lock_guard lock(mutex_);
    for (const auto& [key, stored] : overlay_) {
        if (key.domain != domain) continue;
        keys.erase(key.name);
        if (!stored.isAbsent()) keys.insert(key.name);
    }
    return {keys.begin(), keys.end()};
}

StoredValue DryRunStore::exactValue(const PrefKey& key) {
    if (auto stored = remembered(key)) return *stored;
    return base_.exactValue(key);
}

StoredValue DryRunStore::effectiveValue(const PrefKey& key) {
    if (auto stored = remembered(key)) return *stored;
    return base_.effectiveValue(key);
}

void DryRunStore::write(const PrefValue& value, const PrefKey& key) {
    checkAllowed(key.domain);
    printLine(out_, "dry-run: would write " + key.rendered() + " = " + value.rendered());
    remember(key, value);
}

void DryRunStore::remove(const PrefKey& key) {
    checkAllowed(key.domain);
    printLine(out_, "dry-run: would remove " + key.rendered());
    remember(key, StoredValue::absent());
}

std::optional<StoredValue> DryRunStore::remembered(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    const auto found = overlay_.find(key);
    return found == overlay_.end() ? std::nullopt : std::optional(found->second);
}

void DryRunStore::remember(const PrefKey& key, StoredValue stored) {
    const std::lock_guard lock(mutex_);
    overlay_.insert_or_assign(key, std::move(stored));
}

}  // namespace brell
