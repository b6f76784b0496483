// One program among many, each thread of which does, in random order, what windows, scripts and users do; and
// its diary, a file of its own, in which it notes what it is told. That goes on counting when the program is
// killed.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BrellCore/Support/UniqueFd.h"
#include "Trust/Rig.h"

namespace brell::trust {

// Any thread may write in it.
class Diary {
public:
    explicit Diary(const std::filesystem::path& file);

    void did(std::string_view deed) { note("did", deed); }
    void told(const Uuid& id, EntryStatus status) { note(id.text(), rawValue(status)); }
    void foundDrifted(const Uuid& id) { note("drifted", id.text()); }
    void fault(std::string_view text) { note("fault", text); }

private:
    void note(std::string_view what, std::string_view text);
    UniqueFd file_;
};

// The notes of all programs.
struct Diaries {
    std::size_t done = 0;
    std::vector<std::pair<Uuid, EntryStatus>> told;
    std::set<Uuid> drifted;  // entries that could not be restored without a confirmation
    std::vector<std::string> faults;
};
Diaries readDiaries(const std::filesystem::path& folder);

// The work of one thread. Threads may share the rig and the diary. The same seed gives the same order of
// deeds.
void workUntil(std::chrono::steady_clock::time_point end, Rig& rig, Diary& diary, std::uint64_t seed);

}  // namespace brell::trust
