#include "kernel/Angle.h"
#include "kernel/Frame.h"
#include "kernel/Plane.h"
#include "kernel/Vec.h"
#include "plain/Geometry.h"
#include "support/Capture.h"
#include "support/Extremes.h"
#include "support/Thrown.h"
#include "support/Vectors.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/utils/LinearGeometryUtils.h>

#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Geometry = Utils::LinearGeometryUtils;
using Kernel::Vec2;
using Kernel::Vec3;
using Utils::toVector;
using Vector = std::vector<double>;
using Vectors = std::vector<Vector>;

const std::string ZeroLength = "Zero-length vector cannot be normalized\n";
const std::string NoDeterminant = "Error in get reverse matrix: determinant is 0";
const std::string NoRows = "Error in multiply vector 1x3 on matrix 3x3: matrix row number is not 3";
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

const Vectors Square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};

// What is printed, and the text of the exception, of an operation that ends in one.
void expectSubscriptError(const std::string& message, const std::function<void()>& operation) {
  std::string text;
  EXPECT_EQ(message, capturedStdout([&] { text = thrownText<std::out_of_range>(operation); }));
  EXPECT_EQ("invalid vector subscript", text);
}

TEST(CrossProduct, AxesGiveTheThirdAxis) {
  EXPECT_EQ((Vector{0, 0, 1}), Geometry::getCrossProduct({1, 0, 0}, {0, 1, 0}));
  EXPECT_EQ((Vector{0, 0, -1}), Geometry::getCrossProduct({0, 1, 0}, {1, 0, 0}));
}

TEST(CrossProduct, ReadsThreeElements) {
  EXPECT_EQ((Vector{0, 0, 1}), Geometry::getCrossProduct({1, 0, 0, 9}, {0, 1, 0, 9, 9}));
  expectSubscriptError("", [] { Geometry::getCrossProduct({1, 0}, {0, 1, 0}); });
  expectSubscriptError("", [] { Geometry::getCrossProduct({1, 0, 0}, {}); });
}

TEST(DotProduct, SurplusOfTheSecondIsIgnoredWithAMessage) {
  double result = 0.0;
  EXPECT_EQ("vectors in arguments have different sizes\n", capturedStdout([&] {
              result = Geometry::getDotProduct({1, 2}, {1, 2, 3});
            }));
  EXPECT_EQ(5.0, result);
}

TEST(DotProduct, ShorterSecondThrowsAfterTheMessage) {
  expectSubscriptError("vectors in arguments have different sizes\n", [] {
    Geometry::getDotProduct({1, 2, 3}, {1, 2});
  });
}

TEST(DotProduct, TakesAnySize) {
  EXPECT_TRUE(sameBits(0.0, Geometry::getDotProduct({}, {})));
  EXPECT_EQ(30.0, Geometry::getDotProduct({1, 2, 3, 4}, {1, 2, 3, 4}));
  EXPECT_TRUE(sameBits(0.0, Geometry::getDotProduct({-0.0}, {1.0})));  // starts from 0.0
}

TEST(NormalizedVector, ZeroVectorComesBackWithTheMessage) {
  Vector result;
  EXPECT_EQ(ZeroLength, capturedStdout([&] {
              result = Geometry::getNormalizedVector3D({0, 0, 0});
            }));
  EXPECT_EQ((Vector{0, 0, 0}), result);
}

TEST(NormalizedVector, VectorOfLengthZeroComesBackAsItIs) {
  const Vector v = {-0.0, 1e-200, 0.0, 7.0};  // its square is too small for a double
  Vector result;
  EXPECT_EQ(ZeroLength, capturedStdout([&] { result = Geometry::getNormalizedVector3D(v); }));
  EXPECT_TRUE(sameBits(v, result));
}

