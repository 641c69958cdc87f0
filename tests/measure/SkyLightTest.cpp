// The light of the sky in sight: against the map's own sums, closed forms and sums over points.

#include <lumivane/measure/SkyLight.h>
#include <lumivane/measure/SunHours.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cmath>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using Visibility::MapShares;
using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::Vector;
using Visibility::VisibleMap;

constexpr double Pi = 3.141592653589793;
constexpr double Degree = Pi / 180.0;

double sum(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

VisibleMap lookUp(const SceneIndex& index, const Vector& eye, bool twoSided = true) {
  Visibility::LookOptions how = lookUpwards(Place());
  how.twoSided = twoSided;
  return index.look(eye, how);
}

SceneIndex nothing() { return SceneIndex{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}}; }

// A square roof of half width 1 at a height over the origin, and blades around it at random.
PolygonScene randomScene(unsigned seed) {
  std::mt19937 random(seed);
  const auto pick = [&random](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / 4294967296.0);
  };
  PolygonScene scene;
  scene.offsets.push_back(0);
  for (int i = 0; i < 14; ++i) {
    const Vector at = {pick(-6, 6), pick(-6, 6), pick(-3, 5)};
    for (int k = 0; k < 3; ++k) {
      scene.corners.push_back(static_cast<int>(scene.points.size()));
      scene.points.push_back({at[0] + pick(-4, 4), at[1] + pick(-4, 4), at[2] + pick(-4, 4)});
    }
    scene.offsets.push_back(scene.corners.size());
  }
  return scene;
}

TEST(SkyPatches, OfAnOpenSkyTheyAreWholeAndAddUpToTheHemisphere) {
  const VisibleMap map = lookUp(nothing(), {});
  for (const int count : {145, 577, 2305}) {
    const std::vector<SkyPatch> patches = skyPatches(count);
    const SkyPatchShares shares = visibleSkyPatches(map, {0.3, 0.9, 0.0}, count);
    ASSERT_EQ(static_cast<std::size_t>(count), patches.size());
    ASSERT_EQ(patches.size(), shares.solidAngles.size());
    for (std::size_t i = 0; i < patches.size(); ++i) {
      ASSERT_NEAR(patches[i].solidAngle, shares.solidAngles[i], 1e-12) << i;
      ASSERT_NEAR(patches[i].cosine, shares.cosines[i], 1e-12) << i;
    }
    EXPECT_NEAR(2.0 * Pi, sum(shares.solidAngles), 1e-9);
    EXPECT_NEAR(Pi, sum(shares.cosines), 1e-9);
  }
}

TEST(SkyPatches, HaveTheRowsOfTheirDivision) {
  const std::vector<SkyPatch> patches = skyPatches(145);
  EXPECT_EQ(0.0, patches[0].azimuth);
  EXPECT_EQ(12.0, patches[1].azimuth);
  EXPECT_NEAR(12.0, patches[30].lowest, 1e-12);
  EXPECT_EQ(15.0, patches[60].width);
  EXPECT_NEAR(84.0, patches[144].lowest, 1e-12);
  EXPECT_EQ(360.0, patches[144].width);
  EXPECT_NEAR(90.0 / 14.5, skyPatches(577)[0].highest, 1e-12);
  EXPECT_NEAR(90.0 - 45.0 / 28.5, skyPatches(2305)[2304].lowest, 1e-12);
  EXPECT_THROW(skyPatches(144), std::invalid_argument);
}

TEST(SkyPatches, AddUpToTheSkyOfTheMapProperty) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    const VisibleMap map = lookUp(SceneIndex(randomScene(seed)), {0.1, -0.2, 0.3});
    const MapShares shares(map);
    for (const int count : {145, 577, 2305}) {
      const SkyPatchShares found =
          visibleSkyPatches(map, {std::cos(seed), std::sin(seed), 0.0}, count);
      ASSERT_NEAR(shares.sky().solidAngle, sum(found.solidAngles), 1e-9) << seed;
      ASSERT_NEAR(shares.sky().area(), sum(found.cosines), 1e-9) << seed;
      const std::vector<SkyPatch> whole = skyPatches(count);
      for (std::size_t i = 0; i < whole.size(); ++i) {
        ASSERT_LE(found.solidAngles[i], whole[i].solidAngle + 1e-12) << seed;
        ASSERT_LE(found.cosines[i], whole[i].cosine + 1e-12) << seed;
      }
    }
  }
}

