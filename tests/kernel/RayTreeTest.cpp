#include "kernel/RayTree.h"
#include "plain/RandomScenes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::RayTree;
using Kernel::SpaceBox;
using Kernel::Vec3;
using Positions = std::set<std::size_t>;

RayTree treeOf(const std::vector<SpaceBox>& boxes) {
  return RayTree(boxes.size(), [&boxes](std::size_t i) { return boxes[i]; });
}

Positions above(const RayTree& tree, Vec3 point) {
  Positions found;
  tree.visitAbove(point, [&found](std::size_t i) { found.insert(i); });
  return found;
}

Positions along(const RayTree& tree, Vec3 from, Vec3 direction, double margin = 1e-9) {
  Positions found;
  tree.visitAlong(from, direction, margin, [&found](std::size_t i) {
    found.insert(i);
    return std::numeric_limits<double>::infinity();
  });
  return found;
}

bool includes(const Positions& found, const Positions& wanted) {
  return std::includes(found.begin(), found.end(), wanted.begin(), wanted.end());
}

// A row of far more boxes than one group holds, so that those of another place are left out.
std::vector<SpaceBox> row(std::size_t count) {
  std::vector<SpaceBox> boxes;
  for (std::size_t i = 0; i < count; ++i) {
    const double x = 10.0 * static_cast<double>(i);
    boxes.push_back({{x, 0.0, 0.0}, {x + 1.0, 1.0, 1.0}});
  }
  return boxes;
}

TEST(RayTree, WithoutBoxesVisitsNothing) {
  EXPECT_EQ(Positions{}, above(RayTree(), {}));
  EXPECT_EQ(Positions{}, along(treeOf({}), {}, {1.0, 0.0, 0.0}));
}

TEST(RayTree, VisitsTheBoxesOverAPointSidesIncluded) {
  const RayTree tree = treeOf(row(100));
  for (const double x : {500.0, 500.5, 501.0}) {
    EXPECT_TRUE(includes(above(tree, {x, 1.0, 1.0}), {50})) << x;
    EXPECT_GT(5U, above(tree, {x, 1.0, 1.0}).size()) << x;
  }
  EXPECT_EQ(Positions{}, above(tree, {500.5, 1.1, 0.0}));
  EXPECT_EQ(Positions{}, above(tree, {500.5, 0.5, 1.1}));
}

TEST(RayTree, VisitsTheBoxesAlongARayAndNoneBehindIt) {
  const RayTree tree = treeOf(row(100));
  EXPECT_EQ(100U, along(tree, {-5.0, 0.5, 0.5}, {1.0, 0.0, 0.0}).size());
  EXPECT_EQ(Positions{}, along(tree, {-5.0, 0.5, 0.5}, {-1.0, 0.0, 0.0}));
  EXPECT_EQ(Positions{}, along(tree, {-5.0, 1.5, 0.5}, {1.0, 0.0, 0.0}));
  EXPECT_EQ(100U, along(tree, {-5.0, 1.5, 0.5}, {1.0, 0.0, 0.0}, 0.6).size());
}

TEST(RayTree, VisitsNoBoxBeyondTheLimit) {
  std::size_t visits = 0;
  treeOf(row(4000)).visitAlong({-5.0, 0.5, 0.5}, {1.0, 0.001, 0.002}, 1e-9, [&](std::size_t) {
    ++visits;
    return 6.0;
  });
  EXPECT_LT(0U, visits);
  EXPECT_GT(20U, visits);
}

TEST(RayTree, EmptyBoxIsNeverVisited) {
  const RayTree tree = treeOf({{}, {{1, 1, 1}, {2, 2, 2}}, {}});
  EXPECT_EQ(Positions{1}, above(tree, {1.5, 1.5, 0.0}));
  EXPECT_EQ(1.0, tree.bounds().low.x);
}

// Far from the origin floats are hundreds of units apart; boxes are counted from one of them.
TEST(RayTreeProperty, VisitsEveryBoxThatIsMet) {
  for (std::uint64_t seed = 0; seed < 60; ++seed) {
    Plain::Random random(seed);
    const double far = seed % 3 == 0 ? 1e9 : 0.0;
    std::vector<SpaceBox> boxes;
    const int count = 1 + random.below(400);
    for (int i = 0; i < count; ++i) {
      const auto corner = random.point(20.0);
      const Vec3 low{far + corner[0], corner[1], corner[2]};
      boxes.push_back({low, low + Vec3{random.between(0, 2), random.between(0, 2), 0.5}});
    }
    const RayTree tree = treeOf(boxes);
    for (int k = 0; k < 40; ++k) {
      const SpaceBox& box = boxes[static_cast<std::size_t>(random.below(count))];
      const Vec3 from = random.below(2) == 0 ? box.low : Vec3{box.high.x, box.low.y, -20.0};
      Positions over;
      for (std::size_t i = 0; i < boxes.size(); ++i)
        if (boxes[i].low.x <= from.x && from.x <= boxes[i].high.x && boxes[i].low.y <= from.y &&
            from.y <= boxes[i].high.y && from.z <= boxes[i].high.z)
          over.insert(i);
      EXPECT_TRUE(includes(above(tree, from), over)) << seed;
      EXPECT_TRUE(over.count(static_cast<std::size_t>(&box - boxes.data())) == 1) << seed;

      const auto direction = random.point(1.0);
      const Vec3 d{direction[0], direction[1], direction[2]};
      Positions met;
      for (std::size_t i = 0; i < boxes.size(); ++i)
        for (double t = 0.0; t < 40.0; t += 0.5) {
          const Vec3 at = from + t * d;
          if (boxes[i].low.x <= at.x && at.x <= boxes[i].high.x && boxes[i].low.y <= at.y &&
              at.y <= boxes[i].high.y && boxes[i].low.z <= at.z && at.z <= boxes[i].high.z)
            met.insert(i);
        }
      EXPECT_TRUE(includes(along(tree, from, d, 1e-15 * (far + 1e3)), met)) << seed;
    }
  }
}

}  // namespace
}  // namespace Lumivane::Test
