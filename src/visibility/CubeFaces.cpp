#include "visibility/CubeFaces.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

// Directions are whole numbers on the faces of a cube, on which great circles are straight lines,
// so that the side of a point is decided in whole numbers of 128 bits. The cube is turned against
// the scene's axes: walls and grids would otherwise run along its edges and through its corners.
namespace Lumivane::Visibility {
namespace {

__extension__ using Wide = __int128;

// The rotation by 1.7 rad about (0.61, 0.36, 0.71): rows are the cube's axes in those of the scene.
struct Rotation {
  double m[3][3];
};

constexpr Rotation FrameRotation = {{
    {0.28877634118604695, -0.4555842614920781, 0.8420517831178302},
    {0.9485137722244249, 0.01661011542877444, -0.3163000600158563},
    {0.13011475193763145, 0.8900376872617026, 0.43692455479412934},
}};

constexpr double Half = static_cast<double>(CubeHalf);

Coordinate rounded(double value) { return std::clamp(nearestWhole(value), -CubeHalf, CubeHalf); }

int dominantFace(const FrameVector& d) {
  int axis = 0;
  for (int i = 1; i < 3; ++i)
    if (std::fabs(d[i]) > std::fabs(d[axis])) axis = i;
  return faceOf(axis, d[axis] > 0.0 ? 1 : -1);
}

struct FacePoint {
  Coordinate c[3];  // by the cube's axes
};

FacePoint pointOf(const ArcEnd& end) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(end.face)];
  FacePoint p{};
  p.c[f.axis] = f.sign * CubeHalf;
  p.c[f.u] = end.x;
  p.c[f.v] = end.y;
  return p;
}

void appendPart(std::vector<Segment>& segments, int face, const FacePoint& a, const FacePoint& b,
                std::int32_t edge, bool inner) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  if (a.c[f.u] == b.c[f.u] && a.c[f.v] == b.c[f.v]) return;
  segments.push_back(makeSegment(face, a.c[f.u], a.c[f.v], b.c[f.u], b.c[f.v], edge, inner));
}

// Where an arc leaves a face: over which border, and how far along the chord.
struct Exit {
  int axis = -1;
  int sign = 0;
  double at = 2.0;
};

// Distances to the border towards (axis, sign) at the ends of the chord; negative beyond it.
double beforeBorder(const CubeFace& f, int axis, int sign, const FrameVector& d) {
  return f.sign * d[f.axis] - sign * d[axis];
}

// Faces are convex, so that an arc never comes back to one; rounding might lead it back along a
// border. What is before the border at the end of the chord may be 0, or below it, for the same
// reason only.
Exit firstExit(int face, unsigned visited, const FrameVector& a, const FrameVector& b) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  Exit first;
  for (const int axis : {f.u, f.v})
    for (const int sign : {1, -1}) {
      if ((visited >> faceOf(axis, sign) & 1U) != 0) continue;
      const double atA = std::max(0.0, beforeBorder(f, axis, sign, a));
      const double atB = beforeBorder(f, axis, sign, b);
      if (!(atB < 0.0)) continue;
      const double at = atA / (atA - atB);
      if (at < first.at) first = {axis, sign, at};
    }
  return first;
}

FacePoint borderPoint(int face, const Exit& exit, const FrameVector& a, const FrameVector& b) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  const int third = 3 - f.axis - exit.axis;
  const double atA = std::max(0.0, beforeBorder(f, exit.axis, exit.sign, a));
  const double atB = beforeBorder(f, exit.axis, exit.sign, b);
  const double along = atA * b[third] - atB * a[third];
  const double depth = std::fabs(atA * b[f.axis] - atB * a[f.axis]);
  FacePoint p{};
  p.c[f.axis] = f.sign * CubeHalf;
  p.c[exit.axis] = exit.sign * CubeHalf;
  p.c[third] = depth > 0.0 ? rounded(along / depth * Half) : 0;
  return p;
}