TEST(SkyPatches, OfAStreetAddUpToItsSky) {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(LUMIVANE_SCENES "/street.json");
  const VisibleMap map = lookUp(SceneIndex(scene), {40.1, 5.3, 1.7}, false);
  const MapShares shares(map);
  const SkyPatchShares found = visibleSkyPatches(map, {0.0, 1.0, 0.0}, 2305);
  EXPECT_NEAR(shares.sky().solidAngle, sum(found.solidAngles), 1e-9);
  EXPECT_NEAR(shares.sky().area(), sum(found.cosines), 1e-9);
  EXPECT_LT(shares.sky().solidAngle, 6.0);
}

TEST(SkyPatches, EachIsTheShareThatRaysFind) {
  const SceneIndex index(randomScene(3));
  const Vector eye = {0.1, -0.2, 0.3};
  const SkyPatchShares found = visibleSkyPatches(lookUp(index, eye), {0.0, 1.0, 0.0}, 145);
  const std::vector<SkyPatch> patches = skyPatches(145);
  constexpr int Side = 40;
  for (std::size_t i = 0; i < patches.size(); i += 4) {
    const SkyPatch& patch = patches[i];
    const double low = std::sin(patch.lowest * Degree);
    const double high = std::sin(patch.highest * Degree);
    std::vector<Vector> rays;
    for (int k = 0; k < Side * Side; ++k) {
      const int row = k / Side;
      const double z = low + (high - low) * (row + 0.5) / Side;
      const double azimuth =
          (patch.azimuth + patch.width * ((k % Side + 0.5) / Side - 0.5)) * Degree;
      const double across = std::sqrt(1.0 - z * z);
      rays.push_back({across * std::sin(azimuth), across * std::cos(azimuth), z});
    }
    int open = 0;
    for (const Visibility::Seen& seen : index.seenIn(eye, rays, true))
      open += seen.label.object == 0 ? 1 : 0;
    const double share = static_cast<double>(open) / (Side * Side);
    EXPECT_NEAR(share, found.solidAngles[i] / patch.solidAngle, 0.06) << i;
  }
}

TEST(SkyLight, OfAUniformSkyALevelPlaneHasTheSkyViewFactor) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const VisibleMap map = lookUp(SceneIndex(randomScene(seed)), {0.1, -0.2, 0.3});
    EXPECT_NEAR(MapShares(map).sky().viewFactor, skyComponent(map, SkyType{0}, {0, 0, 2}), 1e-12);
  }
}

TEST(SkyLight, OfAnOpenUniformSkyAPlaneGetsWhatItsTiltSays) {
  const VisibleMap map = lookUp(nothing(), {});
  for (const double tilt : {0.0, 10.0, 45.0, 90.0, 120.0, 179.0}) {
    const Vector normal = {0.6 * std::sin(tilt * Degree), -0.8 * std::sin(tilt * Degree),
                           std::cos(tilt * Degree)};
    EXPECT_NEAR(0.5 * (1.0 + std::cos(tilt * Degree)), skyComponent(map, SkyType{0}, normal), 1e-12)
        << tilt;
  }
  EXPECT_EQ(0.0, skyComponent(map, SkyType{0}, {0, 0, -1}));
}

// Against a sum over many directions of equal solid angle.
TEST(SkyLight, OfEachTypeItIsTheSumOverTheDirectionsOfTheSky) {
  const SceneIndex index(randomScene(5));
  const Vector eye = {0.1, -0.2, 0.3};
  const VisibleMap map = lookUp(index, eye);
  std::vector<Vector> rays;
  constexpr int Rows = 200;
  constexpr int Columns = 400;
  for (int i = 0; i < Rows; ++i)
    for (int k = 0; k < Columns; ++k) {
      const double z = (i + 0.5) / Rows;
      const double azimuth = 2.0 * Pi * (k + 0.5 * (i % 2)) / Columns;
      const double across = std::sqrt(1.0 - z * z);
      rays.push_back({across * std::cos(azimuth), across * std::sin(azimuth), z});
    }
  const std::vector<Visibility::Seen> seen = index.seenIn(eye, rays, true);
  const Vector sun = {-0.36, 0.48, 0.8};
  const auto dot = [](const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  };
  for (const int number : {0, 1, 2, 4, 7, 9, 12, 15, 16}) {
    const SkyType type{number};
    for (const Vector& normal : {Vector{0, 0, 1}, Vector{0, -1, 0}, Vector{0.48, 0.64, 0.6}}) {
      double open = 0.0;
      double whole = 0.0;
      for (std::size_t i = 0; i < rays.size(); ++i) {
        const double light =
            type.luminance(std::asin(rays[i][2]), std::acos(std::min(1.0, dot(rays[i], sun))));
        whole += light * rays[i][2];
        if (seen[i].label.object == 0) open += light * std::max(0.0, dot(rays[i], normal));
      }
      EXPECT_NEAR(open / whole, skyComponent(map, type, normal, sun), 1e-3)
          << number << " " << normal[2];
    }
  }
}

