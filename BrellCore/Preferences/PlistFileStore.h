// A preference store that keeps each domain in a property-list file of its own, for everything that runs
// without the user-defaults system; it can also play the situations that the real store meets.
#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/FileContents.h"

namespace brell {

// One shared instance a folder; any thread may call it. Every write replaces the domain's file "DOMAIN.plist"
// whole (XML), so readers never see half a file. Reads follow changes made to the files by others. A file
// that can't be read, parsed or converted raises StoreError and is left as it is.
class PlistFileStore final : public PreferenceStore {
public:
    using Values = std::map<std::string, PrefValue, std::less<>>;  // by key

    // Creates the folder and those above it, at once or with the first write, which is then what fails when
    // it can't. Raises std::filesystem::filesystem_error when something else stands in its place.
    enum class Folder { atOnce, withFirstWrite };
    PlistFileStore(std::filesystem::path directory, DomainSet allowedDomains, Folder folder = Folder::atOnce);

    // Where a store of this folder keeps the domain.
    static std::filesystem::path fileOf(const std::filesystem::path& directory, const std::string& domain);

    const DomainSet& allowedDomains() const override { return allowedDomains_; }
    std::vector<std::string> keys(const std::string& domain) override;
    StoredValue exactValue(const PrefKey& key) override;
    StoredValue effectiveValue(const PrefKey& key) override;  // falls back to the registered system defaults
    bool hasByHostValue(const PrefKey& key) override;
    bool isForced(const PrefKey& key) override;
    void write(const PrefValue& value, const PrefKey& key) override;
    void remove(const PrefKey& key) override;
    void synchronize(const std::string& domain) override;  // every write is already in its file
    void removeLeftovers() noexcept override;
    std::unique_ptr<PreferenceReader> reader() override;

    // The allowed domains that hold anything, with all their keys.
    std::map<std::string, Values> snapshot();

    // Situations to play. None of them touches the files; they last as long as the instance.
    void markByHost(const PrefKey& key);
    void markForced(const PrefKey& key);
    void markUnsupported(const PrefKey& key);  // its reads fail as a dictionary's would
    void registerSystemDefault(const PrefValue& value, const PrefKey& key);
    void failNextWrite(const PrefKey& key);  // only the next one
    void ignoreWrites(const PrefKey& key);   // accepted, not stored

private:
    struct Domain {
        std::filesystem::path file;  // put together once: a status asks for the same few again and again
        std::optional<FileIdentity> identity;  // of the file when it was read; nothing when there was none
        std::variant<std::monostate, Values, StoreFailure> contents;  // nothing: the file is to be read
    };

    class OneLook;
    using Seen = std::set<std::string, std::less<>>;  // domains whose file needs no second look

    StoredValue exactValueLocked(const PrefKey& key, Seen* seen = nullptr);
    StoredValue effectiveValueLocked(const PrefKey& key, Seen* seen = nullptr);
    const Values& valuesLocked(const std::string& domain, Seen* seen = nullptr);
    Values takenValuesLocked(const std::string& domain);
    void saveLocked(const std::string& domain, const Values& values);
    Domain& domainLocked(const std::string& domain);

    const std::filesystem::path directory_;
    const DomainSet allowedDomains_;

    std::mutex mutex_;  // guards everything below and every use of the files
    std::map<std::string, Domain> domains_;
    std::set<PrefKey> byHostKeys_, forcedKeys_, unsupportedKeys_, failingKeys_, ignoredKeys_;
    std::map<PrefKey, PrefValue> systemDefaults_;
};

}  // namespace brell
