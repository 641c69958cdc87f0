#pragma once

#include "algorithm/pipeline/TypeProjection.h"
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
#include <limits>
#include <optional>
#include <utility>
#include <vector>

/// The polygons of one region, split and carried onto the plane.
namespace Lumivane::Algorithm {

/// A projected polygon: its points, and the numbers, from 1, of those whose edge is not drawn. A
/// shot may hold tens of millions of such points, so nothing else is kept of one.
struct PlanePolygon {
  std::vector<Kernel::Vec2> points;
  std::vector<int> edgeless;

  std::size_t size() const { return points.size(); }
  bool empty() const { return points.empty(); }
};

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
    std::int64_t mostPoints = 0;  ///< with this many allowed, the limit has no effect
  };

  /// How many points the polygons of a region may take, and how many they would need.
  struct TooManyPoints {
    std::int64_t needed;
    std::int64_t pieceCount;
  };

  /// Points that fall together count once, and how many do is not known before. Up to this many
  /// times the points allowed are looked at to find out.
  static constexpr std::int64_t AlikeFactor = 2;
  static constexpr std::int64_t AnyPoints = std::numeric_limits<std::int64_t>::max();

  RegionProjector() = default;
  explicit RegionProjector(RegionFrame frame) : region(std::move(frame)) {}

  /// Goes on to another region with the memory of the one before.
  void setRegion(RegionFrame frame) {
    region = std::move(frame);
    segments.reset();
  }

  /// Goes back to a region whose docking segments are known.
  void setRegion(RegionFrame frame, std::vector<Kernel::DockingSegment> known) {
    region = std::move(frame);
    segments = std::move(known);
  }

  /// The docking segments of the region, as far as they were needed, which leave the projector.
  std::vector<Kernel::DockingSegment> takeSegments() {
    std::vector<Kernel::DockingSegment> result;
    if (segments) result.swap(*segments);
    segments.reset();
    return result;
  }

  /// One polygon at one piece count.
  ///
  /// \throws std::out_of_range "invalid vector subscript" for wrong docking numbers and, after
  ///         messages, for a singular frame
  PlanePolygon project(const std::vector<Kernel::Vec3>& polygon, std::int64_t pieceCount) {
    return *projectWithin(polygon, pieceCount, std::numeric_limits<double>::infinity());
  }

  /// All polygons, each with its edges split until no piece is longer than the limit, and then all
  /// at the largest count, so that edges they share are cut at the same points.
  ///
  /// \param firstCount  pieces per edge of the first trial
  /// \param maxLength   limit on the plane, twice that for the square; counts above 0 and up to 1
  /// \param mostPoints  how many points all polygons together may be split into
  /// \return nothing if doubling the count would have no end
  /// \throws TooManyPoints before a trial that would split the edges into more than AlikeFactor
  ///         times as many points, and when more than allowed are left of those that are alike
  std::optional<Result> settle(const std::vector<std::vector<Kernel::Vec3>>& polygons,
                               std::int64_t firstCount, double maxLength,
                               std::int64_t mostPoints = AnyPoints) {
    Trials all{maxLength, mostPoints, cornersOf(polygons), 0};
    Result result;
    result.polygons.reserve(polygons.size());
    result.pieceCounts.reserve(polygons.size());
    for (const std::vector<Kernel::Vec3>& polygon : polygons) {
      std::int64_t pieceCount = firstCount;
      std::optional<PlanePolygon> projected = trials(polygon, pieceCount, all);
      if (!projected) return std::nullopt;
      result.polygons.push_back(std::move(*projected));
      result.pieceCounts.push_back(pieceCount);
    }
    equalise(polygons, result, all);
    result.mostPoints = all.corners * all.finestCount;
    return result;
  }

 private:
  // What the trials of a region's polygons share.
  struct Trials {
    double maxLength;
    std::int64_t mostPoints;
    std::int64_t corners;      // of all polygons that are split
    std::int64_t finestCount;  // of the trials so far, to which all polygons come in the end

    void check(std::int64_t pieceCount) {
      finestCount = std::max(finestCount, pieceCount);
      if (corners > 0 && finestCount / AlikeFactor > mostPoints / corners)
        throw TooManyPoints{corners * finestCount, finestCount};
    }

    void checkActual(const std::vector<PlanePolygon>& polygons) const {
      if (corners == 0 || finestCount <= mostPoints / corners) return;  // cannot be too many
      std::int64_t count = 0;
      for (const PlanePolygon& polygon : polygons)
        count += static_cast<std::int64_t>(polygon.size());
      if (count > mostPoints) throw TooManyPoints{corners * finestCount, finestCount};
    }
  };

  static constexpr std::size_t UsualPoints = 64;  // of a polygon that was split

  Kernel::Vec2 planePoint(Kernel::Vec3 camera) const {
    switch (region.type) {
      case ProjectionType::Radial:
        return Kernel::planePointRadial(camera);
      case ProjectionType::Square:
        break;
    }
    return Kernel::planePointSquare(camera);
  }

  // The count from which on a polygon is not split further, however long its pieces are.
  std::int64_t enoughPieces() const {
    switch (region.type) {
      case ProjectionType::Radial:
        return std::numeric_limits<std::int64_t>::max();
      case ProjectionType::Square:
        break;
    }
    return EnoughSquarePieces;
  }

  static std::int64_t cornersOf(const std::vector<std::vector<Kernel::Vec3>>& polygons) {
    std::int64_t corners = 0;
    for (const std::vector<Kernel::Vec3>& polygon : polygons)
      if (Kernel::isSplit(polygon)) corners += static_cast<std::int64_t>(polygon.size());
    return corners;
  }

  // Nothing if a piece is longer than `longest`: then the rest is not looked at.
  std::optional<PlanePolygon> projectWithin(const std::vector<Kernel::Vec3>& polygon,
                                            std::int64_t pieceCount, double longest) {
    split.reserve(UsualPoints);
    Kernel::splitPolygon(polygon, pieceCount, split);
    // Made at the first call and not before: without a polygon, wrong numbers harm nobody.
    if (!segments) segments = dockingSegments(region.dockingEdges, region.regionPoints);

    PlanePolygon result;
    result.points.reserve(split.size());
    for (const Kernel::Vec3& point : split) {
      const bool hasEdge = Kernel::isDrawnFrom(point, *segments, region.precision);
      const Kernel::Vec2 at =
          planePoint(Utils::reportedTransformedBack(point - region.eye, region.frame));
      if (!result.empty()) {
        const double length = Kernel::distance(result.points.back(), at);
        // The first of the points that are one stays. The first and the last are not compared.
        if (region.precision > length) continue;
        if (length > longest) return std::nullopt;
      }
      result.points.push_back(at);
      if (!hasEdge) result.edgeless.push_back(static_cast<int>(result.size()));
    }
    if (!result.empty() && Kernel::distance(result.points.back(), result.points.front()) > longest)
      return std::nullopt;
    return result;
  }

  std::optional<PlanePolygon> trials(const std::vector<Kernel::Vec3>& polygon,
                                     std::int64_t& pieceCount, Trials& all) {
    constexpr double any = std::numeric_limits<double>::infinity();
    const bool isLimited = all.maxLength > 0.0 && 1.0 >= all.maxLength;
    const double limit = all.maxLength * projectionOf(region.type).lengthUnit;
    for (;;) {
      all.check(pieceCount);
      const bool isLast = !isLimited || pieceCount > enoughPieces();
      std::optional<PlanePolygon> projected =
          projectWithin(polygon, pieceCount, isLast ? any : limit);
      if (projected) return projected;
      if (pieceCount <= 0 || pieceCount * 2 > MostPieces) return std::nullopt;
      pieceCount *= 2;
    }
  }

  void equalise(const std::vector<std::vector<Kernel::Vec3>>& polygons, Result& result,
                const Trials& all) {
    if (result.pieceCounts.empty()) return;
    all.checkActual(result.polygons);
    const std::int64_t most =
        *std::max_element(result.pieceCounts.begin(), result.pieceCounts.end());
    for (std::size_t j = 0; j < polygons.size(); ++j) {
      if (result.pieceCounts[j] == most) continue;
      result.polygons[j] = PlanePolygon();
      result.polygons[j] = project(polygons[j], most);
      result.pieceCounts[j] = most;
      all.checkActual(result.polygons);
    }
  }

  RegionFrame region;
  std::optional<std::vector<Kernel::DockingSegment>> segments;
  std::vector<Kernel::Vec3> split;  // of the polygon at hand; kept for its memory
};

}  // namespace Lumivane::Algorithm
