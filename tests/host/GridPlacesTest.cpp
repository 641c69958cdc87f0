// Eyes on the surfaces of a scene: `lumivane grid --above` and `--on`, run as a process.

#include "Csv.h"
#include "host/CityScene.h"
#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::cityText;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

using Row = std::map<std::string, std::string>;

std::vector<Row> rowsOf(const std::string& text) {
  const std::vector<CsvRecord> records = readCsv(text, "table");
  std::vector<Row> rows;
  for (std::size_t i = 1; i < records.size(); ++i) {
    rows.emplace_back();
    for (std::size_t k = 0; k < records[0].fields.size(); ++k)
      rows.back()[records[0].fields[k]] = records[i].fields.at(k);
  }
  return rows;
}

std::vector<double> numbers(const std::string& text) {
  std::vector<double> result;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t comma = std::min(text.find(',', start), text.size());
    result.push_back(std::stod(text.substr(start, comma - start)));
    start = comma + 1;
  }
  return result;
}

// The city, in the coordinates of its document without the beginning of those.
class GridPlaces : public ::testing::Test {
 protected:
  Result grid(const std::vector<std::string>& more, const std::string& spacing = "2") const {
    std::vector<std::string> arguments = {LUMIVANE_PROGRAM, "grid", model, "--spacing", spacing};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
  }

  std::vector<Row> rows(const std::vector<std::string>& more,
                        const std::string& spacing = "2") const {
    const Result result = grid(more, spacing);
    EXPECT_EQ(0, result.status) << result.err;
    return rowsOf(result.out);
  }

  // The import has moved the middle, (9.5, 5.5) from the beginning, near 0 by whole metres.
  static std::vector<double> eyeOf(const Row& row) {
    std::vector<double> eye = numbers(row.at("eye"));
    eye.at(0) += 10.0;
    eye.at(1) += 6.0;
    return eye;
  }

  TempFolder folder;
  std::string model = folder.file("city.city.json", cityText());
};

bool isIn(const std::vector<double>& eye, double lowX, double highX) {
  return eye[0] > lowX && eye[0] < highX && eye[1] > 2.0 && eye[1] < 6.0;
}

TEST_F(GridPlaces, SurfaceIsTheHighestOneSoEyesStandOnRoofsToo) {
  const Result result = grid({"--above", "surface", "--height", "1.5"});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos,
            result.err.find("20 of 60 places have nothing below them (--above surface)"))
      << result.err;
  const std::vector<Row> table = rowsOf(result.out);
  ASSERT_EQ(40U, table.size());
  for (const Row& row : table) {
    const std::vector<double> eye = eyeOf(row);
    const bool isHouse = isIn(eye, 2.0, 6.0);
    const bool isShed = isIn(eye, 15.0, 19.0);
    EXPECT_EQ(isHouse ? 9.5 : (isShed ? 5.5 : 2.5), eye[2]) << row.at("name");
    EXPECT_EQ("0", row.at("inside"));
    const std::string part = eye[0] < 4.0 ? "house-1" : "house-2";
    EXPECT_EQ(isHouse ? part : (isShed ? "shed" : "terrain"), row.at("object"));
    EXPECT_EQ(isHouse || isShed ? "Building" : "TINRelief", row.at("class"));
  }
}

TEST_F(GridPlaces, EyesUnderTheGroundAreFlagged) {
  const Result result = grid({"--above", "ground", "--height", "-0.5"});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.err.find("are inside a body or under the ground"))
      << result.err;
  for (const Row& row : rowsOf(result.out)) EXPECT_EQ("1", row.at("inside")) << row.at("name");
  EXPECT_EQ(1, grid({"--above", "ground", "--height", "-0.5", "--skip-inside"}).status);
}

