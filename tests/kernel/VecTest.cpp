#include "kernel/Vec.h"
#include "support/Thrown.h"
#include "support/Vectors.h"
#include "utils/Shapes.h"

#include <functional>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;

TEST(Vec, ArithmeticIsPerCoordinate) {
  EXPECT_EQ((Vec3{5, 7, 9}), (Vec3{1, 2, 3} + Vec3{4, 5, 6}));
  EXPECT_EQ((Vec3{3, 3, 3}), (Vec3{4, 5, 6} - Vec3{1, 2, 3}));
  EXPECT_EQ((Vec3{-1, 2, -3}), -(Vec3{1, -2, 3}));
  EXPECT_EQ((Vec3{2, 4, 6}), 2.0 * (Vec3{1, 2, 3}));
  EXPECT_EQ((Vec2{4, 6}), (Vec2{1, 2} + Vec2{3, 4}));
  EXPECT_EQ((Vec2{2, 2}), (Vec2{3, 4} - Vec2{1, 2}));
  EXPECT_EQ((Vec2{3, 6}), 3.0 * (Vec2{1, 2}));
}

TEST(Vec, EqualityLooksAtEveryCoordinate) {
  EXPECT_NE((Vec3{1, 2, 3}), (Vec3{0, 2, 3}));
  EXPECT_NE((Vec3{1, 2, 3}), (Vec3{1, 0, 3}));
  EXPECT_NE((Vec3{1, 2, 3}), (Vec3{1, 2, 0}));
  EXPECT_NE((Vec2{1, 2}), (Vec2{0, 2}));
  EXPECT_NE((Vec2{1, 2}), (Vec2{1, 0}));
  EXPECT_EQ((Vec2{0.0, -0.0}), (Vec2{-0.0, 0.0}));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE((Vec2{nan, 0}), (Vec2{nan, 0}));
}

TEST(Vec, DotProductStartsFromPositiveZero) {
  EXPECT_TRUE(sameBits(0.0, Kernel::dot(Vec3{-0.0, -0.0, -0.0}, Vec3{1, 1, 1})));
  EXPECT_TRUE(sameBits(0.0, Kernel::dot(Vec2{-0.0, -0.0}, Vec2{1, 1})));
}

TEST(Vec, DivisionByZeroIsNotDone) {
  EXPECT_EQ((Vec3{1, 2, 3}), Kernel::dividedOrSame({1, 2, 3}, -0.0));
  EXPECT_EQ((Vec3{0.5, 1, 1.5}), Kernel::dividedOrSame({1, 2, 3}, 2.0));
}

TEST(Shapes, ContainersBecomeVectorsAndBack) {
  const std::vector<std::vector<double>> points = {{1, 2, 3}, {4, 5, 6}};
  EXPECT_EQ(points, Utils::toVectors(Utils::toVec3s(points)));
  EXPECT_EQ((std::vector<std::vector<double>>{{1, 2}, {4, 5}}),
            Utils::toVectors(Utils::toVec2s(points)));
}

TEST(Shapes, MissingElementsThrow) {
  const auto expectThrown = [](const std::function<void()>& work) {
    EXPECT_EQ("invalid vector subscript", thrownText<std::out_of_range>(work));
  };
  expectThrown([] { Utils::toVec3({1, 2}); });
  expectThrown([] { Utils::toVec2({1}); });
  expectThrown([] { Utils::toVec3s({{1, 2, 3}, {}}); });
  expectThrown([] { Utils::toVec2s({{1, 2, 3}, {}}); });
  expectThrown([] { Utils::elementAt({1, 2}, 2); });
  EXPECT_EQ(2.0, Utils::elementAt({1, 2}, 1));
}

}  // namespace
}  // namespace Lumivane::Test