TEST(NormalizedVector, HasLengthOneWithoutTolerance) {
  EXPECT_EQ((Vector{0.6, 0, 0.8}), Geometry::getNormalizedVector3D({3, 0, 4}));
  EXPECT_EQ((Vector{0, 1, 0}), Geometry::getNormalizedVector3D({0, 1e-100, 0}));
  EXPECT_EQ((Vector{0, 1, 0}), Geometry::getNormalizedVector3D({0, 2, 0, 5}));
  expectSubscriptError("", [] { Geometry::getNormalizedVector3D({0, 0}); });
}

TEST(VectorLength, IsTheRootOfTheSquares) {
  EXPECT_EQ(7.0, Geometry::getVectorLenght3D({2, -3, 6}));
  EXPECT_EQ(5.0, Geometry::getVectorLenght2D({-3, 4}));
}

TEST(VectorLength, SurplusElementsAreIgnoredAndMissingOnesThrow) {
  EXPECT_EQ(7.0, Geometry::getVectorLenght3D({2, -3, 6, 100}));
  EXPECT_EQ(5.0, Geometry::getVectorLenght2D({-3, 4, 100}));
  expectSubscriptError("", [] { Geometry::getVectorLenght3D({1, 2}); });
  expectSubscriptError("", [] { Geometry::getVectorLenght2D({1}); });
}

TEST(VectorBetweenPoints, IsToMinusFrom) {
  EXPECT_EQ((Vector{3, 4, 5}), Geometry::getVector3D({1, 2, 3}, {4, 6, 8}));
  EXPECT_EQ((Vector{3, 4}), Geometry::getVector2D({1, 2}, {4, 6}));
}

TEST(VectorBetweenPoints, LongerPointsAreCutWithTheMessage) {
  Vector v3;
  Vector v2;
  EXPECT_EQ("point in arguments has a size not equal to 3\n", capturedStdout([&] {
              v3 = Geometry::getVector3D({1, 2, 3, 9}, {4, 6, 8});
            }));
  EXPECT_EQ("point in arguments has a size not equal to 2\n", capturedStdout([&] {
              v2 = Geometry::getVector2D({1, 2}, {4, 6, 8});
            }));
  EXPECT_EQ((Vector{3, 4, 5}), v3);
  EXPECT_EQ((Vector{3, 4}), v2);
}

TEST(VectorBetweenPoints, ShorterPointsThrowAfterTheMessage) {
  expectSubscriptError("point in arguments has a size not equal to 3\n", [] {
    Geometry::getVector3D({1, 2}, {3, 4});
  });
  expectSubscriptError("point in arguments has a size not equal to 2\n", [] {
    Geometry::getVector2D({1, 2}, {3});
  });
}

TEST(Distance, OfTwoPointsInThePlaneOrInSpace) {
  EXPECT_EQ(5.0, Geometry::getDistance({0, 0}, {3, 4}));
  EXPECT_EQ(7.0, Geometry::getDistance({1, 1, 1}, {3, -2, 7}));
}

TEST(Distance, OtherSizesGiveMinusOneWithTheMessage) {
  const Vectors wrong[] = {{{0, 0}, {0, 0, 0}}, {{}, {}}, {{1}, {2}}, {{1, 2, 3, 4}, {1, 2, 3, 4}}};
  for (const Vectors& pair : wrong) {
    double result = 0.0;
    EXPECT_EQ("point in arguments has a size not equal to 2 or 3\n",
              capturedStdout([&] { result = Geometry::getDistance(pair[0], pair[1]); }));
    EXPECT_EQ(-1.0, result);
  }
}

TEST(PolygonNormal, SquareHasOppositeNormals) {
  EXPECT_EQ((Vector{0, 0, 1}), Geometry::getPolygonNormal3D(Square));
  EXPECT_EQ((Vector{0, 0, -1}), Geometry::getPolygonNormalReversed3D(Square));
}

