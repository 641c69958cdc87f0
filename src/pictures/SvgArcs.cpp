#include "pictures/SvgArcs.h"

#include <cmath>

namespace Lumivane::Pictures {
namespace {

using Arc = Drawing::Arc;
using Line = Drawing::Line;
using Point = Drawing::Point;

constexpr double Beside = 5e-4;  // mm: how far joined lines' ends may be off an arc's

bool isBeside(const Point& a, const Point& b) { return std::hypot(a.x - b.x, a.y - b.y) < Beside; }

bool isSame(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }

Arc reversed(Arc arc) {
  std::swap(arc.first, arc.last);
  std::swap(arc.second, arc.beforeLast);
  arc.isClockwise = !arc.isClockwise;
  return arc;
}

}  // namespace

SvgArcs::SvgArcs(const std::vector<Arc>& arcs, const SvgNumbers& svgNumbers) : numbers(svgNumbers) {
  for (const Arc& arc : arcs)
    for (const Arc& way : {arc, reversed(arc)})
      known.emplace(std::pair(way.second.x, way.second.y), way);
}

std::string SvgArcs::data(const std::vector<Line>& lines, bool closed) const {
  std::string data;
  for (const Line& line : lines) {
    if (line.empty()) continue;
    add(line, closed, data);
    if (closed) data += 'z';
  }
  return data;
}

// A closed line is gone through from its last point, which is a corner and no point of a curve.
void SvgArcs::add(const Line& line, bool closed, std::string& data) const {
  const std::size_t count = line.size();
  const std::size_t start = closed ? count - 1 : 0;
  const std::size_t chords = closed ? count : count - 1;
  const auto at = [&line, start, count](std::size_t i) -> const Point& {
    return line[(start + i) % count];
  };
  data += 'M' + place(at(0));
  for (std::size_t i = 0; i < chords;) {
    const Arc* const arc = arcAt(at, i, chords);
    if (arc == nullptr) {
      data += 'L' + place(at(++i));
      continue;
    }
    i += arc->chords;
    data += 'A' + numbers.text(arc->radius) + ' ' + numbers.text(arc->smallerRadius) + ' ' +
            numbers.text(arc->turn) + " 0 " + (arc->isClockwise ? '1' : '0') + ' ' + place(at(i));
  }
}

template <class At>
const Arc* SvgArcs::arcAt(const At& at, std::size_t first, std::size_t chords) const {
  const Point& second = at(first + 1);
  const auto range = known.equal_range(std::pair(second.x, second.y));
  for (auto found = range.first; found != range.second; ++found) {
    const Arc& arc = found->second;
    if (first + arc.chords > chords) continue;
    if (isSame(at(first + arc.chords - 1), arc.beforeLast) && isBeside(at(first), arc.first) &&
        isBeside(at(first + arc.chords), arc.last))
      return &arc;
  }
  return nullptr;
}

std::string SvgArcs::place(const Point& p) const {
  return numbers.text(p.x) + ' ' + numbers.text(p.y);
}

}  // namespace Lumivane::Pictures
