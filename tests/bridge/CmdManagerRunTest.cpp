#include "support/Capture.h"
#include "support/Thrown.h"

#include <lumivane/cmd/CmdManager.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace Lumivane::Test {
namespace {

using Cmd::CmdManager;

const std::string ReadingEnd = "Reading end\n\n";
const std::string ViewsCreating = "Scene and shot views creating\n\n";

// A folder of its own for each test, and settings that are empty before and after.
class DriverRun : public ::testing::Test {
 protected:
  DriverRun() {
    std::string pattern = (std::filesystem::temp_directory_path() / "driverXXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for the test");
    folder = pattern;
    reset();
  }
  ~DriverRun() override {
    reset();
    std::filesystem::remove_all(folder);
  }

  // A file of the folder with this text; its path becomes the input file.
  void giveScene(const std::string& name, const std::string& text) {
    CmdManager::inputFile = (folder / name).string();
    std::ofstream(CmdManager::inputFile) << text;
  }

  static std::string reading(const std::string& path) { return "Reading: " + path + "\n"; }

  // What a run prints that comes back.
  static std::string printedByRun() {
    return capturedStdout([] { CmdManager::run(); });
  }

  // A run in a process that ends; its standard output goes the way of standard error.
  [[noreturn]] static void runAndEnd() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    CmdManager::run();
    std::exit(99);
  }

  std::filesystem::path folder;

 private:
  static void reset() {
    CmdManager::inputFile.clear();
    CmdManager::outputFile.clear();
    CmdManager::show = false;
  }
};

TEST_F(DriverRun, EmptyInputFileReadsAndPrintsNothing) {
  CmdManager::show = true;
  CmdManager::outputFile = (folder / "missing.json").string();
  EXPECT_EQ("", printedByRun());
}

TEST_F(DriverRun, ReadingTheSceneIsTheOnlyEffectWithoutShow) {
  giveScene("scene.json", "{\"Points\": [[0, 0, 0]]}");
  CmdManager::outputFile = (folder / "shot.json").string();
  EXPECT_EQ(reading(CmdManager::inputFile) + ReadingEnd, printedByRun());
  EXPECT_FALSE(std::filesystem::exists(CmdManager::outputFile));
}

TEST_F(DriverRun, MakesNoShot) {
  giveScene("scene.json", "{\"Points\": [[0, 0, 0]]}");
  Utils::ProgressbarUtils& progress = *Utils::ProgressbarUtils::getInstance();
  progress.setProgress(42.0);
  printedByRun();
  EXPECT_EQ(42.0, progress.getProgress());
  progress.reset();
}

TEST_F(DriverRun, SceneThatIsNoJsonPrintsTwoErrorLinesAndReturns) {
  giveScene("scene.json", "{\"Points\": [");
  CmdManager::show = true;
  CmdManager::outputFile = (folder / "missing.json").string();
  EXPECT_EQ(reading(CmdManager::inputFile) + "\n! Error: scene JSON invalid\n" + ReadingEnd,
            printedByRun());
}

TEST_F(DriverRun, ShowWithoutAnOutputFilePrintsTheFirstLineOfTheViewerOnly) {
  giveScene("scene.json", "{}");
  CmdManager::show = true;
  EXPECT_EQ(reading(CmdManager::inputFile) + ReadingEnd + ViewsCreating, printedByRun());
}

TEST_F(DriverRun, PathWithConversionsIsLoggedAsAFormat) {
  giveScene("100%d.json", "{}");
  EXPECT_EQ(reading((folder / "1000.json").string()) + ReadingEnd, printedByRun());
}

TEST_F(DriverRun, ValueOutOfRangePassesThrough) {
  giveScene("scene.json", "{\"Pens\": [[0, 0, 0, 0, -1]]}");
  std::string text;
  EXPECT_EQ(reading(CmdManager::inputFile), capturedStdout([&] {
              text = thrownText<std::runtime_error>([] { CmdManager::run(); });
            }));
  EXPECT_EQ("pen width < 0", text);
}

using DriverRunDeathTest = DriverRun;

TEST_F(DriverRunDeathTest, SceneFileThatCannotBeOpenedEndsTheProcess) {
  CmdManager::inputFile = (folder / "missing.json").string();
  EXPECT_EXIT(runAndEnd(), ::testing::ExitedWithCode(1), "Could not open the file - '.*missing");
}

TEST_F(DriverRunDeathTest, MissingShotFileEndsTheProcessAfterTheSceneWasReadAgain) {
  giveScene("scene.json", "{}");
  CmdManager::show = true;
  CmdManager::outputFile = (folder / "shot.json").string();
  EXPECT_EXIT(runAndEnd(), ::testing::ExitedWithCode(1),
              "Reading: .*scene.json\nReading end\n\nScene and shot views creating\n\n"
              "Reading: .*scene.json\nReading end\n\nReading: .*shot.json\n");
}

}  // namespace
}  // namespace Lumivane::Test
