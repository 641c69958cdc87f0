#include "support/Vectors.h"

#include <lumivane/utils/LinearGeometryUtils.h>

namespace Lumivane::Test {
namespace {

using Geometry = Utils::LinearGeometryUtils;

// The arguments of a case by their names.
std::vector<double> vec(const VectorCase& c, const char* name) { return toVector(c.in.at(name)); }
double number(const VectorCase& c, const char* name) { return toDouble(c.in.at(name)); }
int integer(const VectorCase& c, const char* name) { return c.in.at(name).get<int>(); }

void expectNumber(const VectorCase& c, const std::function<double()>& operation) {
  checkedRun(c, [&] {
    const double result = operation();
    EXPECT_TRUE(sameBits(toDouble(c.out), result)) << "expected " << c.out << ", got " << result;
  });
}

void expectVector(const VectorCase& c, const std::function<std::vector<double>()>& operation) {
  checkedRun(c, [&] {
    const std::vector<double> result = operation();
    EXPECT_TRUE(sameBits(toVector(c.out), result));
  });
}

const VectorTests crossProduct("getCrossProduct", [](const VectorCase& c) {
  expectVector(c, [&] { return Geometry::getCrossProduct(vec(c, "a"), vec(c, "b")); });
});
const VectorTests dotProduct("getDotProduct", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::getDotProduct(vec(c, "a"), vec(c, "b")); });
});
const VectorTests normalizedVector3D("getNormalizedVector3D", [](const VectorCase& c) {
  expectVector(c, [&] { return Geometry::getNormalizedVector3D(vec(c, "v")); });
});
const VectorTests vectorLenght3D("getVectorLenght3D", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::getVectorLenght3D(vec(c, "v")); });
});
const VectorTests vectorLenght2D("getVectorLenght2D", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::getVectorLenght2D(vec(c, "v")); });
});
const VectorTests vector3D("getVector3D", [](const VectorCase& c) {
  expectVector(c, [&] { return Geometry::getVector3D(vec(c, "from"), vec(c, "to")); });
});
const VectorTests vector2D("getVector2D", [](const VectorCase& c) {
  expectVector(c, [&] { return Geometry::getVector2D(vec(c, "from"), vec(c, "to")); });
});
const VectorTests distance("getDistance", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::getDistance(vec(c, "a"), vec(c, "b")); });
});
const VectorTests polygonNormal3D("getPolygonNormal3D", [](const VectorCase& c) {
  expectVector(c, [&] { return Geometry::getPolygonNormal3D(toVectors(c.in.at("polygon"))); });
});
const VectorTests polygonNormalReversed3D("getPolygonNormalReversed3D", [](const VectorCase& c) {
  expectVector(c,
               [&] { return Geometry::getPolygonNormalReversed3D(toVectors(c.in.at("polygon"))); });
});
const VectorTests lineAndPlane("intersectLineAndPlane", [](const VectorCase& c) {
  expectVector(c, [&] {
    return Geometry::intersectLineAndPlane(vec(c, "normal"), vec(c, "planePoint"),
                                           vec(c, "linePoint"), vec(c, "lineDirection"));
  });
});
const VectorTests pointTransformedBack("getPointTransformedBack3D", [](const VectorCase& c) {
  expectVector(c, [&] {
    return Geometry::getPointTransformedBack3D(vec(c, "point"), vec(c, "first"), vec(c, "second"));
  });
});
const VectorTests polygonTransformedBack("getPolygonTransformedBack3D", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_TRUE(sameBits(toVectors(c.out),
                         Geometry::getPolygonTransformedBack3D(toVectors(c.in.at("polygon")),
                                                               vec(c, "first"), vec(c, "second"))));
  });
});
const VectorTests angle("getAngleBetweenVectorsInDegrees", [](const VectorCase& c) {
  expectNumber(c, [&] {
    return Geometry::getAngleBetweenVectorsInDegrees(vec(c, "a"), vec(c, "b"),
                                                     integer(c, "digits"));
  });
});
const VectorTests roundD("roundD", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::roundD(number(c, "value"), integer(c, "digits")); });
});
const VectorTests degrees("toDegrees", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::toDegrees(number(c, "radians")); });
});
const VectorTests radians("toRadians", [](const VectorCase& c) {
  expectNumber(c, [&] { return Geometry::toRadians(number(c, "degrees")); });
});

}  // namespace
}  // namespace Lumivane::Test
