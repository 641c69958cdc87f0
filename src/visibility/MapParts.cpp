#include "visibility/MapParts.h"

#include <algorithm>
#include <tuple>

// Tiles are swept apart from each other, so each leaves lists of what lies along its sides. Two
// lists of a common side are walked together: where both show one region the areas become one,
// elsewhere a piece of border arises. Ends within rounding of each other are one vertex.
namespace Lumivane::Visibility {

namespace {

// Appends stretch `number` to a side.
template <class Stretches>
void link(Stretches& stretches, SideList& side, int number) {
  if (side.tail < 0) {
    side.head = number;
  } else {
    stretches[static_cast<size_t>(side.tail)].next = number;
  }
  side.tail = number;
}

}  // namespace

void TileParts::clear() {
  areas.clear();
  areaSets.clear();
  vertices.clear();
  pieces.clear();
  stretches.clear();
}

void TileParts::addStretch(SideList& side, Coordinate from, Coordinate to, int fromVertex,
                           int toVertex, int area) {
  stretches.push_back({from, to, fromVertex, toVertex, area, -1});
  link(stretches, side, static_cast<int>(stretches.size()) - 1);
}

void MapParts::addStretch(SideList& side, const Stretch& stretch) {
  int number = unused.head;
  if (number < 0) {
    number = static_cast<int>(stretches.size());
    stretches.push_back(stretch);
  } else {
    unused.head = this->stretch(number).next;
    if (unused.head < 0) unused.tail = -1;
    stretches[static_cast<size_t>(number)] = stretch;
  }
  stretches[static_cast<size_t>(number)].next = -1;
  link(stretches, side, number);
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

void MapParts::forget(const SideList& side) { concatenate(unused, side); }

void MapParts::forgetAllStretches() {
  stretches = BlockList<Stretch>();
  unused = SideList{};
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
      const Stretch a = parts.stretch(first);
      const Stretch b = parts.stretch(second);
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
  Mark start(int first, int second) const {
    if (first < 0 || second < 0) return {0, -1};
    const Stretch& a = parts.stretch(first);
    return {a.from, a.fromVertex >= 0 ? a.fromVertex : parts.stretch(second).fromVertex};
  }

  int vertexAt(Mark& mark) {
    if (mark.vertex < 0) {
      CubePoint p = line.point;
      p.c[line.axis] = mark.at;
      mark.vertex = parts.addVertex(p);
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
    const int start = vertexAt(from);
    const int end = vertexAt(to);
    parts.pieces.push_back(Link({start, end, left, right, NoSource, false, false}));
  }

  MapParts& parts;
  SharedLine line;
};

}  // namespace

void stitch(MapParts& parts, SideList first, SideList second, const SharedLine& line) {
  Stitcher(parts, line).run(first.head, second.head);
  parts.forget(first);
  parts.forget(second);
}

namespace {

int movedBy(int offset, int number) { return number < 0 ? number : number + offset; }

// For each area of a tile the first one that is one with it and of its polygon.
void findFirstAreas(TileParts& tile) {
  struct Other {
    int root;
    std::int32_t polygon;
    int area;
  };
  std::vector<Other> others;  // of another polygon than the area that stands for their set
  const size_t count = tile.areas.size();
  tile.numbers.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const int area = static_cast<int>(i);
    const int root = tile.areaSets.find(area);
    tile.numbers[i] = root;
    if (tile.areas[i].polygon != tile.areas[static_cast<size_t>(root)].polygon)
      others.push_back({root, tile.areas[i].polygon, area});
  }
  std::sort(others.begin(), others.end(), [](const Other& a, const Other& b) {
    return std::tie(a.root, a.polygon, a.area) < std::tie(b.root, b.polygon, b.area);
  });
  const Other* first = nullptr;
  for (const Other& other : others) {
    if (first == nullptr || first->root != other.root || first->polygon != other.polygon)
      first = &other;
    tile.numbers[static_cast<size_t>(other.area)] = first->area;
  }
}

// Appends what `findFirstAreas` has found, in its order, and makes their numbers those among the
// parts.
void appendAreas(MapParts& parts, TileParts& tile) {
  findFirstAreas(tile);
  for (size_t i = 0; i < tile.areas.size(); ++i) {
    const auto first = static_cast<size_t>(tile.numbers[i]);
    if (first != i) {
      tile.numbers[i] = tile.numbers[first];
      continue;
    }
    tile.numbers[i] = parts.addArea(tile.areas[i].region, tile.areas[i].polygon);
    const auto root = static_cast<size_t>(tile.areaSets.find(static_cast<int>(i)));
    if (root != i) parts.areaSets.join(tile.numbers[root], tile.numbers[i]);
  }
}

}  // namespace

Sides append(MapParts& parts, TileParts& tile, const Sides& sides) {
  appendAreas(parts, tile);
  const std::vector<int>& areas = tile.numbers;
  const int vertices = static_cast<int>(parts.vertices.size());
  for (const CubePoint& vertex : tile.vertices) parts.addVertex(vertex);
  for (const Piece& piece : tile.pieces) {
    Link link(piece);
    link.from += vertices;
    link.to += vertices;
    link.left = areas[static_cast<size_t>(piece.left)];
    link.right = areas[static_cast<size_t>(piece.right)];
    parts.pieces.push_back(link);
  }
  Sides appended;
  for (size_t side = 0; side < sides.size(); ++side)
    for (int i = sides[side].head; i >= 0; i = tile.stretches[static_cast<size_t>(i)].next) {
      Stretch stretch = tile.stretches[static_cast<size_t>(i)];
      stretch.fromVertex = movedBy(vertices, stretch.fromVertex);
      stretch.toVertex = movedBy(vertices, stretch.toVertex);
      stretch.area = areas[static_cast<size_t>(stretch.area)];
      parts.addStretch(appended[side], stretch);
    }
  return appended;
}

Sides append(MapParts& parts, MapParts other, const Sides& sides) {
  const int areas = static_cast<int>(parts.areas.size());
  const int vertices = static_cast<int>(parts.vertices.size());
  Sides appended;
  for (size_t side = 0; side < sides.size(); ++side)
    for (int i = sides[side].head; i >= 0; i = other.stretch(i).next) {
      Stretch stretch = other.stretch(i);
      stretch.fromVertex = movedBy(vertices, stretch.fromVertex);
      stretch.toVertex = movedBy(vertices, stretch.toVertex);
      stretch.area += areas;
      parts.addStretch(appended[side], stretch);
    }
  other.forgetAllStretches();
  for (size_t i = 0; i < other.areas.size(); ++i) parts.areas.push_back(other.areas[i]);
  other.areas = {};
  parts.areaSets.append(other.areaSets);
  other.areaSets = {};
  for (size_t i = 0; i < other.vertices.size(); ++i) {
    parts.vertices.push_back(other.vertices[i]);
    other.vertices.releaseBefore(i);
  }
  parts.vertexSets.append(other.vertexSets);
  other.vertexSets = {};
  for (size_t i = 0; i < other.pieces.size(); ++i) {
    Link link = other.pieces[i];
    link.from += vertices;
    link.to += vertices;
    link.left += areas;
    link.right += areas;
    parts.pieces.push_back(link);
    other.pieces.releaseBefore(i);
  }
  return appended;
}

}  // namespace Lumivane::Visibility
