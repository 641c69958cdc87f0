// Three kinds of planes. On a disc nothing is cut, since the map ends where the disc does. In a
// band azimuth goes on over the seam behind the eye: a line is unrolled to the left or right
// without a jump, and drawn once for each time that it comes into the band. On a straight plane
// arcs are straight and are cut by the planes through the eye and the sides of the window.

#include "pictures/DrawingPlane.h"

#include "kernel/ArcFlattening.h"
#include "kernel/Planar.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Lumivane::Pictures {
namespace {

using Kernel::Pi;
using Kernel::Vec2;
using Kernel::Vec3;

constexpr double Quarter = Pi / 2.0;

Vec3 unit(Vec3 v) {
  const double length = Kernel::length3(v);
  return {v.x / length, v.y / length, v.z / length};
}

// ---- disc

class DiscPlane final : public DrawingPlane {
 public:
  explicit DiscPlane(DrawingProjection newProjection)
      : DrawingPlane({{-1.0, -1.0}, {1.0, 1.0}}), projection(newProjection) {}

  void addLine(Vec3 a, Vec3 b, std::vector<PlaneLine>& lines) const override {
    PlaneLine line{placeOf(a)};
    append(a, b, line);
    lines.push_back(std::move(line));
  }

  void addCell(const std::vector<std::vector<Vec3>>& rings,
               std::vector<PlaneLine>& lines) const override {
    for (const auto& ring : rings) {
      PlaneLine line;
      for (std::size_t i = 0; i < ring.size(); ++i)
        append(ring[i], ring[i + 1 == ring.size() ? 0 : i + 1], line);
      lines.push_back(std::move(line));
    }
  }

  PlaneLine border() const override {
    PlaneLine line;
    for (int i = 0; i < 4; ++i) {
      const double turn = Quarter * i;
      const double next = Quarter * (i + 1);
      append({std::cos(turn), std::sin(turn), 0.0}, {std::cos(next), std::sin(next), 0.0}, line);
    }
    return line;
  }

 private:
  Vec2 placeOf(Vec3 d) const {
    const double across = std::hypot(d.x, d.y);
    if (across == 0.0) return {0.0, 0.0};
    const double radius = discRadius(projection, std::atan2(across, d.z));
    return {radius * (d.x / across), radius * (d.y / across)};
  }

  void append(Vec3 a, Vec3 b, PlaneLine& line) const {
    const auto place = [this](Vec3 d) { return placeOf(d); };
    const Vec3 from = unit(a);
    const Vec3 to = unit(b);
    Kernel::ArcFlattening<decltype(place)>(place, tolerance)
        .add(from, placeOf(from), to, placeOf(to), line);
  }

  DrawingProjection projection;
};

// ---- band

constexpr double Turn = 4.0;  // in quarters
// Closer to a pole than this a direction has no azimuth.
constexpr double PoleSize = 1e-12;
constexpr int MostHalvings = 24;

class BandPlane final : public DrawingPlane {
 public:
  BandPlane(bool whole, std::optional<double> tangent)
      : DrawingPlane(boxOf(whole, tangent)), isWhole(whole), isCylinder(tangent.has_value()) {}

  void addLine(Vec3 a, Vec3 b, std::vector<PlaneLine>& lines) const override {
    PlaneLine line;
    appendArc(unit(a), unit(b), line, true);
    forShifts(line, [&](const PlaneLine& shifted) { addClippedToBox(shifted, box(), lines); });
  }

  void addCell(const std::vector<std::vector<Vec3>>& rings,
               std::vector<PlaneLine>& lines) const override {
    std::vector<PlaneLine> unrolled;
    double turns = 0.0;
    for (const auto& ring : rings) {
      PlaneLine line;
      for (std::size_t i = 0; i < ring.size(); ++i)
        appendArc(unit(ring[i]), unit(ring[i + 1 == ring.size() ? 0 : i + 1]), line, i == 0);
      turns += windingOf(line);
      unrolled.push_back(std::move(line));
    }
    // A ring around both poles is closed along a pole: the one to its left, where that is one cell;
    // of two such rings the even-odd sum is what lies between them.
    const double pole = turns < 0.0 ? poleHeight(-1.0) : poleHeight(1.0);
    for (PlaneLine& line : unrolled) {
      if (windingOf(line) != 0.0) {
        line.push_back({line.back().x, pole});
        line.push_back({line.front().x, pole});
      }
      forShifts(line, [&](const PlaneLine& shifted) {
        PlaneLine clipped = clippedToBox(shifted, box());
        if (clipped.size() > 2) lines.push_back(std::move(clipped));
      });
    }
  }

 private:
  static PlaneBox boxOf(bool whole, std::optional<double> tangent) {
    const double x = whole ? 2.0 : 1.0;
    const double y = tangent ? *tangent / Quarter : 1.0;
    return {{-x, -y}, {x, y}};
  }

