// The second pass: the records of the shot, made from what the first left on each object.

#include "algorithm/pipeline/ShotBuilder.h"

#include "algorithm/pipeline/ObjectProjection.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "base/Indices.h"
#include "kernel/Docking.h"
#include "kernel/PointPool.h"
#include "utils/StageScope.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Properties.h>
#include <lumivane/base/Scale.h>
#include <lumivane/base/Scales.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Lumivane::Algorithm {

using Geometry::Face2d;
using Geometry::Faces2d;
using Geometry::Point2d;
using Geometry::Region2d;

namespace {

// Appends each number once, in the order of first appearance, to those that are there.
void appendOnce(std::vector<int>& numbers, const std::vector<int>& more, std::size_t edgeCount) {
  if (more.empty()) return;  // as for nearly all regions
  std::vector<bool> isThere(edgeCount + 1, false);
  for (const int number : numbers) isThere[static_cast<std::size_t>(number)] = true;
  for (const int number : more) {
    const auto position = static_cast<std::size_t>(number);
    if (!isThere[position]) numbers.push_back(number);
    isThere[position] = true;
  }
}

std::vector<Kernel::ClosedOutline> closedOutlines(const std::vector<PlanePolygon>& polygons) {
  std::vector<Kernel::ClosedOutline> outlines;
  outlines.reserve(polygons.size());
  for (const PlanePolygon& polygon : polygons)
    outlines.push_back(Kernel::closedOutline(polygon.points));
  return outlines;
}

// Makes the regions of a shot, object by object, merging their points into one list.
class ShotBuilder {
 public:
  ShotBuilder(Shot::Shot2d& builtShot, int colourProperty, double edgePrecision)
      : shot(builtShot),
        pool(Point2d::Precision),
        propertyNum(colourProperty),
        dockingPrecision(edgePrecision) {}

  // Frees each projected region when it has become regions of the shot for the last time.
  void build(Scene::Object& object, int objectNumber, PlaneRegions* projected, bool isLastUse) {
    Faces2d& faces2d = addObject(shot, object);
    for (std::size_t f = 0; f < faceCount(object); ++f) faces2d.addFace(new Face2d());

    if (projected != nullptr) {
      for (std::size_t r = 0; r < projected->size(); ++r) {
        if ((*projected)[r].empty()) continue;
        std::vector<PlanePolygon> polygons;
        if (isLastUse)
          polygons.swap((*projected)[r]);
        else
          polygons = (*projected)[r];
        buildRegions(object, objectNumber, static_cast<int>(r), polygons, faces2d);
      }
    }
    removeEmptyFaces(faces2d);
  }

 private:
  static std::size_t faceCount(const Scene::Object& object) {
    return object.getFaces() == nullptr ? 0 : Base::countOf(object.getFaces()->getFaces());
  }

  void buildRegions(Scene::Object& object, int objectNumber, int regionIndex,
                    std::vector<PlanePolygon>& polygons, Faces2d& faces2d) {
    Kernel::DockingNumbers docking;  // of each polygon, if there are several
    if (polygons.size() > 1) {
      const Utils::StageScope stage(Utils::Stage::Docking);
      docking = Kernel::dockingEdges(closedOutlines(polygons), dockingPrecision);
    }
    const Geometry::Region& region = *object.getRegions()->getRegion(regionIndex);
    const int facePosition = positionOfNumber(region.getFaceNumber());
    const auto colour = overrideColour(object.getFaces()->getFace(facePosition));

    for (std::size_t p = 0; p < polygons.size(); ++p) {
      auto* region2d = new Region2d();
      shot.getRegions()->addRegion(region2d);
      region2d->setObjectNumber(objectNumber);
      region2d->setPenNumber(object.getPenNumber());
      region2d->setBrushNumber(region.getBrushNumber());
      region2d->setFaceNumber(region.getFaceNumber());
      region2d->setSourceRegionNumber(regionIndex + 1);
      if (colour) region2d->setOverrideColor(*colour);
      fillPoints(*region2d, polygons[p], docking.empty() ? std::vector<int>() : docking[p]);
      polygons[p] = PlanePolygon();
      if (!docking.empty()) docking[p] = std::vector<int>();
      if (region.getFaceNumber() < 0) {
        // Unreachable as long as the face is looked up above.
        Cmd::logMessage("Scene::Object \"%s\" has region \"%d\" with undefined face number\n",
                        object.getId().c_str(), regionIndex);
        continue;
      }
      const auto regionNumber = static_cast<int>(shot.getRegions()->getRegions()->size());
      faces2d.getFace(facePosition)->addRegion(regionNumber);
    }
  }

