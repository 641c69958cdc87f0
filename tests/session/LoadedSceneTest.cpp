#include "session/Scenes.h"
#include "support/ShotScene.h"
#include "support/TempFolder.h"
#include "support/Thrown.h"
#include "support/Vectors.h"
#include "support/WorkingFolder.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/session/FaceValues.h>
#include <lumivane/session/ViewSetup.h>
#include <lumivane/session/WorkingLists.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

namespace fs = std::filesystem;
using Cmd::CmdManager;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::smallScene;
using Lumivane::Test::smallView;
using Lumivane::Test::squareScene;
using Lumivane::Test::squareText;
using Lumivane::Test::TempFolder;
using Lumivane::Test::thrownText;
using Lumivane::Test::WorkingFolder;

std::string loadError(const std::string& path) {
  return thrownText<Error>([&path] { LoadedScene::fromFile(path); });
}

std::string textError(const std::string& text) {
  return thrownText<Error>([&text] { LoadedScene::fromText(text, "text"); });
}

std::string takeError(LoadedScene& scene, const ViewSettings& view = {}) {
  return thrownText<Error>([&] { scene.take(view); });
}

TEST(LoadedScene, FileIsReadAsByTheLibrarysReader) {
  const LoadedScene scene = smallScene();
  const std::unique_ptr<Scene::Scene3D> raw(
      IO::DataReader().readSceneFile(LUMIVANE_SCENES "/small.json"));
  EXPECT_EQ(IO::DataWriter().writeSceneString(raw.get()),
            IO::DataWriter().writeSceneString(&scene.scene()));
  EXPECT_EQ(LUMIVANE_SCENES "/small.json", scene.name());
}

TEST(LoadedScene, LineFeedWithinATokenIsDroppedAsByTheLibrarysReader) {
  const TempFolder folder;
  const std::string path = folder.file("s", "{\"Poi\nnts\":[[1\n2,0,0]],\r\n\"Objects\":[]}");
  const LoadedScene scene = LoadedScene::fromFile(path);
  ASSERT_NE(nullptr, scene.scene().getPoints());
  EXPECT_EQ(12.0, scene.scene().getPoints()->getPoint(0)->getX());
}

TEST(LoadedScene, UnreadableFileIsAnErrorAndNotTheEnd) {
  const TempFolder folder;
  EXPECT_EQ(folder.path("a") + ": cannot be read: No such file or directory",
            loadError(folder.path("a")));
  EXPECT_EQ(folder.path("") + ": cannot be read: it is a folder", loadError(folder.path("")));
  EXPECT_NE("nothing thrown", loadError(""));
}

TEST(LoadedScene, TextThatIsNoJsonIsAnErrorThatTellsWhy) {
  const std::string none = "text: not JSON: there is no complete object or array in it";
  EXPECT_EQ(none, textError(""));
  EXPECT_EQ(0u, textError("{\"a\":x}").find("text: not JSON: "));
}

TEST(LoadedScene, RefusedColourAndPenAreNamed) {
  EXPECT_EQ("text: brush 2: green is 256, not 0 to 255",
            textError(R"({"Brushes":[[1,2,3,4],[1,256,3,4]]})"));
  EXPECT_EQ("text: pen 1: the width is -1, below 0", textError(R"({"Pens":[[1,2,3,4,-1]]})"));
}

TEST(LoadedScene, BuiltSceneIsAdopted) {
  auto built = std::make_unique<Lumivane::Test::ShotScene>();
  built->addRegion(built->addObject("mine"), Lumivane::Test::wallAhead());
  // The copy shares the lists, which go with it alone.
  auto* const scene = new Scene::Scene3D(built->scene);
  built->scene = Scene::Scene3D();
  built->scene.setObjects(new Scene::Objects());
  LoadedScene adopted = LoadedScene::adopt(scene, "built");
  EXPECT_EQ("built", adopted.name());
  EXPECT_EQ(scene, &adopted.scene());
  EXPECT_EQ("mine", adopted.take({}).shot().getObjects()->getObject(0)->getId());
}

