#include "CorvaneBrell/Model/UndoProof.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

std::string difference(const KeyProof& proof) {
    if (!proof.now)
        return proof.key.rendered() + " cannot be read; it was " + proof.original.rendered() + ".";
    return proof.key.rendered() + " is " + proof.now->rendered() + "; it was " + proof.original.rendered() +
           ".";
}

}  // namespace

std::optional<StoredValue> readIfPossible(const PrefKey& key, PreferenceStore& store) try {
    return store.exactValue(key);
} catch (const StoreError&) {
    return std::nullopt;
}

UndoProof proveUndo(const JournalEntry& entry, PreferenceStore& store) {
    UndoProof proof;
    for (const JournaledWrite& write : entry.writes)
        proof.push_back({write.key, write.original, readIfPossible(write.key, store)});
    return proof;
}

std::string sentence(const UndoProof& proof) {
    const auto asBefore = std::count_if(proof.begin(), proof.end(), std::mem_fn(&KeyProof::isAsBefore));
    std::string text = proof.size() == 1
                           ? fmt::format("{} of 1 key is exactly as before.", asBefore)
                           : fmt::format("{} of {} keys are exactly as before.", asBefore, proof.size());
    std::vector<std::string> differences{std::move(text)};
    for (const KeyProof& key : proof)
        if (!key.isAsBefore()) differences.push_back(difference(key));
    return firstOf(differences, " ");
}

bool isAlreadyBack(const JournalEntry& entry, PreferenceStore& store) {
    const UndoProof proof = proveUndo(entry, store);
    return !proof.empty() && std::all_of(proof.begin(), proof.end(), std::mem_fn(&KeyProof::isAsBefore));
}

std::optional<std::string> madeOnAnotherMacOS(const JournalEntry& entry, std::string_view runningVersion) {
    if (entry.macOSVersion == runningVersion) return std::nullopt;
    return fmt::format("Made on macOS {}; this Mac now runs {}.", entry.macOSVersion, runningVersion);
}

}  // namespace brell
