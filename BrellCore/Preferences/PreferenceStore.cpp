#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

namespace {

struct StoreFailureText {
    std::string operator()(const DomainNotAllowed& failure) const {
        return "The domain " + failure.domain + " is not one Brell may change.";
    }
    std::string operator()(const UnsupportedType& failure) const {
        return failure.key.rendered() + " holds a " + failure.typeWord + ", which Brell does not change.";
    }
    std::string operator()(const SynchronizeFailed& failure) const {
        return "macOS did not confirm the write to " + failure.domain + ".";
    }
    std::string operator()(const StoreIo& failure) const { return failure.message; }
};

// For a store that looks anew at every reading.
class ReadsOneByOne final : public PreferenceReader {
public:
    explicit ReadsOneByOne(PreferenceReader& store) : store_(store) {}

    StoredValue exactValue(const PrefKey& key) override { return store_.exactValue(key); }
    StoredValue effectiveValue(const PrefKey& key) override { return store_.effectiveValue(key); }
    bool hasByHostValue(const PrefKey& key) override { return store_.hasByHostValue(key); }
    bool isForced(const PrefKey& key) override { return store_.isForced(key); }

private:
    PreferenceReader& store_;
};

}  // namespace

std::string describe(const StoreFailure& failure) {
    return std::visit(StoreFailureText(), failure);
}

StoreError::~StoreError() = default;

PreferenceReader::~PreferenceReader() = default;

std::unique_ptr<PreferenceReader> PreferenceStore::reader() {
    return std::make_unique<ReadsOneByOne>(*this);
}

void PreferenceStore::checkAllowed(const std::string& domain) const {
    if (!allowedDomains().contains(domain)) throw StoreError(DomainNotAllowed{domain});
}

void PreferenceStore::put(const StoredValue& stored, const PrefKey& key) {
    if (stored.value)
        write(*stored.value, key);
    else
        remove(key);
}

}  // namespace brell
