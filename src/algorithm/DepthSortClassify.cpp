// One cell for every pair of objects: whether they meet on the picture, and if so, which one is in
// front or wholly hidden. The costly step, and the one that reports progress.
//
// Outlines, planes and boxes are laid out flat once, before the pairs. A tree of the boxes finds
// the few pairs of each row that may meet; those are examined piece by piece, from the left to the
// right, as in a scan of the whole row, and all others are apart. Nothing is allocated for a pair.

#include "algorithm/Boxes.h"
#include "algorithm/ClassificationMatrix.h"
#include "kernel/BoxTree.h"
#include "kernel/Classify.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Lumivane::Algorithm {
namespace {

// The share of this step in the progress of a shot.
constexpr double ProgressStart = 30.0;
constexpr double ProgressRange = 70.0;

std::optional<Kernel::Box> boxOf(const Bounds2D* bounds) {
  if (bounds == nullptr) return std::nullopt;
  return toBox(*bounds);
}

void addShape(Kernel::FaceShapes& shapes, const ObjectData& object) {
  shapes.addFace(boxOf(object.getProjectedBounds()));
  for (const ProjectedPolygonData* polygon : *object.getProjectedPolygons()) {
    const ProjectedPolygonData::Points& points = *polygon->getPoints();
    shapes.addPiece(
        points.size(), [&points](std::size_t k) { return Utils::toVec2(points[k]); },
        boxOf(polygon->getBounds()));
  }
  for (const auto& source : *object.getSourcePolygons()) shapes.addSource(Utils::toVec3s(source));
}

Kernel::FaceShapes shapesOf(const std::vector<ObjectData*>& objects) {
  Kernel::FaceShapes shapes;
  for (const ObjectData* object : objects) addShape(shapes, *object);
  return shapes;
}

// Decides the cells of one face after the other.
class Classifier {
 public:
  explicit Classifier(const std::vector<ObjectData*>& objects)
      : shapes(shapesOf(objects)),
        tree(boundsOf(shapes)),
        scan(shapes),
        candidates(objects.size()) {}

  // Puts the cells of face i with all faces before it.
  void classifyRow(std::size_t i, Kernel::SparseCells& cells) {
    const std::size_t count =
        tree.findMeeting(shapes.faces[i].bounds, static_cast<std::uint32_t>(i), candidates.data());
    for (std::size_t k = 0; k < count; ++k)
      cells.put(candidates[k], reportedCell(i, candidates[k]));
    cells.endRow();
  }

 private:
  static std::vector<Kernel::Box> boundsOf(const Kernel::FaceShapes& shapes) {
    std::vector<Kernel::Box> boxes;
    boxes.reserve(shapes.faces.size());
    for (const Kernel::FaceShapes::Face& face : shapes.faces) boxes.push_back(face.bounds);
    return boxes;
  }

  // The cell of a pair, with the messages that its points have asked for.
  int reportedCell(std::size_t i, std::size_t j) {
    const Kernel::Classification result = Kernel::classifyPair(shapes, i, j, scan);
    for (std::size_t k = 0; k < result.zeroLengthAsked; ++k) Utils::reportZeroLengthVector();
    if (result.sourceMissing) Utils::throwInvalidSubscript();
    return result.cell;
  }

  Kernel::FaceShapes shapes;
  Kernel::BoxTree tree;
  Kernel::PairScan scan;
  std::vector<std::uint32_t> candidates;
};

}  // namespace

void DepthSortAlgorithmExecutor::classifyObjectsByBoundingBoxes() {
  const std::size_t count = objectDataList->size();
  Classifier classifier(*objectDataList);
  classificationMatrix->restart();
  Utils::ProgressbarUtils* progress = Utils::ProgressbarUtils::getInstance();
  for (std::size_t i = 0; i < count; ++i) {
    progress->setProgress(static_cast<double>(i) * (ProgressRange / static_cast<double>(count)) +
                          ProgressStart);
    classifier.classifyRow(i, *classificationMatrix);
  }
}

}  // namespace Lumivane::Algorithm
