#include <CLI/CLI.hpp>

#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/LaunchOptions.h"
#include "CorvaneBrell/Version.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// What is wrong with the text behind a word; empty when nothing is.
std::string pathProblem(const std::string& text) {
    return text.empty() ? "a path is missing" : "";
}
std::string delayProblem(const std::string& text) {
    const auto seconds = parseReal(text);
    // Put this way round, because nan is neither less nor more.
    return seconds && *seconds >= 0 && *seconds <= 3600 ? "" : text + " is not between 0 and 3600";
}

void addWords(CLI::App& app, LaunchOptions& options) {
    app.add_option("--journal-directory", options.journalDirectory, "Keep the journal in this folder")
        ->type_name("DIR")
        ->check(pathProblem);
    app.add_flag("--dry-run", options.dryRun, "Print what would be changed; change nothing");
    app.add_flag("--apply-all", options.applyAll, "Apply every tweak");
    app.add_flag("--restore-all", options.restoreAll,
                 "Restore everything, also what was changed by others since");
    app.add_option("--toggle-agent", options.toggleAgent, "Turn a LaunchAgent of the user off")
        ->type_name("LABEL");
    app.add_option("--quit-after-capture", options.quitAfterCapture,
                   "Start to apply a tweak and end before its first write")
        ->type_name("ID");
    app.add_flag("--status-json", options.statusJSON, "Print the status of every tweak as JSON");
    app.add_option("--snapshot", options.snapshotPath, "Render the window to this image file")
        ->type_name("FILE")
        ->check(pathProblem);
    app.add_option("--snapshot-delay", options.snapshotDelay, "Wait before rendering it (1.5)")
        ->type_name("SECONDS")
        ->check(delayProblem);
    app.add_flag("--quit-after-snapshot", options.quitAfterSnapshot, "End once the image is written");
    app.add_option("--open-group", options.openGroup, "Show this screen first")->type_name("SCREEN");
    app.add_option("--sample-mac", options.sampleMac, "Work on the simulated Mac in this folder")
        ->type_name("DIR")
        ->check(pathProblem);
}

void makeAbsolute(std::optional<fs::path>& path) {
    if (path) path = fs::absolute(*path).lexically_normal();
}

std::string asSentence(const std::string& text) {
    return text.ends_with('.') ? text : text + ".";
}

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv) {
    LaunchOptions options;
    CLI::App app("Corvane Brell changes hidden preferences of macOS and undoes every change exactly.",
                 "corvane-brell");
    app.set_version_flag("--version", "Corvane Brell " + std::string(version));
    addWords(app, options);
    try {
        app.parse(argc, argv);
        makeAbsolute(options.journalDirectory);
        makeAbsolute(options.snapshotPath);
        makeAbsolute(options.sampleMac);
        return {options, std::nullopt};
    } catch (const CLI::CallForHelp&) {
        return {{}, EarlyEnd{0, app.help()}};
    } catch (const CLI::CallForVersion& asked) {
        return {{}, EarlyEnd{0, std::string(asked.what()) + "\n"}};
    } catch (const std::exception& error) {  // also a relative path in a folder that is gone
        return {{}, EarlyEnd{2, "error: " + asSentence(oneLine(error.what())) + " Try --help.\n"}};
    }
}

}  // namespace brell
