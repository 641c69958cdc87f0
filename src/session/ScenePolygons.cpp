// Makes a scene from plain arrays: what importers make from a file, with a face of its own for each
// polygon. The arrays are checked first, so that errors name their elements.

#include "kernel/Newell.h"
#include "session/SceneOfPolygons.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Overlays.h>
#include <lumivane/geometry/Part.h>
#include <lumivane/geometry/Parts.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Error.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace Lumivane::Session {
namespace {

using Color = std::array<std::uint8_t, 4>;

constexpr Color LightGrey = {200, 200, 200, 255};
constexpr std::size_t FewestCorners = 3;

// "corners[3]"
std::string element(const char* array, std::size_t position) {
  return std::string(array) + "[" + std::to_string(position) + "]";
}

std::string polygon(std::size_t position) {
  return "polygon at position " + std::to_string(position) + ": ";
}

class Checker {
 public:
  Checker(const ScenePolygons& arrays, const std::string& sceneName)
      : given(arrays), name(sceneName) {}

  void check() const {
    checkPoints();
    checkOffsets();
    checkLength("objects", given.objects.size(), count(), "polygons");
    checkLength("colors", given.colors.size(), count(), "polygons");
    checkLength("docking", given.docking.size(), given.corners.size(), "corners");
    for (std::size_t i = 0; i < count(); ++i) checkPolygon(i);
    checkIds();
  }

 private:
  std::size_t count() const { return given.offsets.size() - 1; }

  [[noreturn]] void fail(const std::string& cause) const { throw Error(name, cause); }

  void checkPoints() const {
    // Numbers of points and regions have 32 bits.
    constexpr std::size_t Most = std::numeric_limits<int>::max();
    if (given.points.size() > Most || given.corners.size() > Most)
      fail("more than " + std::to_string(Most) + " points or corners: divide the scene");
    for (std::size_t i = 0; i < given.points.size(); ++i)
      if (!std::all_of(given.points[i].begin(), given.points[i].end(),
                       [](double coordinate) { return std::isfinite(coordinate); }))
        fail(element("points", i) + " has a coordinate that is not finite");
  }

  void checkOffsets() const {
    if (given.offsets.empty() || given.offsets.front() != 0) fail("offsets must start with 0");
    for (std::size_t i = 0; i < count(); ++i)
      if (given.offsets[i + 1] < given.offsets[i])
        fail(polygon(i) + element("offsets", i + 1) + " is " +
             std::to_string(given.offsets[i + 1]) + ", less than " + element("offsets", i) +
             ", which is " + std::to_string(given.offsets[i]));
    if (given.offsets.back() != given.corners.size())
      fail("offsets end with " + std::to_string(given.offsets.back()) + ", but corners has " +
           std::to_string(given.corners.size()) + " elements");
  }

  void checkLength(const char* array, std::size_t length, std::size_t wanted,
                   const char* of) const {
    if (length != 0 && length != wanted)
      fail(std::string(array) + " has " + std::to_string(length) + " elements, but there are " +
           std::to_string(wanted) + " " + of);
  }

  void checkPolygon(std::size_t i) const {
    const std::size_t corners = given.offsets[i + 1] - given.offsets[i];
    if (corners < FewestCorners)
      fail(polygon(i) + "it has " + std::to_string(corners) + " corners, and needs at least 3");
    for (std::size_t k = given.offsets[i]; k < given.offsets[i + 1]; ++k)
      checkPosition(i, element("corners", k), given.corners[k], given.points.size(), "points");
    if (given.objects.empty()) return;
    const bool hasIds = !given.objectIds.empty();
    checkPosition(i, element("objects", i), given.objects[i],
                  hasIds ? given.objectIds.size() : count(), hasIds ? "objectIds" : "the scene");
  }

  // Without ids there are no more objects than polygons.
  void checkPosition(std::size_t i, const std::string& what, int position, std::size_t length,
                     const char* array) const {
    if (position < 0 || static_cast<std::size_t>(position) >= length)
      fail(polygon(i) + what + " is " + std::to_string(position) + ", but " + array + " has " +
           std::to_string(length) + " elements, counted from 0");
  }

  void checkIds() const {
    std::map<std::string, std::size_t> positions;
    for (std::size_t i = 0; i < given.objectIds.size(); ++i) {
      const std::string& id = given.objectIds[i];
      if (id.empty()) fail(element("objectIds", i) + " is empty");
      const auto [first, isNew] = positions.emplace(id, i);
      if (!isNew)
        fail(element("objectIds", i) + " is \"" + id + "\", as " +
             element("objectIds", first->second) + " is: ids must differ");
    }
  }

  const ScenePolygons& given;
  const std::string& name;
};

// The arrays have been checked.
class Maker {
 public:
  explicit Maker(const ScenePolygons& arrays) : given(arrays) {
    scene->setBrushes(new Base::Brushes());
    scene->setPens(new Base::Pens());
    scene->setPoints(new Geometry::Points3d());
    scene->setObjects(new Scene::Objects());
    scene->getPens()->addPen(new Base::Pen(40, 40, 40, 255, 1.0));
  }

