#include "Tests/Support/Testing.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "BrellCore/Support/Uuid.h"

namespace brell::testing {

// A name such as people may give their folders: scripts that take it unquoted fail.
TemporaryFolder::TemporaryFolder()
    : path(fs::canonical(fs::temp_directory_path()) / ("brell's \"test\" $folder-" + Uuid::random().text())) {
    fs::create_directories(path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

void keepFoldersInMemory() {
    const bool isThere = fs::temp_directory_path().string().starts_with("/dev/shm");
    if (!isThere && fs::is_directory("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
}

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing)) names.insert(entry.path().filename());
    return names;
}

std::string contentsOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string sample(const fs::path& name) {
    const fs::path file = fs::path(BRELL_SAMPLES) / name;
    if (!fs::is_regular_file(file)) throw std::runtime_error("no sample " + file.string());
    return contentsOf(file);
}

std::vector<Texts> sampleRows(const fs::path& name) {
    std::vector<Texts> rows;
    std::istringstream lines(sample(name));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream columns(line);
        rows.emplace_back();
        for (std::string column; std::getline(columns, column, '\t');) rows.back().push_back(column);
    }
    return rows;
}

void setContents(const fs::path& file, std::string_view contents) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary)
        .write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

std::map<std::string, std::string> everythingIn(const fs::path& folder) {
    std::map<std::string, std::string> everything;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        everything[entry.path().lexically_relative(folder).string()] =
            entry.is_directory() ? "(folder)" : contentsOf(entry.path());
    return everything;
}

std::vector<std::string> changesIn(const fs::path& folder, std::map<std::string, std::string> before) {
    std::vector<std::string> changed;
    for (const auto& [path, contents] : everythingIn(folder))
        if (const auto known = before.extract(path); known.empty() || known.mapped() != contents)
            changed.push_back(path);
    for (const auto& [path, contents] : before) changed.push_back(path + " is gone");
    return changed;
}

}  // namespace brell::testing
