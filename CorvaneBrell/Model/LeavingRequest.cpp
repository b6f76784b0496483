#include "CorvaneBrell/Model/LeavingRequest.h"

#include <set>

#include "CorvaneBrell/Model/ValueWords.h"

namespace brell {

LeavingRequest leavingRequest(const std::vector<JournalEntry>& entries, std::vector<Uuid> concerned,
                              const ChangeTitles& titles, PreferenceReader& preferences) {
    LeavingRequest request{Uuid::random(), std::move(concerned), {}, {}, {}, {}, std::nullopt};
    std::set<Uuid> asked(request.concerned.begin(), request.concerned.end());
    std::vector<JournalEntry> restored;
    for (const JournalEntry& entry : entries) {
        if (entry.isActive()) {
            request.active.push_back({entry.id, titles.of(entry), changeWords(entry, titles.catalog())});
            if (asked.insert(entry.id).second) request.concerned.push_back(entry.id);
        } else if (asked.contains(entry.id)) {
            restored.push_back(entry);
        }
    }
    const KeyReadings keys = readKeys(restored, preferences);
    request.proof = undoProof(restored, keys, {}, titles);
    for (const KeyReading& key : keys) request.keys.push_back(proofLine(key));
    return request;
}

LeavingReport leavingReport(const std::string& folder, const std::optional<std::string>& whyNotCleared) {
    LeavingReport report;
    report.lines.push_back(folder.empty()
                               ? "There was no folder of Brell's to remove."
                               : folder +
                                     " is in the Trash, with the journal, its history and the restore "
                                     "script. Until the Trash is emptied it can be put back.");
    if (whyNotCleared)
        report.lines.push_back("Brell's own preferences could not be removed: " + *whyNotCleared);
    else
        report.lines.push_back(
            "Brell's own preferences are removed. The application itself stays until you remove it.");
    return report;
}

}  // namespace brell
