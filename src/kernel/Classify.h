#pragma once

#include "kernel/Bounds.h"
#include "kernel/Polygon2.h"
#include "kernel/Polygon3.h"
#include "kernel/Rings.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

/// How two faces of the picture relate: one integer for every pair.
namespace Lumivane::Kernel {

/// What is known of a pair of faces.
struct Cell {
  static constexpr int Undecided = 0;  ///< they overlap, but no order could be decided
  static constexpr int FirstInFront = 1;
  static constexpr int SecondInFront = 2;
  static constexpr int Apart = 3;         ///< they do not overlap on the picture
  static constexpr int SecondHidden = 4;  ///< wholly, by the first
  static constexpr int FirstHidden = 5;   ///< wholly, by the second
};

/// Faces in flat arrays. Piece k of a face is a projected polygon, and source k of it the polygon
/// of the scene that it came from.
class FaceShapes {
 public:
  struct Face {
    Box bounds;  ///< around all pieces
    std::size_t firstPiece, pieceCount;
    std::size_t firstSource, sourceCount;
  };

  void addFace() { faces.push_back({Box{}, outlines.size(), 0, sources.size(), 0}); }
  void dropLastFace() { faces.pop_back(); }  ///< One without pieces and sources.

  /// Adds a piece to the last face, with the points `pointAt(0)` to `pointAt(count - 1)`.
  template <class PointAt>
  void addPiece(std::size_t count, PointAt pointAt) {
    outlines.add(count, pointAt);
    take(faces.back().bounds, outlines[outlines.size() - 1].box);
    ++faces.back().pieceCount;
  }

  /// Adds a source to the last face.
  void addSource(const std::vector<Vec3>& points) {
    sources.add(points);
    ++faces.back().sourceCount;
  }

  std::vector<Face> faces;
  Rings outlines;
  FacingPolygons sources;
};

/// What a face meets others by: its bounds, or no number if they are those of an empty union.
inline Box meetingBox(const FaceShapes::Face& face) {
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  return isDefaultBox(face.bounds) ? Box{none, none, none, none} : face.bounds;
}

/// What the pairs of pieces of two faces say. A location is that of `locationOf`.
struct Votes {
  std::size_t count = 0;
  std::size_t ones = 0;
  std::size_t twos = 0;

  void add(int location) {
    ++count;
    if (location == 1) ++ones;
    if (location == 2) ++twos;
  }
};

/// One value for all locations: the only non-zero value, or else the more frequent of 1 and 2, or 2
/// in a tie.
inline int reduceLocations(const Votes& votes) {
  if (votes.ones == 0 && votes.twos == 0) return Cell::Undecided;
  return votes.ones > votes.twos ? Cell::FirstInFront : Cell::SecondInFront;
}

struct Classification {
  int cell = Cell::Apart;
  std::size_t zeroLengthAsked = 0;  ///< see Location
  bool sourceMissing = false;       ///< a piece without a source was met, and the scan was left
};

/// Which pieces of a face lie inside a piece of the other face, and behind it. Beginning anew costs
/// something only where the last pair has left something.
class HiddenPieces {
 public:
  explicit HiddenPieces(std::size_t largest) : isHidden(largest, 0) {}

  void begin(std::size_t pieces) {
    if (hidden != 0) isHidden.assign(isHidden.size(), 0);
    count = pieces;
    hidden = 0;
  }
  void hide(std::size_t piece) {
    if (isHidden[piece] == 0) ++hidden;
    isHidden[piece] = 1;
  }
  bool areAll() const { return hidden == count; }

 private:
  std::vector<char> isHidden;
  std::size_t count = 0;
  std::size_t hidden = 0;
};

/// The working sets of a pair, made once for all pairs. The hidden pieces mean something once there
/// is a vote.
struct PairScan {
  explicit PairScan(const FaceShapes& shapes)
      : ofFirst(mostPieces(shapes)),
        ofSecond(mostPieces(shapes)),
        rings(shapes.outlines.largest()) {
    nearPieces.reserve(mostPieces(shapes));
  }

