// One cell for every pair of objects: whether they meet on the picture, and if so, which one is in
// front or wholly hidden. The costly step, and the one that reports progress.
//
// Outlines, planes and boxes lie in flat arrays. A tree of the boxes finds the few pairs of each
// row that may meet; those are examined piece by piece, from the left to the right, as in a scan of
// the whole row, and all others are apart. Nothing is allocated for a pair.
//
// Cells that decide nothing need no test. The drawing order is made of two things: the set of
// hidden faces, those that any of their cells names, and the cells 1 and 2 of pairs of which
// neither face is hidden. So if only what decides is wanted,
//
// - each face is asked for one face that hides it (HiderSearch). Its cell is put; it names the face
//   as all cells that hide it would, and whom it names is hidden in the full matrix, too, as a cell
//   depends on its two faces alone. Hidden faces are tried as hiders like all others. So the set of
//   hidden faces is the same;
// - pairs of faces that are not hidden are tested as ever, in the same order, so the list of their
//   cells 1 and 2 is the same, and with it the order and the report of a cycle;
// - a pair with a hidden face has no other effect than messages and errors. It owes messages if a
//   source of its faces has a normal of length 0: the pairs of such faces are all tested, once each
//   and row by row. The messages are all the same, so their number is what counts. Errors: a face
//   with a missing source, or more pairs that may meet than the memory limit has room for. Then all
//   cells are decided, and fail or do not as they would.
//
// From the air hardly anything is hidden, and to ask every face would cost more than it saves. So a
// few rows are asked first how many others they meet.
//
// Rows are decided in several threads, some rows at a time, and joined in their order in the
// calling thread, which puts the cells, prints the messages, reports progress and throws, as if it
// had decided them itself.

#include "algorithm/pipeline/Classifier.h"

#include "algorithm/pipeline/ShotBudget.h"
#include "kernel/BoxTree.h"
#include "kernel/HiderSearch.h"
#include "utils/InOrder.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/utils/ProgressbarUtils.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Lumivane::Algorithm {
namespace {

using Kernel::Cell;
using Kernel::HiderSearch;
using Entry = Kernel::SparseCells::Entry;

// The share of this step in the progress of a shot.
constexpr double ProgressStart = 30.0;
constexpr double ProgressRange = 70.0;

// How many rows are decided at a time where there are several threads.
constexpr std::size_t RowsAtATime = 32;
// Fewer faces than this are not worth another thread.
constexpr std::size_t FewFaces = 1000;
// So few are not worth a sample: whether to look for hidden ones first hardly matters.
constexpr std::size_t FewToSample = 64;
// If a face meets fewer others than this, on average, to look for hidden ones first does not pay.
constexpr std::size_t FewMeetings = 32;

std::vector<Kernel::Box> boxesOf(const Kernel::FaceShapes& shapes) {
  std::vector<Kernel::Box> boxes;
  boxes.reserve(shapes.faces.size());
  for (const Kernel::FaceShapes::Face& face : shapes.faces)
    boxes.push_back(Kernel::meetingBox(face));
  return boxes;
}

bool isAnySourceMissing(const Kernel::FaceShapes& shapes) {
  return std::any_of(
      shapes.faces.begin(), shapes.faces.end(),
      [](const Kernel::FaceShapes::Face& face) { return face.sourceCount < face.pieceCount; });
}

// Whether the pairs of a face owe messages.
bool owesMessages(const Kernel::FaceShapes& shapes, const Kernel::FaceShapes::Face& face) {
  for (std::size_t k = face.firstSource; k < face.firstSource + face.sourceCount; ++k)
    if (shapes.sources.facing(k).normal.zeroLength) return true;
  return false;
}

// The faces of a shot, with all that is found out about them once. Asked by any number of threads.
class FacesToSort {
 public:
  explicit FacesToSort(const Kernel::FaceShapes& faceShapes)
      : shapes(faceShapes), boxes(boxesOf(faceShapes)), tree(boxes), hiders(shapes, boxes, tree) {}

  std::size_t size() const { return boxes.size(); }

  // Whether to look for hidden faces first changes nothing but the time.
  bool paysToLookForHidden() const {
    if (size() < FewToSample) return true;
    const std::size_t samples = std::min<std::size_t>(64, size() / 16);
    std::vector<std::uint32_t> found(size() + 1);
    std::size_t meetings = 0;
    for (std::size_t k = 0; k < samples; ++k)
      meetings += tree.findMeeting(boxes[k * size() / samples], static_cast<std::uint32_t>(size()),
                                   found.data());
    return meetings >= samples * FewMeetings;
  }

