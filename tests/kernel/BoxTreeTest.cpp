#include "kernel/BoxTree.h"
#include "support/Extremes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Box;
using Positions = std::vector<std::uint32_t>;

Positions meeting(const Kernel::BoxTree& tree, const Box& box, std::uint32_t limit) {
  Positions found(limit + 1);
  found.resize(tree.findMeeting(box, limit, found.data()));
  return found;
}

// Every box is asked.
Positions plainMeeting(const std::vector<Box>& boxes, const Box& box, std::uint32_t limit) {
  Positions found;
  for (std::uint32_t k = 0; k < limit; ++k)
    if (Kernel::boxesMeet(box, boxes[k])) found.push_back(k);
  return found;
}

TEST(BoxTree, WithoutBoxesFindsNothing) {
  EXPECT_EQ(Positions{}, meeting(Kernel::BoxTree({}), {0, 1, 0, 1}, 0));
}

TEST(BoxTree, FindsTheBoxesThatMeetInAscendingOrder) {
  const std::vector<Box> boxes{{0, 1, 0, 1}, {5, 6, 5, 6}, {1, 2, 1, 2}, {0, 9, 0, 9}};
  const Kernel::BoxTree tree(boxes);
  EXPECT_EQ((Positions{0, 2, 3}), meeting(tree, {1, 1, 1, 1}, 4));
  EXPECT_EQ((Positions{1, 3}), meeting(tree, {5, 9, 5, 9}, 4));
}

TEST(BoxTree, LeavesOutPositionsFromTheLimitOn) {
  const Kernel::BoxTree tree(std::vector<Box>(20, Box{0, 1, 0, 1}));
  EXPECT_EQ((Positions{0, 1, 2}), meeting(tree, {0, 1, 0, 1}, 3));
  EXPECT_EQ(Positions{}, meeting(tree, {0, 1, 0, 1}, 0));
}

TEST(BoxTree, BoxThatIsNoNumberMeetsNothing) {
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  const Kernel::BoxTree tree({{none, none, none, none}, {0, 1, 0, 1}});
  EXPECT_EQ(Positions{1}, meeting(tree, {0, 1, 0, 1}, 2));
  EXPECT_EQ(Positions{}, meeting(tree, {none, none, none, none}, 2));
}

Box anyBox(std::mt19937_64& random, int kind) {
  if (kind == 0) {
    const auto side = [&random] { return anyDouble(random); };
    const double xMin = side();
    const double xMax = side();
    const double yMin = side();
    return {xMin, xMax, yMin, side()};
  }
  std::uniform_real_distribution<double> place(-1.0, 1.0);
  std::uniform_real_distribution<double> size(0.0, kind == 1 ? 0.05 : 1.0);
  const double x = place(random);
  const double y = place(random);
  const double width = size(random);
  return {x, x + width, y, y + size(random)};
}

TEST(BoxTreeProperty, FindsWhatAskingEveryBoxFinds) {
  std::mt19937_64 random(20261121);
  std::size_t found = 0;
  for (int i = 0; i < 300; ++i) {
    std::vector<Box> boxes(random() % 700);
    for (Box& box : boxes) box = anyBox(random, i % 3);
    const Kernel::BoxTree tree(boxes);
    for (int k = 0; k < 20; ++k) {
      const Box box = anyBox(random, i % 3);
      const auto limit = static_cast<std::uint32_t>(random() % (boxes.size() + 1));
      const Positions expected = plainMeeting(boxes, box, limit);
      ASSERT_EQ(expected, meeting(tree, box, limit)) << "case " << i << ", box " << k;
      found += expected.size();
    }
  }
  EXPECT_GT(found, 10000U);
}

TEST(BoxTreeProperty, FindsTheBoxesThatEncloseOne) {
  std::mt19937_64 random(20261122);
  std::size_t found = 0;
  for (int i = 0; i < 300; ++i) {
    std::vector<Box> boxes(random() % 700);
    for (Box& box : boxes) box = anyBox(random, i % 3);
    const Kernel::BoxTree tree(boxes);
    for (int k = 0; k < 20; ++k) {
      const Box box = anyBox(random, 1);
      Positions expected;
      for (std::uint32_t n = 0; n < boxes.size(); ++n)
        if (boxes[n].xMin <= box.xMin && boxes[n].xMax >= box.xMax && boxes[n].yMin <= box.yMin &&
            boxes[n].yMax > box.yMax)
          expected.push_back(n);
      Positions actual(boxes.size() + 1);
      actual.resize(tree.findEnclosing(box, actual.data()));
      std::sort(actual.begin(), actual.end());
      ASSERT_EQ(expected, actual) << "case " << i << ", box " << k;
      found += expected.size();
    }
  }
  EXPECT_GT(found, 10000U);
}

TEST(BoxTree, BoxesThatTouchOneEncloseItOnAllSidesButTheUpperOne) {
  const Kernel::BoxTree tree({{0, 2, 0, 2}, {0, 1, 0, 2}, {0, 1, 0, 1}});
  Positions found(4);
  found.resize(tree.findEnclosing({0, 1, 0, 1}, found.data()));
  std::sort(found.begin(), found.end());
  EXPECT_EQ((Positions{0, 1}), found);
}

}  // namespace
}  // namespace Lumivane::Test
