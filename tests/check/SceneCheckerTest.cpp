#include "support/Capture.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Check {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;

// One square, wound to be seen from the smaller x, with the normal of its winding.
Json square() {
  return Json::parse(R"({
    "Brushes": [[200,100,50,255]], "Pens": [[0,0,0,255,1]],
    "Points": [[2,-1,-1],[2,-1,1],[2,1,1],[2,1,-1]],
    "Objects": [{"Id": "A", "PartsCount": 1, "Pen": 1,
      "Faces": [{"Regions": [1], "Normal": [-1,0,0]}], "Parts": [{"Regions": [1]}],
      "Regions": [{"Brush": 1, "Face": 1, "Points": [1,2,3,4]}], "Overlays": []}],
    "Properties": [[1,"Height"]], "Scales": [{"Name": "S", "Items": [[0,0,0,255]]}]})");
}

Json& object(Json& scene) { return scene["Objects"][0]; }
Json& region(Json& scene) { return scene["Objects"][0]["Regions"][0]; }

std::vector<std::string> lines(const std::vector<Finding>& findings) {
  std::vector<std::string> result;
  for (const Finding& finding : findings)
    result.push_back((finding.severity == Severity::Error ? "error " : "warning ") + finding.code +
                     " " + finding.line());
  return result;
}

std::vector<std::string> checked(const std::string& text) {
  return lines(SceneChecker::checkText(text));
}

std::vector<std::string> checkedScene(const Json& scene) { return checked(scene.dump()); }

using Lines = std::vector<std::string>;

TEST(SceneChecker, GoodSceneHasNoFindings) { EXPECT_EQ(Lines(), checkedScene(square())); }

TEST(SceneChecker, SampleScenesAreClean) {
  for (const char* const name : {"small", "room", "street", "ring", "docking", "winding"})
    EXPECT_EQ(Lines(), checked(fileBytes(LUMIVANE_SCENES "/" + std::string(name) + ".json")))
        << name;
}

TEST(SceneChecker, PointNumberOutOfRangeIsAnError) {
  Json scene = square();
  region(scene)["Points"] = {1, 2, 3, 5};
  const Lines expected = {
      "error point-number object \"A\", region 1: point 5, but there are 1 to 4"};
  EXPECT_EQ(expected, checkedScene(scene));
  region(scene)["Points"] = {0, 1, 2, 3};
  EXPECT_EQ("error point-number object \"A\", region 1: point 0, but there are 1 to 4",
            checkedScene(scene).at(0));
}

TEST(SceneChecker, FaceNumberOutOfRangeIsAnError) {
  Json scene = square();
  region(scene)["Face"] = 2;
  EXPECT_EQ("error face-number object \"A\", region 1: face 2, but there are 1 to 1",
            checkedScene(scene).at(0));
  region(scene).erase("Face");
  EXPECT_EQ("error face-number object \"A\", region 1: face -1, but there are 1 to 1",
            checkedScene(scene).at(0));
}

TEST(SceneChecker, RegionsWithoutFacesAreAnError) {
  Json scene = square();
  object(scene).erase("Faces");
  const Lines expected = {"warning missing-list there is not a list \"Faces\"",
                          "error no-faces has regions but no list of faces"};
  Lines found = checkedScene(scene);
  for (std::string& line : found) {
    const size_t place = line.find("object \"A\": ");
    if (place != std::string::npos) line.erase(place, 12);
  }
  EXPECT_EQ(expected, found);
}

TEST(SceneChecker, BrushAndPenOutOfRangeAreWarnings) {
  Json scene = square();
  region(scene)["Brush"] = 7;
  object(scene)["Pen"] = 0;
  const Lines found = checkedScene(scene);
  EXPECT_EQ(2u, found.size());
  EXPECT_EQ(1, std::count(found.begin(), found.end(),
                          "warning brush-number object \"A\", region 1: brush 7, but there are 1 "
                          "to 1; no picture can be drawn of it"));
}

