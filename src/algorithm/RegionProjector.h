#pragma once

#include "kernel/Docking.h"
#include "kernel/Frame.h"
#include "kernel/Hemisphere.h"
#include "kernel/Split.h"
#include "kernel/Vec.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/ProjectionType.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// The polygons of one region, split and carried onto the plane.
namespace Lumivane::Algorithm {

/// A point of a projected polygon, and whether the edge that starts there is drawn.
struct PlanePoint {
  Kernel::Vec2 at;
  bool hasEdge = true;
};
using PlanePolygon = std::vector<PlanePoint>;

/// The outlines of polygons on the plane, without their edge flags.
inline std::vector<std::vector<Kernel::Vec2>> planeOutlines(
    const std::vector<PlanePolygon>& polygons) {
  std::vector<std::vector<Kernel::Vec2>> result(polygons.size());
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    result[i].reserve(polygons[i].size());
    for (const PlanePoint& point : polygons[i]) result[i].push_back(point.at);
  }
  return result;
}

/// The way onto the plane that a type acts as; nothing for a type that projects nothing. The values
/// 2 and 3 act as 0 and 1.
inline std::optional<ProjectionType> actingType(ProjectionType type) {
  switch (static_cast<int>(type)) {
    case 0:
    case 2:
      return ProjectionType::Radial;
    case 1:
    case 3:
      return ProjectionType::Square;
    default:
      return std::nullopt;
  }
}

/// The docking edges of a region in space.
///
/// \param dockingEdges  edge numbers, counted modulo the number of points; may be null
/// \throws std::out_of_range "invalid vector subscript" for a number below 1 that gives a negative
///         position, and for any number if the region has no points
inline std::vector<Kernel::DockingSegment> dockingSegments(
    const std::vector<int>* dockingEdges, const std::vector<Kernel::Vec3>& regionPoints) {
  std::vector<Kernel::DockingSegment> segments;
  if (dockingEdges == nullptr) return segments;
  const auto count = static_cast<std::int64_t>(regionPoints.size());
  const auto pointAt = [&](std::int64_t position) {
    if (count == 0 || position % count < 0) Utils::throwInvalidSubscript();
    return regionPoints[static_cast<std::size_t>(position % count)];
  };
  segments.reserve(dockingEdges->size());
  for (const std::int64_t edge : *dockingEdges) {
    const Kernel::Vec3 start = pointAt(edge - 1);
    segments.push_back(Kernel::dockingSegment(start, pointAt(edge)));
  }
  return segments;
}

/// What the polygons of one region share on their way onto the plane.
struct RegionFrame {
  ProjectionType type = ProjectionType::Radial;  ///< `Radial` or `Square`
  Kernel::Vec3 eye;
  Kernel::BackFrame frame;
  const std::vector<int>* dockingEdges = nullptr;
  std::vector<Kernel::Vec3> regionPoints;
  double precision = 0.0;  ///< of docking edges and of points that are one
};

/// Projects the polygons of one region, and settles into how many pieces their edges are split.
class RegionProjector {
 public:
  /// No radial polygon is split into more pieces per edge to reach the length limit.
  static constexpr std::int64_t MostPieces = 1'048'576;
  /// A square polygon is not split further from above this count.
  static constexpr std::int64_t EnoughSquarePieces = 1000;

  /// Polygons on the plane, and the pieces per edge that each came to.
  struct Result {
    std::vector<PlanePolygon> polygons;
    std::vector<std::int64_t> pieceCounts;
  };

  RegionProjector() = default;
  explicit RegionProjector(RegionFrame frame) : region(std::move(frame)) {}

  /// Goes on to another region with the memory of the one before.
  void setRegion(RegionFrame frame) {
    region = std::move(frame);
    segments.reset();
  }