TEST(SkyLight, OfAnOpenSkyALevelPlaneGetsAll) {
  const VisibleMap map = lookUp(nothing(), {});
  for (int number = 0; number <= 16; ++number)
    EXPECT_NEAR(1.0, skyComponent(map, SkyType{number}, {0, 0, 1}, {0.3, -0.5, 0.4}), 1e-7)
        << number;
}

// Turned about the zenith everything is cut and integrated elsewhere.
TEST(SkyLight, TurningAllOfItChangesNothingProperty) {
  const auto turned = [](const Vector& v, double angle) -> Vector {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * v[0] - s * v[1], s * v[0] + c * v[1], v[2]};
  };
  const Vector eye = {0.1, -0.2, 0.3};
  const Vector sun = {-0.36, 0.48, 0.8};
  const Vector normal = {0.6, 0.3, 0.4};
  for (unsigned seed = 1; seed <= 3; ++seed) {
    const PolygonScene scene = randomScene(seed);
    PolygonScene other = scene;
    const double angle = 0.7 + seed;
    for (Vector& point : other.points) point = turned(point, angle);
    const VisibleMap map = lookUp(SceneIndex(scene), eye);
    const VisibleMap otherMap = lookUp(SceneIndex(other), turned(eye, angle));
    for (const int number : {0, 1, 2, 8, 12, 15, 16})
      EXPECT_NEAR(
          skyComponent(map, SkyType{number}, normal, sun),
          skyComponent(otherMap, SkyType{number}, turned(normal, angle), turned(sun, angle)), 1e-7)
          << seed << " " << number;
  }
}

// The sky of P. Moon and D. E. Spencer, 1 + 2 sin(elevation), in closed form; the CIE's first type
// is made like it, its value by the midpoint rule of 2,000 points.
TEST(SkyLight, OfAnOvercastSkyAnUprightPlaneGetsNearlyTwoFifths) {
  const VisibleMap map = lookUp(nothing(), {});
  const double upright = 2.0 * (Pi / 4.0 + 2.0 / 3.0);
  EXPECT_NEAR(upright / (7.0 * Pi / 3.0), skyComponent(map, SkyType{16}, {1, 0, 0}), 1e-7);
  EXPECT_NEAR(0.3791823, skyComponent(map, SkyType{1}, {1, 0, 0}), 1e-7);
}

TEST(SkyLight, TheTypesAreThoseOfTheStandard) {
  // The zenith is three times as bright as the horizon under the overcast sky.
  const SkyType overcast{1};
  EXPECT_NEAR(3.0, overcast.luminance(Pi / 2, 1.0) / overcast.luminance(0.0, 2.0), 0.02);
  EXPECT_FALSE(overcast.needsSun());
  EXPECT_EQ(1.0, SkyType{5}.luminance(0.7, 0.3));
  // Clear: gradation and indicatrix by hand.
  const SkyType clear{12};
  EXPECT_TRUE(clear.needsSun());
  const double expected = (1.0 - std::exp(-0.32 / std::sin(0.5))) *
                          (1.0 + 10.0 * (std::exp(-3.0 * 0.4) - std::exp(-1.5 * Pi)) +
                           0.45 * std::cos(0.4) * std::cos(0.4));
  EXPECT_NEAR(expected, clear.luminance(0.5, 0.4), 1e-14);
  int withSun = 0;
  for (int number = 0; number <= 16; ++number) withSun += SkyType{number}.needsSun() ? 1 : 0;
  EXPECT_EQ(12, withSun);
}

TEST(SkyLight, WhatCannotBeMeasuredIsRefused) {
  const VisibleMap map = lookUp(nothing(), {});
  EXPECT_THROW(skyComponent(map, SkyType{17}, {0, 0, 1}), std::invalid_argument);
  EXPECT_THROW(skyComponent(map, SkyType{-1}, {0, 0, 1}), std::invalid_argument);
  EXPECT_THROW(skyComponent(map, SkyType{1}, {0, 0, 0}), std::invalid_argument);
  EXPECT_THROW(skyComponent(map, SkyType{12}, {0, 0, 1}), std::invalid_argument);
  EXPECT_THROW(skyComponent(map, SkyType{12}, {0, 0, 1}, {1, 0, -0.1}), std::invalid_argument);
  EXPECT_THROW(skyComponent(nothing().look({}), SkyType{0}, {0, 0, 1}), std::invalid_argument);
  EXPECT_THROW(visibleSkyPatches(map, {0, 0, 1}, 145), std::invalid_argument);
  EXPECT_THROW(visibleSkyPatches(map, {0, 1, 0}, 100), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Measure