TEST(SceneChecker, DockingEdgesAreCounted) {
  Json scene = square();
  region(scene)["DockingEdges"] = {0};
  EXPECT_EQ(
      "error docking-edge-number object \"A\", region 1: docking edge 0, but they count from 1",
      checkedScene(scene).at(0));
  region(scene)["DockingEdges"] = {4};
  EXPECT_EQ(Lines(), checkedScene(scene));
  region(scene)["DockingEdges"] = {5};
  EXPECT_EQ(
      "warning docking-edge-number object \"A\", region 1: docking edge 5, but there are 1 to 4",
      checkedScene(scene).at(0));
}

TEST(SceneChecker, FewPointsAreReported) {
  Json scene = square();
  region(scene)["Points"] = {1, 2};
  const Lines expected = {
      "warning few-points object \"A\", region 1: has 2 points, so it is never seen"};
  EXPECT_EQ(expected, checkedScene(scene));
}

TEST(SceneChecker, RepeatedPointsAreReported) {
  Json scene = square();
  region(scene)["Points"] = {1, 2, 3, 4, 1};
  const Lines expected = {
      "warning repeated-point object \"A\", region 1: points 5 and 1 are the same"};
  EXPECT_EQ(expected, checkedScene(scene));
}

TEST(SceneChecker, ShortEdgesAreReportedFromBelowTheirLimit) {
  Json scene = square();
  scene["Points"].push_back({2, -1, -0.99989});
  region(scene)["Points"] = {1, 5, 2, 3, 4};
  // The start is straight, too.
  const auto codes = [&scene] {
    std::vector<std::string> result;
    for (const Finding& finding : SceneChecker::checkText(scene.dump()))
      // Single precision is coarse for an edge that is not much longer, which is reported as well.
      if (finding.code != "far-coordinates") result.push_back(finding.code);
    return result;
  };
  EXPECT_EQ(std::vector<std::string>{"straight-start"}, codes());
  scene["Points"][4] = {2, -1, -0.99991};
  EXPECT_EQ((std::vector<std::string>{"short-edge", "straight-start"}), codes());
}

TEST(SceneChecker, StartOnOneLineIsReported) {
  Json scene = square();
  scene["Points"].push_back({2, -1, 0});
  region(scene)["Points"] = {1, 5, 2, 3, 4};
  EXPECT_EQ(
      "warning straight-start object \"A\", region 1: its first three points lie on one line, "
      "which gives it no plane",
      checkedScene(scene).at(0));
  region(scene)["Points"] = {4, 1, 5, 2, 3};
  EXPECT_EQ(Lines(), checkedScene(scene));
}

TEST(SceneChecker, BentRegionIsReportedWithItsDistance) {
  Json scene = square();
  scene["Points"][0] = {2.4, -1, -1};
  const Lines found = checkedScene(scene);
  ASSERT_EQ(2u, found.size());  // and the normal is no more that of the face
  EXPECT_EQ(0u, found[0].find("warning not-flat object \"A\", region 1: its points are up to 0.09"))
      << found[0];
  scene["Points"][0] = {2.00002, -1, -1};  // rounding
  EXPECT_EQ(Lines(), checkedScene(scene));
}

TEST(SceneChecker, SelfCrossingOutlineIsReported) {
  Json scene = square();
  scene["Points"] = {{2, -1, -1}, {2, -1, 1}, {2, 1, -1}, {2, 2, 2}};
  const Lines found = checkedScene(scene);
  EXPECT_EQ(1, std::count(found.begin(), found.end(),
                          "warning self-crossing object \"A\", region 1: its edges 2 and 4 cross"))
      << found.size();
}

// Edges that lie on each other never cross, and each pair of them has to be looked at.
TEST(SceneChecker, OutlineThatRunsOverItselfTooOftenIsReportedAsSuch) {
  Json scene = square();
  const std::string tangled =
      "warning tangled object \"A\", region 1: its edges pass each other too often to find out "
      "whether "
      "they cross";
  const auto toldOfRounds = [&](int rounds) {
    region(scene)["Points"] = Json::array();
    for (int i = 0; i < 4 * rounds; ++i) region(scene)["Points"].push_back(i % 4 + 1);
    const Lines found = checkedScene(scene);
    return std::count(found.begin(), found.end(), tangled);
  };
  EXPECT_EQ(0, toldOfRounds(700));
  EXPECT_EQ(1, toldOfRounds(2000));
}

