#include "BrellCore/Preferences/PlistFileStore.h"

#include <fmt/format.h>

#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/Leftovers.h"
#include "BrellCore/Support/PropertyList.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// Real preference files are a few kilobytes; one this large is not a preference file.
constexpr std::size_t mostBytes = 16 * 1024 * 1024;

StoreFailure unreadable(const fs::path& file, const std::string& reason) {
    return StoreIo{"The preference file " + file.string() + " could not be read: " + reason + "."};
}

StoreError unwritable(const fs::path& file, const std::string& reason) {
    return StoreError(
        StoreIo{"The preference file " + file.string() + " could not be written: " + reason + "."});
}

std::string textOf(const PlistFileStore::Values& values) {
    PlistDictionary dictionary;
    dictionary.entries.reserve(values.size());
    for (const auto& [key, value] : values) dictionary.entries.emplace_back(key, value.propertyListObject());
    return writeXmlPropertyList({std::move(dictionary)});
}

using Parsed = std::variant<std::monostate, PlistFileStore::Values, StoreFailure>;

Parsed parse(const std::string& domain, const fs::path& file, std::string_view bytes) try {
    const PlistValue root = readPropertyList(bytes);
    const auto* dictionary = root.as<PlistDictionary>();
    if (!dictionary) return unreadable(file, "it does not hold a dictionary");
    PlistFileStore::Values values;
    for (const auto& [key, object] : dictionary->entries) {
        auto value = PrefValue::fromPropertyList(object);
        if (!value) return UnsupportedType{{domain, key}, propertyListTypeName(object)};
        values.emplace_hint(values.end(), key, std::move(*value));  // a text of our own writing is in order
    }
    return values;
} catch (const PlistError& error) {
    return unreadable(file, error.failure().reason);
}

}  // namespace

class PlistFileStore::OneLook final : public PreferenceReader {
public:
    explicit OneLook(PlistFileStore& store) : store_(store) {}

    StoredValue exactValue(const PrefKey& key) override {
        const std::lock_guard lock(store_.mutex_);
        return store_.exactValueLocked(key, &seen_);
    }
    StoredValue effectiveValue(const PrefKey& key) override {
        const std::lock_guard lock(store_.mutex_);
        return store_.effectiveValueLocked(key, &seen_);
    }
    bool hasByHostValue(const PrefKey& key) override { return store_.hasByHostValue(key); }
    bool isForced(const PrefKey& key) override { return store_.isForced(key); }

private:
    PlistFileStore& store_;
    Seen seen_;
};

PlistFileStore::PlistFileStore(fs::path directory, DomainSet allowedDomains, Folder folder)
    : directory_(std::move(directory)), allowedDomains_(std::move(allowedDomains)) {
    if (folder == Folder::atOnce || fs::exists(directory_)) fs::create_directories(directory_);
}

std::vector<std::string> PlistFileStore::keys(const std::string& domain) {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> keys;
    for (const auto& [key, value] : valuesLocked(domain)) keys.push_back(key);
    return keys;
}

StoredValue PlistFileStore::exactValue(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    return exactValueLocked(key);
}

StoredValue PlistFileStore::effectiveValue(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    return effectiveValueLocked(key);
}

bool PlistFileStore::hasByHostValue(const PrefKey& key) {
    checkAllowed(key.domain);
    const std::lock_guard lock(mutex_);
    return byHostKeys_.contains(key);
}

bool PlistFileStore::isForced(const PrefKey& key) {
    checkAllowed(key.domain);
    const std::lock_guard lock(mutex_);
    return forcedKeys_.contains(key);
}

void PlistFileStore::write(const PrefValue& value, const PrefKey& key) {
    checkAllowed(key.domain);
    const std::lock_guard lock(mutex_);
    if (failingKeys_.erase(key) > 0)
        throw StoreError(StoreIo{"simulated write failure for " + key.rendered()});
    if (ignoredKeys_.contains(key)) return;
    Values values = takenValuesLocked(key.domain);
    values.insert_or_assign(key.name, value);
    saveLocked(key.domain, values);
}

void PlistFileStore::remove(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    if (!valuesLocked(key.domain).contains(key.name)) return;
    Values values = takenValuesLocked(key.domain);
    values.erase(key.name);
    saveLocked(key.domain, values);
}

void PlistFileStore::synchronize(const std::string& domain) {
    checkAllowed(domain);
}

