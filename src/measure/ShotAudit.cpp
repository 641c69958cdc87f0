#include "measure/AreaOutlines.h"
#include "measure/MapOutlines.h"
#include "measure/ShotProjection.h"
#include "measure/VisibleArrangement.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/measure/ShotAudit.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/visibility/SceneIndex.h>

#include <array>
#include <cstddef>
#include <map>
#include <stdexcept>
#include <utility>

// Shot and map are swept as one arrangement: where the regions that both show differ, the shot is
// wrong. Nothing is sampled. The map's arcs are cut into chords far shorter than those of the
// picture. The outlines of wrong parts, where they are asked for, come of the boundaries that the
// areas are summed up from.
namespace Lumivane::Measure {
namespace {

using Algorithm::ProjectionType;
using Visibility::Label;
using Visibility::VisibleMap;

// Small beside the sagitta of the picture's chords, 5e-5 at their default length.
constexpr double Tolerance = 1e-6;

Visibility::Vector vectorOf(const Geometry::Vector3d& v) { return {v.getX(), v.getY(), v.getZ()}; }

VisibleMap lookOf(const Session::TakenShot& shot, const Visibility::SceneIndex& index,
                  int threads) {
  Base::ViewOrientation3D& orientation = *shot.view().getOrientation();
  Visibility::LookOptions options;
  options.forward = vectorOf(*orientation.getForwardDirection());
  options.up = vectorOf(*orientation.getUpDirection());
  options.threads = threads;
  return index.look(shot.eye(), options);
}

size_t regionCount(const Shot::Shot2d& shot) {
  return shot.getRegions() == nullptr ? 0 : shot.getRegions()->getRegions()->size();
}

// The regions of the picture, and behind them the map's cells.
std::vector<SweepEdge> edgesOfBoth(const Shot::Shot2d& shot, const MapOutlines& map,
                                   const ContourRule& rule) {
  std::vector<Kernel::Vec2> points;
  points.reserve(map.points.size());
  for (const Kernel::Vec2 point : map.points) points.push_back(rule.sweepPoint(point));
  std::vector<Outline> outlines;
  outlines.reserve(map.rings.size());
  const auto behind = static_cast<RegionNumber>(regionCount(shot)) + 1;
  for (const MapOutlines::Ring& ring : map.rings)
    outlines.push_back({behind + static_cast<RegionNumber>(ring.cell), &ring.points});
  std::vector<SweepEdge> edges = sweepEdges(shot, rule);
  const std::vector<SweepEdge> mapEdges = sweepEdges(std::move(points), outlines);
  edges.insert(edges.end(), mapEdges.begin(), mapEdges.end());
  return edges;
}

// The face is left out: a region is of one face only.
Label labelOfRegion(const Shot::Shot2d& shot, RegionNumber number) {
  if (number == 0) return {};
  const Geometry::Region2d& region =
      *(*shot.getRegions()->getRegions())[static_cast<size_t>(number - 1)];
  return {region.getObjectNumber(), 0, region.getSourceRegionNumber()};
}

Label labelOfCell(const VisibleMap& map, RegionNumber number) {
  if (number == 0) return {};
  const Label& label = map.cells[static_cast<size_t>(number - 1)].label;
  return {label.object, 0, label.region};
}

// Gathers what bounds the wrong areas, those with the same two regions together.
class WrongAreas {
 public:
  static constexpr std::size_t Right = static_cast<std::size_t>(-1);

  // Areas are added in the order in which stretches count them.
  void add(Label shown, Label seen, bool isWrong) {
    const Key key = {shown.object, shown.region, seen.object, seen.region};
    groupOfArea.push_back(isWrong ? groups.try_emplace(key, groups.size()).first->second : Right);
  }

  // Stretches of an edge that only part areas of one group are joined: each line of a part has one
  // piece of an edge.
  void addBounds(const std::vector<Stretch>& stretches) {
    bounds.resize(groups.size());
    Side last;
    for (const Stretch& stretch : stretches) {
      const Side side = {stretch.edge, groupAt(stretch.left), groupAt(stretch.right), stretch.low,
                         stretch.high};
      if (last.edge == side.edge && last.left == side.left && last.right == side.right &&
          last.high == side.low) {
        last.high = side.high;
      } else {
        take(last);
        last = side;
      }
    }
    take(last);
  }

  std::vector<WrongPart> parts() const {
    std::vector<WrongPart> all;
    for (const auto& [key, group] : groups) {
      for (OutlinedArea& area : outlinedAreas(bounds[group])) {
        WrongPart part;
        part.shown = {key[0], key[1]};
        part.seen = {key[2], key[3]};
        part.area = area.area;
        for (const std::vector<Kernel::Vec2>& ring : area.rings) addOutline(part, ring);
        all.push_back(std::move(part));
      }
    }
    return all;
  }