TEST(SceneChecker, AreaOfNothingIsReported) {
  Json scene = square();
  scene["Points"] = {{2, 0, 0}, {2, 0, 1}, {2, 0, 2}, {2, 0, 3}};
  const Lines expected = {
      "warning straight-start object \"A\", region 1: its first three points lie on one line, "
      "which gives it no plane",
      "warning no-area object \"A\", region 1: its points enclose no area"};
  EXPECT_EQ(expected, checkedScene(scene));
}

TEST(SceneChecker, FaceListsAndFaceNumbersAgree) {
  Json scene = square();
  object(scene)["Faces"].push_back({{"Regions", {1, 9}}, {"Normal", {-1, 0, 0}}});
  object(scene)["Faces"][0]["Regions"] = Json::array();
  const Lines expected = {
      "warning face-list object \"A\", face 2: lists region 1, which says it is of face 1",
      "warning face-region-number object \"A\", face 2: region 9, but there are 1 to 1",
      "warning face-list object \"A\", region 1: is of face 1, whose list does not hold it"};
  EXPECT_EQ(expected, checkedScene(scene));
}

TEST(SceneChecker, NormalAgainstTheWindingIsReported) {
  Json scene = square();
  object(scene)["Faces"][0]["Normal"] = {1, 0, 0};
  EXPECT_EQ(
      "warning normal object \"A\", face 1: its normal points against the winding of its regions",
      checkedScene(scene).at(0));
  object(scene)["Faces"][0]["Normal"] = {-1, 1, 0};
  EXPECT_EQ("warning normal object \"A\", face 1: its normal is not that of its regions",
            checkedScene(scene).at(0));
  object(scene)["Faces"][0]["Normal"] = {-3, 0, 0};
  EXPECT_EQ(Lines(), checkedScene(scene));
}

TEST(SceneChecker, DoubleIdsAreReported) {
  Json scene = square();
  scene["Objects"].push_back(object(scene));
  EXPECT_EQ(
      "error double-id object \"A\": objects 1 and 2 have one id, and the drawing order takes the "
      "regions of 1 for those of 2",
      checkedScene(scene).at(0));
}

TEST(SceneChecker, DoubleIdOfAnObjectThatNobodySeesIsAWarning) {
  Json scene = square();
  scene["Objects"].push_back(
      {{"Id", "A"}, {"Pen", 1}, {"Faces", Json::array()}, {"Regions", Json::array()}});
  EXPECT_EQ(Lines{"warning double-id object \"A\": objects 1 and 2 have one id, and of the second "
                  "nothing can be seen"},
            checkedScene(scene));
}

// The depth sort looks for the regions of the second in the first.
TEST(SceneChecker, RegionThatOnlyALaterObjectOfAnIdHasIsAnError) {
  Json scene = square();
  Json twin = object(scene);
  twin["Regions"].push_back(twin["Regions"][0]);
  scene["Objects"].push_back(twin);
  const std::string error =
      "error double-id object \"A\": objects 1 and 2 have one id, and the drawing order misses "
      "region 2 of 2 in 1";
  const Lines found = checkedScene(scene);
  EXPECT_EQ(1, std::count(found.begin(), found.end(), error));

  Session::LoadedScene loaded = Session::LoadedScene::fromText(scene.dump(), "scene");
  EXPECT_EQ(Lines{error}, lines(SceneChecker::errors(loaded.scene())));
  Session::ViewSettings view;
  view.eye = {4.1, 0.2, 0.3};
  view.forward = {-1, 0, 0};
  std::string refusal;
  Lumivane::Test::capturedStdout([&] {
    try {
      loaded.take(view);
    } catch (const Session::Error& thrown) {
      refusal = thrown.what();
    }
  });
  EXPECT_NE(std::string::npos, refusal.find("misses region 2 of 2 in 1")) << refusal;
}

