#include "kernel/Angle.h"
#include "kernel/Plane.h"
#include "kernel/Vec.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/utils/LinearGeometryUtils.h>
#include <lumivane/utils/MatrixUtils.h>

#include <cstddef>

// Operations on lists of numbers: each checks or reports what it is promised to, and calls the
// kernel.
namespace Lumivane::Utils {
namespace {

using Vector = std::vector<double>;
using Vectors = std::vector<Vector>;

// The matrix that both back transformations multiply points by; empty for a singular frame.
Vectors backMatrix(const Vector& first, const Vector& second) {
  const Vector third = LinearGeometryUtils::getNormalizedVector3D(
      LinearGeometryUtils::getCrossProduct(second, first));
  return MatrixUtils::getReversedMatrix3(MatrixUtils::getTransposedMatrix3({first, third, second}));
}

}  // namespace

Vector LinearGeometryUtils::getCrossProduct(Vector a, Vector b) {
  return toVector(Kernel::cross(toVec3(a), toVec3(b)));
}

double LinearGeometryUtils::getDotProduct(Vector a, Vector b) {
  if (a.size() != b.size()) Cmd::logMessage("vectors in arguments have different sizes\n");
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * elementAt(b, i);
  return sum;
}

Vector LinearGeometryUtils::getNormalizedVector3D(Vector v) {
  const Kernel::Normalised unit = Kernel::normalise(toVec3(v));
  reported(unit);
  return unit.zeroLength ? v : toVector(unit.direction);
}

double LinearGeometryUtils::getVectorLenght3D(Vector v) { return Kernel::length3(toVec3(v)); }
double LinearGeometryUtils::getVectorLenght2D(Vector v) { return Kernel::length2(toVec2(v)); }

Vector LinearGeometryUtils::getVector3D(Vector from, Vector to) {
  if (from.size() != 3 || to.size() != 3)
    Cmd::logMessage("point in arguments has a size not equal to 3\n");
  return toVector(toVec3(to) - toVec3(from));
}

Vector LinearGeometryUtils::getVector2D(Vector from, Vector to) {
  if (from.size() != 2 || to.size() != 2)
    Cmd::logMessage("point in arguments has a size not equal to 2\n");
  return toVector(toVec2(to) - toVec2(from));
}

double LinearGeometryUtils::getDistance(Vector a, Vector b) {
  if (a.size() == 3 && b.size() == 3) return Kernel::distance(toVec3(a), toVec3(b));
  if (a.size() == 2 && b.size() == 2) return Kernel::distance(toVec2(a), toVec2(b));
  Cmd::logMessage("point in arguments has a size not equal to 2 or 3\n");
  return -1.0;
}

Vector LinearGeometryUtils::getPolygonNormal3D(Vectors polygon) {
  if (polygon.size() < 3) return {0.0, 0.0, 0.0};
  return toVector(
      reported(Kernel::polygonNormal(toVec3(polygon[0]), toVec3(polygon[1]), toVec3(polygon[2]))));
}

Vector LinearGeometryUtils::getPolygonNormalReversed3D(Vectors polygon) {
  if (polygon.size() < 3) return {0.0, 0.0, 0.0};
  return toVector(reported(
      Kernel::polygonNormalReversed(toVec3(polygon[0]), toVec3(polygon[1]), toVec3(polygon[2]))));
}

Vector LinearGeometryUtils::intersectLineAndPlane(Vector normal, Vector planePoint,
                                                  Vector linePoint, Vector lineDirection) {
  if (normal.size() != 3 || planePoint.size() != 3 || linePoint.size() != 3 ||
      lineDirection.size() != 3)
    Cmd::logMessage("point or vector in arguments has a size not equal to 3\n");
  return toVector(Kernel::intersectLineAndPlane(toVec3(normal), toVec3(planePoint),
                                                toVec3(linePoint), toVec3(lineDirection)));
}

Vector LinearGeometryUtils::getPointTransformedBack3D(Vector point, Vector first, Vector second) {
  return MatrixUtils::multiplyVector3OnMatrix3(point, backMatrix(first, second));
}

Vectors LinearGeometryUtils::getPolygonTransformedBack3D(Vectors polygon, Vector first,
                                                         Vector second) {
  const Vectors matrix = backMatrix(first, second);
  Vectors result;
  result.reserve(polygon.size());
  for (const Vector& point : polygon)
    result.push_back(MatrixUtils::multiplyVector3OnMatrix3(point, matrix));
  return result;
}

double LinearGeometryUtils::getAngleBetweenVectorsInDegrees(Vector a, Vector b, int digits) {
  return roundD(Kernel::angleDegrees(toVec3(a), toVec3(b)), digits);
}

double LinearGeometryUtils::roundD(double value, int digits) {
  return Kernel::roundD(value, digits);
}

double LinearGeometryUtils::toDegrees(double radians) { return Kernel::toDegrees(radians); }
double LinearGeometryUtils::toRadians(double degrees) { return Kernel::toRadians(degrees); }

}  // namespace Lumivane::Utils
