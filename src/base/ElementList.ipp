#pragma once

// The bodies of the list pattern. Each list's .cpp includes this file and the element's header, and
// instantiates the pattern once.

#include "base/Indices.h"
#include "base/SerializeOrNull.h"
#include "jzon/Building.h"

#include <lumivane/base/ElementList.h>
#include <lumivane/jzon/Node.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace Lumivane::Base {

// Takes no memory: lists are destroyed where there is none left, too.
template <class Element>
void destroyElements(std::vector<Element*>& elements) {
  std::sort(elements.begin(), elements.end(), std::less<>());
  elements.erase(std::unique(elements.begin(), elements.end()), elements.end());
  for (Element* element : elements)
    if (element != nullptr) ElementTraits<Element>::destroyElement(element);
}

template <class Element>
ElementList<Element>::ElementList() : items(new Vector()) {}

template <class Element>
ElementList<Element>::~ElementList() {
  clear();
  delete items;
  items = nullptr;
}

template <class Element>
void ElementList<Element>::clear() {
  if (items == nullptr) return;
  destroyElements(*items);
  items->clear();
}

template <class Element>
Jzon::Node ElementList<Element>::serialize() {
  Jzon::Node node = Jzon::arrayWithRoom(countOf(items));
  if (items == nullptr) return node;
  for (Element* element : *items) node.add(serializeOrNull(element));
  return node;
}

template <class Element>
BaseLibClass* ElementList<Element>::deserialize(Jzon::Node node) {
  if (!node.isArray()) return this;
  const std::size_t count = node.getCount();
  if (madeVector(items).empty()) items->reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::unique_ptr<Element> element(new Element());
    append(ElementTraits<Element>::readElement(element.get(), Jzon::takenChild(node, i)));
    (void)element.release();  // the list owns it now
  }
  return this;
}

template <class Element>
Element* ElementList<Element>::at(int index) const {
  return itemAt(items, index);
}

template <class Element>
void ElementList<Element>::insert(int index, Element* element) {
  insertItem(items, index, element);
}

template <class Element>
void ElementList<Element>::append(Element* element) {
  appendItem(items, element);
}

template <class Element>
void ElementList<Element>::erase(int index) {
  eraseAt(items, index);
}

template <class Element>
void ElementList<Element>::erase(const Element* element) {
  eraseItem(items, element);
}

}  // namespace Lumivane::Base
