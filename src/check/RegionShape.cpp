// Shapes are looked at in the plane of Newell's normal, which every corner has a say in: the first
// three points alone may lie on a line. (M. E. Newell's method, in I. E. Sutherland, R. F. Sproull
// and R. A. Schumacker, "A Characterization of Ten Hidden-Surface Algorithms", 1974.)

#include "check/RegionShape.h"

#include "kernel/Planar.h"
#include "kernel/Vec.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>

namespace Lumivane::Check {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;
using Outline = std::vector<Vec3>;

constexpr double LeastAgreement = 0.999;  // cosine between a face's normal and its winding

constexpr double LeastSeen = 0.999;  // share of a region that a shot can show
constexpr const char* SplitIt =
    "split it into triangles whose inner edges are docking edges; lumivane import does so";

std::string lengthText(double length) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", length);
  return text;
}

// The points that the region's numbers mean; numbers that mean none are reported elsewhere.
Outline outlineOf(Geometry::Region& region, Scene::Scene3D& scene) {
  Outline outline;
  if (scene.getPoints() == nullptr) return outline;
  const auto& points = itemsOf(scene.getPoints()->getPoints());
  for (const int number : itemsOf(region.getPoints())) {
    if (!isNumberOf(number, points.size())) continue;
    const Geometry::Point3d* const point = points[static_cast<size_t>(number) - 1];
    if (point != nullptr) outline.push_back({point->getX(), point->getY(), point->getZ()});
  }
  return outline;
}

double largestCoordinate(const Outline& outline) {
  double largest = 0.0;
  for (const Vec3 p : outline)
    for (const double c : {p.x, p.y, p.z})
      if (!(std::abs(c) <= largest)) largest = std::abs(c);  // keeps what is no number
  return largest;
}

// Twice the area as length, at right angles to the outline, in the sense of cross(b - a, c - a).
Vec3 newellNormal(const Outline& outline) {
  return outline.empty() ? Vec3{}
                         : Kernel::twiceAreaVector(outline.size(), outline[0],
                                                   [&](size_t i) { return outline[i]; });
}

double distanceFromPlane(const Outline& outline, Vec3 unitNormal) {
  Vec3 middle{0.0, 0.0, 0.0};
  for (const Vec3 p : outline) middle = middle + p;
  middle = (1.0 / static_cast<double>(outline.size())) * middle;
  double largest = 0.0;
  for (const Vec3 p : outline)
    largest = std::max(largest, std::abs(Kernel::dot(p - middle, unitNormal)));
  return largest;
}

bool startsOnALine(const Outline& outline) {
  const Vec3 a = outline[1] - outline[0], b = outline[2] - outline[0];
  const double lengths = Kernel::length3(a) * Kernel::length3(b);
  return Kernel::length3(Kernel::cross(a, b)) <= SceneChecker::Straight * lengths;
}

// The outline seen along its largest component, where no area vanishes.
std::vector<Vec2> flattened(const Outline& outline, Vec3 normal) {
  const double x = std::abs(normal.x), y = std::abs(normal.y), z = std::abs(normal.z);
  std::vector<Vec2> flat;
  flat.reserve(outline.size());
  for (const Vec3 p : outline)
    flat.push_back(x >= y && x >= z ? Vec2{p.y, p.z} : y >= z ? Vec2{p.z, p.x} : Vec2{p.x, p.y});
  return flat;
}

// So many pairs of edges are looked at, those of 2,800 edges at least: a few hundredths of a
// second. An outline that runs to and fro over itself has a pair for any two of its edges.
constexpr size_t MostPairs = 4000000;

// Two edges that run through each other, as numbers from 1; zeros if there are none; nothing if
// there are too many pairs to know. A sweep over the edges by their smaller x, so that long
// outlines cost what overlaps.
std::optional<std::pair<size_t, size_t>> crossingEdges(const std::vector<Vec2>& flat) {
  struct Edge {
    double from, to;
    size_t start;
  };
  std::vector<Edge> edges;
  const auto end = [&flat](size_t i) { return flat[(i + 1) % flat.size()]; };
  for (size_t i = 0; i < flat.size(); ++i)
    edges.push_back({std::min(flat[i].x, end(i).x), std::max(flat[i].x, end(i).x), i});
  std::sort(edges.begin(), edges.end(),
            [](const Edge& a, const Edge& b) { return a.from < b.from; });
  size_t pairs = 0;
  for (size_t i = 0; i < edges.size(); ++i)
    for (size_t j = i + 1; j < edges.size() && edges[j].from <= edges[i].to; ++j) {
      const size_t a = edges[i].start, b = edges[j].start;
      if (Kernel::properlyCross(flat[a], end(a), flat[b], end(b))) return std::minmax(a + 1, b + 1);
      if (++pairs == MostPairs) return std::nullopt;
    }
  return std::pair<size_t, size_t>(0, 0);
}

class RegionCheck {
 public:
  RegionCheck(Findings& target, size_t regionNumber, const Outline& checked)
      : findings(target), number(regionNumber), outline(checked) {}

