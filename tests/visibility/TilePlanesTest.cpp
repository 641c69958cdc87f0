#include "visibility/TilePlanes.h"
#include "visibility/TileScene.h"

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
  // The region that is seen at a point of some regions; -1 for none.
  std::int32_t seenOf(const std::vector<std::int32_t>& regions, double x, double y) const {
    std::vector<MaskWord> mask(planes.words(), 0);
    for (const std::int32_t region : regions) {
      const auto slot = static_cast<std::size_t>(slotOf(region));
      mask[slot / 64] |= MaskWord{1} << (slot % 64);
    }
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
