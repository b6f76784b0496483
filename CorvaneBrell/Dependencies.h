// The one place where a run's objects are wired together.
#pragma once

#include <filesystem>
#include <iostream>
#include <memory>

#include "BrellCore/Background/AgentToggle.h"
#include "BrellCore/Background/BTMReader.h"
#include "BrellCore/Background/ChangeTitles.h"
#include "BrellCore/Background/LaunchAgentReader.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Review/Spotlight.h"
#include "CorvaneBrell/LaunchOptions.h"
#include "CorvaneBrell/Machine.h"

namespace brell {

// Each object stands below the ones it refers to. Stays where it is made.
struct Dependencies {
    // Raises JournalError when the journal can't be opened, std::exception when the machine's folders can't
    // be made. out gets the lines of a dry run and of the capture hook, and must outlive the object; notes
    // gets what there is to say about the journal of a dry run.
    Dependencies(const LaunchOptions& launchOptions, std::ostream& out, std::ostream& notes = std::cerr);
    ~Dependencies();
    Dependencies(const Dependencies&) = delete;
    Dependencies& operator=(const Dependencies&) = delete;

    const LaunchOptions options;
    const Machine machine;
    const TweakCatalog catalog;

    const std::unique_ptr<PreferenceStore> dryRunStore;  // over the machine's, in a dry run
    PreferenceStore& store;
    const std::unique_ptr<CommandRunning> dryRunRunner;  // likewise
    CommandRunning& runner;

    const std::unique_ptr<Journal> journal;
    TweakEngine engine;
    AgentToggle toggle;
    ChangeTitles titles;
    const LaunchAgentReader reader;
    const BTMReader btmReader;
    const SpotlightStatusReader spotlight;

    const std::filesystem::path& journalDirectory() const { return machine.journalDirectory; }
    int macOSMajor() const { return machine.osVersion.major; }
};

}  // namespace brell
