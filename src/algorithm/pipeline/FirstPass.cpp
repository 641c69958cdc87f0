// The first pass. What it finds stays on each object: the polygon data of the regions, their part
// in front of the eye, the polygons that are kept, and these on the plane. A polygon that is not
// kept leaves an empty one in its place, so that positions stay aligned.
//
// How: all is done on plain values, which the second pass goes on with. The lists of polygon data
// and of vectors that an object hands out are only made from them when somebody asks.
//
// Several threads make the regions of the objects some at a time, each with a clipper and a
// projector of its own, and only read the model. The calling thread takes what they have made
// object by object, in the order of the list. What depends on more than the object is rare: an eye
// that is shifted, messages, errors, a budget of points that might not do. An object with any of
// that is made anew by the calling thread, as if it were alone, so what comes of it is the same by
// construction. If the eye may be shifted, all threads are stopped before that, and what they have
// made of later objects is dropped.

#include "algorithm/pipeline/FirstPass.h"

#include "algorithm/pipeline/HeldPolyData.h"
#include "algorithm/pipeline/ObjectProjection.h"
#include "algorithm/pipeline/PolygonClipper.h"
#include "algorithm/pipeline/RegionPolygon.h"
#include "algorithm/pipeline/RegionShapes.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "base/Indices.h"
#include "kernel/Angle.h"
#include "kernel/ConvexArea.h"
#include "scene/Deferred.h"
#include "utils/InOrder.h"
#include "utils/Shapes.h"
#include "utils/StageScope.h"

#include <lumivane/base/View.h>
#include <lumivane/cmd/MessageScope.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/utils/ProgressbarUtils.h>
#include <lumivane/utils/VtkUtils.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <vtkPlane.h>

namespace Lumivane::Algorithm {

using Kernel::Vec3;
using Scene::DeferredAccess;

namespace {

// The polygons of each region, as an object hands them out.
using RegionPolygons = std::vector<std::vector<std::vector<std::vector<double>>>>;

// Where the eye is stepped to if it stands on a cell: nearer to its plane than `reach`, over it,
// and looking along it to within `tilt` degrees.
std::optional<Vec3> shiftedEye(const NormalCell& cell, Vec3 eye, Vec3 forward, double reach,
                               double tilt) {
  const Vec3 origin = cell.polygon.front();
  const Vec3 cellNormal = toVec3(cell.normal);
  double eyeAt[3] = {eye.x, eye.y, eye.z};
  double originAt[3] = {origin.x, origin.y, origin.z};
  double normal[3] = {cellNormal.x, cellNormal.y, cellNormal.z};
  double foot[3];
  vtkPlane::ProjectPoint(eyeAt, originAt, normal, foot);
  const Vec3 projected{foot[0], foot[1], foot[2]};

  if (!(reach > Kernel::length3(eye - projected))) return std::nullopt;
  const double angle = Kernel::roundD(Kernel::angleDegrees(cellNormal, forward), 5);
  if (!(tilt > std::abs(angle - 90.0))) return std::nullopt;
  if (!Kernel::isInConvexArea(projected, cell.polygon)) return std::nullopt;
  return projected - (reach * 5.0) * cellNormal;
}

// What is kept of a region: the cells whose normals point away from the eye.
PlainPolygons keptPolygons(std::vector<NormalCell>&& cells, Vec3 eye) {
  PlainPolygons result;
  result.reserve(cells.size());
  for (NormalCell& cell : cells) {
    const Vec3 toCell = cell.polygon.front() - eye;
    if (Kernel::length3(toCell) == 0.0) {
      result.push_back(std::move(cell.polygon));
      continue;
    }
    const double angle = Kernel::roundD(Kernel::angleDegrees(toVec3(cell.normal), toCell), 2);
    // An angle that is not a number is neither: nothing is appended then.
    if (angle >= 90.0) result.emplace_back();
    if (angle < 90.0) result.push_back(std::move(cell.polygon));
  }
  return result;
}

RegionPolygons* regionPolygonsOf(const std::vector<PlainPolygons>& regions) {
  auto result = std::make_unique<RegionPolygons>(regions.size());
  for (std::size_t r = 0; r < regions.size(); ++r)
    for (const std::vector<Vec3>& polygon : regions[r])
      (*result)[r].push_back(Utils::toVectors(polygon));
  return result.release();
}

// Some regions of an object, one after the other.
struct RegionRange {
  std::size_t first;
  std::size_t last;
};

std::size_t regionCount(const Scene::Object& object) {
  return Base::countOf(object.getRegions()->getRegions());
}

RegionShapes regionShapes(const Scene::Object& object, RegionRange range,
                          Geometry::Points3d* points) {
  RegionShapes shapes;
  std::vector<Vec3> polygon;
  for (std::size_t r = range.first; r < range.last; ++r) {
    readRegionPolygon((*object.getRegions()->getRegions())[r], points, polygon);
    shapes.add(polygon);
  }
  return shapes;
}

// What threads have made of some regions of an object.
struct RegionsMade {
  RegionShapes shapes;
  std::vector<PlainPolygons> visible;
  ObjectProjection projection;
  bool hasSpoken = false;  // so that its messages are yet to be printed
  bool mayShift = false;   // the eye, or has failed
};

// Makes regions with the eye as it is, and without any effect.
class RegionMaker {
 public:
  RegionMaker(const ProjectionSetting& projection, const EyeShift& eyeShift,
              const ShotBudget& budgetOfAll)
      : setting(projection), shift(eyeShift), budget(budgetOfAll) {}

