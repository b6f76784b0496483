// An operation in which something went wrong leaves a clear sentence, nothing half done that no
// entry records, and a next try that works.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Trust/Verdict.h"

namespace brell::trust {

// The end of an operation in which nothing goes wrong.
struct Goal {
    Condition condition;
    std::set<std::string> activeTweaks;
    bool hasLeft = false;  // the journal is where leaving moves it
    bool operator==(const Goal&) const = default;
};
Goal goalOf(const Stage& stage, const Scene& scene);

// A user can read it: a whole sentence, with no word of the program's inside in it.
bool isWhole(const std::string& sentence);

// How one try ended.
struct Attempt {
    std::vector<std::string> sentences;       // in which failures were reported
    std::optional<std::string> foreignError;  // of none of the types that the operation's callers know
    bool succeeded() const { return sentences.empty() && !foreignError; }
};
Attempt attempt(const Scene& scene, Rig& rig);

// The rig is the one of the attempt, and nothing goes wrong any more.
Faults judgeAttempt(const Stage& stage, const Scene& scene, Rig& rig, const Attempt& made, bool troubleLasted,
                    const Goal& goal);

}  // namespace brell::trust
