#include "visibility/IndexBuilder.h"
#include "visibility/Polygons.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::Axes;
using Samples::Outline;
using Samples::PolygonBuilder;
using Samples::Random;
using Samples::square;

// For each region of a scene of flat regions the first region of its layer.
std::vector<int> layersOf(const PolygonScene& scene) {
  IndexState state;
  buildIndex(scene, {}, state);
  std::map<int, int> first;
  for (std::size_t i = 0; i < state.polygonCount(); ++i) {
    const auto [found, isNew] = first.insert({state.layers[i], state.regions[i]});
    found->second = std::min(found->second, state.regions[i]);
  }
  std::vector<int> result(scene.offsets.size() - 1, -1);
  for (std::size_t i = 0; i < state.polygonCount(); ++i) {
    const int leader = first[state.layers[i]];
    result[static_cast<std::size_t>(state.regions[i])] = leader;
    // Depth is compared on the plane of the first region.
    const ScenePlane& plane = state.layerPlanes[static_cast<std::size_t>(state.layers[i])];
    for (std::size_t j = 0; j < state.polygonCount(); ++j)
      if (state.regions[j] == leader) {
        EXPECT_EQ(state.planes[j].point, plane.point);
      }
  }
  return result;
}

// The same, pair by pair: nothing but the planes is taken from the code under test, since those of
// slivers hang on the last digits.
class SlowLayers {
 public:
  explicit SlowLayers(const PolygonScene& scene) {
    buildIndex(scene, {}, state);
    for (std::size_t i = 0; i + 1 < scene.offsets.size(); ++i) add(scene, i);
    std::vector<int> group(regions.size());
    std::iota(group.begin(), group.end(), 0);
    for (std::size_t i = 0; i < regions.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        if (coplanar(regions[i], regions[j])) {
          const int from = group[i];
          for (int& g : group)
            if (g == from) g = group[j];
        }
    result.assign(regions.size(), -1);
    for (std::size_t i = 0; i < regions.size(); ++i) {
      if (result[i] >= 0) continue;
      for (std::size_t j = i; j < regions.size(); ++j) {
        const bool joins = group[j] == group[i] && result[j] < 0 &&
                           (j == i || within(regions[j], regions[i], 1e-6L * regions[j].size));
        if (joins) result[j] = static_cast<int>(i);
      }
    }
  }

  std::vector<int> result;

 private:
  using Real = long double;
  struct Point {
    Real x, y, z;
  };
  struct Region {
    std::vector<Point> corners;
    Point normal;
    Point mean;
    Real size;
  };

  static Point minus(Point a, Point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  static Real dot(Point a, Point b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

  void add(const PolygonScene& scene, std::size_t outline) {
    Region region{{}, {0, 0, 0}, {0, 0, 0}, 0};
    for (std::size_t c = scene.offsets[outline]; c < scene.offsets[outline + 1]; ++c) {
      const Vector& p = scene.points[static_cast<std::size_t>(scene.corners[c])];
      region.corners.push_back({p[0], p[1], p[2]});
    }
    for (const Point p : region.corners)
      for (const Point q : region.corners)
        region.size = std::max(region.size, std::sqrt(dot(minus(p, q), minus(p, q))));
    const auto polygon = static_cast<std::size_t>(
        std::find(state.regions.begin(), state.regions.end(), static_cast<int>(outline)) -
        state.regions.begin());
    const ScenePlane& plane = state.planes.at(polygon);
    region.normal = {plane.normal.x, plane.normal.y, plane.normal.z};
    region.mean = {plane.point.x, plane.point.y, plane.point.z};
    regions.push_back(region);
  }

  static bool within(const Region& region, const Region& other, Real most) {
    return std::all_of(region.corners.begin(), region.corners.end(), [&](Point p) {
      return std::fabs(dot(other.normal, minus(p, other.mean))) <= most;
    });
  }
  static bool coplanar(const Region& a, const Region& b) {
    const Real most = 1e-7L * std::max(a.size, b.size);
    return within(a, b, most) && within(b, a, most);
  }

  IndexState state;
  std::vector<Region> regions;
};

std::size_t countOf(const std::vector<int>& layers) {
  return std::set<int>(layers.begin(), layers.end()).size();
}

// Turned into one plane and out of it again: what a rotated wall's coordinates look like.
PolygonScene turned(const PolygonScene& scene, std::uint64_t seed) {
  Random random(seed);
  const Axes axes(random);
  const Vector place = random.vector(1e3);
  return Samples::moved(scene, [&](const Vector& p) { return Samples::plus(axes(p), place); });
}

TEST(Layers, APictureOnAWallIsInTheWallsLayer) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 5, 10));
  builder.add(square(2, 2, 5, 1));
  builder.add(square(0, 0, 6, 10));
  EXPECT_EQ((std::vector<int>{0, 0, 2}), layersOf(builder.scene));
}

