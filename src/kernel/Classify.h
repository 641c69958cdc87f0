#pragma once

#include "kernel/Bounds.h"
#include "kernel/Polygon2.h"
#include "kernel/Polygon3.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

/// How two faces of the picture relate: one integer for every pair.
namespace Lumivane::Kernel {

/// A projected polygon of a face.
struct PicturePiece {
  std::vector<Vec2> outline;
  std::optional<Box> bounds;
};

/// The polygon of the scene that a projected one came from.
struct SourcePiece {
  std::vector<Vec3> points;
  Facing facing;
};

/// A face, with piece k of the picture beside source k.
struct FaceShape {
  std::optional<Box> bounds;
  std::vector<PicturePiece> pieces;
  std::vector<SourcePiece> sources;
};

/// What is known of a pair of faces.
struct Cell {
  static constexpr int Undecided = 0;  ///< they overlap, but no order could be decided
  static constexpr int FirstInFront = 1;
  static constexpr int SecondInFront = 2;
  static constexpr int Apart = 3;         ///< they do not overlap on the picture
  static constexpr int SecondHidden = 4;  ///< wholly, by the first
  static constexpr int FirstHidden = 5;   ///< wholly, by the second
};

/// One value for the locations of all pairs of pieces: the only non-zero value, or else the more
/// frequent of 1 and 2, or 2 in a tie.
inline int reduceLocations(const std::vector<int>& locations) {
  if (locations.empty()) return Cell::Undecided;
  if (locations.size() == 1) return locations.front();
  int only = 0;
  bool isOnly = true;
  for (const int location : locations) {
    if (location == 0) continue;
    if (only != 0 && only != location) isOnly = false;
    only = location;
  }
  if (only != 0 && isOnly) return only;

  const auto ones = std::count(locations.begin(), locations.end(), 1);
  const auto twos = std::count(locations.begin(), locations.end(), 2);
  if (ones == 0 && twos == 0) return Cell::Undecided;
  return ones > twos ? Cell::FirstInFront : Cell::SecondInFront;
}

/// Whether two bounds meet; unset ones meet nothing.
inline bool boundsMeet(const std::optional<Box>& a, const std::optional<Box>& b) {
  return a && b && boxesMeet(*a, *b);
}

/// Whether faces with these bounds may overlap at all.
inline bool facesMayMeet(const std::optional<Box>& first, const std::optional<Box>& second) {
  return first && second && !isDefaultBox(*first) && !isDefaultBox(*second) &&
         boxesMeet(*first, *second);
}

struct Classification {
  int cell = Cell::Apart;
  std::size_t zeroLengthAsked = 0;  ///< see Location
  bool sourceMissing = false;       ///< a piece without a source was met, and the scan was left
};

/// The working sets of one pair.
struct PairScan {
  std::vector<int> locations;
  std::vector<char> firstHidden;  ///< by piece: inside a piece of the other face, and behind it
  std::vector<char> secondHidden;
};

/// Takes a pair of overlapping pieces into the scan.
inline void takePieces(PairScan& scan, Classification& result, const FaceShape& first,
                       std::size_t ia, const FaceShape& second, std::size_t ib, int meeting) {
  if (scan.locations.empty()) {
    scan.firstHidden.assign(first.pieces.size(), 0);
    scan.secondHidden.assign(second.pieces.size(), 0);
  }
  const SourcePiece& a = first.sources[ia];
  const SourcePiece& b = second.sources[ib];
  const Location location = locationOf(a.points, a.facing, b.points, b.facing);
  result.zeroLengthAsked += location.zeroLengthAsked;
  scan.locations.push_back(location.value);
  if (location.value == 1 && meeting == Meeting::SecondInFirst) scan.secondHidden[ib] = 1;
  if (location.value == 2 && meeting == Meeting::FirstInSecond) scan.firstHidden[ia] = 1;
}

/// The cell of a scan that is complete.
inline int cellOf(const PairScan& scan) {
  const auto isSet = [](char flag) { return flag != 0; };
  if (scan.locations.empty()) return Cell::Apart;
  // The first face is asked first: if both are hidden, it is the one that goes.
  if (std::all_of(scan.firstHidden.begin(), scan.firstHidden.end(), isSet))
    return Cell::FirstHidden;
  if (std::all_of(scan.secondHidden.begin(), scan.secondHidden.end(), isSet))
    return Cell::SecondHidden;
  return reduceLocations(scan.locations);
}

/// Decides the cell of two faces.
///
/// One scan of all pairs of pieces serves both to find any overlap and to judge the overlaps: pairs
/// that do not overlap leave nothing behind.
inline Classification classifyPair(const FaceShape& first, const FaceShape& second) {
  Classification result;
  if (!facesMayMeet(first.bounds, second.bounds)) return result;

  PairScan scan;
  for (std::size_t ia = 0; ia < first.pieces.size(); ++ia) {
    const PicturePiece& a = first.pieces[ia];
    for (std::size_t ib = 0; ib < second.pieces.size(); ++ib) {
      const PicturePiece& b = second.pieces[ib];
      if (!boundsMeet(a.bounds, b.bounds)) continue;
      const int meeting = meetingOf(a.outline, b.outline);
      if (meeting == Meeting::None) continue;
      if (ia >= first.sources.size() || ib >= second.sources.size()) {
        result.sourceMissing = true;
        return result;
      }
      takePieces(scan, result, first, ia, second, ib, meeting);
    }
  }
  result.cell = cellOf(scan);
  return result;
}

}  // namespace Lumivane::Kernel
