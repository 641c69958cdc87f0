#pragma once

#include <cstddef>
#include <limits>
#include <new>
#include <vector>

/// Memory that goes back to the machine at once when it is freed. What comes from the heap stays
/// there, and pieces of other sizes find no room in it: so a process that fills one large list
/// after the other holds twice what it needs.
namespace Lumivane::Visibility {

/// Pieces from this size on are taken from the machine, smaller ones from the heap.
constexpr std::size_t PagedBytes = std::size_t{1} << 20;

/// \throws std::bad_alloc
void* takeMemory(std::size_t bytes);
/// \param bytes as they were asked for
void giveMemoryBack(void* memory, std::size_t bytes) noexcept;

/// Gives back what is free in the heap, which takes some milliseconds.
void trimHeap();

template <class T>
struct PageAllocator {
  using value_type = T;

  PageAllocator() = default;
  template <class U>
  PageAllocator(const PageAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    return static_cast<T*>(takeMemory(count * sizeof(T)));
  }
  void deallocate(T* memory, std::size_t count) noexcept {
    giveMemoryBack(memory, count * sizeof(T));
  }
  friend bool operator==(const PageAllocator&, const PageAllocator&) { return true; }
  friend bool operator!=(const PageAllocator&, const PageAllocator&) { return false; }
};

/// A list that may be as large as a map and is needed for a while.
template <class T>
using LargeVector = std::vector<T, PageAllocator<T>>;

}  // namespace Lumivane::Visibility