TEST(Layers, BothSidesOfASurfaceAreOneLayer) {
  PolygonBuilder builder;
  Outline back = square(0, 0, 5, 10);
  builder.add(back);
  std::reverse(back.begin(), back.end());
  builder.add(back);
  EXPECT_EQ((std::vector<int>{0, 0}), layersOf(builder.scene));
}

TEST(Layers, RegionsFarApartInOnePlaneAreOneLayer) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 5, 10));
  builder.add(square(900, 300, 5, 10));
  EXPECT_EQ((std::vector<int>{0, 0}), layersOf(builder.scene));
}

TEST(Layers, TheDistanceThatMakesALayerIsAPartOfTheLargerSize) {
  const double size = 10.0 * std::sqrt(2.0);
  for (const double part : {0.9, 1.1}) {
    PolygonBuilder builder;
    builder.add(square(0, 0, 0, 10));
    builder.add(square(2, 2, part * 1e-7 * size, 5));
    EXPECT_EQ((std::vector<int>{0, part < 1.0 ? 0 : 1}), layersOf(builder.scene));
  }
}

TEST(Layers, ASmallRegionFarOffByItsOwnSizeIsNoMember) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 10));
  builder.add(square(2, 2, 1e-6, 0.01));  // near enough for the large one
  builder.add(square(2, 2, 1e-6, 0.02));  // and one with it
  EXPECT_EQ((std::vector<int>{0, 1, 1}), layersOf(builder.scene));
}

TEST(Layers, AChainOfSmallStepsEndsWhereItIsOffTheFirstPlane) {
  PolygonBuilder builder;
  const double step = 0.9e-7 * std::sqrt(2.0);
  for (int i = 0; i < 40; ++i) builder.add(square(i, 0, i * step, 1));
  std::vector<int> expected;
  expected.reserve(40);
  for (int i = 0; i < 40; ++i) expected.push_back(i / 12 * 12);  // 11 steps are 0.99 of the reach
  EXPECT_EQ(expected, layersOf(builder.scene));
}

TEST(Layers, PlanesThatCrossAreNoLayer) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 1));
  builder.add({{0, 0, -1e-3}, {0, 1, -1e-3}, {1, 1, 1e-3}, {1, 0, 1e-3}});
  EXPECT_EQ((std::vector<int>{0, 1}), layersOf(builder.scene));
}

TEST(Layers, ManyRegionsOfOnePlaneAreOneLayerAndTheCountOfLayersHasIt) {
  PolygonBuilder builder;
  for (int i = 0; i < 60; ++i)
    for (int j = 0; j < 60; ++j) builder.add(square(i, j, 0.0, 0.9));
  builder.add(square(0, 0, 1.0, 2.0));
  for (const std::uint64_t seed : {1U, 2U, 3U}) {
    const PolygonScene scene = turned(builder.scene, seed);
    IndexState state;
    buildIndex(scene, {}, state);
    EXPECT_EQ(1U, state.layersOfSeveral);
    EXPECT_EQ(2U, state.layerPlanes.size());
  }
}

