// Horizon lines against closed forms and rays.

#include <lumivane/measure/HorizonLine.h>
#include <lumivane/measure/SunHours.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::Vector;

constexpr double Pi = 3.141592653589793;
constexpr double Degree = Pi / 180.0;

Visibility::VisibleMap lookUp(const SceneIndex& index, const Vector& eye, bool twoSided) {
  Visibility::LookOptions how = lookUpwards(Place());
  how.twoSided = twoSided;
  return index.look(eye, how);
}

// A wall 2 east of the origin, 1 high and 4 long.
SceneIndex wall() {
  PolygonScene scene;
  scene.points = {{2, -2, 0}, {2, 2, 0}, {2, 2, 1}, {2, -2, 1}};
  scene.offsets = {0, 4};
  scene.corners = {0, 1, 2, 3};
  return SceneIndex(scene);
}

TEST(HorizonLine, OfAWallIsItsUpperEdge) {
  const HorizonLine line(lookUp(wall(), {}, true), {0, 1, 0}, 360);
  ASSERT_EQ(360U, line.elevations().size());
  for (int azimuth = 0; azimuth < 360; ++azimuth) {
    const double away = std::abs(azimuth - 90.0);
    const double expected = away <= 45.0 ? std::atan(0.5 * std::cos(away * Degree)) / Degree : 0.0;
    EXPECT_NEAR(expected, line.elevations()[static_cast<std::size_t>(azimuth)], 1e-9) << azimuth;
  }
}

TEST(HorizonLine, NorthTurnsIt) {
  const HorizonLine line(lookUp(wall(), {}, true), {-3, 0, 5}, 4);
  EXPECT_NEAR(std::atan(0.5) / Degree, line.elevations()[2], 1e-9);
  EXPECT_EQ(0.0, line.elevations()[0]);
}

TEST(HorizonLine, UnderARoofItIsTheZenith) {
  PolygonScene scene;
  scene.points = {{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}};
  scene.offsets = {0, 4};
  scene.corners = {0, 1, 2, 3};
  const SceneIndex index(scene);
  const HorizonLine line(lookUp(index, {}, true), {0, 1, 0}, 8);
  for (const double height : line.elevations()) EXPECT_EQ(90.0, height);
}

TEST(HorizonLine, OfAStreetIsWhereRaysFindTheHighestThing) {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(LUMIVANE_SCENES "/street.json");
  const SceneIndex index(scene);
  const Vector eye = {40.1, 5.3, 1.7};
  constexpr int Count = 71;
  const HorizonLine line(lookUp(index, eye, false), {0, 1, 0}, Count);
  for (std::size_t i = 0; i < Count; ++i) {
    const double azimuth = 2.0 * Pi * static_cast<double>(i) / Count;
    const double height = line.elevations()[i];
    std::vector<Vector> rays;
    for (const double elevation : {height + 1e-4, height - 1e-4, 0.5 * (height + 90.0)}) {
      const double across = std::cos(elevation * Degree);
      rays.push_back(
          {across * std::sin(azimuth), across * std::cos(azimuth), std::sin(elevation * Degree)});
    }
    const auto seen = index.seenIn(eye, rays);
    EXPECT_EQ(0, seen[0].label.object) << i;
    EXPECT_NE(0, seen[1].label.object) << i;
    EXPECT_EQ(0, seen[2].label.object) << i;
  }
}

TEST(HorizonLine, ItsTextsAreThoseOfTheirFormats) {
  const HorizonLine line(lookUp(wall(), {}, true), {0, 1, 0}, 4);
  EXPECT_EQ("0\n26.565051\n0\n0\n", line.listText());
  const std::string hor = line.horText(false);
  EXPECT_EQ('#', hor[0]);
  EXPECT_EQ("\n-180 0\n-90 26.565051\n0 0\n90 0\n", hor.substr(hor.find('\n')));
  const std::string southern = line.horText(true);
  EXPECT_EQ("\n-180 0\n-90 26.565051\n0 0\n90 0\n", southern.substr(southern.find('\n')));
}

TEST(HorizonLine, WhatIsNoHorizonIsRefused) {
  const Visibility::VisibleMap map = lookUp(wall(), {}, true);
  EXPECT_THROW(HorizonLine(map, {0, 1, 0}, 0), std::invalid_argument);
  EXPECT_THROW(HorizonLine(map, {0, 0, 1}, 4), std::invalid_argument);
  EXPECT_THROW(HorizonLine(wall().look({}), {0, 1, 0}, 4), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Measure
