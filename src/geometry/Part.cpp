#include "geometry/Fields.h"

#include <lumivane/geometry/Part.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

Part::Part() : regions(new std::vector<int>()) {}

Part::~Part() { delete regions; }

int Part::getRegion(int index) const { return Base::itemAt(regions, index); }
void Part::addRegion(int number) { Base::appendItem(regions, number); }
void Part::insertRegion(int index, int number) { Base::insertItem(regions, index, number); }
void Part::removeRegionByIndex(int index) { Base::eraseAt(regions, index); }
void Part::removeRegion(int number) { Base::eraseItem(regions, number); }
void Part::clear() { clearNumbers(regions); }

Jzon::Node Part::serialize() {
  Jzon::Node node = Jzon::objectWithRoom(2);  // a face adds its normal
  writeNumbers(node, Utils::Aliases::REGIONS, regions);
  return node;
}

Base::BaseLibClass* Part::deserialize(Jzon::Node node) {
  readNumbers(node, Utils::Aliases::REGIONS, regions);
  return this;
}

}  // namespace Lumivane::Geometry
