// One thread of a program among many: does, in random order, what windows, scripts and users do.
#pragma once

#include <chrono>
#include <cstdint>

#include "Trust/Diary.h"
#include "Trust/Rig.h"

namespace brell::trust {

// Threads may share the rig and the diary. The same seed gives the same order of deeds.
void workUntil(std::chrono::steady_clock::time_point end, Rig& rig, Diary& diary, std::uint64_t seed);

}  // namespace brell::trust
