// The restore script, run by sh over the sample Mac when the program is gone.

#include <gtest/gtest.h>

#include "Tests/CorvaneBrell/AgentToggleFixture.h"
#include "Tests/Support/Shell.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

struct AgentToggleScriptTest : ::testing::Test, testing::AgentToggleFixture {
    // With launchctl's stand-in first in PATH, and an `id` that knows the Mac's user.
    testing::Finished runScript() {
        const fs::path ownTools = folder.path / "tools";
        testing::setContents(ownTools / "id", "#!/bin/sh\necho 501\n");
        fs::permissions(ownTools / "id", fs::perms::owner_all);
        return testing::runLine("PATH='" + ownTools.string() + "':'" BRELL_STAND_INS "':\"$PATH\" " +
                                "BRELL_SAMPLE_MAC='" + mac.systemRoot().string() + "' sh '" +
                                (journalDirectory / RestoreScript::fileName).string() + "' 2>&1");
    }
};

TEST_F(AgentToggleScriptTest, BringsBackEveryAgentThatIsOffOrHalfwayOff) {
    const std::vector<std::string> off{"homebrew.mxcl.redis", "com.pebblewick.indexer",
                                       "org.fernwright.notes"};
    for (const std::string& label : off) toggle.turnOff(agent(label));
    const std::string halfway = "com.lumenfold.sync";
    engine.beginAgentChange(halfway, {halfway, fileOf(halfway).string(), true, AgentOverride::absent});
    tools->run(AllowedCommand::launchctlDisable("gui/501", halfway));

    const testing::Finished finished = runScript();

    EXPECT_EQ(finished.status, 0) << finished.output;
    EXPECT_EQ(
        finished.output,
        "Done. Relaunch Finder and the Dock, or log out and back in, for every change to take effect.\n");
    EXPECT_EQ(stateOf("homebrew.mxcl.redis"), "enabled, loaded");
    EXPECT_EQ(stateOf("com.pebblewick.indexer"), "enabled, loaded");
    EXPECT_EQ(stateOf("org.fernwright.notes"), "enabled, not loaded");
    EXPECT_EQ(stateOf(halfway), "enabled, loaded");

    // The program, back again, finds nothing left to do but to close its entries.
    EXPECT_EQ(engine.restoreAll({}).restored.size(), 4u);
    EXPECT_EQ(runScript().output.find("Nothing to restore"), 0u);
}

TEST_F(AgentToggleScriptTest, PutsAnAgentThatWasTurnedOnBackToDisabled) {
    const std::string label = "com.spotify.client.startuphelper";
    toggle.turnOn(agent(label));
    EXPECT_EQ(runScript().status, 0);
    EXPECT_EQ(stateOf(label), "disabled, loaded");  // it no longer starts; the running one ends at logout
}

}  // namespace
}  // namespace brell