TEST(SceneChecker, RegionOfALaterObjectThatTheFirstHasWithoutPointsIsAnError) {
  Json scene = square();
  scene["Objects"].push_back(object(scene));
  region(scene)["Points"] = Json::array();
  const Lines found = checkedScene(scene);
  EXPECT_EQ(1, std::count(found.begin(), found.end(),
                          "error double-id object \"A\": objects 1 and 2 have one id, and the "
                          "drawing order misses region 1 of 2 in 1"));
  // The other way round it is only surprising.
  std::swap(scene["Objects"][0], scene["Objects"][1]);
  for (const std::string& line : checkedScene(scene)) EXPECT_NE(0U, line.find("error"));
}

TEST(SceneChecker, MissingListsAreReported) {
  Json scene = square();
  scene.erase("Pens");
  scene["Brushes"] = 1;
  const Lines found = checkedScene(scene);
  EXPECT_EQ("warning missing-list there is not a list \"Brushes\"", found.at(0));
  EXPECT_EQ("warning missing-list there is not a list \"Pens\"", found.at(1));
  EXPECT_EQ(5u, checked("{}").size());
  EXPECT_EQ("error no-objects it has no list of objects", checked("{}").at(4));
}

TEST(SceneChecker, ColoursOutOfRangeAreErrors) {
  Json scene = square();
  scene["Brushes"][0] = {0, 0, 0, 256};
  scene["Pens"][0] = {0, -1, 0, 255, 1};
  scene["Pens"].push_back({0, 0, 0, 255, -0.5});
  const Lines expected = {"error color brush 1 has a colour component 256",
                          "error color pen 1 has a colour component -1",
                          "error pen-width pen 2 has a width below 0"};
  EXPECT_EQ(expected, checkedScene(scene));
  scene = square();
  scene["Scales"][0]["Items"][0] = {0, 0, 300, 0};
  EXPECT_EQ("warning color scale 1, item 1 has a colour component 300", checkedScene(scene).at(0));
}

TEST(SceneChecker, ValuesOfTheWrongKindAreReported) {
  Json scene = square();
  scene["Points"].push_back({1, 2});
  scene["Points"].push_back({1, "a", 3});
  scene["Brushes"].push_back({1, 2, 3});
  scene["Scales"][0]["Items"].push_back({1, 2});
  object(scene)["Regions"].push_back(3);
  object(scene)["Regions"].push_back({{"Brush", 1}, {"Face", 1}, {"Points", {1, 2, "x", 3}}});
  object(scene)["Faces"][0]["Normal"] = "up";
  Lines codes;
  for (const Finding& finding : SceneChecker::checkText(scene.dump()))
    codes.push_back(finding.code + " " + finding.text);
  for (const char* const expected :
       {"point point 5 is not [x, y, z]", "point point 6 is not [x, y, z]",
        "brush brush 2 is not [red, green, blue, alpha]",
        "scale-item scale 1, item 2 is not [value, red, green, blue]",
        "no-object region 2 is not {...}",
        "number-list region 3: \"Points\" is not a list of numbers",
        "normal its normal is not [x, y, z]"})
    EXPECT_EQ(1, std::count(codes.begin(), codes.end(), expected)) << expected;
}

TEST(SceneChecker, CoordinatesThatAreNotFiniteAreErrors) {
  const std::string error =
      "error coordinate object \"A\", region 1: point 1 has a coordinate that is not finite in "
      "single "
      "precision";
  for (const char* const number : {"1e999", "1e39", "-3.5e38"}) {
    std::string text = square().dump();
    text.replace(text.find("[2,-1,-1]"), 9, std::string("[") + number + ",0,0]");
    const Lines found = checked(text);
    EXPECT_EQ(1, std::count(found.begin(), found.end(), error)) << number;
    const Session::LoadedScene loaded = Session::LoadedScene::fromText(text, "scene");
    EXPECT_EQ(Lines{error}, lines(SceneChecker::errors(loaded.scene())));
  }
}

TEST(SceneChecker, CoordinateThatIsNoNumberIsAnError) {
  const Session::LoadedScene loaded = Session::LoadedScene::fromText(square().dump(), "scene");
  loaded.scene().getPoints()->getPoint(2)->setY(std::numeric_limits<double>::quiet_NaN());
  const auto errors = SceneChecker::errors(loaded.scene());
  ASSERT_EQ(1u, errors.size());
  EXPECT_EQ(
      "object \"A\", region 1: point 3 has a coordinate that is not finite in single precision",
      errors[0].line());
}

