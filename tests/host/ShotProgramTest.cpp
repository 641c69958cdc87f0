// `lumivane shot`, run as a process.

#include "host/Process.h"
#include "support/Floor.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"
#include "support/WorkingFolder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::Environment;
using Lumivane::Test::fileBytes;
using Lumivane::Test::floorText;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";
const Environment NoDisplay = {{"DISPLAY", {}}};

Result run(std::vector<std::string> arguments, const Environment& environment = NoDisplay,
           bool errorIsTerminal = false) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, environment, errorIsTerminal);
}

Result runView(const std::string& scene, std::vector<std::string> more,
               const Environment& environment = NoDisplay) {
  std::vector<std::string> arguments = {"shot", scene, "--eye", "-4,0.35,1.9"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return run(arguments, environment);
}

void expectFailure(const Result& result, int status, const std::string& errorLine) {
  EXPECT_EQ(status, result.status) << result.err;
  EXPECT_EQ(errorLine + "\n", result.err);
}

size_t entries(const TempFolder& folder) {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.path(""))) ++count;
  return count;
}

std::string pngSize(const std::string& bytes) {
  const auto number = [&bytes](size_t at) {
    size_t value = 0;
    for (size_t i = 0; i < 4; ++i)
      value = value * 256 + static_cast<unsigned char>(bytes.at(at + i));
    return value;
  };
  return std::to_string(number(16)) + "x" + std::to_string(number(20));
}

