// The one way to read and write preferences: user defaults, property-list files, or a dry run's record.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "BrellCore/Preferences/PrefKey.h"
#include "BrellCore/Preferences/PrefValue.h"
#include "BrellCore/Preferences/StoreError.h"

namespace brell {

// Every reading refuses a domain outside the store's allowed ones before anything else and raises StoreError
// only; a value that is not one of the PrefValue kinds raises UnsupportedType.
class PreferenceReader {
public:
    virtual ~PreferenceReader();

    // The value stored for the current user on any host in exactly this domain: no global domain, no managed
    // and no per-host values.
    virtual StoredValue exactValue(const PrefKey& key) = 0;
    // The value that an application of the domain sees after the platform's whole search.
    virtual StoredValue effectiveValue(const PrefKey& key) = 0;
    // A value for this host only, which hides the ordinary one.
    virtual bool hasByHostValue(const PrefKey& key) = 0;
    // A managed profile forces the key.
    virtual bool isForced(const PrefKey& key) = 0;
};

// Every operation may be called from any thread, refuses a domain outside allowedDomains before anything else
// and raises StoreError only. Its readings see what anybody has saved before; a value of an unsupported type
// is never changed.
class PreferenceStore : public PreferenceReader {
public:
    virtual const DomainSet& allowedDomains() const = 0;
    // The keys that are stored where exactValue reads, also those with a value of an unsupported type.
    virtual std::vector<std::string> keys(const std::string& domain) = 0;

    virtual void write(const PrefValue& value, const PrefKey& key) = 0;
    virtual void remove(const PrefKey& key) = 0;  // a key that is not stored is no error
    // Flushes what was written to the domain; SynchronizeFailed when the platform does not confirm it.
    virtual void synchronize(const std::string& domain) = 0;

    // Removes what killed processes left of their writes, where a store of its own files has such. Raises
    // nothing.
    virtual void removeLeftovers() noexcept {}

    // For reading many keys at once, on one thread. A store for which looking is dear looks at each domain
    // once, when its first key is read; changes that others make to it afterwards may or may not be seen.
    // Must not outlive the store.
    virtual std::unique_ptr<PreferenceReader> reader();

    // Raises DomainNotAllowed for a domain outside allowedDomains.
    void checkAllowed(const std::string& domain) const;
    // Makes the key hold exactly this, absence included.
    void put(const StoredValue& stored, const PrefKey& key);
};

}  // namespace brell
