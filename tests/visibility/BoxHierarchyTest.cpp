#include "visibility/BoxHierarchy.h"
#include "visibility/Polygons.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::Random;

std::vector<FloatBox> randomBoxes(std::size_t count, double size, std::uint64_t seed) {
  Random random(seed);
  std::vector<FloatBox> boxes;
  for (std::size_t i = 0; i < count; ++i) {
    const Vector a = random.vector(100.0);
    const Vector b = Samples::plus(a, random.vector(size));
    const Kernel::Vec3 corners[2] = {{a[0], a[1], a[2]}, {b[0], b[1], b[2]}};
    boxes.push_back(boxAround(corners, 2));
  }
  return boxes;
}

bool holds(const BoxNode& node, const FloatBox& box) {
  for (int k = 0; k < 3; ++k)
    if (box.low[k] < node.low[k] || box.high[k] > node.high[k]) return false;
  return true;
}

bool meet(const BoxNode& node, const FloatBox& box) {
  for (int k = 0; k < 3; ++k)
    if (box.low[k] > node.high[k] || box.high[k] < node.low[k]) return false;
  return true;
}

// Walks the tree; returns how many nodes the longest way down has.
int check(const BoxHierarchy& tree, const std::vector<FloatBox>& boxes, std::size_t number,
          std::vector<int>& found) {
  const BoxNode& node = tree.nodes.at(number);
  if (node.isLeaf()) {
    EXPECT_LE(node.count, BoxHierarchy::LeafSize);
    for (int i = node.first; i < node.first + node.count; ++i) {
      const auto box = static_cast<std::size_t>(tree.order.at(static_cast<std::size_t>(i)));
      EXPECT_TRUE(holds(node, boxes.at(box)));
      ++found.at(box);
    }
    return 1;
  }
  int depth = 0;
  for (std::size_t c = 0; c < 2; ++c) {
    const auto child = static_cast<std::size_t>(node.first) + c;
    const BoxNode& below = tree.nodes.at(child);
    for (int k = 0; k < 3; ++k) {
      EXPECT_GE(below.low[k], node.low[k]);
      EXPECT_LE(below.high[k], node.high[k]);
    }
    depth = std::max(depth, check(tree, boxes, child, found));
  }
  return depth + 1;
}

void expectGood(const std::vector<FloatBox>& boxes) {
  const BoxHierarchy tree = makeHierarchy(boxes);
  std::vector<int> found(boxes.size(), 0);
  EXPECT_LE(check(tree, boxes, 0, found), BoxHierarchy::MostDepth);
  EXPECT_EQ(std::vector<int>(boxes.size(), 1), found);
}

TEST(BoxHierarchy, OfNothingHasNoNodes) {
  const BoxHierarchy tree = makeHierarchy({});
  EXPECT_TRUE(tree.nodes.empty());
  EXPECT_TRUE(tree.order.empty());
}

TEST(BoxHierarchy, UpToFourBoxesAreOneLeaf) {
  for (std::size_t count = 1; count <= 4; ++count) {
    const BoxHierarchy tree = makeHierarchy(randomBoxes(count, 1.0, 3));
    ASSERT_EQ(1U, tree.nodes.size());
    EXPECT_EQ(static_cast<int>(count), tree.nodes[0].count);
  }
}

TEST(BoxHierarchy, BoxesHoldTheirPointsWhateverRoundingDoes) {
  Random random(4);
  for (int i = 0; i < 2000; ++i) {
    const double scale = std::ldexp(1.0, random.below(200) - 100);
    const Vector p = random.vector(scale);
    const Kernel::Vec3 point{p[0], p[1], p[2]};
    const FloatBox box = boxAround(&point, 1);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_LE(static_cast<double>(box.low[k]), p[k]);
      EXPECT_GE(static_cast<double>(box.high[k]), p[k]);
      EXPECT_LE(std::nextafter(box.low[k], box.high[k]), box.high[k]);
    }
  }
}

TEST(BoxHierarchyProperty, EveryBoxIsInOneLeafWithinItsNodes) {
  expectGood(randomBoxes(5, 1.0, 1));
  expectGood(randomBoxes(1000, 1.0, 2));
  expectGood(randomBoxes(3000, 200.0, 3));
}

TEST(BoxHierarchyProperty, EqualBoxesAndBoxesOfAnyMagnitudeAreDividedAllTheSame) {
  expectGood(std::vector<FloatBox>(5000, FloatBox{{1, 2, 3}, {4, 5, 6}}));
  std::vector<FloatBox> boxes;
  for (int i = 0; i < 200; ++i) {
    const auto x = static_cast<float>(std::ldexp(1.0, i - 100));
    boxes.push_back({{x, 0, 0}, {x, 0, 0}});
    boxes.push_back({{-x, x, 0}, {x, x, x}});
  }
  expectGood(boxes);
}

TEST(BoxHierarchyProperty, FindsWhatAskingAllFinds) {
  const std::vector<FloatBox> boxes = randomBoxes(2000, 10.0, 8);
  const BoxHierarchy tree = makeHierarchy(boxes);
  std::size_t visited = 0;
  for (const FloatBox& asked : randomBoxes(100, 20.0, 9)) {
    std::set<int> found;
    std::vector<int> waiting = {0};
    while (!waiting.empty()) {
      const BoxNode& node = tree.nodes.at(static_cast<std::size_t>(waiting.back()));
      waiting.pop_back();
      ++visited;
      if (!meet(node, asked)) continue;
      for (int i = 0; i < std::max(node.count, 2); ++i) {
        if (!node.isLeaf())
          waiting.push_back(node.first + i);
        else
          found.insert(
              tree.order.at(static_cast<std::size_t>(node.first) + static_cast<std::size_t>(i)));
      }
    }
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      const BoxNode single{{boxes[i].low[0], boxes[i].low[1], boxes[i].low[2]},
                           {boxes[i].high[0], boxes[i].high[1], boxes[i].high[2]},
                           0,
                           1};
      if (meet(single, asked)) {
        EXPECT_EQ(1U, found.count(static_cast<int>(i)));
      }
    }
  }
  EXPECT_LT(visited, 100U * 400U);  // of about 1,400 nodes
}

TEST(BoxHierarchy, TheSameBoxesGiveTheSameTree) {
  const BoxHierarchy a = makeHierarchy(randomBoxes(500, 3.0, 5));
  const BoxHierarchy b = makeHierarchy(randomBoxes(500, 3.0, 5));
  EXPECT_EQ(a.order, b.order);
  EXPECT_EQ(a.nodes.size(), b.nodes.size());
}

}  // namespace
}  // namespace Lumivane::Visibility
