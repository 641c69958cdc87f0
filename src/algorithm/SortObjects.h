#pragma once

// What the chapters of the depth sort share.

#include <vector>

namespace Lumivane::Algorithm {

class ObjectData;

// Destroys an object of the sort with everything that hangs on it. Regions that became the shot's
// must have left its list.
void releaseSortObject(ObjectData* object);

// The elements of a list of the model; none if the list is missing, or its vector.
template <class List, class Element>
const std::vector<Element*>& elementsOf(List* list, std::vector<Element*>* (List::*elements)()) {
  static const std::vector<Element*> none;
  const std::vector<Element*>* found = list == nullptr ? nullptr : (list->*elements)();
  return found == nullptr ? none : *found;
}

}  // namespace Lumivane::Algorithm
