// Classes of surfaces from files to every output, by the program as a process.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <lumivane/measure/SunPath.h>

#include <algorithm>
#include <cstddef>
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

const std::string House = LUMIVANE_MODELS "/house.city.json";
const std::string Small = LUMIVANE_SCENES "/small.json";
const std::string HouseEye = "--eye=-8.3,-15.1,7.7";
const std::string HouseForward = "--forward=0.5,1,-0.3";

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

Result view(const std::string& scene, const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {"view", scene, HouseEye, HouseForward};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return run(std::move(arguments));
}

// The fields of a table without quotes, by the heading of their columns.
std::vector<std::map<std::string, std::string>> tableOf(const std::string& path) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream text(fileBytes(path));
  for (std::string line; std::getline(text, line);) {
    rows.emplace_back();
    std::istringstream fields(line + ",");
    for (std::string field; std::getline(fields, field, ',');) rows.back().push_back(field);
  }
  std::vector<std::map<std::string, std::string>> result;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    result.emplace_back();
    for (std::size_t k = 0; k < rows[0].size(); ++k) result.back()[rows[0][k]] = rows[i].at(k);
  }
  return result;
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// The classes of a view's shares with more than nothing, the sky left out.
std::vector<std::string> seenClasses(const std::string& scene,
                                     const std::vector<std::string>& more = {}) {
  const TempFolder folder;
  std::vector<std::string> arguments = {"--rows=class", "--shares", folder.path("s.csv")};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const Result result = view(scene, arguments);
  EXPECT_EQ(0, result.status) << result.err;
  std::vector<std::string> classes;
  for (const auto& row : tableOf(folder.path("s.csv")))
    if (row.at("kind") == "class" && std::stod(row.at("solid_angle")) > 0.0)
      classes.push_back(row.at("class"));
  return classes;
}

using Names = std::vector<std::string>;

TEST(ClassesProgram, ImportedScenesKeepTheClassesOfTheirModelInATableBesideThem) {
  const TempFolder folder;
  const Result imported = run({"import", House, "-o", folder.path("house.json")});
  ASSERT_EQ(0, imported.status) << imported.err;
  EXPECT_TRUE(contains(imported.out, "Classes in " + folder.path("house.classes.csv") + ": "));
  EXPECT_TRUE(contains(imported.out, "Roof")) << imported.out;
  const std::string table = fileBytes(folder.path("house.classes.csv"));
  EXPECT_EQ(0u, table.find("id,face,class\n"));
  EXPECT_TRUE(contains(table, "road,,Road\n")) << table;
  ASSERT_EQ(0, view(House, {"--rows=class", "--shares", folder.path("model.csv")}).status);
  ASSERT_EQ(0,
            view(folder.path("house.json"), {"--rows=class", "--shares", folder.path("scene.csv")})
                .status);
  EXPECT_EQ(fileBytes(folder.path("model.csv")), fileBytes(folder.path("scene.csv")));
  EXPECT_EQ((Names{"CityFurniture", "Road", "Roof", "Shed", "Wall", "Window"}), seenClasses(House));
}

// A shot lists objects and faces from far to near, so their numbers are others than in the table.
TEST(ClassesProgram, SharesOfAShotNameTheClassesOfItsSurfaces) {
  const TempFolder folder;
  const auto visible = [&folder](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"shot",       House,       HouseEye,
                                          HouseForward, "--visible", folder.path("v.csv")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Result result = run(arguments);
    EXPECT_EQ(0, result.status) << result.err;
    return tableOf(folder.path("v.csv"));
  };
  // By the areas of seen regions, which shot and map measure alike to within its chords.
  const auto factors = [&](const std::vector<std::string>& more) {
    std::map<std::string, double> sums;
    for (const auto& row : visible(more))
      if (row.at("kind") == "region") sums[row.at("class")] += std::stod(row.at("view_factor"));
    return sums;
  };
  const auto expectAlike = [&](const std::vector<std::string>& more) {
    std::vector<std::string> exact = {"--rows=class", "--shares", folder.path("exact.csv")};
    exact.insert(exact.end(), more.begin(), more.end());
    ASSERT_EQ(0, view(House, exact).status);
    std::map<std::string, double> seen = factors(more);
    for (const auto& row : tableOf(folder.path("exact.csv"))) {
      if (row.at("kind") != "class") continue;
      EXPECT_NEAR(std::stod(row.at("view_factor")), seen[row.at("class")], 1e-3) << row.at("class");
    }
  };
  expectAlike({});
  EXPECT_GT(factors({}).at("Roof"), 0.005);
  // The same table as import writes it, and one by numbers.
  ASSERT_EQ(0, run({"import", House, "-o", folder.path("house.json")}).status);
  expectAlike({"--classes", folder.path("house.classes.csv")});
  const std::string numbers =
      folder.file("n.csv", "object,face,class\n1,,first\n2,1,second\n2,2,third\n");
  expectAlike({"--classes", numbers});
  EXPECT_GT(factors({"--classes", numbers}).count("first"), 0U);
  // Rows of objects and faces, and of a scene file whose table lies beside it.
  std::map<std::string, std::string> objects;
  for (const auto& row : visible({}))
    if (row.at("kind") == "object") objects[row.at("id")] = row.at("class");
  EXPECT_EQ("Road", objects.at("road"));
  ASSERT_EQ(0, run({"shot", folder.path("house.json"), HouseEye, HouseForward, "--visible",
                    folder.path("v.json")})
                   .status);
  std::map<std::string, int> classes;
  const Json shares = Json::parse(fileBytes(folder.path("v.json")));
  for (const Json& face : shares.at("faces")) ++classes[face.value("class", "none")];
  EXPECT_GT(classes["Wall"], 0);
  EXPECT_EQ(0, classes["none"]);
  const Result useless = run({"shot", House, HouseEye, "--classes", numbers});
  EXPECT_EQ(2, useless.status);
  EXPECT_EQ(
      "lumivane: --classes: is for a column of classes: name an output that has one with "
      "--visible or --html\n",
      useless.err);
}

