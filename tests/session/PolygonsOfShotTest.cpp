#include "session/Scenes.h"
#include "support/Thrown.h"
#include "support/WorkingFolder.h"

#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/cmd/MessageScope.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/FaceValues.h>
#include <lumivane/shot/Shot2d.h>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::smallScene;
using Lumivane::Test::smallView;
using Lumivane::Test::squareScene;
using Lumivane::Test::thrownText;
using Lumivane::Test::WorkingFolder;

LoadedScene sample(const std::string& name) {
  return LoadedScene::fromFile(std::string(LUMIVANE_SCENES) + "/" + name);
}

// What the raw shot says of a polygon.
void expectSame(const Shot::Shot2d& shot, const ShotPolygons& polygons, std::size_t i) {
  const Geometry::Region2d& region = *(*shot.getRegions()->getRegions())[i];
  EXPECT_EQ(region.getObjectNumber(), polygons.objects[i]);
  EXPECT_EQ(region.getFaceNumber(), polygons.faces[i]);
  EXPECT_EQ(region.getSourceRegionNumber(), polygons.regions[i]);
  const std::size_t first = polygons.offsets[i];
  ASSERT_EQ(region.getPoints()->size(), polygons.offsets[i + 1] - first);
  std::vector<std::uint8_t> drawn(region.getPoints()->size(), 1);
  for (const int edge : *region.getDockingEdges()) drawn[static_cast<std::size_t>(edge) - 1] = 0;
  for (std::size_t k = 0; k < drawn.size(); ++k) {
    const Geometry::Point2d& point = *shot.getPoints()->getPoint((*region.getPoints())[k] - 1);
    EXPECT_EQ(point.getX(), polygons.points[first + k][0]);
    EXPECT_EQ(point.getY(), polygons.points[first + k][1]);
    EXPECT_EQ(drawn[k], polygons.drawnEdges[first + k]);
  }
}

TEST(ShotPolygons, HoldWhatTheRawShotHoldsInDrawingOrder) {
  for (const char* name : {"small.json", "docking.json"}) {
    LoadedScene scene = sample(name);
    const TakenShot shot = scene.take(smallView());
    const ShotPolygons polygons = shot.polygons();
    ASSERT_EQ(shot.shot().getRegions()->getRegions()->size(), polygons.count());
    ASSERT_GT(polygons.count(), 1u);
    ASSERT_EQ(polygons.count() + 1, polygons.offsets.size());
    EXPECT_EQ(polygons.points.size(), polygons.offsets.back());
    EXPECT_EQ(polygons.points.size(), polygons.drawnEdges.size());
    EXPECT_EQ(polygons.count(), polygons.colors.size());
    for (std::size_t i = 0; i < polygons.count(); ++i) expectSame(shot.shot(), polygons, i);
  }
}

TEST(ShotPolygons, HaveTheIdsOfTheObjectsAndTheColoursOfTheirBrushes) {
  const ShotPolygons polygons = squareScene().take({}).polygons();
  EXPECT_EQ(std::vector<std::string>({"wall"}), polygons.objectIds);
  ASSERT_EQ(1u, polygons.count());
  EXPECT_EQ((std::array<std::uint8_t, 4>{200, 10, 20, 255}), polygons.colors[0]);
}

TEST(ShotPolygons, HaveTheColourOfAScaleBeforeThatOfTheBrush) {
  LoadedScene scene = squareScene();
  setFaceValue(*scene.scene().getObjects()->getObject(0), 1, 7, 0.0);
  ViewSettings view;
  view.property = 7;
  view.scale = 1;
  const TakenShot shot = scene.take(view);
  const auto color = (*shot.shot().getRegions()->getRegions())[0]->getOverrideColor();
  ASSERT_TRUE(color);
  EXPECT_EQ((std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(color->getRed()),
                                         static_cast<std::uint8_t>(color->getGreen()),
                                         static_cast<std::uint8_t>(color->getBlue()),
                                         static_cast<std::uint8_t>(color->getAlpha())}),
            shot.polygons().colors[0]);
}

TEST(ShotPolygons, StayWhenShotAndSceneAreGone) {
  ShotPolygons polygons;
  std::size_t count = 0;
  {
    LoadedScene scene = smallScene();
    const TakenShot shot = scene.take(smallView());
    polygons = shot.polygons();
    count = shot.shot().getRegions()->getRegions()->size();
  }
  EXPECT_EQ(count, polygons.count());
  EXPECT_EQ(polygons.points.size(), polygons.offsets.back());
}

TEST(ShotPolygons, OfAChangedShotNameTheNumberThatPointsAtNothing) {
  LoadedScene scene = squareScene();
  const TakenShot shot = scene.take({});
  Geometry::Region2d& region = *(*shot.shot().getRegions()->getRegions())[0];
  region.setBrushNumber(2);
  EXPECT_EQ("square: region 1 of the shot: brush 2, but there are 1 to 1",
            thrownText<Error>([&] { shot.polygons(); }));
  region.addPoint(999);
  EXPECT_EQ(0u, thrownText<Error>([&] {
                  shot.polygons();
                }).find("square: region 1 of the shot: point 999, but there are 1 to "));
}

TEST(TakenShot, EyeOffsetIsWhatAnEyeOnAPolygonIsMovedBy) {
  LoadedScene scene = squareScene();
  EXPECT_EQ(Vector({0.0, 0.0, 0.0}), scene.take({}).eyeOffset());
  ViewSettings view;
  view.eye = {2.995, 0.0, 0.0};
  view.forward = {0.0, 1.0, 0.0};
  const TakenShot shot = scene.take(view);
  EXPECT_NE(Vector({0.0, 0.0, 0.0}), shot.eyeOffset());
  EXPECT_EQ(shot.eye()[0] - view.eye[0], shot.eyeOffset()[0]);
}

TEST(TakenShot, CycleNamesTheFacesThatOverlapInIt) {
  const WorkingFolder folder;  // for the report
  const Cmd::MessageScope quiet({});
  LoadedScene scene = sample("ring.json");
  ViewSettings view;
  view.eye = {-4.0, 0.013, 0.017};
  const TakenShot shot = scene.take(view);
  EXPECT_TRUE(shot.hasCycle());
  EXPECT_EQ((std::vector<FaceNumber>{{1, 1}, {2, 1}, {3, 1}}), shot.cycle());
  LoadedScene other = smallScene();
  const TakenShot without = other.take(smallView());
  EXPECT_FALSE(without.hasCycle());
  EXPECT_TRUE(without.cycle().empty());
}

}  // namespace
}  // namespace Lumivane::Session
