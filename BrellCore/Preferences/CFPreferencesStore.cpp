#include "BrellCore/Preferences/CFPreferencesStore.h"

namespace brell {

namespace {

std::optional<PrefValue> preference(const DefaultsObject& object) {
    const auto* value = std::get_if<PlistValue>(&object);
    return value ? PrefValue::fromPropertyList(*value) : std::nullopt;
}

std::string typeWord(const DefaultsObject& object) {
    if (const auto* value = std::get_if<PlistValue>(&object)) return propertyListTypeName(*value);
    return std::get<ForeignObject>(object).typeWord;
}

StoredValue classified(const std::optional<DefaultsObject>& object, const PrefKey& key) {
    if (!object) return StoredValue::absent();
    auto value = preference(*object);
    if (!value) throw StoreError(UnsupportedType{key, typeWord(*object)});
    return *std::move(value);
}

bool isOfType(const DefaultsObject& object, std::string_view typeName) {
    const auto value = preference(object);
    return value && value->typeName() == typeName;
}

}  // namespace

UserDefaultsCalls::~UserDefaultsCalls() = default;

CFPreferencesStore::CFPreferencesStore(DomainSet allowedDomains, bool forcedCheck,
                                       std::shared_ptr<UserDefaultsCalls> calls)
    : allowedDomains_(std::move(allowedDomains)), forcedCheck_(forcedCheck), calls_(std::move(calls)) {}

StoredValue CFPreferencesStore::exactValue(const PrefKey& key) {
    return classified(freshValue(key, HostScope::any), key);
}

StoredValue CFPreferencesStore::effectiveValue(const PrefKey& key) {
    return classified(calls_->copyAppValue(key.name, applicationOf(key.domain)), key);
}

bool CFPreferencesStore::hasByHostValue(const PrefKey& key) {
    return freshValue(key, HostScope::current).has_value();
}

bool CFPreferencesStore::isForced(const PrefKey& key) {
    const DefaultsApplication application = applicationOf(key.domain);
    return forcedCheck_ && calls_->appValueIsForced(key.name, application);
}

void CFPreferencesStore::write(const PrefValue& value, const PrefKey& key) {
    const DefaultsApplication application = applicationOf(key.domain);
    const auto current = calls_->copyValue(key.name, application, HostScope::any);
    if (current && !isOfType(*current, value.typeName())) {
        calls_->removeValue(key.name, application);
        synchronize(key.domain);
    }
    calls_->setValue(key.name, value.propertyListObject(), application);
}

void CFPreferencesStore::remove(const PrefKey& key) {
    calls_->removeValue(key.name, applicationOf(key.domain));
}

void CFPreferencesStore::synchronize(const std::string& domain) {
    if (!calls_->synchronize(applicationOf(domain), HostScope::any))
        throw StoreError(SynchronizeFailed{domain});
}

// Includes what others have saved since the last time.
std::optional<DefaultsObject> CFPreferencesStore::freshValue(const PrefKey& key, HostScope hosts) const {
    const DefaultsApplication application = applicationOf(key.domain);
    // Nothing of ours waits to be saved here, or its own synchronize has already said that it can't be: the
    // answer tells nothing new.
    (void)calls_->synchronize(application, hosts);
    return calls_->copyValue(key.name, application, hosts);
}

// Checks the domain on the way: nothing reaches the platform without it.
DefaultsApplication CFPreferencesStore::applicationOf(const std::string& domain) const {
    checkAllowed(domain);
    return domain == globalDomain ? DefaultsApplication{} : DefaultsApplication{domain};
}

}  // namespace brell
