#include "visibility/MapParts.h"
#include "visibility/TileLines.h"
#include "visibility/TilePlanes.h"
#include "visibility/TileScene.h"

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::onFace;
using Samples::PolygonBuilder;
using Samples::Random;
using Samples::rectangle;
using Samples::TileScene;
using Samples::unitsOf;

const Tile Middle{0, unitsOf(-0.25), unitsOf(-0.25), unitsOf(0.25), unitsOf(0.25)};

Segment segment(Coordinate x0, Coordinate y0, Coordinate x1, Coordinate y1) {
  return makeSegment(0, x0, y0, x1, y1, 1, false);
}

// A tile, gathered and not yet swept.
class Lines {
 public:
  explicit Lines(const PolygonScene& scene, const Tile& tile = Middle)
      : content(scene, tile), planes(*content.polygons), lines(*content.polygons) {
    planes.gather(tile, content.content());
    lines.gather(tile, content.content(), planes);
  }

  TileScene content;
  TilePlanes planes;
  TileLines lines;
};

TEST(TileLines, ATileHoldsItsRightAndUpperSideOnly) {
  const Tile tile{0, 0, 0, 100, 100};
  EXPECT_TRUE(touchesTile(segment(10, 10, 20, 30), tile));
  EXPECT_TRUE(touchesTile(segment(-50, 50, 150, 60), tile));
  EXPECT_TRUE(touchesTile(segment(100, 20, 100, 80), tile));
  EXPECT_FALSE(touchesTile(segment(0, 20, 0, 80), tile));
  EXPECT_TRUE(touchesTile(segment(20, 100, 80, 100), tile));
  EXPECT_FALSE(touchesTile(segment(20, 0, 80, 0), tile));
  EXPECT_FALSE(touchesTile(segment(101, 0, 200, 90), tile));
  // Past a corner, within the box of the segment.
  EXPECT_FALSE(touchesTile(segment(-90, 50, 50, 190), tile));
  EXPECT_TRUE(touchesTile(segment(-90, 0, 50, 140), tile));
}

TEST(TileLinesProperty, ASegmentInATileIsInOneOfItsHalves) {
  Random random(21);
  int touched = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto c = [&] { return static_cast<Coordinate>(random.below(24)) - 12; };
    const Segment s = segment(c(), c(), c(), c());
    if (s.x0 == s.x1 && s.y0 == s.y1) continue;
    const Tile tile{0, -4, -6, 6, 4};
    const Coordinate middle = c() / 4;
    Tile left = tile;
    Tile right = tile;
    left.x1 = right.x0 = middle;
    Tile low = tile;
    Tile high = tile;
    low.y1 = high.y0 = middle;
    const bool whole = touchesTile(s, tile);
    EXPECT_EQ(whole, touchesTile(s, left) || touchesTile(s, right)) << i;
    EXPECT_EQ(whole, touchesTile(s, low) || touchesTile(s, high)) << i;
    touched += whole ? 1 : 0;
  }
  EXPECT_GT(touched, 2000);
}

TEST(TileLines, AnEdgeOfTwoPolygonsIsOneLine) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.2, -0.1, 0.0, 0.1, 1.0));
  builder.add(rectangle(0.0, -0.1, 0.2, 0.1, 1.0));
  const Lines tile(builder.scene);
  EXPECT_EQ(7u, tile.lines.all().size());
  int shared = 0;
  for (const TileLines::Line& line : tile.lines.all()) shared += line.ownerCount == 2 ? 1 : 0;
  EXPECT_EQ(1, shared);
}

TEST(TileLines, StopsRunFromTheLeftSideToTheRightOne) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.2, -0.1, 0.05, 0.1, 1.0));
  builder.add(rectangle(-0.1, -0.3, 0.2, 0.05, 2.0));
  Lines tile(builder.scene);
  tile.lines.start();
  ASSERT_TRUE(tile.lines.advance());
  EXPECT_TRUE(tile.lines.change().first);
  EXPECT_EQ(Middle.x0, tile.lines.change().x);
  Coordinate last = tile.lines.change().x;
  int stops = 1;
  while (tile.lines.advance()) {
    EXPECT_LT(last, tile.lines.change().x);
    last = tile.lines.change().x;
    ++stops;
  }
  EXPECT_EQ(Middle.x1, last);
  EXPECT_TRUE(tile.lines.change().last);
  // The sides of the tile and those of the two rectangles.
  EXPECT_EQ(6, stops);
}

