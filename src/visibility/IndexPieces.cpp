#include "visibility/IndexPieces.h"

#include "kernel/EarClipping.h"
#include "kernel/Newell.h"
#include "visibility/SceneArrays.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

// Points are numbered first, equal ones once, so that outlines which touch share corners and edges
// and no rounding comes between them. An outline that is not flat is cut by ears, with its
// diagonals as inner edges: they divide no cell.
namespace Lumivane::Visibility {
namespace {

using Kernel::OutlinePlane;
using Kernel::Vec3;

// Numbers points so that equal ones share a number: a table of open addresses.
class PointNumbers {
 public:
  explicit PointNumbers(std::size_t most) {
    std::size_t size = 16;
    while (size < 2 * most) size *= 2;
    slots.assign(size, -1);
  }

  std::int32_t numberOf(Vec3 point, std::vector<Vec3>& points) {
    std::size_t slot = hash(point) & (slots.size() - 1);
    while (slots[slot] >= 0 && points[static_cast<std::size_t>(slots[slot])] != point)
      slot = (slot + 1) & (slots.size() - 1);
    if (slots[slot] < 0) {
      slots[slot] = static_cast<std::int32_t>(points.size());
      points.push_back(point);
    }
    return slots[slot];
  }

 private:
  static std::uint64_t bits(double value) {
    std::uint64_t result = 0;
    std::memcpy(&result, &value, sizeof result);
    return result;
  }
  static std::size_t hash(Vec3 point) {
    std::uint64_t h = bits(point.x) * 0x9E3779B97F4A7C15U;
    h = (h ^ (h >> 32U) ^ bits(point.y)) * 0xC2B2AE3D27D4EB4FU;
    h = (h ^ (h >> 29U) ^ bits(point.z)) * 0x165667B19E3779F9U;
    return static_cast<std::size_t>(h ^ (h >> 32U));
  }

  std::vector<std::int32_t> slots;
};

class PieceMaker {
 public:
  PieceMaker(const PolygonScene& arrays, const IndexOptions& indexOptions)
      : scene(arrays), options(indexOptions) {
    numberPoints();
    reserve();
    for (std::size_t i = 0; i < outlineCount(scene); ++i) addOutline(i);
  }

  Pieces take() { return std::move(pieces); }

 private:
  void numberPoints() {
    PointNumbers distinct(scene.points.size());
    pieces.points.reserve(scene.points.size());
    pointNumbers.reserve(scene.points.size());
    for (const Vector& point : scene.points)  // + 0.0 makes no difference of -0 and 0
      pointNumbers.push_back(
          distinct.numberOf({point[0] + 0.0, point[1] + 0.0, point[2] + 0.0}, pieces.points));
  }

  void reserve() {
    const std::size_t count = outlineCount(scene);
    pieces.offsets.reserve(count + 1);
    pieces.corners.reserve(scene.corners.size());
    pieces.inner.reserve(scene.corners.size());
    pieces.planes.reserve(count);
    pieces.sizes.reserve(count);
    pieces.regions.reserve(count);
  }

  void addOutline(std::size_t outline) {
    takeCorners(outline);
    const OutlinePlane plane = Kernel::outlinePlane(corners.data(), corners.size());
    if (!plane.exists()) {
      ++pieces.droppedRegions;
      return;
    }
    const auto region = static_cast<std::int32_t>(outline);
    if (isFlat(plane))
      addFlat(region, plane);
    else
      addTriangles(region, plane);
  }

  bool isFlat(const OutlinePlane& plane) const {
    if (corners.size() == 3) return true;
    const double most = options.flatness * plane.size;
    return std::all_of(corners.begin(), corners.end(), [&](Vec3 corner) {
      return std::abs(Kernel::dot(plane.normal, corner - plane.mean)) <= most;
    });
  }

  // The corners of an outline without those that are repeated by the next: the edge that goes on
  // from there keeps its mark.
  void takeCorners(std::size_t outline) {
    numbers.clear();
    marks.clear();
    corners.clear();
    const std::size_t begin = scene.offsets[outline];
    const std::size_t end = scene.offsets[outline + 1];
    for (std::size_t i = begin; i < end; ++i) {
      const std::int32_t number = numberOfCorner(i);
      if (number == numberOfCorner(i + 1 < end ? i + 1 : begin)) continue;
      numbers.push_back(number);
      marks.push_back(scene.docking.empty() ? 0 : scene.docking[i] != 0);
      corners.push_back(pieces.points[static_cast<std::size_t>(number)]);
    }
  }

  std::int32_t numberOfCorner(std::size_t i) const {
    return pointNumbers[static_cast<std::size_t>(scene.corners[i])];
  }

  void addFlat(std::int32_t outline, const OutlinePlane& plane) {
    pieces.corners.insert(pieces.corners.end(), numbers.begin(), numbers.end());
    pieces.inner.insert(pieces.inner.end(), marks.begin(), marks.end());
    endPiece(outline, plane);
  }

  void addTriangles(std::int32_t outline, const OutlinePlane& plane) {
    for (const Kernel::CornerTriple& triple : Kernel::clippedEars(flattened(plane)))
      addTriangle(outline, triple);
    ++pieces.triangulatedRegions;
  }

  // The corners in axes of the plane, their order counter-clockwise.
  std::vector<Kernel::Vec2> flattened(const OutlinePlane& plane) const {
    const Vec3 n = plane.normal;
    const bool nearX = std::abs(n.x) <= std::abs(n.y) && std::abs(n.x) <= std::abs(n.z);
    const bool nearY = std::abs(n.y) <= std::abs(n.z);
    const Vec3 axis = nearX ? Vec3{1, 0, 0} : nearY ? Vec3{0, 1, 0} : Vec3{0, 0, 1};
    const Vec3 u = Kernel::normalise(Kernel::cross(axis, n)).direction;
    const Vec3 v = Kernel::cross(n, u);
    std::vector<Kernel::Vec2> result;
    result.reserve(corners.size());
    for (const Vec3 corner : corners)
      result.push_back({Kernel::dot(u, corner - plane.mean), Kernel::dot(v, corner - plane.mean)});
    return result;
  }

  void addTriangle(std::int32_t outline, const Kernel::CornerTriple& triple) {
    const Vec3 points[3] = {corners[triple[0]], corners[triple[1]], corners[triple[2]]};
    const OutlinePlane plane = Kernel::outlinePlane(points, 3);
    if (!plane.exists()) return;
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t from = triple[k];
      const bool isOutline = triple[(k + 1) % 3] == (from + 1) % corners.size();
      pieces.corners.push_back(numbers[from]);
      pieces.inner.push_back(isOutline ? marks[from] : 1);
    }
    endPiece(outline, plane);
  }

  void endPiece(std::int32_t outline, const OutlinePlane& plane) {
    pieces.offsets.push_back(static_cast<std::int32_t>(pieces.corners.size()));
    pieces.planes.push_back({plane.normal, plane.mean});
    pieces.sizes.push_back(plane.size);
    pieces.regions.push_back(outline);
  }

  const PolygonScene& scene;
  const IndexOptions& options;
  std::vector<std::int32_t> pointNumbers;  // of the scene's points among the pieces' points
  Pieces pieces;
  // The outline at hand.
  std::vector<std::int32_t> numbers;
  std::vector<std::uint8_t> marks;
  std::vector<Vec3> corners;
};

}  // namespace

Pieces makePieces(const PolygonScene& scene, const IndexOptions& options) {
  return PieceMaker(scene, options).take();
}

}  // namespace Lumivane::Visibility