void PlistFileStore::removeLeftovers() noexcept {
    std::vector<fs::path> files;
    for (const std::string& domain : allowedDomains_) files.push_back(fileOf(directory_, domain));
    brell::removeLeftovers(files);
}

std::unique_ptr<PreferenceReader> PlistFileStore::reader() {
    return std::make_unique<OneLook>(*this);
}

std::map<std::string, PlistFileStore::Values> PlistFileStore::snapshot() {
    const std::lock_guard lock(mutex_);
    std::map<std::string, Values> everything;
    for (const std::string& domain : allowedDomains_)
        if (const Values& values = valuesLocked(domain); !values.empty()) everything.emplace(domain, values);
    return everything;
}

void PlistFileStore::markByHost(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    byHostKeys_.insert(key);
}

void PlistFileStore::markForced(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    forcedKeys_.insert(key);
}

void PlistFileStore::markUnsupported(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    unsupportedKeys_.insert(key);
}

void PlistFileStore::registerSystemDefault(const PrefValue& value, const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    systemDefaults_.insert_or_assign(key, value);
}

void PlistFileStore::failNextWrite(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    failingKeys_.insert(key);
}

void PlistFileStore::ignoreWrites(const PrefKey& key) {
    const std::lock_guard lock(mutex_);
    ignoredKeys_.insert(key);
}

StoredValue PlistFileStore::exactValueLocked(const PrefKey& key, Seen* seen) {
    const Values& values = valuesLocked(key.domain, seen);
    if (unsupportedKeys_.contains(key)) throw StoreError(UnsupportedType{key, "dictionary"});
    const auto found = values.find(key.name);
    return found == values.end() ? StoredValue() : StoredValue(found->second);
}

StoredValue PlistFileStore::effectiveValueLocked(const PrefKey& key, Seen* seen) {
    const StoredValue exact = exactValueLocked(key, seen);
    if (!exact.isAbsent()) return exact;
    const auto systemDefault = systemDefaults_.find(key);
    return systemDefault == systemDefaults_.end() ? StoredValue() : StoredValue(systemDefault->second);
}

// The contents of the domain's file; parsed again only when the file is no longer the one that was parsed.
const PlistFileStore::Values& PlistFileStore::valuesLocked(const std::string& domain, Seen* seen) try {
    checkAllowed(domain);
    auto& [file, identity, contents] = domainLocked(domain);
    const bool isSeen = seen && seen->contains(domain);
    const bool isRead = !std::holds_alternative<std::monostate>(contents);
    if (!isRead || (!isSeen && identity != identityOf(file))) {
        contents = std::monostate();  // until the reading went well
        const auto read = readFile(file, mostBytes);
        identity = read ? std::optional(read->identity) : std::nullopt;
        contents = read ? parse(domain, file, read->bytes) : Values();
    }
    if (seen && !isSeen) seen->insert(domain);  // only now: a look that failed is no look
    if (const auto* failure = std::get_if<StoreFailure>(&contents)) throw StoreError(*failure);
    return std::get<Values>(contents);
} catch (const ReadError& error) {
    throw StoreError(unreadable(error.failure().path, error.failure().reason));
}

// To be changed and saved. The next reading looks at the file, which proves what really arrived in it.
PlistFileStore::Values PlistFileStore::takenValuesLocked(const std::string& domain) {
    valuesLocked(domain);
    auto& contents = domainLocked(domain).contents;
    Values values = std::get<Values>(std::move(contents));
    contents = std::monostate();
    return values;
}

void PlistFileStore::saveLocked(const std::string& domain, const Values& values) {
    const fs::path& file = domainLocked(domain).file;
    try {
        const std::string text = textOf(values);
        // A file that could not be read again could not be put back either. A small binary file can be a
        // large text.
        if (text.size() > mostBytes)
            throw unwritable(file, fmt::format("it would hold more than {} bytes", mostBytes));
        replaceFile(file, text, Durability::readersOnly);
    } catch (const PlistError& error) {
        throw unwritable(file, error.failure().reason);
    } catch (const ReplaceError& error) {
        throw unwritable(file, systemMessage(error.failure().code));
    }
}

PlistFileStore::Domain& PlistFileStore::domainLocked(const std::string& domain) {
    const auto known = domains_.find(domain);
    if (known != domains_.end()) return known->second;
    return domains_.emplace(domain, Domain{fileOf(directory_, domain), std::nullopt, {}}).first->second;
}

fs::path PlistFileStore::fileOf(const fs::path& directory, const std::string& domain) {
    return directory / (domain + ".plist");
}

}  // namespace brell
