// `lumivane view`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Room = LUMIVANE_SCENES "/room.json";

Result view(const std::string& scene, std::vector<std::string> more,
            const std::string& eye = "0.35,2.137,1.6") {
  std::vector<std::string> command = {LUMIVANE_PROGRAM, "view", scene, "--eye", eye};
  command.insert(command.end(), more.begin(), more.end());
  return Lumivane::Test::runProcess(command, {{"DISPLAY", {}}});
}

std::vector<std::vector<std::string>> table(const std::string& path) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream text(fileBytes(path));
  for (std::string line; std::getline(text, line);) {
    rows.emplace_back();
    std::istringstream fields(line + ",");
    for (std::string field; std::getline(fields, field, ',');) rows.back().push_back(field);
  }
  return rows;
}

double sum(const std::vector<std::vector<std::string>>& rows, const std::string& column) {
  std::size_t at = 0;
  while (rows.at(0).at(at) != column) ++at;
  double result = 0.0;
  for (std::size_t i = 1; i < rows.size(); ++i) result += std::stod(rows[i].at(at));
  return result;
}

size_t entries(const TempFolder& folder) {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.path(""))) ++count;
  return count;
}

TEST(ViewProgram, SharesOfObjectsAndSkyAddUpToTheHemisphere) {
  const TempFolder folder;
  ASSERT_EQ(0, view(Room, {"--shares", folder.path("room.csv")}).status);
  const auto rows = table(folder.path("room.csv"));
  EXPECT_EQ("object", rows.at(1).at(0));
  EXPECT_EQ("shell", rows.at(1).at(2));
  EXPECT_EQ("sky", rows.back().at(0));
  EXPECT_NEAR(1.0, sum(rows, "view_factor"), 1e-9);
  EXPECT_NEAR(1.0, sum(rows, "hemisphere_share"), 1e-9);
  EXPECT_NEAR(2.0 * 3.141592653589793, sum(rows, "solid_angle"), 1e-9);
}

TEST(ViewProgram, SharesOfASphereAddUpToIt) {
  const TempFolder folder;
  ASSERT_EQ(0, view(Room, {"--field", "sphere", "--shares", folder.path("room.csv")}).status);
  const auto rows = table(folder.path("room.csv"));
  EXPECT_EQ("solid_angle", rows.at(0).at(6));
  EXPECT_NEAR(4.0 * 3.141592653589793, sum(rows, "solid_angle"), 1e-9);
}

TEST(ViewProgram, RowsGoAsDeepAsAskedFor) {
  const TempFolder folder;
  std::size_t before = 0;
  for (const char* depth : {"total", "object", "face", "region"}) {
    ASSERT_EQ(0, view(Room, {"--shares", folder.path("a.csv"), "--rows", depth}).status);
    const auto rows = table(folder.path("a.csv"));
    EXPECT_GT(rows.size(), before) << depth;
    before = rows.size();
  }
}

TEST(ViewProgram, ATargetStandsForADirection) {
  const TempFolder folder;
  const std::string a = folder.path("a.json");
  const std::string b = folder.path("b.json");
  ASSERT_EQ(0, view(Room, {"--target", "2.35,2.137,1.1", "--shares", a}).status);
  ASSERT_EQ(0, view(Room, {"--forward", "2,0,-0.5", "--shares", b}).status);
  EXPECT_EQ(Json::parse(fileBytes(b)).at("rows").size(),
            Json::parse(fileBytes(a)).at("rows").size());
  for (size_t i = 0; i < 3; ++i)
    EXPECT_NEAR(Json::parse(fileBytes(b)).at("forward").at(i).get<double>(),
                Json::parse(fileBytes(a)).at("forward").at(i).get<double>(), 1e-12);
  const Result both = view(Room, {"--target", "1,1,1", "--forward", "1,0,0"});
  EXPECT_EQ(2, both.status);
  const Result here = view(Room, {"--target", "0.35,2.137,1.6"});
  EXPECT_EQ(1, here.status);
  EXPECT_EQ("lumivane: --target: is where the eye stands: name another point to look at\n",
            here.err);
}

TEST(ViewProgram, CenteredScenesMoveWithEyeAndTarget) {
  const TempFolder folder;
  const std::string a = folder.path("a.csv");
  const std::string b = folder.path("b.csv");
  ASSERT_EQ(0, view(Room, {"--target", "2.35,2.137,1.1", "--shares", a}).status);
  ASSERT_EQ(0, view(Room, {"--target", "2.35,2.137,1.1", "--shares", b, "--center"}).status);
  const auto before = table(a);
  const auto after = table(b);
  ASSERT_EQ(before.size(), after.size());
  for (std::size_t i = 1; i < before.size(); ++i)
    EXPECT_NEAR(std::stod(before[i].at(8)), std::stod(after[i].at(8)), 1e-9) << before[i].at(2);
}

