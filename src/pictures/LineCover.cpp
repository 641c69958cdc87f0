// Lines that lie on each other are found through a grid of cells in space, on the sphere of
// directions or in the plane. Both are brought to a size of about 1.

#include "pictures/LineCover.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Pictures {
namespace {

using Kernel::Vec3;

// Lines closer than this are one: a hundredth of a line's width on a large sheet.
constexpr double Closeness = 1e-5;
// Covered parts shorter than this are where lines meet or cross at an angle.
constexpr double ShortestCovered = 20.0 * Closeness;
constexpr double CellSize = 1.0 / 64.0;
constexpr double Step = CellSize / 4.0;
constexpr double MostSteps = 2048.0;

std::uint64_t keyOf(Vec3 p) {
  const auto cell = [](double c) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(c / CellSize)) +
                                      (std::int64_t{1} << 20));
  };
  return cell(p.x) << 42U ^ cell(p.y) << 21U ^ cell(p.z);
}

Vec3 unit(Vec3 v) {
  const double length = Kernel::length3(v);
  return {v.x / length, v.y / length, v.z / length};
}

}  // namespace

void LineCover::extend(Vec3 a, Vec3 b) {
  if (!flat) return;
  for (const Vec3& p : {a, b}) {
    low[0] = std::min(low[0], p.x);
    low[1] = std::min(low[1], p.y);
    high[0] = std::max(high[0], p.x);
    high[1] = std::max(high[1], p.y);
  }
}

Vec3 LineCover::placed(Vec3 p) const {
  if (!flat) return unit(p);
  const double size = std::max({high[0] - low[0], high[1] - low[1], 1e-300});
  return {(p.x - 0.5 * (low[0] + high[0])) / size, (p.y - 0.5 * (low[1] + high[1])) / size, 1.0};
}

// The cells of points along a line, each once if they follow each other.
template <class Visit>
void LineCover::forCells(Vec3 a, Vec3 b, Visit visit) const {
  const double steps = std::ceil(std::min(MostSteps, Kernel::distance(a, b) / Step)) + 1.0;
  std::uint64_t last = ~std::uint64_t{0};
  for (double i = 0.0; i <= steps; i += 1.0) {
    Vec3 p = a + (i / steps) * (b - a);
    if (!flat) p = unit(p);
    // Points on a border of cells count to both.
    for (const double shift : {-Closeness, Closeness}) {
      const std::uint64_t key = keyOf(p + Vec3{shift, shift * 0.9, flat ? 0.0 : shift * 0.8});
      if (key != last) visit(key);
      last = key;
    }
  }
}

void LineCover::add(Vec3 from, Vec3 to) {
  const Vec3 a = placed(from);
  const Vec3 b = placed(to);
  const Vec3 normal = Kernel::cross(a, b);
  const Kept line{a, b, normal, Kernel::length3(normal)};
  const int number = static_cast<int>(lines.size());
  lines.push_back(line);
  lastAsked.push_back(-1);
  forCells(line.a, line.b, [&](std::uint64_t key) {
    std::vector<int>& here = cells[key];
    if (here.empty() || here.back() != number) here.push_back(number);
  });
}

// The part of the line from a to b, 0 to 1, that lies on a kept one: where it is close to the
// other's line, which is linear, and between the other's ends.
void LineCover::addCovered(const Kept& line, Vec3 a, Vec3 b, Vec3 normal) {
  if (!(line.length > 0.0)) return;
  const double atA = Kernel::dot(line.normal, a) / line.length;
  const double atB = Kernel::dot(line.normal, b) / line.length;
  double from = 0.0;
  double to = 1.0;
  for (const double sign : {1.0, -1.0}) {
    const double startIn = Closeness - sign * atA;
    const double endIn = Closeness - sign * atB;
    if (startIn < 0.0 && endIn < 0.0) return;
    if (startIn < 0.0) from = std::max(from, startIn / (startIn - endIn));
    if (endIn < 0.0) to = std::min(to, startIn / (startIn - endIn));
  }
  const auto partAt = [&](Vec3 p) {
    const double along = Kernel::dot(Kernel::cross(b - a, p), normal);
    return along == 0.0 ? 0.0 : -Kernel::dot(Kernel::cross(a, p), normal) / along;
  };
  const double first = partAt(line.a);
  const double second = partAt(line.b);
  from = std::max(from, std::min(first, second));
  to = std::min(to, std::max(first, second));
  if ((to - from) * Kernel::distance(a, b) > ShortestCovered ||
      (to - from > 0.5 && Kernel::distance(a, b) < 2.0 * ShortestCovered))
    covered.emplace_back(from, to);
}

std::vector<std::pair<Vec3, Vec3>> LineCover::uncovered(Vec3 from, Vec3 to) {
  const Vec3 a = placed(from);
  const Vec3 b = placed(to);
  covered.clear();
  ++question;
  const Vec3 normal = Kernel::cross(a, b);
  forCells(a, b, [&](std::uint64_t key) {
    const auto found = cells.find(key);
    if (found == cells.end()) return;
    for (const int number : found->second) {
      const auto i = static_cast<std::size_t>(number);
      if (lastAsked[i] == question) continue;
      lastAsked[i] = question;
      addCovered(lines[i], a, b, normal);
    }
  });
  std::sort(covered.begin(), covered.end());
  // What remains of the line as it came: its ends are not of unit length, parts are those of a-b.
  const double lengthA = flat ? 1.0 : Kernel::length3(from);
  const double lengthB = flat ? 1.0 : Kernel::length3(to);
  const auto placeAt = [&](double part) {
    if (part <= 0.0) return from;
    if (part >= 1.0) return to;
    return ((1.0 - part) / lengthA) * from + (part / lengthB) * to;
  };
  std::vector<std::pair<Vec3, Vec3>> rest;
  double done = 0.0;
  const auto keep = [&](double until) {
    if ((until - done) * Kernel::distance(a, b) > 2.0 * Closeness)
      rest.emplace_back(placeAt(done), placeAt(until));
  };
  for (const Interval& part : covered) {
    keep(part.first);
    done = std::max(done, part.second);
  }
  keep(1.0);
  return rest;
}

}  // namespace Lumivane::Pictures
