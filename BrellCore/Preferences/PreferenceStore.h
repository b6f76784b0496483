// The one way to read and write preferences: user defaults, property-list files, or a dry run's record.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <variant>

#include "BrellCore/Preferences/PrefValue.h"
#include "BrellCore/Support/Failure.h"

namespace brell {

inline constexpr std::string_view globalDomain = "NSGlobalDomain";

// A key of a preference domain. Both are compared exactly, letter case included.
struct PrefKey {
    std::string domain;  // "com.apple.dock", or globalDomain
    std::string name;    // "autohide"

    std::string rendered() const { return domain + " " + name; }
    bool operator==(const PrefKey&) const = default;
    auto operator<=>(const PrefKey&) const = default;
};

struct DomainNotAllowed {
    std::string domain;
    bool operator==(const DomainNotAllowed&) const = default;
};
struct UnsupportedType {
    PrefKey key;
    std::string typeWord;  // from propertyListTypeName
    bool operator==(const UnsupportedType&) const = default;
};
struct SynchronizeFailed {
    std::string domain;
    bool operator==(const SynchronizeFailed&) const = default;
};
struct StoreIo {
    std::string message;  // a whole sentence
    bool operator==(const StoreIo&) const = default;
};

using StoreFailure = std::variant<DomainNotAllowed, UnsupportedType, SynchronizeFailed, StoreIo>;
std::string describe(const StoreFailure& failure);

class StoreError final : public FailureError<StoreFailure> {
public:
    using FailureError::FailureError;
    ~StoreError() override;
};

using DomainSet = std::set<std::string, std::less<>>;

// Every operation may be called from any thread, refuses a domain outside allowedDomains before anything else
// and raises StoreError only. A reading of a value that is not one of the PrefValue kinds raises
// UnsupportedType; such a value is never changed.
class PreferenceStore {
public:
    virtual ~PreferenceStore();

    virtual const DomainSet& allowedDomains() const = 0;

    // What is stored for the current user on any host in exactly this domain: no global domain, no managed
    // and no per-host values.
    virtual StoredValue exactValue(const PrefKey& key) = 0;
    // What an application of the domain sees after the platform's whole search.
    virtual StoredValue effectiveValue(const PrefKey& key) = 0;
    // A value for this host only, which hides the ordinary one.
    virtual bool hasByHostValue(const PrefKey& key) = 0;
    // A managed profile forces the key.
    virtual bool isForced(const PrefKey& key) = 0;

    virtual void write(const PrefValue& value, const PrefKey& key) = 0;
    virtual void remove(const PrefKey& key) = 0;  // a key that is not stored is no error
    // Flushes what was written to the domain; SynchronizeFailed when the platform does not confirm it.
    virtual void synchronize(const std::string& domain) = 0;

    // Raises DomainNotAllowed for a domain outside allowedDomains.
    void checkAllowed(const std::string& domain) const;
    // Makes the key hold exactly this, absence included.
    void put(const StoredValue& stored, const PrefKey& key);
};

}  // namespace brell
