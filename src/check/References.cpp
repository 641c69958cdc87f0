// Numbers that point at nothing make a shot throw or draw wrongly, so they are errors; those that
// nothing follows are warnings. Each finding names the object and the record.

#include "check/References.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Overlay.h>
#include <lumivane/geometry/Overlays.h>
#include <lumivane/geometry/Part.h>
#include <lumivane/geometry/Parts.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace Lumivane::Check {
namespace {

constexpr const char* FixId = "give each object an id of its own";
constexpr const char* FixNumber = "numbers count from 1; fix the number or add what it means";

const Geometry::Regions::Vector& regionsOf(Scene::Object& object) {
  return itemsOf(object.getRegions() == nullptr ? nullptr : object.getRegions()->getRegions());
}

const Geometry::Faces::Vector& facesOf(Scene::Object& object) {
  return itemsOf(object.getFaces() == nullptr ? nullptr : object.getFaces()->getFaces());
}

bool lists(const std::vector<int>& numbers, size_t number) {
  return std::find(numbers.begin(), numbers.end(), static_cast<int>(number)) != numbers.end();
}

// Whether a polygon can have a point as a corner: polygons are computed in single precision.
// Numbers that mean no point are reported elsewhere.
bool isUsable(const Counts& counts, int number) {
  if (!isNumberOf(number, counts.points)) return true;
  const Geometry::Point3d* const point = (*counts.pointList)[static_cast<size_t>(number) - 1];
  if (point == nullptr) return true;
  return std::abs(point->getX()) <= SceneChecker::LargestCoordinate &&
         std::abs(point->getY()) <= SceneChecker::LargestCoordinate &&
         std::abs(point->getZ()) <= SceneChecker::LargestCoordinate;  // false for what is no number
}

void findRegionErrors(Geometry::Region& region, size_t number, const Counts& counts, size_t faces,
                      Findings& findings) {
  for (const int point : itemsOf(region.getPoints()))
    if (!isNumberOf(point, counts.points)) {
      findings.addRegion(Severity::Error, "point-number", number,
                         outOfRange("point", point, counts.points), FixNumber);
      break;
    }
  for (const int point : itemsOf(region.getPoints()))
    if (!isUsable(counts, point)) {
      findings.addRegion(
          Severity::Error, "coordinate", number,
          "point " + std::to_string(point) +
              " has a coordinate that is not finite in single precision",
          "give it three numbers below 1e38: polygons are computed in that precision");
      break;
    }
  for (const int edge : itemsOf(region.getDockingEdges()))
    if (edge < 1) {
      findings.addRegion(Severity::Error, "docking-edge-number", number,
                         "docking edge " + std::to_string(edge) + ", but they count from 1",
                         "edge n starts at the region's n-th point");
      break;
    }
  if (!isNumberOf(region.getFaceNumber(), faces))
    findings.addRegion(Severity::Error, "face-number", number,
                       outOfRange("face", region.getFaceNumber(), faces),
                       "give every region the number of one of the object's faces");
}

void findLooseRegionNumbers(Geometry::Region& region, size_t number, const Counts& counts,
                            Findings& findings) {
  if (counts.hasBrushes && !isNumberOf(region.getBrushNumber(), counts.brushes))
    findings.addRegion(Severity::Warning, "brush-number", number,
                       outOfRange("brush", region.getBrushNumber(), counts.brushes) +
                           "; no picture can be drawn of it",
                       FixNumber);
  const size_t points = itemsOf(region.getPoints()).size();
  for (const int edge : itemsOf(region.getDockingEdges()))
    if (edge > 0 && !isNumberOf(edge, points)) {
      findings.addRegion(Severity::Warning, "docking-edge-number", number,
                         outOfRange("docking edge", edge, points),
                         "edge n starts at the region's n-th point");
      break;
    }
}

// A face's list says which regions it has, and each region says which face it is of.
void findContradictions(Scene::Object& object, Findings& findings) {
  const auto& regions = regionsOf(object);
  const auto& faces = facesOf(object);
  for (size_t f = 0; f < faces.size(); ++f) {
    if (faces[f] == nullptr) continue;
    for (const int number : itemsOf(faces[f]->getRegions())) {
      if (!isNumberOf(number, regions.size())) {
        findings.addFace(Severity::Warning, "face-region-number", f + 1,
                         outOfRange("region", number, regions.size()), FixNumber);
        continue;
      }
      const Geometry::Region* const region = regions[static_cast<size_t>(number) - 1];
      if (region != nullptr && region->getFaceNumber() != static_cast<int>(f + 1))
        findings.addFace(Severity::Warning, "face-list", f + 1,
                         "lists region " + std::to_string(number) + ", which says it is of face " +
                             std::to_string(region->getFaceNumber()),
                         "the region's \"Face\" decides; correct the list");
    }
  }
  for (size_t r = 0; r < regions.size(); ++r) {
    if (regions[r] == nullptr || !isNumberOf(regions[r]->getFaceNumber(), faces.size())) continue;
    const size_t face = static_cast<size_t>(regions[r]->getFaceNumber());
    const Geometry::Face* const listing = faces[face - 1];
    if (listing != nullptr && !lists(itemsOf(listing->getRegions()), r + 1))
      findings.addRegion(Severity::Warning, "face-list", r + 1,
                         "is of face " + std::to_string(face) + ", whose list does not hold it",
                         "add the region to the face's \"Regions\"");
  }
}

}  // namespace