TEST(TileLines, TheLineWhereTwoPlanesMeetIsAddedAndDropped) {
  PolygonBuilder builder;
  builder.add(rectangle(-0.5, -0.5, 0.5, 0.1, 1.0, 3.0));
  builder.add(rectangle(-0.5, -0.1, 0.5, 0.5, 3.0, 1.0));
  // Farther below, so that the line is not upright.
  builder.scene.points[0] = onFace(-0.5, -0.5, 1.0 / 0.9);
  builder.scene.points[3] = onFace(0.5, -0.5, 1.0 / (1.0 / 3.0 - 0.1));
  Lines tile(builder.scene);
  const std::size_t edges = tile.lines.all().size();
  tile.lines.addCrossingLine(tile.planes, 0, 1);
  ASSERT_EQ(2u, tile.planes.count());
  ASSERT_EQ(edges + 1, tile.lines.all().size());
  const TileLines::Line& line = tile.lines.all().back();
  EXPECT_EQ(0, line.crossed[0]);
  EXPECT_EQ(1, line.crossed[1]);
  const CubeFace& face = CubeFaces[0];
  for (const Coordinate x : {line.xa, line.xb}) {
    const Coordinate y = x == line.xa ? line.ya : line.yb;
    const double a = depthAt((*tile.content.polygons)[tile.planes[0].position], face,
                             static_cast<double>(x), static_cast<double>(y));
    const double b = depthAt((*tile.content.polygons)[tile.planes[1].position], face,
                             static_cast<double>(x), static_cast<double>(y));
    EXPECT_NEAR(1.0, a / b, 1e-12);
  }
  tile.lines.dropCrossingLines();
  EXPECT_EQ(edges, tile.lines.all().size());
}

PolygonScene randomTriangles(Random& random, int count) {
  PolygonBuilder builder;
  for (int i = 0; i < count; ++i) {
    const double depth = random.between(1.0, 5.0);
    Samples::Outline outline;
    const double x = random.between(-0.4, 0.4);
    const double y = random.between(-0.4, 0.4);
    for (int k = 0; k < 3; ++k)
      outline.push_back(onFace(x + random.between(-0.3, 0.3), y + random.between(-0.3, 0.3),
                               depth + random.between(-0.5, 0.5)));
    builder.add(outline);
  }
  return builder.scene;
}

// What is said of the gaps behind a stop, in the middle between it and the next one.
void checkGaps(const Lines& tile, int& checked) {
  const TileLines& lines = tile.lines;
  const TileLines::Order& order = lines.behind();
  const Coordinate x = lines.change().x + (lines.change().next - lines.change().x) / 2;
  double last = static_cast<double>(Middle.y0);
  for (std::size_t gap = 0; gap < order.gapCount(); ++gap) {
    const double below = lines.exactHeightAt(order.below(gap), static_cast<double>(x));
    const double above = lines.exactHeightAt(order.above(gap), static_cast<double>(x));
    EXPECT_GE(below, last - 2.0 * static_cast<double>(Snap));
    last = below;
    if (order.isEmpty(gap) || above - below < 1e6) continue;
    const auto y = static_cast<Coordinate>(0.5 * (below + above));
    for (std::size_t slot = 0; slot < tile.planes.count(); ++slot) {
      const bool isIn = (lines.maskBehind(gap)[slot / 64] >> (slot % 64) & 1) != 0;
      const std::int32_t position = tile.planes[static_cast<std::int32_t>(slot)].position;
      EXPECT_EQ(tile.content.holds(position, x, y), isIn) << "slot " << slot << ", gap " << gap;
      ++checked;
    }
  }
}

TEST(TileLinesProperty, AGapIsCoveredByThePolygonsThatHoldItsMiddle) {
  Random random(22);
  int checked = 0;
  for (int i = 0; i < 42; ++i) {
    SCOPED_TRACE(i);
    Lines tile(randomTriangles(random, i < 40 ? 12 : 80));
    tile.lines.start();
    while (tile.lines.advance())
      if (!tile.lines.change().last && tile.lines.change().next - tile.lines.change().x > 1000)
        checkGaps(tile, checked);
  }
  EXPECT_GT(checked, 100000);
}

}  // namespace
}  // namespace Lumivane::Visibility
