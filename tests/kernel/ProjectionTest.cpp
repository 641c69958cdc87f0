#include "kernel/Angle.h"
#include "kernel/Hemisphere.h"
#include "kernel/projections/EquidistantFisheye.h"
#include "kernel/projections/Equirectangular.h"
#include "kernel/projections/OrthographicFisheye.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

// --- What holds for each ---

class AnyProjection : public ::testing::TestWithParam<const Projection*> {
 protected:
  const Projection& projection = *GetParam();
  std::mt19937 random{5};

  Vec3 directionInFront() {
    std::normal_distribution<double> normal;
    const Vec3 d = {normal(random), normal(random), std::abs(normal(random))};
    return (1.0 / length3(d)) * d;
  }
};

TEST_P(AnyProjection, PlaceAndDirectionAreInverse) {
  for (int i = 0; i < 1000; ++i) {
    const Vec3 d = directionInFront();
    const std::optional<Vec3> back = projection.direction(projection.place(2.5 * d));
    ASSERT_TRUE(back);
    EXPECT_NEAR(0.0, length3(*back - d), 1e-7);
  }
}

TEST_P(AnyProjection, ForwardIsInTheMiddleWithRightAndUpWhereTheyBelong) {
  EXPECT_NEAR(0.0, distance(Vec2{}, projection.place({0, 0, 3})), 1e-15);
  EXPECT_GT(projection.place({1, 0, 1}).x, 0.1);
  EXPECT_GT(projection.place({0, 1, 1}).y, 0.1);
}

TEST_P(AnyProjection, HemisphereJustFitsIntoItsBox) {
  const Vec2 half = projection.halfSize(false);
  EXPECT_NEAR(half.x, projection.place({1, 0, 0}).x, 1e-12);
  EXPECT_NEAR(half.y, projection.place({0, 1, 0}).y, 1e-12);
  EXPECT_FALSE(projection.direction({2.1, 0.0}));
  EXPECT_FALSE(projection.direction({0.0, half.y * 1.01}));
}

// The parallelogram of two small steps on the sphere against that of their places.
TEST_P(AnyProjection, AreaElementIsTheSolidAngleOfALittleOfThePlane) {
  for (int i = 0; i < 500; ++i) {
    const Vec3 d = directionInFront();
    if (d.z < 0.1 || std::hypot(d.x, d.z) < 0.1 || std::hypot(d.x, d.y) < 0.1) continue;
    const Vec3 across = cross(d, Vec3{0, 0, 1});
    const Vec3 a = (1e-5 / length3(across)) * across;
    const Vec3 b = cross(d, a);
    const Vec2 u = projection.place(d + a) - projection.place(d - a);
    const Vec2 v = projection.place(d + b) - projection.place(d - b);
    const double solidAngle = 4.0 * length3(cross(a, b));
    EXPECT_NEAR(
        1.0, projection.areaElement(projection.place(d)) * std::abs(flatCross(u, v)) / solidAngle,
        1e-4);
  }
}

INSTANTIATE_TEST_SUITE_P(Each, AnyProjection,
                         ::testing::Values(&OrthographicFisheye, &Equirectangular,
                                           &EquidistantFisheye),
                         [](const auto& test) { return std::string(test.param->name); });

// --- What is one projection's own ---

TEST(EquidistantFisheye, DistancesFromTheCentreAreAngles) {
  for (const double degrees : {0.0, 1e-6, 10.0, 30.0, 89.0, 90.0}) {
    const double t = toRadians(degrees);
    const Vec2 place = EquidistantFisheye.place({0.0, std::sin(t), std::cos(t)});
    EXPECT_NEAR(degrees / 90.0, place.y, 1e-15);
    EXPECT_EQ(0.0, place.x);
  }
}

// --- Those of shots ---

// Camera coordinates have x to the left, and the middle of a shot's formulas is in degrees.
TEST(ShotProjections, AreThoseOfPicturesUpToRounding) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (int i = 0; i < 1000; ++i) {
    const Vec3 d = {uniform(random), uniform(random), std::abs(uniform(random))};
    const Vec3 camera = {-d.x, d.y, d.z};
    EXPECT_NEAR(0.0, distance(OrthographicFisheye.place(d), planePointRadial(camera)), 1e-7);
    EXPECT_NEAR(0.0, distance(Equirectangular.place(d), planePointSquare(camera)), 1e-7);
  }
}

}  // namespace
}  // namespace Lumivane::Kernel
