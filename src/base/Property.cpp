#include <lumivane/base/Property.h>
#include <lumivane/jzon/Node.h>

#include <utility>

namespace Lumivane::Base {

Property::Property() = default;

Property::Property(int ownNumber, std::string ownName)
    : number(ownNumber), name(std::move(ownName)) {}

void Property::setName(std::string value) { name = std::move(value); }

Jzon::Node Property::serialize() {
  Jzon::Node node = Jzon::array();
  node.add(Jzon::Node(number));
  node.add(Jzon::Node(name));
  return node;
}

BaseLibClass* Property::deserialize(Jzon::Node node) {
  if (!node.isArray() || node.getCount() != 2) return this;
  const Jzon::Node first = node.get(std::size_t{0});
  if (first.isInteger()) number = first.toInt(number);
  const Jzon::Node second = node.get(std::size_t{1});
  if (second.isString()) name = second.toString(name);
  return this;
}

}  // namespace Lumivane::Base
