// The summary of a batch as raster and points, and by buildings: `lumivane batch`, run as a
// process.

#include "Csv.h"
#include "Geodata.h"
#include "host/CityScene.h"
#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::cityText;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

using Row = std::map<std::string, std::string>;

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

// What a program prints; empty where there is no such program.
std::string printed(const std::vector<std::string>& command) {
  for (const char* folder : {"/usr/bin/", "/usr/local/bin/"}) {
    if (!std::filesystem::exists(folder + command[0])) continue;
    std::vector<std::string> whole = command;
    whole[0] = folder + command[0];
    const Result result = Lumivane::Test::runProcess(whole);
    EXPECT_EQ(0, result.status) << result.err;
    return result.out;
  }
  return "";
}

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

TEST(EpsgCode, IsReadInEveryForm) {
  EXPECT_EQ(28992, Geodata::epsgCode("EPSG:28992"));
  EXPECT_EQ(7415, Geodata::epsgCode("urn:ogc:def:crs:EPSG::7415"));
  EXPECT_EQ(7415, Geodata::epsgCode("urn:ogc:def:crs:EPSG:9.8.2:7415"));
  EXPECT_EQ(7415, Geodata::epsgCode("https://www.opengis.net/def/crs/EPSG/0/7415"));
  for (const char* const name : {"", "EPSG", "EPSG:", "28992", "EPSG28992", "local:EPSG-28992",
                                 "EPSG:28992x", "EPSG:99999999999"})
    EXPECT_EQ(0, Geodata::epsgCode(name)) << name;
}

class BatchMapsProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    const Result grid = run({"grid", model, "--spacing", "2", "--height", "1.5", "--above",
                             "surface", "-o", folder.path("eyes.csv")});
    ASSERT_EQ(0, grid.status) << grid.err;
  }

  Result batch(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {
        "batch", model, folder.path("eyes.csv"), "--out-dir", folder.path("out"), "--jobs", "2"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }

  std::vector<Row> summary() const { return rowsOf(fileBytes(folder.path("out/summary.csv"))); }

  static bool canMakeMaps() { return Geodata::fault().empty(); }

  TempFolder folder;
  std::string model = folder.file("city.city.json", cityText());
};

TEST_F(BatchMapsProgram, TheSummaryHasTheCoordinatesOfTheDocument) {
  ASSERT_EQ(0, batch({"--no-shots"}).status);
  const std::vector<Row> rows = summary();
  ASSERT_EQ(40U, rows.size());
  EXPECT_EQ("100000.5", rows[0].at("true_x"));
  EXPECT_EQ("400000.5", rows[0].at("true_y"));
  EXPECT_EQ("2.5", rows[0].at("true_z"));
  EXPECT_EQ("-9.5", rows[0].at("eye_x"));
}

TEST_F(BatchMapsProgram, WithoutShotsTheExactColumnsAreThoseWithThem) {
  ASSERT_EQ(0, batch({"--no-shots", "--shares", "{name}.csv"}).status);
  const std::vector<Row> without = summary();
  ASSERT_EQ(0, batch({"--shares", "{name}.csv"}).status);
  const std::vector<Row> with = summary();
  ASSERT_EQ(without.size(), with.size());
  for (std::size_t i = 0; i < with.size(); ++i) {
    EXPECT_EQ("", without[i].at("points"));
    EXPECT_NE("", with[i].at("points"));
    for (const char* const column : {"name", "inside", "objects_visible", "sky_view_factor",
                                     "sky_hemisphere_share", "largest_object", "true_x"})
      EXPECT_EQ(with[i].at(column), without[i].at(column)) << i << " " << column;
  }
  const Result shot = batch({"--no-shots", "--output", "{name}.json"});
  EXPECT_EQ(2, shot.status);
  EXPECT_EQ(0U,
            shot.err.find("lumivane: --no-shots: makes no shot for the outputs of view \"r1c01\""))
      << shot.err;
}