  // From now on, hidden faces are known.
  void lookForHidden() {
    known = std::make_unique<std::atomic<std::uint32_t>[]>(size());
    for (std::size_t i = 0; i < size(); ++i) known[i].store(Unknown, std::memory_order_relaxed);
    isLoud.resize(size());
    std::vector<Kernel::Box> boxesOfLoud(boxes);
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = 0; i < size(); ++i) {
      isLoud[i] = owesMessages(shapes, shapes.faces[i]) ? 1 : 0;
      if (isLoud[i] == 0) boxesOfLoud[i] = {none, none, none, none};
      anyIsLoud = anyIsLoud || isLoud[i] != 0;
    }
    if (anyIsLoud) loudTree = std::make_unique<Kernel::BoxTree>(boxesOfLoud);
  }

  bool knowsHidden() const { return known != nullptr; }

  // A face that hides this one, or None. Threads that ask at a time find the same.
  std::uint32_t hiderOf(std::uint32_t face, Kernel::PairScan& scan, std::uint32_t* found) const {
    std::uint32_t hider = known[face].load(std::memory_order_relaxed);
    if (hider != Unknown) return hider;
    hider = hiders.hiderOf(face, scan, found);
    known[face].store(hider, std::memory_order_relaxed);
    return hider;
  }

  const Kernel::FaceShapes& shapes;
  std::vector<Kernel::Box> boxes;
  Kernel::BoxTree tree;
  std::vector<char> isLoud;  // whether pairs of the face owe messages
  bool anyIsLoud = false;
  std::unique_ptr<Kernel::BoxTree> loudTree;  // of the boxes of those

 private:
  static constexpr std::uint32_t Unknown = HiderSearch::None - 1;

  HiderSearch hiders;
  std::unique_ptr<std::atomic<std::uint32_t>[]> known;  // per face what hides it
};

// What the rows from one on have come to.
struct Rows {
  struct Row {
    std::size_t entryEnd = 0;    // in the list of all rows
    std::size_t zeroLength = 0;  // messages owed
    std::uint32_t hider = HiderSearch::None;
  };

  std::size_t first = 0;
  std::vector<Row> rows;
  std::vector<Entry> entries;
  bool sourceMissing = false;  // by the last row, behind which there is none
};

// Decides the cells of one face after the other.
class RowClassifier {
 public:
  explicit RowClassifier(const FacesToSort& facesToSort)
      : faces(facesToSort),
        scan(facesToSort.shapes),
        candidates(facesToSort.size() + 1),
        found(facesToSort.size() + 1) {}

  // Fills `result` anew.
  void classify(std::size_t first, std::size_t last, Rows& result) {
    result.first = first;
    result.rows.clear();
    result.entries.clear();
    for (std::size_t i = first; i < last && !result.sourceMissing; ++i)
      classifyRow(static_cast<std::uint32_t>(i), result);
  }

 private:
  // The cells of face i with the faces before it, or with those of them that matter.
  void classifyRow(std::uint32_t i, Rows& result) {
    Rows::Row row;
    const bool isSorted = faces.knowsHidden();
    if (isSorted) row.hider = hiderOf(i);
    const bool onlyLoud = isSorted && row.hider != HiderSearch::None && faces.isLoud[i] == 0;
    if (onlyLoud && !faces.anyIsLoud) {
      row.entryEnd = result.entries.size();
      result.rows.push_back(row);
      return;
    }
    const Kernel::BoxTree& tree = onlyLoud ? *faces.loudTree : faces.tree;
    const std::size_t count = tree.findMeeting(faces.boxes[i], i, candidates.data());
    const bool needAll = !isSorted || faces.isLoud[i] != 0;
    for (std::size_t k = 0; k < count && !result.sourceMissing; ++k) {
      const std::uint32_t j = candidates[k];
      if (needAll || faces.isLoud[j] != 0 || hiderOf(j) == HiderSearch::None)
        classifyPair(i, j, row, result);
    }
    row.entryEnd = result.entries.size();
    result.rows.push_back(row);
  }

  std::uint32_t hiderOf(std::uint32_t face) { return faces.hiderOf(face, scan, found.data()); }

  void classifyPair(std::uint32_t i, std::uint32_t j, Rows::Row& row, Rows& result) {
    const Kernel::Classification pair = Kernel::classifyPair(faces.shapes, i, j, scan);
    row.zeroLength += pair.zeroLengthAsked;
    result.sourceMissing = pair.sourceMissing;
    if (!pair.sourceMissing && pair.cell != Cell::Apart) result.entries.push_back({j, pair.cell});
  }

  const FacesToSort& faces;
  Kernel::PairScan scan;
  std::vector<std::uint32_t> candidates;
  std::vector<std::uint32_t> found;
};

// How many pairs of overlapping faces the memory limit has room for.
std::int64_t mostRelations() {
  const std::int64_t limit = shotLimits().memory;
  return limit <= 0 ? std::numeric_limits<std::int64_t>::max()
                    : limit / ShotBudget::BytesPerRelation;
}

// Whether that many pairs of boxes may meet.
bool mayBeTooMany(const std::vector<Kernel::Box>& boxes) {
  const auto most = static_cast<std::uint64_t>(mostRelations());
  const std::uint64_t count = boxes.size();
  return count * count / 2 > most && Kernel::mostMeetingPairs(boxes) > most;
}