 private:
  using Key = std::array<int, 4>;
  struct Side {
    int edge = -1;
    std::size_t left = Right;
    std::size_t right = Right;
    Kernel::Vec2 low;
    Kernel::Vec2 high;
  };

  std::size_t groupAt(RegionNumber area) const {
    return groupOfArea[static_cast<std::size_t>(area)];
  }

  void take(const Side& side) {
    if (side.left == side.right) return;
    if (side.left != Right) bounds[side.left].push_back({side.low, side.high});
    if (side.right != Right) bounds[side.right].push_back({side.high, side.low});
  }

  static void addOutline(WrongPart& part, const std::vector<Kernel::Vec2>& ring) {
    std::vector<WrongPart::Point>& outline = part.outlines.emplace_back();
    outline.reserve(ring.size());
    for (const Kernel::Vec2 point : ring) {
      const Kernel::Vec2 p = ContourRule::picturePoint(point);
      outline.push_back({p.x, p.y});
    }
  }

  std::map<Key, std::size_t> groups;
  std::vector<std::size_t> groupOfArea;
  std::vector<std::vector<BorderPiece>> bounds;  // by group
};

}  // namespace

ShotAudit::ShotAudit(const Session::TakenShot& shot, const Visibility::SceneIndex& index,
                     int threads)
    : ShotAudit(shot, index, threads, WrongParts::NotKept) {}

ShotAudit::ShotAudit(const Session::TakenShot& shot, const Visibility::SceneIndex& index,
                     int threads, WrongParts parts)
    : keepsParts(parts == WrongParts::Kept) {
  compare(shot.shot(), projectionOf(shot.shot()), lookOf(shot, index, threads));
}

ShotAudit::ShotAudit(const Shot::Shot2d& shot, ProjectionType projection, const VisibleMap& map)
    : ShotAudit(shot, projection, map, WrongParts::NotKept) {}

ShotAudit::ShotAudit(const Shot::Shot2d& shot, ProjectionType projection, const VisibleMap& map,
                     WrongParts parts)
    : keepsParts(parts == WrongParts::Kept) {
  compare(shot, projection, map);
}

double ShotAudit::wrongShare() const { return theCovered > 0.0 ? theWrong / theCovered : 0.0; }

void ShotAudit::compare(const Shot::Shot2d& shot, ProjectionType projection,
                        const VisibleMap& map) {
  if (map.field != Visibility::Field::Hemisphere)
    throw std::invalid_argument("a shot is of a hemisphere, the map of the whole sphere");
  if (shot.getObjects() != nullptr) {
    for (const Shot::Object2d* one : *shot.getObjects()->getObjects())
      object(static_cast<int>(theObjects.size()) + 1).id = one->getId();
  }
  if (map.names != nullptr) {
    for (size_t i = theObjects.size(); i < map.names->objectIds.size(); ++i)
      object(static_cast<int>(i) + 1).id = map.names->objectIds[i];
  }
  const ContourRule rule(projection);
  const auto lastRegion = static_cast<RegionNumber>(regionCount(shot));
  const std::vector<SweepEdge> edges =
      edgesOfBoth(shot, mapOutlines(map, projection, Tolerance), rule);
  std::vector<Stretch> stretches;
  WrongAreas wrongAreas;
  for (const SharedArea& shared :
       sharedAreas(edges, lastRegion, rule, keepsParts ? &stretches : nullptr)) {
    const Label shown = labelOfRegion(shot, shared.first);
    const Label seen = labelOfCell(map, shared.second == 0 ? 0 : shared.second - lastRegion);
    const bool isWrong = shown != seen;
    if (keepsParts) wrongAreas.add(shown, seen, isWrong);
    if (shared.first == 0 && shared.second == 0) continue;
    theCovered += shared.area;
    if (isWrong) theWrong += shared.area;
    if (shown.object > 0) {
      object(shown.object).shown += shared.area;
      if (isWrong) object(shown.object).shownWrongly += shared.area;
    }
    if (seen.object > 0) {
      object(seen.object).seen += shared.area;
      if (isWrong) object(seen.object).missing += shared.area;
    }
  }
  if (!keepsParts) return;
  wrongAreas.addBounds(stretches);
  theParts = wrongAreas.parts();
}

ObjectAudit& ShotAudit::object(int number) {
  while (theObjects.size() < static_cast<size_t>(number)) {
    theObjects.emplace_back();
    theObjects.back().objectNumber = static_cast<int>(theObjects.size());
  }
  return theObjects[static_cast<size_t>(number - 1)];
}

}  // namespace Lumivane::Measure
