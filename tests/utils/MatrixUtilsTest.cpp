#include "kernel/Matrix3.h"
#include "plain/Geometry.h"
#include "support/Capture.h"
#include "support/Extremes.h"
#include "support/Vectors.h"
#include "utils/Shapes.h"

#include <lumivane/utils/MatrixUtils.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Utils::MatrixUtils;
using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

const Matrix Identity = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const Matrix OneRowOf2 = {{1, 2, 3}, {4, 5}, {7, 8, 9}};
const Matrix OneRowOf4 = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9, 10}};

// The result of an operation and what it printed meanwhile.
template <class Result>
std::pair<Result, std::string> withOutput(const std::function<Result()>& operation) {
  Result result{};
  const std::string printed = capturedStdout([&] { result = operation(); });
  return {result, printed};
}

TEST(MultiplyVector3OnMatrix3, IdentityKeepsTheVector) {
  EXPECT_EQ((Vector{1, 2, 3}), MatrixUtils::multiplyVector3OnMatrix3({1, 2, 3}, Identity));
}

TEST(MultiplyVector3OnMatrix3, VectorStandsOnTheLeft) {
  EXPECT_EQ((Vector{2, 1, 3}),
            MatrixUtils::multiplyVector3OnMatrix3({1, 2, 3}, {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}}));
  EXPECT_EQ((Vector{0, 0, 1}),
            MatrixUtils::multiplyVector3OnMatrix3({1, 0, 0}, {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}));
}

TEST(MultiplyVector3OnMatrix3, SumsStartFromPositiveZero) {
  EXPECT_TRUE(sameBits(Vector{0.0, 0.0, 0.0},
                       MatrixUtils::multiplyVector3OnMatrix3({-0.0, -0.0, -0.0}, Identity)));
}

void expectNoProduct(const Vector& v, const Matrix& m, const std::string& message) {
  const auto [result, printed] =
      withOutput<Vector>([&] { return MatrixUtils::multiplyVector3OnMatrix3(v, m); });
  EXPECT_TRUE(result.empty());
  EXPECT_EQ(message, printed);
}

TEST(MultiplyVector3OnMatrix3, WrongShapeGivesItsMessageAndAnEmptyVector) {
  const std::string start = "Error in multiply vector 1x3 on matrix 3x3: ";
  for (const Vector& v : {Vector{}, Vector{1, 2}, Vector{1, 2, 3, 4}}) {
    expectNoProduct(v, Identity, start + "Vector size is not 3");
    expectNoProduct(v, {}, start + "Vector size is not 3");  // the vector is looked at first
  }
  for (const Matrix& m : {Matrix{}, Matrix{{1, 2, 3}}, Matrix(4, Vector(3, 1.0))})
    expectNoProduct({1, 2, 3}, m, start + "matrix row number is not 3");
  for (const Matrix& m : {OneRowOf2, OneRowOf4})
    expectNoProduct({1, 2, 3}, m, start + "matrix have row with not 3 columns");
}

TEST(Determinant3, IdentityHasOne) { EXPECT_EQ(1.0, MatrixUtils::getDeterminant3(Identity)); }

TEST(Determinant3, TwoEqualRowsHaveZero) {
  EXPECT_EQ(0.0, MatrixUtils::getDeterminant3({{1, 2, 3}, {1, 2, 3}, {4, 5, 6}}));
}

TEST(Determinant3, WrongShapeIsZeroInSilence) {
  for (const Matrix& m : {Matrix{{1, 2}, {3, 4}}, OneRowOf2, OneRowOf4, Matrix{}}) {
    const auto [result, printed] =
        withOutput<double>([&] { return MatrixUtils::getDeterminant3(m); });
    EXPECT_EQ(0.0, result);
    EXPECT_EQ("", printed);
  }
}

TEST(AlgebraicComplements, IdentityIsItsOwn) {
  EXPECT_EQ(Identity, MatrixUtils::getMatrixOfAlgebraicComplements3(Identity));
}

// Wanted: a subtraction stands where a product would be.
TEST(AlgebraicComplements, ElementOfRow0Column1SubtractsTwice) {
  const Matrix c =
      MatrixUtils::getMatrixOfAlgebraicComplements3({{1, 2, 3}, {4, 5, 6}, {7, 8, 10}});
  EXPECT_EQ((Matrix{{2, -27, -3}, {4, -11, 6}, {-3, 6, -3}}), c);
}

TEST(AlgebraicComplements, WrongShapeGivesItsMessageAndAnEmptyMatrix) {
  const std::string start = "Error in get matrix of algebraic complements: ";
  const auto expect = [&](const Matrix& m, const std::string& message) {
    const auto [result, printed] =
        withOutput<Matrix>([&] { return MatrixUtils::getMatrixOfAlgebraicComplements3(m); });
    EXPECT_TRUE(result.empty());
    EXPECT_EQ(start + message, printed);
  };
  expect({}, "row number is not 3");
  expect({{1, 2}, {3, 4}}, "row number is not 3");
  expect(OneRowOf2, "one row have not 3 columns");
  expect(OneRowOf4, "one row have not 3 columns");
}