TEST(LoadedScene, NoSceneIsNotAdopted) {
  EXPECT_EQ("built: there is no scene",
            thrownText<Error>([] { LoadedScene::adopt(nullptr, "built"); }));
}

TEST(LoadedScene, NumberThatPointsAtNothingIsNamedWithObjectAndRegion) {
  LoadedScene point =
      LoadedScene::fromText(squareText(R"({"Brush":1,"Face":1,"Points":[1,2,9]})"), "square");
  EXPECT_EQ("square: no shot can be made: object \"wall\", region 1: point 9, but there are 1 to 4",
            takeError(point));
  LoadedScene face =
      LoadedScene::fromText(squareText(R"({"Brush":1,"Face":2,"Points":[1,2,3]})"), "square");
  EXPECT_EQ("square: no shot can be made: object \"wall\", region 1: face 2, but there are 1 to 1",
            takeError(face));
}

// A scene of the square with one text in place of another, and what a take of it says.
struct Refused {
  Refused(const std::string& old, const std::string& text) {
    std::string document = Lumivane::Test::squareText();
    document.replace(document.find(old), old.size(), text);
    scene.emplace(LoadedScene::fromText(document, "square"));
  }
  std::string take(const ViewSettings& view) { return takeError(*scene, view); }
  std::optional<LoadedScene> scene;
};

TEST(LoadedScene, TakeRefusesACornerThatIsNotFinite) {
  Refused refused("[3,1,1]", "[3,1,-1e999]");
  EXPECT_EQ(
      "square: no shot can be made: object \"wall\", region 1: point 3 has a coordinate that is "
      "not finite in single precision",
      refused.take({}));
  ViewSettings view;
  view.checkScene = false;
  EXPECT_EQ("nothing thrown", refused.take(view));
}

TEST(LoadedScene, TakeRefusesTwoObjectsOfOneId) {
  const std::string object = R"({"Id":"wall","Pen":1,"Faces":[{"Regions":[1]}],"Regions":[)"
                             R"({"Brush":1,"Face":1,"Points":[1,2,3,4]}]})";
  Refused refused(object, object + "," + object);
  EXPECT_EQ(
      "square: no shot can be made: object \"wall\": objects 1 and 2 have one id, and the drawing "
      "order takes the regions of 1 for those of 2",
      refused.take({}));
  ViewSettings view;
  view.checkScene = false;
  EXPECT_EQ("nothing thrown", refused.take(view));
}

TEST(LoadedScene, TakeSaysHowManyErrorsThereAreBesidesTheFirst) {
  Refused refused(R"("Points":[1,2,3,4])", R"("Points":[1,2,9],"DockingEdges":[0])");
  EXPECT_EQ(
      "square: no shot can be made: object \"wall\", region 1: point 9, but there are 1 to 4 (and "
      "1 "
      "more: see lumivane check)",
      refused.take({}));
  const auto errors = Check::SceneChecker::errors(refused.scene->scene());
  ASSERT_EQ(2u, errors.size());
  EXPECT_EQ("object \"wall\", region 1: point 9, but there are 1 to 4", errors[0].line());
}

TEST(LoadedScene, WrongScaleIsNamed) {
  LoadedScene scene = squareScene();
  ViewSettings view;
  view.property = 7;
  view.scale = 2;
  EXPECT_EQ("square: no shot can be made: scale 2, but there are 1 to 1", takeError(scene, view));
}

TEST(LoadedScene, WrongViewAndMissingObjectsAreErrors) {
  LoadedScene scene = squareScene();
  ViewSettings view;
  view.up = view.forward;
  EXPECT_EQ("square: no shot can be made: forward 1,0,0 and up 1,0,0 are parallel",
            takeError(scene, view));
  LoadedScene empty = LoadedScene::fromText("{}", "empty");
  EXPECT_EQ("empty: no shot can be made: it has no list of objects", takeError(empty));
}