// The middle of the terrain, whose height is 1.
TEST_F(GridPlaces, AnEyeUnderTheGroundIsNamedByEachCommand) {
  const auto run = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
    return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
  };
  const std::string warning = "warning: the eye is under the ground";
  const Result under = run({"view", model, "--eye=0,-5,0.4", "--forward", "0,0,1"});
  EXPECT_EQ(0, under.status);
  EXPECT_NE(std::string::npos, under.err.find(warning)) << under.err;
  const Result over = run({"view", model, "--eye=0,-5,1.4", "--forward", "0,0,1"});
  EXPECT_EQ(std::string::npos, over.err.find(warning)) << over.err;
  const Result both = run({"view", model, "--eye=0,-5,0.4", "--forward", "0,0,1", "--two-sided"});
  EXPECT_EQ(std::string::npos, both.err.find(warning)) << both.err;
  const std::string views =
      folder.file("v.csv", "name,eye\nunder,\"0,-5,0.4\"\nover,\"0,-5,1.4\"\n");
  ASSERT_EQ(0, run({"batch", model, views, "--out-dir", folder.path("b"), "--no-shots"}).status);
  ASSERT_EQ(0, run({"batch", model, views, "--out-dir", folder.path("c")}).status);
  for (const char* const out : {"b/summary.csv", "c/summary.csv"}) {
    const std::vector<Row> rows = rowsOf(Lumivane::Test::fileBytes(folder.path(out)));
    EXPECT_EQ("1", rows.at(0).at("inside")) << out;
    EXPECT_EQ("0", rows.at(1).at("inside")) << out;
  }
  const Result sky = run(
      {"sun", model, "--views", views, "--sky", "uniform", "--sky-values", folder.path("s.csv")});
  EXPECT_NE(std::string::npos, sky.err.find("1 of 2 eyes lie inside a body or under the ground"))
      << sky.err;
  EXPECT_EQ("1", rowsOf(Lumivane::Test::fileBytes(folder.path("s.csv"))).at(0).at("inside"));
}

// Beside the terrain, whose height is 1, there is no ground at the place.
TEST_F(GridPlaces, AnEyeBelowAllGroundIsUnderIt) {
  const auto isUnder = [this](const std::string& eye) {
    const Result result = Lumivane::Test::runProcess(
        {LUMIVANE_PROGRAM, "view", model, "--eye=" + eye, "--forward=0,0,1"}, {{"DISPLAY", {}}});
    EXPECT_EQ(0, result.status) << result.err;
    return result.err.find("warning: the eye is under the ground") != std::string::npos;
  };
  EXPECT_TRUE(isUnder("8,4,0.4"));
  EXPECT_FALSE(isUnder("8,4,1.4"));
  EXPECT_TRUE(isUnder("7,-2,0.4"));  // and under the shed
  for (const Row& row : rows({"--ground", "0", "--height", "0.5"}))
    EXPECT_EQ("1", row.at("inside"));
}

TEST_F(GridPlaces, AnEyeUnderTheGroundSurfaceOfAHouseIsUnderTheGround) {
  // Terrain at 0, and the underside of a house at 5 where there is none.
  const std::string scene =
      folder.file("slope.json", R"({"Brushes":[[9,9,9,255]],"Pens":[[0,0,0,255,1]],
"Points":[[0,0,0],[0,10,0],[10,10,0],[10,0,0],[20,0,5],[24,0,5],[24,4,5],[20,4,5]],
"Objects":[{"Id":"land","Pen":1,"Faces":[{"Regions":[1]}],"Regions":[{"Brush":1,"Face":1,"Points":[1,2,3,4]}]},
{"Id":"house","Pen":1,"Faces":[{"Regions":[1]}],"Regions":[{"Brush":1,"Face":1,"Points":[5,6,7,8]}]}]})");
  folder.file("slope.classes.csv", "id,class\nland,TINRelief\nhouse,Ground\n");
  const std::string views =
      folder.file("v.csv",
                  "name,eye\nunder,\"22,2,3\"\nover,\"22,2,6\"\nbeside,\"30,2,3\"\n"
                  "below,\"30,2,-1\"\non land,\"5,5,1\"\nunder land,\"5,5,-1\"\n");
  const Result result =
      Lumivane::Test::runProcess({LUMIVANE_PROGRAM, "batch", scene, views, "--out-dir",
                                  folder.path("out"), "--no-shots", "--jobs", "1"});
  ASSERT_EQ(0, result.status) << result.err;
  std::map<std::string, std::string> inside;
  for (const Row& row : rowsOf(Lumivane::Test::fileBytes(folder.path("out/summary.csv"))))
    inside[row.at("name")] = row.at("inside");
  EXPECT_EQ((std::map<std::string, std::string>{{"under", "1"},
                                                {"over", "0"},
                                                {"beside", "0"},
                                                {"below", "1"},
                                                {"on land", "0"},
                                                {"under land", "1"}}),
            inside);
}

// Polygons as a scene file, each seen from where its corners run clockwise, and its table of
// classes.
class HandScene {
 public:
  using Corner = std::array<double, 3>;

