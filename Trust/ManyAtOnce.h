// Many programs, each with several threads, at work on one Mac at a time; now and then one of them is killed
// and another one started.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "Trust/Verdict.h"

namespace brell::trust {

struct Crowd {
    std::size_t programs = 4;
    std::size_t threads = 3;  // of each: the last works alone, the others share what a program has
    std::chrono::seconds time{60};
    std::uint64_t seed = 1;  // of what everybody does, as far as the system's own turns allow
};

struct CrowdReport {
    std::string summary;  // in numbers
    Faults faults;
};

// Works in this folder, which must be the caller's own. Looks while they work whether every reader finds a
// whole journal, and afterwards whether everything that a program was told is in the journal and the history,
// nothing twice, and whether the program and the script alone bring everything back.
CrowdReport tryManyAtOnce(const std::filesystem::path& folder, const Crowd& crowd);

}  // namespace brell::trust