TEST(ViewProgram, MapAndStatisticsAgree) {
  const TempFolder folder;
  ASSERT_EQ(
      0,
      view(Room, {"--map", folder.path("map.json"), "--stats", folder.path("stats.json")}).status);
  const Json map = Json::parse(fileBytes(folder.path("map.json")));
  const Json stats = Json::parse(fileBytes(folder.path("stats.json")));
  EXPECT_EQ(map.at("cells").size(), stats.at("cells"));
  EXPECT_EQ(map.at("edges").size(), stats.at("edges"));
  EXPECT_GT(stats.at("peak_memory_bytes"), 1000000);
  for (const char* stage : {"read", "index", "look", "write"})
    EXPECT_GE(stats.at("seconds").at(stage), 0.0);
  double solidAngle = 0.0;
  for (const Json& cell : map.at("cells")) solidAngle += cell.at("solid_angle").get<double>();
  EXPECT_NEAR(2.0 * 3.141592653589793, solidAngle, 1e-9);
}

TEST(ViewProgram, ThreadsDoNotChangeTheMap) {
  const TempFolder folder;
  ASSERT_EQ(0, view(Room, {"--map", folder.path("1.json"), "--threads", "1"}).status);
  ASSERT_EQ(0, view(Room, {"--map", folder.path("8.json"), "--threads", "8"}).status);
  EXPECT_EQ(fileBytes(folder.path("1.json")), fileBytes(folder.path("8.json")));
}

TEST(ViewProgram, TwoSidedSeesWhatFacesAway) {
  const TempFolder folder;
  const std::string path = folder.path("a.csv");
  const auto nearest = [&path] { return std::stod(table(path).at(1).at(12)); };
  // From outside the room its nearer wall is seen from behind.
  ASSERT_EQ(0, view(Room, {"--shares", path, "--rows", "total"}, "-3,2,1").status);
  EXPECT_GT(nearest(), 3.1);
  ASSERT_EQ(0, view(Room, {"--shares", path, "--rows", "total", "--two-sided"}, "-3,2,1").status);
  EXPECT_NEAR(3.0, nearest(), 0.1);
}

TEST(ViewProgram, PicturesAreWrittenInEachProjectionAndField) {
  for (const char* projection : {"fisheye", "equirectangular"}) {
    for (const char* field : {"hemisphere", "sphere"}) {
      const TempFolder folder;
      const Result result =
          view(Room, {"--projection", projection, "--field", field, "--svg", folder.path("a.svg"),
                      "--pdf", folder.path("a.pdf"), "--png-vector", folder.path("a.png"), "--html",
                      folder.path("a.html"), "--color-by", "object"});
      ASSERT_EQ(0, result.status) << result.err;
      EXPECT_NE(std::string::npos, fileBytes(folder.path("a.svg")).find("<g id=\"map\""));
      EXPECT_EQ(0U, fileBytes(folder.path("a.pdf")).rfind("%PDF-", 0));
      EXPECT_EQ(0U, fileBytes(folder.path("a.png")).rfind("\x89PNG", 0));
      EXPECT_NE(std::string::npos, fileBytes(folder.path("a.html")).find("<svg"));
    }
  }
}

TEST(ViewProgram, MeshesAndCityModelsAreLookedAtAsTheyAre) {
  const TempFolder folder;
  const std::string path = folder.path("a.csv");
  ASSERT_EQ(0, view(LUMIVANE_MODELS "/cube.obj", {"--shares", path}, "-4,0.3,0.7").status);
  EXPECT_LT(0.0, std::stod(table(path).at(1).at(8)));
  ASSERT_EQ(0, view(LUMIVANE_MODELS "/house.city.json",
                    {"--forward", "0.5,1,-0.3", "--shares", path}, "-8.3,-15.1,7.7")
                   .status);
  const auto rows = table(path);
  EXPECT_NEAR(1.0, sum(rows, "view_factor"), 1e-9);
  EXPECT_LT(0.0, std::stod(rows.at(1).at(8)));
}

