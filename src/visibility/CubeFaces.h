#pragma once

#include "kernel/Vec.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

/// Directions as points of a cube around the eye, in whole numbers. On a face of the cube great
/// circles are straight lines, and on whole numbers the side of a point against a line is exact.
///
/// The cube is turned against the scene's axes by an arbitrary but fixed rotation, so that the
/// edges of rooms and towns do not run along the borders of faces and tiles. What it computes does
/// not depend on that: see `Sweep.h` for what happens if they do run there all the same.
namespace Lumivane::Visibility {

using Coordinate = std::int64_t;

/// Half the side of the cube: coordinates run from -CubeHalf to CubeHalf. A unit is 9e-16 rad, so
/// doubles hold all coordinates and their differences exactly, and products of differences fit into
/// 128 bits.
constexpr Coordinate CubeHalf = Coordinate{1} << 50;

constexpr int FaceCount = 6;

/// A face of the cube: the axis it lies across, on which side, and the axes of its coordinates x
/// and y. As the eye sees the face, x runs to the right and y upwards.
struct CubeFace {
  int axis;
  int sign;
  int u;
  int v;
};

/// Every face's axes u and v are axes of the cube in their positive direction: so a point on the
/// edge between two faces has the same coordinate along the edge on both.
constexpr std::array<CubeFace, FaceCount> CubeFaces = {{
    {0, 1, 2, 1},   // u x v = z x y = -x
    {0, -1, 1, 2},  // y x z = x
    {1, 1, 0, 2},   // x x z = -y
    {1, -1, 2, 0},  // z x x = y
    {2, 1, 1, 0},   // y x x = -z
    {2, -1, 0, 1},  // x x y = z
}};

/// The face with the given axis and sign.
constexpr int faceOf(int axis, int sign) { return 2 * axis + (sign > 0 ? 0 : 1); }

/// A vector's three coordinates by number.
struct FrameVector {
  double c[3];
  double operator[](int i) const { return c[i]; }
};

/// From the scene's axes to the cube's.
FrameVector toFrame(Kernel::Vec3 v);
/// From the cube's axes to the scene's.
Kernel::Vec3 toScene(const FrameVector& v);

/// A part of an arc on one face, from left to right, upright ones upwards.
struct Segment {
  Coordinate x0;
  Coordinate y0;
  Coordinate x1;
  Coordinate y1;
  double slope;        // (y1 - y0) / (x1 - x0); 0 for an upright one
  std::int32_t edge;   // of the scene, or one of the special numbers below
  std::uint8_t inner;  // a docking edge or a diagonal of its polygon
  std::uint8_t face;
};

/// The nearest whole number, the even one of two, as std::llrint gives it.
inline Coordinate nearestWhole(double value) {
#ifdef __SSE2__
  return _mm_cvtsd_si64(_mm_set_sd(value));
#else
  return std::llrint(value);
#endif
}

/// The number that the end of the field has in place of a scene's edge.
constexpr std::int32_t FieldEdge = -2;

Segment makeSegment(int face, Coordinate xa, Coordinate ya, Coordinate xb, Coordinate yb,
                    std::int32_t edge, bool inner);

/// Where a direction meets the cube: a face and the point's coordinates on it.
struct ArcEnd {
  int face;
  Coordinate x;
  Coordinate y;
};
ArcEnd arcEnd(const FrameVector& direction);

/// Appends the segments of the arc from a to b, which is less than half a great circle. Arcs that
/// meet in a direction have the same end there, and an arc crosses from face to face in a point of
/// both. Give the ends of an arc always in the same order.
void appendArc(std::vector<Segment>& segments, const FrameVector& a, const FrameVector& b,
               std::int32_t edge, bool inner);
/// The same, for ends that are known already.
void appendArc(std::vector<Segment>& segments, const FrameVector& a, const ArcEnd& endA,
               const FrameVector& b, const ArcEnd& endB, std::int32_t edge, bool inner);

/// On which side of a segment a corner of a tile lies: 1 to its left (above a segment that is not
/// upright), -1 to its right, never 0, and never wrong.
///
/// Corners stand for points a little to the right of them, and a much smaller bit above them, so
/// that no end of a segment and no line through two ends meets one: half-open tiles.
inline int sideOf(const Segment& s, Coordinate x, Coordinate y);
/// The same by whole numbers alone.
int exactSideOf(const Segment& s, Coordinate x, Coordinate y);

inline int sideOf(const Segment& s, Coordinate x, Coordinate y) {
  const double a = static_cast<double>(s.x1 - s.x0) * static_cast<double>(y - s.y0);
  const double b = static_cast<double>(s.y1 - s.y0) * static_cast<double>(x - s.x0);
  // Each product is off by half a unit of its last place at most, and so is their difference.
  if (std::fabs(a - b) > 4e-16 * (std::fabs(a) + std::fabs(b))) return a > b ? 1 : -1;
  return exactSideOf(s, x, y);
}

/// Whether the segment crosses the horizontal line through a corner to the left of the corner; the
/// segment must straddle the line, i.e. one end is at most as high as the corner.
inline bool crossesLeftOf(const Segment& s, Coordinate x, Coordinate y) {
  return (s.y1 > s.y0) == (sideOf(s, x, y) < 0);
}

/// How many segments a walk from one corner to another crosses, modulo 2: first along the row of
/// the first corner, then along the column of the second.
template <class Segments, class Get>
bool crossingParity(const Segments& segments, Get get, Coordinate fromX, Coordinate fromY,
                    Coordinate toX, Coordinate toY) {
  bool odd = false;
  for (const auto& item : segments) {
    const Segment& s = get(item);
    if (fromX != toX && (s.y0 <= fromY) != (s.y1 <= fromY))
      odd ^= crossesLeftOf(s, fromX, fromY) != crossesLeftOf(s, toX, fromY);
    if (fromY != toY && s.x0 <= toX && toX < s.x1)
      odd ^= sideOf(s, toX, fromY) != sideOf(s, toX, toY);
  }
  return odd;
}

}  // namespace Lumivane::Visibility
