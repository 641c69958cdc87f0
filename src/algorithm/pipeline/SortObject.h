#pragma once

// What the chapters of the depth sort share.

#include <lumivane/algorithm/ObjectData.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::Algorithm {

class SortShapes;

// How the sort makes and destroys its objects.
class SortObject {
 public:
  static ObjectData* make(const std::string& sourceObject, const SortShapes& shapes,
                          std::size_t face);

  // The object's place among the shapes, or null if it has lists of its own.
  static const std::size_t* faceOf(const ObjectData& object) {
    return object.shapes == nullptr ? nullptr : &object.face;
  }

  // Destroys an object, if there is one, with everything that hangs on it. Regions that became the
  // shot's must have left its list.
  static void release(ObjectData* object);
};

// The elements of a list of the model; none if the list is missing, or its vector.
template <class List, class Element>
const std::vector<Element*>& elementsOf(List* list, std::vector<Element*>* (List::*elements)()) {
  static const std::vector<Element*> none;
  const std::vector<Element*>* found = list == nullptr ? nullptr : (list->*elements)();
  return found == nullptr ? none : *found;
}

}  // namespace Lumivane::Algorithm
