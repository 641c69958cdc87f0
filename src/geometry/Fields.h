#pragma once

// How the records of the model write and read their fields: numbers that are set, lists of numbers
// and lists of elements.

#include "base/Indices.h"
#include "jzon/Building.h"

#include <lumivane/jzon/Node.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Lumivane::Geometry {

// A number below 0 is not set, and left out.
inline void writeNumber(Jzon::Node& node, const std::string& key, int number) {
  if (number >= 0) node.add(key, Jzon::Node(number));
}

// Anything but a number leaves the field as it is.
inline void readNumber(const Jzon::Node& node, const std::string& key, int& field) {
  const Jzon::Node value = node.get(key);
  if (value.isNumber()) field = value.toInt(field);
}

// Anything but a number leaves the field as it is.
inline void readNumberAt(const Jzon::Node& array, std::size_t index, double& field) {
  const Jzon::Node value = array.get(index);
  if (value.isNumber()) field = value.toDouble(field);
}

inline void writeNumbers(Jzon::Node& node, const std::string& key,
                         const std::vector<int>* numbers) {
  if (Base::countOf(numbers) == 0) return;
  Jzon::Node array = Jzon::arrayWithRoom(numbers->size());
  for (const int number : *numbers) array.add(Jzon::Node(number));
  node.add(key, array);
}

// Appends the numbers of an array, skipping what is none; a null vector is replaced.
inline void readNumbers(const Jzon::Node& node, const std::string& key,
                        std::vector<int>*& numbers) {
  const Jzon::Node array = node.get(key);
  if (!array.isArray()) return;
  std::vector<int>& made = Base::madeVector(numbers);
  const std::size_t count = array.getCount();
  if (made.empty()) made.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Jzon::Node value = array.get(i);
    if (value.isNumber()) made.push_back(value.toInt(0));
  }
}

inline void clearNumbers(std::vector<int>* numbers) {
  if (numbers != nullptr) numbers->clear();
}

template <class List>
void writeList(Jzon::Node& node, const std::string& key, List* list) {
  if (list != nullptr) node.add(key, list->serialize());
}

// Reads a new list from a member, which is taken out if nobody else holds the object. A list that
// was there before stays with whoever holds it.
template <class List>
void readNewList(Jzon::Node& node, const std::string& key, List*& field) {
  auto list = std::make_unique<List>();
  list->deserialize(Jzon::takenChild(node, key));
  field = list.release();
}

// A list for a key that is there, whatever it holds.
template <class List>
void readPresentList(Jzon::Node& node, const std::string& key, List*& field) {
  if (node.has(key)) readNewList(node, key, field);
}

// A list for a key that holds an array.
template <class List>
void readArrayList(Jzon::Node& node, const std::string& key, List*& field) {
  if (node.get(key).isArray()) readNewList(node, key, field);
}

}  // namespace Lumivane::Geometry
