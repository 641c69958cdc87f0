// The tests of pairs of faces take no memory: counted by an operator new of this program's own.

#include "kernel/BoxTree.h"
#include "kernel/Classify.h"

#include <cmath>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {
std::size_t allocationCount = 0;
}

void* operator new(std::size_t size) {
  ++allocationCount;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace Lumivane::Test {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;

/// Polygons of 3 to 20 points in planes of all directions, so near each other that many overlap.
Kernel::FaceShapes randomShapes(int count) {
  std::mt19937_64 random(81);
  std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
  Kernel::FaceShapes shapes;
  for (int i = 0; i < count; ++i) {
    const Vec3 centre{coordinate(random), coordinate(random), coordinate(random)};
    const Vec3 u{coordinate(random), coordinate(random), coordinate(random)};
    const Vec3 v{coordinate(random), coordinate(random), coordinate(random)};
    std::vector<Vec3> corners;
    std::vector<Vec2> outline;
    const int corner = 3 + i % 18;
    for (int k = 0; k < corner; ++k) {
      const double angle = 2.0 * std::acos(-1.0) * k / corner;
      corners.push_back(centre + std::cos(angle) * u + std::sin(angle) * v);
      outline.push_back({corners.back().x, corners.back().y});
    }
    shapes.addFace();
    shapes.addPiece(outline.size(), [&outline](std::size_t k) { return outline[k]; });
    shapes.addSource(corners);
  }
  return shapes;
}

TEST(Allocations, AreCounted) {
  const std::size_t before = allocationCount;
  const std::vector<int> numbers(100);
  EXPECT_EQ(before + 1, allocationCount) << numbers.size();
}

TEST(Allocations, TestsOfPairsMakeNone) {
  const Kernel::FaceShapes shapes = randomShapes(100);
  Kernel::PairScan scan(shapes);
  std::size_t related = 0;
  const std::size_t before = allocationCount;
  for (std::size_t i = 0; i < shapes.faces.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      related += Kernel::classifyPair(shapes, i, j, scan).cell != Kernel::Cell::Apart ? 1 : 0;
  EXPECT_EQ(before, allocationCount);
  EXPECT_GT(related, 1000U);
}

TEST(Allocations, LookingForBoxesMakesNone) {
  const Kernel::FaceShapes shapes = randomShapes(100);
  std::vector<Kernel::Box> boxes;
  for (const Kernel::FaceShapes::Face& face : shapes.faces) boxes.push_back(meetingBox(face));
  const Kernel::BoxTree tree(boxes);
  std::vector<std::uint32_t> found(shapes.faces.size());
  std::size_t met = 0;
  const std::size_t before = allocationCount;
  for (std::uint32_t i = 0; i < shapes.faces.size(); ++i)
    met += tree.findMeeting(boxes[i], i, found.data());
  EXPECT_EQ(before, allocationCount);
  EXPECT_GT(met, 1000U);
}

}  // namespace
}  // namespace Lumivane::Test
