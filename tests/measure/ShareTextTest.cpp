#include "measure/HandShot.h"

#include <lumivane/measure/ShareClasses.h>
#include <lumivane/measure/ShareText.h>
#include <lumivane/session/LoadedScene.h>

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Measure {
namespace {

using Test::box;
using Test::HandShot;

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

TEST(ShareText, CsvHasARowForEachObjectFaceRegionAndTheSky) {
  HandShot hand;
  hand.addObject("a \"b\", c");
  hand.add(box(0, 0, 1, 0.5), 2);
  const std::vector<std::string> rows = lines(ShareText::csv(hand.square()));
  ASSERT_EQ(6U, rows.size());
  EXPECT_EQ(
      "kind,object,id,face,region,source_region,area,view_factor,solid_angle,hemisphere_share,"
      "class",
      rows[0]);
  EXPECT_EQ("object,1,first,,,,0,0,0,0,", rows[1]);
  EXPECT_EQ(0U, rows[2].find("object,2,\"a \"\"b\"\", c\",,,,0.5")) << rows[2];
  EXPECT_EQ(0U, rows[3].find("face,2,\"a \"\"b\"\", c\",1,,,0.5")) << rows[3];
  EXPECT_EQ(0U, rows[4].find("region,2,\"a \"\"b\"\", c\",1,1,1,0.5")) << rows[4];
  EXPECT_EQ(0U, rows[5].find("sky,,,,,,3.5")) << rows[5];
}

TEST(ShareText, JsonHoldsTheSameNumbers) {
  HandShot hand;
  hand.addObject("quote \" and \n end");
  hand.add(box(0, 0, 0.5, 0.25), 2);
  const VisibleShares shares = hand.round();
  const auto json = nlohmann::json::parse(ShareText::json(shares));
  EXPECT_EQ("radial", json.at("projection"));
  EXPECT_EQ("quote \" and \n end", json.at("objects").at(1).at("id"));
  EXPECT_EQ(shares.regions()[0].share.area, json.at("regions").at(0).at("area"));
  EXPECT_EQ(shares.regions()[0].share.solidAngle, json.at("faces").at(0).at("solidAngle"));
  EXPECT_EQ(shares.open().viewFactor, json.at("sky").at("viewFactor"));
  EXPECT_EQ(1.0, json.at("whole").at("hemisphereShare"));
  EXPECT_EQ("square", nlohmann::json::parse(ShareText::json(hand.square())).at("projection"));
}

TEST(ShareText, ClassesStandInTheLastColumnAndInJsonWhereThereAreAny) {
  // Two objects; the second one has a face of two regions.
  Session::LoadedScene scene = Session::LoadedScene::fromText(
      R"({"Points":[[0,0,0],[0,1,0],[1,1,0]],"Objects":[
{"Id":"first","Faces":[{"Regions":[1]}],"Regions":[{"Face":1,"Points":[1,2,3]}]},
{"Id":"second","Faces":[{"Regions":[1,2]},{"Regions":[3]}],"Regions":[{"Face":1,"Points":[1,2,3]},
{"Face":1,"Points":[1,2,3]},{"Face":2,"Points":[1,2,3]}]}]})",
      "scene");
  EXPECT_TRUE(ShareClasses(scene).isEmpty());
  scene.setClasses({{"=door", "wall"}, {1, 1, 0, 1}});
  const ShareClasses classes(scene);
  EXPECT_FALSE(classes.isEmpty());
  EXPECT_EQ("wall", classes.ofObject(1));
  EXPECT_EQ("", classes.ofObject(2));
  EXPECT_EQ("", classes.ofFace(2, 1));
  EXPECT_EQ("wall", classes.ofFace(2, 2));
  EXPECT_EQ("=door", classes.ofRegion(2, 2));
  EXPECT_EQ("", classes.ofRegion(7, 1));
  EXPECT_EQ("", classes.ofFace(1, 9));
  HandShot hand;
  hand.addObject("second");
  hand.add(box(0, 0, 1, 0.5), 2);
  const std::vector<std::string> rows = lines(ShareText::csv(hand.square(), classes, false));
  const auto last = [](const std::string& row) { return row.substr(row.rfind(',') + 1); };
  EXPECT_EQ("wall", last(rows.at(1)));
  EXPECT_EQ("", last(rows.at(2)));
  EXPECT_EQ("", last(rows.at(3)));
  EXPECT_EQ("wall", last(rows.at(4)));
  EXPECT_EQ("", last(rows.at(5)));
  const auto json = nlohmann::json::parse(ShareText::json(hand.square(), classes));
  EXPECT_EQ("wall", json.at("objects").at(0).at("class"));
  EXPECT_FALSE(json.at("objects").at(1).contains("class"));
  EXPECT_FALSE(json.at("faces").at(0).contains("class"));
  EXPECT_EQ("wall", json.at("regions").at(0).at("class"));
}

TEST(ShareText, AnIdThatIsNoUtf8IsReplacedInCsvAndJson) {
  HandShot hand;
  hand.addObject("caf\xE9\x01");
  const std::string shown = "caf\xEF\xBF\xBD\x01";
  const auto json = nlohmann::json::parse(ShareText::json(hand.square()));
  EXPECT_EQ(shown, json.at("objects").at(1).at("id"));
  EXPECT_EQ(0U, lines(ShareText::csv(hand.square()))[2].find("object,2," + shown + ",,,,0"));
}

TEST(ShareText, EscapesOfAnIdAreShownDecoded) {
  HandShot hand;
  hand.addObject("caf\\u00e9, \\ud83c\\udfe0");
  const std::string shown = "caf\xC3\xA9, \xF0\x9F\x8F\xA0";
  EXPECT_EQ(shown,
            nlohmann::json::parse(ShareText::json(hand.square())).at("objects").at(1).at("id"));
  EXPECT_EQ(0U, lines(ShareText::csv(hand.square()))[2].find("object,2,\"" + shown + "\",,,,0"));
}

TEST(ShareText, IdsThatAreFormulasStartWithAnApostropheIfAsked) {
  HandShot hand;
  hand.addObject("=HYPERLINK(\"x\",1)");
  hand.add(box(0, 0, 1, 0.5), 2);
  const auto plain = lines(ShareText::csv(hand.square()));
  const auto safe = lines(ShareText::csv(hand.square(), true));
  EXPECT_EQ(0U, plain[2].find("object,2,\"=HYPERLINK(\"\"x\"\",1)\",")) << plain[2];
  EXPECT_EQ(0U, safe[2].find("object,2,\"'=HYPERLINK(\"\"x\"\",1)\",")) << safe[2];
  EXPECT_EQ(plain[1], safe[1]);
}

TEST(ShareText, AnEmptyShotIsAllSky) {
  const Shot::Shot2d shot;
  const VisibleShares shares(shot, Algorithm::ProjectionType::Square);
  EXPECT_EQ(2U, lines(ShareText::csv(shares)).size());
  EXPECT_TRUE(nlohmann::json::parse(ShareText::json(shares)).at("regions").empty());
}

}  // namespace
}  // namespace Lumivane::Measure
