#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/LaunchOptions.h"
#include "CorvaneBrell/Version.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// Words that make no sense; what() is the sentence that says so.
struct Misunderstood : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Misunderstood needsValue(const CLI::Option& word) {
    return Misunderstood(word.get_name() + " needs a value, " + word.get_type_name() +
                         ", that is neither empty nor begins with --.");
}

double delayFrom(const std::string& text) {
    const auto seconds = parseReal(text);
    // Put this way round, because nan is neither less nor more.
    if (seconds && *seconds >= 0 && *seconds <= 3600) return *seconds;
    throw Misunderstood("--snapshot-delay takes seconds from 0 to 3600, not " + excerpt(text) + ".");
}

void addPath(CLI::App& app, const std::string& word, const char* type, std::optional<fs::path>& path,
             const char* meaning) {
    const auto take = [&path, word](const std::string& text) {
        std::error_code failed;
        path = fs::absolute(text, failed).lexically_normal();
        if (failed)
            throw Misunderstood(word + " takes " + excerpt(text) +
                                " from the current folder, which could not be found: " + failed.message() +
                                ".");
    };
    app.add_option_function<std::string>(word, take, meaning)->type_name(type);
}

void addWords(CLI::App& app, LaunchOptions& options) {
    addPath(app, "--journal-directory", "DIR", options.journalDirectory, "Keep the journal in this folder");
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
    addPath(app, "--snapshot", "FILE", options.snapshotPath, "Render the window to this image file");
    app.add_option_function<std::string>(
           "--snapshot-delay", [&](const std::string& text) { options.snapshotDelay = delayFrom(text); },
           "Wait before rendering it (1.5)")
        ->type_name("SECONDS");
    app.add_flag("--quit-after-snapshot", options.quitAfterSnapshot, "End once the image is written");
    app.add_option("--open-group", options.openGroup, "Show this screen first")->type_name("SCREEN");
    addPath(app, "--sample-mac", "DIR", options.sampleMac, "Work on the simulated Mac in this folder");
}

// The library gives a word without a value the next word for one, and a switch any value. So each word is
// looked at before: an empty variable in a script must not turn a dry run into a real one.
void checkWords(const CLI::App& app, const std::vector<std::string>& words) {
    std::set<const CLI::Option*> seen;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t equals = words[i].find('=');
        const std::string name = words[i].substr(0, equals);
        const CLI::Option* const known = app.get_option_no_throw(name);
        if (!known) throw Misunderstood(excerpt(words[i]) + " is not a word that Brell knows.");

        const bool hasValue = equals != std::string::npos;
        if (known->get_items_expected_max() == 0) {
            if (hasValue) throw Misunderstood(name + " takes no value.");
            continue;
        }
        if (!hasValue && i + 1 == words.size()) throw needsValue(*known);
        const std::string value = hasValue ? words[i].substr(equals + 1) : words[++i];
        if (value.empty() || value.starts_with("--")) throw needsValue(*known);
        if (!seen.insert(known).second) throw Misunderstood(name + " is given twice.");
    }
}

// Words that would come to nothing without another one, or beside it.
void checkTogether(const CLI::App& app, const LaunchOptions& options) {
    for (const char* word : {"--snapshot-delay", "--quit-after-snapshot"})
        if (app.count(word) > 0 && !options.snapshotPath)
            throw Misunderstood(std::string(word) + " says something about --snapshot, which is missing.");
    if (options.snapshotPath && options.isHeadlessRequest())
        throw Misunderstood("--snapshot needs the window, which the other words do without.");
}

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv) {
    LaunchOptions options;
    CLI::App app("Corvane Brell changes hidden preferences of macOS and undoes every change exactly.",
                 "corvane-brell");
    app.set_version_flag("--version", "Corvane Brell " + std::string(version));
    addWords(app, options);
    try {
        checkWords(app, {argv + std::min(argc, 1), argv + argc});
        app.parse(argc, argv);
        checkTogether(app, options);
        return {options, std::nullopt};
    } catch (const CLI::CallForHelp&) {
        return {{}, EarlyEnd{0, app.help()}};
    } catch (const CLI::CallForVersion& asked) {
        return {{}, EarlyEnd{0, std::string(asked.what()) + "\n"}};
    } catch (const Misunderstood& error) {
        return {{}, EarlyEnd{2, "error: " + oneLine(error.what()) + " Try --help.\n"}};
    } catch (const CLI::ParseError&) {  // nothing that the looks above leave over
        return {{}, EarlyEnd{2, "error: The words could not be read. Try --help.\n"}};
    }
}

}  // namespace brell