TEST(ShotProgram, ShotAndStatisticsAreWritten) {
  const TempFolder folder;
  const Result result =
      runView(Small, {"-o", folder.path("shot.json"), "--stats", folder.path("stats.json")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.err);
  EXPECT_EQ("Projecting objects\n\nCalculating objects order\n\n", result.out);

  const Json shot = Json::parse(fileBytes(folder.path("shot.json")));
  const Json stats = Json::parse(fileBytes(folder.path("stats.json")));
  EXPECT_EQ(shot.at("Points").size(), stats.at("points"));
  EXPECT_EQ(shot.at("Regions").size(), stats.at("regions"));
  EXPECT_EQ(3, stats.at("objects"));
  EXPECT_EQ(Json({-4, 0.35, 1.9}), stats.at("eye"));
  EXPECT_GT(stats.at("faces_drawn"), 3);
  EXPECT_GE(stats.at("faces_hidden"), 0);
  EXPECT_GT(stats.at("seconds").at("read"), 0.0);
  EXPECT_GT(stats.at("seconds").at("shot"), 0.0);
  EXPECT_GT(stats.at("seconds").at("write"), 0.0);
  EXPECT_EQ(0.0, stats.at("seconds").at("png"));
  EXPECT_GT(stats.at("peak_memory_bytes"), 1000000);
  EXPECT_EQ(9u, stats.size());
  EXPECT_EQ(9u, stats.at("stages").size());
  for (const Json& seconds : stats.at("stages")) EXPECT_GE(seconds, 0.0);
  EXPECT_EQ(2u, entries(folder));
}

// With pieces so short that every stage of the street takes many ticks of the clock. No region of
// it falls into pieces that dock.
TEST(ShotProgram, EveryStageIsTimed) {
  const TempFolder folder;
  const Result result =
      run({"shot", LUMIVANE_SCENES "/street.json", "--eye", "-5.3,-1.37,3.4", "--max-length",
           "0.005", "-o", folder.path("shot.json"), "--stats", folder.path("stats.json")});
  ASSERT_EQ(0, result.status) << result.err;
  const Json stats = Json::parse(fileBytes(folder.path("stats.json")));
  for (const auto& [stage, seconds] : stats.at("stages").items()) {
    if (stage == "docking") continue;
    EXPECT_GT(seconds, 0.0) << stage;
  }
}

// --- Directions ---

TEST(ShotProgram, LookStraightUpOrDownTakesNorthAsUp) {
  const TempFolder folder;
  for (const std::string forward : {"0,0,1", "0,0,-2.5"}) {
    const std::vector<std::string> look = {"shot", LUMIVANE_SCENES "/room.json",
                                           "--eye=0.35,2.137,1.6", "--forward=" + forward};
    const auto shot = [&](std::vector<std::string> more) {
      more.insert(more.begin(), look.begin(), look.end());
      more.insert(more.end(), {"-o", folder.path("shot.json")});
      const Result result = run(more);
      EXPECT_EQ(0, result.status) << result.err;
      return fileBytes(folder.path("shot.json"));
    };
    EXPECT_EQ(shot({"--up=0,1,0"}), shot({}));
    EXPECT_NE(shot({"--up=1,0,0"}), shot({}));
  }
  // An up direction that is asked for is not replaced, wherever it stands.
  EXPECT_EQ(1, run({"shot", Small, "--up=0,0,1", "--forward=0,0,1"}).status);
  EXPECT_EQ(1, run({"shot", Small, "--forward=0,0,1", "--up=0,0,1"}).status);
}

TEST(ShotProgram, DirectionsOfAnyLengthGiveTheSameShot) {
  const TempFolder folder;
  const auto shot = [&](const std::string& forward, const std::string& up) {
    const Result result = run({"shot", Small, "--eye=-2.6,0.35,1.9", "--forward=" + forward,
                               "--up=" + up, "-o", folder.path("shot.json")});
    EXPECT_EQ(0, result.status) << result.err;
    return fileBytes(folder.path("shot.json"));
  };
  const std::string expected = shot("1,0,0", "0,0,1");
  for (const char* const length : {"1e-300", "1e-160", "1e-40", "1e40", "1e160", "1e300"})
    EXPECT_EQ(expected, shot(std::string(length) + ",0,0", std::string("0,0,") + length)) << length;
}

TEST(ShotProgram, EyeOnACornerIsNamedInTheError) {
  const Result result = run({"shot", Small, "--eye=-1,0,1", "--forward=0.5,-0.5,-0.5"});
  EXPECT_EQ(1, result.status);
  EXPECT_NE(std::string::npos,
            result.err.find("region 5: the eye stands on its corner 1, so no splitting brings its "
                            "pieces below the length limit: move the eye off the corner"))
      << result.err;
}

// --- Warnings ---

TEST(ShotProgram, CycleIsExplainedAfterTheLibrarysLine) {
  const Lumivane::Test::WorkingFolder folder;  // for the report of the cycle
  const std::string scene = Lumivane::Test::goldenDir() + "/f01_ring_of_three.scene.json";
  const Json view =
      Json::parse(fileBytes(Lumivane::Test::goldenDir() + "/f01_ring_of_three.view.json"));
  const auto vector = [&view](const char* key) {
    return view.at(key)[0].dump() + "," + view.at(key)[1].dump() + "," + view.at(key)[2].dump();
  };
  const Result result = run({"shot", scene, "--eye=" + vector("eye"),
                             "--forward=" + vector("forward"), "--up=" + vector("up")});
  EXPECT_EQ(0, result.status);
  EXPECT_NE(std::string::npos, result.out.find("\nError: Graph is cyclic\n"));
  EXPECT_EQ(0u, result.err.find("lumivane: " + scene +
                                ": warning: some faces overlap in a cycle, each hiding part of"));
  EXPECT_NE(std::string::npos, result.err.find("split one of them"));
  EXPECT_EQ("", run({"shot", Small, "--eye=-2.6,0.35,1.9"}).err);
}

// The scene of small.json, moved by whole units, and an eye that is exact in all of them.
struct FarScene {
  explicit FarScene(const TempFolder& folder) {
    Json scene = Json::parse(fileBytes(Small));
    for (Json& point : scene["Points"]) {
      point[0] = point[0].get<double>() + 4500000;
      point[1] = point[1].get<double>() + 5600000;
    }
    file = folder.file("far.json", scene.dump());
  }
  std::string file;
  std::string eye = "--eye=4499997.5,5600000.25,1.75";
};

TEST(ShotProgram, CoordinatesFarFromTheOriginAreAWarning) {
  const TempFolder folder;
  const FarScene far(folder);
  const Result result = run({"shot", far.file, far.eye, "-o", folder.path("shot.json")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(0u, result.err.find("lumivane: " + far.file + ": warning: object \""));
  EXPECT_NE(
      std::string::npos,
      result.err.find("its corners lie up to 5.6e+06 from the origin, where single precision"));
  EXPECT_NE(std::string::npos, result.err.find("lumivane shot --center moves scene and eye"));
  EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n'));
}

TEST(ShotProgram, BatchWarnsOfFarCoordinatesOnlyWhereItMakesShots) {
  const TempFolder folder;
  const FarScene far(folder);
  const std::string views = folder.file("views.csv", "name,eye\na,\"4499997.5,5600000.25,1.75\"\n");
  const auto hasWarning = [&](const std::string& out, const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"batch", far.file, views, "--out-dir", folder.path(out)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Result result = run(arguments);
    EXPECT_EQ(0, result.status) << result.err;
    return result.err.find("single precision") != std::string::npos;
  };
  EXPECT_TRUE(hasWarning("shots", {"--output", "{name}.json"}));
  EXPECT_FALSE(hasWarning("looks", {"--no-shots"}));
}

TEST(ShotProgram, CenterMovesSceneAndEyeTogether) {
  const TempFolder folder;
  const FarScene far(folder);
  ASSERT_EQ(0, run({"shot", Small, "--eye=-2.5,0.25,1.75", "-o", folder.path("near.json")}).status);
  const Result result = run({"shot", far.file, far.eye, "--center", "-o", folder.path("far.shot"),
                             "--stats", folder.path("stats.json")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_EQ(0u, result.out.find("Moved by -4500000,-5600000,0: scene and eye\n"));
  EXPECT_EQ(fileBytes(folder.path("near.json")), fileBytes(folder.path("far.shot")));
  const Json stats = Json::parse(fileBytes(folder.path("stats.json")));
  EXPECT_EQ(Json({-4500000, -5600000, 0}), stats.at("import").at("shift"));
}

TEST(ShotProgram, StatisticsAgreeWithTheKnownOnes) {
  for (const std::string name :
       {"g01_hidden", "g02_hidden_normal", "d01_city_street", "p01_one_id_twice", "h01_wall",
        "p03_degenerate", "p09_all_behind", "n05_torus_through"}) {
    SCOPED_TRACE(name);
    const std::string path = Lumivane::Test::goldenDir() + "/" + name;
    if (!fs::exists(path + ".view.json")) continue;  // another folder, given from outside
    const Json view = Json::parse(fileBytes(path + ".view.json"));
    const Json expected = Json::parse(fileBytes(path + ".stats.json"));
    const auto vector = [&view](const char* key) {
      return view.at(key)[0].dump() + "," + view.at(key)[1].dump() + "," + view.at(key)[2].dump();
    };
    const TempFolder folder;
    const Result result = run({"shot",         path + ".scene.json",
                               "--eye",        vector("eye"),
                               "--forward",    vector("forward"),
                               "--up",         vector("up"),
                               "--camera",     view.at("camera").get<std::string>(),
                               "--segments",   view.at("sn").dump(),
                               "--max-length", view.at("sl").dump(),
                               "--d1",         view.at("d1").dump(),
                               "--d2",         view.at("d2").dump(),
                               "--stats",      folder.path("stats"),
                               "--no-check"});  // some cases are scenes with errors
    ASSERT_EQ(0, result.status) << result.err;
    const Json stats = Json::parse(fileBytes(folder.path("stats")));
    EXPECT_EQ(expected.at("points"), stats.at("points"));
    EXPECT_EQ(expected.at("regions"), stats.at("regions"));
    EXPECT_EQ(expected.at("objects"), stats.at("objects"));
    EXPECT_EQ(expected.at("faces"), stats.at("faces_drawn"));
    EXPECT_EQ(expected.at("hiddenFaces"), stats.at("faces_hidden"));
    EXPECT_EQ(expected.at("eyeAfter"), stats.at("eye"));
  }
}

TEST(ShotProgram, PictureHasItsSizeAndEndsWithItself) {
  const Lumivane::Test::VirtualDisplay display;
  const TempFolder folder;
  const Result result = runView(
      Small, {"--png", folder.path("a.png"), "--size", "320x200", "--stats", folder.path("stats")},
      {{"DISPLAY", display.name()}});
  ASSERT_EQ(0, result.status) << result.err;
  const std::string png = fileBytes(folder.path("a.png"));
  EXPECT_EQ("320x200", pngSize(png));
  ASSERT_GT(png.size(), 500u);
  EXPECT_EQ("IEND", png.substr(png.size() - 8, 4));
  EXPECT_GT(Json::parse(fileBytes(folder.path("stats"))).at("seconds").at("png"), 0.0);

  // Another style, another picture.
  ASSERT_EQ(
      0, runView(Small, {"--png", folder.path("b.png"), "--size", "320x200", "--style", "outline"},
                 {{"DISPLAY", display.name()}})
             .status);
  EXPECT_NE(png, fileBytes(folder.path("b.png")));
}

TEST(ShotProgram, WithoutDisplayTheShotIsStillWritten) {
  for (const Environment& environment :
       {NoDisplay, Environment{{"DISPLAY", ":98765"}}, Environment{{"DISPLAY", ""}}}) {
    const TempFolder folder;
    const Result result = runView(Small,
                                  {"-o", folder.path("shot.json"), "--png", folder.path("a.png"),
                                   "--stats", folder.path("stats")},
                                  environment);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(0u, result.err.find("lumivane: " + folder.path("a.png") + ": "));
    EXPECT_NE(std::string::npos, result.err.find("display"));
    EXPECT_NE(std::string::npos, result.err.find("xvfb-run"));
    EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n'));
    EXPECT_TRUE(Json::accept(fileBytes(folder.path("shot.json"))));
    EXPECT_TRUE(Json::accept(fileBytes(folder.path("stats"))));
    EXPECT_FALSE(fs::exists(folder.path("a.png")));
  }
}

TEST(ShotProgram, FileThatCannotBeReadIsNamed) {
  const TempFolder folder;
  expectFailure(
      run({"shot", folder.path("none.json")}), 1,
      "lumivane: " + folder.path("none.json") + ": cannot be read: No such file or directory");
  expectFailure(run({"shot", folder.path("")}), 1,
                "lumivane: " + folder.path("") + ": cannot be read: it is a folder");
}

TEST(ShotProgram, TextThatIsNoJsonGivesTheParsersOwnError) {
  const TempFolder folder;
  const auto error = [&folder](const std::string& text) {
    const Result result = run({"shot", folder.file("s.json", text), "-o", folder.path("out")});
    EXPECT_EQ(1, result.status);
    EXPECT_FALSE(fs::exists(folder.path("out")));
    return result.err;
  };
  const std::string start = "lumivane: " + folder.path("s.json") + ": not JSON: ";
  EXPECT_EQ(start + "Unknown token: nonsense\n", error("nonsense"));
  EXPECT_EQ(start + "Extra comma in array\n", error("{\"Points\":\n[1,]}"));
  EXPECT_EQ(start + "Mismatched end and beginning of object\n", error("[1}"));
  EXPECT_EQ(start + "there is no complete object or array in it\n", error(""));
  EXPECT_EQ(start + "there is no complete object or array in it\n", error("{\"Points\":["));
}

TEST(ShotProgram, ValueOutOfRangeIsNamed) {
  const TempFolder folder;
  const auto error = [&folder](const std::string& text) {
    return run({"shot", folder.file("s.json", text)}).err;
  };
  const std::string start = "lumivane: " + folder.path("s.json") + ": ";
  EXPECT_EQ(start + "brush 2: alpha is 300, not 0 to 255\n",
            error("{\"Brushes\":[[1,2,3,4],[1,2,3,300]]}"));
  EXPECT_EQ(start + "pen 1: green is -1, not 0 to 255\n", error("{\"Pens\":[[1,-1,3,4,1]]}"));
  EXPECT_EQ(start + "pen 1: the width is -0.5, below 0\n", error("{\"Pens\":[[1,1,3,4,-0.5]]}"));
}

TEST(ShotProgram, ShotThatCannotBeMadeSaysWhy) {
  const std::string start = "lumivane: " + Small + ": no shot can be made: ";
  expectFailure(run({"shot", Small, "--up", "2,0,0"}), 1,
                start + "forward 1,0,0 and up 2,0,0 are parallel");
  expectFailure(run({"shot", Small, "--forward", "0,0,0"}), 1,
                start + "forward is the zero vector");
  expectFailure(run({"shot", Small, "--eye", "nan,0,0"}), 1, start + "eye nan,0,0 is not finite");
  const TempFolder folder;
  const std::string empty = folder.file("s.json", "[]");
  expectFailure(run({"shot", empty}), 1,
                "lumivane: " + empty + ": no shot can be made: it has no list of objects");
}

std::string sceneWithRegion(const std::string& region, const std::string& faces) {
  return "{\"Points\":[[1,0,0],[1,0,1],[1,1,0]],\"Objects\":[{\"Id\":\"good\",\"Faces\":[],"
         "\"Regions\":[]},{\"Id\":\"bad\",\"Regions\":[" +
         region + "]" + faces + "}]}";
}

TEST(ShotProgram, WrongNumberNamesObjectAndRegion) {
  const TempFolder folder;
  const auto error = [&folder](const std::string& region, const std::string& faces) {
    const Result result =
        run({"shot", folder.file("s.json", sceneWithRegion(region, faces)), "--eye=0,0.2,0.2"});
    EXPECT_EQ(1, result.status);
    return result.err;
  };
  const std::string start =
      "lumivane: " + folder.path("s.json") + ": no shot can be made: object \"bad\", region ";
  const std::string face = ",\"Faces\":[{\"Regions\":[1]}]";
  EXPECT_EQ(0u, error("{\"Face\":1,\"Points\":[1,2,9]}", face)
                    .find(start + "1: point 9, but there are 1 to 3\n"));
  EXPECT_EQ(0u, error("{\"Face\":2,\"Points\":[1,2,3]}", face)
                    .find(start + "1: face 2, but there are 1 to 1\n"));
  EXPECT_EQ(0u, error("{\"Points\":[1,2,3]}", face).find(start + "1: face -1, but"));
  const std::string faceless = error("{\"Face\":1,\"Points\":[1,2,3]}", "");
  EXPECT_NE(std::string::npos, faceless.find("bad")) << faceless;
  EXPECT_EQ(1, std::count(faceless.begin(), faceless.end(), '\n'));
}

TEST(ShotProgram, PictureOfAWrongBrushNamesObjectAndRegion) {
  const Lumivane::Test::VirtualDisplay display;
  const TempFolder folder;
  const auto error = [&](const std::string& region, const std::string& style) {
    const std::string scene =
        folder.file("s.json",
                    "{\"Brushes\":[[1,2,3,4]],\"Pens\":[[1,2,3,4,1]],\"Points\":[[2,0,0],[2,1,0],"
                    "[2,0,1]],\"Objects\":[{\"Id\":\"A\",\"Pen\":1,\"Faces\":[{}],\"Regions\":[" +
                        region + "]}]}");
    return run({"shot", scene, "--eye=0,0.2,0.2", "--png", folder.path("a.png"), "--style", style},
               {{"DISPLAY", display.name()}});
  };
  const Result bad = error("{\"Brush\":2,\"Face\":1,\"Points\":[1,2,3]}", "filled");
  EXPECT_EQ(1, bad.status);
  EXPECT_EQ("lumivane: " + folder.path("a.png") +
                ": the picture is not drawn: object \"A\", region 1 (region 1 of the shot): "
                "brush 2, but there are 1 to 1\n",
            bad.err);
  EXPECT_FALSE(fs::exists(folder.path("a.png")));
  EXPECT_EQ(0, error("{\"Brush\":2,\"Face\":1,\"Points\":[1,2,3]}", "outline").status);
}

TEST(ShotProgram, ColouringByValuesIsLeftToHostsSinceFilesHoldNone) {
  for (const char* const option : {"--property", "--scale"}) {
    const Result result = run({"shot", Small, option, "1"});
    EXPECT_EQ(2, result.status);
    EXPECT_NE(std::string::npos, result.err.find(option)) << result.err;
  }
}

TEST(ShotProgram, OutputThatCannotBeWrittenIsAnErrorBeforeTheWork) {
  const TempFolder folder;
  for (const std::string option : {"-o", "--png", "--stats"}) {
    const Result result = run({"shot", Small, option, folder.path("no/a")});
    EXPECT_EQ("", result.out);  // not even begun
    expectFailure(
        result, 1,
        "lumivane: " + folder.path("no/a") + ": cannot be written: No such file or directory");
  }
  EXPECT_EQ(0u, entries(folder));
}

TEST(ShotProgram, FullDiskIsAnError) {
  expectFailure(runView(Small, {"-o", "/dev/full"}), 1,
                "lumivane: /dev/full: cannot be written: No space left on device");
}

TEST(ShotProgram, OutputsNeverReplaceTheSceneOrEachOther) {
  const TempFolder folder;
  const std::string scene = folder.file("s.json", fileBytes(Small));
  expectFailure(runView(scene, {"-o", scene}), 2,
                "lumivane: --output: \"" + scene + "\" is already named for another file");
  const std::string out = folder.path("a");
  expectFailure(runView(scene, {"-o", out, "--stats", out}), 2,
                "lumivane: --stats: \"" + out + "\" is already named for another file");
  EXPECT_EQ(fileBytes(Small), fileBytes(scene));
}

TEST(ShotProgram, TwoOutputsUnderTwoSpellingsOfOneNameAreRefused) {
  const TempFolder folder;
  std::filesystem::create_symlink("a.out", folder.path("link"));
  const std::string shell = "cd " + folder.path("") + " && exec " LUMIVANE_PROGRAM " shot " +
                            Small + " --eye=-4,0.35,1.9 ";
  for (const std::string outputs :
       {"-o a.out --stats ./a.out", "-o link --stats a.out", "-o a.out --stats link"}) {
    const Result result = Lumivane::Test::runProcess({"/bin/sh", "-c", shell + outputs});
    EXPECT_EQ(2, result.status) << outputs;
    EXPECT_NE(std::string::npos, result.err.find("\" is already named for another file"))
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder.path("a.out"))) << outputs;
  }
}

TEST(ShotProgram, WrongArgumentsAreOneLineAndStatusTwo) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{},
                                             {"draw"},
                                             {"shot"},
                                             {"shot", Small, "--eye", "1,2"},
                                             {"shot", Small, "--no-such-option"},
                                             {"shot", Small, "extra"},
                                             {"shot", Small, "--camera", "round"}}) {
    const Result result = run(arguments);
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_EQ(0u, result.err.find("lumivane: "));
    EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
  }
}