TEST(PolygonNormal, TwoPointsHaveTheZeroVectorInSilence) {
  EXPECT_EQ(
      "", capturedStdout([] {
        EXPECT_TRUE(
            sameBits(Vector{0, 0, 0}, Geometry::getPolygonNormal3D({{0, 0, 0}, {1, 0, 0}})));
        EXPECT_TRUE(sameBits(Vector{0, 0, 0}, Geometry::getPolygonNormalReversed3D({{1, 2}, {}})));
        EXPECT_TRUE(sameBits(Vector{0, 0, 0}, Geometry::getPolygonNormal3D({})));
      }));
}

TEST(PolygonNormal, PointsOnALineHaveTheZeroVectorWithTheMessage) {
  const Vectors line = {{0, 0, 0}, {1, 1, 1}, {3, 3, 3}};
  Vector normal;
  Vector reversed;
  EXPECT_EQ(ZeroLength, capturedStdout([&] { normal = Geometry::getPolygonNormal3D(line); }));
  EXPECT_EQ(ZeroLength,
            capturedStdout([&] { reversed = Geometry::getPolygonNormalReversed3D(line); }));
  EXPECT_EQ((Vector{0, 0, 0}), normal);
  EXPECT_EQ((Vector{0, 0, 0}), reversed);
}

TEST(PolygonNormal, RestsOnTheFirstCornerAlone) {
  EXPECT_EQ((Vector{0, 0, 1}),
            Geometry::getPolygonNormal3D({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {}, {5, 5}}));
  expectSubscriptError("", [] { Geometry::getPolygonNormal3D({{0, 0, 0}, {1, 0, 0}, {1, 1}}); });
  expectSubscriptError("", [] {
    Geometry::getPolygonNormalReversed3D({{0}, {1, 0, 0}, {1, 1, 0}});
  });
}

TEST(LineAndPlane, MeetInAPoint) {
  EXPECT_EQ((Vector{1, 2, 5}),
            Geometry::intersectLineAndPlane({0, 0, 1}, {0, 0, 5}, {1, 2, 0}, {0, 0, 1}));
}

TEST(LineAndPlane, ParallelOnesGiveNoFiniteNumber) {
  const Vector beside = Geometry::intersectLineAndPlane({0, 0, 1}, {0, 0, 5}, {1, 2, 0}, {1, 0, 0});
  EXPECT_EQ(Infinity, beside[0]);
  EXPECT_TRUE(std::isnan(beside[1]));
  EXPECT_TRUE(std::isnan(beside[2]));
  const Vector inside = Geometry::intersectLineAndPlane({0, 0, 1}, {0, 0, 5}, {1, 2, 5}, {1, 0, 0});
  for (const double coordinate : inside) EXPECT_TRUE(std::isnan(coordinate));
}

TEST(LineAndPlane, WrongSizeGivesOneMessageAndGoesOn) {
  const std::string message = "point or vector in arguments has a size not equal to 3\n";
  Vector result;
  EXPECT_EQ(message, capturedStdout([&] {
              result = Geometry::intersectLineAndPlane({0, 0, 1, 9}, {0, 0, 5, 9}, {1, 2, 0, 9},
                                                       {0, 0, 1, 9});
            }));
  EXPECT_EQ((Vector{1, 2, 5}), result);
  const Vector good = {0, 0, 1};
  const Vector bad = {0, 0};
  expectSubscriptError(message, [&] { Geometry::intersectLineAndPlane(bad, good, good, good); });
  expectSubscriptError(message, [&] { Geometry::intersectLineAndPlane(good, bad, good, good); });
  expectSubscriptError(message, [&] { Geometry::intersectLineAndPlane(good, good, bad, good); });
  expectSubscriptError(message, [&] { Geometry::intersectLineAndPlane(good, good, good, bad); });
}

TEST(PointTransformedBack, ThirdDirectionIsSecondCrossFirst) {
  EXPECT_EQ((Vector{1, -3, 2}),
            Geometry::getPointTransformedBack3D({1, 2, 3}, {1, 0, 0}, {0, 1, 0}));
}

