#include "kernel/Rings.h"

#include <cmath>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Vec2;

TEST(Rings, RingIsClosedAndThenNoNumberUpToAGroupOfLanesAndOneMore) {
  for (const std::size_t count : {1U, 7U, 8U, 9U, 15U, 16U}) {
    std::vector<Vec2> points(count);
    for (std::size_t k = 0; k < count; ++k)
      points[k] = {static_cast<double>(k) + 1.0, -static_cast<double>(k)};
    Kernel::Rings rings;
    rings.add(points);
    rings.add({{100, 100}});  // what lies behind must not be read
    const Kernel::Ring ring = rings[0];
    ASSERT_EQ(count, ring.count);
    for (std::size_t k = 0; k <= count; ++k) {
      EXPECT_EQ(points[k % count].x, ring.x[k]);
      EXPECT_EQ(points[k % count].y, ring.y[k]);
    }
    for (std::size_t k = count + 1; k < Kernel::padded(count) + Kernel::Lanes; ++k) {
      EXPECT_TRUE(std::isnan(ring.x[k]));
      EXPECT_TRUE(std::isnan(ring.y[k]));
    }
  }
}

TEST(Rings, RingKnowsItsBounds) {
  Kernel::Rings rings;
  rings.add({{0, 5}, {3, 1}, {-2, 2}});
  EXPECT_EQ(-2.0, rings[0].box.xMin);
  EXPECT_EQ(3.0, rings[0].box.xMax);
  EXPECT_EQ(1.0, rings[0].box.yMin);
  EXPECT_EQ(5.0, rings[0].box.yMax);
}

TEST(Rings, LargestIsTheGreatestNumberOfPoints) {
  Kernel::Rings rings;
  EXPECT_EQ(0U, rings.largest());
  rings.add({{0, 0}, {1, 0}, {0, 1}});
  rings.add({});
  EXPECT_EQ(2U, rings.size());
  EXPECT_EQ(0U, rings[1].count);
  EXPECT_EQ(3U, rings.largest());
}

}  // namespace
}  // namespace Lumivane::Test
