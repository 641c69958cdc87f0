#include "kernel/HiderSearch.h"
#include "support/Extremes.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Box;
using Kernel::Cell;
using Kernel::FaceShapes;
using Kernel::HiderSearch;
using Kernel::Vec2;
using Kernel::Vec3;
using Random = std::mt19937_64;

double anyIn(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// A rectangle across the line of sight, with its central projection; on a lattice if asked for, so
// that edges fall together.
void addRectangle(FaceShapes& shapes, Random& random, bool onLattice) {
  const auto place = [&](double low, double high) {
    return onLattice ? std::floor(anyIn(random, low, high)) : anyIn(random, low, high);
  };
  const double x = place(1, 6);
  const double half = random() % 4 == 0 ? 3.0 * x : anyIn(random, 0.1, 0.6) * x;
  const double y = place(-2, 2) * x;
  const double z = place(-2, 2) * x;
  const double lean = onLattice ? 0.0 : anyIn(random, -0.2, 0.2);
  std::vector<Vec3> corners;
  for (const Vec2 side : {Vec2{-1, -1}, Vec2{1, -1}, Vec2{1, 1}, Vec2{-1, 1}})
    corners.push_back({x + lean * side.x, y + half * side.x, z + half * side.y});
  if (random() % 3 == 0) corners = {corners[3], corners[2], corners[1], corners[0]};
  shapes.addPiece(4, [&](std::size_t k) {
    return Vec2{-corners[k].y / corners[k].x, corners[k].z / corners[k].x};
  });
  shapes.addSource(corners);
}

// A triangle of coordinates at their worst.
void addWildTriangle(FaceShapes& shapes, Random& random) {
  const std::vector<Vec2> outline{anyVec2(random), anyVec2(random), anyVec2(random)};
  shapes.addPiece(3, [&](std::size_t k) { return outline[k]; });
  shapes.addSource({anyVec3(random), anyVec3(random), anyVec3(random)});
}

FaceShapes anyShapes(Random& random, int kind) {
  FaceShapes shapes;
  const std::size_t count = 1 + random() % 60;
  for (std::size_t i = 0; i < count; ++i) {
    shapes.addFace();
    const std::size_t pieces = random() % 4 == 0 ? 1 + random() % 3 : 1;
    for (std::size_t k = 0; k < pieces; ++k) {
      if (kind == 2 && random() % 3 == 0)
        addWildTriangle(shapes, random);
      else
        addRectangle(shapes, random, kind == 1);
    }
  }
  return shapes;
}

std::vector<Box> boxesOf(const FaceShapes& shapes) {
  std::vector<Box> boxes;
  for (const FaceShapes::Face& face : shapes.faces) boxes.push_back(Kernel::meetingBox(face));
  return boxes;
}

// Every pair is asked.
bool isHiddenByAny(const FaceShapes& shapes, std::size_t face, Kernel::PairScan& scan) {
  for (std::size_t other = 0; other < shapes.faces.size(); ++other)
    if (other != face && Kernel::isHiddenBy(shapes, face, other, scan)) return true;
  return false;
}

TEST(HiderSearchProperty, FindsAHiderWhereAnyPairHasOneAndNoneElsewhere) {
  Random random(20261124);
  std::size_t hidden = 0;
  std::size_t seen = 0;
  for (int i = 0; i < 600; ++i) {
    const FaceShapes shapes = anyShapes(random, i % 3);
    const std::vector<Box> boxes = boxesOf(shapes);
    const Kernel::BoxTree tree(boxes);
    const HiderSearch search(shapes, boxes, tree);
    Kernel::PairScan scan(shapes);
    std::vector<std::uint32_t> found(boxes.size() + 1);
    for (std::uint32_t face = 0; face < boxes.size(); ++face) {
      const std::uint32_t hider = search.hiderOf(face, scan, found.data());
      ASSERT_EQ(isHiddenByAny(shapes, face, scan), hider != HiderSearch::None)
          << "scene " << i << ", face " << face;
      if (hider == HiderSearch::None) {
        ++seen;
        continue;
      }
      ++hidden;
      EXPECT_NE(face, hider);
      EXPECT_TRUE(Kernel::isHiddenBy(shapes, face, hider, scan));
    }
  }
  EXPECT_GT(hidden, 3000U);
  EXPECT_GT(seen, 3000U);
}

// Adds a face of one piece in a plane across the line of sight.
void addFlat(FaceShapes& shapes, const std::vector<Vec2>& outline, double distance) {
  shapes.addFace();
  shapes.addPiece(outline.size(), [&](std::size_t k) { return outline[k]; });
  shapes.addSource({{distance, -1, -1}, {distance, 1, -1}, {distance, 1, 1}, {distance, -1, 1}});
}

TEST(HiderSearch, FaceThatCountsAsInsideByARoundingBesideItsHidersBoxIsFound) {
  // An edge as high as the smallest number is crossed at -0.3, as computed, left of both its ends.
  FaceShapes shapes;
  addFlat(shapes, {{0.0, 0.0}, {0.7, 5e-324}, {-0.1, 1.0}}, 1);
  addFlat(shapes, {{-0.2, 0.0}, {-0.05, 0.0}, {-0.15, 0.0}}, 2);
  Kernel::PairScan scan(shapes);
  ASSERT_TRUE(Kernel::isHiddenBy(shapes, 1, 0, scan));
  const std::vector<Box> boxes = boxesOf(shapes);
  ASSERT_LT(boxes[1].xMin, boxes[0].xMin);
  const Kernel::BoxTree tree(boxes);
  std::vector<std::uint32_t> found(3);
  EXPECT_EQ(0U, HiderSearch(shapes, boxes, tree).hiderOf(1, scan, found.data()));
}

std::uint64_t plainMeetingPairs(const std::vector<Box>& boxes) {
  std::uint64_t count = 0;
  for (std::size_t i = 0; i < boxes.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) count += Kernel::boxesMeet(boxes[i], boxes[j]) ? 1 : 0;
  return count;
}

TEST(MeetingPairsProperty, OfBoxesAreCountedAsByAskingEachPair) {
  Random random(20261125);
  std::uint64_t pairs = 0;
  for (int i = 0; i < 300; ++i) {
    std::vector<Box> boxes(random() % 80);
    for (Box& box : boxes) {
      const bool onLattice = random() % 2 == 0;
      const double x = onLattice ? static_cast<double>(random() % 6) : anyIn(random, 0, 6);
      const double y = onLattice ? static_cast<double>(random() % 6) : anyIn(random, 0, 6);
      box = {x, x + static_cast<double>(random() % 3), y, y + anyIn(random, 0, 2)};
      if (random() % 20 == 0) box = {std::nan(""), std::nan(""), std::nan(""), std::nan("")};
    }
    const std::uint64_t expected = plainMeetingPairs(boxes);
    EXPECT_EQ(expected, Kernel::mostMeetingPairs(boxes)) << "case " << i;
    pairs += expected;
  }
  EXPECT_GT(pairs, 10000U);
}

TEST(MeetingPairsProperty, AreNeverFewerThanMeet) {
  Random random(20261126);
  for (int i = 0; i < 300; ++i) {
    std::vector<Box> boxes(random() % 30);
    for (Box& box : boxes) {
      const double x = anyDouble(random);
      const double y = anyDouble(random);
      box = {x, anyDouble(random), y, anyDouble(random)};
    }
    EXPECT_GE(Kernel::mostMeetingPairs(boxes), plainMeetingPairs(boxes)) << "case " << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