  double poleHeight(double sign) const { return sign * (isCylinder ? 1e7 : 1.0); }

  Vec2 placeOf(Vec3 d) const {
    const double across = std::hypot(d.x, d.z);
    const double height = isCylinder ? std::clamp(d.y / across, -1e7, 1e7) / Quarter
                                     : std::atan2(d.y, across) / Quarter;
    return {std::atan2(d.x, d.z) / Quarter, height};
  }

  Vec2 unrolledTo(Vec2 place, double x) const {
    if (isWhole) place.x += Turn * std::round((x - place.x) / Turn);
    return place;
  }

  static bool isPole(Vec3 d) { return std::hypot(d.x, d.z) < PoleSize; }

  // Appends an arc, with its first point if asked for.
  void appendArc(Vec3 a, Vec3 b, PlaneLine& line, bool withFirst) const {
    const Vec3 middle = Kernel::middleOfArc(a, b);
    // At a pole the azimuth is that of the arc beside it.
    Vec2 from = isPole(a) ? Vec2{placeOf(middle).x, poleHeight(a.y)} : placeOf(a);
    if (!withFirst) {
      from = unrolledTo(from, line.back().x);
      if (isPole(a)) line.push_back(from);
    } else {
      line.push_back(from);
    }
    Vec2 to = isPole(b) ? Vec2{placeOf(middle).x, poleHeight(b.y)} : placeOf(b);
    const Vec2 between = unrolledTo(placeOf(middle), from.x);
    to = unrolledTo(to, between.x);
    halve(a, from, middle, between, line, 0);
    halve(middle, between, b, to, line, 0);
  }

  void halve(Vec3 a, Vec2 from, Vec3 b, Vec2 to, PlaneLine& line, int depth) const {
    const Vec3 middle = Kernel::middleOfArc(a, b);
    const auto at = [&](Vec3 d, double x) { return unrolledTo(placeOf(d), x); };
    const Vec2 between = at(middle, from.x);
    const auto isClose = [&](Vec2 p) {
      return Kernel::distanceToSegment(p, from, to) <= 0.9 * tolerance;
    };
    const bool flat = isClose(between) && isClose(at(Kernel::middleOfArc(a, middle), from.x)) &&
                      isClose(at(Kernel::middleOfArc(middle, b), between.x));
    if (depth >= MostHalvings || flat) {
      line.push_back(to);
      return;
    }
    halve(a, from, middle, between, line, depth + 1);
    halve(middle, between, b, to, line, depth + 1);
  }

  double windingOf(const PlaneLine& line) const {
    if (!isWhole || line.empty()) return 0.0;
    return std::round((line.back().x - line.front().x) / Turn);
  }

  template <class Visit>
  void forShifts(const PlaneLine& line, Visit visit) const {
    if (!isWhole) {
      visit(line);
      return;
    }
    double low = 1e300;
    double high = -1e300;
    for (const Vec2& p : line) {
      low = std::min(low, p.x);
      high = std::max(high, p.x);
    }
    for (double shift = Turn * std::ceil((-2.0 - high) / Turn); low + shift < 2.0; shift += Turn) {
      PlaneLine shifted = line;
      for (Vec2& p : shifted) p.x += shift;
      visit(shifted);
    }
  }

  bool isWhole;
  bool isCylinder;
};

// ---- straight

// Where the plane z = 0 through the eye is left out: nearer to it places are beyond any window.
constexpr double LeastDepth = 1e-9;

class StraightPlane final : public DrawingPlane {
 public:
  explicit StraightPlane(const PlaneBox& newBox) : DrawingPlane(newBox) {
    sides[0] = {0.0, 0.0, 1.0};
    sides[1] = {1.0, 0.0, -newBox.low.x};
    sides[2] = {-1.0, 0.0, newBox.high.x};
    sides[3] = {0.0, 1.0, -newBox.low.y};
    sides[4] = {0.0, -1.0, newBox.high.y};
  }

  void addLine(Vec3 a, Vec3 b, std::vector<PlaneLine>& lines) const override {
    double low = 0.0;
    double high = 1.0;
    for (int i = 0; i < 5; ++i) {
      const double atA = insideOf(i, a);
      const double atB = insideOf(i, b);
      if (atA < 0.0 && atB < 0.0) return;
      if (atA < 0.0) low = std::max(low, atA / (atA - atB));
      if (atB < 0.0) high = std::min(high, atA / (atA - atB));
    }
    if (!(low < high)) return;
    lines.push_back({low > 0.0 ? placeOf(a + low * (b - a)) : placeOf(a),
                     high < 1.0 ? placeOf(a + high * (b - a)) : placeOf(b)});
  }