// Wanted: divided by the determinant, not transformed by the inverse.
TEST(PointTransformedBack, OtherFramesDivideByTheirDeterminant) {
  // First, third and second are (2, 0, 0), (0, 0, -1) and (0, 1, 0): the determinant is 2.
  EXPECT_EQ((Vector{1, -1.5, 1}),
            Geometry::getPointTransformedBack3D({1, 2, 3}, {2, 0, 0}, {0, 1, 0}));
}

TEST(PointTransformedBack, ParallelDirectionsPrintThreeMessagesAndGiveAnEmptyVector) {
  Vector result;
  EXPECT_EQ(ZeroLength + NoDeterminant + NoRows, capturedStdout([&] {
              result = Geometry::getPointTransformedBack3D({1, 2, 3}, {1, 0, 0}, {2, 0, 0});
            }));
  EXPECT_TRUE(result.empty());
}

TEST(PointTransformedBack, ReadsDirectionsOfThree) {
  expectSubscriptError("", [] {
    Geometry::getPointTransformedBack3D({1, 2, 3}, {1, 0}, {0, 1, 0});
  });
  expectSubscriptError("", [] {
    Geometry::getPointTransformedBack3D({1, 2, 3}, {1, 0, 0}, {0, 1});
  });
}

TEST(PointTransformedBack, LongerDirectionsMakeNoMatrix) {
  Vector result = {1.0};
  EXPECT_EQ("Error in get transposed matrix: one row have not 3 columns" + NoDeterminant + NoRows,
            capturedStdout([&] {
              result = Geometry::getPointTransformedBack3D({1, 2, 3}, {1, 0, 0, 0}, {0, 1, 0});
            }));
  EXPECT_TRUE(result.empty());
}

TEST(PointTransformedBack, PointOfAnotherSizeGivesAnEmptyVector) {
  Vector result = {1.0};
  EXPECT_EQ("Error in multiply vector 1x3 on matrix 3x3: Vector size is not 3", capturedStdout([&] {
              result = Geometry::getPointTransformedBack3D({1, 2}, {1, 0, 0}, {0, 1, 0});
            }));
  EXPECT_TRUE(result.empty());
}

TEST(PolygonTransformedBack, TransformsEachPointInOrder) {
  EXPECT_EQ((Vectors{{1, -3, 2}, {0, 0, 0}, {4, -6, 5}}),
            Geometry::getPolygonTransformedBack3D({{1, 2, 3}, {0, 0, 0}, {4, 5, 6}}, {1, 0, 0},
                                                  {0, 1, 0}));
}

TEST(PolygonTransformedBack, SingularFrameIsReportedOnceAndEachPointIsEmpty) {
  Vectors result;
  EXPECT_EQ(ZeroLength + NoDeterminant + NoRows + NoRows, capturedStdout([&] {
              result = Geometry::getPolygonTransformedBack3D({{1, 2, 3}, {4, 5, 6}}, {1, 0, 0},
                                                             {-1, 0, 0});
            }));
  EXPECT_EQ((Vectors{{}, {}}), result);
  EXPECT_EQ(ZeroLength + NoDeterminant, capturedStdout([&] {
              result = Geometry::getPolygonTransformedBack3D({}, {1, 0, 0}, {-1, 0, 0});
            }));
  EXPECT_TRUE(result.empty());
}

TEST(AngleBetweenVectors, IsInDegrees) {
  EXPECT_EQ(90.0, Geometry::getAngleBetweenVectorsInDegrees({1, 0, 0}, {0, 1, 0}, 5));
  EXPECT_EQ(180.0, Geometry::getAngleBetweenVectorsInDegrees({1, 0, 0}, {-3, 0, 0}, 5));
  EXPECT_EQ(45.0, Geometry::getAngleBetweenVectorsInDegrees({1, 0, 0}, {7, 7, 0}, 5));
}