TEST(ClassesProgram, TheSceneFileItselfHoldsNothingOfThem) {
  const TempFolder folder;
  ASSERT_EQ(0, run({"import", House, "-o", folder.path("house.json")}).status);
  EXPECT_FALSE(contains(fileBytes(folder.path("house.json")), "Roof"));
  const Result check = run({"check", folder.path("house.json")});
  EXPECT_FALSE(contains(check.out, "unknown")) << check.out;
}

TEST(ClassesProgram, AnImportWithoutClassesLeavesNoTableOfAnotherScene) {
  const TempFolder folder;
  ASSERT_EQ(0, run({"import", House, "-o", folder.path("a.json")}).status);
  ASSERT_EQ(0, run({"import", LUMIVANE_MODELS "/pyramid.ply", "-o", folder.path("a.json")}).status);
  EXPECT_EQ("id,face,class\n", fileBytes(folder.path("a.classes.csv")));
  ASSERT_EQ(0, run({"import", LUMIVANE_MODELS "/pyramid.ply", "-o", folder.path("b.json")}).status);
  EXPECT_FALSE(fs::exists(folder.path("b.classes.csv")));
  ASSERT_EQ(0, run({"import", House, "-o", "/dev/stdout"}).status);
  EXPECT_FALSE(fs::exists("/dev/stdout.classes.csv"));
}

TEST(ClassesProgram, ATableOfTheCommandLineComesOverWhatIsKnown) {
  const TempFolder folder;
  const std::string table = folder.file("c.csv", "id,class\nroad,Street\nhouse,House\n");
  const Names seen = seenClasses(House, {"--classes", table});
  EXPECT_EQ(1, std::count(seen.begin(), seen.end(), "Street"));
  EXPECT_EQ(0, std::count(seen.begin(), seen.end(), "Roof"));
  EXPECT_EQ(0, std::count(seen.begin(), seen.end(), "Road"));
  ASSERT_EQ(0, run({"import", House, "-o", folder.path("h.json"), "--classes", table}).status);
  EXPECT_EQ(seen, seenClasses(folder.path("h.json")));
  // And over the table beside the scene.
  EXPECT_EQ(1u, seenClasses(folder.path("h.json"),
                            {"--classes", folder.file("d.csv",
                                                      "object,class\n1,A\n2,A\n3,A\n4,A\n"
                                                      "5,A\n")})
                    .size());
}

