#include "truth/Builder.h"

#include <algorithm>

namespace Lumivane::Truth {

using Visibility::PolygonScene;
using Visibility::Vector;

Vector Random::direction() {
  for (;;) {
    const LongVector v{between(-1, 1), between(-1, 1), between(-1, 1)};
    const Real size = length(v);
    if (size <= 1.0L && size > 0.01L) return narrow(unit(v));
  }
}

Vector Random::inBall(double radius) {
  for (;;) {
    const Vector v{between(-1, 1), between(-1, 1), between(-1, 1)};
    if (length(wide(v)) <= 1.0L) return {v[0] * radius, v[1] * radius, v[2] * radius};
  }
}

SceneBuilder& SceneBuilder::object() {
  ++objects;
  regions = 0;
  theScene.objectIds.push_back("object " + std::to_string(objects));
  return *this;
}

void SceneBuilder::close() {
  if (objects == 0) object();
  ++regions;
  theScene.offsets.push_back(theScene.corners.size());
  theScene.labels.push_back({objects, regions, regions});
}

SceneBuilder& SceneBuilder::add(const Outline& outline) {
  for (const Vector& point : outline) {
    theScene.corners.push_back(static_cast<int>(theScene.points.size()));
    theScene.points.push_back(point);
  }
  close();
  return *this;
}

SceneBuilder& SceneBuilder::addFacing(Outline outline, const Vector& eye) {
  Real volume = 0.0L;
  for (std::size_t i = 1; i + 1 < outline.size(); ++i)
    volume += determinant(fromEye(outline[0], eye), fromEye(outline[i], eye),
                          fromEye(outline[i + 1], eye));
  if (volume < 0.0L) std::reverse(outline.begin(), outline.end());
  return add(outline);
}

SceneBuilder& SceneBuilder::addMesh(const std::vector<Vector>& points,
                                    const std::vector<std::vector<int>>& outlines) {
  const int first = static_cast<int>(theScene.points.size());
  theScene.points.insert(theScene.points.end(), points.begin(), points.end());
  for (const std::vector<int>& outline : outlines) {
    for (const int corner : outline) theScene.corners.push_back(first + corner);
    close();
  }
  return *this;
}

SceneBuilder& SceneBuilder::addBox(const Vector& low, const Vector& high) {
  std::vector<Vector> points;
  for (int i = 0; i < 8; ++i)
    points.push_back({(i & 1) != 0 ? high[0] : low[0], (i & 2) != 0 ? high[1] : low[1],
                      (i & 4) != 0 ? high[2] : low[2]});
  return addMesh(
      points, {{0, 1, 3, 2}, {4, 6, 7, 5}, {0, 4, 5, 1}, {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 5, 7, 3}});
}

Outline regularPolygon(const Vector& centre, const Vector& axis, double radius, int corners,
                       double turn) {
  const LongVector n = unit(wide(axis));
  const LongVector u = anyNormalTo(n);
  const LongVector v = cross(n, u);
  Outline outline;
  for (int i = 0; i < corners; ++i) {
    const Real angle = turn + 2.0L * Pi * i / corners;
    outline.push_back(
        narrow(wide(centre) + u * (radius * std::cos(angle)) + v * (radius * std::sin(angle))));
  }
  return outline;
}

PolygonScene moved(const PolygonScene& scene, const std::function<Vector(const Vector&)>& place) {
  PolygonScene result = scene;
  std::transform(scene.points.begin(), scene.points.end(), result.points.begin(), place);
  return result;
}

Outline outlineOf(const PolygonScene& scene, std::size_t outline) {
  Outline result;
  for (std::size_t i = scene.offsets[outline]; i < scene.offsets[outline + 1]; ++i)
    result.push_back(scene.points[static_cast<std::size_t>(scene.corners[i])]);
  return result;
}

Rotation::Rotation(Random& random) {
  x = unit(wide(random.direction()));
  y = unit(cross(wide(random.direction()), x));
  z = cross(x, y);
}

Vector Rotation::operator()(const Vector& v) const {
  return narrow(x * v[0] + y * v[1] + z * v[2]);
}

void turnPerhaps(Random& random, PolygonScene& scene, Vector& eye) {
  if (random.below(2) != 0) return;
  const Rotation turn(random);
  scene = moved(scene, turn);
  eye = turn(eye);
}

}  // namespace Lumivane::Truth
