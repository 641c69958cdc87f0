#include "visibility/TileOcclusion.h"
#include "visibility/TileScene.h"

#include <cmath>
#include <set>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::onFace;
using Samples::Outline;
using Samples::PolygonBuilder;
using Samples::Random;
using Samples::rectangle;
using Samples::TileScene;
using Samples::unitsOf;

constexpr double Half = static_cast<double>(CubeHalf);
const Tile Middle{0, unitsOf(-0.25), unitsOf(-0.25), unitsOf(0.25), unitsOf(0.25)};

// A tile with the screen of what is in front in it.
class Occlusion {
 public:
  explicit Occlusion(const PolygonScene& scene, const Tile& tile = Middle)
      : content(scene, tile),
        occlusion(*content.polygons),
        screen(occlusion.screenOf(tile, content.content())) {}

  bool hides(const TileEntry& entry) const {
    return occlusion.hides(screen, content.tile, entry, content.segments.data());
  }
  /// Regions in the scene's order with edges in the tile that are hidden.
  std::set<std::int32_t> hidden() const {
    std::set<std::int32_t> regions;
    for (const TileEntry& entry : content.entries)
      if (hides(entry)) regions.insert((*content.polygons)[entry.polygon].region);
    return regions;
  }
  bool hidesRange(double x0, double y0, double x1, double y1, double depth) const {
    return occlusion.hides(screen, {x0 * Half, y0 * Half, x1 * Half, y1 * Half, Half / depth});
  }

  TileScene content;
  TileOcclusion occlusion;
  TileOcclusion::Screen screen;
};

// Two walls side by side, which cover the tile together but for a slit between them, and four
// polygons behind them.
PolygonBuilder wallsWithSlit(double slit) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.03, 0.5, 1.0));
  builder.add(rectangle(0.03 + slit, -0.5, 0.5, 0.5, 1.5));
  for (int i = 0; i < 4; ++i)
    builder.add(rectangle(-0.2 + 0.01 * i, -0.2, 0.2, 0.2 - 0.01 * i, 2.0 + i));
  return builder;
}

TEST(TileOcclusion, WallsThatMeetHideWhatNoneOfThemHidesAlone) {
  EXPECT_EQ((std::set<std::int32_t>{2, 3, 4, 5}), Occlusion(wallsWithSlit(0.0).scene).hidden());
}

TEST(TileOcclusion, ThroughASlitEverythingBehindItIsSeen) {
  EXPECT_TRUE(Occlusion(wallsWithSlit(1e-9).scene).hidden().empty());
}

// Which side of the corner such an edge passes is said by whole numbers, and doubles do not agree.
TEST(TileOcclusion, AnEdgeThroughTheTilesCornerHidesNothingOfWhatCoversTheSlit) {
  // How far both ends are from the corner, in steps of two lengths.
  struct Ends {
    double before, behind, right, up;
  };
  const Ends some[] = {{996, 84, 1049240013, 575181935}, {991, 83, 1064134853, 212356795},
                       {969, 90, 1069493913, 263542646}, {978, 80, 1048486365, 516836214},
                       {998, 63, 1057818765, 751316852}, {984, 77, 1059537608, 116386454},
                       {988, 83, 1072852962, 652665163}, {994, 85, 1055941786, 293462669}};
  int covering = 0;
  for (const Ends& ends : some) {
    const double right = ends.right * 0x1p-42;
    const double up = ends.up * 0x1p-42;
    PolygonBuilder builder = wallsWithSlit(1e-3);
    builder.add({onFace(-0.25 - ends.before * right, -0.25 - ends.before * up, 2.5),
                 onFace(-0.25 + ends.behind * right, -0.25 + ends.behind * up, 2.5),
                 onFace(-0.2, 0.6, 2.5), onFace(0.6, 0.6, 2.5), onFace(0.6, -0.6, 2.5)});
    const Occlusion tile(builder.scene);
    for (const TileEntry& entry : tile.content.entries) {
      const std::int32_t region = (*tile.content.polygons)[entry.polygon].region;
      if (region != 6 || !tile.content.holds(entry.polygon, unitsOf(0.0305), unitsOf(-0.2)))
        continue;
      ++covering;
      EXPECT_FALSE(tile.hides(entry)) << ends.right;
    }
  }
  EXPECT_GT(covering, 0);
}

TEST(TileOcclusion, WhatEndsBesideTheSlitIsHiddenAllTheSame) {
  PolygonBuilder builder = wallsWithSlit(1e-9);
  builder.add(rectangle(0.1, -0.1, 0.2, 0.1, 2.5));
  EXPECT_EQ(std::set<std::int32_t>{6}, Occlusion(builder.scene).hidden());
}

TEST(TileOcclusion, WhatRisesAboveTheWallsIsSeen) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.0, 0.1, 1.0));
  builder.add(rectangle(0.0, -0.5, 0.5, 0.1, 1.5));
  builder.add(rectangle(-0.2, -0.2, 0.2, 0.1, 2.0));
  builder.add(rectangle(-0.2, -0.2, 0.2, 0.1 + 1e-9, 3.0));
  for (int i = 0; i < 3; ++i) builder.add(rectangle(-0.2, -0.2, 0.2, 0.0, 4.0 + i));
  EXPECT_EQ((std::set<std::int32_t>{2, 4, 5, 6}), Occlusion(builder.scene).hidden());
}

TEST(TileOcclusion, WhatRunsThroughAWallIsSeen) {
  PolygonBuilder builder = wallsWithSlit(0.0);
  // In front of the left wall, which is at depth 1, near its own left edge only.
  builder.add(rectangle(-0.2, -0.1, 0.0, 0.1, 0.999, 3.0));
  EXPECT_EQ((std::set<std::int32_t>{2, 3, 4, 5}), Occlusion(builder.scene).hidden());
}