  std::unique_ptr<Scene::Scene3D> make() {
    for (const Vector& point : given.points)
      scene->getPoints()->addPoint(new Geometry::Point3d(point[0], point[1], point[2]));
    for (std::size_t i = 0; i < objectCount(); ++i) addObject(i);
    for (std::size_t i = 0; i + 1 < given.offsets.size(); ++i) addPolygon(i);
    return std::move(scene);
  }

 private:
  std::size_t objectCount() const {
    if (!given.objectIds.empty()) return given.objectIds.size();
    if (given.offsets.size() < 2) return 0;
    if (given.objects.empty()) return 1;
    const int last = *std::max_element(given.objects.begin(), given.objects.end());
    return static_cast<std::size_t>(last) + 1;
  }

  void addObject(std::size_t position) {
    auto* const object = new Scene::Object();
    scene->getObjects()->addObject(object);
    object->setId(given.objectIds.empty() ? "object " + std::to_string(position + 1)
                                          : given.objectIds[position]);
    object->setPartsCount(1);
    object->setPenNumber(1);
    object->setFaces(new Geometry::Faces());
    object->setParts(new Geometry::Parts());
    object->getParts()->addPart(new Geometry::Part());
    object->setRegions(new Geometry::Regions());
    object->setOverlays(new Geometry::Overlays());
  }

  // With the face that it is alone in.
  void addPolygon(std::size_t i) {
    const int position = given.objects.empty() ? 0 : given.objects[i];
    Scene::Object& object = *scene->getObjects()->getObject(position);
    auto* const region = new Geometry::Region();
    object.getRegions()->addRegion(region);
    const auto number = static_cast<int>(object.getRegions()->getRegions()->size());
    region->setBrushNumber(brushNumber(given.colors.empty() ? LightGrey : given.colors[i]));
    region->setFaceNumber(number);
    addCorners(*region, i);
    object.getParts()->getPart(0)->addRegion(number);
    addFace(object, *region, number);
  }

  // In the order in which they run clockwise on the side that is seen. The edge between two corners
  // stays what it is.
  void addCorners(Geometry::Region& region, std::size_t i) const {
    const std::size_t begin = given.offsets[i];
    const std::size_t count = given.offsets[i + 1] - begin;
    const bool isTurned = given.seen == ScenePolygons::Seen::CounterClockwise;
    for (std::size_t k = 0; k < count; ++k) {
      region.addPoint(given.corners[begin + (isTurned ? count - 1 - k : k)] + 1);
      const std::size_t edge = isTurned ? (2 * count - 2 - k) % count : k;
      if (!given.docking.empty() && given.docking[begin + edge] != 0)
        region.addDockingEdge(static_cast<int>(k) + 1);
    }
  }

  void addFace(Scene::Object& object, const Geometry::Region& region, int regionNumber) const {
    auto* const face = new Geometry::Face();
    object.getFaces()->addFace(face);
    face->addRegion(regionNumber);
    std::vector<Kernel::Vec3> outline;
    for (const int number : *region.getPoints()) {
      const Vector& point = given.points[static_cast<std::size_t>(number) - 1];
      outline.push_back({point[0], point[1], point[2]});
    }
    const Kernel::Vec3 normal = Kernel::outlinePlane(outline.data(), outline.size()).normal;
    face->getNormal()->setX(normal.x);
    face->getNormal()->setY(normal.y);
    face->getNormal()->setZ(normal.z);
  }

  int brushNumber(const Color& color) {
    int& number = brushNumbers[color];
    if (number == 0) {
      scene->getBrushes()->addBrush(new Base::Brush(color[0], color[1], color[2], color[3]));
      number = static_cast<int>(scene->getBrushes()->getBrushes()->size());
    }
    return number;
  }

  const ScenePolygons& given;
  std::unique_ptr<Scene::Scene3D> scene = std::make_unique<Scene::Scene3D>();
  std::map<Color, int> brushNumbers;
};

}  // namespace

void ScenePolygons::add(const std::vector<int>& polygonCorners, int object) {
  corners.insert(corners.end(), polygonCorners.begin(), polygonCorners.end());
  offsets.push_back(corners.size());
  objects.push_back(object);
}

void ScenePolygons::addBox(const Vector& low, const Vector& high, int object) {
  // Of point 4 z + 2 y + x each coordinate is low or high; counter-clockwise as seen from outside.
  constexpr std::array<std::array<int, 4>, 6> sides = {
      {{0, 4, 6, 2}, {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 2, 3, 1}, {4, 5, 7, 6}}};
  const auto first = static_cast<int>(points.size());
  for (const double z : {low[2], high[2]})
    for (const double y : {low[1], high[1]})
      for (const double x : {low[0], high[0]}) points.push_back({x, y, z});
  for (const std::array<int, 4>& side : sides) {
    std::vector<int> outline;
    for (const int corner : side) outline.push_back(first + corner);
    if (seen == Seen::Clockwise) std::reverse(outline.begin(), outline.end());
    add(outline, object);
  }
}

std::unique_ptr<Scene::Scene3D> sceneOfPolygons(const ScenePolygons& polygons,
                                                const std::string& name) {
  Checker(polygons, name).check();
  return Maker(polygons).make();
}

}  // namespace Lumivane::Session