// The same direction, its greatest coordinate between 1 and 2: the chord of an arc says where along
// it a border is only if its ends are about as long as each other.
FrameVector evenEnd(const FrameVector& d, int face) {
  const int scale = -std::ilogb(d[CubeFaces[static_cast<size_t>(face)].axis]);
  return {{std::scalbn(d[0], scale), std::scalbn(d[1], scale), std::scalbn(d[2], scale)}};
}

// An end of an arc may lie on faces beside its own.
bool isOn(int face, const FacePoint& p) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  return p.c[f.axis] == f.sign * CubeHalf;
}

}  // namespace

FrameVector toFrame(Kernel::Vec3 v) {
  const auto& m = FrameRotation.m;
  FrameVector out{};
  for (int i = 0; i < 3; ++i) out.c[i] = m[i][0] * v.x + m[i][1] * v.y + m[i][2] * v.z;
  return out;
}

Kernel::Vec3 toScene(const FrameVector& v) {
  const auto& m = FrameRotation.m;
  return {m[0][0] * v[0] + m[1][0] * v[1] + m[2][0] * v[2],
          m[0][1] * v[0] + m[1][1] * v[1] + m[2][1] * v[2],
          m[0][2] * v[0] + m[1][2] * v[1] + m[2][2] * v[2]};
}

Segment makeSegment(int face, Coordinate xa, Coordinate ya, Coordinate xb, Coordinate yb,
                    std::int32_t edge, bool inner) {
  if (xb < xa || (xb == xa && yb < ya)) {
    std::swap(xa, xb);
    std::swap(ya, yb);
  }
  const double slope = xa == xb ? 0.0 : static_cast<double>(yb - ya) / static_cast<double>(xb - xa);
  return {xa,
          ya,
          xb,
          yb,
          slope,
          edge,
          static_cast<std::uint8_t>(inner ? 1 : 0),
          static_cast<std::uint8_t>(face)};
}

ArcEnd arcEnd(const FrameVector& direction) {
  const int face = dominantFace(direction);
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  const double depth = std::fabs(direction[f.axis]);
  return {face, rounded(direction[f.u] / depth * Half), rounded(direction[f.v] / depth * Half)};
}

void appendArc(std::vector<Segment>& segments, const FrameVector& a, const FrameVector& b,
               std::int32_t edge, bool inner) {
  appendArc(segments, a, arcEnd(a), b, arcEnd(b), edge, inner);
}

void appendArc(std::vector<Segment>& segments, const FrameVector& directionA, const ArcEnd& endA,
               const FrameVector& directionB, const ArcEnd& endB, std::int32_t edge, bool inner) {
  if (endA.face == endB.face) {
    if (endA.x != endB.x || endA.y != endB.y)
      segments.push_back(makeSegment(endA.face, endA.x, endA.y, endB.x, endB.y, edge, inner));
    return;
  }
  const FrameVector a = evenEnd(directionA, endA.face);
  const FrameVector b = evenEnd(directionB, endB.face);
  int face = endA.face;
  FacePoint from = pointOf(endA);
  const FacePoint end = pointOf(endB);
  unsigned visited = 1U << face;
  // An arc of less than half a circle visits at most five faces.
  for (int step = 0; !isOn(face, end) && step < FaceCount; ++step) {
    const Exit exit = firstExit(face, visited, a, b);
    if (exit.axis < 0) break;
    const FacePoint to = borderPoint(face, exit, a, b);
    appendPart(segments, face, from, to, edge, inner);
    face = faceOf(exit.axis, exit.sign);
    visited |= 1U << face;
    from = to;
  }
  if (isOn(face, end)) appendPart(segments, face, from, end, edge, inner);
}

int exactSideOf(const Segment& s, Coordinate x, Coordinate y) {
  const Coordinate dx = s.x1 - s.x0;
  const Coordinate dy = s.y1 - s.y0;
  const Wide exact = static_cast<Wide>(dx) * (y - s.y0) - static_cast<Wide>(dy) * (x - s.x0);
  if (exact != 0) return exact > 0 ? 1 : -1;
  if (dy != 0) return dy < 0 ? 1 : -1;
  return dx > 0 ? 1 : -1;
}

}  // namespace Lumivane::Visibility