TEST(Layers, ASceneOfNoneOrOneHasAsMany) {
  EXPECT_TRUE(layersOf(PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}).empty());
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 1));
  EXPECT_EQ((std::vector<int>{0}), layersOf(builder.scene));
}

// Regions in few planes, some slivers among them, offsets around what makes a layer.
PolygonScene crowd(std::uint64_t seed, int count) {
  Random random(seed);
  // Every other scene stands along the axes, where planes are the same to the last digit.
  std::vector<Axes> frames(3);
  for (Axes& axes : frames)
    if (seed % 2 == 0) axes = Axes(random);
  PolygonBuilder builder;
  for (int i = 0; i < count; ++i) {
    const Axes& axes = frames[static_cast<std::size_t>(random.below(3))];
    const double scale = std::pow(10.0, random.between(-2.0, 1.0));
    const double thin = random.below(4) == 0 ? std::pow(10.0, random.between(-9.0, -1.0)) : 1.0;
    const double x = random.between(-20.0, 20.0);
    const double y = random.between(-20.0, 20.0);
    const double off = random.below(3) == 0 ? random.between(-3e-6, 3e-6) : 0.0;
    const double z = random.below(3) + off * scale;
    const double tilt = random.below(5) == 0 ? random.between(-3e-7, 3e-7) : 0.0;
    const auto at = [&](double u, double v) {
      return axes({x + u * scale, y + v * scale * thin, z + tilt * u * scale});
    };
    builder.add({at(0, 0), at(0.1, 1), at(1, random.between(0.5, 1)), at(0.9, 0)});
  }
  return builder.scene;
}

TEST(LayersProperty, AreThoseThatAskingEveryPairFinds) {
  std::size_t several = 0;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    const PolygonScene scene = crowd(seed, 150);
    const std::vector<int> expected = SlowLayers(scene).result;
    const std::vector<int> layers = layersOf(scene);
    several += layers.size() - countOf(layers);
    EXPECT_EQ(expected, layers) << seed;
  }
  EXPECT_GT(several, 2000U);
}

TEST(LayersProperty, TurnedScenesKeepThem) {
  PolygonBuilder builder;
  Random random(9);
  for (int i = 0; i < 300; ++i)
    builder.add(square(random.between(0, 30), random.between(0, 30), random.below(4),
                       random.between(0.5, 3.0)));
  const std::vector<int> layers = layersOf(builder.scene);
  EXPECT_EQ(4U, countOf(layers));
  for (std::uint64_t seed = 0; seed < 10; ++seed)
    EXPECT_EQ(layers, layersOf(turned(builder.scene, seed)));
}

TEST(LayersProperty, TheOrderOfTheSceneChangesOnlyWhichIsTheFirst) {
  for (std::uint64_t seed = 0; seed < 10; ++seed) {
    // Without chains: exact planes.
    PolygonBuilder forward;
    PolygonBuilder backward;
    Random random(seed);
    std::vector<Outline> outlines;
    outlines.reserve(100);
    for (int i = 0; i < 100; ++i)
      outlines.push_back(square(random.between(0, 9), random.between(0, 9), random.below(20), 1.0));
    for (const Outline& outline : outlines) forward.add(outline);
    std::reverse(outlines.begin(), outlines.end());
    for (const Outline& outline : outlines) backward.add(outline);
    const std::vector<int> a = layersOf(forward.scene);
    std::vector<int> b = layersOf(backward.scene);
    std::reverse(b.begin(), b.end());
    for (std::size_t i = 0; i < a.size(); ++i)
      for (std::size_t j = 0; j < i; ++j) EXPECT_EQ(a[i] == a[j], b[i] == b[j]);
  }
}

}  // namespace
}  // namespace Lumivane::Visibility
