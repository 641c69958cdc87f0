#include "truth/Pieces.h"

#include "truth/Layers.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace Lumivane::Truth {
namespace {

using Visibility::PolygonScene;

/// An area below this part of the size squared is rounding.
constexpr Real NoArea = 1e-15L;
/// Angles that differ by less are equal: an outline must not fall apart differently when turned.
constexpr Real SameAngle = 1e-9L;
/// An area below this part of the size squared leaves the normal to small differences.
constexpr Real SliverArea = 0.02L;

std::vector<LongVector> cornersOf(const PolygonScene& scene, const std::vector<int>& numbers) {
  std::vector<LongVector> corners;
  corners.reserve(numbers.size());
  for (const int number : numbers)
    corners.push_back(wide(scene.points[static_cast<std::size_t>(number)]));
  return corners;
}

LongVector meanOf(const std::vector<LongVector>& corners) {
  LongVector sum;
  for (const LongVector& corner : corners) sum = sum + (corner - corners.front());
  return corners.front() + sum * (1.0L / static_cast<Real>(corners.size()));
}

/// Newell's normal, whose length is twice the area.
LongVector newell(const std::vector<LongVector>& corners) {
  LongVector sum;
  for (std::size_t i = 0; i < corners.size(); ++i)
    sum = sum +
          cross(corners[i] - corners.front(), corners[(i + 1) % corners.size()] - corners.front());
  return sum;
}

/// The greatest distance between two corners; of many corners, that of the farthest from one that
/// is farthest from the first, which is near enough for a tolerance.
Real sizeOf(const std::vector<LongVector>& corners) {
  if (corners.size() <= 64) {
    Real size = 0.0L;
    for (std::size_t i = 0; i < corners.size(); ++i)
      for (std::size_t k = i + 1; k < corners.size(); ++k)
        size = std::max(size, length(corners[i] - corners[k]));
    return size;
  }
  const auto farthest = [&](const LongVector& from) {
    return *std::max_element(corners.begin(), corners.end(),
                             [&](const LongVector& a, const LongVector& b) {
                               return length(a - from) < length(b - from);
                             });
  };
  const LongVector one = farthest(corners.front());
  return length(farthest(one) - one);
}

/// Whether it has a plane at all; fills in what follows from the corners.
bool measure(const PolygonScene& scene, Piece& piece) {
  if (piece.corners.size() < 3) return false;
  const std::vector<LongVector> corners = cornersOf(scene, piece.corners);
  piece.size = sizeOf(corners);
  const LongVector normal = newell(corners);
  const Real area = length(normal);
  if (!(area > NoArea * piece.size * piece.size)) return false;
  piece.normal = normal * (1.0L / area);
  piece.middle = meanOf(corners);
  piece.across = anyNormalTo(piece.normal);
  piece.sliver = area < SliverArea * piece.size * piece.size;
  piece.deviation = 0.0L;
  for (const LongVector& corner : corners)
    piece.deviation =
        std::max(piece.deviation, std::fabs(dot(corner - piece.middle, piece.normal)));
  return true;
}

struct Flat {
  Real x;
  Real y;
};

Real turn(const Flat& a, const Flat& b, const Flat& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool samePlace(const Flat& a, const Flat& b) { return a.x == b.x && a.y == b.y; }

Real leastAngle(const Flat& a, const Flat& b, const Flat& c) {
  const auto at = [](const Flat& p, const Flat& q, const Flat& r) {
    return std::fabs(
        std::atan2(turn(p, q, r), (q.x - p.x) * (r.x - p.x) + (q.y - p.y) * (r.y - p.y)));
  };
  return std::min({at(a, b, c), at(b, c, a), at(c, a, b)});
}

class EarClipper {
 public:
  explicit EarClipper(std::vector<Flat> newPoints) : points(std::move(newPoints)) {
    left.resize(points.size());
    std::iota(left.begin(), left.end(), 0);
  }
  std::vector<std::vector<int>> triangles() {
    std::vector<std::vector<int>> result;
    while (left.size() > 3) {
      const std::size_t ear = bestEar();
      result.push_back({left[before(ear)], left[ear], left[after(ear)]});
      left.erase(left.begin() + static_cast<std::ptrdiff_t>(ear));
    }
    result.push_back(left);
    return result;
  }

 private:
  std::size_t before(std::size_t i) const { return (i + left.size() - 1) % left.size(); }
  std::size_t after(std::size_t i) const { return (i + 1) % left.size(); }
  const Flat& at(std::size_t i) const { return points[static_cast<std::size_t>(left[i])]; }

  bool isEar(std::size_t i) const {
    const Flat& a = at(before(i));
    const Flat& b = at(i);
    const Flat& c = at(after(i));
    if (turn(a, b, c) <= 0.0L) return false;
    for (std::size_t k = 0; k < left.size(); ++k) {
      const Flat& p = at(k);
      if (samePlace(p, a) || samePlace(p, b) || samePlace(p, c)) continue;
      if (turn(a, b, p) >= 0.0L && turn(b, c, p) >= 0.0L && turn(c, a, p) >= 0.0L) return false;
    }
    return true;
  }
  std::size_t bestEar() const {
    std::size_t best = 0;
    Real bestAngle = -1.0L;
    for (std::size_t i = 0; i < left.size(); ++i) {
      if (!isEar(i)) continue;
      const Real angle = leastAngle(at(before(i)), at(i), at(after(i)));
      if (angle > bestAngle + SameAngle) {
        best = i;
        bestAngle = angle;
      }
    }
    return best;
  }

  std::vector<Flat> points;
  std::vector<int> left;
};

std::vector<int> outlineCorners(const PolygonScene& scene, std::size_t outline) {
  const auto from = scene.corners.begin() + static_cast<std::ptrdiff_t>(scene.offsets[outline]);
  const auto to = scene.corners.begin() + static_cast<std::ptrdiff_t>(scene.offsets[outline + 1]);
  return {from, to};
}

void addTriangles(const PolygonScene& scene, const Piece& whole, Pieces& result) {
  for (const std::vector<int>& triangle : clipEars(cornersOf(scene, whole.corners), whole.normal)) {
    Piece piece;
    piece.outline = whole.outline;
    for (const int position : triangle)
      piece.corners.push_back(whole.corners[static_cast<std::size_t>(position)]);
    if (measure(scene, piece)) result.list.push_back(std::move(piece));
  }
}

}  // namespace

std::vector<std::vector<int>> clipEars(const std::vector<LongVector>& corners,
                                       const LongVector& normal) {
  const LongVector u = anyNormalTo(normal);
  const LongVector v = cross(normal, u);
  std::vector<Flat> points;
  points.reserve(corners.size());
  for (const LongVector& corner : corners)
    points.push_back({dot(corner - corners.front(), u), dot(corner - corners.front(), v)});
  return EarClipper(std::move(points)).triangles();
}

Pieces piecesOf(const PolygonScene& scene, const Tolerances& tolerances) {
  Pieces result;
  for (std::size_t outline = 0; outline + 1 < scene.offsets.size(); ++outline) {
    Piece piece;
    piece.outline = outline;
    piece.corners = outlineCorners(scene, outline);
    if (!measure(scene, piece)) {
      ++result.dropped;
      continue;
    }
    const Real bound = tolerances.flatness * piece.size;
    if (piece.deviation > 0.25L * bound && piece.deviation < 4.0L * bound) ++result.nearlyFlat;
    if (piece.deviation <= bound) {
      result.list.push_back(std::move(piece));
    } else {
      ++result.triangulated;
      addTriangles(scene, piece, result);
    }
  }
  result.layers = findLayers(scene, tolerances, result.list);
  return result;
}

}  // namespace Lumivane::Truth