TEST(ShotProgram, ShotsDoNotDependOnTheNumberOfThreads) {
  const TempFolder folder;
  const std::string shot = folder.path("shot.json");
  std::string expected;
  for (const std::string threads : {"1", "0", "3"}) {
    const Result result = runView(Small, {"-o", shot, "--threads", threads});
    ASSERT_EQ(0, result.status) << result.err;
    if (expected.empty()) expected = result.out + fileBytes(shot);
    EXPECT_EQ(expected, result.out + fileBytes(shot)) << threads;
  }
  for (const std::string wrong : {"--threads=-1", "--threads=1025", "--threads=two", "--threads="})
    EXPECT_EQ(2, runView(Small, {wrong}).status) << wrong;
}

TEST(ShotProgram, LimitsAreSaidWithObjectRegionAndOption) {
  const TempFolder folder;
  const std::string floor = folder.path("floor.json");
  std::ofstream(floor) << floorText(200, 10.0);
  const std::vector<std::string> shot = {"shot", floor, "--eye=0,0,0.05", "--forward=1,0.01,0"};
  const auto with = [&shot](const std::string& option) {
    std::vector<std::string> arguments = shot;
    arguments.push_back(option);
    return arguments;
  };
  const std::string start = "lumivane: " + floor +
                            ": no shot can be made: Scene::Object \"floor\", region 1: its edges "
                            "of 768 pieces each need 347904 point references, and ";
  const std::string advice = ": raise it or the maximum length, or move the eye";
  expectFailure(run(with("--limit-points=100000")), 1,
                start + "--limit-points (ViewSettings::limitPoints) leaves 100000" + advice);
  expectFailure(run(with("--limit-memory=13000K")), 1,
                start +
                    "--limit-memory (ViewSettings::limitMemory) of 13312000 bytes leaves room "
                    "for 102400" +
                    advice);
  for (const std::string wrong :
       {"--limit-memory=-1", "--limit-memory=2X", "--limit-memory=", "--limit-memory=9999999T",
        "--limit-points=-1", "--limit-points=1e6"})
    EXPECT_EQ(2, run(with(wrong)).status) << wrong;
}