TEST(AngleBetweenVectors, ZeroVectorGivesZero) {
  EXPECT_EQ(0.0, Geometry::getAngleBetweenVectorsInDegrees({0, 0, 0}, {0, 1, 0}, 5));
  EXPECT_EQ(0.0, Geometry::getAngleBetweenVectorsInDegrees({0, 1, 0}, {0, 0, 0}, 5));
  EXPECT_EQ(0.0, Geometry::getAngleBetweenVectorsInDegrees({NotANumber, 1, 0}, {0, 0, 0}, 5));
}

// Multiples of one vector: without the limit acos would give NaN for some of these.
TEST(AngleBetweenVectors, CosinePastOneByRoundingGivesZeroNotNan) {
  int past = 0;
  for (int i = 1; i < 200; ++i) {
    const Vector a = {1.0 / i, 2.0 / i, 0.1 * i};
    const Vector b = {3 * a[0], 3 * a[1], 3 * a[2]};
    const Vector c = {-b[0], -b[1], -b[2]};
    past += Plain::dot(a, b) / (Plain::length(a) * Plain::length(b)) > 1.0;
    EXPECT_EQ(0.0, Geometry::getAngleBetweenVectorsInDegrees(a, b, 5)) << i;
    EXPECT_EQ(180.0, Geometry::getAngleBetweenVectorsInDegrees(a, c, 5)) << i;
  }
  EXPECT_GT(past, 0);
}

TEST(AngleBetweenVectors, RoundsByTheRuleOfRoundD) {
  const double angle = Geometry::getAngleBetweenVectorsInDegrees({1, 2, 3}, {3, -1, 2}, 0);
  EXPECT_EQ(std::round(angle * 100.0) / 100.0,
            Geometry::getAngleBetweenVectorsInDegrees({1, 2, 3}, {3, -1, 2}, 2));
}

TEST(AngleBetweenVectors, FewerThanThreeElementsThrow) {
  expectSubscriptError("", [] { Geometry::getAngleBetweenVectorsInDegrees({1, 2}, {1, 2, 3}, 5); });
  expectSubscriptError("", [] { Geometry::getAngleBetweenVectorsInDegrees({1, 2, 3}, {1, 2}, 5); });
}

TEST(RoundD, RoundsToDigits) {
  EXPECT_EQ(1.23, Geometry::roundD(1.2345, 2));
  EXPECT_EQ(1.2345, Geometry::roundD(1.2345, 0));
  EXPECT_EQ(1.2345, Geometry::roundD(1.2345, -4));
  EXPECT_EQ(2.5, Geometry::roundD(2.5, 7));
}

TEST(RoundD, EachDigitHasItsScaleAndSixIsTheMost) {
  const double expected[] = {0.1, 0.12, 0.123, 0.1235, 0.12346, 0.123457, 0.123457};
  for (int digits = 1; digits <= 7; ++digits)
    EXPECT_EQ(expected[digits - 1], Geometry::roundD(0.123456789, digits));
}

TEST(RoundD, HalvesGoAwayFromZero) {
  EXPECT_EQ(0.3, Geometry::roundD(0.25, 1));
  EXPECT_EQ(-0.3, Geometry::roundD(-0.25, 1));
}

TEST(DegreesAndRadians, FollowTheOrderOfTheirOperations) {
  EXPECT_EQ(57.29577951308232, Geometry::toDegrees(1.0));
  EXPECT_EQ(3.141592653589793, Geometry::toRadians(180.0));
  EXPECT_EQ(0.1 * 3.141592653589793 / 180.0, Geometry::toRadians(0.1));
}