// The pairs that meet are counted while they are found: how many there are is not known before.
void checkRelations(std::size_t count, const ObjectData& face) {
  const std::int64_t most = mostRelations();
  if (static_cast<std::int64_t>(count) <= most) return;
  throw std::length_error(
      "Scene::Object \"" + face.getSourceObject() + "\": more than " + std::to_string(most) +
      " pairs of its faces and earlier ones overlap, and " + memoryLimitText(shotLimits().memory) +
      " has no room for more: raise it, or take apart what overlaps");
}

// Takes the rows in their order into the matrix, with all that the calling thread owes for them.
class RowJoiner {
 public:
  RowJoiner(const std::vector<ObjectData*>& objectsOfFaces, Kernel::SparseCells& allCells)
      : objects(objectsOfFaces), cells(allCells), hiddenBy(objectsOfFaces.size()) {}

  void join(const Rows& rows) {
    Utils::ProgressbarUtils* const progress = Utils::ProgressbarUtils::getInstance();
    const double step = ProgressRange / static_cast<double>(objects.size());
    std::size_t first = 0;
    for (std::size_t k = 0; k < rows.rows.size(); ++k) {
      const Rows::Row& row = rows.rows[k];
      const std::size_t i = rows.first + k;
      progress->setProgress(static_cast<double>(i) * step + ProgressStart);
      for (std::size_t n = 0; n < row.zeroLength; ++n) Utils::reportZeroLengthVector();
      if (rows.sourceMissing && k + 1 == rows.rows.size()) Utils::throwInvalidSubscript();
      put(i, rows.entries.data() + first, rows.entries.data() + row.entryEnd, row.hider);
      first = row.entryEnd;
      checkRelations(cells.entryCount(), *objects[i]);
    }
  }

 private:
  // A row: the cells of its tests, and those by which its face hides earlier ones or is hidden by
  // one, all by column. A cell may come from both.
  void put(std::size_t i, const Entry* first, const Entry* last, std::uint32_t hider) {
    std::vector<Entry>& hides = hiddenBy[i];
    if (hider != HiderSearch::None && hider < i) {
      const Entry entry{hider, Cell::FirstHidden};
      hides.insert(std::lower_bound(hides.begin(), hides.end(), entry, isLeft), entry);
    } else if (hider != HiderSearch::None) {
      hiddenBy[hider].push_back({static_cast<std::uint32_t>(i), Cell::SecondHidden});
    }
    auto hiding = hides.begin();
    for (const Entry* entry = first; entry != last; ++entry) {
      for (; hiding != hides.end() && hiding->column < entry->column; ++hiding) put(*hiding);
      if (hiding != hides.end() && hiding->column == entry->column) ++hiding;
      put(*entry);
    }
    for (; hiding != hides.end(); ++hiding) put(*hiding);
    hides = std::vector<Entry>();
    cells.endRow();
  }

  void put(const Entry& entry) { cells.put(entry.column, entry.cell); }

  static bool isLeft(const Entry& a, const Entry& b) { return a.column < b.column; }

  const std::vector<ObjectData*>& objects;
  Kernel::SparseCells& cells;
  std::vector<std::vector<Entry>> hiddenBy;  // per face those before it, by column
};

void classifyAlone(const FacesToSort& faces, RowJoiner& joiner) {
  RowClassifier classifier(faces);
  Rows rows;
  for (std::size_t i = 0; i < faces.size(); ++i) {
    classifier.classify(i, i + 1, rows);
    joiner.join(rows);
  }
}

void classifyInThreads(const FacesToSort& faces, std::size_t threads, RowJoiner& joiner) {
  const auto newMaker = [&faces] {
    return [&faces, classifier = RowClassifier(faces)](std::size_t index) mutable {
      const std::size_t first = index * RowsAtATime;
      Rows rows;
      classifier.classify(first, std::min(faces.size(), first + RowsAtATime), rows);
      return rows;
    };
  };
  const auto join = [&joiner](const Rows& rows, std::size_t) {
    joiner.join(rows);
    return true;
  };
  Utils::makeInOrder((faces.size() + RowsAtATime - 1) / RowsAtATime, threads, newMaker, join);
}

}  // namespace

void classifyFaces(const SortShapes& shapes, const std::vector<ObjectData*>& objects,
                   CellsWanted wanted, Kernel::SparseCells& cells) {
  FacesToSort faces(shapes);
  if (wanted == CellsWanted::Deciding && !isAnySourceMissing(shapes) &&
      faces.paysToLookForHidden() && !mayBeTooMany(faces.boxes))
    faces.lookForHidden();

  cells.restart();
  RowJoiner joiner(objects, cells);
  const std::size_t threads =
      faces.size() < FewFaces ? 1 : Utils::threadCount(shotLimits().threads);
  if (threads > 1)
    classifyInThreads(faces, threads, joiner);
  else
    classifyAlone(faces, joiner);
}

}  // namespace Lumivane::Algorithm
