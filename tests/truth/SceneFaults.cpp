#include "truth/SceneFaults.h"

#include "truth/MapLocator.h"

#include <algorithm>
#include <limits>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

namespace Lumivane::Truth {
namespace {

using Visibility::Label;
using Visibility::VisibleMap;
using EdgeKind = VisibleMap::EdgeKind;

constexpr Real SameDistance = 1e-9L;
/// What the rounding of a direction does to a distance, by the cosine of its angle to the normal.
constexpr Real Rounding = 1e-14L;
/// Regions that meet do so within the tolerance of what is flat.
constexpr Real Meeting = 1e-3L;

struct Plane {
  LongVector normal;  ///< away from the eye
  Real height = 0.0L;
  bool sliver = false;  ///< whether rounding turns the plane by more than it does directions

  Real cosine(const LongVector& d) const { return dot(normal, d); }
  Real distance(const LongVector& d) const { return height / cosine(d); }
};

class SceneChecker {
 public:
  SceneChecker(const Judge& judge, const VisibleMap& newMap) : map(newMap), locator(newMap) {
    for (const Piece& piece : judge.pieces().list) {
      const Label& label = judge.scene().labels[piece.outline];
      Plane plane{piece.normal, dot(piece.normal, piece.middle - wide(map.eye)), piece.sliver};
      if (plane.height < 0.0L) plane = {plane.normal * -1.0L, -plane.height, plane.sliver};
      const auto known = planes.emplace(key(label), plane);
      if (!known.second) bent.push_back(key(label));
    }
    for (const auto& each : bent) planes.erase(each);
  }

  std::string text() {
    for (std::size_t i = 0; i < map.cells.size(); ++i) checkDistances(i);
    for (const VisibleMap::Edge& edge : map.edges) checkKind(edge);
    std::ostringstream out;
    for (const auto& [kind, found] : faults)
      out << found.first << " x " << kind << ", e.g. " << found.second << '\n';
    return out.str();
  }

 private:
  using Key = std::tuple<int, int>;
  static Key key(const Label& label) { return {label.object, label.region}; }

  template <class... Words>
  void fault(const std::string& kind, const Words&... words) {
    auto& entry = faults[kind];
    if (entry.first++ > 0) return;
    std::ostringstream out;
    out.precision(17);
    (out << ... << words);
    entry.second = out.str();
  }

  const Plane* planeOf(int cell) const {
    if (cell < 0) return nullptr;
    const auto found = planes.find(key(map.cells[static_cast<std::size_t>(cell)].label));
    return found == planes.end() ? nullptr : &found->second;
  }
  int faceOf(int cell) const { return map.cells[static_cast<std::size_t>(cell)].label.face; }
  LongVector vertex(int number) const {
    return wide(map.vertices[static_cast<std::size_t>(number)]);
  }

  /// The greatest distance is that of a corner; the least that of the plane's foot, or of the point
  /// of an edge that is nearest to it.
  void checkDistances(std::size_t number) {
    const VisibleMap::Cell& cell = map.cells[number];
    const Plane* plane = planeOf(static_cast<int>(number));
    if (plane == nullptr || plane->sliver) return;
    Real most = 0.0L;
    Real least = std::numeric_limits<Real>::infinity();
    Real flattest = 1.0L;
    const auto offer = [&](const LongVector& d) {
      flattest = std::min(flattest, plane->cosine(d));
      most = std::max(most, plane->distance(d));
      least = std::min(least, plane->distance(d));
    };
    for (std::size_t ring = cell.firstRing; ring < cell.firstRing + cell.ringCount; ++ring)
      for (std::size_t i = map.ringOffsets[ring]; i < map.ringOffsets[ring + 1]; ++i) {
        const std::size_t next = i + 1 < map.ringOffsets[ring + 1] ? i + 1 : map.ringOffsets[ring];
        const LongVector a = vertex(map.ringVertices[i]);
        const LongVector b = vertex(map.ringVertices[next]);
        offer(a);
        const LongVector pole = cross(a, b - a);
        if (length(pole) == 0.0L) continue;
        const LongVector foot = plane->normal - unit(pole) * dot(unit(pole), plane->normal);
        if (dot(cross(pole, foot), a) < 0.0L && dot(cross(pole, foot), b) > 0.0L &&
            length(foot) > 1e-9L && dot(foot, a + b) > 0.0L)
          offer(unit(foot));
      }
    if (flattest < 1e-6L) return;  // the corner's distance is lost in rounding
    if (locator.cellOfAll(narrow(plane->normal)) == static_cast<int>(number)) least = plane->height;
    // The eye's height above the plane is off by what rounding does to the farthest corner.
    const Real room = SameDistance + Rounding * (1.0L / flattest + most / plane->height);
    if (std::fabs(cell.maxDistance - most) > room * most)
      fault("greatest distance", "cell ", number, ": ", cell.maxDistance, " instead of ", most);
    if (std::fabs(cell.minDistance - least) > room * least)
      fault("least distance", "cell ", number, ": ", cell.minDistance, " instead of ", least);
  }

  void checkKind(const VisibleMap::Edge& edge) {
    if (edge.kind == EdgeKind::Silhouette || edge.kind == EdgeKind::Field) return;
    const Plane* left = planeOf(edge.left);
    const Plane* right = planeOf(edge.right);
    if (left == nullptr || right == nullptr) return;
    const LongVector middle = unit(vertex(edge.from) + vertex(edge.to));
    if (left->cosine(middle) < 1e-6L || right->cosine(middle) < 1e-6L) return;
    const Real one = left->distance(middle);
    const Real two = right->distance(middle);
    // Inside a face that is bent one part may stand in front of another.
    const bool insideFace = edge.kind == EdgeKind::Inner && faceOf(edge.left) > 0 &&
                            faceOf(edge.left) == faceOf(edge.right);
    if (!insideFace && std::fabs(one - two) > Meeting * std::max(one, two))
      fault("regions that do not meet at their edge of kind " +
                std::to_string(static_cast<int>(edge.kind)),
            "edge ", edge.from, ' ', edge.to, ": ", one, " and ", two);
  }

  const VisibleMap& map;
  MapLocator locator;
  std::map<Key, Plane> planes;
  std::vector<Key> bent;
  std::map<std::string, std::pair<std::size_t, std::string>> faults;
};

}  // namespace

std::string sceneFaultText(const Judge& judge, const VisibleMap& map) {
  return SceneChecker(judge, map).text();
}

}  // namespace Lumivane::Truth
