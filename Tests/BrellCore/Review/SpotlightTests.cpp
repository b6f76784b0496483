#include "BrellCore/Review/Spotlight.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeCommandRunner.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using Command = AllowedCommand;
using Statuses = std::vector<VolumeIndexStatus>;
using namespace testing;

TEST(MdutilParser, ReadsEveryVolume) {
    EXPECT_EQ(MdutilParser::parse(
                  "ignored\n  before\n/:\n\tIndexing enabled. \n/Volumes/A: b:\r\n Indexing disabled\r\n"
                  "/Volumes/Note:\n\tIndexing enabled.\n\n\tScan base time: now\nstray\n/x\n"
                  "/Volumes/Odd:\n\tError: unknown indexing state.\n/Volumes/Empty:"),
              (Statuses{{"/", true, "Indexing enabled."},
                        {"/Volumes/A: b", false, "Indexing disabled"},
                        {"/Volumes/Note", std::nullopt, "Indexing enabled. Scan base time: now"},
                        {"/Volumes/Odd", std::nullopt, "Error: unknown indexing state."},
                        {"/Volumes/Empty", std::nullopt, ""}}));
}

TEST(SpotlightStatusReader, OneVolumeThatCannotBeAskedDoesNotHideTheOthers) {
    FakeCommandRunner runner;
    runner.answer(Command::mdutilStatus("/"),
                  "/System/Volumes/Data:\n\tIndexing disabled.\n/:\n\tIndexing enabled.\n");
    runner.answer(Command::mdutilStatus("/Volumes/Data"),
                  "/System/Volumes/Data/Volumes/Data:\n\tIndexing disabled.\n");
    runner.answer(Command::mdutilStatus("/Volumes/Gone"), CommandResult{1, "", "Error: unknown volume\n"});
    runner.answer(Command::mdutilStatus("/Volumes/Two"),
                  "/a:\n\tIndexing enabled.\n/b:\n\tIndexing enabled.\n");
    runner.answer(Command::mdutilStatus("/Volumes/A"), "/Volumes/Other:\n\tIndexing enabled.\n");
    runner.fail(Command::mdutilStatus("/Volumes/Slow"));

    const auto statuses =
        SpotlightStatusReader{runner}.statuses({"/Volumes/Slow", "/Volumes/a..b", "/Volumes/Gone",
                                                "/Volumes/Two", "/Volumes/A", "/Volumes/Data", "/"});
    EXPECT_EQ(
        statuses,
        (Statuses{
            {"/Volumes/Slow", std::nullopt,
             "The command did not finish in time and was stopped: /usr/bin/mdutil -s /Volumes/Slow."},
            {"/Volumes/a..b", std::nullopt, "Refused to run a command with an invalid volume /Volumes/a..b."},
            {"/Volumes/Gone", std::nullopt, "Error: unknown volume"},
            {"/Volumes/Two", std::nullopt, "/a:  Indexing enabled. /b:  Indexing enabled."},
            {"/Volumes/A", std::nullopt, "/Volumes/Other:  Indexing enabled."},
            {"/Volumes/Data", false, "Indexing disabled."},
            {"/", true, "Indexing enabled."}}));

    runner.answer(Command::mdutilStatus("/"), "/System/Volumes/Data:\n\tIndexing enabled.\n");
    EXPECT_EQ(SpotlightStatusReader{runner}.statuses({"/"}), (Statuses{{"/", true, "Indexing enabled."}}));
}

TEST(SpotlightStatusReader, ListsTheFoldersThatAreOtherVolumes) {
    const TemporaryFolder root;
    for (const char* name : {"Zeta", "Backup disk", ".hidden"})
        fs::create_directories(root.path / "Volumes" / name);
    setContents(root.path / "Volumes/file", "");
    fs::create_symlink(root.path, root.path / "Volumes/Macintosh HD");
    fs::create_symlink("/nowhere", root.path / "Volumes/dangling");
    EXPECT_EQ(SpotlightStatusReader::mountedVolumes(root.path),
              (Texts{"/", "/Volumes/Backup disk", "/Volumes/Zeta"}));
    EXPECT_EQ(SpotlightStatusReader::mountedVolumes(root.path / "Volumes/Zeta"), Texts{"/"});
}

}  // namespace
}  // namespace brell