TEST(TileOcclusion, AWallThatGoesBackFromTheEdgeOfAnotherIsHiddenByIt) {
  PolygonBuilder builder = wallsWithSlit(0.0);
  // It shares the upright line at x = -0.1 with nothing, and the depth of the wall there.
  builder.add({onFace(-0.1, -0.2, 1.0), onFace(-0.1, 0.2, 1.0), onFace(-0.05, 0.2, 3.0),
               onFace(-0.05, -0.2, 3.0)});
  EXPECT_EQ((std::set<std::int32_t>{2, 3, 4, 5, 6}), Occlusion(builder.scene).hidden());
}

TEST(TileOcclusion, NothingIsHiddenByAPolygonOfItsOwnLayer) {
  PolygonBuilder builder = wallsWithSlit(0.0);
  builder.add(rectangle(-0.1, -0.1, 0.0, 0.1, 1.0));  // painted on the left wall
  const Occlusion tile(builder.scene);
  EXPECT_EQ(0u, tile.hidden().count(6));
}

TEST(TileOcclusion, RangesAreHiddenBehindTheWallsAndNotBesideThem) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.0, 0.1, 1.0));
  builder.add(rectangle(0.0, -0.5, 0.5, 0.1, 1.5));
  for (int i = 0; i < 4; ++i) builder.add(rectangle(-0.2, -0.2, 0.2, 0.0, 4.0 + i));
  const Occlusion tile(builder.scene);
  EXPECT_TRUE(tile.hidesRange(-0.1, -0.1, 0.1, 0.05, 1.6));
  EXPECT_FALSE(tile.hidesRange(-0.1, -0.1, 0.1, 0.05, 1.4));
  EXPECT_TRUE(tile.hidesRange(-0.2, -0.1, -0.1, 0.05, 1.4));
  EXPECT_FALSE(tile.hidesRange(-0.1, -0.1, 0.1, 0.15, 1.6));
}

TEST(TileOcclusion, WithoutMuchBehindNoScreenIsMade) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.0, 0.5, 1.0));
  builder.add(rectangle(0.0, -0.5, 0.5, 0.5, 1.5));
  EXPECT_TRUE(Occlusion(builder.scene).screen.isEmpty());
}

// Two upright walls before a wider one, of which they hide a part.
TEST(TileOcclusion, WhatIsInFrontIsNotDividedByEdgesBehindIt) {
  const auto gapsWithWall = [](double left, double right) {
    PolygonBuilder builder;
    builder.add(rectangle(-0.15, -0.2, -0.05, 0.2, 1.0));
    builder.add(rectangle(0.05, -0.2, 0.15, 0.2, 1.0));
    builder.add(rectangle(left, -0.1, right, 0.1, 1.5));
    for (int i = 0; i < 8; ++i) builder.add(rectangle(-0.14, -0.05, -0.06, 0.05, 2.0 + i));
    const Occlusion tile(builder.scene);
    return tile.screen.end - tile.screen.first;
  };
  // Beside the wall nothing; where there is a wall, it and what is below and above it.
  EXPECT_EQ(1u + 3u * 5u + 1u, gapsWithWall(-0.21875, 0.21875));
  EXPECT_EQ(1u + 3u * 3u + 1u, gapsWithWall(-0.125, 0.125));
}

// Triangles at random, most of them behind a few large ones.
PolygonScene randomScene(std::uint64_t seed) {
  Random random(seed);
  PolygonBuilder builder;
  const auto triangle = [&](double middleX, double middleY, double size, double depth) {
    Outline corners;
    for (int i = 0; i < 3; ++i)
      corners.push_back(onFace(middleX + random.between(-size, size),
                               middleY + random.between(-size, size),
                               depth * random.between(0.7, 1.4)));
    builder.add(corners);
  };
  for (int i = 0; i < 8; ++i)
    triangle(random.between(-0.2, 0.2), random.between(-0.2, 0.2), 1.0, 1.0);
  for (int i = 0; i < 24; ++i)
    triangle(random.between(-0.25, 0.25), random.between(-0.25, 0.25), 0.1, 1.5);
  return builder.scene;
}

TEST(TileOcclusion, NoPlaceOfAHiddenPolygonIsInFrontOfAllOthers) {
  int hiddenInAll = 0;
  int placesInAll = 0;
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    const Occlusion tile(randomScene(seed));
    const TileScene& content = tile.content;
    const CubeFace& face = CubeFaces[0];
    Random random(seed);
    for (const TileEntry& entry : content.entries) {
      if (!tile.hides(entry)) continue;
      ++hiddenInAll;
      const LookPolygon& polygon = (*content.polygons)[entry.polygon];
      for (int i = 0; i < 200; ++i) {
        const Coordinate x = unitsOf(random.between(-0.25, 0.25));
        const Coordinate y = unitsOf(random.between(-0.25, 0.25));
        if (!content.holds(entry.polygon, x, y)) continue;
        ++placesInAll;
        const double own = depthAt(polygon, face, static_cast<double>(x), static_cast<double>(y));
        double nearest = -1.0;
        const auto offer = [&](std::int32_t position) {
          if (position != entry.polygon && content.holds(position, x, y))
            nearest = std::max(nearest, depthAt((*content.polygons)[position], face,
                                                static_cast<double>(x), static_cast<double>(y)));
        };
        for (const TileEntry& other : content.entries) offer(other.polygon);
        for (const std::int32_t cover : content.covers) offer(cover);
        ASSERT_GT(nearest, own) << "seed " << seed << ", region " << polygon.region;
      }
    }
  }
  EXPECT_GT(hiddenInAll, 500);
  EXPECT_GT(placesInAll, 1000);
}

}  // namespace
}  // namespace Lumivane::Visibility
