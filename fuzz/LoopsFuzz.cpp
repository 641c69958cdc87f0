// Any loops make a face whose regions refer to points that are there.

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

#include <vector>

namespace {

using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;
using Lumivane::Geometry::Point3d;
using Lumivane::Scene::Object;
using Lumivane::Scene::Scene3D;

std::vector<std::vector<Point3d>> loops(Bytes& bytes) {
  std::vector<std::vector<Point3d>> result(bytes.take<std::uint8_t>() % 4);
  const bool flat = bytes.take<std::uint8_t>() % 4 != 0;
  for (auto& loop : result)
    for (int count = bytes.take<std::uint8_t>() % 24; count > 0; --count) {
      const double x = bytes.coordinate(), y = bytes.coordinate();
      loop.emplace_back(x, y, flat ? x + y : bytes.coordinate());
    }
  return result;
}

void checkRegions(Object& object, Scene3D& scene) {
  if (object.getRegions() == nullptr) return;
  const int points = static_cast<int>(scene.getPoints()->getPoints()->size());
  for (auto* const region : *object.getRegions()->getRegions())
    for (const int number : *region->getPoints()) require(number >= 1 && number <= points);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  Scene3D scene;
  scene.setPoints(new Lumivane::Geometry::Points3d());
  scene.setObjects(new Lumivane::Scene::Objects());
  auto* const object = new Object();
  scene.getObjects()->addObject(object);
  object->setFaces(new Lumivane::Geometry::Faces());
  object->setRegions(new Lumivane::Geometry::Regions());
  require(Lumivane::Geometry::Face::makeFromLoops(&scene, object, loops(bytes), 1) != nullptr);
  checkRegions(*object, scene);
  return 0;
}