  void run() {
    if (outline.size() < 3) {
      warn("few-points", "has " + std::to_string(outline.size()) + " points, so it is never seen",
           "a polygon has at least 3 points; take the region out");
      return;
    }
    const double largest = largestCoordinate(outline);
    if (!(largest <= SceneChecker::LargestCoordinate)) return;  // an error, reported elsewhere
    checkEdges();
    checkPlane(largest);
  }

 private:
  void warn(const char* code, std::string text, const char* fix) {
    findings.addRegion(Severity::Warning, code, number, std::move(text), fix);
  }

  void warnOfOutline(const char* code, std::string text, const char* fix) {
    hasOddOutline = true;
    warn(code, std::move(text), fix);
  }

  void checkEdges() {
    for (size_t i = 0; i < outline.size(); ++i) {
      const Vec3 next = outline[(i + 1) % outline.size()];
      const std::string place = "points " + std::to_string(i + 1) + " and " +
                                std::to_string((i + 1) % outline.size() + 1);
      if (outline[i] == next) {
        warnOfOutline("repeated-point", place + " are the same", "name each point once");
      } else if (Kernel::distance(outline[i], next) < SceneChecker::ShortestEdge) {
        warnOfOutline(
            "short-edge",
            place + " are only " + lengthText(Kernel::distance(outline[i], next)) + " apart",
            "merge them, or choose a smaller unit");
      } else {
        continue;
      }
      return;  // one is enough of a region
    }
  }

  void checkPlane(double largest) {
    if (startsOnALine(outline))
      warn("straight-start", "its first three points lie on one line, which gives it no plane",
           "let it start at a corner");
    const Vec3 normal = newellNormal(outline);
    const double length = Kernel::length3(normal);
    if (!(length > 0.0)) {
      warn("no-area", "its points enclose no area", "take the region out");
      return;
    }
    const double off = distanceFromPlane(outline, (1.0 / length) * normal);
    // Coordinates are written with 6 digits.
    if (off > std::max(SceneChecker::Flatness, 1e-5 * largest))
      warn("not-flat", "its points are up to " + lengthText(off) + " off their plane",
           "split it into flat pieces, which may be of one face");
    checkCrossings(normal);
    checkSeenShare();
  }

  // Not for what crosses itself: its area says nothing.
  void checkSeenShare() {
    if (hasOddOutline || outline.size() > static_cast<size_t>(SceneChecker::MostCorners)) return;
    std::vector<std::array<double, 3>> corners;
    for (const Vec3 p : outline) corners.push_back({p.x, p.y, p.z});
    const double share = SceneChecker::seenShare(corners);
    if (share > LeastSeen) return;
    if (share > 0.0)
      warn("partly-seen",
           "only " + lengthText(100.0 * share) +
               " % of it can be seen, since it cannot be cut into " + "triangles well",
           SplitIt);
    else
      warn("never-seen",
           "it will not be seen: its outline is concave and not flat, so that a shot cannot cut it "
           "into triangles",
           SplitIt);
  }

  void checkCrossings(Vec3 normal) {
    const auto crossing = crossingEdges(flattened(outline, normal));
    if (!crossing)
      warnOfOutline("tangled", "its edges pass each other too often to find out whether they cross",
                    "split it");
    else if (crossing->first != 0)
      warnOfOutline("self-crossing",
                    "its edges " + std::to_string(crossing->first) + " and " +
                        std::to_string(crossing->second) + " cross",
                    "an outline may not run through itself; split it");
  }

  Findings& findings;
  const size_t number;
  const Outline& outline;
  bool hasOddOutline = false;
};

void checkNormal(const Geometry::Face& face, size_t number, Vec3 wound, Findings& findings) {
  const Geometry::Vector3d* const listed = face.getNormal();
  if (listed == nullptr) return;
  const Vec3 normal{listed->getX(), listed->getY(), listed->getZ()};
  const double lengths = Kernel::length3(normal) * Kernel::length3(wound);
  if (!(lengths > 0.0) || Kernel::dot(normal, wound) >= LeastAgreement * lengths) return;
  findings.addFace(Severity::Warning, "normal", number,
                   Kernel::dot(normal, wound) < 0.0
                       ? "its normal points against the winding of its regions"
                       : "its normal is not that of its regions",
                   "the winding decides what is seen; correct the normal or the order of points");
}

}  // namespace

void findOddShapes(Scene::Object& object, Scene::Scene3D& scene, Findings& findings) {
  if (object.getRegions() == nullptr) return;
  const auto& regions = itemsOf(object.getRegions()->getRegions());
  const auto& faces =
      itemsOf(object.getFaces() == nullptr ? nullptr : object.getFaces()->getFaces());
  std::map<size_t, Vec3> woundByFace;  // of a face's first region
  for (size_t i = 0; i < regions.size() && !findings.full(); ++i) {
    if (regions[i] == nullptr) continue;
    const Outline outline = outlineOf(*regions[i], scene);
    RegionCheck(findings, i + 1, outline).run();
    if (outline.size() >= 3 && isNumberOf(regions[i]->getFaceNumber(), faces.size()))
      woundByFace.emplace(static_cast<size_t>(regions[i]->getFaceNumber()), newellNormal(outline));
  }
  for (const auto& [number, wound] : woundByFace)
    if (faces[number - 1] != nullptr) checkNormal(*faces[number - 1], number, wound, findings);
}

}  // namespace Lumivane::Check
