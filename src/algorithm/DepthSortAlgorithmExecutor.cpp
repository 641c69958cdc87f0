// The depth sort as the interface has it: what is ordered, and the order of the steps, each of
// which is a file of pipeline/. SortedFaces collects the shot's faces, Classifier decides one cell
// for every pair of them, DrawingOrder makes one order of the cells and rewrites the shot. How two
// polygons lie to each other is also asked by containers: DepthSortAlgorithmExecutorRelations.cpp.
// `run` leaves out the cells on which the order does not depend; the step by itself decides all.
//
// The shot is only read until the order is known, so an exception leaves it as it was.

#include "algorithm/pipeline/ClassificationMatrix.h"
#include "algorithm/pipeline/Classifier.h"
#include "algorithm/pipeline/DrawingOrder.h"
#include "algorithm/pipeline/SortFacts.h"
#include "algorithm/pipeline/SortObject.h"
#include "algorithm/pipeline/SortShapes.h"
#include "algorithm/pipeline/SortedFaces.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/cmd/Log.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace Lumivane::Algorithm {
namespace {

// Destroys a list with its objects. Nobody outside can hold a pointer to what the list refers to,
// except to the regions that became the shot's; those have left their lists by then. The objects go
// in the order of their making, as far as addresses show it: neighbours in memory are fast to free
// one after the other.
void releaseObjects(std::vector<ObjectData*>* list) {
  std::sort(list->begin(), list->end(), std::less<>());
  std::for_each(list->begin(), list->end(), SortObject::release);
  delete list;
}

}  // namespace

DepthSortAlgorithmExecutor::DepthSortAlgorithmExecutor()
    : classificationMatrix(std::make_shared<ClassificationMatrix>()),
      shapes(std::make_shared<SortShapes>()) {}

DepthSortAlgorithmExecutor::~DepthSortAlgorithmExecutor() {
  const Utils::StageScope stage(Utils::Stage::Order);
  objectDataList.reset();
  classificationMatrix.reset();
  shapes.reset();
}

void DepthSortAlgorithmExecutor::run() {
  Cmd::logMessage("Calculating objects order\n\n");
  if (scene == nullptr || shot == nullptr) return;
  const Utils::StageScope stage(Utils::Stage::Classification);
  fillObjectDataList();
  classifyFaces(*shapes, *objectDataList, CellsWanted::Deciding, *classificationMatrix);
  calculateObjectsOrder();
}

void DepthSortAlgorithmExecutor::fillObjectDataList() {
  if (scene == nullptr || shot == nullptr) return;
  // All made anew, since a copy may still refer to the old ones.
  shapes = std::make_shared<SortShapes>();
  objectDataList = {new std::vector<ObjectData*>(), releaseObjects};
  classificationMatrix = std::make_shared<ClassificationMatrix>(*classificationMatrix);
  collectFaces(*scene, *shot, *shapes, *objectDataList);
  sortFacts() = {objectDataList->size(), {}};
  classificationMatrix->addRows(objectDataList->size());
}

void DepthSortAlgorithmExecutor::classifyObjects() {
  if (scene != nullptr && shot != nullptr) classifyObjectsByBoundingBoxes();
}

void DepthSortAlgorithmExecutor::classifyObjectsByBoundingBoxes() {
  classifyFaces(*shapes, *objectDataList, CellsWanted::All, *classificationMatrix);
}

void DepthSortAlgorithmExecutor::calculateObjectsOrder() {
  if (objectDataList == nullptr) return;
  const Utils::StageScope stage(Utils::Stage::Order);
  orderObjects(*objectDataList, *shapes, *classificationMatrix);
  rewriteShot(*shot, *shapes, *objectDataList);
}

}  // namespace Lumivane::Algorithm
