// The question and the report about a damaged journal that is rebuilt from its history.
#pragma once

#include <string>
#include <vector>

#include "BrellCore/Background/ChangeTitles.h"
#include "BrellCore/Journal/JournalRebuild.h"

namespace brell {

class PreferenceReader;

// A journal that was damaged at the start is not used before the next one.
enum class RebuiltFor { thisRun, nextRun };

struct RebuildRequest {
    struct Change {
        std::string title;
        std::string state;  // what its keys hold now, a sentence
        bool operator==(const Change&) const = default;
    };

    Uuid id;
    RebuildPlan plan;
    std::vector<Change> active;      // oldest first
    std::vector<std::string> facts;  // about the history, sentences
    bool operator==(const RebuildRequest&) const = default;
};

RebuildRequest rebuildRequest(RebuildPlan plan, RebuiltFor use, const ChangeTitles& titles,
                              PreferenceReader& preferences);

// The outcome of rebuilding; nothing is left to decide.
struct RebuildReport {
    std::vector<std::string> lines;  // sentences
    RebuiltFor use;
    bool operator==(const RebuildReport&) const = default;
};

RebuildReport rebuildReport(const Rebuilt& rebuilt, RebuiltFor use);

}  // namespace brell
