#include "kernel/ConvexArea.h"

#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::isInConvexArea;
using Kernel::Vec3;

const std::vector<Vec3> Square = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};

TEST(ConvexArea, TheCentreIsInside) { EXPECT_TRUE(isInConvexArea({1, 1, 0}, Square)); }

TEST(ConvexArea, AnEdgeIsInside) {
  EXPECT_TRUE(isInConvexArea({1, 0, 0}, Square));
  EXPECT_TRUE(isInConvexArea({2, 0.3, 0}, Square));
}

TEST(ConvexArea, ACornerIsOutside) { EXPECT_FALSE(isInConvexArea({2, 2, 0}, Square)); }

TEST(ConvexArea, FarAwayIsOutside) { EXPECT_FALSE(isInConvexArea({100, 1, 0}, Square)); }

TEST(ConvexArea, AboveThePlaneIsOutside) { EXPECT_FALSE(isInConvexArea({1, 1, 0.5}, Square)); }

TEST(ConvexArea, NoPolygonHasNoInside) { EXPECT_FALSE(isInConvexArea({0, 0, 0}, {})); }

}  // namespace
}  // namespace Lumivane::Test