TEST(LoadedScene, AfterAFailureTheSceneIsUsable) {
  LoadedScene scene = squareScene();
  const std::string before = scene.take({}).text();
  Geometry::Region& region = *scene.scene().getObjects()->getObject(0)->getRegions()->getRegion(0);
  region.addPoint(9);
  ViewSettings unchecked;
  unchecked.checkScene = false;  // so that it fails half way
  EXPECT_NE("nothing thrown", takeError(scene, unchecked));
  EXPECT_EQ(nullptr, scene.scene().getObjects()->getObject(0)->getRegionsPolyData());
  region.removePoint(9);
  EXPECT_EQ(before, scene.take({}).text());
}

TEST(LoadedScene, SplittingIsSetForATakeAndRestored) {
  CmdManager::minSegmentsNumber = 17;
  CmdManager::maxSegmentsLength = 0.75;
  ViewSettings view;
  view.segments = 3;
  view.maxLength = 0.5;
  int segments = 0;
  double length = 0.0;
  LoadedScene scene = squareScene();
  scene.take(view, [&](double percent) {
    if (percent > 0.0) return;
    segments = CmdManager::minSegmentsNumber;
    length = CmdManager::maxSegmentsLength;
  });
  EXPECT_EQ(3, segments);
  EXPECT_EQ(0.5, length);
  EXPECT_EQ(17, CmdManager::minSegmentsNumber);
  EXPECT_EQ(0.75, CmdManager::maxSegmentsLength);

  scene.scene().getObjects()->getObject(0)->getRegions()->getRegion(0)->addPoint(9);
  EXPECT_NE("nothing thrown", takeError(scene, view));
  EXPECT_EQ(17, CmdManager::minSegmentsNumber);
  EXPECT_EQ(0.75, CmdManager::maxSegmentsLength);
  CmdManager::minSegmentsNumber = 6;
  CmdManager::maxSegmentsLength = 0.0;
}

TEST(LoadedScene, MergeDistanceIsSetForATakeAndRestored) {
  const double usual = Geometry::Point2d::Precision;
  ViewSettings view;
  LoadedScene scene = squareScene();
  const size_t merged = scene.take(view).shot().getPoints()->getPoints()->size();
  view.mergeDistance = 0.3;
  double during = 0.0;
  const TakenShot coarse = scene.take(view, [&during](double percent) {
    if (percent == 0.0) during = Geometry::Point2d::Precision;
  });
  EXPECT_EQ(0.3, during);
  EXPECT_EQ(usual, Geometry::Point2d::Precision);
  EXPECT_GT(merged, coarse.shot().getPoints()->getPoints()->size());
}

TEST(LoadedScene, SplittingChangesTheShot) {
  LoadedScene scene = squareScene();
  ViewSettings view;
  view.maxLength = 0.0;
  view.segments = 1;
  const size_t few = scene.take(view).shot().getPoints()->getPoints()->size();
  view.segments = 40;
  EXPECT_LT(few, scene.take(view).shot().getPoints()->getPoints()->size());
}

TEST(LoadedScene, FaceIsColouredByItsValue) {
  LoadedScene scene = squareScene();
  setFaceValue(*scene.scene().getObjects()->getObject(0), 1, 7, 0.0);
  ViewSettings view;
  view.property = 7;
  view.scale = 1;
  const TakenShot shot = scene.take(view);
  const auto colour = shot.shot().getRegions()->getRegion(0)->getOverrideColor();
  ASSERT_TRUE(colour.has_value());
  EXPECT_EQ(20, colour->getGreen());
  EXPECT_EQ(scene.scene().getScales()->getScale(0), shot.shot().getScale());
  EXPECT_EQ(scene.scene().getProperties()->getProperty(7), shot.shot().getProperty());
}

