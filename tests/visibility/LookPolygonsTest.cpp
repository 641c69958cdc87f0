#include "visibility/LookPolygons.h"
#include "visibility/TileScene.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using namespace Samples;

PolygonScene manyRectangles() {
  PolygonBuilder builder;
  for (int i = 0; i < 20; ++i) {
    const double at = -0.9 + 0.08 * i;
    builder.add(rectangle(at, at, at + 0.2, at + 0.1, 2.0 + i));
  }
  // One that lies on several faces of the cube.
  builder.add(rectangle(-3.0, -2.0, 4.0, 5.0, 40.0));
  return builder.scene;
}

void expectSame(const LookPolygons& polygons, std::int32_t position, const LookPolygons& others,
                std::int32_t other) {
  const LookPolygon& a = polygons[position];
  const LookPolygon& b = others[other];
  EXPECT_EQ(a.number, b.number);
  EXPECT_EQ(a.region, b.region);
  EXPECT_EQ(a.cornerParity, b.cornerParity);
  for (std::size_t face = 0; face < FaceCount; ++face) {
    const std::uint32_t count = a.firstSegment[face + 1] - a.firstSegment[face];
    ASSERT_EQ(count, b.firstSegment[face + 1] - b.firstSegment[face]);
    for (std::uint32_t k = 0; k < count; ++k) {
      const Segment& s = polygons.segment(a.firstSegment[face] + k);
      const Segment& t = others.segment(b.firstSegment[face] + k);
      EXPECT_EQ(s.x0, t.x0);
      EXPECT_EQ(s.y1, t.y1);
      EXPECT_EQ(s.edge, t.edge);
      EXPECT_EQ(s.face, t.face);
    }
  }
}

// Needs some polygons, and looks whether they are the same wherever they are moved.
class User : public PolygonUser {
 public:
  explicit User(std::vector<std::int32_t> positions) : held(std::move(positions)) {}
  void addPositions(std::vector<std::int32_t>& positions) const override {
    positions.insert(positions.end(), held.begin(), held.end());
  }
  void follow(const MovedPolygons& moved) override {
    shifts.clear();
    for (std::int32_t& position : held) {
      position = moved.positionOf(position);
      shifts.push_back(moved.segmentsMoved(position));
    }
  }

  std::vector<std::int32_t> held;
  std::vector<std::uint32_t> shifts;
};

TEST(LookPolygons, ThoseThatAreNeededAreAsTheyWereInTheirNewPlaces) {
  const TileScene tile(manyRectangles(), {0, -CubeHalf, -CubeHalf, CubeHalf, CubeHalf});
  const LookPolygons& all = *tile.polygons;
  LookPolygons some(tile.setup);
  EXPECT_FALSE(some.isFull());
  const auto count = static_cast<std::int32_t>(tile.state.polygonCount());
  std::vector<std::int32_t> places;
  for (std::int32_t i = 0; i < count; ++i) places.push_back(some.find(i));
  User first({20, 3, 4});
  User second({21, LookPolygons::Beyond, 3, 11});
  some.addUser(first);
  some.addUser(second);
  some.forgetUnused();
  EXPECT_EQ(first.held, (std::vector<std::int32_t>{4, 1, 2}));
  EXPECT_EQ(second.held, (std::vector<std::int32_t>{5, 0, 1, 3}));
  const std::vector<std::int32_t> before = {LookPolygons::Beyond, 3, 4, 11, 20, 21};
  for (std::int32_t i = 0; i < 6; ++i)
    expectSame(some, i, all, before[static_cast<std::size_t>(i)]);
  EXPECT_EQ(all[20].firstSegment[0] - first.shifts[0], some[4].firstSegment[0]);
  EXPECT_EQ(all[11].firstSegment[3] - second.shifts[3], some[3].firstSegment[3]);
  some.removeUser();
  some.forgetUnused();
  EXPECT_EQ(first.held, (std::vector<std::int32_t>{3, 1, 2}));
  // Those that are kept are found, and the others are worked out once more.
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t found = some.find(i);
    EXPECT_EQ(found, some.find(i));
    EXPECT_EQ(some[found].number, i);
    expectSame(some, found, all, places[static_cast<std::size_t>(i)]);
  }
}

// A large triangle, and beside it small ones that share its corners or have their own: its corners
// get other numbers so.
PolygonScene triangleAmongOthers(const Outline& triangle, bool shared) {
  PolygonBuilder builder;
  for (std::size_t i = 3; i-- > 0;) {
    const Vector at = shared ? triangle[i] : plus(triangle[i], {0.3, 0.4, 0.5});
    builder.add({at, plus(at, {0.1, 0, 0}), plus(at, {0, 0.1, 0})});
  }
  builder.add(triangle);
  return builder.scene;
}

TEST(LookPolygons, AnArcCrossesTheBordersOfTheCubeInTheSamePlacesWhateverNumbersItsEndsHave) {
  const Tile face = {0, -CubeHalf, -CubeHalf, CubeHalf, CubeHalf};
  Random random(8);
  int others = 0;
  for (int i = 0; i < 60; ++i) {
    const Outline triangle = {random.vector(5.0), random.vector(5.0), random.vector(5.0)};
    std::vector<Segment> found[2];
    std::vector<bool> rises[2];
    for (const std::size_t shared : {0U, 1U}) {
      const TileScene tile(triangleAmongOthers(triangle, shared == 1), face);
      const IndexState& state = tile.state;
      std::int32_t number = 0;
      while (state.regions[static_cast<std::size_t>(number)] != 3) ++number;
      LookPolygons polygons(tile.setup);
      const LookPolygon& polygon = polygons[polygons.find(number)];
      for (std::uint32_t k = polygon.firstSegment[0]; k < polygon.firstSegment[FaceCount]; ++k)
        found[shared].push_back(polygons.segment(k));
      const auto first =
          static_cast<std::size_t>(state.cornerOffsets[static_cast<std::size_t>(number)]);
      for (const std::size_t k : {0U, 1U, 2U})
        rises[shared].push_back(state.cornerVertices[first + k] <
                                state.cornerVertices[first + (k + 1) % 3]);
    }
    if (rises[0] != rises[1]) ++others;
    ASSERT_EQ(found[0].size(), found[1].size());
    for (std::size_t k = 0; k < found[0].size(); ++k) {
      EXPECT_EQ(found[0][k].face, found[1][k].face);
      EXPECT_EQ(found[0][k].x0, found[1][k].x0);
      EXPECT_EQ(found[0][k].y0, found[1][k].y0);
      EXPECT_EQ(found[0][k].x1, found[1][k].x1);
      EXPECT_EQ(found[0][k].y1, found[1][k].y1);
    }
  }
  EXPECT_GT(others, 10);
}

}  // namespace
}  // namespace Lumivane::Visibility