TEST(VectorsProperty, KernelsAndOperationsGiveTheBitsOfTheReferenceImplementation) {
  std::mt19937_64 random(20250302);
  std::string due;
  const std::string printed = capturedStdout([&] {
    for (int i = 0; i < 10000; ++i) {
      const Vec3 a = anyVec3(random);
      const Vec3 b = anyVec3(random);
      const Vector va = toVector(a);
      const Vector vb = toVector(b);
      const Vector cross = Plain::cross(va, vb);
      ASSERT_TRUE(sameBits(cross, toVector(Kernel::cross(a, b)))) << "case " << i;
      ASSERT_TRUE(sameBits(cross, Geometry::getCrossProduct(va, vb))) << "case " << i;
      const double dot = Plain::dot(va, vb);
      ASSERT_TRUE(sameBits(dot, Kernel::dot(a, b))) << "case " << i;
      ASSERT_TRUE(sameBits(dot, Geometry::getDotProduct(va, vb))) << "case " << i;
      const double length = Plain::length(va);
      ASSERT_TRUE(sameBits(length, Kernel::length3(a))) << "case " << i;
      ASSERT_TRUE(sameBits(length, Geometry::getVectorLenght3D(va))) << "case " << i;
      const double distance = Plain::length(Plain::difference(vb, va));
      ASSERT_TRUE(sameBits(distance, Kernel::distance(a, b))) << "case " << i;
      ASSERT_TRUE(sameBits(distance, Geometry::getDistance(va, vb))) << "case " << i;
      const Vector unit = Plain::normalised(va, due);
      Plain::normalised(va, due);
      ASSERT_TRUE(sameBits(unit, toVector(Utils::reported(Kernel::normalise(a))))) << "case " << i;
      ASSERT_TRUE(sameBits(unit, Geometry::getNormalizedVector3D(va))) << "case " << i;
      const double angle = Plain::angleInDegrees(va, vb);
      ASSERT_TRUE(sameBits(angle, Kernel::angleDegrees(a, b))) << "case " << i;
      ASSERT_TRUE(sameBits(angle, Geometry::getAngleBetweenVectorsInDegrees(va, vb, 0)));
    }
  });
  EXPECT_EQ(due, printed);
  EXPECT_NE("", due) << "no case had a vector of length 0";
}

TEST(VectorsProperty, PlanarKernelsGiveTheBitsOfTheReferenceImplementation) {
  std::mt19937_64 random(20250303);
  for (int i = 0; i < 10000; ++i) {
    const Vec2 a = anyVec2(random);
    const Vec2 b = anyVec2(random);
    ASSERT_TRUE(sameBits(Plain::length(toVector(a)), Kernel::length2(a))) << "case " << i;
    ASSERT_TRUE(sameBits(Plain::dot(toVector(a), toVector(b)), Kernel::dot(a, b))) << "case " << i;
    const double distance = Plain::length(Plain::difference(toVector(b), toVector(a)));
    ASSERT_TRUE(sameBits(distance, Kernel::distance(a, b))) << "case " << i;
    ASSERT_TRUE(sameBits(distance, Geometry::getDistance(toVector(a), toVector(b))));
  }
}

TEST(PlaneProperty, KernelsAndOperationsGiveTheBitsOfTheReferenceImplementation) {
  std::mt19937_64 random(20250304);
  std::string due;
  const std::string printed = capturedStdout([&] {
    for (int i = 0; i < 10000; ++i) {
      const std::vector<Vec3> points = {anyVec3(random), anyVec3(random), anyVec3(random),
                                        anyVec3(random)};
      const Vectors polygon = Utils::toVectors(points);
      std::string once;
      const Vector normal = Plain::normal(polygon, once);
      const Vector reversed = Plain::normalReversed(polygon, once);
      due += once + once;
      const std::size_t n = points.size();
      ASSERT_TRUE(
          sameBits(normal, toVector(Utils::reported(Kernel::polygonNormal(points.data(), n)))));
      ASSERT_TRUE(sameBits(
          reversed, toVector(Utils::reported(Kernel::polygonNormalReversed(points.data(), n)))));
      ASSERT_TRUE(sameBits(normal, Geometry::getPolygonNormal3D(polygon))) << "case " << i;
      ASSERT_TRUE(sameBits(reversed, Geometry::getPolygonNormalReversed3D(polygon)));

      const Vector meeting = Plain::intersection(polygon[0], polygon[1], polygon[2], polygon[3]);
      ASSERT_TRUE(sameBits(meeting, toVector(Kernel::intersectLineAndPlane(points[0], points[1],
                                                                           points[2], points[3]))))
          << "case " << i;
      ASSERT_TRUE(sameBits(meeting, Geometry::intersectLineAndPlane(polygon[0], polygon[1],
                                                                    polygon[2], polygon[3])));
    }
  });
  EXPECT_EQ(due, printed);
  EXPECT_NE("", due) << "no case had its points on a line";
}