  // The colour that the face's value of the chosen property has on the chosen scale.
  std::optional<Base::Color> overrideColour(Geometry::Face* face) const {
    if (shot.getProperty() == nullptr || shot.getScale() == nullptr) return std::nullopt;
    const auto* valued = dynamic_cast<Geometry::VFace*>(face);
    if (valued == nullptr) return std::nullopt;
    const std::optional<double> value = valued->getPropertyValue(propertyNum);
    if (!value) return std::nullopt;
    return shot.getScale()->getColor(*value);
  }

  // The region's points, and its docking edges: those found between the polygons first, then those
  // of points without an edge.
  void fillPoints(Region2d& region2d, const PlanePolygon& polygon,
                  const std::vector<int>& docking) {
    std::vector<int>& indices = *region2d.getPoints();
    indices.reserve(polygon.size());
    for (const Kernel::Vec2 point : polygon.points) indices.push_back(pointNumber(point));
    edges.clear();
    appendOnce(edges, docking, polygon.size());
    appendOnce(edges, polygon.edgeless, polygon.size());
    region2d.getDockingEdges()->assign(edges.begin(), edges.end());
  }

  // The number of the first point of the shot that agrees, or of a new one.
  int pointNumber(Kernel::Vec2 point) {
    std::size_t position = pool.find(point);
    if (position == Kernel::PointPool::None) {
      position = pool.add(point);
      shot.getPoints()->addPoint(new Point2d(point.x, point.y));
    }
    return static_cast<int>(position) + 1;
  }

  // A face's position here is no longer its number in the scene once a face before it is gone.
  static void removeEmptyFaces(Faces2d& faces2d) {
    Faces2d::Vector& list = *faces2d.getFaces();
    const auto isEmpty = [](const Face2d* face) { return numbersOf(face->getRegions()).empty(); };
    const auto end = std::stable_partition(list.begin(), list.end(),
                                           [&](const Face2d* face) { return !isEmpty(face); });
    std::for_each(end, list.end(), [](Face2d* face) { delete face; });
    list.erase(end, list.end());
  }

  Shot::Shot2d& shot;
  Kernel::PointPool pool;
  std::vector<int> edges;  // of the polygon at hand; kept for its memory
  int propertyNum;
  double dockingPrecision;
};

}  // namespace

void UnfinishedShotDeleter::operator()(Shot::Shot2d* shot) const {
  shot->setBrushes(nullptr);
  shot->setPens(nullptr);
  shot->setScale(nullptr);
  shot->setProperty(nullptr);
  delete shot;
}

UnfinishedShot newShot(Base::View* view) {
  UnfinishedShot shot(new Shot::Shot2d());
  shot->setView(view);
  shot->setPoints(new Geometry::Points2d());
  shot->setRegions(new Geometry::Regions2dInDrawingOrder());
  shot->setObjects(new Shot::Objects2d());
  return shot;
}

Geometry::Faces2d& addObject(Shot::Shot2d& shot, const Scene::Object& object) {
  auto* object2d = new Shot::Object2d();
  shot.getObjects()->addObject(object2d);
  object2d->setId(object.getId());
  object2d->setFaces(new Faces2d());
  return *object2d->getFaces();
}

UnfinishedShot buildShot(const ShotSource& source, ProjectedObjects& projections) {
  UnfinishedShot shot = newShot(source.view);
  shot->setBrushes(source.brushes);
  shot->setPens(source.pens);
  const bool isColoured = source.propertyNum > 0 && source.scaleNum > 0 &&
                          source.properties != nullptr && source.scales != nullptr;
  if (isColoured) {
    shot->setScale(source.scales->getScale(source.scaleNum - 1));
    shot->setProperty(source.properties->getProperty(source.propertyNum));
  }

  const std::size_t count = Base::countOf(source.objects->getObjects());
  const double step = 15.0 / static_cast<double>(std::max<std::size_t>(count, 1));
  const Utils::StageScope stage(Utils::Stage::Points);
  ShotBuilder builder(*shot, source.propertyNum, source.precision);
  for (std::size_t i = 0; i < count; ++i) {
    Utils::ProgressbarUtils::getInstance()->setProgress(static_cast<double>(i) * step + 15.0);
    Scene::Object& object = *(*source.objects->getObjects())[i];
    // An object without regions is not projected: what an earlier shot has left says nothing.
    const auto projected = projections.of.find(&object);
    const bool isProjected = projected != projections.of.end();
    builder.build(object, static_cast<int>(i) + 1, isProjected ? &projected->second.plane : nullptr,
                  isProjected && --projected->second.uses == 0);
  }
  return shot;
}

}  // namespace Lumivane::Algorithm
