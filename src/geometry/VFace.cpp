#include "geometry/Fields.h"

#include <lumivane/geometry/VFace.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

VFace::VFace() : propertyValues(new std::map<int, double>()) {}

VFace::~VFace() { delete propertyValues; }

bool VFace::setProperty(int number, double value) {
  if (number < 0) return false;
  (*propertyValues)[number] = value;
  return true;
}

std::optional<double> VFace::getPropertyValue(int number) const {
  const auto found = propertyValues->find(number);
  if (found == propertyValues->end()) return std::nullopt;
  return found->second;
}

Jzon::Node VFace::serialize() {
  Jzon::Node node = Face::serialize();
  if (propertyValues->empty()) return node;
  Jzon::Node values = Jzon::array();
  for (const auto& [number, value] : *propertyValues) {
    Jzon::Node entry = Jzon::array();
    entry.add(Jzon::Node(number));
    entry.add(Jzon::Node(value));
    values.add(entry);
  }
  node.add(Utils::Aliases::VALUES, values);
  return node;
}

Base::BaseLibClass* VFace::deserialize(Jzon::Node node) {
  if (!node.isObject()) return this;
  Face::deserialize(node);
  const Jzon::Node values = node.get(Utils::Aliases::VALUES);
  if (!values.isArray()) return this;
  propertyValues->clear();
  for (std::size_t i = 0; i < values.getCount(); ++i) {
    const Jzon::Node entry = values.get(i);
    if (!entry.isArray() || entry.getCount() != 2) continue;
    const Jzon::Node number = entry.get(std::size_t{0});
    const Jzon::Node value = entry.get(std::size_t{1});
    if (number.isInteger() && value.isNumber()) setProperty(number.toInt(), value.toDouble());
  }
  return this;
}

}  // namespace Lumivane::Geometry