#ifndef LUMIVANE_SANITIZED  // whose own memory would be counted
TEST(ShotProgram, FloorBelowTheEyeTakesLittleMemoryForEachPointReference) {
  const TempFolder folder;
  const std::string floor = folder.path("floor.json");
  std::ofstream(floor) << floorText(200, 10.0);
  const std::string stats = folder.path("stats.json");
  const std::string file = folder.path("shot.json");
  const Result result =
      run({"shot", floor, "--eye=0,0,0.05", "--forward=1,0.01,0", "-o", file, "--stats", stats});
  ASSERT_EQ(0, result.status) << result.err;
  const Json shot = Json::parse(fileBytes(file));
  std::size_t references = 0;
  for (const Json& region : shot["Regions"]) references += region["Points"].size();
  EXPECT_GT(references, 3'000'000u);
  const double bytes = Json::parse(fileBytes(stats))["peak_memory_bytes"];
  EXPECT_LT(bytes / static_cast<double>(references), 62.0);  // once it was 150
}
#endif

TEST(ShotProgram, AnEyeInsideABodyIsReported) {
  // Inside the pyramid, whose sides are then not drawn.
  const Result inside = run({"shot", Small, "--eye=1,0.9,0.3"});
  EXPECT_EQ(0, inside.status);
  EXPECT_EQ("lumivane: " + Small +
                ": warning: the eye is inside a body, which is not drawn from there: what is "
                "visible is as if it were not there\n",
            inside.err);
  EXPECT_EQ("", runView(Small, {}).err);
}

