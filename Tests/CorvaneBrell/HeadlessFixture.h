// A sample Mac of the test's own, and Brell at work on it without a window.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Headless/HeadlessCommands.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "Tests/Support/Shell.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

class HeadlessTest : public ::testing::Test {
protected:
    // The words in this process; a status of -1: they are no request.
    Finished run(const Texts& words) {
        std::vector<const char*> all{"corvane-brell"};
        for (const std::string& word : words) all.push_back(word.c_str());
        LaunchOptions options = readCommandLine(static_cast<int>(all.size()), all.data()).options;
        options.sampleMac = mac.systemRoot();
        std::ostringstream out, notes;
        const auto status = HeadlessCommands::runIfRequested(options, out, notes);
        said = notes.str();
        return {status.value_or(-1), out.str()};
    }

    // The program itself, as scripts run it.
    Finished runProgram(const std::string& words, const std::map<std::string, std::string>& variables = {}) {
        return runLine(
            shellWord(BRELL_PROGRAM) + " --sample-mac " + shellWord(mac.systemRoot()) + " " + words,
            variables);
    }

    std::map<std::string, PlistFileStore::Values> preferences() const {
        return mac.openPreferences()->snapshot();
    }

    const bool inMemory = (keepFoldersInMemory(), true);
    const TemporaryFolder folder;
    const SampleMac mac{folder.path / "mac"};
    const std::filesystem::path journalDirectory = Journal::defaultDirectory(mac.home());
    const TweakCatalog catalog{mac.home().string()};
    const std::map<std::string, PlistFileStore::Values> original = preferences();
    std::string said;  // by the last run, apart from its results
};

}  // namespace brell::testing
