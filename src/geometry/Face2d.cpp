#include "geometry/Fields.h"

#include <lumivane/geometry/Face2d.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

Face2d::Face2d() : regions(new std::vector<int>()) {}

Face2d::~Face2d() { delete regions; }

int Face2d::getRegion(int index) const { return Base::itemAt(regions, index); }
void Face2d::addRegion(int number) { Base::appendItem(regions, number); }
void Face2d::insertRegion(int index, int number) { Base::insertItem(regions, index, number); }
void Face2d::removeRegionByIndex(int index) { Base::eraseAt(regions, index); }
void Face2d::removeRegion(int number) { Base::eraseItem(regions, number); }
void Face2d::clear() { clearNumbers(regions); }

Jzon::Node Face2d::serialize() {
  Jzon::Node node = Jzon::objectWithRoom(1);
  writeNumbers(node, Utils::Aliases::REGIONS, regions);
  return node;
}

Base::BaseLibClass* Face2d::deserialize(Jzon::Node node) {
  readNumbers(node, Utils::Aliases::REGIONS, regions);
  return this;
}

}  // namespace Lumivane::Geometry