Counts::Counts(Scene::Scene3D& scene)
    : pointList(&itemsOf(scene.getPoints() == nullptr ? nullptr : scene.getPoints()->getPoints())),
      points(pointList->size()),
      brushes(itemsOf(scene.getBrushes() == nullptr ? nullptr : scene.getBrushes()->getBrushes())
                  .size()),
      pens(itemsOf(scene.getPens() == nullptr ? nullptr : scene.getPens()->getPens()).size()),
      objects(itemsOf(scene.getObjects() == nullptr ? nullptr : scene.getObjects()->getObjects())
                  .size()),
      hasBrushes(scene.getBrushes() != nullptr && scene.getBrushes()->getBrushes() != nullptr),
      hasPens(scene.getPens() != nullptr && scene.getPens()->getPens() != nullptr) {}

void findErrors(Scene::Object& object, const Counts& counts, Findings& findings) {
  const auto& regions = regionsOf(object);
  const size_t faces = facesOf(object).size();
  if (!regions.empty() && object.getFaces() == nullptr) {
    findings.add(Severity::Error, "no-faces", "has regions but no list of faces",
                 "add \"Faces\", and give each region the number of its face");
    return;
  }
  for (size_t i = 0; i < regions.size() && !findings.full(); ++i)
    if (regions[i] != nullptr) findRegionErrors(*regions[i], i + 1, counts, faces, findings);
}

void findLooseNumbers(Scene::Object& object, const Counts& counts, Findings& findings) {
  if (counts.hasPens && !isNumberOf(object.getPenNumber(), counts.pens))
    findings.add(
        Severity::Warning, "pen-number",
        outOfRange("pen", object.getPenNumber(), counts.pens) + "; no picture can be drawn of it",
        FixNumber);
  const auto& regions = regionsOf(object);
  for (size_t i = 0; i < regions.size(); ++i)
    if (regions[i] != nullptr) findLooseRegionNumbers(*regions[i], i + 1, counts, findings);
  findContradictions(object, findings);
  for (const Geometry::Part* const part :
       itemsOf(object.getParts() == nullptr ? nullptr : object.getParts()->getParts()))
    for (const int number : itemsOf(part == nullptr ? nullptr : part->getRegions()))
      if (!isNumberOf(number, regions.size()))
        findings.add(Severity::Warning, "part-region-number",
                     "a part lists " + outOfRange("region", number, regions.size()), FixNumber);
  for (const Geometry::Overlay* const overlay :
       itemsOf(object.getOverlays() == nullptr ? nullptr : object.getOverlays()->getOverlays()))
    if (overlay != nullptr && !isNumberOf(overlay->getObjectNumber(), counts.objects))
      findings.add(
          Severity::Warning, "overlay-object-number",
          "an overlay lies on " + outOfRange("object", overlay->getObjectNumber(), counts.objects),
          FixNumber);
}

namespace {

size_t pointCount(const Geometry::Region* region) {
  return region == nullptr ? 0 : itemsOf(region->getPoints()).size();
}

bool canBeSeen(const Geometry::Region* region) { return pointCount(region) >= 3; }

// The number of the first region that can be seen of `later` and has no points in `first`; or 0.
size_t regionOfLaterOnly(Scene::Object& first, Scene::Object& later) {
  const auto& there = regionsOf(first);
  const auto& here = regionsOf(later);
  for (size_t r = 0; r < here.size(); ++r)
    if (canBeSeen(here[r]) && (r >= there.size() || pointCount(there[r]) == 0)) return r + 1;
  return 0;
}

}  // namespace

void findDoubleIds(Scene::Scene3D& scene, Severity least, Findings& findings) {
  std::map<std::string, size_t> first;
  const auto& objects =
      itemsOf(scene.getObjects() == nullptr ? nullptr : scene.getObjects()->getObjects());
  for (size_t i = 0; i < objects.size(); ++i) {
    if (objects[i] == nullptr) continue;
    const auto [place, isNew] = first.emplace(objects[i]->getId(), i + 1);
    if (isNew) continue;
    findings.setObject(objects[i]->getId());
    const auto& regions = regionsOf(*objects[i]);
    const size_t region = regionOfLaterOnly(*objects[place->second - 1], *objects[i]);
    const std::string both = "objects " + std::to_string(place->second) + " and " +
                             std::to_string(i + 1) + " have one id, and ";
    if (region > 0)
      findings.add(Severity::Error, "double-id",
                   both + "the drawing order misses region " + std::to_string(region) + " of " +
                       std::to_string(i + 1) + " in " + std::to_string(place->second),
                   FixId);
    else if (std::any_of(regions.begin(), regions.end(), canBeSeen))
      findings.add(Severity::Error, "double-id",
                   both + "the drawing order takes the regions of " +
                       std::to_string(place->second) + " for those of " + std::to_string(i + 1),
                   FixId);
    else if (least == Severity::Warning)
      findings.add(Severity::Warning, "double-id", both + "of the second nothing can be seen",
                   FixId);
  }
}

}  // namespace Lumivane::Check
