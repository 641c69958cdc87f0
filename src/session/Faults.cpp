#include "check/Findings.h"
#include "kernel/DisplayText.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Scales.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Faults.h>
#include <lumivane/session/ViewSettings.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <set>
#include <vector>

// Numbers that point at nothing, found before the model follows them. A fault is named by object
// and region, and only if what is to be done would meet it.
namespace Lumivane::Session {
namespace {

using Check::isNumberOf;

// Null where there is not a list: then defaults are drawn.
template <class Document>
const Base::Brushes::Vector* brushesOf(Document& document) {
  return document.getBrushes() == nullptr ? nullptr : document.getBrushes()->getBrushes();
}

template <class Document>
const Base::Pens::Vector* pensOf(Document& document) {
  return document.getPens() == nullptr ? nullptr : document.getPens()->getPens();
}

template <class Vector>
size_t count(const Vector* vector) {
  return vector == nullptr ? 0 : vector->size();
}

std::string wrong(const char* what, int number, size_t count) {
  return Check::outOfRange(what, number, count);
}

// "object "A", region 3 (drawn as number 12): brush 9, but there are 1 to 8"
std::string place(Shot::Shot2d& shot, Geometry::Region2d& region, size_t position) {
  const auto* const objects =
      shot.getObjects() == nullptr ? nullptr : shot.getObjects()->getObjects();
  const int number = region.getObjectNumber();
  const std::string drawn = "region " + std::to_string(position + 1) + " of the shot";
  if (!isNumberOf(number, count(objects))) return drawn + ": ";
  const Shot::Object2d* const object = (*objects)[static_cast<size_t>(number) - 1];
  if (object == nullptr) return drawn + ": ";
  return "object \"" + Kernel::idText(object->getId()) + "\", region " +
         std::to_string(region.getSourceRegionNumber()) + " (" + drawn + "): ";
}

template <class Check>
std::string firstFault(Shot::Shot2d& shot, const Check& check) {
  const auto* const regions =
      shot.getRegions() == nullptr ? nullptr : shot.getRegions()->getRegions();
  for (size_t i = 0; i < count(regions); ++i) {
    if ((*regions)[i] == nullptr) continue;
    const std::string fault = check(*(*regions)[i]);
    if (!fault.empty()) return place(shot, *(*regions)[i], i) + fault;
  }
  return "";
}

// What the numbers of a scene's regions lead to when it is drawn. Without a list of brushes or pens
// defaults are drawn.
struct DrawnLists {
  size_t points;
  const Base::Brushes::Vector* brushes;
  const Base::Pens::Vector* pens;
};

// By the rules of the drawing: an outline takes two points, a polygon three, and what has neither
// needs no brush and no pen.
constexpr size_t OutlinePoints = 2;
constexpr size_t PolygonPoints = 3;

// An edge is drawn unless it is a docking edge.
template <class Region>
bool hasOutline(Region& region) {
  const size_t edges = count(region.getPoints());
  if (edges < OutlinePoints) return false;
  const std::vector<int>* const docking = region.getDockingEdges();
  if (docking == nullptr) return true;
  const std::set<int> notDrawn(docking->begin(), docking->end());
  size_t left = edges;
  for (const int edge : notDrawn)
    if (isNumberOf(edge, edges)) --left;
  return left > 0;
}

// ", region 2: brush 9, but there are 1 to 8"
std::string regionFault(size_t position, const std::string& fault) {
  return ", region " + std::to_string(position + 1) + ": " + fault;
}

std::string drawingFault(Scene::Object& object, const DrawnLists& lists) {
  if (object.getRegions() == nullptr) return "";
  const auto* const regions = object.getRegions()->getRegions();
  bool hasLines = false;
  for (size_t r = 0; r < count(regions); ++r) {
    Geometry::Region* const region = (*regions)[r];
    if (region == nullptr || count(region->getPoints()) < OutlinePoints) continue;
    hasLines = hasLines || hasOutline(*region);
    for (const int number : *region->getPoints())
      if (!isNumberOf(number, lists.points))
        return regionFault(r, wrong("point", number, lists.points));
    if (lists.brushes == nullptr || region->getPoints()->size() < PolygonPoints) continue;
    if (!isNumberOf(region->getBrushNumber(), lists.brushes->size()))
      return regionFault(r, wrong("brush", region->getBrushNumber(), lists.brushes->size()));
  }
  const int pen = object.getPenNumber();
  if (!hasLines || lists.pens == nullptr || isNumberOf(pen, lists.pens->size())) return "";
  return ": " + wrong("pen", pen, lists.pens->size());
}

}  // namespace

std::string sceneFault(Scene::Scene3D& scene, const ViewSettings& view) {
  const size_t scales = scene.getScales() == nullptr ? 0 : count(scene.getScales()->getScales());
  if (view.property > 0 && view.scale > 0 && !isNumberOf(view.scale, scales))
    return wrong("scale", view.scale, scales);
  const std::vector<Check::Finding> errors = Check::SceneChecker::errors(scene);
  return errors.empty() ? "" : errors.front().line();
}

std::string sceneErrors(Scene::Scene3D& scene) {
  const std::vector<Check::Finding> errors = Check::SceneChecker::errors(scene);
  if (errors.empty()) return "";
  const std::string first = errors.front().line();
  return errors.size() == 1
             ? first
             : first + " (and " + std::to_string(errors.size() - 1) + " more: see lumivane check)";
}

std::string sceneDrawingFault(Scene::Scene3D& scene) {
  if (scene.getObjects() == nullptr || scene.getPoints() == nullptr) return "";
  const size_t points = count(scene.getPoints()->getPoints());
  if (points == 0) return "";  // nothing is drawn then
  const DrawnLists lists{points, brushesOf(scene), pensOf(scene)};
  const auto* const objects = scene.getObjects()->getObjects();
  for (size_t i = 0; i < count(objects); ++i) {
    if ((*objects)[i] == nullptr) continue;
    const std::string fault = drawingFault(*(*objects)[i], lists);
    if (!fault.empty()) return "object \"" + Kernel::idText((*objects)[i]->getId()) + "\"" + fault;
  }
  return "";
}

std::string shotFault(Shot::Shot2d& shot) {
  const auto* const brushes = brushesOf(shot);
  const auto* const pens = pensOf(shot);
  const bool filled = shot.getView() == nullptr ||
                      shot.getView()->getDisplayStyle() != Base::ViewDisplayStyle::Outline;
  if (brushes != nullptr && filled) {
    std::string fault = firstFault(shot, [brushes](Geometry::Region2d& region) -> std::string {
      if (count(region.getPoints()) == 0 || isNumberOf(region.getBrushNumber(), brushes->size()))
        return "";
      return wrong("brush", region.getBrushNumber(), brushes->size());
    });
    if (!fault.empty()) return fault;
  }
  if (pens == nullptr) return "";
  return firstFault(shot, [pens](Geometry::Region2d& region) -> std::string {
    if (!hasOutline(region) || isNumberOf(region.getPenNumber(), pens->size())) return "";
    return wrong("pen", region.getPenNumber(), pens->size());
  });
}

std::string shotPointsFault(Shot::Shot2d& shot) {
  const size_t points = shot.getPoints() == nullptr ? 0 : count(shot.getPoints()->getPoints());
  return firstFault(shot, [points](Geometry::Region2d& region) -> std::string {
    if (region.getPoints() == nullptr) return "";
    for (const int number : *region.getPoints())
      if (!isNumberOf(number, points)) return wrong("point", number, points);
    return "";
  });
}

}  // namespace Lumivane::Session
