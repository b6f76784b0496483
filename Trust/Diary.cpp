#include "Trust/Diary.h"

#include <fcntl.h>

#include <sstream>
#include <stdexcept>

#include "BrellCore/Support/Text.h"
#include "Tests/Support/Testing.h"

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

void add(Diaries& diaries, const std::string& what, const std::string& text) {
    if (what == "did")
        ++diaries.done;
    else if (what == "drifted")
        diaries.drifted.insert(Uuid::parse(text).value());
    else if (what == "fault")
        diaries.faults.push_back(text);
    else
        diaries.told.emplace_back(Uuid::parse(what).value(), fromRawValue<EntryStatus>(text).value());
}

}  // namespace

Diary::Diary(const fs::path& file)
    : file_(::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600)) {
    if (!file_) throw std::runtime_error("no diary " + file.string());
}

void Diary::note(std::string_view what, std::string_view text) {
    // One call, so that lines of several threads never mix.
    const std::string line = std::string(what) + " " + oneLine(text) + "\n";
    if (::write(file_.get(), line.data(), line.size()) != static_cast<ssize_t>(line.size())) ::_exit(3);
}

Diaries readDiaries(const fs::path& folder) {
    Diaries diaries;
    for (const std::string& name : testing::namesIn(folder)) {
        std::istringstream lines(testing::contentsOf(folder / name));
        // A line without its end is one that its writer was killed over.
        for (std::string what, text; lines >> what && std::getline(lines.ignore(), text) && !lines.eof();)
            add(diaries, what, text);
    }
    return diaries;
}

}  // namespace brell::trust