TEST_F(BatchMapsProgram, TheRasterLiesWhereTheModelDoes) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  const Result result = batch({"--no-shots", "--raster", "sky.tif"});
  ASSERT_EQ(0, result.status) << result.err;
  const std::string text = printed({"gdalinfo", "-json", folder.path("out/sky.tif")});
  if (text.empty()) GTEST_SKIP() << "there is no gdalinfo";
  const Json info = Json::parse(text);
  EXPECT_EQ(Json({10, 6}), info.at("size"));
  // The first column reaches from 0.5 - 1, the last row down to 0.5 - 1.
  EXPECT_EQ(Json({99999.5, 2.0, 0.0, 400011.5, 0.0, -2.0}), info.at("geoTransform"));
  EXPECT_EQ(Json({99999.5, 400011.5}), info.at("cornerCoordinates").at("upperLeft"));
  EXPECT_EQ(Json({100019.5, 399999.5}), info.at("cornerCoordinates").at("lowerRight"));
  EXPECT_NE(std::string::npos,
            info.at("coordinateSystem").at("wkt").get<std::string>().find("28992"));
  EXPECT_EQ("sky_view_factor", info.at("bands").at(0).at("description"));
  EXPECT_EQ("NaN", info.at("bands").at(0).at("noDataValue"));
}

TEST_F(BatchMapsProgram, MapsHaveTheirFolderBeforeAnyViewIsMade) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  const Result result =
      batch({"--no-shots", "--raster", "maps/a/sky.tif", "--geojson", "maps/b/sky.geojson"});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_TRUE(std::filesystem::is_regular_file(folder.path("out/maps/a/sky.tif")));
  EXPECT_TRUE(std::filesystem::is_regular_file(folder.path("out/maps/b/sky.geojson")));
  // A file in the place of a folder, and a folder in that of a file.
  folder.file("out/blocked", "");
  for (const char* const file : {"blocked/sky.tif", "maps/sky.tif"}) {
    std::filesystem::remove(folder.path("out/summary.csv"));
    std::filesystem::create_directories(folder.path("out/maps/sky.tif"));
    const Result wrong = batch({"--no-shots", "--raster", file});
    EXPECT_EQ(1, wrong.status) << file;
    EXPECT_NE(std::string::npos,
              wrong.err.find(file == std::string("maps/sky.tif") ? "maps/sky.tif" : "blocked"))
        << wrong.err;
    EXPECT_FALSE(std::filesystem::exists(folder.path("out/summary.csv"))) << file;
  }
}

TEST_F(BatchMapsProgram, AReferenceSystemIsForMaps) {
  const Result result = batch({"--no-shots", "--crs", "EPSG:28992"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("lumivane: --crs: is that of --raster and --geojson: name one of them\n", result.err);
  EXPECT_FALSE(std::filesystem::exists(folder.path("out")));
}

TEST_F(BatchMapsProgram, EachCellOfTheRasterHasTheValueOfItsView) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  const Result result = batch({"--no-shots", "--raster", "sky.tif"});
  ASSERT_EQ(0, result.status) << result.err;
  const std::string raster = folder.path("out/sky.tif");
  std::size_t asked = 0;
  const std::vector<Row> rows = summary();
  for (std::size_t i = 0; i < rows.size(); i += 7) {
    const std::string value = printed({"gdallocationinfo", "-valonly", "-geoloc", "-b", "1", raster,
                                       rows[i].at("true_x"), rows[i].at("true_y")});
    if (value.empty()) GTEST_SKIP() << "there is no gdallocationinfo";
    EXPECT_NEAR(std::stod(rows[i].at("sky_view_factor")), std::stod(value), 1e-12);
    ++asked;
  }
  EXPECT_EQ(6U, asked);
  EXPECT_TRUE(std::isnan(std::stod(printed(
      {"gdallocationinfo", "-valonly", "-geoloc", "-b", "1", raster, "100014.5", "400000.5"}))));
}

TEST_F(BatchMapsProgram, MapsAreMadeOfViewsThatAreThereAlready) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  ASSERT_EQ(0, batch({"--no-shots", "--shard", "1/2"}).status);
  const Result second = batch({"--no-shots", "--shard", "2/2", "--raster", "sky.tif"});
  ASSERT_EQ(0, second.status) << second.err;
  const std::string bytes = fileBytes(folder.path("out/sky.tif"));
  std::filesystem::remove(folder.path("out/sky.tif"));
  const Result merged = batch({"--no-shots", "--merge", "--raster", "sky.tif"});
  ASSERT_EQ(0, merged.status) << merged.err;
  EXPECT_EQ(bytes, fileBytes(folder.path("out/sky.tif")));
}

