#include "base/ElementList.ipp"

#include <lumivane/base/Properties.h>

#include <algorithm>

namespace Lumivane::Base {

template class ElementList<Property>;

namespace {

template <class Matches>
Property* firstWhere(const std::vector<Property*>* items, Matches matches) {
  if (items == nullptr) return nullptr;
  const auto found = std::find_if(items->begin(), items->end(), [&](const Property* property) {
    return property != nullptr && matches(*property);
  });
  return found == items->end() ? nullptr : *found;
}

}  // namespace

void Properties::setProperties(Vector* properties) {
  if (properties != items) delete items;
  items = properties;
}

Property* Properties::getProperty(int number) {
  return firstWhere(items, [&](const Property& one) { return one.getNumber() == number; });
}

Property* Properties::getProperty(std::string name) {
  return firstWhere(items, [&](const Property& one) { return one.getName() == name; });
}

void Properties::addProperty(Property* property) {
  if (property != nullptr && !exists(property)) append(property);
}

void Properties::removeProperty(int number) { removeProperty(getProperty(number)); }

void Properties::removeProperty(Property* property) {
  if (property == nullptr || !exists(property)) return;
  auto gap = std::find(items->begin(), items->end(), property);
  // Deliberate: the list keeps its length, so that the slots at the end keep their old pointers.
  // With nothing behind the gap nothing moves: the last element cannot be removed.
  for (auto next = gap + 1; next != items->end(); ++next)
    if (*next != property) *gap++ = *next;
}

bool Properties::exists(Property* property) {
  if (property == nullptr || items == nullptr) return false;
  return std::find(items->begin(), items->end(), property) != items->end();
}

}  // namespace Lumivane::Base
