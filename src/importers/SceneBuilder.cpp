// A shot keeps a polygon whose points run clockwise as the eye sees them, and files hold polygons
// that run counter-clockwise as seen from outside: hence every loop is turned round, unless the
// inside is asked for.

#include "importers/SceneBuilder.h"

#include "importers/ImportError.h"

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

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>

namespace Lumivane::Importers {
namespace {

using Kernel::Vec3;

template <class Element>
int countOf(const std::vector<Element*>* elements) {
  return static_cast<int>(elements->size());
}

// The region as its inside sees it: corner i of n becomes corner n - 1 - i, and the edge between
// two corners keeps its pen.
SurfaceRegion turnedRound(const SurfaceRegion& region) {
  SurfaceRegion turned = region;
  std::reverse(turned.loop.begin(), turned.loop.end());
  const int count = static_cast<int>(region.loop.size());
  for (int& edge : turned.hiddenEdges) edge = edge == count ? count : count - edge;
  std::sort(turned.hiddenEdges.begin(), turned.hiddenEdges.end());
  return turned;
}

class SceneBuilder {
 public:
  SceneBuilder(const SourceModel& source, const std::vector<std::string>& givenClasses,
               ImportSides seen)
      : model(source), given(givenClasses), sides(seen), pointNumbers(source.vertices.size(), 0) {
    scene->setBrushes(new Base::Brushes());
    scene->setPens(new Base::Pens());
    scene->setPoints(new Geometry::Points3d());
    scene->setObjects(new Scene::Objects());
    scene->getPens()->addPen(new Base::Pen(40, 40, 40, 255, 1.0));
  }

  void addObject(const SourceObject& source, const ObjectSurfaces& faces) {
    auto* const object = new Scene::Object();
    scene->getObjects()->addObject(object);
    object->setId(uniqueId(source.id));
    objectClass = source.className;
    object->setPartsCount(1);
    object->setPenNumber(1);
    object->setFaces(new Geometry::Faces());
    object->setParts(new Geometry::Parts());
    object->setRegions(new Geometry::Regions());
    object->setOverlays(new Geometry::Overlays());
    for (const SurfaceFace& face : faces) addFace(*object, face);

    auto* const part = new Geometry::Part();
    object->getParts()->addPart(part);
    const int regions = countOf(object->getRegions()->getRegions());
    for (int number = 1; number <= regions; ++number) part->addRegion(number);
    regionCount += static_cast<size_t>(regions);
    faceCount += faces.size();
  }

  BuiltScene finish(ImportReport& report) {
    report.points = scene->getPoints()->getPoints()->size();
    report.objects = scene->getObjects()->getObjects()->size();
    report.brushes = scene->getBrushes()->getBrushes()->size();
    report.faces = faceCount;
    report.regions = regionCount;
    return {std::move(scene), std::move(classNames)};
  }

 private:
  // A shot finds an object by its id, so no two may have the same, and none may be empty.
  std::string uniqueId(const std::string& name) {
    const std::string wanted = name.empty() ? "object" : name;
    std::string id = wanted;
    int& next = nextNumbers.emplace(wanted, 2).first->second;
    while (!ids.insert(id).second) id = wanted + " (" + std::to_string(next++) + ")";
    return id;
  }

  void addFace(Scene::Object& object, const SurfaceFace& source) {
    auto* const face = new Geometry::Face();
    object.getFaces()->addFace(face);
    const Vec3 normal = sides == ImportSides::Inside ? source.normal : -source.normal;
    face->getNormal()->setX(normal.x);
    face->getNormal()->setY(normal.y);
    face->getNormal()->setZ(normal.z);
    for (const SurfaceRegion& region : source.regions) {
      if (sides != ImportSides::Inside) addRegion(object, *face, turnedRound(region));
      if (sides != ImportSides::Outside) addRegion(object, *face, region);
    }
  }

  void addRegion(Scene::Object& object, Geometry::Face& face, const SurfaceRegion& source) {
    auto* const region = new Geometry::Region();
    object.getRegions()->addRegion(region);
    region->setBrushNumber(brushNumber(source.material));
    region->setFaceNumber(countOf(object.getFaces()->getFaces()));
    for (const int vertex : source.loop) region->addPoint(pointNumber(vertex));
    for (const int edge : source.hiddenEdges) region->addDockingEdge(edge);
    face.addRegion(countOf(object.getRegions()->getRegions()));
    classNames.push_back(classOf(source));
  }

  const std::string& classOf(const SurfaceRegion& source) const {
    static const std::string none;
    if (source.givenClass)
      return *source.givenClass < 0 ? none : given[static_cast<size_t>(*source.givenClass)];
    const std::string& own = model.materials[static_cast<size_t>(source.material)].className;
    return own.empty() ? objectClass : own;
  }

  int pointNumber(int vertex) {
    int& number = pointNumbers[static_cast<size_t>(vertex)];
    if (number == 0) {
      const Vec3& v = model.vertices[static_cast<size_t>(vertex)];
      scene->getPoints()->addPoint(new Geometry::Point3d(v.x, v.y, v.z));
      number = countOf(scene->getPoints()->getPoints());
    }
    return number;
  }

  int brushNumber(int material) {
    const SourceMaterial& m = model.materials[static_cast<size_t>(material)];
    int& number = brushNumbers[{m.red, m.green, m.blue, m.alpha}];
    if (number == 0) {
      scene->getBrushes()->addBrush(new Base::Brush(m.red, m.green, m.blue, m.alpha));
      number = countOf(scene->getBrushes()->getBrushes());
    }
    return number;
  }

  const SourceModel& model;
  const std::vector<std::string>& given;
  ImportSides sides;
  std::unique_ptr<Scene::Scene3D> scene = std::make_unique<Scene::Scene3D>();
  std::vector<int> pointNumbers;
  std::map<std::array<int, 4>, int> brushNumbers;
  std::set<std::string> ids;
  std::map<std::string, int> nextNumbers;  // of the objects with one name
  std::string objectClass;                 // of the object that is being added
  std::vector<std::string> classNames;     // of all regions
  size_t faceCount = 0;
  size_t regionCount = 0;
};

}  // namespace

BuiltScene buildScene(const SourceModel& model, const std::vector<ObjectSurfaces>& surfaces,
                      const std::vector<std::size_t>& order, const std::vector<std::string>& given,
                      ImportSides sides, ImportReport& report) {
  SceneBuilder builder(model, given, sides);
  bool isEmpty = true;
  for (const std::size_t i : order) {
    if (surfaces[i].empty()) continue;
    builder.addObject(model.objects[i], surfaces[i]);
    isEmpty = false;
  }
  if (isEmpty) throw ImportError("none of its polygons has an area that can be shown");
  return builder.finish(report);
}

int regionsOfEach(ImportSides sides) { return sides == ImportSides::Both ? 2 : 1; }

}  // namespace Lumivane::Importers
