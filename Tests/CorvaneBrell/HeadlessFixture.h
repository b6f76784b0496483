// Brell at work on a sample Mac without a window.
#pragma once

#include <sstream>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Headless/HeadlessCommands.h"
#include "Tests/CorvaneBrell/SampleMacFixture.h"
#include "Tests/Support/Shell.h"

namespace brell::testing {

class HeadlessTest : public SampleMacTest {
protected:
    // The words in this process; a status of -1: they are no request.
    Finished run(const Texts& words) {
        std::vector<const char*> all{"corvane-brell"};
        for (const std::string& word : words) all.push_back(word.c_str());
        LaunchOptions read = readCommandLine(static_cast<int>(all.size()), all.data()).options;
        read.sampleMac = options.sampleMac;
        std::ostringstream out, notes;
        const auto status = HeadlessCommands::runIfRequested(read, out, notes);
        said = notes.str();
        return {status.value_or(-1), out.str()};
    }

    // The program itself, as scripts run it.
    Finished runProgram(const std::string& words, const std::map<std::string, std::string>& variables = {}) {
        return runLine(
            shellWord(BRELL_PROGRAM) + " --sample-mac " + shellWord(sample.systemRoot()) + " " + words,
            variables);
    }

    const std::filesystem::path journalDirectory = Journal::defaultDirectory(sample.home());
    const TweakCatalog catalog{sample.home().string()};
    const Preferences original = preferences();
    std::string said;  // by the last run, apart from its results
};

}  // namespace brell::testing
