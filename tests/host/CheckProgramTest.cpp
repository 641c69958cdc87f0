// `lumivane check`, and what `lumivane shot` makes of its errors, run as processes.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";

Result lumivane(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments);
}

// The small scene with one region's value changed.
std::string changed(const TempFolder& folder, const char* key, const Json& value) {
  Json scene = Json::parse(fileBytes(Small));
  scene["Objects"][1]["Regions"][2][key] = value;
  return folder.file("changed.json", scene.dump());
}

TEST(CheckProgram, CleanSceneEndsWithZero) {
  const Result result = lumivane({"check", Small});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(Small + ": 0 errors, 0 warnings\n", result.out);
}

TEST(CheckProgram, WarningsAloneEndWithOne) {
  const TempFolder folder;
  const Result result = lumivane({"check", changed(folder, "Brush", 9)});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ(0u,
            result.out.find("warning: object \"block\", region 3: brush 9, but there are 1 to 4"));
  EXPECT_NE(std::string::npos, result.out.find("\n    fix: "));
}

TEST(CheckProgram, ErrorsEndWithTwo) {
  const TempFolder folder;
  const Result result = lumivane({"check", changed(folder, "Face", 9)});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ(0u, result.out.find("error: object \"block\", region 3: face 9, but there are 1 to 5"));
}

TEST(CheckProgram, JsonIsForMachines) {
  const TempFolder folder;
  const Json report = Json::parse(lumivane({"check", "--json", changed(folder, "Face", 9)}).out);
  EXPECT_EQ(1, report.at("errors"));
  EXPECT_EQ("error", report.at("findings").at(0).at("severity"));
  EXPECT_EQ("face-number", report.at("findings").at(0).at("code"));
  EXPECT_EQ("block", report.at("findings").at(0).at("object"));
  EXPECT_EQ(3, report.at("findings").at(0).at("region"));
}

#ifdef LUMIVANE_HOST_TOOLS
TEST(CheckProgram, MeshOrCityModelIsCheckedAsTheSceneOfItsImport) {
  for (const std::string name : {"cube.obj", "house.city.json"}) {
    const std::string model = LUMIVANE_MODELS "/" + name;
    const Result result = lumivane({"check", model});
    EXPECT_EQ(0, result.status) << result.out << result.err;
    EXPECT_EQ(model + ": 0 errors, 0 warnings\n", result.out);
  }
  const TempFolder folder;
  const std::string thin =
      folder.file("thin.obj", "v 0 0 0\nv 0.00005 0 0\nv 0 1 0\no sliver\nf 1 2 3\n");
  const Result result = lumivane({"check", thin});
  EXPECT_EQ(1, result.status);
  EXPECT_NE(std::string::npos, result.out.find("object \"sliver\", region 1")) << result.out;
  const std::string damaged = folder.file("damaged.obj", "v 0 0 0\nf 1 2 3\n");
  EXPECT_EQ(2, lumivane({"check", damaged}).status);
}
#endif

TEST(CheckProgram, SceneFileIsCheckedWhereItIs) {
  const Result result = lumivane({"check", LUMIVANE_SCENES "/small.json", "--center"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("lumivane: " LUMIVANE_SCENES
            "/small.json: is a scene file, which is checked where it is: leave out --center\n",
            result.err);
}

TEST(CheckProgram, MissingFileIsOneLineAndTwo) {
  const Result result = lumivane({"check", "no/scene.json"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("lumivane: no/scene.json: cannot be read: No such file or directory\n", result.err);
}

TEST(ShotProgram, RefusesErrorsInTheWordsOfTheCheck) {
  const TempFolder folder;
  const std::string scene = changed(folder, "Face", 9);
  const Result result = lumivane({"shot", scene, "-o", folder.path("shot.json")});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("lumivane: " + scene +
                ": no shot can be made: object \"block\", region 3: face 9, but there are 1 to 5\n",
            result.err);
  EXPECT_EQ("", result.out);  // refused before any work
  EXPECT_FALSE(std::filesystem::exists(folder.path("shot.json")));
}

TEST(ShotProgram, WithoutTheCheckTheShotItselfFails) {
  const TempFolder folder;
  const Result result = lumivane({"shot", changed(folder, "Face", 9), "--eye", "-2.6,0.35,1.9",
                                  "--no-check", "-o", folder.path("shot.json")});
  EXPECT_EQ(1, result.status);
  EXPECT_NE("", result.out);  // the work had begun
  EXPECT_NE(std::string::npos, result.err.find("object \"block\", region 3: face 9"));
}

TEST(ShotProgram, WarningsDoNotStopIt) {
  const TempFolder folder;
  EXPECT_EQ(0,
            lumivane({"shot", changed(folder, "Brush", 9), "-o", folder.path("shot.json")}).status);
  EXPECT_TRUE(std::filesystem::exists(folder.path("shot.json")));
}

}  // namespace
}  // namespace Lumivane::Host