  void add(const std::string& id, const std::string& className,
           const std::vector<Corner>& corners) {
    std::string numbers;
    for (const Corner& c : corners) {
      points += (points.empty() ? "[" : ",[") + std::to_string(c[0]) + "," + std::to_string(c[1]) +
                "," + std::to_string(c[2]) + "]";
      numbers += (numbers.empty() ? "" : ",") + std::to_string(++pointCount);
    }
    auto& own = regions[id];
    own.push_back(numbers);
    classes += id + "," + std::to_string(own.size()) + "," + className + "\n";
  }
  // Seen from outside, without a floor.
  void addHouse(const std::string& id, Corner low, Corner high) {
    const auto [x, y, z] = low;
    const auto [a, b, c] = high;
    add(id, "Wall", {{x, y, z}, {x, y, c}, {a, y, c}, {a, y, z}});
    add(id, "Wall", {{a, y, z}, {a, y, c}, {a, b, c}, {a, b, z}});
    add(id, "Wall", {{a, b, z}, {a, b, c}, {x, b, c}, {x, b, z}});
    add(id, "Wall", {{x, b, z}, {x, b, c}, {x, y, c}, {x, y, z}});
    addRoof(id, {x, y, c}, {a, b, c});
  }
  // Seen from above alone.
  void addRoof(const std::string& id, Corner low, Corner high) { addSheet(id, "Roof", low, high); }
  void addSheet(const std::string& id, const std::string& className, Corner low, Corner high) {
    const double z = low[2];
    add(id, className,
        {{low[0], low[1], z}, {low[0], high[1], z}, {high[0], high[1], z}, {high[0], low[1], z}});
  }

  std::string text() const {
    std::string objects;
    for (const auto& [id, list] : regions) {
      std::string faces;
      std::string own;
      for (std::size_t i = 0; i < list.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        faces += (i == 0 ? "" : ",") + (R"({"Regions":[)" + number + "]}");
        own += (i == 0 ? "" : ",") +
               (R"({"Brush":1,"Face":)" + number + R"(,"Points":[)" + list[i] + "]}");
      }
      objects += (objects.empty() ? "" : ",") + (R"({"Id":")" + id + R"(","Pen":1,"Faces":[)" +
                                                 faces + R"(],"Regions":[)" + own + "]}");
    }
    return R"({"Brushes":[[9,9,9,255]],"Pens":[[0,0,0,255,1]],"Points":[)" + points +
           R"(],"Objects":[)" + objects + "]}";
  }
  std::string classTable() const { return "id,face,class\n" + classes; }

 private:
  int pointCount = 0;
  std::string points;
  std::map<std::string, std::vector<std::string>> regions;
  std::string classes;
};

// The column "inside" by the names of eyes.
using Insides = std::map<std::string, std::string>;

Insides insidesOf(const TempFolder& folder, const HandScene& scene, const std::string& views,
                  bool hasClasses) {
  const std::string name = hasClasses ? "classed" : "plain";
  const std::string file = folder.file(name + ".json", scene.text());
  if (hasClasses) folder.file(name + ".classes.csv", scene.classTable());
  const std::string table = folder.file("eyes.csv", "name,eye\n" + views);
  const Result result =
      Lumivane::Test::runProcess({LUMIVANE_PROGRAM, "batch", file, table, "--out-dir",
                                  folder.path(name), "--no-shots", "--jobs", "1"});
  EXPECT_EQ(0, result.status) << result.err;
  Insides inside;
  for (const Row& row : rowsOf(Lumivane::Test::fileBytes(folder.path(name + "/summary.csv"))))
    inside[row.at("name")] = row.at("inside");
  return inside;
}

TEST(GridPlacesWithoutGround, AnEyeUnderAHouseWithoutAFloorIsUnderTheGround) {
  const TempFolder folder;
  HandScene scene;
  scene.addHouse("house", {0, 0, 5}, {4, 6, 9});
  const std::string views =
      "just under,\"1,2,4.9\"\nunder,\"1,2,3\"\nfar under,\"1,2,-50\"\nin it,\"1,2,6\"\n"
      "beside,\"7,2,3\"\nover,\"1,2,10\"\n";
  const Insides expected = {{"just under", "1"}, {"under", "1"},  {"far under", "1"},
                            {"in it", "1"},      {"beside", "0"}, {"over", "0"}};
  EXPECT_EQ(expected, insidesOf(folder, scene, views, true));
  // What no class says is built may be the ground: then the eye beside it is lower than all ground.
  Insides plain = expected;
  plain["beside"] = "1";
  EXPECT_EQ(plain, insidesOf(folder, scene, views, false));
}

