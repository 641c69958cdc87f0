#pragma once

#include "visibility/CubeFaces.h"
#include "visibility/IndexState.h"
#include "visibility/ParallelSight.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

/// The polygons of a scene as one eye sees them, each worked out when it is first asked for.
namespace Lumivane::Visibility {

/// What does not change during a look.
struct LookSetup {
  const IndexState* state = nullptr;
  Kernel::Vec3 eye;
  bool twoSided = false;
  bool hemisphere = true;
  FrameVector forward{};                            // the middle of the field, in the cube's axes
  const std::vector<std::int32_t>* only = nullptr;  // polygons to look at; all without it
  const ParallelSight* parallel = nullptr;          // in place of the eye; null for an eye

  /// The direction of a point of the scene, in the scene's axes.
  Kernel::Vec3 directionTo(Kernel::Vec3 point) const {
    return parallel == nullptr ? point - eye : parallel->directionTo(point);
  }
};

/// A polygon as the eye sees it. 1 / distance along a direction d is plane.d, which is linear on a
/// face of the cube.
struct LookPolygon {
  static constexpr std::int32_t NoFace = -1;

  std::int32_t number = -1;     // in the state; -1 for what lies beyond the field
  bool seen = false;            // faces the eye, and is not edge-on
  bool besideItsLayer = false;  // depth is compared by its own plane in place of the layer's
  std::int32_t layer = -1;
  std::int32_t region = -1;       // position in the scene's order
  FrameVector plane{};            // of its layer, by which depth is compared
  FrameVector ownPlane{};         // for distances
  Kernel::Vec3 behind{};          // a point p from the eye is behind the plane of the layer if
  double behindOffset = 1.0;      // behind.p > behindOffset
  double weight = 0.0;            // sum of the magnitudes of plane, for bounds of rounding
  std::uint8_t cornerParity = 0;  // bit f: whether it covers the lower left corner of face f
  std::int8_t onlyFace = NoFace;  // the one face that it touches, or NoFace for several
  std::uint32_t firstSegment[FaceCount + 1] =
      {};                  // of its segments on face f: firstSegment[f] up to [f + 1]
  Coordinate box[4] = {};  // on its only face: x from, y from, x to, y to
};

/// Whether polygon a is seen where both cover a direction in which they are at one distance.
inline bool paintedAfter(const LookPolygon& a, const LookPolygon& b) { return a.region > b.region; }

/// 1 / distance at a point of a face, times CubeHalf.
inline double depthAt(const LookPolygon& p, const CubeFace& f, double x, double y) {
  return p.plane[f.u] * x + p.plane[f.v] * y +
         p.plane[f.axis] * (f.sign * static_cast<double>(CubeHalf));
}

/// More than what rounding does to the difference of two of `depthAt`.
inline double depthError(const LookPolygon& a, const LookPolygon& b) {
  return 1e-15 * static_cast<double>(CubeHalf) * (a.weight + b.weight);
}

/// 1 where polygon a is in front of b at a point of a face, -1 where b is; 0 only for one polygon.
int inFront(const LookPolygon& a, const LookPolygon& b, const CubeFace& f, double x, double y);

/// All polygons that have been asked for, with their segments. One for each thread.
class LookPolygons {
 public:
  /// The position that the end of the field has.
  static constexpr std::int32_t Beyond = 0;

  explicit LookPolygons(const LookSetup& setup);

  /// The position of a polygon of the state.
  std::int32_t find(std::int32_t number);
  const LookPolygon& operator[](std::int32_t position) const {
    return polygons[static_cast<size_t>(position)];
  }
  const Segment& segment(std::uint32_t position) const { return segments[position]; }
  const LookSetup& setup() const { return theSetup; }

 private:
  void addBeyond();
  void add(std::int32_t number);
  void placePlanes(LookPolygon& polygon) const;
  void addSegments(LookPolygon& polygon);
  void addEdge(Kernel::Vec3 from, Kernel::Vec3 to, std::size_t corner);
  void sortByFace(LookPolygon& polygon, std::uint32_t first);
  void findCornerParity(LookPolygon& polygon) const;
  bool coversDirection(const LookPolygon& polygon, const FrameVector& direction) const;
  bool parityOfCorner(const LookPolygon& polygon, int face) const;

  LookSetup theSetup;
  std::vector<LookPolygon> polygons;
  std::vector<Segment> segments;
  std::vector<std::int32_t> slots;  // open addressing: numbers' positions, -1 where free
  // Scratch: of the polygon that is being added, with points in the middle of wide edges.
  std::vector<FrameVector> corners;
};

}  // namespace Lumivane::Visibility