// The square of the side 2, moved along x: at 4,500,000 a coordinate is rounded by up to 0.27.
Json squareAt(double x) {
  Json scene = square();
  for (Json& point : scene["Points"]) point[0] = point[0].get<double>() + x;
  return scene;
}

TEST(SceneChecker, CoordinatesFarFromTheOriginAreAWarning) {
  const Lines found = checkedScene(squareAt(4500000));
  EXPECT_EQ(
      "warning far-coordinates object \"A\", region 1: its corners lie up to 4.5e+06 from the "
      "origin, "
      "where single precision, in which polygons are computed, rounds by up to 0.268221; its "
      "shortest "
      "edge is 2; 1 of 1 regions lie too far",
      found.at(0));
  EXPECT_EQ(Lines(), checkedScene(squareAt(400.1)));
  EXPECT_EQ(1u, checkedScene(squareAt(40000.1)).size());
  EXPECT_EQ(Lines(), checkedScene(squareAt(30000)));  // exact in single precision
}

TEST(SceneChecker, UnknownAndDoubleKeysAreReported) {
  EXPECT_EQ("warning unknown-key unknown key \"points\"",
            checked(R"({"Brushes":[],"Pens":[],"points":[],"Points":[],"Objects":[]})").at(0));
  EXPECT_EQ("warning double-key key \"Pens\" stands here twice; the first counts",
            checked(R"({"Brushes":[],"Pens":[],"Points":[],"Objects":[],"Pens":[]})").at(0));
  Json scene = square();
  region(scene)["brush"] = 1;
  EXPECT_EQ(
      "warning unknown-key object \"A\": region 1: unknown key \"brush\"",
      "warning unknown-key object \"A\": " + SceneChecker::checkText(scene.dump()).at(0).text);
}

TEST(SceneChecker, TextBehindTheDocumentIsReported) {
  const std::string good = square().dump();
  EXPECT_EQ(Lines(), checked(good + " \t /* the } end */ "));
  EXPECT_EQ("warning text-behind there is text behind the document, from byte " +
                std::to_string(good.size() + 1) + " on (line ends not counted)",
            checked(good + "{}").at(0));
}

TEST(SceneChecker, BracketsInTextsAndCommentsEndNothing) {
  Json scene = square();
  object(scene)["Id"] = "a } \" ] b";
  EXPECT_EQ(Lines(), checked("/* } */" + scene.dump()));
}

TEST(SceneChecker, WhatIsNoJsonIsAnError) {
  EXPECT_EQ("error no-json no JSON document", checked("").at(0));
  EXPECT_EQ("error no-json no JSON document", checked(R"({"Points": [)").at(0));
  EXPECT_EQ("error no-json not JSON: Unknown token: solid", checked("solid {").at(0));
}

TEST(SceneChecker, FindingsEndAtALimit) {
  Json scene = square();
  for (int i = 0; i < 2 * SceneChecker::Most; ++i) scene["Points"].push_back({1});
  const std::vector<Finding> findings = SceneChecker::checkText(scene.dump());
  ASSERT_EQ(static_cast<size_t>(SceneChecker::Most) + 1, findings.size());
  EXPECT_EQ("more", findings.back().code);
}

// Whether a shot can be made must not depend on how many warnings stand before.
TEST(SceneChecker, FirstErrorIsReportedBehindTheLimitToo) {
  Json scene = square();
  for (int i = 0; i < 2 * SceneChecker::Most; ++i) scene["Points"].push_back({1});
  Json wrong = scene;
  region(wrong)["Face"] = 7;
  std::vector<Finding> findings = SceneChecker::checkText(wrong.dump());
  ASSERT_EQ(static_cast<size_t>(SceneChecker::Most) + 2, findings.size());
  EXPECT_EQ("face-number", findings.back().code);

  // Reading throws on this one, so the scene must not be read.
  wrong = scene;
  wrong["Pens"].push_back({0, 0, 0, 256, 1});
  std::string text = wrong.dump();
  std::string keys;
  for (int i = 0; i <= SceneChecker::Most; ++i) keys += "\"key\":1,";
  findings = SceneChecker::checkText("{" + keys + text.substr(1));
  ASSERT_EQ(static_cast<size_t>(SceneChecker::Most) + 2, findings.size());
  EXPECT_EQ("color", findings.back().code);
}

