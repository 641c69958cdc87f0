#include "visibility/MapParts.h"

#include <algorithm>

// Tiles are swept apart from each other, so each leaves lists of what lies along its sides. Two
// lists of a common side are walked together: where both show one region the areas become one,
// elsewhere a piece of border arises. Ends within rounding of each other are one vertex.
namespace Lumivane::Visibility {

void MapParts::addStretch(SideList& side, Coordinate from, Coordinate to, int fromVertex,
                          int toVertex, int area) {
  const int number = static_cast<int>(stretches.size());
  stretches.push_back({from, to, fromVertex, toVertex, area, -1});
  if (side.tail < 0) {
    side.head = number;
  } else {
    stretches[static_cast<size_t>(side.tail)].next = number;
  }
  side.tail = number;
}

void MapParts::concatenate(SideList& side, const SideList& after) {
  if (after.head < 0) return;
  if (side.tail < 0) {
    side = after;
    return;
  }
  stretches[static_cast<size_t>(side.tail)].next = after.head;
  side.tail = after.tail;
}

namespace {

// An end of a stretch, for the two sides that meet.
struct Mark {
  Coordinate at;
  int vertex;
};

class Stitcher {
 public:
  Stitcher(MapParts& theParts, const SharedLine& theLine) : parts(theParts), line(theLine) {}

  void run(int first, int second) {
    Mark from = start(first, second);
    while (first >= 0 && second >= 0) {
      const Stretch a = stretch(first);
      const Stretch b = stretch(second);
      Mark to{};
      bool endsA = a.to <= b.to;
      bool endsB = b.to <= a.to;
      if (std::max(a.to, b.to) - std::min(a.to, b.to) <= Snap) endsA = endsB = true;
      to.at = endsA ? a.to : b.to;
      to.vertex = endsA ? a.toVertex : b.toVertex;
      if (endsA && endsB) {
        if (a.toVertex >= 0 && b.toVertex >= 0) parts.vertexSets.join(a.toVertex, b.toVertex);
        if (to.vertex < 0 && b.toVertex >= 0) to = {b.to, b.toVertex};
      }
      meet(a.area, b.area, from, to);
      from = to;
      if (endsA) first = a.next;
      if (endsB) second = b.next;
    }
  }

 private:
  const Stretch& stretch(int number) const { return parts.stretches[static_cast<size_t>(number)]; }

  Mark start(int first, int second) const {
    if (first < 0 || second < 0) return {0, -1};
    const Stretch& a = stretch(first);
    return {a.from, a.fromVertex >= 0 ? a.fromVertex : stretch(second).fromVertex};
  }

  int vertexAt(Mark& mark) {
    if (mark.vertex < 0) {
      CubePoint p = line.point;
      p.c[line.axis] = mark.at;
      parts.vertices.push_back(p);
      mark.vertex = parts.vertexSets.add();
    }
    return mark.vertex;
  }

  void meet(int a, int b, Mark& from, Mark& to) {
    if (from.at >= to.at) return;
    if (parts.regionOf(a) == parts.regionOf(b)) {
      parts.areaSets.join(a, b);
      return;
    }
    const int left = line.firstIsLeft ? a : b;
    const int right = line.firstIsLeft ? b : a;
    parts.pieces.push_back({vertexAt(from), vertexAt(to), left, right, NoSource, false, false});
  }

  MapParts& parts;
  SharedLine line;
};

}  // namespace

void stitch(MapParts& parts, SideList first, SideList second, const SharedLine& line) {
  Stitcher(parts, line).run(first.head, second.head);
}

Sides append(MapParts& parts, MapParts other, Sides sides) {
  const int areas = static_cast<int>(parts.areas.size());
  const int vertices = static_cast<int>(parts.vertices.size());
  const int stretches = static_cast<int>(parts.stretches.size());
  const auto moved = [](int number, int by) { return number < 0 ? number : number + by; };
  parts.areas.insert(parts.areas.end(), other.areas.begin(), other.areas.end());
  std::vector<Area>().swap(other.areas);
  parts.areaSets.append(other.areaSets);
  other.areaSets = JoinedSets();
  parts.vertices.insert(parts.vertices.end(), other.vertices.begin(), other.vertices.end());
  std::vector<CubePoint>().swap(other.vertices);
  parts.vertexSets.append(other.vertexSets);
  other.vertexSets = JoinedSets();
  for (Piece piece : other.pieces) {
    piece.from += vertices;
    piece.to += vertices;
    piece.left += areas;
    piece.right += areas;
    parts.pieces.push_back(piece);
  }
  std::vector<Piece>().swap(other.pieces);
  for (Stretch stretch : other.stretches) {
    stretch.fromVertex = moved(stretch.fromVertex, vertices);
    stretch.toVertex = moved(stretch.toVertex, vertices);
    stretch.area += areas;
    stretch.next = moved(stretch.next, stretches);
    parts.stretches.push_back(stretch);
  }
  for (SideList& side : sides) side = {moved(side.head, stretches), moved(side.tail, stretches)};
  return sides;
}

}  // namespace Lumivane::Visibility