  RegionsMade make(Scene::Object& object, RegionRange range) {
    const Utils::StageScope stage(Utils::Stage::PolygonData);
    RegionsMade made;
    const Cmd::MessageScope unheard([&made](std::string_view) { made.hasSpoken = true; });
    try {
      made.shapes = regionShapes(object, range, setting.points);
      look(made);
      ShotBudget budgetOfRegions = budget;
      made.projection = projectRegions(object, made.visible, setting, budgetOfRegions, range.first);
    } catch (...) {
      made.mayShift = true;  // what it throws is thrown when it is made anew
    }
    return made;
  }

 private:
  void look(RegionsMade& made) {
    const Utils::StageScope stage(Utils::Stage::ClipAndCull);
    const Vec3 eye = eyeOf(*setting.view);
    const Vec3 forward = forwardOf(*setting.view);
    clipper.setPlane(eye, forward);
    made.visible.reserve(made.shapes.size());
    for (std::size_t k = 0; k < made.shapes.size(); ++k) {
      auto& cells = clipper.clip(made.shapes.polygon(k), made.shapes.pointCount(k));
      for (const NormalCell& cell : cells)
        if (shiftedEye(cell, eye, forward, shift.reach, shift.tilt)) made.mayShift = true;
      made.visible.push_back(keptPolygons(std::move(cells), eye));
    }
  }

  ProjectionSetting setting;
  EyeShift shift;
  ShotBudget budget;
  PolygonClipper clipper;
};

// Takes the objects one by one. An eye that is shifted stays where it is for all that follow.
class FirstPass {
 public:
  FirstPass(const ProjectionSetting& projection, const EyeShift& eyeShift)
      : setting(projection), reach(eyeShift.reach), tilt(eyeShift.tilt) {}

  const ShotBudget& budgetLeft() const { return budget; }

  // Takes the regions of an object that were made without any effect but that on the budget.
  PlaneRegions take(Scene::Object& object, RegionsMade made) {
    const Vec3 eye = eyeOf(*setting.view);
    const Vec3 forward = forwardOf(*setting.view);
    const auto shapes = std::make_shared<const RegionShapes>(std::move(made.shapes));
    const auto visible =
        std::make_shared<const std::vector<PlainPolygons>>(std::move(made.visible));
    const auto recipe = std::make_shared<const PlaneRecipe>(std::move(made.projection.recipe));
    DeferredAccess::setRegionsPolyData(object, [shapes] { return polyDataOf(*shapes); });
    DeferredAccess::setRegionsClippedPolyData(
        object, [shapes, eye, forward] { return clippedPolyDataOf(*shapes, eye, forward); });
    DeferredAccess::setRegionsVisiblePolygons(object,
                                              [visible] { return regionPolygonsOf(*visible); });
    DeferredAccess::setRegionsProjectedPolygons(
        object, [visible, recipe] { return edgeStartPoints(recipe->carriedOut(*visible)); });
    budget.take(made.projection.taken);
    return std::move(made.projection.plane);
  }

  PlaneRegions project(Scene::Object& object) {
    const Utils::StageScope stage(Utils::Stage::PolygonData);
    const auto shapes = std::make_shared<const RegionShapes>(
        regionShapes(object, {0, regionCount(object)}, setting.points));
    DeferredAccess::setRegionsPolyData(object, [shapes] { return polyDataOf(*shapes); });

    const auto visible = std::make_shared<const std::vector<PlainPolygons>>(look(object, shapes));
    DeferredAccess::setRegionsVisiblePolygons(object,
                                              [visible] { return regionPolygonsOf(*visible); });

    ObjectProjection projection = projectRegions(object, *visible, setting, budget);
    auto recipe = std::make_shared<const PlaneRecipe>(std::move(projection.recipe));
    DeferredAccess::setRegionsProjectedPolygons(
        object, [visible, recipe] { return edgeStartPoints(recipe->carriedOut(*visible)); });
    return std::move(projection.plane);
  }

