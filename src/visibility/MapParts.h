#pragma once

#include "visibility/CubeFaces.h"

#include <array>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

/// What looking into the tiles of the cube gives: areas of one label, and the pieces of border
/// between areas of different labels. Areas that belong together are joined as neighbours are
/// found; the map is what remains.
namespace Lumivane::Visibility {

/// Labels that are no region of the scene.
constexpr std::int32_t SkyRegion = -1;
constexpr std::int32_t BeyondRegion = -2;  // outside the field

/// What a piece of border lies on: an edge of the scene by its number, or one of these.
using Source = std::int64_t;
constexpr Source NoSource = -1;
constexpr Source FieldSource = -2;
/// The line in which the planes of two polygons meet.
constexpr Source crossingSource(std::int32_t lower, std::int32_t higher) {
  return (Source{1} << 62) | (static_cast<Source>(lower) << 31) | higher;
}
constexpr bool isCrossing(Source source) { return source >= (Source{1} << 62); }

/// Sets that are joined. The lowest member stands for its set.
class JoinedSets {
 public:
  int add() {
    parents.push_back(static_cast<int>(parents.size()));
    return parents.back();
  }
  int find(int i) {
    while (parents[static_cast<size_t>(i)] != i) {
      int& parent = parents[static_cast<size_t>(i)];
      parent = parents[static_cast<size_t>(parent)];
      i = parent;
    }
    return i;
  }
  void join(int a, int b) {
    a = find(a);
    b = find(b);
    if (a == b) return;
    if (b < a) std::swap(a, b);
    parents[static_cast<size_t>(b)] = a;
  }
  size_t size() const { return parents.size(); }
  void reserve(size_t count) { parents.reserve(count); }
  /// Forgets all members from `count` on, which are joined with each other only.
  void truncate(size_t count) { parents.resize(count); }
  /// Appends the sets of another, whose members follow.
  void append(const JoinedSets& other) {
    const int offset = static_cast<int>(parents.size());
    for (const int parent : other.parents) parents.push_back(parent + offset);
  }

 private:
  std::vector<int> parents;
};

/// An area in which one label is seen.
struct Area {
  std::int32_t region;   // in the scene's order, or SkyRegion or BeyondRegion
  std::int32_t polygon;  // of the state, -1 for none
};

/// A point of the cube.
struct CubePoint {
  Coordinate c[3];
};
inline bool operator==(const CubePoint& a, const CubePoint& b) {
  return a.c[0] == b.c[0] && a.c[1] == b.c[1] && a.c[2] == b.c[2];
}

inline CubePoint cubePoint(int face, Coordinate x, Coordinate y) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  CubePoint p{};
  p.c[f.axis] = f.sign * CubeHalf;
  p.c[f.u] = x;
  p.c[f.v] = y;
  return p;
}

/// A straight piece of border between two areas, as the eye sees it when it looks along it.
struct Piece {
  int from;
  int to;
  int left;
  int right;
  Source source;
  bool inner;            // the source is a docking edge or a diagonal
  bool shared;           // the source is an edge of the polygons on both sides
  bool foreign = false;  // the source is an edge of neither, which runs there, too
};

/// A stretch of a side of a tile and the area that lies there. Stretches follow each other.
struct Stretch {
  Coordinate from;
  Coordinate to;
  int fromVertex;  // -1 where none has been asked for
  int toVertex;
  int area;
  int next;  // -1 at the end
};

/// The stretches along a side, from low to high coordinates.
struct SideList {
  int head = -1;
  int tail = -1;
};

enum Side { Left, Right, Bottom, Top };
using Sides = std::array<SideList, 4>;

/// The parts of some tiles.
struct MapParts {
  std::vector<Area> areas;
  JoinedSets areaSets;
  std::vector<CubePoint> vertices;
  JoinedSets vertexSets;
  std::vector<Piece> pieces;
  std::vector<Stretch> stretches;

  int addArea(std::int32_t region, std::int32_t polygon) {
    areas.push_back({region, polygon});
    return areaSets.add();
  }
  int addVertex(int face, Coordinate x, Coordinate y) {
    vertices.push_back(cubePoint(face, x, y));
    return vertexSets.add();
  }
  std::int32_t regionOf(int area) const { return areas[static_cast<size_t>(area)].region; }
  void addStretch(SideList& side, Coordinate from, Coordinate to, int fromVertex, int toVertex,
                  int area);
  void concatenate(SideList& side, const SideList& after);
};

/// Points closer than this are one; units of the cube, 6e-14 rad.
constexpr Coordinate Snap = 64;

/// Where a line of the cube that two sides share lies, and which is on its left as one walks along
/// it towards higher coordinates.
struct SharedLine {
  int axis;         // the axis along the line
  CubePoint point;  // any point of it
  bool firstIsLeft;
};

/// Joins what touches along a line: areas of one label become one, between others pieces arise.
void stitch(MapParts& parts, SideList first, SideList second, const SharedLine& line);

/// Appends other parts, along whose sides lies `sides`; gives that with the numbers it has now.
/// Each list of the other parts gives its memory back as soon as it is appended.
Sides append(MapParts& parts, MapParts other, Sides sides);

}  // namespace Lumivane::Visibility
