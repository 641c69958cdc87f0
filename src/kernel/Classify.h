#pragma once

#include "kernel/Bounds.h"
#include "kernel/Polygon2.h"
#include "kernel/Polygon3.h"
#include "kernel/Rings.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
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

/// A box that meets nothing.
inline Box noBox() {
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  return {none, none, none, none};
}

/// Faces in flat arrays. Piece k of a face is a projected polygon, and source k of it the polygon
/// of the scene that it came from.
class FaceShapes {
 public:
  struct Face {
    Box bounds;
    std::size_t firstPiece, pieceCount;
    std::size_t firstSource, sourceCount;
  };

  /// Begins a face; unset bounds and those of an empty union meet nothing.
  void addFace(const std::optional<Box>& bounds) {
    const bool isMet = bounds && !isDefaultBox(*bounds);
    faces.push_back({isMet ? *bounds : noBox(), outlines.size(), 0, sources.size(), 0});
  }

  /// Adds a piece to the last face; unset bounds meet nothing.
  template <class PointAt>
  void addPiece(std::size_t count, PointAt pointAt, const std::optional<Box>& bounds) {
    outlines.add(count, pointAt);
    pieceBounds.push_back(bounds ? *bounds : noBox());
    ++faces.back().pieceCount;
  }

  /// Adds a source to the last face.
  void addSource(const std::vector<Vec3>& points) {
    sources.add(points);
    ++faces.back().sourceCount;
  }

  std::vector<Face> faces;
  Rings outlines;
  std::vector<Box> pieceBounds;
  FacingPolygons sources;
};

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

/// The working sets of a pair, kept from pair to pair so that none of them is made anew.
struct PairScan {
  explicit PairScan(const FaceShapes& shapes) : rings(shapes.outlines.largest()) {}

  void begin(std::size_t firstPieces, std::size_t secondPieces) {
    votes = Votes();
    firstHidden.assign(firstPieces, 0);
    secondHidden.assign(secondPieces, 0);
  }

  Votes votes;
  std::vector<char> firstHidden;  ///< by piece: inside a piece of the other face, and behind it
  std::vector<char> secondHidden;
  RingScratch rings;
};

/// The cell of a scan that is complete.
inline int cellOf(const Votes& votes, const std::vector<char>& firstHidden,
                  const std::vector<char>& secondHidden) {
  const auto isSet = [](char flag) { return flag != 0; };
  if (votes.count == 0) return Cell::Apart;
  // The first face is asked first: if both are hidden, it is the one that goes.
  if (std::all_of(firstHidden.begin(), firstHidden.end(), isSet)) return Cell::FirstHidden;
  if (std::all_of(secondHidden.begin(), secondHidden.end(), isSet)) return Cell::SecondHidden;
  return reduceLocations(votes);
}

/// Takes a pair of overlapping pieces, by their places in the faces, into the scan.
inline void takePieces(PairScan& scan, Classification& result, const FaceShapes& shapes,
                       const FaceShapes::Face& first, std::size_t ia,
                       const FaceShapes::Face& second, std::size_t ib, int meeting) {
  const std::size_t a = first.firstSource + ia;
  const std::size_t b = second.firstSource + ib;
  const FacingPolygons& sources = shapes.sources;
  const Location location =
      locationOf(sources.corners(a), sources.facing(a), sources.corners(b), sources.facing(b));
  result.zeroLengthAsked += location.zeroLengthAsked;
  scan.votes.add(location.value);
  if (location.value == 1 && meeting == Meeting::SecondInFirst) scan.secondHidden[ib] = 1;
  if (location.value == 2 && meeting == Meeting::FirstInSecond) scan.firstHidden[ia] = 1;
}

/// Decides the cell of two faces.
///
/// One scan of all pairs of pieces serves both to find any overlap and to judge the overlaps: pairs
/// that do not overlap leave nothing behind.
inline Classification classifyPair(const FaceShapes& shapes, std::size_t firstFace,
                                   std::size_t secondFace, PairScan& scan) {
  const FaceShapes::Face& first = shapes.faces[firstFace];
  const FaceShapes::Face& second = shapes.faces[secondFace];
  Classification result;
  if (!boxesMeet(first.bounds, second.bounds)) return result;

  scan.begin(first.pieceCount, second.pieceCount);
  for (std::size_t ia = 0; ia < first.pieceCount; ++ia) {
    const std::size_t a = first.firstPiece + ia;
    for (std::size_t ib = 0; ib < second.pieceCount; ++ib) {
      const std::size_t b = second.firstPiece + ib;
      if (!boxesMeet(shapes.pieceBounds[a], shapes.pieceBounds[b])) continue;
      const int meeting = meetingOf(shapes.outlines[a], shapes.outlines[b], scan.rings);
      if (meeting == Meeting::None) continue;
      if (ia >= first.sourceCount || ib >= second.sourceCount) {
        result.sourceMissing = true;
        return result;
      }
      takePieces(scan, result, shapes, first, ia, second, ib, meeting);
    }
  }
  result.cell = cellOf(scan.votes, scan.firstHidden, scan.secondHidden);
  return result;
}

}  // namespace Lumivane::Kernel
