// What may stand where a preset is read from or saved to.

#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/Obstacles.h"

using namespace brell;
using namespace brell::testing;

namespace fs = std::filesystem;

namespace {

std::string reasonFor(Obstacle obstacle) {
    switch (obstacle) {
        case Obstacle::linkToFile: return "";
        case Obstacle::linkToNothing: return "There is no file ";
        case Obstacle::linkToItself: return " could not be read: Too many levels of symbolic links.";
        case Obstacle::huge: return " could not be read: it holds more than 1048576 bytes.";
        case Obstacle::linkToFolder:
        case Obstacle::linkToZeros:
        case Obstacle::linkToFull:
        case Obstacle::linkToTerminal:
        case Obstacle::pipe:
        case Obstacle::socket:
        case Obstacle::folder: break;
    }
    return " could not be read: it is not an ordinary file.";
}

TEST_F(AppModelTest, APresetIsReadAndSavedOnlyAsAnOrdinaryFile) {
    const auto model = openModel();
    const fs::path elsewhere = folder.path / "elsewhere", file = folder.path / "mine.corvanepreset";
    setContents(elsewhere / "victim", PresetFile::encode(Presets::shipped().back()));
    for (const Obstacle obstacle : obstacles) {
        SCOPED_TRACE(nameOf(obstacle));
        place(obstacle, file, elsewhere);
        const auto before = everythingIn(elsewhere);
        model->importPreset(file);
        settle(*model);
        const std::string said = model->state().errorMessage.value_or("");
        EXPECT_EQ(model->state().presetRequest.has_value(), obstacle == Obstacle::linkToFile);
        EXPECT_NE(said.find(reasonFor(obstacle)), std::string::npos) << said;
        EXPECT_EQ(said.empty(), reasonFor(obstacle).empty());
        model->cancelPreset();
        model->dismissError();

        model->exportPreset(Presets::shipped().front(), file);
        settle(*model);
        EXPECT_EQ(model->state().errorMessage.has_value(), obstacle == Obstacle::folder);
        if (obstacle != Obstacle::folder) {
            EXPECT_FALSE(fs::is_symlink(file));
            EXPECT_EQ(contentsOf(file), PresetFile::encode(Presets::shipped().front()));
        }
        model->dismissError();
        EXPECT_EQ(everythingIn(elsewhere), before);
        EXPECT_EQ(namesIn(folder.path), (std::set<std::string>{"elsewhere", "mac", "mine.corvanepreset"}));
    }
}

}  // namespace
