#include "visibility/SceneArrays.h"

#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

// Scenes as plain arrays. Whatever would make an index read beyond an array is refused here, with
// the object and the region, so that nothing behind this file needs to look again.
namespace Lumivane::Visibility {
namespace {

bool isUsable(double coordinate) { return std::abs(coordinate) <= LargestCoordinate; }

bool isUsable(const Vector& point) {
  return isUsable(point[0]) && isUsable(point[1]) && isUsable(point[2]);
}

const char* const NotUsable = "a coordinate that is not finite or beyond 1e30";

class SceneReader {
 public:
  explicit SceneReader(const Scene::Scene3D& scene) {
    takePoints(scene.getPoints());
    result.offsets.push_back(0);
    if (scene.getObjects() == nullptr) return;
    for (const Scene::Object* object : *scene.getObjects()->getObjects()) addObject(object);
  }

  PolygonScene take() { return std::move(result); }

 private:
  void takePoints(Geometry::Points3d* points) {
    if (points == nullptr) return;
    result.points.reserve(points->getPoints()->size());
    constexpr double None = std::numeric_limits<double>::quiet_NaN();
    for (const Geometry::Point3d* point : *points->getPoints())
      result.points.push_back(point == nullptr
                                  ? Vector{None, None, None}
                                  : Vector{point->getX(), point->getY(), point->getZ()});
  }

  void addObject(const Scene::Object* object) {
    result.objectIds.push_back(object == nullptr ? "" : object->getId());
    if (object == nullptr || object->getRegions() == nullptr) return;
    int number = 0;
    for (const Geometry::Region* region : *object->getRegions()->getRegions())
      addRegion(region, ++number);
  }

  void addRegion(const Geometry::Region* region, int number) {
    const auto object = static_cast<int>(result.objectIds.size());
    const int face = region == nullptr ? -1 : region->getFaceNumber();
    result.labels.push_back({object, face < 1 ? -1 : face, number});
    if (region != nullptr && region->getPoints() != nullptr) addCorners(*region, number);
    result.offsets.push_back(result.corners.size());
  }

  void addCorners(const Geometry::Region& region, int regionNumber) {
    for (const int number : *region.getPoints()) {
      checkPoint(number, regionNumber);
      result.corners.push_back(number - 1);
    }
    result.docking.resize(result.corners.size(), 0);
    if (region.getDockingEdges() == nullptr) return;
    const std::size_t count = region.getPoints()->size();
    const std::size_t first = result.corners.size() - count;
    for (const int edge : *region.getDockingEdges())
      if (edge >= 1 && static_cast<std::size_t>(edge) <= count)
        result.docking[first + static_cast<std::size_t>(edge) - 1] = 1;
  }

  void checkPoint(int number, int regionNumber) const {
    if (number < 1 || static_cast<std::size_t>(number) > result.points.size())
      refuse(regionNumber, "point " + std::to_string(number) + ", but there are 1 to " +
                               std::to_string(result.points.size()));
    if (!isUsable(result.points[static_cast<std::size_t>(number) - 1]))
      refuse(regionNumber, "point " + std::to_string(number) + " has " + NotUsable);
  }

  [[noreturn]] void refuse(int regionNumber, const std::string& cause) const {
    throw std::invalid_argument("object " + std::to_string(result.objectIds.size()) + " \"" +
                                result.objectIds.back() + "\", region " +
                                std::to_string(regionNumber) + ": " + cause);
  }

  PolygonScene result;
};

void require(bool holds, const char* text) {
  if (!holds) throw std::invalid_argument(text);
}

void checkOffsets(const PolygonScene& scene) {
  const std::vector<std::size_t>& offsets = scene.offsets;
  if (offsets.empty()) return require(scene.corners.empty(), "there are corners but no offsets");
  require(offsets.front() == 0, "the first offset is not 0");
  require(std::is_sorted(offsets.begin(), offsets.end()), "an offset is below the one before it");
  require(offsets.back() == scene.corners.size(), "the last offset is not the number of corners");
}

constexpr int MostObjects = 1 << 24;

bool comesAfter(const Label& label, const Label& earlier) {
  return std::pair(label.object, label.region) > std::pair(earlier.object, earlier.region);
}

void checkLabels(const PolygonScene& scene) {
  if (scene.labels.empty()) return;
  require(scene.labels.size() == outlineCount(scene), "there is not one label for each outline");
  Label last;
  for (const Label& label : scene.labels) {
    require(label.object >= 1 && label.region >= 1 && (label.face >= 1 || label.face == -1),
            "a label has a number below 1");
    // Every object up to the highest number has a row in tables.
    require(label.object <= MostObjects, "a label has an object number beyond 16777216");
    require(comesAfter(label, last), "the labels do not rise by object, then by region");
    last = label;
  }
}

void checkClasses(const PolygonScene& scene) {
  if (scene.classes.empty()) return;
  require(scene.classes.size() == outlineCount(scene), "there is not one class for each outline");
  const auto count = static_cast<long long>(scene.classNames.size());
  for (const int number : scene.classes)
    require(number >= -1 && number < count, "a class number points at no name");
}

void checkPoints(const PolygonScene& scene) {
  for (std::size_t i = 0; i < scene.points.size(); ++i)
    if (!isUsable(scene.points[i]))
      throw std::invalid_argument("point at position " + std::to_string(i) + " has " + NotUsable);
  for (const int corner : scene.corners)
    require(corner >= 0 && static_cast<std::size_t>(corner) < scene.points.size(),
            "a corner points at no point");
}

}  // namespace

PolygonScene polygonsOf(const Scene::Scene3D& scene) { return SceneReader(scene).take(); }

PolygonScene polygonsOf(const Session::LoadedScene& scene) {
  PolygonScene result = polygonsOf(scene.scene());
  result.classes = scene.classes().regions;
  result.classNames = scene.classes().names;
  checkClasses(result);
  return result;
}

void checkArrays(const PolygonScene& scene) {
  // Numbers inside an index have 32 bits.
  constexpr std::size_t Most = 2000000000;
  require(scene.corners.size() <= Most && scene.offsets.size() <= Most, "the scene is too large");
  checkOffsets(scene);
  checkLabels(scene);
  checkClasses(scene);
  require(scene.docking.empty() || scene.docking.size() == scene.corners.size(),
          "there is not one docking mark for each corner");
  checkPoints(scene);
}

}  // namespace Lumivane::Visibility