// An eye on the wall notes the wall's region on the object, and later raw shots split that region
// more finely.
TEST(LoadedScene, EachShotIsAsOfASceneNeverLookedAt) {
  ViewSettings onTheWall;
  onTheWall.eye = {2.995, 0.0, 0.0};
  onTheWall.forward = {0.0, 1.0, 0.0};
  LoadedScene scene = squareScene();
  const std::string fresh = scene.take({}).text();
  EXPECT_NE(onTheWall.eye, scene.take(onTheWall).eye());
  EXPECT_EQ(0, scene.scene().getObjects()->getObject(0)->getCameraInRegionIndex());
  EXPECT_EQ(fresh, scene.take({}).text());

  // The same with the raw classes: the note acts, so the lines above can fail.
  CmdManager::maxSegmentsLength = ViewSettings().maxLength;
  ViewSetup first(onTheWall);
  ViewSetup second(ViewSettings{});
  const LoadedScene raw = squareScene();
  const Lumivane::Test::SharingShot one(raw.scene().makeShot(first.view(), first.parameters()));
  releaseWorkingLists(raw.scene());
  raw.scene().getObjects()->getObject(0)->setCameraInRegionIndex(0);
  const Lumivane::Test::SharingShot two(raw.scene().makeShot(second.view(), second.parameters()));
  EXPECT_NE(fresh, IO::DataWriter().writeShotString(two.get()));
  CmdManager::maxSegmentsLength = 0.0;
}

TEST(LoadedScene, WorkingListsStayUpToTheNextTakeOrTheirRelease) {
  LoadedScene scene = squareScene();
  Scene::Object& object = *scene.scene().getObjects()->getObject(0);
  const TakenShot shot = scene.take({});
  ASSERT_NE(nullptr, object.getRegionsProjectedPolygons());
  EXPECT_EQ(1u, object.getRegionsProjectedPolygons()->size());
  scene.releaseWorkingLists();
  EXPECT_EQ(nullptr, object.getRegionsProjectedPolygons());
  EXPECT_FALSE(shot.text().empty());
}

// The cases of the golden folder that one shot of a session can make: without shots before.
std::vector<std::string> goldenCases() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(Lumivane::Test::goldenDir())) {
    const std::string name = entry.path().filename().string();
    const std::string ending = ".shot.json";
    if (name.size() > ending.size() && name.substr(name.size() - ending.size()) == ending)
      names.push_back(name.substr(0, name.size() - ending.size()));
  }
  return names;
}

Vector vectorOf(const Json& view, const char* key, const Vector& otherwise) {
  if (!view.contains(key)) return otherwise;
  const std::vector<double> values = Lumivane::Test::toVector(view.at(key));
  return {values.at(0), values.at(1), values.at(2)};
}

ViewSettings settingsOf(const Json& view) {
  ViewSettings settings;
  settings.eye = vectorOf(view, "eye", settings.eye);
  settings.forward = vectorOf(view, "forward", settings.forward);
  settings.up = vectorOf(view, "up", settings.up);
  if (view.value("camera", "spherical") == "normal") settings.camera = Base::ViewCameraKind::Normal;
  settings.property = view.value("property", -1);
  settings.scale = view.value("scale", -1);
  settings.d1 = view.value("d1", 0.01);
  settings.d2 = view.value("d2", 1.0);
  settings.segments = view.value("sn", 6);
  settings.maxLength = view.value("sl", 0.0);
  settings.checkScene = false;  // some cases are scenes with errors
  return settings;
}

TEST(LoadedScene, GoldenShotsComeOutByteForByte) {
  size_t equal = 0;
  for (const std::string& name : goldenCases()) {
    const std::string stem = Lumivane::Test::goldenDir() + "/" + name;
    const Json view = Json::parse(fileBytes(stem + ".view.json"));
    const ViewSettings settings = settingsOf(view);
    if (view.contains("before") || !settings.fault().empty()) continue;
    const WorkingFolder folder;  // for the report of a cycle
    const std::string text = LoadedScene::fromFile(stem + ".scene.json").take(settings).text();
    EXPECT_TRUE(fileBytes(stem + ".shot.json") == text) << name;
    ++equal;
  }
  EXPECT_GE(equal, 20u);
}

}  // namespace
}  // namespace Lumivane::Session
