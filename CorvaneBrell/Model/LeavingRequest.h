// What is asked and told of a user who leaves Brell.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/JournalEntry.h"
#include "CorvaneBrell/Model/EntryWords.h"

namespace brell {

class PreferenceReader;

struct LeavingRequest {
    struct Change {
        Uuid id;
        std::string title;
        std::string words;  // "Large, back to 41"
        bool operator==(const Change&) const = default;
    };

    Uuid id;
    std::vector<Uuid> concerned;               // every change that was active once it was asked
    std::vector<Change> active;                // still, newest first: nothing can be removed
    std::optional<UndoProof> proof;            // of the concerned ones that are restored
    std::vector<std::string> keys;             // and key by key
    std::string folder;                        // where Brell's own files lie
    std::optional<std::string> whyNotToTrash;  // with nothing active: why the folder stays all the same

    bool isProved() const { return !proof || proof->isComplete; }
    bool mayGoToTrash() const { return active.empty() && !whyNotToTrash; }
    bool operator==(const LeavingRequest&) const = default;
};

// entries are those of the journal, newest first; concerned those of the request before.
LeavingRequest leavingRequest(const std::vector<JournalEntry>& entries, std::vector<Uuid> concerned,
                              const ChangeTitles& titles, PreferenceReader& preferences);

// Brell's own files are gone; nothing is left to decide.
struct LeavingReport {
    std::vector<std::string> lines;  // sentences
    bool operator==(const LeavingReport&) const = default;
};

// folder is empty where there was none; whyNotCleared is why Brell's own preferences are as they were.
LeavingReport leavingReport(const std::string& folder, const std::optional<std::string>& whyNotCleared);

}  // namespace brell
