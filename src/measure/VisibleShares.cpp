// The picture is measured region by region; objects and faces are sums of that. What rounding
// leaves of regions that are hidden is set to 0, and the rest scaled so that all is the whole
// again.

#include "kernel/SphereContour.h"
#include "measure/ShotProjection.h"
#include "measure/VisibleArrangement.h"

#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <map>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Algorithm::ProjectionType;

void add(Share& sum, const Share& share) {
  sum.area += share.area;
  sum.viewFactor += share.viewFactor;
  sum.solidAngle += share.solidAngle;
}

// What rounding leaves of sums that should be nothing.
constexpr double Residue = 1e-14;

double withoutResidue(double value) { return value < Residue ? 0.0 : value; }

// An arrangement of chords holds slivers that the arcs in their place do not have: their measure
// then is a rounding's breadth, or a chord's, below nothing. It is taken as nothing, and what that
// adds is taken from all others in proportion, so that the sum stays.
template <class Get>
void raiseToZero(std::vector<Content>& contents, double whole, Get get) {
  double positive = 0.0;
  for (Content& content : contents) {
    get(content) = withoutResidue(get(content));
    positive += get(content);
  }
  for (Content& content : contents) get(content) *= whole / positive;
}

Share shareOf(double area, const Content& content, const ContourRule& rule) {
  const double visible = withoutResidue(area);
  return {visible, rule.areasAreViewFactors() ? visible / Kernel::Pi : content.viewFactor,
          content.solidAngle};
}

}  // namespace

double Share::hemisphereShare() const { return solidAngle / (2.0 * Kernel::Pi); }

VisibleShares::VisibleShares(const Shot::Shot2d& shot) : VisibleShares(shot, projectionOf(shot)) {}

VisibleShares::VisibleShares(const Shot::Shot2d& shot, ProjectionType projection)
    : theProjection(projection) {
  measure(shot);
  sumUp(shot);
}

Share VisibleShares::whole() const {
  const ContourRule rule(theProjection);
  return {rule.wholeArea(), 1.0, rule.whole().solidAngle};
}

void VisibleShares::measure(const Shot::Shot2d& shot) {
  const ContourRule rule(theProjection);
  const std::vector<SweepEdge> edges = sweepEdges(shot, rule);
  const size_t count = shot.getRegions() == nullptr ? 0 : shot.getRegions()->getRegions()->size();
  Totals totals = visibleTotals(edges, count, rule);
  const Content whole = rule.whole();
  raiseToZero(totals.contents, whole.solidAngle,
              [](Content& c) -> double& { return c.solidAngle; });
  if (!rule.areasAreViewFactors())
    raiseToZero(totals.contents, whole.viewFactor,
                [](Content& c) -> double& { return c.viewFactor; });

  theOpen = shareOf(totals.areas[0], totals.contents[0], rule);
  for (size_t i = 0; i < count; ++i) {
    const Geometry::Region2d& region = *(*shot.getRegions()->getRegions())[i];
    theRegions.push_back({static_cast<int>(i) + 1, region.getObjectNumber(), region.getFaceNumber(),
                          region.getSourceRegionNumber(),
                          shareOf(totals.areas[i + 1], totals.contents[i + 1], rule)});
  }
}

void VisibleShares::sumUp(const Shot::Shot2d& shot) {
  std::map<int, Share> objectSums;
  std::map<std::pair<int, int>, Share> faceSums;
  for (const RegionShare& region : theRegions) {
    add(objectSums[region.objectNumber], region.share);
    add(faceSums[{region.objectNumber, region.faceNumber}], region.share);
  }
  std::map<int, std::string> ids;
  if (shot.getObjects() != nullptr) {
    int number = 0;
    for (const Shot::Object2d* object : *shot.getObjects()->getObjects()) {
      ids[++number] = object->getId();
      objectSums[number];  // an object without visible regions has a row as well
    }
  }
  for (const auto& [number, share] : objectSums)
    theObjects.push_back({number, ids.count(number) != 0 ? ids[number] : "", share});
  for (const auto& [face, share] : faceSums) theFaces.push_back({face.first, face.second, share});
}

}  // namespace Lumivane::Measure