  // An object without a list of regions may hold polygon data all the same, from its host or from a
  // shot before it lost the list. It gets its lists like any other. The second pass makes nothing
  // of them: with no regions there are no brushes, faces and numbers.
  void projectHeld(Scene::Object& object) {
    const PolyDataList* const held = object.getRegionsPolyData();
    if (held == nullptr) return;
    const Vec3 eye = eyeOf(*setting.view);
    const Vec3 forward = forwardOf(*setting.view);
    auto clipped = std::make_unique<PolyDataList>();
    for (const vtkSmartPointer<vtkPolyData>& data : *held)
      clipped->push_back(
          Utils::VtkUtils::clip(data, {eye.x, eye.y, eye.z}, {forward.x, forward.y, forward.z}));
    std::vector<PlainPolygons> visible;
    for (std::size_t k = 0; k < clipped->size(); ++k)
      visible.push_back(analysed(object, k, normalCellsOf((*clipped)[k]), eye, forward));
    object.setRegionsClippedPolyData(clipped.release());
    object.setRegionsVisiblePolygons(regionPolygonsOf(visible));
    object.setRegionsProjectedPolygons(
        edgeStartPoints(projectRegions(object, visible, setting, budget).plane));
  }

 private:
  // Clips the regions, shifts the eye off those that it stands on and chooses what is kept.
  std::vector<PlainPolygons> look(Scene::Object& object,
                                  const std::shared_ptr<const RegionShapes>& shapes) {
    const Utils::StageScope stage(Utils::Stage::ClipAndCull);
    // Clipping and the camera shift of this object use the eye as it is now, whatever is shifted.
    const Vec3 eye = eyeOf(*setting.view);
    const Vec3 forward = forwardOf(*setting.view);
    DeferredAccess::setRegionsClippedPolyData(
        object, [shapes, eye, forward] { return clippedPolyDataOf(*shapes, eye, forward); });

    clipper.setPlane(eye, forward);
    std::vector<PlainPolygons> visible;
    visible.reserve(shapes->size());
    for (std::size_t k = 0; k < shapes->size(); ++k) {
      auto& cells = clipper.clip(shapes->polygon(k), shapes->pointCount(k));
      visible.push_back(analysed(object, k, std::move(cells), eye, forward));
    }
    return visible;
  }

  // What is kept of the cells of a region, once the eye has been shifted off them.
  PlainPolygons analysed(Scene::Object& object, std::size_t region, std::vector<NormalCell>&& cells,
                         Vec3 eye, Vec3 forward) {
    for (const NormalCell& cell : cells) shift(object, region, cell, eye, forward);
    return keptPolygons(std::move(cells), eyeOf(*setting.view));
  }

  // Steps the eye off a cell that it stands on; of several, the last one wins.
  void shift(Scene::Object& object, std::size_t region, const NormalCell& cell, Vec3 eye,
             Vec3 forward) {
    const std::optional<Vec3> shifted = shiftedEye(cell, eye, forward, reach, tilt);
    if (!shifted) return;
    Geometry::Point3d* eyePosition = setting.view->getOrientation()->getEyePosition();
    eyePosition->setX(shifted->x);
    eyePosition->setY(shifted->y);
    eyePosition->setZ(shifted->z);
    object.setCameraInRegionIndex(static_cast<int>(region));
  }

  ProjectionSetting setting;
  double reach;
  double tilt;
  PolygonClipper clipper;
  ShotBudget budget{shotLimits(), Geometry::Point2d::Precision};
};

// Regions of one object that a thread makes at a time.
struct Task {
  std::size_t object;
  RegionRange range;
};

// All objects of a scene, by one thread or by several.
class ObjectPass {
 public:
  ObjectPass(const std::vector<Scene::Object*>& objectsOfScene, const ProjectionSetting& projection,
             const EyeShift& eyeShift)
      : objects(objectsOfScene), setting(projection), shift(eyeShift), pass(projection, eyeShift) {}

  ProjectedObjects project(std::size_t threads) {
    std::size_t next = 0;
    if (threads > 1 && areMany() && areDifferent()) {
      for (int stops = 0; next < objects.size() && stops < MostStops; ++stops) {
        next = projectInThreads(next, threads);
        if (next < objects.size()) projectAlone(next++);
      }
    }
    for (; next < objects.size(); ++next) projectAlone(next);
    return std::move(result);
  }

