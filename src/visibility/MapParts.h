#pragma once

#include "visibility/BlockList.h"
#include "visibility/CubeFaces.h"

#include <array>
#include <cstddef>
#include <cstdint>
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

/// Sets that are joined, in a list of numbers. The lowest member stands for its set.
template <class Numbers>
class BasicJoinedSets {
 public:
  int add() {
    const int number = static_cast<int>(parents.size());
    parents.push_back(number);
    return number;
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
  void clear() { parents.clear(); }
  /// Appends the sets of another, whose members follow.
  void append(const BasicJoinedSets& other) {
    const int offset = static_cast<int>(parents.size());
    for (size_t i = 0; i < other.size(); ++i) parents.push_back(other.parents[i] + offset);
  }

 private:
  Numbers parents;
};
using JoinedSets = BasicJoinedSets<std::vector<int>>;
/// Of as many members as a map has parts.
using ManyJoinedSets = BasicJoinedSets<BlockList<int>>;

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

/// A piece in as little memory as it takes, since millions of them are what a large map is made of:
/// first between areas, then between cells.
class Link {
 public:
  int from;
  int to;
  int left;
  int right;

  Link() = default;
  explicit Link(const Piece& piece)
      : from(piece.from), to(piece.to), left(piece.left), right(piece.right), packed(piece.source) {
    // Only edges of the scene are any of these.
    if (piece.inner) packed |= Inner;
    if (piece.shared) packed |= Shared;
    if (piece.foreign) packed |= Foreign;
  }
  Source source() const { return isEdge() ? packed & EdgeMask : packed; }
  bool inner() const { return isEdge() && (packed & Inner) != 0; }
  bool shared() const { return isEdge() && (packed & Shared) != 0; }
  bool foreign() const { return isEdge() && (packed & Foreign) != 0; }
  void setUnshared() {
    if (isEdge()) packed &= ~Shared;
  }
  void setSource(Source source, bool inner, bool shared) {
    *this = Link({from, to, left, right, source, inner, shared});
  }

 private:
  static constexpr Source Inner = Source{1} << 40;
  static constexpr Source Shared = Source{1} << 41;
  static constexpr Source Foreign = Source{1} << 42;
  static constexpr Source EdgeMask = (Source{1} << 32) - 1;
  bool isEdge() const { return packed >= 0 && !isCrossing(packed); }

  Source packed;
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

/// The parts of one tile, while it is swept.
struct TileParts {
  std::vector<Area> areas;
  JoinedSets areaSets;
  std::vector<CubePoint> vertices;
  std::vector<Piece> pieces;
  std::vector<Stretch> stretches;
  std::vector<int> numbers;  // scratch of `append`

  void clear();
  int addArea(std::int32_t region, std::int32_t polygon) {
    areas.push_back({region, polygon});
    return areaSets.add();
  }
  int addVertex(int face, Coordinate x, Coordinate y) {
    vertices.push_back(cubePoint(face, x, y));
    return static_cast<int>(vertices.size()) - 1;
  }
  std::int32_t regionOf(int area) const { return areas[static_cast<size_t>(area)].region; }
  void addStretch(SideList& side, Coordinate from, Coordinate to, int fromVertex, int toVertex,
                  int area);
};

/// The parts of some tiles.
struct MapParts {
  BlockList<Area> areas;
  ManyJoinedSets areaSets;
  BlockList<CubePoint> vertices;
  ManyJoinedSets vertexSets;
  BlockList<Link> pieces;

  int addArea(std::int32_t region, std::int32_t polygon) {
    areas.push_back({region, polygon});
    return areaSets.add();
  }
  int addVertex(const CubePoint& point) {
    vertices.push_back(point);
    return vertexSets.add();
  }
  std::int32_t regionOf(int area) const { return areas[static_cast<size_t>(area)].region; }

  const Stretch& stretch(int number) const { return stretches[static_cast<size_t>(number)]; }
  void addStretch(SideList& side, const Stretch& stretch);
  void concatenate(SideList& side, const SideList& after);
  /// Forgets what lies along a side; its stretches are used again.
  void forget(const SideList& side);
  void forgetAllStretches();

 private:
  BlockList<Stretch> stretches;
  SideList unused;
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
/// What lies along the two sides is forgotten.
void stitch(MapParts& parts, SideList first, SideList second, const SharedLine& line);

/// Appends the parts of a tile, along whose sides lies `sides`; gives that with the numbers it has
/// now. Of the areas that are one already, those of one polygon become one.
Sides append(MapParts& parts, TileParts& tile, const Sides& sides);

/// Appends other parts. They give their memory back while they are appended.
Sides append(MapParts& parts, MapParts other, const Sides& sides);

}  // namespace Lumivane::Visibility