TEST_F(BatchMapsProgram, PointsStandInDegrees) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  const Result result = batch({"--no-shots", "--geojson", "sky.geojson"});
  ASSERT_EQ(0, result.status) << result.err;
  const Json points = Json::parse(fileBytes(folder.path("out/sky.geojson")));
  const std::vector<Row> rows = summary();
  ASSERT_EQ(rows.size(), points.at("features").size());
  const Json& first = points.at("features").at(0);
  const Json& place = first.at("geometry").at("coordinates");
  // Of (155000, 463000) the published degrees are 5.38763888 and 52.15616055; a metre here is about
  // 1.46e-5 and 0.9e-5 degrees.
  EXPECT_NEAR(4.594, place.at(0).get<double>(), 0.02);
  EXPECT_NEAR(51.585, place.at(1).get<double>(), 0.02);
  EXPECT_EQ(2.5, place.at(2).get<double>());
  EXPECT_EQ("r1c01", first.at("properties").at("name"));
  EXPECT_EQ(std::stod(rows[0].at("sky_view_factor")),
            first.at("properties").at("sky_view_factor").get<double>());
  EXPECT_EQ(0U, first.at("properties").count("error"));
}

TEST_F(BatchMapsProgram, WhatIsMissingIsReportedBeforeAnyView) {
  if (!canMakeMaps()) {
    const Result lacking = batch({"--no-shots", "--raster", "sky.tif"});
    EXPECT_EQ(1, lacking.status);
    EXPECT_EQ("lumivane: --raster: " + Geodata::fault() + "\n", lacking.err);
    return;
  }
  model = folder.file("plain.city.json", cityText(""));
  const Result without = batch({"--no-shots", "--raster", "sky.tif"});
  EXPECT_EQ(1, without.status);
  EXPECT_EQ("lumivane: --raster: " + model +
                " names no coordinate reference system: name it with --crs EPSG:N\n",
            without.err);
  EXPECT_FALSE(std::filesystem::exists(folder.path("out")));
  const Result unknown = batch({"--no-shots", "--raster", "sky.tif", "--crs", "EPSG:999999"});
  EXPECT_EQ(1, unknown.status);
  EXPECT_EQ("lumivane: EPSG:999999: is no coordinate reference system that is known here\n",
            unknown.err);
  EXPECT_EQ(0, batch({"--no-shots", "--raster", "sky.tif", "--crs", "EPSG:28992"}).status);

  model = folder.file("odd.city.json", cityText("local grid of the town"));
  const Result odd = batch({"--no-shots", "--geojson", "sky.geojson"});
  EXPECT_EQ(1, odd.status);
  EXPECT_NE(std::string::npos, odd.err.find("has no EPSG code: name one with --crs EPSG:N"))
      << odd.err;
}

TEST_F(BatchMapsProgram, SystemsWithoutLengthsAreRefused) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  for (const char* const code : {"EPSG:4326", "EPSG:4978", "EPSG:5709"}) {
    const Result result = batch({"--no-shots", "--geojson", "p.geojson", "--crs", code});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(0U, result.err.find("lumivane: " + std::string(code) + ": is not a projected"))
        << result.err;
  }
}

TEST_F(BatchMapsProgram, APointWithoutAPlaceOnTheEarthIsNull) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  folder.file("eyes.csv", "name,eye\nhere,\"-9.5,0,2\"\nnowhere,\"nan,0,1\"\nfar,\"1e18,0,1\"\n");
  EXPECT_EQ(1, batch({"--no-shots", "--geojson", "p.geojson"}).status);
  const Json points = Json::parse(fileBytes(folder.path("out/p.geojson")));
  ASSERT_EQ(3U, points["features"].size());
  EXPECT_TRUE(points["features"][0]["geometry"].is_object());
  EXPECT_EQ("failed", points["features"][1]["properties"]["status"]);
  EXPECT_TRUE(points["features"][1]["geometry"].is_null());
  EXPECT_TRUE(points["features"][2]["geometry"].is_null());
}