// The ground has a hole where the house stands, on a slope: what counts is the ground around it.
TEST(GridPlacesWithoutGround, AnEyeUnderAHouseInAHoleOfTheTerrainIsUnderTheGround) {
  const TempFolder folder;
  HandScene scene;
  scene.addHouse("house", {0, 0, 5}, {4, 6, 9});
  scene.addSheet("land", "TINRelief", {-20, -20, 5}, {0, 20, 5});
  scene.addSheet("land", "TINRelief", {4, -20, 5}, {20, 20, 5});
  scene.addSheet("valley", "TINRelief", {50, -20, 0}, {90, 20, 0});
  EXPECT_EQ((Insides{{"under", "1"}, {"in it", "1"}, {"on land", "0"}, {"between", "0"}}),
            insidesOf(folder, scene,
                      "under,\"1,2,3\"\nin it,\"1,2,6\"\non land,\"-3,2,6\"\n"
                      "between,\"40,2,3\"\n",
                      true));
}

TEST(GridPlacesWithoutGround, FreePlacesUnderSomethingAreNotUnderTheGround) {
  const TempFolder folder;
  HandScene scene;
  // A house without a floor whose roof hangs over, and one around a court.
  scene.addHouse("eaves", {0, 0, 0}, {6, 6, 5});
  scene.addRoof("eaves", {-1, -1, 5.5}, {7, 7, 5.5});
  for (const auto& [low, high] :
       {std::pair(HandScene::Corner{20, 0, 0}, HandScene::Corner{30, 2, 4}),
        {{20, 8, 0}, {30, 10, 4}},
        {{20, 2, 0}, {22, 8, 4}},
        {{28, 2, 0}, {30, 8, 4}}})
    scene.addHouse("court", low, high);
  // A roof on posts, and a bridge of one sheet on a pier.
  scene.addRoof("carport", {40, 0, 3}, {46, 5, 3});
  for (const double x : {40.0, 45.8})
    for (const double y : {0.0, 4.8}) scene.addHouse("carport", {x, y, 0}, {x + 0.2, y + 0.2, 3});
  scene.addSheet("bridge", "Bridge", {60, 0, 6}, {90, 4, 6});
  scene.addHouse("bridge", {74, 1, 0}, {76, 3, 5.9});
  const std::string views =
      "eaves,\"-0.5,3,1.6\"\ncourt,\"25,5,1.6\"\ncarport,\"43,2.2,1.6\"\n"
      "low carport,\"43,2.2,0.1\"\nfar under the "
      "bridge,\"66,2,-3\"\nbridge,\"66,2,1.6\"\nstreet,\"15,3,1.6\"\n";
  const Insides expected = {{"eaves", "0"},
                            {"court", "0"},
                            {"carport", "0"},
                            {"low carport", "0"},
                            {"bridge", "0"},
                            {"street", "0"},
                            {"far under the bridge", "1"}};
  EXPECT_EQ(expected, insidesOf(folder, scene, views, true));
  EXPECT_EQ(expected, insidesOf(folder, scene, views, false));
}

TEST(GridPlacesWithoutGround, APassageUnderAnUpperStoreyIsNotUnderTheGround) {
  const TempFolder folder;
  HandScene scene;
  scene.addHouse("left", {0, 0, 0}, {6, 6, 8});
  scene.addHouse("right", {10, 0, 0}, {16, 6, 8});
  scene.addHouse("over the street", {6, 0, 4}, {10, 6, 8});
  EXPECT_EQ((Insides{{"passage", "0"}, {"storey", "1"}}),
            insidesOf(folder, scene, "passage,\"8,3,1.6\"\nstorey,\"8,3,6\"\n", true));
}

