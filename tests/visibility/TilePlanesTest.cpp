#include "visibility/TilePlanes.h"
#include "visibility/TileScene.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::PolygonBuilder;
using Samples::rectangle;
using Samples::TileScene;
using Samples::unitsOf;

const Tile Middle{0, unitsOf(-0.25), unitsOf(-0.25), unitsOf(0.25), unitsOf(0.25)};

// A tile with its planes.
class Planes {
 public:
  explicit Planes(const PolygonScene& scene, const Tile& tile = Middle)
      : content(scene, tile), planes(*content.polygons) {
    planes.gather(tile, content.content());
  }

  std::int32_t slotOf(std::int32_t region) const {
    for (std::size_t i = 0; i < planes.count(); ++i)
      if (planes[static_cast<std::int32_t>(i)].region == region)
        return static_cast<std::int32_t>(i);
    return -1;
  }
  std::vector<MaskWord> maskOf(const std::vector<std::int32_t>& regions) const {
    std::vector<MaskWord> mask(planes.words(), 0);
    for (const std::int32_t region : regions) {
      const auto slot = static_cast<std::size_t>(slotOf(region));
      mask[slot / 64] |= MaskWord{1} << (slot % 64);
    }
    return mask;
  }
  // The region that is seen at a point of some regions; -1 for none.
  std::int32_t seenOf(const std::vector<std::int32_t>& regions, double x, double y) const {
    const std::vector<MaskWord> mask = maskOf(regions);
    const std::int32_t seen = planes.seenAt(mask.data(), x * Half, y * Half);
    return seen < 0 ? -1 : planes[seen].region;
  }

  static constexpr double Half = static_cast<double>(CubeHalf);
  TileScene content;
  TilePlanes planes;
};

// Three walls across, the nearest in the middle of the order.
PolygonScene walls() {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.1, 0.5, 3.0));
  builder.add(rectangle(-0.1, -0.5, 0.5, 0.5, 1.0));
  builder.add(rectangle(-0.5, -0.1, 0.5, 0.5, 2.0));
  return builder.scene;
}

TEST(TilePlanes, TheNearestPolygonOfAMaskIsSeen) {
  const Planes tile(walls());
  EXPECT_EQ(1, tile.seenOf({0, 1, 2}, 0.05, 0.05));
  EXPECT_EQ(2, tile.seenOf({0, 2}, 0.05, 0.05));
  EXPECT_EQ(0, tile.seenOf({0}, 0.05, 0.05));
  EXPECT_EQ(-1, tile.seenOf({}, 0.05, 0.05));
}

TEST(TilePlanes, SlotsGoFromNearToFar) {
  const Planes tile(walls());
  ASSERT_EQ(3u, tile.planes.count());
  EXPECT_EQ(0, tile.slotOf(1));
  EXPECT_EQ(1, tile.slotOf(2));
  EXPECT_EQ(2, tile.slotOf(0));
  EXPECT_GE(tile.planes[0].bound, tile.planes[1].bound);
  EXPECT_GE(tile.planes[1].bound, tile.planes[2].bound);
}

TEST(TilePlanes, WhatCoversTheLowerLeftCornerIsAskedThere) {
  PolygonScene scene = walls();
  const Planes tile(scene);
  // The first wall alone reaches the corner of the tile.
  ASSERT_EQ(1u, tile.planes.atCorner().size());
  EXPECT_EQ(MaskWord{1} << tile.slotOf(0), tile.planes.atCorner()[0]);
}

TEST(TilePlanes, OfOneLayerTheLaterRegionIsSeen) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.1, 0.5, 2.0));
  builder.add(rectangle(-0.1, -0.5, 0.5, 0.5, 2.0));
  const Planes tile(builder.scene);
  EXPECT_EQ(1, tile.seenOf({0, 1}, 0.0, 0.0));
  EXPECT_EQ(0, tile.seenOf({0}, 0.0, 0.0));
}

TEST(TilePlanes, OfTwoThatRunThroughEachOtherTheNearerIsSeenOnEitherSide) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.5, 0.1, 1.0, 3.0));
  builder.add(rectangle(-0.5, -0.1, 0.5, 0.5, 3.0, 1.0));
  const Planes tile(builder.scene);
  EXPECT_EQ(0, tile.seenOf({0, 1}, -0.2, 0.0));
  EXPECT_EQ(1, tile.seenOf({0, 1}, 0.2, 0.0));
}

// The region that is seen wherever some regions are; -1 for none, -2 if that is not known at once.
std::int32_t seenEverywhere(const Planes& tile, const std::vector<std::int32_t>& regions) {
  const std::vector<MaskWord> mask = tile.maskOf(regions);
  const std::int32_t seen = tile.planes.seenEverywhere(mask.data());
  return seen < 0 ? seen : tile.planes[seen].region;
}

