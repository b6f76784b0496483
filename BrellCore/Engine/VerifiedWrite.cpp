#include "BrellCore/Engine/VerifiedWrite.h"

#include <exception>

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

std::optional<EngineFailure> whyNotOverwritten(const JournaledWrite& write, PreferenceStore& store) try {
    const StoredValue now = store.exactValue(write.key);
    if (now == write.original) return std::nullopt;
    return Refused{write.key.rendered() + " was changed by another program just now, to " + now.rendered() +
                   ", and is left as it is."};
} catch (const StoreError& error) {
    return error.failure();
}

std::optional<EngineFailure> writeVerified(const JournaledWrite& write, PreferenceStore& store) try {
    store.put(write.written, write.key);
    store.synchronize(write.key.domain);
    const StoredValue read = store.exactValue(write.key);
    if (read == write.written) return std::nullopt;
    return VerifyFailed{write.key, write.written, read};
} catch (const StoreError& error) {
    return error.failure();
}

void putBack(const JournaledWrite& write, OtherType otherType, PreferenceStore& store) {
    if (otherType == OtherType::keep) store.exactValue(write.key);  // raises where there is one
    try {
        store.put(write.original, write.key);
    } catch (const StoreError&) {
        // A store that took neither the change nor this holds the original all the same.
        if (store.exactValue(write.key) != write.original) throw;
    }
    store.synchronize(write.key.domain);
    const StoredValue read = store.exactValue(write.key);
    if (read != write.original)
        throw StoreError(StoreIo{"After putting back " + write.key.rendered() + ", macOS reports " +
                                 read.rendered() + " instead of " + write.original.rendered() + "."});
}

void putBack(const std::vector<JournaledWrite>& writes, OtherType otherType, PreferenceStore& store) {
    std::exception_ptr first;
    for (const JournaledWrite& write : writes) try {
            putBack(write, otherType, store);
        } catch (const StoreError&) {
            if (!first) first = std::current_exception();
        }
    if (first) std::rethrow_exception(first);
}

}  // namespace brell