  void addCell(const std::vector<std::vector<Vec3>>& rings,
               std::vector<PlaneLine>& lines) const override {
    std::vector<Vec3> kept;
    std::vector<Vec3> next;
    for (const auto& ring : rings) {
      kept = ring;
      for (int i = 0; i < 5 && !kept.empty(); ++i) {
        next.clear();
        cut(i, kept, next);
        kept.swap(next);
      }
      if (kept.size() < 3) continue;
      PlaneLine line;
      for (const Vec3& d : kept) line.push_back(placeOf(d));
      lines.push_back(std::move(line));
    }
  }

 private:
  static Vec2 placeOf(Vec3 d) { return {d.x / d.z, d.y / d.z}; }

  double insideOf(int side, Vec3 d) const {
    return Kernel::dot(sides[side], d) - (side == 0 ? LeastDepth : 0.0);
  }

  void cut(int side, const std::vector<Vec3>& ring, std::vector<Vec3>& kept) const {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const Vec3 a = ring[i];
      const Vec3 b = ring[i + 1 == ring.size() ? 0 : i + 1];
      const double atA = insideOf(side, a);
      const double atB = insideOf(side, b);
      if (atA >= 0.0) kept.push_back(a);
      if ((atA < 0.0) != (atB < 0.0)) kept.push_back(a + (atA / (atA - atB)) * (b - a));
    }
  }

  Vec3 sides[5];
};

// ---- boxes

double insideOf(const PlaneBox& box, int side, Vec2 p) {
  switch (side) {
    case 0:
      return p.x - box.low.x;
    case 1:
      return box.high.x - p.x;
    case 2:
      return p.y - box.low.y;
    default:
      return box.high.y - p.y;
  }
}

}  // namespace

PlaneLine DrawingPlane::border() const {
  const PlaneBox& b = box();
  return {b.low, {b.high.x, b.low.y}, b.high, {b.low.x, b.high.y}};
}

double discRadius(DrawingProjection projection, double angle) {
  switch (projection) {
    case DrawingProjection::Equidistant:
      return angle / Quarter;
    case DrawingProjection::Equisolid:
      return std::sin(0.5 * angle) / std::sin(0.5 * Quarter);
    case DrawingProjection::Stereographic:
      return std::tan(0.5 * angle);
    case DrawingProjection::Orthographic:
    case DrawingProjection::Equirectangular:
    case DrawingProjection::Cylindrical:
    case DrawingProjection::Perspective:
    case DrawingProjection::Parallel:
      break;
  }
  return std::sin(std::min(angle, Quarter));
}

std::unique_ptr<DrawingPlane> discPlane(DrawingProjection projection) {
  return std::make_unique<DiscPlane>(projection);
}

std::unique_ptr<DrawingPlane> bandPlane(bool isWhole) {
  return std::make_unique<BandPlane>(isWhole, std::nullopt);
}

std::unique_ptr<DrawingPlane> cylinderPlane(double greatestTangent) {
  return std::make_unique<BandPlane>(true, greatestTangent);
}

std::unique_ptr<DrawingPlane> straightPlane(const PlaneBox& box) {
  return std::make_unique<StraightPlane>(box);
}

PlaneLine clippedToBox(const PlaneLine& line, const PlaneBox& box) {
  PlaneLine kept = line;
  PlaneLine next;
  for (int side = 0; side < 4 && !kept.empty(); ++side) {
    next.clear();
    for (std::size_t i = 0; i < kept.size(); ++i) {
      const Vec2 a = kept[i];
      const Vec2 b = kept[i + 1 == kept.size() ? 0 : i + 1];
      const double atA = insideOf(box, side, a);
      const double atB = insideOf(box, side, b);
      if (atA >= 0.0) next.push_back(a);
      if ((atA < 0.0) != (atB < 0.0)) next.push_back(a + (atA / (atA - atB)) * (b - a));
    }
    kept.swap(next);
  }
  return kept;
}

void addClippedToBox(const PlaneLine& line, const PlaneBox& box, std::vector<PlaneLine>& lines) {
  PlaneLine part;
  const auto end = [&] {
    if (part.size() > 1) lines.push_back(part);
    part.clear();
  };
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const Vec2 a = line[i];
    const Vec2 b = line[i + 1];
    double low = 0.0;
    double high = 1.0;
    for (int side = 0; side < 4; ++side) {
      const double atA = insideOf(box, side, a);
      const double atB = insideOf(box, side, b);
      if (atA < 0.0 && atB < 0.0) low = 2.0;
      if (atA < 0.0) low = std::max(low, atA / (atA - atB));
      if (atB < 0.0) high = std::min(high, atA / (atA - atB));
    }
    if (!(low < high)) {
      end();
      continue;
    }
    if (low > 0.0) end();
    if (part.empty()) part.push_back(low > 0.0 ? a + low * (b - a) : a);
    part.push_back(high < 1.0 ? a + high * (b - a) : b);
    if (high < 1.0) end();
  }
  end();
}

}  // namespace Lumivane::Pictures
