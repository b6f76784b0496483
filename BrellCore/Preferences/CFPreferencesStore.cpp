#include "BrellCore/Preferences/CFPreferencesStore.h"

#include "BrellCore/Preferences/NeverTouch.h"

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

// A value that would be refused when it is read is refused before anything of the old value is removed.
PlistValue writable(const PrefValue& value, const PrefKey& key) {
    PlistValue object = value.propertyListObject();
    if (PrefValue::fromPropertyList(object)) return object;
    throw StoreError(StoreIo{key.rendered() + " could not be written: Brell writes no " +
                             propertyListTypeName(object) + "."});
}

bool isOfType(const DefaultsObject& object, std::string_view typeName) {
    const auto value = preference(object);
    return value && value->typeName() == typeName;
}

}  // namespace

// Asking the platform what others have saved is the costly part of a reading.
class CFPreferencesStore::OneLook final : public PreferenceReader {
public:
    explicit OneLook(CFPreferencesStore store) : store_(std::move(store)) {}

    StoredValue exactValue(const PrefKey& key) override { return store_.exactValue(key, &seen_); }
    StoredValue effectiveValue(const PrefKey& key) override { return store_.effectiveValue(key); }
    bool hasByHostValue(const PrefKey& key) override { return store_.hasByHostValue(key, &seen_); }
    bool isForced(const PrefKey& key) override { return store_.isForced(key); }

private:
    CFPreferencesStore store_;
    Seen seen_;
};

UserDefaultsCalls::~UserDefaultsCalls() = default;

CFPreferencesStore::CFPreferencesStore(DomainSet allowedDomains, bool forcedCheck,
                                       std::shared_ptr<UserDefaultsCalls> calls)
    : allowedDomains_(std::move(allowedDomains)), forcedCheck_(forcedCheck), calls_(std::move(calls)) {}

std::unique_ptr<PreferenceReader> CFPreferencesStore::reader() {
    return std::make_unique<OneLook>(*this);
}

std::vector<std::string> CFPreferencesStore::keys(const std::string& domain) {
    const DefaultsApplication application = applicationOf(domain);
    (void)calls_->synchronize(application, HostScope::any);
    return calls_->copyKeys(application);
}

StoredValue CFPreferencesStore::exactValue(const PrefKey& key) {
    return exactValue(key, nullptr);
}

StoredValue CFPreferencesStore::exactValue(const PrefKey& key, Seen* seen) const {
    return classified(freshValue(key, HostScope::any, seen), key);
}

StoredValue CFPreferencesStore::effectiveValue(const PrefKey& key) {
    return classified(calls_->copyAppValue(key.name, applicationOf(key.domain)), key);
}

bool CFPreferencesStore::hasByHostValue(const PrefKey& key) {
    return hasByHostValue(key, nullptr);
}

bool CFPreferencesStore::hasByHostValue(const PrefKey& key, Seen* seen) const {
    return freshValue(key, HostScope::current, seen).has_value();
}

bool CFPreferencesStore::isForced(const PrefKey& key) {
    const DefaultsApplication application = applicationOf(key.domain);
    if (!forcedCheck_) return false;
    if (calls_->appValueIsForced(key.name, application)) return true;
    // The platform promises an answer about a single application only. A value forced for all is forced for
    // this one.
    return !application.identifier &&
           calls_->appValueIsForced(key.name, DefaultsApplication{std::string(NeverTouch::ownLabel)});
}

void CFPreferencesStore::write(const PrefValue& value, const PrefKey& key) {
    const DefaultsApplication application = applicationOf(key.domain);
    const PlistValue object = writable(value, key);
    const auto current = calls_->copyValue(key.name, application, HostScope::any);
    if (current && !isOfType(*current, value.typeName())) {
        calls_->removeValue(key.name, application);
        synchronize(key.domain);
    }
    try {
        calls_->setValue(key.name, object, application);
    } catch (const StoreError& error) {
        throw StoreError(StoreIo{key.rendered() + " could not be written: " + error.what()});
    }
}

void CFPreferencesStore::remove(const PrefKey& key) {
    calls_->removeValue(key.name, applicationOf(key.domain));
}

void CFPreferencesStore::synchronize(const std::string& domain) {
    if (!calls_->synchronize(applicationOf(domain), HostScope::any))
        throw StoreError(SynchronizeFailed{domain});
}

// Includes what others have saved since the last time, or since the domain was first seen.
std::optional<DefaultsObject> CFPreferencesStore::freshValue(const PrefKey& key, HostScope hosts,
                                                             Seen* seen) const {
    const DefaultsApplication application = applicationOf(key.domain);
    // Nothing of ours waits to be saved here, or its own synchronize has already said that it can't be: the
    // answer tells nothing new.
    if (!seen || seen->emplace(key.domain, hosts).second) (void)calls_->synchronize(application, hosts);
    return calls_->copyValue(key.name, application, hosts);
}

// Checks the domain on the way: nothing reaches the platform without it.
DefaultsApplication CFPreferencesStore::applicationOf(const std::string& domain) const {
    checkAllowed(domain);
    return domain == globalDomain ? DefaultsApplication{} : DefaultsApplication{domain};
}

}  // namespace brell
