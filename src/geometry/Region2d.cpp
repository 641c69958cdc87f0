#include "geometry/Fields.h"

#include <lumivane/geometry/Region2d.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

using Utils::Aliases;

namespace {

// A null vector counts as empty.
std::vector<int>* copiedNumbers(const std::vector<int>* numbers) {
  return numbers == nullptr ? new std::vector<int>() : new std::vector<int>(*numbers);
}

}  // namespace

Region2d::Region2d() : points(new std::vector<int>()), dockingEdges(new std::vector<int>()) {}

// Deliberate: construction copies the vectors, while assignment shares them.
Region2d::Region2d(const Region2d& other)
    : Base::BaseLibClass(other),
      objectNumber(other.objectNumber),
      penNumber(other.penNumber),
      brushNumber(other.brushNumber),
      faceNumber(other.faceNumber),
      sourceRegionNumber(other.sourceRegionNumber),
      points(copiedNumbers(other.points)),
      dockingEdges(copiedNumbers(other.dockingEdges)),
      overrideColor(other.overrideColor) {}

Region2d::~Region2d() {
  delete points;
  delete dockingEdges;
}

int Region2d::getPoint(int index) const { return Base::itemAt(points, index); }
void Region2d::addPoint(int number) { Base::appendItem(points, number); }
void Region2d::insertPoint(int index, int number) { Base::insertItem(points, index, number); }
void Region2d::removePointByIndex(int index) { Base::eraseAt(points, index); }
void Region2d::removePoint(int number) { Base::eraseItem(points, number); }
void Region2d::clearPoints() { clearNumbers(points); }

int Region2d::getDockingEdge(int index) const { return Base::itemAt(dockingEdges, index); }
void Region2d::addDockingEdge(int number) { Base::appendItem(dockingEdges, number); }
void Region2d::insertDockingEdge(int index, int number) {
  Base::insertItem(dockingEdges, index, number);
}
void Region2d::removeDockingEdgeByIndex(int index) { Base::eraseAt(dockingEdges, index); }
void Region2d::removeDockingEdge(int number) { Base::eraseItem(dockingEdges, number); }
void Region2d::clearDockingEdges() { clearNumbers(dockingEdges); }

Jzon::Node Region2d::serialize() {
  Jzon::Node node = Jzon::objectWithRoom(7);
  writeNumber(node, Aliases::OBJECT, objectNumber);
  writeNumber(node, Aliases::PEN, penNumber);
  writeNumber(node, Aliases::BRUSH, brushNumber);
  writeNumber(node, Aliases::FACE, faceNumber);
  writeNumber(node, Aliases::SOURCE_REGION, sourceRegionNumber);
  writeNumbers(node, Aliases::POINTS, points);
  writeNumbers(node, Aliases::DOCKING_EDGES, dockingEdges);
  return node;
}

Base::BaseLibClass* Region2d::deserialize(Jzon::Node node) {
  readNumber(node, Aliases::OBJECT, objectNumber);
  readNumber(node, Aliases::PEN, penNumber);
  readNumber(node, Aliases::BRUSH, brushNumber);
  readNumber(node, Aliases::FACE, faceNumber);
  readNumber(node, Aliases::SOURCE_REGION, sourceRegionNumber);
  readNumbers(node, Aliases::POINTS, points);
  readNumbers(node, Aliases::DOCKING_EDGES, dockingEdges);
  return this;
}

}  // namespace Lumivane::Geometry
