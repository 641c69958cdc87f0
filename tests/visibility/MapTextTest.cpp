#include "support/HandMap.h"
#include "support/TempFolder.h"

#include <lumivane/visibility/MapText.h>

#include <algorithm>
#include <clocale>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Test {
namespace {

using nlohmann::json;
using Visibility::MapShares;
using Visibility::MapText;
using Visibility::ShareDepth;
using Visibility::VisibleMap;

// Plain numbers, so that the text can be written down here.
VisibleMap plainMap() {
  HandMap hand = squareInTheSky();
  hand.map.eye = {1.5, -2, 0.1};
  VisibleMap::Cell& square = hand.map.cells[0];
  square.solidAngle = 0.75;
  square.viewFactor = 0.125;
  square.minDistance = 2;
  square.maxDistance = 2.5;
  VisibleMap::Cell& sky = hand.map.cells[1];
  sky.solidAngle = 5.5;
  sky.viewFactor = 0.875;
  sky.minDistance = sky.maxDistance = 0;
  hand.map.alone = {1.5, 0.5};
  return hand.map;
}

std::string csv(const VisibleMap& map, ShareDepth depth) {
  return MapText::csv(map, MapShares(map), depth);
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

const char* const Sky = "sky,,,,,,2.748893571891069,0.875,5.5,0.8753521870054244,,,,";
const char* const Square =
    "object,1,square,,,,0.39269908169872414,0.125,0.75,0.1193662073189215,,0.5,2,2.5";

TEST(MapText, ObjectRowsListAllObjectsAndTheSkyLast) {
  EXPECT_EQ((std::vector<std::string>{
                "kind,object,id,face,region,source_region,area,view_factor,solid_angle,"
                "hemisphere_share,class,visible_fraction,min_distance,max_distance",
                Square, "object,2,\"hidden, \"\"quoted\"\"\",,,,0,0,0,0,,0,,", Sky}),
            lines(csv(plainMap(), ShareDepth::Object)));
}

TEST(MapText, TotalIsAllObjectsTogether) {
  const auto rows = lines(csv(plainMap(), ShareDepth::Total));
  ASSERT_EQ(3U, rows.size());
  EXPECT_EQ("total,,,,,,0.39269908169872414,0.125,0.75,0.1193662073189215,,,2,2.5", rows[1]);
  EXPECT_EQ(Sky, rows[2]);
}

TEST(MapText, FaceAndRegionRowsFollowThoseOfTheObjects) {
  const auto faces = lines(csv(plainMap(), ShareDepth::Face));
  ASSERT_EQ(5U, faces.size());
  EXPECT_EQ("face,1,square,1,,,0.39269908169872414,0.125,0.75,0.1193662073189215,,,2,2.5",
            faces[3]);
  const auto regions = lines(csv(plainMap(), ShareDepth::Region));
  ASSERT_EQ(6U, regions.size());
  EXPECT_EQ("region,1,square,1,2,2,0.39269908169872414,0.125,0.75,0.1193662073189215,,,2,2.5",
            regions[4]);
}

TEST(MapText, RegionsAreCountedThroughAllObjects) {
  HandMap hand = cubeAroundTheEye();
  const auto rows = Visibility::shareRows(hand.map, MapShares(hand.map), ShareDepth::Region);
  for (const Visibility::ShareRow& row : rows) {
    if (row.kind != "region") continue;
    EXPECT_EQ(row.object, row.region);
    EXPECT_EQ(1, row.sourceRegion);
  }
}

TEST(MapText, ClassRowsNameTheClassesAndRowsOfOneClassTheirs) {
  HandMap hand = squareInTheSky();
  hand.names().classNames = {"roof", "wall, outer"};
  hand.names().classes = {0, 1, 0};
  const auto classes = lines(csv(hand.map, ShareDepth::Class));
  ASSERT_EQ(5U, classes.size());
  EXPECT_EQ(0U, classes[1].rfind("class,,,,,,0,0,0,0,roof,", 0)) << classes[1];
  EXPECT_NE(std::string::npos, classes[2].find(",\"wall, outer\",,"));
  EXPECT_EQ("class,,,,,,0,0,0,0,,,,", classes[3]);
  const auto regions = lines(csv(hand.map, ShareDepth::Region));
  EXPECT_NE(std::string::npos, regions[4].find(",\"wall, outer\",,"));
}

TEST(MapText, SphereHasNoColumnsOfAHemisphere) {
  HandMap hand = cubeAroundTheEye();
  const std::string text = csv(hand.map, ShareDepth::Object);
  EXPECT_EQ(
      "kind,object,id,face,region,source_region,solid_angle,class,visible_fraction,min_distance,"
      "max_distance",
      lines(text)[0]);
  for (const std::string& line : lines(text))
    EXPECT_EQ(10, std::count(line.begin(), line.end(), ',')) << line;
  const json document =
      json::parse(MapText::json(hand.map, MapShares(hand.map), ShareDepth::Object));
  EXPECT_EQ("sphere", document.at("field"));
  EXPECT_FALSE(document.at("rows").at(0).contains("view_factor"));
  EXPECT_TRUE(document.at("rows").at(0).contains("solid_angle"));
}

TEST(MapText, JsonHasTheSameNumbersAsTheTable) {
  const VisibleMap map = plainMap();
  const json document = json::parse(MapText::json(map, MapShares(map), ShareDepth::Region));
  EXPECT_EQ(1, document.at("version"));
  EXPECT_EQ(json({1.5, -2.0, 0.1}), document.at("eye"));
  EXPECT_EQ("hemisphere", document.at("field"));
  ASSERT_EQ(5U, document.at("rows").size());
  const json& square = document.at("rows").at(0);
  EXPECT_EQ("object", square.at("kind"));
  EXPECT_EQ("square", square.at("id"));
  EXPECT_EQ(0.125, square.at("view_factor"));
  EXPECT_EQ(0.5, square.at("visible_fraction"));
  EXPECT_EQ(2.5, square.at("max_distance"));
  EXPECT_EQ("hidden, \"quoted\"", document.at("rows").at(1).at("id"));
  EXPECT_FALSE(document.at("rows").at(1).contains("min_distance"));
  EXPECT_EQ("sky", document.at("rows").at(4).at("kind"));
}

TEST(MapText, ARowOfNoObjectHasItsIdInBothTables) {
  const VisibleMap map = plainMap();
  Visibility::ShareRow row;
  row.kind = "building";
  row.id = "town hall";
  const json document = json::parse(MapText::json(map, {row}));
  EXPECT_EQ("town hall", document.at("rows").at(0).at("id"));
  EXPECT_FALSE(document.at("rows").at(0).contains("object"));
  EXPECT_EQ(0U, MapText::csvRows({row}, map.field).find("building,,town hall,"));
}

TEST(MapText, IdsOfAnyBytesGiveTextThatCanBeRead) {
  HandMap hand = squareInTheSky();
  hand.names().objectIds = {"\xFF\x01\n\"\\ \xC3\xA4", ""};
  const json document =
      json::parse(MapText::json(hand.map, MapShares(hand.map), ShareDepth::Object));
  EXPECT_EQ("\xEF\xBF\xBD\x01\n\"\\ \xC3\xA4", document.at("rows").at(0).at("id"));
  const std::string table = csv(hand.map, ShareDepth::Object);
  EXPECT_EQ(std::string::npos, table.find('\xFF'));
  EXPECT_NE(std::string::npos, table.find("\xC3\xA4"));
}

TEST(MapText, SafeTablesHoldNoFormulas) {
  HandMap hand = squareInTheSky();
  hand.names().objectIds = {"=1+1", "plain"};
  const std::string table = MapText::csv(hand.map, MapShares(hand.map), ShareDepth::Object, true);
  EXPECT_NE(std::string::npos, table.find("object,1,'=1+1,"));
  EXPECT_NE(std::string::npos, table.find("object,2,plain,"));
  EXPECT_NE(std::string::npos, csv(hand.map, ShareDepth::Object).find("object,1,=1+1,"));
}

TEST(MapText, MapIsWrittenAsTheFormatSays) {
  const json document = json::parse(MapText::mapJson(plainMap()));
  const VisibleMap map = plainMap();
  EXPECT_EQ(1, document.at("version"));
  EXPECT_EQ(json({1.0, 0.0, 0.0}), document.at("forward"));
  EXPECT_EQ(json({0.0, 0.0, 1.0}), document.at("up"));
  ASSERT_EQ(map.vertices.size(), document.at("vertices").size());
  for (std::size_t i = 0; i < map.vertices.size(); ++i)
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_EQ(map.vertices[i][k], document.at("vertices").at(i).at(k).get<double>());
  const json& square = document.at("cells").at(0);
  EXPECT_EQ(json({1, 1, 2}), json({square.at("object"), square.at("face"), square.at("region")}));
  EXPECT_EQ(json::array({json::array({0, 1, 2, 3})}), square.at("rings"));
  const json& sky = document.at("cells").at(1);
  EXPECT_EQ(json({0, 0, 0}), json({sky.at("object"), sky.at("face"), sky.at("region")}));
  EXPECT_EQ(2U, sky.at("rings").size());
  ASSERT_EQ(8U, document.at("edges").size());
  const json& edge = document.at("edges").at(0);
  EXPECT_EQ(json({0, 1}), edge.at("vertices"));
  EXPECT_EQ(json({0, 1}), edge.at("cells"));
  EXPECT_EQ("silhouette", edge.at("kind"));
  EXPECT_EQ("field", document.at("edges").at(7).at("kind"));
  EXPECT_EQ(-1, document.at("edges").at(7).at("cells").at(1));
}

TEST(MapText, CellsOfRegionsWithAClassNameIt) {
  HandMap hand = squareInTheSky();
  const Visibility::Label seen = hand.map.cells.at(0).label;
  hand.names().regions = {{seen.object, seen.face, 1}, seen};
  hand.names().classNames = {"Door", "Wall"};
  hand.names().classes = {0, 1};
  const json cells = json::parse(MapText::mapJson(hand.map)).at("cells");
  EXPECT_EQ("Wall", cells.at(0).at("class"));
  EXPECT_FALSE(cells.at(1).contains("class"));
  hand.names().classes = {0, -1};
  EXPECT_FALSE(json::parse(MapText::mapJson(hand.map)).at("cells").at(0).contains("class"));
}

TEST(MapText, NumbersHaveSeventeenDigitsAndNoNegativeZero) {
  VisibleMap map = plainMap();
  map.eye = {0.1, -0.0, 1.0 / 3.0};
  const std::string text = MapText::mapJson(map);
  EXPECT_NE(std::string::npos, text.find("\"eye\":[0.10000000000000001,0,0.33333333333333331]"));
}

// The file also serves as a document to check the schema by.
TEST(MapText, MapIsTheSameToTheByte) {
  EXPECT_EQ(fileBytes(LUMIVANE_MAPS "/square.map.json"), MapText::mapJson(plainMap()));
}

TEST(MapText, LocaleChangesNothing) {
  const std::string expected = csv(plainMap(), ShareDepth::Region);
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
    std::setlocale(LC_ALL, name);
    EXPECT_EQ(expected, csv(plainMap(), ShareDepth::Region)) << name;
  }
  std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
}  // namespace Lumivane::Test
