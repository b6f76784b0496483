// Every program of a crowd notes what happens to it in a file of its own: what it was told goes on
// counting when it is killed.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"
#include "BrellCore/Support/UniqueFd.h"

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

}  // namespace brell::trust
