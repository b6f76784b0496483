#include "CorvaneBrell/Model/OwnPreferences.h"

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

namespace {

PrefKey ownKey(std::string name) {
    return {std::string(OwnPreferences::domain), std::move(name)};
}

}  // namespace

const DomainSet& OwnPreferences::domains() {
    static const DomainSet own{std::string(domain)};
    return own;
}

std::optional<double> OwnPreferences::number(const std::string& key) const try {
    const StoredValue stored = store_.exactValue(ownKey(key));
    if (!stored.value) return std::nullopt;
    if (const auto* real = stored.value->as<double>()) return *real;
    if (const auto* integer = stored.value->as<std::int64_t>()) return static_cast<double>(*integer);
    return std::nullopt;
} catch (const StoreError&) {
    return std::nullopt;
}

void OwnPreferences::setNumber(const std::string& key, double value) {
    store_.write(value, ownKey(key));
    store_.synchronize(std::string(domain));
}

}  // namespace brell
