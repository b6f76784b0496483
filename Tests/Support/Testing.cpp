#include "Tests/Support/Testing.h"

#include <fstream>
#include <sstream>

#include "BrellCore/Support/Uuid.h"

namespace fs = std::filesystem;

namespace brell::testing {

TemporaryFolder::TemporaryFolder()
    : path(fs::canonical(fs::temp_directory_path()) / ("brell-test-" + Uuid::random().text())) {
    fs::create_directories(path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
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

void setContents(const fs::path& file, std::string_view contents) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary)
        .write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

}  // namespace brell::testing
