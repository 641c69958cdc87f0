// One cell for every pair of objects: whether they meet on the picture, and if so, which one is in
// front or wholly hidden. The costly step, and the one that reports progress.
//
// Outlines, planes and boxes lie in flat arrays. A tree of the boxes finds the few pairs of each
// row that may meet; those are examined piece by piece, from the left to the right, as in a scan of
// the whole row, and all others are apart. Nothing is allocated for a pair.

#include "algorithm/pipeline/Classifier.h"

#include "algorithm/pipeline/ShotBudget.h"
#include "kernel/BoxTree.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/utils/ProgressbarUtils.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Lumivane::Algorithm {
namespace {

// The share of this step in the progress of a shot.
constexpr double ProgressStart = 30.0;
constexpr double ProgressRange = 70.0;

// Decides the cells of one face after the other.
class Classifier {
 public:
  explicit Classifier(const Kernel::FaceShapes& faceShapes)
      : shapes(faceShapes),
        boxes(boxesOf(faceShapes)),
        tree(boxes),
        scan(faceShapes),
        candidates(faceShapes.faces.size()) {}

  // Puts the cells of face i with all faces before it.
  void classifyRow(std::size_t i, Kernel::SparseCells& cells) {
    const std::size_t count =
        tree.findMeeting(boxes[i], static_cast<std::uint32_t>(i), candidates.data());
    for (std::size_t k = 0; k < count; ++k)
      cells.put(candidates[k], reportedCell(i, candidates[k]));
    cells.endRow();
  }

 private:
  static std::vector<Kernel::Box> boxesOf(const Kernel::FaceShapes& faceShapes) {
    std::vector<Kernel::Box> boxes;
    boxes.reserve(faceShapes.faces.size());
    for (const Kernel::FaceShapes::Face& face : faceShapes.faces)
      boxes.push_back(Kernel::meetingBox(face));
    return boxes;
  }

  // The cell of a pair, with the messages that its points have asked for.
  int reportedCell(std::size_t i, std::size_t j) {
    const Kernel::Classification result = Kernel::classifyPair(shapes, i, j, scan);
    for (std::size_t k = 0; k < result.zeroLengthAsked; ++k) Utils::reportZeroLengthVector();
    if (result.sourceMissing) Utils::throwInvalidSubscript();
    return result.cell;
  }

  const Kernel::FaceShapes& shapes;
  std::vector<Kernel::Box> boxes;
  Kernel::BoxTree tree;
  Kernel::PairScan scan;
  std::vector<std::uint32_t> candidates;
};

// The pairs that meet are counted while they are found: how many there are is not known before.
void checkRelations(std::size_t count, const ObjectData& face) {
  const std::int64_t limit = shotLimits().memory;
  const std::int64_t most = limit / ShotBudget::BytesPerRelation;
  if (limit <= 0 || static_cast<std::int64_t>(count) <= most) return;
  throw std::length_error(
      "Scene::Object \"" + face.getSourceObject() + "\": more than " + std::to_string(most) +
      " pairs of its faces and earlier ones overlap, and " + memoryLimitText(limit) +
      " has no room for more: raise it, or take apart what overlaps");
}

}  // namespace

void classifyFaces(const SortShapes& shapes, const std::vector<ObjectData*>& objects,
                   Kernel::SparseCells& cells) {
  const std::size_t count = objects.size();
  Classifier classifier(shapes);
  cells.restart();
  Utils::ProgressbarUtils* progress = Utils::ProgressbarUtils::getInstance();
  for (std::size_t i = 0; i < count; ++i) {
    progress->setProgress(static_cast<double>(i) * (ProgressRange / static_cast<double>(count)) +
                          ProgressStart);
    classifier.classifyRow(i, cells);
    checkRelations(cells.entryCount(), *objects[i]);
  }
}

}  // namespace Lumivane::Algorithm