TEST(ShotProgram, AnAuditIsPartOfTheStatistics) {
  const TempFolder folder;
  const Result result = run({"shot", Small, "--eye=-2.6,0.35,1.9", "--forward=1,-0.06,-0.45",
                             "--audit", "--stats", folder.path("stats.json")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.err);
  const Json stats = Json::parse(fileBytes(folder.path("stats.json")));
  const Json audit = stats.at("audit");
  const double wrong = audit.at("wrong_share");
  EXPECT_GT(wrong, 0.0);
  EXPECT_LT(wrong, 1e-4);
  EXPECT_DOUBLE_EQ(wrong, audit.at("wrong").get<double>() / audit.at("covered").get<double>());
  ASSERT_EQ(3u, audit.at("objects").size());
  const Json plate = audit.at("objects").at(0);
  EXPECT_EQ(1, plate.at("object"));
  EXPECT_EQ("plate", plate.at("id"));
  EXPECT_NEAR(plate.at("shown").get<double>() - plate.at("shown_wrongly").get<double>(),
              plate.at("seen").get<double>() - plate.at("missing").get<double>(), 1e-12);
  EXPECT_GT(stats.at("seconds").at("audit"), 0.0);
}

TEST(ShotProgram, AnAuditIsJsonWhateverAnIdHolds) {
  const TempFolder folder;
  std::string scene = fileBytes(Small);
  const std::string id = "\"plate\"";
  scene.replace(scene.find(id), id.size(),
                "\"a\xFF"
                "\\u0001\"");
  const Result result =
      run({"shot", folder.file("scene.json", scene), "--eye=-2.6,0.35,1.9",
           "--forward=1,-0.06,-0.45", "--audit", "--stats", folder.path("stats.json")});
  ASSERT_EQ(0, result.status) << result.err;
  const Json stats = Json::parse(fileBytes(folder.path("stats.json")));
  EXPECT_EQ("a\xEF\xBF\xBD\xEF\xBF\xBD", stats.at("audit").at("objects").at(0).at("id"));
}

TEST(ShotProgram, AnAuditWarnsOfAPictureThatIsWrong) {
  // In a cyclic overlap one bar is painted over what is in front of it, whatever the order.
  const Lumivane::Test::WorkingFolder folder;  // for the report of the overlap
  const std::string ring = LUMIVANE_SCENES "/ring.json";
  const Result result = run({"shot", ring, "--eye=-4,0,0", "--audit"});
  EXPECT_EQ(0, result.status);
  const size_t line = result.err.find("lumivane: " + ring +
                                      ": warning: the picture shows a wrong region on 5.29 % of "
                                      "what it covers, most of it at object 1 (\"first\"); ");
  ASSERT_NE(std::string::npos, line) << result.err;
  EXPECT_EQ(result.err.size() - 1, result.err.find('\n', line));
}

// Points on the centre line of the equirectangular picture lie at its left edge, so that faces at a
// plane of symmetry become bars across half of it.
TEST(ShotProgram, AnAuditReportsTheBarsOfAMeshSeenAlongItsPlaneOfSymmetry) {
  const Lumivane::Test::WorkingFolder work;  // for the report of overlaps
  const TempFolder folder;
  // A box of triangles whose middle line lies at y = 0.
  const std::string mesh = folder.file("box.obj",
                                       "v 0 -1 -1\nv 0 0 -1\nv 0 1 -1\nv 0 -1 1\nv 0 0 1\n"
                                       "v 0 1 1\nv 2 -1 1\nv 2 0 1\nv 2 1 1\n"
                                       "f 1 4 5 2\nf 2 5 6 3\nf 4 7 8 5\nf 5 8 9 6\n");
  const Result result = run({"shot", mesh, "--eye=-4,0,3", "--camera", "equirectangular", "--audit",
                             "--stats", folder.path("stats.json")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.err.find("the picture shows a wrong region on"))
      << result.err;
  const Json audit = Json::parse(fileBytes(folder.path("stats.json"))).at("audit");
  EXPECT_LT(0.2, audit.at("wrong_share").get<double>());
}

TEST(ShotProgram, VeryManySegmentsAskForALimitInstead) {
  expectFailure(runView(Small, {"--segments", "100001"}), 2,
                "lumivane: --segments: 100001 is above 100000: say with --limit-points N how many "
                "point references the shot may have (see --help)");
  EXPECT_EQ(0, runView(Small, {"--segments", "100000", "--max-length", "0"}).status);
  const Result limited = runView(Small, {"--segments", "1000000", "--limit-points", "5000000"});
  EXPECT_EQ(1, limited.status);
  EXPECT_NE(std::string::npos, limited.err.find("--limit-points")) << limited.err;
}

TEST(ShotProgram, HelpAndVersionAreThere) {
  const Result help = run({"--help"});
  EXPECT_EQ(0, help.status);
  for (const char* const command : {"shot", "show", "json5"})
    EXPECT_NE(std::string::npos, help.out.find(command));
  const Result shotHelp = run({"shot", "--help"});
  EXPECT_EQ(0, shotHelp.status);
  for (const char* const option :
       {"--eye", "--forward", "--up", "--camera", "--d1", "--d2", "--segments", "--max-length",
        "-o", "--png", "--size", "--style", "--stats"})
    EXPECT_NE(std::string::npos, shotHelp.out.find(option)) << option;
  const Result version = run({"--version"});
  EXPECT_EQ(0, version.status);
  EXPECT_EQ("lumivane " LUMIVANE_VERSION "\n", version.out);
}

TEST(ShotProgram, ProgressBarIsThereOnATerminalAlone) {
  const TempFolder folder;
  const std::vector<std::string> arguments = {"shot",        Small, "--eye",
                                              "-4,0.35,1.9", "-o",  folder.path("a")};
  EXPECT_EQ("", run(arguments).err);
  const Result onTerminal = run(arguments, NoDisplay, true);
  EXPECT_EQ(0, onTerminal.status);
  EXPECT_NE(std::string::npos, onTerminal.err.find('['));
  EXPECT_NE(std::string::npos, onTerminal.err.find(" %"));
  EXPECT_EQ(std::string::npos, onTerminal.out.find(" %"));
  EXPECT_EQ("\r\033[K", onTerminal.err.substr(onTerminal.err.size() - 4));  // wiped out
}

TEST(ShotProgram, AnyPathIsSafe) {
  const TempFolder folder;
  const std::string scene = folder.file("a%s%n%d b.json", fileBytes(Small));
  EXPECT_EQ(0, runView(scene, {"-o", folder.path("%n%s%99999999d.json")}).status);
  EXPECT_TRUE(fs::exists(folder.path("%n%s%99999999d.json")));
}

}  // namespace
}  // namespace Lumivane::Host