TEST(SceneChecker, NullObjectOfASceneInMemoryIsAnError) {
  Scene::Scene3D scene;
  scene.setObjects(new Scene::Objects());
  scene.getObjects()->addObject(nullptr);
  const Lines expected = {"error null-object object 1 is null"};
  EXPECT_EQ(expected, lines(SceneChecker::errors(scene)));
  EXPECT_EQ(expected, lines(SceneChecker::check(scene)));
  scene.getObjects()->getObjects()->clear();
}

TEST(SceneChecker, EveryFindingSaysHowToFixIt) {
  Json scene = square();
  region(scene) = {{"Points", {1, 1, 9}}, {"x", 1}};
  for (const Finding& finding : SceneChecker::checkText(scene.dump()))
    EXPECT_FALSE(finding.fix.empty()) << finding.line();
}

// A scene with random mistakes: numbers changed, keys taken out, values of other kinds.
void spoil(Json& node, std::mt19937_64& random) {
  const auto choose = [&random](size_t count) { return random() % count; };
  if (node.is_object() && !node.empty()) {
    auto item = node.begin();
    std::advance(item, static_cast<long>(choose(node.size())));
    if (choose(12) == 0)
      node.erase(item);
    else
      spoil(*item, random);
  } else if (node.is_array() && !node.empty()) {
    const size_t index = choose(node.size());
    if (choose(12) == 0)
      node.erase(index);
    else
      spoil(node[index], random);
  } else {
    const std::vector<Json> values = {0, 1, 2, 5, 9, -1, 0.5, 300, "x", nullptr, Json::array()};
    node = values[choose(values.size())];
  }
}

// Whether a shot can be made, seen by making it: from before the square, where it is seen, and off
// every edge, since an edge through the eye cannot be split finely enough.
bool isShot(const std::string& text) {
  Session::ViewSettings view;
  view.eye = {-4.013, 0.357, 0.791};
  bool made = false;
  Lumivane::Test::capturedStdout([&] {
    try {
      Session::LoadedScene scene = Session::LoadedScene::fromText(text, "scene");
      scene.take(view);
      made = true;
    } catch (const Session::Error&) {
      made = false;
    }
  });
  return made;
}

TEST(SceneCheckerProperty, SceneWithoutErrorsGivesAShot) {
  std::mt19937_64 random(20261121);
  std::map<bool, int> count;
  for (int i = 0; i < 1500; ++i) {
    Json scene = Json::parse(fileBytes(LUMIVANE_SCENES "/small.json"));
    for (size_t spoils = 1 + random() % 3; spoils > 0; --spoils) spoil(scene, random);
    const std::string text = scene.dump();
    const std::vector<Finding> findings = SceneChecker::checkText(text);
    const bool hasErrors = std::any_of(findings.begin(), findings.end(), [](const Finding& f) {
      return f.severity == Severity::Error;
    });
    ++count[hasErrors];
    if (!hasErrors) {
      ASSERT_TRUE(isShot(text)) << "case " << i << ": " << text;
    }
  }
  EXPECT_GT(count[true], 100);
  EXPECT_GT(count[false], 100);
}

TEST(SceneCheckerProperty, ErrorInAVisibleRegionFailsTheShot) {
  std::mt19937_64 random(7);
  int errors = 0;
  for (int i = 0; i < 1500; ++i) {
    Json scene = square();
    spoil(scene, random);
    const std::string text = scene.dump();
    const std::vector<Finding> findings = SceneChecker::checkText(text);
    if (std::none_of(findings.begin(), findings.end(),
                     [](const Finding& f) { return f.severity == Severity::Error; }))
      continue;
    ++errors;
    ASSERT_FALSE(isShot(text)) << "case " << i << ": " << text;
  }
  EXPECT_GT(errors, 50);
}

}  // namespace
}  // namespace Lumivane::Check