TEST_F(GridPlaces, SharesOfAnEndedRunAreTakenFromItsJournal) {
  const std::string shares = folder.path("s.csv");
  const std::vector<std::string> command = {"--above", "surface", "--height", "1.5",
                                            "--rows",  "class",   "--shares", shares};
  const auto gridTo = [&](const std::string& table) {
    std::vector<std::string> whole = command;
    whole.insert(whole.end(), {"-o", table});
    return grid(whole);
  };
  ASSERT_EQ(0, gridTo(folder.path("v.csv")).status);
  const std::string whole = Lumivane::Test::fileBytes(shares);
  EXPECT_FALSE(std::filesystem::exists(shares + ".rows"));
  // A table that cannot be written leaves the journal as a run leaves it that is ended there.
  std::filesystem::create_symlink("/dev/full", folder.path("full.csv"));
  EXPECT_EQ(1, gridTo(folder.path("full.csv")).status);
  const std::string journal = Lumivane::Test::fileBytes(shares + ".rows");
  EXPECT_EQ(41, std::count(journal.begin(), journal.end(), '\n'));
  // Three rows and a torn one are left of it.
  std::size_t end = 0;
  for (int i = 0; i < 4; ++i) end = journal.find('\n', end) + 1;
  std::ofstream(shares + ".rows", std::ios::trunc) << journal.substr(0, end + 20);
  std::filesystem::remove(shares);
  const Result again = gridTo(folder.path("v.csv"));
  ASSERT_EQ(0, again.status) << again.err;
  EXPECT_NE(std::string::npos, again.err.find("3 eyes are known from the run before")) << again.err;
  EXPECT_EQ(whole, Lumivane::Test::fileBytes(shares));
  EXPECT_FALSE(std::filesystem::exists(shares + ".rows"));
}

TEST_F(GridPlaces, GroundIsUnderHousesButNoRoof) {
  const Result result = grid({"--above", "ground", "--height", "1.5"});
  ASSERT_EQ(0, result.status) << result.err;
  const std::vector<Row> table = rowsOf(result.out);
  ASSERT_EQ(36U, table.size());
  std::size_t inside = 0;
  for (const Row& row : table) {
    EXPECT_EQ(2.5, eyeOf(row)[2]);
    EXPECT_EQ("terrain", row.at("object"));
    EXPECT_EQ(isIn(eyeOf(row), 2.0, 6.0) ? "1" : "0", row.at("inside")) << row.at("name");
    inside += row.at("inside") == "1" ? 1U : 0U;
  }
  EXPECT_EQ(4U, inside);
  EXPECT_NE(std::string::npos, result.err.find("4 of 60 places are inside a body")) << result.err;
  EXPECT_EQ(32U, rows({"--above", "ground", "--height", "1.5", "--skip-inside"}).size());
}

TEST_F(GridPlaces, TerrainAndClassesAreTheHighestSurfacesOfTheirs) {
  const std::vector<Row> terrain = rows({"--above", "terrain", "--height", "1.5"});
  ASSERT_EQ(36U, terrain.size());
  for (const Row& row : terrain) EXPECT_EQ("terrain", row.at("object"));
  const std::vector<Row> built = rows({"--above", "building", "--height", "0.5"});
  ASSERT_EQ(8U, built.size());
  for (const Row& row : built)
    EXPECT_EQ(isIn(eyeOf(row), 2.0, 6.0) ? 8.5 : 4.5, eyeOf(row)[2]) << row.at("name");
}

// The class of all surfaces of a building without semantics is the building's.
TEST_F(GridPlaces, RoofsAreThoseOfBuildingsAlone) {
  std::map<std::string, int> counts;
  for (const Row& row : rows({"--on", "roofs"})) {
    EXPECT_EQ("0,0,1", row.at("forward"));
    ++counts[row.at("object")];
  }
  const std::map<std::string, int> expected = {{"house-1", 2}, {"house-2", 2}, {"shed", 4}};
  EXPECT_EQ(expected, counts);
}

TEST_F(GridPlaces, CellsAreNamedAsTheyLieWhateverIsLeftOut) {
  for (const Row& row : rows({"--above", "ground", "--height", "0"})) {
    const std::vector<double> eye = eyeOf(row);
    EXPECT_NEAR(0.5 + 2.0 * (std::stod(row.at("column")) - 1.0), eye[0], 1e-9);
    EXPECT_NEAR(0.5 + 2.0 * (std::stod(row.at("row")) - 1.0), eye[1], 1e-9);
    EXPECT_EQ("2", row.at("cell"));
  }
}

