// A folder made to look like a small, lived-in Mac: for running the whole program anywhere, for pictures and
// for tests. The same folder always gives the same answers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "BrellCore/Preferences/PlistFileStore.h"
#include "CorvaneBrell/Platform/OperatingSystem.h"
#include "CorvaneBrell/SampleMac/SimulatedTools.h"

namespace brell {

//   Users/sam/                               the home
//   Users/sam/Library/Preferences/           the preference files
//   Users/sam/Library/LaunchAgents/          the user's own agents
//   Library/LaunchAgents/, LaunchDaemons/    what administrators installed
//   Volumes/                                 the mounted volumes
//   private/var/db/                          launchd's state, the database of background tasks, the keys that
//                                            this host or a profile sets
class SampleMac {
public:
    static constexpr OperatingSystemVersion osVersion{26, 1, 0};
    static constexpr std::uint32_t uid = 501;
    static constexpr bool isAdmin = true;  // so that the user may see the database of background tasks

    // Of an app that one of its jobs names.
    static std::optional<std::string> applicationName(const std::string& bundleIdentifier);

    // True when nothing is in this folder, so that opening it would fill it.
    static bool isNew(const std::filesystem::path& folder);

    // Opens the Mac in this folder (an absolute path). One that is absent or empty is filled first; what a
    // Mac holds already is left as it is. Raises std::exception for a folder of anything else, which stays as
    // it is, and when the folder can't be made or written.
    explicit SampleMac(const std::filesystem::path& folder);

    // The folder without links: what is "/" on a real Mac.
    const std::filesystem::path& systemRoot() const { return folder_; }
    std::filesystem::path home() const { return folder_ / "Users" / "sam"; }
    std::filesystem::path preferences() const { return home() / "Library" / "Preferences"; }
    std::filesystem::path launchAgents() const { return home() / "Library" / "LaunchAgents"; }

    // Its preferences, with macOS's own defaults behind them and the host's and a profile's values above
    // them. Raises std::exception when the folder can't be used.
    std::unique_ptr<PlistFileStore> openPreferences() const;

    // Its launchctl, mdutil and sfltool. May outlive this object.
    std::unique_ptr<SimulatedTools> openTools() const;

private:
    std::filesystem::path folder_;
};

}  // namespace brell