TEST(PlaneProperty, FewerThanThreePointsHaveTheZeroNormalInSilence) {
  const Vec3 points[] = {{1, 2, 3}, {4, 5, 6}};
  for (const std::size_t count : {0u, 1u, 2u}) {
    EXPECT_FALSE(Kernel::polygonNormal(points, count).zeroLength);
    EXPECT_EQ(Vec3{}, Kernel::polygonNormal(points, count).direction);
    EXPECT_FALSE(Kernel::polygonNormalReversed(points, count).zeroLength);
    EXPECT_EQ(Vec3{}, Kernel::polygonNormalReversed(points, count).direction);
  }
}

// One point through the frame made beforehand; empty where the frame is singular.
Vector transformedByKernel(Vec3 point, const Kernel::BackFrame& frame) {
  Vector result;
  try {
    result = toVector(Utils::reportedTransformedBack(point, frame));
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ("invalid vector subscript", error.what());
  }
  return result;
}

TEST(FrameProperty, PrecomputedFrameGivesTheBitsAndMessagesOfTheOperation) {
  std::mt19937_64 random(20250305);
  std::string due;
  int singular = 0;
  const std::string printed = capturedStdout([&] {
    for (int i = 0; i < 10000; ++i) {
      const Vec3 first = anyVec3(random);
      const Vec3 second = i % 4 == 0 ? anyDouble(random) * first : anyVec3(random);
      const Kernel::BackFrame frame = Kernel::backFrame(first, second);
      singular += frame.singular;
      for (int j = 0; j < 2; ++j) {
        const Vec3 point = anyVec3(random);
        std::string once;
        const Vector expected =
            Plain::transformedBack(toVector(point), toVector(first), toVector(second), once);
        due += once + once;
        ASSERT_TRUE(sameBits(expected, transformedByKernel(point, frame))) << "case " << i;
        ASSERT_TRUE(sameBits(expected, Geometry::getPointTransformedBack3D(
                                           toVector(point), toVector(first), toVector(second))))
            << "case " << i;
      }
    }
  });
  EXPECT_EQ(due, printed);
  EXPECT_GT(singular, 100);
}

TEST(FrameProperty, ZeroThirdDirectionIsReportedAlsoWhereADeterminantIsLeft) {
  // Not a number is not 0: such a frame transforms, with one message for each point.
  const Kernel::BackFrame frame = {Kernel::matrixOfRows({1, 0, 0}, {0, 1, 0}, {0, 0, 1}), true,
                                   false};
  Vector result;
  EXPECT_EQ(ZeroLength, capturedStdout([&] {
              result = toVector(Utils::reportedTransformedBack({1, 2, 3}, frame));
            }));
  EXPECT_EQ((Vector{1, 2, 3}), result);
}

TEST(AngleBetweenVectorsProperty, SwappingArgumentsKeepsEveryBit) {
  std::mt19937_64 random(20250306);
  for (int i = 0; i < 10000; ++i) {
    const Vec3 a = anyVec3(random);
    const Vec3 b = anyVec3(random);
    ASSERT_TRUE(sameBits(Kernel::angleDegrees(a, b), Kernel::angleDegrees(b, a))) << "case " << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