TEST(ViewProgram, RowsOfClassesAndBuildingsAreSumsOfThoseOfObjects) {
  const TempFolder folder;
  const auto rowsBy = [&folder](const std::string& depth) {
    const std::string path = folder.path(depth + ".json");
    const Result result =
        view(LUMIVANE_MODELS "/house.city.json",
             {"--forward", "0.5,1,-0.3", "--shares", path, "--rows", depth}, "-8.3,-15.1,7.7");
    EXPECT_EQ(0, result.status) << result.err;
    return Json::parse(fileBytes(path)).at("rows");
  };
  const Json objects = rowsBy("object");
  double house = 0.0;
  double all = 0.0;
  for (const Json& row : objects) {
    if (row.at("kind") == "sky") continue;
    const double share = row.at("view_factor").get<double>();
    all += share;
    if (row.at("id").get<std::string>().rfind("house", 0) == 0) house += share;
  }
  double byClass = 0.0;
  bool hasRoof = false;
  for (const Json& row : rowsBy("class")) {
    if (row.at("kind") == "sky") continue;
    EXPECT_EQ("class", row.at("kind"));
    byClass += row.at("view_factor").get<double>();
    hasRoof = hasRoof || row.value("class", "") == "Roof";
  }
  EXPECT_NEAR(all, byClass, 1e-12);
  EXPECT_TRUE(hasRoof);
  bool hasHouse = false;
  for (const Json& row : rowsBy("building")) {
    if (row.value("id", "") != "house") continue;
    hasHouse = true;
    EXPECT_NEAR(house, row.at("view_factor").get<double>(), 1e-12);
  }
  EXPECT_TRUE(hasHouse);
}

TEST(ViewProgram, WithoutOutputsItPrintsALine) {
  const Result result = view(Room, {});
  EXPECT_EQ(0, result.status);
  EXPECT_NE(std::string::npos, result.out.find("19 of 19 objects are seen")) << result.out;
  EXPECT_EQ(0U, result.out.find("view factor of the sky ")) << result.out;
}

TEST(ViewProgram, LookingUpItPrintsTheSkyViewFactorOfTheTable) {
  const TempFolder folder;
  const std::string street = LUMIVANE_SCENES "/street.json";
  const std::vector<std::string> up = {"--forward", "0,0,1"};
  const Result printed = view(street, up, "-5.3,-1.37,3.4");
  ASSERT_EQ(0,
            view(street, {"--forward", "0,0,1", "--shares", folder.path("s.csv")}, "-5.3,-1.37,3.4")
                .status);
  const auto rows = table(folder.path("s.csv"));
  const auto at = std::find(rows[0].begin(), rows[0].end(), "view_factor") - rows[0].begin();
  char line[64];
  std::snprintf(line, sizeof line, "sky view factor %.4f; ",
                std::stod(rows.back().at(static_cast<std::size_t>(at))));
  EXPECT_EQ(0U, printed.out.find(line)) << printed.out << line;
}

TEST(ViewProgram, AnEyeInsideABodyIsReported) {
  const std::string scene = LUMIVANE_SCENES "/small.json";
  const std::string text = "small.json: warning: the eye is inside a body";
  EXPECT_NE(std::string::npos, view(scene, {}, "-0.3,-0.1,0.3").err.find(text));
  EXPECT_EQ(std::string::npos, view(scene, {"--two-sided"}, "-0.3,-0.1,0.3").err.find(text));
  EXPECT_EQ(std::string::npos, view(scene, {}, "3,3,1").err.find(text));
  const TempFolder folder;
  const std::string page = folder.path("report.html");
  ASSERT_EQ(0, view(scene, {"--report", page}, "-0.3,-0.1,0.3").status);
  EXPECT_NE(std::string::npos, fileBytes(page).find("Inside a body"));
  ASSERT_EQ(0, view(scene, {"--report", page}, "3,3,1").status);
  EXPECT_EQ(std::string::npos, fileBytes(page).find("Inside a body"));
}

TEST(ViewProgram, TheFisheyeHasItsNamesOfOtherFieldsToo) {
  const TempFolder folder;
  for (const std::string name : {"fisheye", "orthographic", "nusselt"})
    ASSERT_EQ(0, view(Room, {"--projection", name, "--svg", folder.path(name)}).status) << name;
  EXPECT_EQ(fileBytes(folder.path("fisheye")), fileBytes(folder.path("orthographic")));
  EXPECT_EQ(fileBytes(folder.path("fisheye")), fileBytes(folder.path("nusselt")));
}

TEST(ViewProgram, TwoOutputsOnOneFileAreRefusedBeforeTheWork) {
  const TempFolder folder;
  const std::string path = folder.path("a.json");
  const Result result = view(Room, {"--map", path, "--shares", path});
  EXPECT_NE(0, result.status);
  EXPECT_NE(std::string::npos, result.err.find(path)) << result.err;
  EXPECT_EQ(0U, entries(folder));
}