 private:
  static constexpr std::size_t RegionsAtATime = 64;
  static constexpr std::size_t FewRegions = 1000;
  static constexpr int MostStops = 8;  // of all threads; from then on there is one

  // Whether another thread is worth its while.
  bool areMany() const {
    std::size_t count = 0;
    for (const Scene::Object* object : objects)
      if (object->getRegions() != nullptr) count += regionCount(*object);
    return count >= FewRegions;
  }

  // An object that is listed twice would be read and changed at a time.
  bool areDifferent() {
    for (const Scene::Object* object : objects) result.of[object];
    const bool allDiffer = result.of.size() == objects.size();
    result.of.clear();
    return allDiffer;
  }

  void projectAlone(std::size_t i) {
    report(i);
    if (objects[i]->getRegions() == nullptr)
      pass.projectHeld(*objects[i]);
    else
      keep(i, pass.project(*objects[i]));
  }

  void report(std::size_t i) const {
    const double step = 15.0 / static_cast<double>(objects.size());
    Utils::ProgressbarUtils::getInstance()->setProgress(static_cast<double>(i) * step);
  }

  void keep(std::size_t i, PlaneRegions plane) {
    ProjectedObjects::Part& part = result.of[objects[i]];
    part.plane = std::move(plane);
    ++part.uses;
  }

  // The objects from one on, up to the first without a list of regions, in tasks of about a size.
  std::vector<Task> tasksFrom(std::size_t first) const {
    std::vector<Task> tasks;
    for (std::size_t i = first; i < objects.size() && objects[i]->getRegions() != nullptr; ++i) {
      const std::size_t count = regionCount(*objects[i]);
      std::size_t start = 0;
      do {
        const std::size_t end = std::min(count, start + RegionsAtATime);
        tasks.push_back({i, {start, end}});
        start = end;
      } while (start < count);
    }
    return tasks;
  }

  // Gives the first object that is yet to be projected alone; the number of objects if there is
  // none.
  std::size_t projectInThreads(std::size_t first, std::size_t threads) {
    const std::vector<Task> tasks = tasksFrom(first);
    std::size_t next = first;
    RegionsMade all;                              // of the object whose tasks are joined
    const ShotBudget budget = pass.budgetLeft();  // of which objects are taken meanwhile
    const auto newMaker = [this, &tasks, &budget] {
      auto maker = std::make_unique<RegionMaker>(setting, shift, budget);
      return [this, &tasks, maker = std::move(maker)](std::size_t index) {
        return maker->make(*objects[tasks[index].object], tasks[index].range);
      };
    };
    Utils::makeInOrder(tasks.size(), threads, newMaker, [&](RegionsMade&& made, std::size_t index) {
      if (tasks[index].range.first == 0) all = RegionsMade();
      append(all, std::move(made));
      const bool isWhole = index + 1 == tasks.size() || tasks[index + 1].range.first == 0;
      if (!isWhole) return true;
      if (all.mayShift) return false;
      const bool isAlone = all.hasSpoken || all.projection.needed > pass.budgetLeft().left();
      if (isAlone) {
        projectAlone(next);
      } else {
        report(next);
        keep(next, pass.take(*objects[next], std::move(all)));
      }
      ++next;
      return true;
    });
    return next;
  }

  static void append(RegionsMade& all, RegionsMade&& more) {
    all.hasSpoken = all.hasSpoken || more.hasSpoken;
    all.mayShift = all.mayShift || more.mayShift;
    if (all.visible.empty()) {
      const RegionsMade flags = {{}, {}, {}, all.hasSpoken, all.mayShift};
      all = std::move(more);
      all.hasSpoken = flags.hasSpoken;
      all.mayShift = flags.mayShift;
      return;
    }
    all.shapes.append(more.shapes);
    std::move(more.visible.begin(), more.visible.end(), std::back_inserter(all.visible));
    all.projection.append(std::move(more.projection));
  }

  const std::vector<Scene::Object*>& objects;
  ProjectionSetting setting;
  EyeShift shift;
  FirstPass pass;
  ProjectedObjects result;
};

}  // namespace

ProjectedObjects projectObjects(const std::vector<Scene::Object*>& objects,
                                const ProjectionSetting& setting, const EyeShift& shift) {
  return ObjectPass(objects, setting, shift).project(Utils::threadCount(shotLimits().threads));
}

}  // namespace Lumivane::Algorithm