  /// One polygon at one piece count.
  ///
  /// \throws std::out_of_range "invalid vector subscript" for wrong docking numbers and, after
  ///         messages, for a singular frame
  PlanePolygon project(const std::vector<Kernel::Vec3>& polygon, std::int64_t pieceCount) {
    Kernel::splitPolygon(polygon, pieceCount, split);
    // Made at the first call and not before: without a polygon, wrong numbers harm nobody.
    if (!segments) segments = dockingSegments(region.dockingEdges, region.regionPoints);

    PlanePolygon result;
    result.reserve(split.size());
    for (const Kernel::Vec3& point : split) {
      const bool hasEdge = Kernel::isDrawnFrom(point, *segments, region.precision);
      const Kernel::Vec2 at =
          planePoint(Utils::reportedTransformedBack(point - region.eye, region.frame));
      // The first of the points that are one stays. The first and the last are not compared.
      if (!result.empty() && region.precision > Kernel::distance(result.back().at, at)) continue;
      result.push_back({at, hasEdge});
    }
    return result;
  }

  /// All polygons, each with its edges split until no piece is longer than the limit, and then all
  /// at the largest count, so that edges they share are cut at the same points.
  ///
  /// \param firstCount  pieces per edge of the first trial
  /// \param maxLength   limit on the plane, twice that for the square; counts above 0 and up to 1
  /// \return nothing if doubling the count would have no end
  std::optional<Result> settle(const std::vector<std::vector<Kernel::Vec3>>& polygons,
                               std::int64_t firstCount, double maxLength) {
    Result result;
    for (const std::vector<Kernel::Vec3>& polygon : polygons) {
      std::int64_t pieceCount = firstCount;
      std::optional<PlanePolygon> projected = trials(polygon, pieceCount, maxLength);
      if (!projected) return std::nullopt;
      result.polygons.push_back(std::move(*projected));
      result.pieceCounts.push_back(pieceCount);
    }
    equalise(polygons, result);
    return result;
  }

 private:
  Kernel::Vec2 planePoint(Kernel::Vec3 camera) const {
    return region.type == ProjectionType::Radial ? Kernel::planePointRadial(camera)
                                                 : Kernel::planePointSquare(camera);
  }

  std::optional<PlanePolygon> trials(const std::vector<Kernel::Vec3>& polygon,
                                     std::int64_t& pieceCount, double maxLength) {
    const bool isLimited = maxLength > 0.0 && 1.0 >= maxLength;
    const bool isSquare = region.type == ProjectionType::Square;
    const double limit = isSquare ? maxLength * 2.0 : maxLength;
    for (;;) {
      PlanePolygon projected = project(polygon, pieceCount);
      if (projected.empty() || !isLimited || !hasLongerPiece(projected, limit)) return projected;
      if (isSquare && pieceCount > EnoughSquarePieces) return projected;
      if (pieceCount <= 0 || pieceCount * 2 > MostPieces) return std::nullopt;
      pieceCount *= 2;
    }
  }

  static bool hasLongerPiece(const PlanePolygon& polygon, double limit) {
    for (std::size_t i = 0; i < polygon.size(); ++i) {
      const std::size_t next = i + 1 == polygon.size() ? 0 : i + 1;
      if (Kernel::distance(polygon[i].at, polygon[next].at) > limit) return true;
    }
    return false;
  }

  void equalise(const std::vector<std::vector<Kernel::Vec3>>& polygons, Result& result) {
    if (result.pieceCounts.empty()) return;
    const std::int64_t most =
        *std::max_element(result.pieceCounts.begin(), result.pieceCounts.end());
    for (std::size_t j = 0; j < polygons.size(); ++j) {
      if (result.pieceCounts[j] == most) continue;
      result.polygons[j] = project(polygons[j], most);
      result.pieceCounts[j] = most;
    }
  }

  RegionFrame region;
  std::optional<std::vector<Kernel::DockingSegment>> segments;
  std::vector<Kernel::Vec3> split;  // of the polygon at hand; kept for its memory
};

}  // namespace Lumivane::Algorithm
