#pragma once

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Lumivane::Visibility {

/// An array of an index: filled like a vector while the index is made, or borrowed from a file that
/// is mapped into memory. To read it is the same for both. What is borrowed must not be changed,
/// and must live as long as the array.
template <class T>
class IndexArray {
 public:
  using value_type = T;

  IndexArray() = default;
  IndexArray(const IndexArray&) = delete;
  IndexArray& operator=(const IndexArray&) = delete;
  IndexArray(IndexArray&& other) noexcept { *this = std::move(other); }
  IndexArray& operator=(IndexArray&& other) noexcept {
    own = std::move(other.own);
    items = std::exchange(other.items, nullptr);
    count = std::exchange(other.count, 0);
    return *this;
  }
  IndexArray& operator=(std::vector<T>&& values) noexcept {
    own = std::move(values);
    return renew();
  }
  ~IndexArray() = default;

  /// Refers to elements of somebody else.
  void borrow(const T* first, std::size_t number) {
    own.clear();
    items = first;
    count = number;
  }

  const T* data() const { return items; }
  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  const T& operator[](std::size_t i) const { return items[i]; }
  const T* begin() const { return items; }
  const T* end() const { return items + count; }
  /// \throws std::out_of_range
  const T& at(std::size_t i) const {
    if (i >= count) throw std::out_of_range("an array of an index ends before the position");
    return items[i];
  }
  const T& front() const { return items[0]; }
  const T& back() const { return items[count - 1]; }

  /// Whether they hold equal elements.
  friend bool operator==(const std::vector<T>& a, const IndexArray& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }

  /// To fill it.
  T& operator[](std::size_t i) { return own[i]; }
  T* begin() { return own.data(); }
  T* end() { return own.data() + own.size(); }
  void reserve(std::size_t number) {
    own.reserve(number);
    renew();
  }
  void resize(std::size_t number) {
    own.resize(number);
    renew();
  }
  void assign(std::size_t number, const T& value) {
    own.assign(number, value);
    renew();
  }
  void push_back(const T& value) {
    own.push_back(value);
    renew();
  }

 private:
  IndexArray& renew() {
    items = own.data();
    count = own.size();
    return *this;
  }

  std::vector<T> own;  // empty if the elements are borrowed
  const T* items = nullptr;
  std::size_t count = 0;
};

}  // namespace Lumivane::Visibility