TEST_F(GridPlaces, EyesOnWallsLookAlongTheirNormalsFromInFrontOfThem) {
  const std::vector<Row> table = rows({"--on", "walls", "--clearance", "0.05"});
  // Of 4 x 3 and 7 m high, and 2 x 7 m: four walls of the shed, eight of the parts.
  EXPECT_EQ(4U * 2U * 1U + 4U * 1U * 3U + 4U * 2U * 3U, table.size());
  for (const Row& row : table) {
    const std::vector<double> eye = eyeOf(row);
    const std::vector<double> forward = numbers(row.at("forward"));
    EXPECT_EQ(0.0, forward.at(2));
    const std::vector<double> up = {0.0, 0.0, 1.0};
    EXPECT_EQ(up, numbers(row.at("up")));
    // In the middle of its body a step back leads into it, but for the clearance.
    EXPECT_EQ(1.0, std::abs(forward[0]) + std::abs(forward[1]));
    const std::size_t axis = forward[0] != 0.0 ? 0 : 1;
    const double wall = eye[axis] - 0.05 * forward[axis];
    EXPECT_NEAR(std::round(wall), wall, 1e-9) << row.at("name");
    EXPECT_NE("terrain", row.at("object"));
    EXPECT_FALSE(row.at("face").empty());
  }
  // The parts of the house touch: eyes on the walls between them are inside the other one.
  EXPECT_EQ(12, std::count_if(table.begin(), table.end(),
                              [](const Row& row) { return row.at("inside") == "1"; }));
}

TEST_F(GridPlaces, EyesOnRoofsStandOnEachOfThem) {
  std::map<std::string, int> counts;
  for (const Row& row : rows({"--on", "all"}))
    if (numbers(row.at("forward")).at(2) == 1.0) ++counts[row.at("object")];
  EXPECT_EQ(2, counts.at("house-1"));
  EXPECT_EQ(2, counts.at("house-2"));
  EXPECT_EQ(4, counts.at("shed"));
  EXPECT_EQ(30, counts.at("terrain"));  // in lattices of 6 by 5
}

TEST_F(GridPlaces, SmallFacesHaveOneEyeEach) {
  std::map<std::string, int> counts;
  for (const Row& row : rows({"--on", "all"}, "1000")) ++counts[row.at("object")];
  EXPECT_EQ(6, counts.at("shed"));
  EXPECT_EQ(6, counts.at("house-1"));
  EXPECT_EQ(1, counts.at("terrain"));
}

TEST_F(GridPlaces, TheTableOfFacesSuitsTheBatch) {
  ASSERT_EQ(0, grid({"--on", "walls", "-o", folder.path("walls.csv")}).status);
  const Result batch =
      Lumivane::Test::runProcess({LUMIVANE_PROGRAM, "batch", model, folder.path("walls.csv"),
                                  "--out-dir", folder.path("out"), "--no-shots", "--jobs", "1"});
  ASSERT_EQ(0, batch.status) << batch.err;
  const std::vector<Row> summary =
      rowsOf(Lumivane::Test::fileBytes(folder.path("out/summary.csv")));
  ASSERT_FALSE(summary.empty());
  std::size_t free = 0;
  for (const Row& row : summary) {
    EXPECT_EQ("ok", row.at("status"));
    EXPECT_EQ("", row.at("points"));
    // In front of the shed's far wall there is nothing, not even a ground.
    if (std::stod(row.at("true_x")) < 100019.0) continue;
    EXPECT_NEAR(1.0, std::stod(row.at("sky_view_factor")), 1e-12) << row.at("name");
    ++free;
  }
  EXPECT_EQ(2U, free);
}

TEST_F(GridPlaces, NonsenseIsReported) {
  const Result ground = grid({"--height", "1", "--above", "ground", "--ground", "3"});
  EXPECT_EQ(2, ground.status);
  EXPECT_NE(std::string::npos, ground.err.find("--ground excludes --above")) << ground.err;
  EXPECT_EQ(2, grid({"--height", "1", "--on", "walls"}).status);
  EXPECT_EQ(2, grid({"--height", "1", "--clearance", "1"}).status);
  const Result height = grid({"--above", "ground"});
  EXPECT_EQ(2, height.status);
  EXPECT_EQ("lumivane: --height: is needed, but for eyes on faces (--on)\n", height.err);
  const Result unknown = grid({"--height", "1", "--above", "swamp"});
  EXPECT_EQ(1, unknown.status);
  EXPECT_NE(std::string::npos, unknown.err.find("lumivane: --above: no surface of " + model +
                                                " is of the class \"swamp\""))
      << unknown.err;
  EXPECT_EQ(1, grid({"--on", "swamp"}).status);
}

}  // namespace
}  // namespace Lumivane::Host