TEST_F(BatchMapsProgram, ClassesOfAnyNameAreKeysOfJson) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  const std::string classes =
      folder.file("classes.csv", "object,class\n1,\"a \"\"quoted\"\" \\ name\"\n");
  const Result result =
      batch({"--no-shots", "--rows", "class", "--classes", classes, "--geojson", "p.geojson"});
  ASSERT_EQ(0, result.status) << result.err;
  const Json points = Json::parse(fileBytes(folder.path("out/p.geojson")));
  EXPECT_TRUE(points["features"][0]["properties"].contains("view_factor_of_a \"quoted\" \\ name"));
}

TEST_F(BatchMapsProgram, OtherTablesThanGridsAreRefused) {
  if (!canMakeMaps()) GTEST_SKIP() << Geodata::fault();
  const auto refused = [this](const std::string& table) {
    folder.file("eyes.csv", table);
    const Result result = batch({"--no-shots", "--raster", "sky.tif"});
    EXPECT_EQ(1, result.status);
    return result.err;
  };
  const std::string plain = refused("name,eye\na,\"0,0,3\"\n");
  EXPECT_NE(std::string::npos, plain.find("view \"a\" has no row, column and cell")) << plain;
  const std::string twice =
      refused("name,eye,row,column,cell\na,\"0,0,3\",1,1,2\nb,\"0,0,3\",1,1,2\n");
  EXPECT_NE(std::string::npos, twice.find("view \"b\" is in the same cell as view \"a\"")) << twice;
  const std::string off =
      refused("name,eye,row,column,cell\na,\"0,0,3\",1,1,2\nb,\"1.5,0,3\",1,2,2\n");
  EXPECT_NE(std::string::npos, off.find("view \"b\" is not in the middle of its cell")) << off;
  const std::string sizes =
      refused("name,eye,row,column,cell\na,\"0,0,3\",1,1,2\nb,\"2,0,3\",1,2,3\n");
  EXPECT_NE(std::string::npos, sizes.find("view \"b\" has a cell of another size")) << sizes;
  const std::string number = refused("name,eye,row,column,cell\na,\"0,0,3\",0,1,2\n");
  EXPECT_NE(std::string::npos, number.find("column \"row\": \"0\" is not a whole number"))
      << number;
  const std::string part = refused("name,eye,row,column\na,\"0,0,3\",1,1\n");
  EXPECT_NE(std::string::npos, part.find("there must be all or none")) << part;
}

TEST_F(BatchMapsProgram, NamesOfMapsAreChecked) {
  EXPECT_EQ(2, batch({"--raster", "sky.png"}).status);
  EXPECT_EQ(2, batch({"--raster", "../sky.tif"}).status);
  EXPECT_EQ(2, batch({"--geojson", "sky.csv"}).status);
  EXPECT_EQ(2, batch({"--crs", "28992"}).status);
  const Result same = batch({"--geojson", "r1c01.json", "--output", "{name}.json"});
  EXPECT_EQ(2, same.status);
  EXPECT_NE(std::string::npos, same.err.find("is written by --geojson and by view \"r1c01\""))
      << same.err;
}

TEST_F(BatchMapsProgram, RowsByBuildingSumUpTheirParts) {
  ASSERT_EQ(0, batch({"--no-shots", "--shares", "{name}-o.csv"}).status);
  ASSERT_EQ(0, batch({"--no-shots", "--shares", "{name}-b.csv", "--rows", "building"}).status);
  std::size_t compared = 0;
  for (const Row& view : summary()) {
    const std::string start = folder.path("out/" + view.at("name"));
    std::map<std::string, Row> objects;
    for (const Row& row : rowsOf(fileBytes(start + "-o.csv"))) objects[row.at("id")] = row;
    const std::vector<Row> buildings = rowsOf(fileBytes(start + "-b.csv"));
    ASSERT_EQ(4U, buildings.size());  // house, shed, terrain and the sky
    for (const Row& building : buildings) {
      if (building.at("id") != "house") continue;
      EXPECT_EQ("building", building.at("kind"));
      for (const char* const column : {"view_factor", "solid_angle"})
        EXPECT_NEAR(std::stod(objects.at("house-1").at(column)) +
                        std::stod(objects.at("house-2").at(column)),
                    std::stod(building.at(column)), 1e-15);
      ++compared;
    }
  }
  EXPECT_EQ(40U, compared);
}

}  // namespace
}  // namespace Lumivane::Host