TEST(ClassesProgram, TablesThatDoNotFitAreRefusedInOneLine) {
  const TempFolder folder;
  const std::string scene = folder.file("s.json", fileBytes(Small));
  const std::string wrong = folder.file("c.csv", "id,class\nplate,Top\nshed,Wall\n");
  const std::string cause = ": line 3: column \"id\": " + scene +
                            " has no object \"shed\": correct the line, or remove it\n";
  const std::vector<std::vector<std::string>> commands = {
      {"view", scene, "--eye=-4,0.35,1.9"},
      {"grid", scene, "--spacing=1", "--height=1.6", "-o", folder.path("v.csv")},
      {"factors", scene, "-o", folder.path("f.json")},
      {"draw", scene, "--parallel=top", "--svg", folder.path("d.svg")},
      {"batch", scene, folder.file("views.csv", "name,eye\na,\"-4,0.35,1.9\"\n"), "--out-dir",
       folder.path("out"), "--jobs=1"},
  };
  for (std::vector<std::string> command : commands) {
    SCOPED_TRACE(command[0]);
    command.insert(command.end(), {"--classes", wrong});
    const Result result = run(command);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("lumivane: " + wrong + cause, result.err);
  }
  // The table beside the scene is read without being asked for, by what looks, and by nothing else.
  const std::string beside = folder.file("s.classes.csv", fileBytes(wrong));
  EXPECT_EQ("lumivane: " + beside + cause, run(commands[0]).err);
  EXPECT_EQ(0, run({"shot", scene, "--eye=-4,0.35,1.9", "-o", folder.path("shot.json")}).status);
}

TEST(ClassesProgram, OutputsNeverTakeThePlaceOfATable) {
  const TempFolder folder;
  const std::string scene = folder.file("s.json", fileBytes(Small));
  const std::string beside = folder.file("s.classes.csv", "id,class\nplate,Top\n");
  const Result result = run({"view", scene, "--eye=-4,0.35,1.9", "--shares", beside});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("lumivane: --shares: \"" + beside + "\" is already named for another file\n",
            result.err);
  EXPECT_EQ("id,class\nplate,Top\n", fileBytes(beside));
}

TEST(ClassesProgram, TheSummaryOfABatchHasAColumnForEachClass) {
  const TempFolder folder;
  const std::string scene = folder.file("s.json", fileBytes(Small));
  folder.file("s.classes.csv", "id,class\nplate,Top\n");
  const std::string views = folder.file(
      "views.csv", "name,eye,forward\na,\"-4,0.35,1.9\",\nb,\"-4,0.35,1.9\",\"0,0,0\"\n");
  const std::string out = folder.path("out");
  const std::vector<std::string> command = {"batch",        scene,      views,
                                            "--out-dir",    out,        "--jobs=1",
                                            "--rows=class", "--shares", "{name}.csv"};
  EXPECT_EQ(1, run(command).status);  // of view b
  const std::string summary = fileBytes(out + "/summary.csv");
  const auto rows = tableOf(out + "/summary.csv");
  ASSERT_EQ(2u, rows.size());
  const double top = std::stod(rows[0].at("view_factor_of_Top"));
  const double rest = std::stod(rows[0].at("view_factor_of_no_class"));
  EXPECT_GT(top, 0.0);
  EXPECT_NEAR(1.0, top + rest + std::stod(rows[0].at("sky_view_factor")), 1e-9);
  EXPECT_EQ("failed", rows[1].at("status"));
  EXPECT_EQ("", rows[1].at("view_factor_of_Top"));
  for (const auto& row : tableOf(out + "/a.csv")) {
    if (row.at("class") == "Top") {
      EXPECT_EQ(rows[0].at("view_factor_of_Top"), row.at("view_factor"));
    }
  }

  // The class that takes most stands in every summary.
  EXPECT_EQ("Top", rows[0].at("largest_class"));
  EXPECT_EQ(rows[0].at("view_factor_of_Top"), rows[0].at("largest_class_view_factor"));
  EXPECT_EQ("", rows[1].at("largest_class"));

  // The same summary from the journal alone, and another one once the table has changed.
  fs::remove(out + "/summary.csv");
  run({"batch", scene, views, "--out-dir", out, "--rows=class", "--shares", "{name}.csv",
       "--merge"});
  EXPECT_EQ(summary, fileBytes(out + "/summary.csv"));
  folder.file("s.classes.csv", "id,class\nplate,Plate\n");
  EXPECT_EQ(1, run(command).status);
  EXPECT_TRUE(tableOf(out + "/summary.csv")[0].count("view_factor_of_Plate") > 0);
}

TEST(ClassesProgram, AClassCalledNoClassHasAColumnOfItsOwn) {
  const TempFolder folder;
  const std::string scene = folder.file("s.json", fileBytes(Small));
  folder.file("s.classes.csv", "id,class\nplate,no_class\n");
  const std::string views = folder.file("views.csv", "name,eye\na,\"-4,0.35,1.9\"\n");
  ASSERT_EQ(
      0, run({"batch", scene, views, "--out-dir", folder.path("out"), "--rows=class", "--no-shots"})
             .status);
  const std::string summary = fileBytes(folder.path("out/summary.csv"));
  EXPECT_TRUE(contains(summary, ",view_factor_of_no_class,view_factor_without_class\n"));
  const auto rows = tableOf(folder.path("out/summary.csv"));
  const double named = std::stod(rows.at(0).at("view_factor_of_no_class"));
  const double rest = std::stod(rows.at(0).at("view_factor_without_class"));
  EXPECT_GT(named, 0.0);
  EXPECT_NEAR(1.0, named + rest + std::stod(rows[0].at("sky_view_factor")), 1e-9);
}

