// `lumivane show`, `lumivane json5` and `lumivane-driver`, run as processes. What the windows show
// is tested with the library's viewer.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::Environment;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";
const Environment NoDisplay = {{"DISPLAY", {}}};

Result lumivane(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, NoDisplay);
}

Result driver(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_DRIVER);
  return Lumivane::Test::runProcess(arguments, NoDisplay);
}

void expectNothing(const Result& result) {
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ("", result.err);
}

TEST(ShowProgram, WithoutDisplayThereIsAMessageAndNoWork) {
  const Result result = lumivane({"show", Small, "--eye", "-4,0.35,1.9"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ(0u, result.err.find("lumivane: " + Small + ": cannot be shown: no display"));
  EXPECT_NE(std::string::npos, result.err.find("xvfb-run"));
}

TEST(ShowProgram, FilesAreCheckedFirst) {
  EXPECT_EQ("lumivane: no/scene: cannot be read: No such file or directory\n",
            lumivane({"show", "no/scene"}).err);
  EXPECT_EQ("lumivane: no/shot: cannot be read: No such file or directory\n",
            lumivane({"show", Small, "no/shot"}).err);
}

// Runs a program that opens both windows, looks for them and ends each by its key "e".
struct Shown {
  Result result;
  bool sceneSeen = false;
  bool shotSeen = false;
};

Shown shownAndEnded(const std::vector<std::string>& command) {
  const Lumivane::Test::VirtualDisplay display;
  const Environment there = {{"DISPLAY", display.name()}};
  Shown shown;
  std::atomic<bool> over = false;
  std::thread user([&] {
    const auto xdotool = [&there](std::vector<std::string> arguments) {
      arguments.insert(arguments.begin(), "xdotool");
      return Lumivane::Test::runProcess(arguments, there).out;
    };
    while (!over) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      shown.sceneSeen |= !xdotool({"search", "--name", " 3d"}).empty();
      shown.shotSeen |= !xdotool({"search", "--name", " 2d"}).empty();
      if (!shown.sceneSeen || !shown.shotSeen) continue;
      xdotool({"mousemove", "300", "250", "key", "e"});
      xdotool({"mousemove", "900", "250", "key", "e"});
    }
  });
  std::vector<std::string> bounded = {"timeout", "60"};
  bounded.insert(bounded.end(), command.begin(), command.end());
  shown.result = Lumivane::Test::runProcess(bounded, there);
  over = true;
  user.join();
  return shown;
}

TEST(ShowProgram, MadeShotIsShownBesideItsScene) {
  const Shown shown = shownAndEnded({LUMIVANE_PROGRAM, "show", Small, "--eye", "-2.6,0.35,1.9"});
  EXPECT_EQ(0, shown.result.status) << shown.result.err;
  EXPECT_TRUE(shown.sceneSeen);
  EXPECT_TRUE(shown.shotSeen);
  EXPECT_EQ("Projecting objects\n\nCalculating objects order\n\nRendering\n\n", shown.result.out);
}

TEST(ShowProgram, ShotFileIsShownWithAndWithoutAView) {
  const TempFolder folder;
  const std::string shot = folder.path("shot.json");
  ASSERT_EQ(0, lumivane({"shot", Small, "--eye", "-2.6,0.35,1.9", "-o", shot}).status);
  for (const std::vector<std::string>& view :
       std::vector<std::vector<std::string>>{{}, {"--camera", "normal", "--style", "half"}}) {
    std::vector<std::string> command = {LUMIVANE_PROGRAM, "show", Small, shot};
    command.insert(command.end(), view.begin(), view.end());
    const Shown shown = shownAndEnded(command);
    EXPECT_EQ(0, shown.result.status) << shown.result.err;
    EXPECT_TRUE(shown.sceneSeen && shown.shotSeen);
    EXPECT_EQ("Rendering\n\n", shown.result.out);
  }
}

TEST(ShowProgram, NumbersThatPointAtNothingAreNamed) {
  const TempFolder folder;
  const Lumivane::Test::VirtualDisplay display;
  const std::string scene = folder.file(
      "s.json",
      "{\"Brushes\":[[1,2,3,4]],\"Pens\":[[1,2,3,4,1]],\"Points\":[[2,0,0],[2,1,0],[2,0,1]],"
      "\"Objects\":[{\"Id\":\"A\",\"Pen\":3,\"Faces\":[{}],"
      "\"Regions\":[{\"Brush\":1,\"Face\":1,\"Points\":[1,2,3]}]}]}");
  const Result result = Lumivane::Test::runProcess(
      {LUMIVANE_PROGRAM, "show", scene, "--eye=0,0.2,0.2"}, {{"DISPLAY", display.name()}});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("lumivane: " + scene + ": object \"A\": pen 3, but there are 1 to 1\n", result.err);
}

// An empty object without a pen is drawn without a look at its pen; it is the shot file that names
// a brush which is not there.
TEST(ShowProgram, FaultOfTheShotFileIsNotPutOnTheScene) {
  const TempFolder folder;
  const Lumivane::Test::VirtualDisplay display;
  const std::string scene = folder.file(
      "s.json",
      "{\"Brushes\":[[1,2,3,4]],\"Pens\":[[1,2,3,4,1]],\"Points\":[[2,0,0],[2,1,0],[2,0,1]],"
      "\"Objects\":[{\"Id\":\"empty\",\"Faces\":[],\"Regions\":[]},"
      "{\"Id\":\"A\",\"Pen\":1,\"Regions\":[{\"Brush\":1,\"Points\":[1,2,3]}]}]}");
  const std::string shot =
      folder.file("shot.json",
                  "{\"Brushes\":[[1,2,3,4]],\"Pens\":[[1,2,3,4,1]],\"Points\":[[0,0],[0,1],[1,0]],"
                  "\"Regions\":[{\"Pen\":1,\"Brush\":6,\"Points\":[1,2,3]}]}");
  const Result result = Lumivane::Test::runProcess({LUMIVANE_PROGRAM, "show", scene, shot},
                                                   {{"DISPLAY", display.name()}});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("lumivane: " + shot + ": region 1 of the shot: brush 6, but there are 1 to 1\n",
            result.err);
}

TEST(DriverProgram, FilesAreShown) {
  const TempFolder folder;
  const std::string shot = folder.path("shot.json");
  ASSERT_EQ(0, lumivane({"shot", Small, "--eye", "-2.6,0.35,1.9", "-o", shot}).status);
  const Shown shown = shownAndEnded({LUMIVANE_DRIVER, "-if=" + Small, "-of=" + shot, "-show=1"});
  EXPECT_EQ(0, shown.result.status) << shown.result.err;
  EXPECT_TRUE(shown.sceneSeen && shown.shotSeen);
  const std::string sceneRead = "Reading: " + Small + "\nReading end\n\n";
  EXPECT_EQ(sceneRead + "Scene and shot views creating\n\n" + sceneRead + "Reading: " + shot +
                "\nReading end\n\nRendering\n\n",
            shown.result.out);
}

TEST(Json5Program, TextIsConvertedToStandardOutput) {
  const TempFolder folder;
  const Result result = lumivane(
      {"json5", folder.file("a.json5", "// a note\n{a: 1, 'b': 'x', /* two */ c: [1, 0x1F,],}\n")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_EQ(Json::parse(R"({"a":1,"b":"x","c":[1,31]})"), Json::parse(result.out));
}

TEST(Json5Program, TextIsConvertedToAFile) {
  const TempFolder folder;
  const std::string file = folder.file("a.json5", "a: 1");
  const Result result = lumivane({"json5", file, "-o", folder.path("a.json")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ(Json::parse(R"({"a":1})"), Json::parse(fileBytes(folder.path("a.json"))));
}

TEST(Json5Program, SceneInJson5BecomesAScene) {
  const TempFolder folder;
  const std::string file = folder.file("a.json5", "// the smallest scene\n{Objects: [],}\n");
  ASSERT_EQ(0, lumivane({"json5", file, "-o", folder.path("a.json")}).status);
  EXPECT_EQ(0, lumivane({"shot", folder.path("a.json"), "-o", folder.path("b.json")}).status);
}

TEST(Json5Program, ResultThatIsNoJsonIsWarnedAbout) {
  const TempFolder folder;
  const std::string file = folder.file("a.json5", "{a: Infinity}");
  const Result result = lumivane({"json5", file});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("lumivane: " + file + ": warning: the result is not JSON: Unknown token: inf\n",
            result.err);
  EXPECT_NE("", result.out);
}

TEST(Json5Program, ErrorsNameTheFile) {
  const TempFolder folder;
  EXPECT_EQ("lumivane: no/file: cannot be read: No such file or directory\n",
            lumivane({"json5", "no/file"}).err);
  const Result full = lumivane({"json5", folder.file("a", "a: 1"), "-o", "/dev/full"});
  EXPECT_EQ(1, full.status);
  EXPECT_EQ("lumivane: /dev/full: cannot be written: No space left on device\n", full.err);
}

TEST(Program, AWordThatIsNoCommandIsNamedWithTheNearestOne) {
  const auto said = [](const std::vector<std::string>& words) {
    const Result result = lumivane(words);
    EXPECT_EQ(2, result.status);
    return result.err;
  };
  EXPECT_EQ("lumivane: \"drwa\" is not a command; did you mean \"draw\"? (see --help)\n",
            said({"drwa", "a.json"}));
  EXPECT_EQ("lumivane: \"radiosity\" is not a command (see --help)\n", said({"radiosity"}));
  EXPECT_EQ("lumivane: a command is missing, such as view, draw or shot (see --help)\n", said({}));
}

TEST(Program, AnEmptyTextIsNotTakenForAMissingOption) {
  const Result result =
      lumivane({"grid", Small, "--spacing", "1", "--ground", "", "--height", "1"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ(0U, result.err.find("lumivane: --ground: is followed by an empty text")) << result.err;
}

TEST(Program, AFileOfAFormatThatIsNotReadIsNotBlamedForItsText) {
  const TempFolder folder;
  const std::string path = folder.path("house.ifc");
  std::ofstream(path) << "ISO-10303-21;\n";
  const Result result = lumivane({"view", path, "--eye", "0,0,0"});
  EXPECT_EQ(1, result.status);
  EXPECT_NE(std::string::npos, result.err.find("is of no format that is read")) << result.err;
  EXPECT_EQ(std::string::npos, result.err.find("not JSON")) << result.err;
}

TEST(ImportProgram, ASceneFileIsNotImportedAgain) {
  const TempFolder folder;
  const Result result = lumivane({"import", Small, "-o", folder.path("out.json")});
  EXPECT_EQ(1, result.status);
  EXPECT_NE(std::string::npos, result.err.find("it is a scene file already")) << result.err;
}

TEST(DriverProgram, WithoutInputFileNothingHappens) {
  expectNothing(driver({}));
  expectNothing(driver({"-show=1", "-of=x"}));
  expectNothing(driver({"-IF=x"}));
  expectNothing(driver({"-if=x", "-if="}));
}

TEST(DriverProgram, SceneIsReadAndLogged) {
  const Result result = driver({"-if=" + Small});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("Reading: " + Small + "\nReading end\n\n", result.out);
  EXPECT_EQ("", result.err);
}

TEST(DriverProgram, TextThatIsNoJsonGivesTheErrorLines) {
  const TempFolder folder;
  const std::string file = folder.file("a", "nonsense");
  for (const std::vector<std::string>& more :
       std::vector<std::vector<std::string>>{{}, {"-show=1", "-of=x"}}) {
    std::vector<std::string> arguments = {"-if=" + file};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Result result = driver(arguments);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("Reading: " + file + "\n\n! Error: scene JSON invalid\nReading end\n\n", result.out);
    EXPECT_EQ("", result.err);
  }
}

TEST(DriverProgram, FileThatCannotBeOpenedEndsItWithItsLogFlushed) {
  const Result result = driver({"-if=no/file"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("Reading: no/file\n", result.out);
  EXPECT_EQ("Could not open the file - 'no/file'\n", result.err);
}

TEST(DriverProgram, BareOptionIsItsOwnValue) {
  const Result result = driver({"-if"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("Reading: -if\n", result.out);
}

TEST(DriverProgram, OnlyTheFirstEqualsSignSplits) {
  const TempFolder folder;
  const std::string file = folder.file("a=b.json", "{}");
  EXPECT_EQ("Reading: " + file + "\nReading end\n\n", driver({"-if=" + file}).out);
}

TEST(DriverProgram, PathIsAFormatWhoseConversionsMeetZeros) {
  const TempFolder folder;
  const Result result = driver({"-if=" + folder.file("%d%n%s", "{}")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("Reading: " + folder.path("0(null)") + "\nReading end\n\n", result.out);
}

TEST(DriverProgram, NumbersThatAreNoneEndItWithOneLine) {
  const auto expectError = [](const std::string& argument, const std::string& text) {
    const Result result = driver({argument});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("lumivane-driver: " + text + "\n", result.err);
  };
  expectError("-sn=abc", "invalid stoi argument");
  expectError("-sn", "invalid stoi argument");
  expectError("-sn=99999999999999999999", "stoi argument out of range");
  expectError("-sl=x", "invalid stod argument");
  expectError("-sl=1e999", "stod argument out of range");
  expectNothing(driver({"-sn=12abc", "-sn=-3", "-sl=nan", "-pt", "-show=true"}));
}

TEST(DriverProgram, ShowWithoutShotFileOpensNoWindow) {
  const Result result = driver({"-if=" + Small, "-show=1"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("Reading: " + Small + "\nReading end\n\nScene and shot views creating\n\n", result.out);
  EXPECT_EQ("", result.err);
}

TEST(DriverProgram, ShowWithoutDisplayIsAMessageAndNoWindow) {
  const Result result = driver({"-if=" + Small, "-of=shot.json", "-show=1", "-show=0"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("Reading: " + Small + "\nReading end\n\n", result.out);
  EXPECT_EQ(0u, result.err.find("lumivane-driver: " + Small + ": cannot be shown: no display"));
  EXPECT_NE(std::string::npos, result.err.find("xvfb-run"));
}

}  // namespace
}  // namespace Lumivane::Host