TEST(TilePlanes, WhatIsInFrontInTheWholeTileIsSeenEverywhere) {
  const Planes tile(walls());
  EXPECT_EQ(1, seenEverywhere(tile, {0, 1, 2}));
  EXPECT_EQ(2, seenEverywhere(tile, {0, 2}));
  EXPECT_EQ(0, seenEverywhere(tile, {0}));
  EXPECT_EQ(-1, seenEverywhere(tile, {}));
  EXPECT_TRUE(tile.planes.isClear(tile.maskOf({0, 1, 2}).data(), tile.slotOf(1)));
  EXPECT_FALSE(tile.planes.isClear(tile.maskOf({0, 1, 2}).data(), tile.slotOf(2)));
}

TEST(TilePlanes, OfTwoThatRunThroughEachOtherNoneIsSeenEverywhere) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.5, 0.1, 1.0, 3.0));
  builder.add(rectangle(-0.5, -0.1, 0.5, 0.5, 3.0, 1.0));
  builder.add(rectangle(-0.5, -0.5, 0.5, 0.5, 9.0));
  const Planes tile(builder.scene);
  EXPECT_EQ(TilePlanes::Unclear, seenEverywhere(tile, {0, 1, 2}));
  EXPECT_FALSE(tile.planes.isClear(tile.maskOf({0, 1}).data(), tile.slotOf(0)));
  EXPECT_FALSE(tile.planes.isClear(tile.maskOf({0, 1}).data(), tile.slotOf(1)));
  EXPECT_EQ(0, seenEverywhere(tile, {0, 2}));
  EXPECT_EQ(1, seenEverywhere(tile, {1, 2}));
}

TEST(TilePlanes, PlanesThatMeetBesideTheirPolygonsDoNotMatter) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.1, -0.5, 0.1, 0.5, 1.0, 1.5));
  builder.add(rectangle(-0.1, -0.5, 0.1, 0.5, 4.0, 2.5));
  // Farther than both here, and nearer than the first where that is not.
  const Planes tile(builder.scene,
                    Tile{0, unitsOf(-0.9), unitsOf(-0.9), unitsOf(0.9), unitsOf(0.9)});
  EXPECT_EQ(0, seenEverywhere(tile, {0, 1}));
}

TEST(TilePlanes, OfMoreThanAWordOfPolygonsWhatIsSeenEverywhereIsSeenAtEachPoint) {
  std::mt19937 engine(5);
  const auto between = [&](double from, double to) {
    return from + (to - from) * static_cast<double>(engine()) / 4294967296.0;
  };
  PolygonBuilder builder;
  constexpr std::int32_t Count = 90;
  for (std::int32_t i = 0; i < Count; ++i)
    builder.add(rectangle(-0.5, -0.5, 0.5, 0.5, between(1.0, 9.0), between(1.0, 9.0)));
  const Planes tile(builder.scene);
  ASSERT_EQ(2u, tile.planes.words());
  int known = 0;
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::int32_t> regions;
    for (int i = 0; i < 4; ++i) regions.push_back(static_cast<std::int32_t>(engine() % Count));
    std::sort(regions.begin(), regions.end());
    regions.erase(std::unique(regions.begin(), regions.end()), regions.end());
    const std::int32_t seen = seenEverywhere(tile, regions);
    if (seen == TilePlanes::Unclear) continue;
    ++known;
    for (int i = 0; i < 5; ++i)
      EXPECT_EQ(seen, tile.seenOf(regions, between(-0.25, 0.25), between(-0.25, 0.25)));
  }
  EXPECT_GT(known, 100);
  EXPECT_LT(known, 2000);
}

// How many of all slots may be in front of a region in two corners of a gap, or in four.
int crossingCount(const Planes& tile, std::int32_t region, double left, double right) {
  const std::vector<MaskWord> mask(tile.planes.words(), 7);
  const double points[4][2] = {{left * Planes::Half, -0.05 * Planes::Half},
                               {left * Planes::Half, 0.05 * Planes::Half},
                               {right * Planes::Half, -0.05 * Planes::Half},
                               {right * Planes::Half, 0.05 * Planes::Half}};
  int count = 0;
  tile.planes.forCrossing(mask.data(), tile.slotOf(region), points, 4,
                          [&](std::int32_t) { ++count; });
  return count;
}

TEST(TilePlanes, ACrossingIsFoundWhereTheSeenOneIsNotInFrontInEveryCorner) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.5, 0.1, 1.0, 3.0));
  builder.add(rectangle(-0.5, -0.1, 0.5, 0.5, 3.0, 1.0));
  builder.add(rectangle(-0.5, -0.5, 0.1, 0.5, 9.0));
  const Planes tile(builder.scene);
  EXPECT_EQ(1, crossingCount(tile, 0, -0.2, 0.2));
  EXPECT_EQ(0, crossingCount(tile, 0, -0.2, -0.1));
  EXPECT_EQ(1, crossingCount(tile, 1, -0.2, 0.2));
  EXPECT_EQ(0, crossingCount(tile, 1, 0.1, 0.2));
}

}  // namespace
}  // namespace Lumivane::Visibility
