// The bytes are loops of points and a brush number. Any loops make a face of triangles, each seen
// from both sides, whose points are those of the loops.

#include "Bytes.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <vector>

namespace {

using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;
using Lumivane::Geometry::Face;
using Lumivane::Geometry::Point3d;
using Lumivane::Geometry::Region;
using Lumivane::Scene::Object;
using Lumivane::Scene::Scene3D;
using Loops = std::vector<std::vector<Point3d>>;

constexpr std::uint8_t Repeat = 32;

// A point of its own, or, so that loops touch and close, one that is there already.
Point3d point(Bytes& bytes, const std::vector<Point3d>& earlier, bool flat) {
  const auto kind = bytes.take<std::uint8_t>();
  if (kind < Repeat && !earlier.empty()) return earlier[kind % earlier.size()];
  const double x = bytes.coordinate(), y = bytes.coordinate();
  return {x, y, flat ? x + y : bytes.coordinate()};
}

Loops loops(Bytes& bytes) {
  Loops result(bytes.take<std::uint8_t>() % 5);
  const bool flat = bytes.take<std::uint8_t>() % 4 != 0;
  std::vector<Point3d> earlier;
  for (auto& loop : result)
    for (int count = bytes.take<std::uint8_t>() % 24; count > 0; --count) {
      loop.push_back(point(bytes, earlier, flat));
      earlier.push_back(loop.back());
    }
  return result;
}

void checkSides(Region& front, Region& back, int brushNumber) {
  require(front.getPoints()->size() == 3 && back.getPoints()->size() == 3);
  require(front.getBrushNumber() == brushNumber && back.getBrushNumber() == brushNumber);
  require(front.getFaceNumber() == 1 && back.getFaceNumber() == 1);
  // An edge that the triangulation has invented is so from both sides.
  require(front.getDockingEdges()->size() == back.getDockingEdges()->size());
  for (const int edge : *front.getDockingEdges()) require(edge >= 1 && edge <= 3);
}

void checkFace(Face& face, Object& object, Scene3D& scene, int brushNumber) {
  const auto& regions = *object.getRegions()->getRegions();
  const auto& points = *scene.getPoints()->getPoints();
  require(regions.size() % 2 == 0 && points.size() == 3 * regions.size());
  require(face.getRegions()->size() == regions.size());
  for (std::size_t i = 0; i < regions.size(); ++i) {
    require((*face.getRegions())[i] == static_cast<int>(i) + 1);
    for (std::size_t k = 0; k < 3; ++k)
      require((*regions[i]->getPoints())[k] == static_cast<int>(3 * i + k) + 1);
    if (i % 2 != 0) checkSides(*regions[i - 1], *regions[i], brushNumber);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  const auto brushNumber = bytes.take<std::int8_t>();
  Scene3D scene;
  scene.setPoints(new Lumivane::Geometry::Points3d());
  scene.setObjects(new Lumivane::Scene::Objects());
  auto* const object = new Object();
  scene.getObjects()->addObject(object);
  object->setFaces(new Lumivane::Geometry::Faces());
  object->setRegions(new Lumivane::Geometry::Regions());
  Face* const face = Face::makeFromLoops(&scene, object, loops(bytes), brushNumber);
  require(face != nullptr);
  checkFace(*face, *object, scene, brushNumber);
  return 0;
}
