#include "support/Vectors.h"

#include <lumivane/utils/MatrixUtils.h>

namespace Lumivane::Test {
namespace {

using Utils::MatrixUtils;

std::vector<double> vec(const VectorCase& c) { return toVector(c.in.at("v")); }
std::vector<std::vector<double>> matrix(const VectorCase& c) { return toVectors(c.in.at("m")); }
double scalar(const VectorCase& c) { return toDouble(c.in.at("s")); }

const VectorTests multiplyVector("multiplyVector3OnMatrix3", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(
        sameBits(toVector(c.out), MatrixUtils::multiplyVector3OnMatrix3(vec(c), matrix(c))));
  });
});
const VectorTests determinant("getDeterminant3", [](const VectorCase& c) {
  checkedRun(
      c, [&] { EXPECT_TRUE(sameBits(toDouble(c.out), MatrixUtils::getDeterminant3(matrix(c)))); });
});
const VectorTests complements("getMatrixOfAlgebraicComplements3", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(
        sameBits(toVectors(c.out), MatrixUtils::getMatrixOfAlgebraicComplements3(matrix(c))));
  });
});
const VectorTests transposed("getTransposedMatrix3", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(sameBits(toVectors(c.out), MatrixUtils::getTransposedMatrix3(matrix(c))));
  });
});
const VectorTests scaledMatrix("getMatrixMultipliedOnScalar3", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(sameBits(toVectors(c.out),
                         MatrixUtils::getMatrixMultipliedOnScalar3(matrix(c), scalar(c))));
  });
});
const VectorTests scaledVector("getVectorMultipliedOnScalar", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(
        sameBits(toVector(c.out), MatrixUtils::getVectorMultipliedOnScalar(vec(c), scalar(c))));
  });
});
const VectorTests dividedVector("getVectorDividedOnScalar", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(
        sameBits(toVector(c.out), MatrixUtils::getVectorDividedOnScalar(vec(c), scalar(c))));
  });
});
const VectorTests reversed("getReversedMatrix3", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(sameBits(toVectors(c.out), MatrixUtils::getReversedMatrix3(matrix(c))));
  });
});

}  // namespace
}  // namespace Lumivane::Test