TEST(TransposedMatrix3, ExchangesRowsAndColumns) {
  EXPECT_EQ((Matrix{{1, 4, 7}, {2, 5, 8}, {3, 6, 9}}),
            MatrixUtils::getTransposedMatrix3({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
}

TEST(TransposedMatrix3, WrongShapeGivesItsMessageAndAnEmptyMatrix) {
  const std::string start = "Error in get transposed matrix: ";
  const auto expect = [&](const Matrix& m, const std::string& message) {
    const auto [result, printed] =
        withOutput<Matrix>([&] { return MatrixUtils::getTransposedMatrix3(m); });
    EXPECT_TRUE(result.empty());
    EXPECT_EQ(start + message, printed);
  };
  expect({}, "row number is not 3");
  expect(Matrix(4, Vector(3, 1.0)), "row number is not 3");
  expect(OneRowOf2, "one row have not 3 columns");
  expect(OneRowOf4, "one row have not 3 columns");
}

TEST(MatrixMultipliedOnScalar, TakesAnyShapeInSilence) {
  const auto [result, printed] = withOutput<Matrix>([] {
    return MatrixUtils::getMatrixMultipliedOnScalar3({{1, 2, 3, 4}, {}, {5}}, 2.0);
  });
  EXPECT_EQ((Matrix{{2, 4, 6, 8}, {}, {10}}), result);
  EXPECT_EQ("", printed);
  EXPECT_TRUE(MatrixUtils::getMatrixMultipliedOnScalar3({}, 2.0).empty());
}

TEST(VectorTimesScalar, TakesAnySize) {
  EXPECT_EQ((Vector{-2, 4}), MatrixUtils::getVectorMultipliedOnScalar({1, -2}, -2.0));
  EXPECT_TRUE(MatrixUtils::getVectorMultipliedOnScalar({}, 2.0).empty());
}

TEST(VectorDividedOnScalar, DividesEachElement) {
  EXPECT_EQ((Vector{0.5, 1}), MatrixUtils::getVectorDividedOnScalar({1, 2}, 2.0));
}

TEST(VectorDividedOnScalar, ZeroLeavesTheVectorInSilence) {
  for (const double zero : {0.0, -0.0}) {
    const auto [result, printed] = withOutput<Vector>([&] {
      return MatrixUtils::getVectorDividedOnScalar({1, 2}, zero);
    });
    EXPECT_EQ((Vector{1, 2}), result);
    EXPECT_EQ("", printed);
  }
}

TEST(ReversedMatrix3, ZeroDeterminantGivesTheMessageAndAnEmptyMatrix) {
  for (const Matrix& m : {Matrix{{1, 2, 3}, {1, 2, 3}, {4, 5, 6}}, Matrix{}, OneRowOf2}) {
    const auto [result, printed] =
        withOutput<Matrix>([&] { return MatrixUtils::getReversedMatrix3(m); });
    EXPECT_TRUE(result.empty());
    EXPECT_EQ("Error in get reverse matrix: determinant is 0", printed);
  }
}

// Wanted: the matrix divided by its determinant, not its inverse.
TEST(ReversedMatrix3, DividesTheMatrixItselfByItsDeterminant) {
  EXPECT_EQ((Matrix{{0.25, 0, 0}, {0, 0.25, 0}, {0, 0, 0.25}}),
            MatrixUtils::getReversedMatrix3({{2, 0, 0}, {0, 2, 0}, {0, 0, 2}}));
  EXPECT_EQ(Identity, MatrixUtils::getReversedMatrix3(Identity));
  const Matrix turned = {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}};
  EXPECT_EQ(turned, MatrixUtils::getReversedMatrix3(turned));
}

TEST(ReversedMatrix3, DeterminantThatIsNotANumberPasses) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto [result, printed] = withOutput<Matrix>([&] {
    return MatrixUtils::getReversedMatrix3({{nan, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  });
  ASSERT_EQ(3u, result.size());
  EXPECT_TRUE(std::isnan(result[1][1]));
  EXPECT_EQ("", printed);
}

Matrix anyMatrix(std::mt19937_64& random) {
  Matrix m;
  for (int row = 0; row < 3; ++row) m.push_back(Utils::toVector(anyVec3(random)));
  return m;
}

Kernel::Matrix3 kernelMatrix(const Matrix& m) {
  return Kernel::matrixOfRows(Utils::toVec3(m[0]), Utils::toVec3(m[1]), Utils::toVec3(m[2]));
}

Matrix rowsOf(const Kernel::Matrix3& m) {
  Matrix rows;
  for (const auto& row : m.a) rows.emplace_back(row, row + 3);
  return rows;
}

TEST(MatrixProperty, KernelAndOperationsGiveTheBitsOfTheReferenceImplementation) {
  std::mt19937_64 random(20250301);
  for (int i = 0; i < 10000; ++i) {
    const Matrix m = anyMatrix(random);
    const Kernel::Vec3 v = anyVec3(random);
    const double s = anyDouble(random);
    const Kernel::Matrix3 k = kernelMatrix(m);

    const double determinant = Plain::determinant(m);
    ASSERT_TRUE(sameBits(determinant, Kernel::determinant(k))) << "case " << i;
    ASSERT_TRUE(sameBits(determinant, MatrixUtils::getDeterminant3(m))) << "case " << i;

    const Vector product = Plain::multiplied(Utils::toVector(v), m);
    ASSERT_TRUE(sameBits(product, Utils::toVector(Kernel::multiply(v, k)))) << "case " << i;
    ASSERT_TRUE(sameBits(product, MatrixUtils::multiplyVector3OnMatrix3(Utils::toVector(v), m)));

    ASSERT_TRUE(
        sameBits(MatrixUtils::getMatrixMultipliedOnScalar3(m, s), rowsOf(Kernel::scaled(k, s))))
        << "case " << i;
    ASSERT_TRUE(sameBits(m, rowsOf(Kernel::transposed(Kernel::transposed(k)))));
    ASSERT_TRUE(sameBits(MatrixUtils::getVectorDividedOnScalar(Utils::toVector(v), s),
                         Utils::toVector(Kernel::dividedOrSame(v, s))));
  }
}

}  // namespace
}  // namespace Lumivane::Test
