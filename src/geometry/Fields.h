#pragma once

// How the records of the model write and read their fields: numbers that are set, lists of numbers
// and lists of elements.

#include "base/Indices.h"

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
  Jzon::Node array = Jzon::array();
  for (const int number : *numbers) array.add(Jzon::Node(number));
  node.add(key, array);
}

// Appends the numbers of an array, skipping what is none; a null vector is replaced.
inline void readNumbers(const Jzon::Node& node, const std::string& key,
                        std::vector<int>*& numbers) {
  const Jzon::Node array = node.get(key);
  if (!array.isArray()) return;
  std::vector<int>& made = Base::madeVector(numbers);
  for (std::size_t i = 0; i < array.getCount(); ++i) {
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

// A list that was there before stays with whoever holds it.
template <class List>
void readNewList(const Jzon::Node& value, List*& field) {
  auto list = std::make_unique<List>();
  list->deserialize(value);
  field = list.release();
}

// A list for a key that is there, whatever it holds.
template <class List>
void readPresentList(const Jzon::Node& node, const std::string& key, List*& field) {
  if (node.has(key)) readNewList(node.get(key), field);
}

// A list for a key that holds an array.
template <class List>
void readArrayList(const Jzon::Node& node, const std::string& key, List*& field) {
  const Jzon::Node value = node.get(key);
  if (value.isArray()) readNewList(value, field);
}

}  // namespace Lumivane::Geometry