TEST(ViewProgram, WrongArgumentsAreNamed) {
  EXPECT_EQ(2, view(Room, {"--field", "disc"}).status);
  EXPECT_EQ(2, view(Room, {"--projection", "gnomonic"}).status);
  EXPECT_EQ(2, view(Room, {"--rows", "pixel"}).status);
  EXPECT_EQ(2, view(Room, {"--shares", "a.txt"}).status);
  EXPECT_EQ(2, view(Room, {}, "1,2").status);
  const auto expectRefused = [](const Result& result, const std::string& line) {
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("lumivane: " + line + "\n", result.err);
  };
  expectRefused(view(Room, {"--forward", "0,0,0"}), "--forward: is zero: name a direction");
  const std::string notFinite = ": is not finite: name numbers that are";
  expectRefused(view(Room, {}, "1,2,nan"), "--eye" + notFinite);
  expectRefused(view(Room, {"--forward", "inf,0,0"}), "--forward" + notFinite);
  expectRefused(view(Room, {"--up", "0,nan,0"}), "--up" + notFinite);
  expectRefused(view(Room, {"--target", "1e999,0,0"}), "--target" + notFinite);
  const Result missing = view("nothing.json", {});
  EXPECT_EQ(1, missing.status);
  EXPECT_NE(std::string::npos, missing.err.find("nothing.json"));
}

TEST(ViewProgram, NothingIsWrittenIfOneOutputCannotBe) {
  const TempFolder folder;
  const Result result =
      view(Room, {"--map", folder.path("map.json"), "--svg", folder.path("no/such/folder/a.svg")});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ(0U, entries(folder));
}

TEST(ExactShares, BatchWritesWhatViewDoesAndSumsItUp) {
  const TempFolder folder;
  const std::string views =
      folder.file("views.csv", "name,eye,forward\na,\"0.35,2.137,1.6\",\"1,0,0\"\n");
  const Result batch =
      Lumivane::Test::runProcess({LUMIVANE_PROGRAM, "batch", Room, views, "--out-dir",
                                  folder.path("out"), "--shares", "{name}.csv", "--rows", "region"},
                                 {{"DISPLAY", {}}});
  ASSERT_EQ(0, batch.status) << batch.err;
  ASSERT_EQ(0, view(Room, {"--shares", folder.path("view.csv"), "--rows", "region"}).status);
  EXPECT_EQ(fileBytes(folder.path("view.csv")), fileBytes(folder.path("out/a.csv")));
  const auto summary = table(folder.path("out/summary.csv"));
  std::map<std::string, std::string> row;
  for (std::size_t i = 0; i < summary.at(0).size(); ++i) row[summary[0][i]] = summary.at(1).at(i);
  EXPECT_EQ("19", row.at("objects_visible"));
  EXPECT_EQ("shell", row.at("largest_object"));
  EXPECT_EQ(table(folder.path("view.csv")).at(1).at(7), row.at("largest_view_factor"));
  EXPECT_EQ(table(folder.path("view.csv")).back().at(7), row.at("sky_view_factor"));
}

TEST(ExactShares, GridWritesThemForEachViewUnderItsName) {
  const TempFolder folder;
  const std::string shares = folder.path("shares.csv");
  const Result grid = Lumivane::Test::runProcess(
      {LUMIVANE_PROGRAM, "grid", Room, "--spacing", "3", "--height", "1.6", "-o",
       folder.path("views.csv"), "--shares", shares, "--rows", "object"},
      {{"DISPLAY", {}}});
  ASSERT_EQ(0, grid.status) << grid.err;
  const auto rows = table(shares);
  const auto names = table(folder.path("views.csv"));
  ASSERT_EQ(1 + (names.size() - 1) * 20, rows.size());  // 19 objects and the sky
  EXPECT_EQ("name", rows[0][0]);
  EXPECT_EQ("kind", rows[0][1]);
  for (std::size_t i = 1; i < rows.size(); ++i)
    EXPECT_EQ(names.at(1 + (i - 1) / 20)[0], rows[i][0]);
  EXPECT_NEAR(static_cast<double>(names.size() - 1), sum(rows, "view_factor"), 1e-8);
}

TEST(ExactShares, GridRefusesOtherTablesThanCsv) {
  const Result grid = Lumivane::Test::runProcess(
      {LUMIVANE_PROGRAM, "grid", Room, "--spacing", "3", "--height", "1.6", "--shares", "a.json"},
      {{"DISPLAY", {}}});
  EXPECT_EQ(2, grid.status);
  EXPECT_NE(std::string::npos, grid.err.find("does not end in .csv")) << grid.err;
}

}  // namespace
}  // namespace Lumivane::Host
