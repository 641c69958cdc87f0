// One cell for every pair of objects: whether they meet on the picture, and if so, which one is in
// front or wholly hidden. The costly step, and the one that reports progress. Boxes refuse most
// pairs; the others are examined piece by piece, on outlines and planes that are laid out once per
// object, before the pairs.

#include "algorithm/Boxes.h"
#include "kernel/Classify.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <optional>

namespace Lumivane::Algorithm {
namespace {

// The share of this step in the progress of a shot.
constexpr double ProgressStart = 30.0;
constexpr double ProgressRange = 70.0;

std::optional<Kernel::Box> boxOf(const Bounds2D* bounds) {
  if (bounds == nullptr) return std::nullopt;
  return toBox(*bounds);
}

Kernel::FaceShape shapeOf(const ObjectData& object) {
  Kernel::FaceShape shape;
  shape.bounds = boxOf(object.getProjectedBounds());
  for (const ProjectedPolygonData* polygon : *object.getProjectedPolygons())
    shape.pieces.push_back({Utils::toVec2s(*polygon->getPoints()), boxOf(polygon->getBounds())});
  for (const auto& source : *object.getSourcePolygons()) {
    std::vector<Kernel::Vec3> points = Utils::toVec3s(source);
    const Kernel::Facing facing = Kernel::facingOf(points);
    shape.sources.push_back({std::move(points), facing});
  }
  return shape;
}

// The cell of a pair, with the messages that its points have asked for.
int reportedCell(const Kernel::FaceShape& first, const Kernel::FaceShape& second) {
  const Kernel::Classification result = Kernel::classifyPair(first, second);
  for (std::size_t i = 0; i < result.zeroLengthAsked; ++i) Utils::reportZeroLengthVector();
  if (result.sourceMissing) Utils::throwInvalidSubscript();
  return result.cell;
}

}  // namespace

void DepthSortAlgorithmExecutor::classifyObjectsByBoundingBoxes() {
  const std::size_t count = objectDataList->size();
  std::vector<Kernel::FaceShape> shapes;
  shapes.reserve(count);
  for (const ObjectData* object : *objectDataList) shapes.push_back(shapeOf(*object));

  Utils::ProgressbarUtils* progress = Utils::ProgressbarUtils::getInstance();
  for (std::size_t i = 0; i < count; ++i) {
    progress->setProgress(static_cast<double>(i) * (ProgressRange / static_cast<double>(count)) +
                          ProgressStart);
    std::vector<int>& row = (*classificationMatrix)[i];
    for (std::size_t j = 0; j < i; ++j) row[j] = reportedCell(shapes[i], shapes[j]);
  }
}

}  // namespace Lumivane::Algorithm
