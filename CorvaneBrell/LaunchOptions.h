// The switches of one run.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace brell {

struct LaunchOptions {
    std::optional<std::filesystem::path>
        journalDirectory;  // absolute; overrides the normal and the dry-run one
    bool dryRun = false;   // record what would be changed instead of changing it
    bool applyAll = false;
    bool restoreAll = false;
    std::optional<std::string> toggleAgent;  // label of a user LaunchAgent to turn off
    std::optional<std::string>
        quitAfterCapture;  // id of a tweak whose change is cut off before its first write
    bool statusJSON = false;
    std::optional<std::filesystem::path> snapshotPath;  // the window is rendered to this image file
    double snapshotDelay = 1.5;                         // seconds before that
    bool quitAfterSnapshot = false;
    std::optional<std::string> openGroup;            // screen to show first
    std::optional<std::filesystem::path> sampleMac;  // work on the simulated Mac in this folder; absolute

    // True when the run is to do something without a window and end.
    bool isHeadlessRequest() const {
        return applyAll || restoreAll || toggleAgent || quitAfterCapture || statusJSON;
    }
    bool operator==(const LaunchOptions&) const = default;
};

// The end of a run that asked for help or could not be understood.
struct EarlyEnd {
    int status;        // 0 after --help and --version, 2 for words that make no sense
    std::string text;  // to print, with its line feeds
    bool operator==(const EarlyEnd&) const = default;
};

struct CommandLine {
    LaunchOptions options;
    std::optional<EarlyEnd> earlyEnd;  // options are the defaults then
    bool operator==(const CommandLine&) const = default;
};

// Reads the words of the command line, and looks at nothing else. A word either does what --help says of it
// or ends the run: a value that is missing, empty or begins with "--" is never taken for one. The
// configuration that users get ignores every one of them.
CommandLine readCommandLine(int argc, const char* const* argv);

}  // namespace brell