TEST(ClassesProgram, GridsAndFactorsHaveAColumnOfThem) {
  const TempFolder folder;
  const std::string scene = folder.file("s.json", fileBytes(Small));
  folder.file("s.classes.csv", "id,class\nplate,Top\n");
  ASSERT_EQ(0, run({"grid", scene, "--spacing=2", "--height=1.6", "-o", folder.path("v.csv"),
                    "--rows=class", "--shares", folder.path("g.csv")})
                   .status);
  EXPECT_EQ("Top", tableOf(folder.path("g.csv")).at(0).at("class"));
  ASSERT_EQ(0, run({"factors", scene, "--two-sided", "-o", folder.path("f.csv"), "--elements",
                    folder.path("e.csv")})
                   .status);
  bool isThere = false;
  for (const auto& row : tableOf(folder.path("e.csv"))) {
    EXPECT_EQ(row.at("id") == "plate" ? "Top" : "", row.at("class"));
    isThere = isThere || row.at("class") == "Top";
  }
  EXPECT_TRUE(isThere);
}

TEST(ClassesProgram, DrawingsHaveALegendOfThem) {
  const TempFolder folder;
  ASSERT_EQ(0,
            run({"draw", House, "--parallel=1,1.2,-0.9", "--fill=class", "--legend",
                 "--group-by=class", "--svg", folder.path("d.svg"), "--dxf", folder.path("d.dxf")})
                .status);
  const std::string svg = fileBytes(folder.path("d.svg"));
  EXPECT_TRUE(contains(svg, ">Roof</text>"));
  EXPECT_FALSE(contains(svg, ">brush "));
  EXPECT_TRUE(contains(svg, "inkscape:label=\"Wall\""));
  EXPECT_TRUE(contains(fileBytes(folder.path("d.dxf")), "FILLS_ROOF"));
}

TEST(ClassesProgram, AReportSaysHowToGetSunHoursOrHoldsThem) {
  const TempFolder folder;
  const std::string page = folder.path("r.html");
  const std::vector<std::string> place = {"--latitude=52", "--longitude=4.4", "--time-zone=1",
                                          "--north=90"};
  ASSERT_EQ(0, view(House, {"--report", page}).status);
  EXPECT_TRUE(contains(fileBytes(page), "For sun hours give a place and days"));
  std::vector<std::string> day = place;
  day.insert(day.end(), {"--day=2024-03-20", "--report", page});
  const Result result = view(House, day);
  if (!Measure::SunPath::isBuilt()) {
    EXPECT_EQ(1, result.status);
    return;
  }
  ASSERT_EQ(0, result.status) << result.err;
  const std::string text = fileBytes(page);
  for (const char* const part :
       {"<dt>sun hours</dt>", "<dt>day</dt><dd>2024-03-20</dd>", "From when to when",
        "<th>daylight</th>", "<g id=\"sun\"", ", looking up</dd>", "<td>2024-03-20</td>"})
    EXPECT_TRUE(contains(text, part)) << part;
  EXPECT_FALSE(contains(text, "For sun hours give"));
  // What is not there for a page is no use, and half a place is none.
  const Result alone = view(House, place);
  EXPECT_EQ(2, alone.status);
  EXPECT_TRUE(contains(alone.err, "lumivane: --latitude: is for the sun hours of a page to print"));
  const Result half = view(House, {"--report", page, "--day=2024-03-20"});
  EXPECT_EQ(2, half.status);
  EXPECT_TRUE(contains(half.err, "lumivane: --latitude: is needed")) << half.err;
}

TEST(ClassesProgram, AReportHasTablesByClassAndObject) {
  const TempFolder folder;
  const Result result = view(House, {"--report", folder.path("r.html"), "--color-by=class",
                                     "--shares", folder.path("s.csv"), "--rows=total"});
  ASSERT_EQ(0, result.status) << result.err;
  const std::string page = fileBytes(folder.path("r.html"));
  for (const char* const part :
       {"<h1>What is seen in house.city.json</h1>", "<svg", "By class", "By object", ">Roof</td>",
        "sky view factor", "visible part of it", "-8.3, -15.1, 7.7"})
    EXPECT_TRUE(contains(page, part)) << part;
}

}  // namespace
}  // namespace Lumivane::Host
