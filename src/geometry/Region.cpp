#include "geometry/Fields.h"

#include <lumivane/geometry/Region.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

using Utils::Aliases;

Region::Region() : points(new std::vector<int>()), dockingEdges(new std::vector<int>()) {}

Region::~Region() {
  delete points;
  delete dockingEdges;
}

int Region::getPoint(int index) const { return Base::itemAt(points, index); }
void Region::addPoint(int number) { Base::appendItem(points, number); }
void Region::insertPoint(int index, int number) { Base::insertItem(points, index, number); }
void Region::removePointByIndex(int index) { Base::eraseAt(points, index); }
void Region::removePoint(int number) { Base::eraseItem(points, number); }
void Region::clearPoints() { clearNumbers(points); }

int Region::getDockingEdge(int index) const { return Base::itemAt(dockingEdges, index); }
void Region::addDockingEdge(int number) { Base::appendItem(dockingEdges, number); }
void Region::insertDockingEdge(int index, int number) {
  Base::insertItem(dockingEdges, index, number);
}
void Region::removeDockingEdgeByIndex(int index) { Base::eraseAt(dockingEdges, index); }
void Region::removeDockingEdge(int number) { Base::eraseItem(dockingEdges, number); }
void Region::clearDockingEdges() { clearNumbers(dockingEdges); }

Jzon::Node Region::serialize() {
  Jzon::Node node = Jzon::objectWithRoom(4);
  writeNumber(node, Aliases::BRUSH, brushNumber);
  writeNumber(node, Aliases::FACE, faceNumber);
  writeNumbers(node, Aliases::POINTS, points);
  writeNumbers(node, Aliases::DOCKING_EDGES, dockingEdges);
  return node;
}

Base::BaseLibClass* Region::deserialize(Jzon::Node node) {
  readNumber(node, Aliases::BRUSH, brushNumber);
  readNumber(node, Aliases::FACE, faceNumber);
  readNumbers(node, Aliases::POINTS, points);
  readNumbers(node, Aliases::DOCKING_EDGES, dockingEdges);
  return this;
}

}  // namespace Lumivane::Geometry
