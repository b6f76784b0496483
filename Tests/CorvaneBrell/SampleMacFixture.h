// A sample Mac of the test's own, and the test as everybody else who changes it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "CorvaneBrell/LaunchOptions.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "Tests/CorvaneBrell/JobFile.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

inline const PrefKey autohide{"com.apple.dock", "autohide"};
inline const PrefKey showHidden{"com.apple.finder", "AppleShowAllFiles"};

class SampleMacTest : public ::testing::Test {
protected:
    SampleMacTest() { options.sampleMac = sample.systemRoot(); }

    using Preferences = std::map<std::string, PlistFileStore::Values>;
    Preferences preferences() const { return sample.openPreferences()->snapshot(); }
    StoredValue stored(const PrefKey& key) const { return sample.openPreferences()->exactValue(key); }
    void writeFromOutside(const PrefKey& key, const PrefValue& value) const {
        sample.openPreferences()->write(value, key);
    }
    // Launchd, as another program asks it.
    CommandResult launchd(const AllowedCommand& command) const { return sample.openTools()->run(command); }
    void turnOnFromOutside(const std::string& label) const {
        EXPECT_TRUE(launchd(AllowedCommand::launchctlEnable("gui/501", label)).succeeded());
    }
    std::filesystem::path fileOf(const std::string& label) const {
        return sample.launchAgents() / (label + ".plist");
    }
    // The text with every path as on a Mac of its own, quoted for a shell or not.
    std::string withoutRoot(std::string text) const {
        const std::string root = sample.systemRoot();
        for (auto at = text.find(root); at != text.npos; at = text.find(root, at)) {
            text.erase(at, root.size());
            if (root.find(' ') == root.npos || at == 0 || text[at - 1] != '\'') continue;
            text.erase(text.find('\'', at), 1);
            text.erase(--at, 1);
        }
        return text;
    }

    const bool inMemory = (keepFoldersInMemory(), true);
    const TemporaryFolder folder;
    const SampleMac sample{folder.path / "mac"};
    LaunchOptions options;
};

}  // namespace brell::testing
