// The Mac that a run works on: the one it runs on, or a stand-in for one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"
#include "CorvaneBrell/LaunchOptions.h"
#include "CorvaneBrell/Platform/MainLoop.h"
#include "CorvaneBrell/Platform/OperatingSystem.h"
#include "CorvaneBrell/Platform/RunningApplications.h"

namespace brell {

class PreferenceStore;

struct Machine {
    std::filesystem::path home;
    std::filesystem::path systemRoot;  // holds Library/LaunchAgents, Library/LaunchDaemons and Volumes
    OperatingSystemVersion osVersion;
    std::uint32_t uid;
    std::function<bool()> isAdmin;
    std::filesystem::path journalDirectory;              // of this run
    std::vector<std::filesystem::path> preferenceFiles;  // of the catalog's domains, only to be looked at
    std::unique_ptr<PreferenceStore> store;
    std::unique_ptr<PreferenceStore> ownStore;  // only the application's own domain
    std::unique_ptr<CommandRunning> runner;
    // Of a stand-in, by bundle identifier; a Mac's own are in Platform/ApplicationNames, which needs AppKit
    // and is for the window alone. From any thread.
    std::function<std::optional<std::string>(const std::string& bundleIdentifier)> applicationName;
};

// Where a journal can lie that nobody needs later: a name in the user's folder for temporary files, given to
// no other run; nothing is made yet. Raises std::runtime_error when that folder can't be used.
std::filesystem::path throwAwayDirectory(std::string_view purpose);

// The machine that these options name. Raises std::exception when its folders can't be made.
Machine machineFor(const LaunchOptions& options);

// The rest differs by configuration: in what users get there is no stand-in.

// The stand-in that these options name, all but its journal directory; nothing when they name none.
std::optional<Machine> standInFor(const LaunchOptions& options);

// Gives a stand-in that is new some weeks of use, so that a window over it has something of everything.
void makePastFor(const LaunchOptions& options);

// The running applications of the machine. Main thread only; the loop must outlive them.
std::unique_ptr<RunningApplications> applicationsFor(const LaunchOptions& options, MainLoop& loop);

}  // namespace brell
