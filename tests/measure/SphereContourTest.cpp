#include "kernel/SphereContour.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

double uniform(std::mt19937_64& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

Vec2 inDisc(std::mt19937_64& random, double largest = 0.99) {
  const double radius = largest * std::sqrt(uniform(random, 0, 1));
  const double angle = uniform(random, 0, 2 * Pi);
  return {radius * std::cos(angle), radius * std::sin(angle)};
}

// Simpson's rule over the way from a to b; `rate` is the integrand by the way's share.
template <class Rate>
double integral(Rate rate) {
  constexpr int N = 2000;
  double sum = rate(0.0) + rate(1.0);
  for (int i = 1; i < N; ++i) sum += (i % 2 == 1 ? 4 : 2) * rate(static_cast<double>(i) / N);
  return sum / (3 * N);
}

Vec2 between(Vec2 a, Vec2 b, double t) { return a + t * (b - a); }

TEST(SphereContourProperty, LineSolidAngleIsTheIntegralAlongALine) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200; ++i) {
    const Vec2 a = inDisc(random);
    const Vec2 b = inDisc(random);
    const DiscLine line = discLine(a, b);
    const double expected = integral([a, b](double t) {
      const Vec2 p = between(a, b, t);
      const double square = dot(p, p);
      return (1 - heightOnHemisphere(p)) * flatCross(a, b) / square;
    });
    EXPECT_NEAR(expected, lineSolidAngle(line, a, b), 1e-8);
  }
}

TEST(SphereContourProperty, ArcTermIsTheLimitOfManyLines) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 50; ++i) {
    const Vec3 a = directionOfDisc(inDisc(random));
    const Vec3 b = directionOfDisc(inDisc(random));
    double sum = 0.0;
    Vec2 last = {a.x, a.y};
    for (int k = 1; k <= 4000; ++k) {
      const Vec3 mixed = a + (k / 4000.0) * (b - a);
      const double length = length3(mixed);
      const Vec2 next = {mixed.x / length, mixed.y / length};
      const DiscLine line = discLine(last, next);
      sum += lineSolidAngle(line, last, next);
      last = next;
    }
    EXPECT_NEAR(sum, arcTerm(a, b), 1e-5);
  }
}

TEST(SphereContour, ALineThroughTheCentreEnclosesNothing) {
  const Vec2 a = {-0.2, 0.0};
  const Vec2 b = {0.7, 0.0};
  EXPECT_EQ(0.0, lineSolidAngle(discLine(a, b), a, b));
  EXPECT_EQ(0.0, arcTerm(directionOfDisc({0.6, 0}), directionOfDisc({-0.3, 0})));
}

TEST(SphereContour, TheRimEnclosesTheHemisphere) {
  double sum = 0.0;
  for (int i = 0; i < 12; ++i) {
    const auto rim = [](int k) { return Vec3{std::cos(k * Pi / 6), std::sin(k * Pi / 6), 0.0}; };
    sum += arcTerm(rim(i), rim(i + 1));
  }
  EXPECT_NEAR(2 * Pi, sum, 1e-14);
}

// A line that nearly touches the rim encloses nearly all that its end points do with the centre:
// the sector of an upright slice of the hemisphere.
TEST(SphereContour, NothingIsLostWhereALineTouchesTheRim) {
  const DiscLine touching = {1.0, {1.0, 0.0}};
  EXPECT_EQ(0.0, lineSolidAngle(touching, {0.0, -1.0}, {0.0, -1.0}));
  for (const double angle : {1e-3, 1e-6, 1e-9}) {
    const Vec2 a = {-std::sin(angle), -std::cos(angle)};
    const Vec2 b = {std::sin(angle), -std::cos(angle)};
    EXPECT_NEAR(2 * angle, lineSolidAngle(discLine(a, b), a, b), 4 * angle * angle + 1e-15);
  }
}

TEST(SphereContour, ALineFromRimToRimHasTheSolidAngleOfItsSlice) {
  for (const double d : {0.0, 0.1, 0.5, 0.9}) {
    const double s = std::sqrt(1 - d * d);
    const double expected = Pi * d - 2 * std::atan2(d, s);
    const Vec2 a = {-s, -d};
    const Vec2 b = {s, -d};
    EXPECT_NEAR(expected, lineSolidAngle(discLine(a, b), a, b), 1e-12) << d;
    EXPECT_NEAR(-expected, lineSolidAngle(discLine(b, a), b, a), 1e-12) << d;
  }
}

TEST(SphereContourProperty, LinesOfAnglesAreTheirIntegrals) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 200; ++i) {
    const Vec2 a = {uniform(random, -1.5, 1.5), uniform(random, -1.5, 1.5)};
    const Vec2 b = i % 5 == 0 ? Vec2{uniform(random, -1.5, 1.5), a.y}
                              : Vec2{uniform(random, -1.5, 1.5), uniform(random, -1.5, 1.5)};
    EXPECT_NEAR(integral([a, b](double t) { return -std::sin(between(a, b, t).y) * (b.x - a.x); }),
                angleLineSolidAngle(a, b), 1e-12);
    const double factor = integral([a, b](double t) {
      const Vec2 p = between(a, b, t);
      return std::sin(p.x) * std::cos(p.y) * std::cos(p.y) * (b.y - a.y) / Pi;
    });
    EXPECT_NEAR(factor, angleLineViewFactor(a, b), 1e-12);
  }
}

TEST(SphereContourProperty, ArcsOfAnglesAreTheLimitsOfManyLines) {
  std::mt19937_64 random(4);
  for (int i = 0; i < 50; ++i) {
    const Vec2 a = {uniform(random, -1.5, 1.5), uniform(random, -1.5, 1.5)};
    const Vec2 b = {uniform(random, -1.5, 1.5), uniform(random, -1.5, 1.5)};
    const Vec3 from = directionOfAngles(a);
    const Vec3 to = directionOfAngles(b);
    double solidAngle = 0.0;
    double viewFactor = 0.0;
    Vec2 last = a;
    for (int k = 1; k <= 4000; ++k) {
      const Vec3 p = from + (k / 4000.0) * (to - from);
      const Vec2 next = {std::atan2(p.x, p.z), std::asin(p.y / length3(p))};
      solidAngle += angleLineSolidAngle(last, next);
      viewFactor += angleLineViewFactor(last, next);
      last = next;
    }
    EXPECT_NEAR(solidAngle, angleArcSolidAngle(a, b), 1e-5);
    EXPECT_NEAR(viewFactor, angleArcViewFactor(a, b), 1e-5);
  }
}

}  // namespace
}  // namespace Lumivane::Kernel
