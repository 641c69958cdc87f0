#pragma once

#include "visibility/CubeFaces.h"
#include "visibility/IndexState.h"
#include "visibility/ParallelSight.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
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
  static constexpr std::int8_t NoFace = -1;

  // What the descent asks of every polygon stands in front.
  Coordinate box[4] = {};  // on its only face: x from, y from, x to, y to
  // Of its segments on face f: firstSegment[f] up to [f + 1].
  std::uint32_t firstSegment[FaceCount + 1] = {};
  std::uint8_t cornerParity = 0;  // bit f: whether it covers the lower left corner of face f
  std::int8_t onlyFace = NoFace;  // the one face that it touches, or NoFace for several
  bool seen = false;              // faces the eye, and is not edge-on
  bool besideItsLayer = false;    // depth is compared by its own plane in place of the layer's
  std::int32_t number = -1;       // in the state; -1 for what lies beyond the field
  std::int32_t layer = -1;
  std::int32_t region = -1;  // position in the scene's order
  FrameVector plane{};       // of its layer, by which depth is compared
  FrameVector ownPlane{};
  Kernel::Vec3 behind{};      // a point p from the eye is behind the plane of the layer if
  double behindOffset = 1.0;  // behind.p > behindOffset
  double weight = 0.0;        // sum of the magnitudes of plane, for bounds of rounding
};

/// Whether polygon a is seen where both cover a direction in which they are at one distance.
inline bool paintedAfter(const LookPolygon& a, const LookPolygon& b) { return a.region > b.region; }

/// 1 / distance on a face, times CubeHalf: a x + b y + c.
struct FaceDepth {
  double a, b, c;

  double at(double x, double y) const { return a * x + b * y + c; }
};
inline FaceDepth faceDepth(const LookPolygon& p, const CubeFace& f) {
  return {p.plane[f.u], p.plane[f.v], p.plane[f.axis] * (f.sign * static_cast<double>(CubeHalf))};
}

/// 1 / distance at a point of a face, times CubeHalf.
inline double depthAt(const LookPolygon& p, const CubeFace& f, double x, double y) {
  return faceDepth(p, f).at(x, y);
}

/// More than what rounding does to the difference of two of `depthAt`.
inline double depthError(const LookPolygon& a, const LookPolygon& b) {
  return 1e-15 * static_cast<double>(CubeHalf) * (a.weight + b.weight);
}

/// 1 where polygon a is in front of b at a point of a face, -1 where b is; 0 only for one polygon.
int inFront(const LookPolygon& a, const LookPolygon& b, const CubeFace& f, double x, double y);

/// Where polygons and their segments are after others have been forgotten.
class MovedPolygons {
 public:
  /// \param keptPositions those before, ascending; their places here are those after
  /// \param keptSegments by how much the segments of each lie further in front
  MovedPolygons(const std::vector<std::int32_t>& keptPositions,
                const std::vector<std::uint32_t>& keptSegments)
      : positions(keptPositions), segments(keptSegments) {}

  std::int32_t positionOf(std::int32_t before) const {
    return static_cast<std::int32_t>(std::lower_bound(positions.begin(), positions.end(), before) -
                                     positions.begin());
  }
  /// \param position as it is now
  std::uint32_t segmentsMoved(std::int32_t position) const {
    return segments[static_cast<size_t>(position)];
  }

 private:
  const std::vector<std::int32_t>& positions;
  const std::vector<std::uint32_t>& segments;
};

/// Who holds positions of polygons and of their segments while others are found.
class PolygonUser {
 public:
  virtual void addPositions(std::vector<std::int32_t>& positions) const = 0;
  virtual void follow(const MovedPolygons& moved) = 0;

 protected:
  PolygonUser() = default;
  PolygonUser(const PolygonUser&) = default;
  PolygonUser& operator=(const PolygonUser&) = default;
  ~PolygonUser() = default;
};

/// All polygons that have been asked for, with their segments. One for each thread.
class LookPolygons {
 public:
  /// The position that the end of the field has.
  static constexpr std::int32_t Beyond = 0;
  /// In place of a position: the eye does not see the polygon.
  static constexpr std::int32_t NotSeen = -1;

  explicit LookPolygons(const LookSetup& setup);

  /// The position of a polygon of the state, or NotSeen.
  std::int32_t find(std::int32_t number);
  const LookPolygon& operator[](std::int32_t position) const {
    return polygons[static_cast<size_t>(position)];
  }
  const Segment& segment(std::uint32_t position) const { return segments[position]; }
  const LookSetup& setup() const { return theSetup; }

  /// Whether there are so many that those which are not needed any more should be forgotten.
  bool isFull() const {
    return polygons.size() > mostPolygons || segments.size() > SegmentsForPolygon * mostPolygons;
  }
  /// Forgets the polygons that none of the users needs.
  void forgetUnused();
  void addUser(PolygonUser& user) { users.push_back(&user); }
  /// Takes away the user that was added last.
  void removeUser() { users.pop_back(); }

 private:
  // About 16 MB, and what two looks at a street take.
  static constexpr std::size_t FewPolygons = 40000;
  static constexpr std::size_t SegmentsForPolygon = 5;
  // A place in the table of polygons that have been asked for.
  struct Slot {
    std::int32_t number = -1;  // -1 where free
    std::int32_t position = NotSeen;
  };
  // A corner of the polygon that is being added, or the middle of a wide edge.
  struct Corner {
    Kernel::Vec3 fromEye;
    FrameVector direction;
    ArcEnd end;
  };

  void keepOnly(const std::vector<std::int32_t>& positions);
  void addBeyond();
  std::int32_t add(std::int32_t number);
  void growSlots();
  void placePlanes(LookPolygon& polygon) const;
  void addSegments(LookPolygon& polygon);
  Corner cornerAt(Kernel::Vec3 fromEye) const;
  void addEdge(const Corner& from, const Corner& to, std::size_t corner);
  void sortByFace(LookPolygon& polygon, std::uint32_t first);
  template <class Covers>
  void findCornerParity(LookPolygon& polygon, Covers covers) const;
  bool coversDirection(const LookPolygon& polygon, const FrameVector& direction) const;
  template <class Covers>
  bool parityOfCorner(const LookPolygon& polygon, int face, Covers covers) const;

  LookSetup theSetup;
  std::vector<LookPolygon> polygons;
  std::vector<Segment> segments;
  std::vector<Slot> slots;  // open addressing
  std::size_t known = 0;    // polygons in it
  std::size_t mostPolygons = FewPolygons;
  std::vector<PolygonUser*> users;
  // Scratch: of the polygon that is being added.
  std::vector<Corner> cornerEnds;
  std::vector<FrameVector> corners;  // with points in the middle of wide edges
};

}  // namespace Lumivane::Visibility
