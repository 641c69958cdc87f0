#pragma once

// The checked positions of the model's lists, and the operations on its plain lists of numbers
// (`Region`, `Region2d`, `Part`, `Face2d`). A null vector counts as empty; what adds to it makes a
// new one.

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Lumivane::Base {

// What stands in a literal from a position on; empty beyond its ends.
inline std::string literalFrom(std::string_view literal, int position) {
  if (position < 0 || static_cast<std::size_t>(position) > literal.size()) return {};
  return std::string(literal.substr(static_cast<std::size_t>(position)));
}

// Deliberate: the text is the literal advanced by the index, not joined with it.
[[noreturn]] inline void throwBadIndex(int index) {
  throw std::out_of_range(literalFrom("index = ", index));
}

// The position of an element that exists.
inline std::size_t checkedIndex(int index, std::size_t count) {
  if (index < 0 || static_cast<std::size_t>(index) >= count) throwBadIndex(index);
  return static_cast<std::size_t>(index);
}

// A position to insert at: the count itself is allowed.
inline std::size_t checkedInsertion(int index, std::size_t count) {
  if (index < 0 || static_cast<std::size_t>(index) > count) throwBadIndex(index);
  return static_cast<std::size_t>(index);
}

template <class T>
std::size_t countOf(const std::vector<T>* items) {
  return items == nullptr ? 0 : items->size();
}

template <class T>
std::vector<T>& madeVector(std::vector<T>*& items) {
  if (items == nullptr) items = new std::vector<T>();
  return *items;
}

template <class T>
T itemAt(const std::vector<T>* items, int index) {
  const std::size_t position = checkedIndex(index, countOf(items));
  return (*items)[position];
}

template <class T>
void appendItem(std::vector<T>*& items, T item) {
  madeVector(items).push_back(item);
}

template <class T>
void insertItem(std::vector<T>*& items, int index, T item) {
  const std::size_t position = checkedInsertion(index, countOf(items));
  std::vector<T>& made = madeVector(items);
  made.insert(made.begin() + static_cast<std::ptrdiff_t>(position), item);
}

template <class T>
void eraseAt(std::vector<T>* items, int index) {
  const std::size_t position = checkedIndex(index, countOf(items));
  items->erase(items->begin() + static_cast<std::ptrdiff_t>(position));
}

// Every occurrence; an absent item changes nothing.
template <class T, class Item>
void eraseItem(std::vector<T>* items, Item item) {
  if (items == nullptr) return;
  items->erase(std::remove(items->begin(), items->end(), item), items->end());
}

}  // namespace Lumivane::Base
