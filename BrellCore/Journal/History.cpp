#include "BrellCore/Journal/History.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "BrellCore/Journal/HistoryText.h"
#include "BrellCore/Support/DiskFlush.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/JsonReader.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::string_view extension = ".jsonl";
constexpr std::size_t mostBytes = 256 * 1024 * 1024;  // of one day

// Never through a link, which another program may have planted: the name is known in advance.
UniqueFd openForAppending(const fs::path& file) {
    std::error_code ignored;
    return openInFolder(file, O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC,
                        0600, ignored);
}

// A process that died while writing may have left a line without its end.
bool endsInsideALine(const UniqueFd& file, off_t size) {
    char last = '\n';
    return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

struct HistoryFile {
    fs::path path;
    std::uintmax_t size;  // 0 where it is unknown, or more than is read
};

// A folder that is missing has none.
std::vector<HistoryFile> filesOf(const fs::path& directory, std::error_code& failed) {
    std::vector<HistoryFile> files;
    for (fs::directory_iterator entry(directory, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        if (!entry->path().filename().string().ends_with(extension)) continue;
        std::error_code unknown;
        const std::uintmax_t size = entry->file_size(unknown);
        files.push_back({entry->path(), unknown || size > mostBytes ? 0 : size});
    }
    if (failed == std::errc::no_such_file_or_directory) failed.clear();
    std::sort(files.begin(), files.end(),
              [](const HistoryFile& one, const HistoryFile& other) { return one.path < other.path; });
    return files;
}

std::uintmax_t bytesOf(const std::vector<HistoryFile>& files) {
    std::uintmax_t all = 0;
    for (const HistoryFile& file : files) all += file.size;
    return all;
}

// How many lines all files hold when they are as long as these, which a file of so many bytes had. A little
// more: growing a list of so large records costs more than room that stays untouched.
std::size_t expectedLines(std::uintmax_t total, std::size_t lines, std::uintmax_t bytes) {
    constexpr std::uintmax_t mostLines = 1'000'000;  // room is made for; there may be more
    const std::uintmax_t files = total / std::max<std::uintmax_t>(bytes, 1);
    return static_cast<std::size_t>(std::min<std::uintmax_t>(lines * (files * 9 / 8 + 1), mostLines));
}

template <class ReadText>
HistoryReading readFiles(const fs::path& directory, const BetweenFiles& goOn, ReadText&& readText) {
    HistoryReading reading;
    std::error_code failed;
    const std::vector<HistoryFile> files = filesOf(directory, failed);
    if (failed)
        reading.unread.push_back("The folder " + directory.string() +
                                 " could not be read: " + failed.message() + ".");
    const std::uintmax_t total = bytesOf(files);
    std::uintmax_t done = 0;
    std::string room;  // the same for each day: making it anew costs more than reading into it
    for (const HistoryFile& file : files) {
        if (!goOn(reading.lines, done, total)) return reading;
        try {
            auto contents =
                readFile(file.path, mostBytes, simdjson::SIMDJSON_PADDING, std::exchange(room, {}));
            if (contents) {
                readText(contents->bytes, reading);
                room = std::move(contents->bytes);
            }
        } catch (const ReadError& error) {
            reading.unread.emplace_back(error.what());  // the other days are still told
        }
        done += file.size;
    }
    return reading;
}

}  // namespace

std::string HistoryLine::id() const {
    return entry.id.text() + "-" + std::string(rawValue(event)) + "-" +
           std::to_string(at.time_since_epoch().count());
}

bool appendHistoryLine(const fs::path& directory, TimeStamp at, const JournalEntry& entry) {
    const UniqueFd file = openForAppending(directory / (localDay(at) + std::string(extension)));
    struct stat status;
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    std::string line = historyLineText(at, entry);
    if (endsInsideALine(file, status.st_size)) line.insert(line.begin(), '\n');
    // One call, so that lines of several processes never mix.
    return ::write(file.get(), line.data(), line.size()) == static_cast<ssize_t>(line.size());
}

std::vector<HistoryLine> readHistory(const fs::path& directory, std::optional<TimeStamp> cutOff) {
    bool hasRoom = false;
    std::uintmax_t before = 0;
    const auto makeRoom = [&](std::vector<HistoryLine>& lines, std::uintmax_t done, std::uintmax_t total) {
        if (!hasRoom && !lines.empty()) lines.reserve(expectedLines(total, lines.size(), done - before));
        hasRoom = !lines.empty();
        before = done;
        return true;
    };
    return readFiles(directory, makeRoom,
                     [&](const std::string& text, HistoryReading& reading) {
                         readHistoryLines(text, cutOff, reading);
                     })
        .lines;
}

HistoryReading readLastOfHistory(const fs::path& directory, const BetweenFiles& goOn) {
    return readFiles(directory, goOn, readLastLines);
}

}  // namespace brell