  static std::size_t mostPieces(const FaceShapes& shapes) {
    std::size_t most = 0;
    for (const FaceShapes::Face& face : shapes.faces) most = std::max(most, face.pieceCount);
    return most;
  }

  Votes votes;
  HiddenPieces ofFirst;
  HiddenPieces ofSecond;
  RingScratch rings;
  std::vector<std::size_t> nearPieces;  ///< of the second face: those that meet the first's bounds
};

/// The cell of a complete scan, given whether all pieces of the faces are hidden.
inline int cellOf(const Votes& votes, bool firstIsHidden, bool secondIsHidden) {
  if (votes.count == 0) return Cell::Apart;
  // The first face is asked first: if both are hidden, it is the one that goes.
  if (firstIsHidden) return Cell::FirstHidden;
  if (secondIsHidden) return Cell::SecondHidden;
  return reduceLocations(votes);
}

/// Takes a pair of overlapping pieces, by their places in the faces, into the scan.
inline void takePieces(PairScan& scan, Classification& result, const FaceShapes& shapes,
                       const FaceShapes::Face& first, std::size_t ia,
                       const FaceShapes::Face& second, std::size_t ib, int meeting) {
  if (scan.votes.count == 0) {
    scan.ofFirst.begin(first.pieceCount);
    scan.ofSecond.begin(second.pieceCount);
  }
  const std::size_t a = first.firstSource + ia;
  const std::size_t b = second.firstSource + ib;
  const FacingPolygons& sources = shapes.sources;
  const Location location =
      locationOf(sources.corners(a), sources.facing(a), sources.corners(b), sources.facing(b));
  result.zeroLengthAsked += location.zeroLengthAsked;
  scan.votes.add(location.value);
  if (location.value == 1 && meeting == Meeting::SecondInFirst) scan.ofSecond.hide(ib);
  if (location.value == 2 && meeting == Meeting::FirstInSecond) scan.ofFirst.hide(ia);
}

/// Finds the pieces of the second face that meet the bounds of the first, in their order. All
/// others meet none of its pieces: bounds enclose the boxes that they were taken from.
inline void findNearPieces(PairScan& scan, const FaceShapes& shapes, const FaceShapes::Face& first,
                           const FaceShapes::Face& second) {
  scan.nearPieces.clear();
  for (std::size_t ib = 0; ib < second.pieceCount; ++ib)
    if (boxesMeet(first.bounds, shapes.outlines[second.firstPiece + ib].box))
      scan.nearPieces.push_back(ib);
}

/// Decides the cell of two faces.
///
/// One scan of the pairs of pieces serves both to find any overlap and to judge the overlaps: pairs
/// that do not overlap leave nothing behind.
inline Classification classifyPair(const FaceShapes& shapes, std::size_t firstFace,
                                   std::size_t secondFace, PairScan& scan) {
  const FaceShapes::Face& first = shapes.faces[firstFace];
  const FaceShapes::Face& second = shapes.faces[secondFace];
  Classification result;
  if (!boxesMeet(first.bounds, second.bounds)) return result;
  if (isDefaultBox(first.bounds) || isDefaultBox(second.bounds)) return result;

  scan.votes = Votes();
  findNearPieces(scan, shapes, first, second);
  for (std::size_t ia = 0; ia < first.pieceCount; ++ia) {
    const Ring a = shapes.outlines[first.firstPiece + ia];
    if (!boxesMeet(a.box, second.bounds)) continue;  // so it meets none of the pieces
    for (const std::size_t ib : scan.nearPieces) {
      const Ring b = shapes.outlines[second.firstPiece + ib];
      if (!boxesMeet(a.box, b.box)) continue;
      const int meeting = meetingOf(a, b, scan.rings);
      if (meeting == Meeting::None) continue;
      if (ia >= first.sourceCount || ib >= second.sourceCount) {
        result.sourceMissing = true;
        return result;
      }
      takePieces(scan, result, shapes, first, ia, second, ib, meeting);
    }
  }
  result.cell = cellOf(scan.votes, scan.ofFirst.areAll(), scan.ofSecond.areAll());
  return result;
}

}  // namespace Lumivane::Kernel
