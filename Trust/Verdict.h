// Tells whether a Mac on which Brell was stopped somewhere can be brought back to what it was.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Trust/Stage.h"

namespace brell::trust {

using Faults = std::vector<std::string>;  // a line each; empty when all is well
void append(Faults& faults, Faults more, const std::string& prefix = {});

// The Mac on the stage is asked for this.
struct Claim {
    // The journal holds exactly these; nothing: at least the entries it held before the operation.
    std::optional<std::vector<JournalEntry>> entries;
    // Files that belong to macOS may be older than an undo that the journal shows as done. What stands in
    // them must then be on record, with its original.
    bool macMayLag = false;
};

// The program is started again: its journal opens and has lost nothing, recovery and then restoring
// everything bring the original condition back.
Faults judgeProgram(const Stage& stage, const Claim& claim);

// The program is gone: the restore script alone does it.
Faults judgeScript(const Stage& stage, const Claim& claim);

// Both, each on the Mac as it is now.
Faults judge(const Stage& stage, const Claim& claim);

// A line for each key and agent that differs and is not among these names.
Faults differences(const Condition& original, const Condition& now, const std::set<std::string>& except = {});

// The keys, in words, and the label that an entry is about.
std::set<std::string> namesOf(const JournalEntry& entry);

}  // namespace brell::trust
