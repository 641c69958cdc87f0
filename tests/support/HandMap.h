#pragma once

#include <lumivane/visibility/VisibleMap.h>

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace Lumivane::Test {

using Direction = Visibility::Vector;

inline double dot(const Direction& a, const Direction& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Direction cross(const Direction& a, const Direction& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline Direction unit(const Direction& v) {
  const double length = std::sqrt(dot(v, v));
  return {v[0] / length, v[1] / length, v[2] / length};
}

/// Builds a visibility map cell by cell; `map` is complete after `finish`.
class HandMap {
 public:
  using Rings = std::vector<std::vector<Direction>>;

  explicit HandMap(Visibility::Field field = Visibility::Field::Hemisphere) {
    map.field = field;
    map.ringOffsets = {0};
    auto names = std::make_shared<Visibility::VisibleMap::Names>();
    map.names = names;
    theNames = names.get();
  }

  /// Each ring has the cell on its left as the eye sees it. The eye looks along x with z upwards:
  /// y is to the left.
  void add(const Visibility::Label& label, const Rings& rings, double solidAngle) {
    Visibility::VisibleMap::Cell cell;
    cell.label = label;
    cell.solidAngle = solidAngle;
    cell.viewFactor = solidAngle / 8.0;
    cell.minDistance = label.object;
    cell.maxDistance = label.object + 0.5;
    cell.firstRing = map.ringOffsets.size() - 1;
    cell.ringCount = rings.size();
    for (const std::vector<Direction>& ring : rings) {
      for (const Direction& direction : ring) map.ringVertices.push_back(vertex(direction));
      map.ringOffsets.push_back(map.ringVertices.size());
    }
    map.cells.push_back(cell);
  }

  /// Names of objects and the regions of the scene.
  Visibility::VisibleMap::Names& names() { return *theNames; }

  /// Makes the edges.
  const Visibility::VisibleMap& finish() {
    std::map<std::pair<int, int>, int> lefts;
    for (std::size_t c = 0; c < map.cells.size(); ++c)
      for (const std::vector<int>& ring : map.rings(c))
        for (std::size_t i = 0; i < ring.size(); ++i)
          lefts[{ring[i], ring[(i + 1) % ring.size()]}] = static_cast<int>(c);
    for (const auto& [ends, left] : lefts) {
      const auto twin = lefts.find({ends.second, ends.first});
      const int right = twin == lefts.end() ? -1 : twin->second;
      if (right >= 0 && ends.first > ends.second) continue;
      map.edges.push_back({ends.first, ends.second, left, right,
                           right < 0 ? Visibility::VisibleMap::EdgeKind::Field
                                     : Visibility::VisibleMap::EdgeKind::Silhouette});
    }
    return map;
  }

  Visibility::VisibleMap map;

 private:
  int vertex(const Direction& direction) {
    const Direction v = unit(direction);
    const auto [found, isNew] = numbers.try_emplace(v, static_cast<int>(map.vertices.size()));
    if (isNew) map.vertices.push_back(v);
    return found->second;
  }

  std::map<Direction, int> numbers;
  Visibility::VisibleMap::Names* theNames;
};

/// The hemisphere along x with a square of object 1 in its middle, half as high as it is far, and
/// the sky around it.
inline HandMap squareInTheSky() {
  const double square = 4.0 * std::asin(0.25 / 1.25);  // of a pyramid
  const std::vector<Direction> ring = {{1, .5, -.5}, {1, -.5, -.5}, {1, -.5, .5}, {1, .5, .5}};
  HandMap hand;
  hand.names().objectIds = {"square", "hidden, \"quoted\""};
  hand.names().regions = {{1, 1, 1}, {1, 1, 2}, {2, 1, 1}};
  hand.names().classes = {-1, -1, -1};
  hand.add({1, 1, 2}, {ring}, square);
  hand.add({0, 0, 0},
           {{{0, -1, 0}, {0, 0, 1}, {0, 1, 0}, {0, 0, -1}}, {ring.rbegin(), ring.rend()}},
           2.0 * 3.141592653589793 - square);
  hand.finish();
  return hand;
}

/// The whole sphere as the six sides of a cube around the eye, objects 1 to 6 for x, y, z and -x,
/// -y, -z.
inline HandMap cubeAroundTheEye() {
  HandMap hand(Visibility::Field::Sphere);
  for (int side = 0; side < 6; ++side) {
    const std::size_t axis = static_cast<std::size_t>(side % 3);
    const double sign = side < 3 ? 1.0 : -1.0;
    std::vector<Direction> ring;
    for (const auto& [u, v] : {std::pair(-1.0, -1.0), {-1.0, 1.0}, {1.0, 1.0}, {1.0, -1.0}}) {
      Direction d{};
      d[axis] = sign;
      d[(axis + 1) % 3] = sign * u;
      d[(axis + 2) % 3] = v;
      ring.push_back(d);
    }
    hand.add({side + 1, 1, 1}, {ring}, 2.0 * 3.141592653589793 / 3.0);
    hand.names().objectIds.push_back("side");
    hand.names().regions.push_back({side + 1, 1, 1});
    hand.names().classes.push_back(-1);
  }
  hand.finish();
  return hand;
}

}  // namespace Lumivane::Test
