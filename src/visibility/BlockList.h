#pragma once

#include "visibility/PageMemory.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace Lumivane::Visibility {

/// A power of two, so many items that a block of them is taken from the machine and not from the
/// heap.
constexpr std::size_t itemsInBlock(std::size_t bytes) {
  std::size_t size = 1;
  while (size * bytes < PagedBytes) size *= 2;
  return size;
}

/// A list that grows at its end in blocks of one size, so that it is never copied to a larger place
/// and never holds room for twice as many, and whose blocks are given back one by one while it is
/// read for the last time. Of plain values.
template <class T>
class BlockList {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  static constexpr std::size_t BlockSize = itemsInBlock(sizeof(T));

  BlockList() = default;
  BlockList(BlockList&& other) noexcept { *this = std::move(other); }
  BlockList& operator=(BlockList&& other) noexcept {
    blocks = std::move(other.blocks);
    other.blocks.clear();
    count = std::exchange(other.count, 0);
    room = std::exchange(other.room, 0);
    released = std::exchange(other.released, 0);
    return *this;
  }
  BlockList(const BlockList&) = delete;
  BlockList& operator=(const BlockList&) = delete;
  ~BlockList() = default;

  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  T& operator[](std::size_t i) { return blocks[i / BlockSize][i % BlockSize]; }
  const T& operator[](std::size_t i) const { return blocks[i / BlockSize][i % BlockSize]; }
  T& back() { return (*this)[count - 1]; }

  void push_back(const T& value) {
    if (count == room) grow();
    (*this)[count++] = value;
  }
  /// Forgets all elements from `number` on. \pre number <= size()
  void truncate(std::size_t number) {
    count = number;
    const std::size_t needed = (number + BlockSize - 1) / BlockSize;
    if (needed < blocks.size() && blocks.size() > 1) {
      blocks.resize(std::max<std::size_t>(1, needed));
      room = blocks.size() * BlockSize;
    }
  }
  /// Gives the memory back of the blocks before that of element `number`; these elements must not
  /// be asked for any more.
  void releaseBefore(std::size_t number) {
    for (const std::size_t end = number / BlockSize; released < end; ++released)
      blocks[released].reset();
  }

 private:
  // The first block grows to its size, since most lists are short.
  void grow() {
    constexpr std::size_t Least = 64;
    if (room >= BlockSize || blocks.empty()) {
      const std::size_t size = blocks.empty() ? Least : BlockSize;
      blocks.push_back(blockOf(size));
      room += size;
      return;
    }
    Block larger = blockOf(2 * room);
    std::copy_n(blocks.front().get(), count, larger.get());
    blocks.front() = std::move(larger);
    room *= 2;
  }
  struct GiveBack {
    std::size_t size = 0;
    void operator()(T* block) const noexcept { giveMemoryBack(block, size * sizeof(T)); }
  };
  using Block = std::unique_ptr<T[], GiveBack>;
  static Block blockOf(std::size_t size) {
    return Block(static_cast<T*>(takeMemory(size * sizeof(T))), GiveBack{size});
  }

  std::vector<Block> blocks;
  std::size_t count = 0;
  std::size_t room = 0;
  std::size_t released = 0;
};

}  // namespace Lumivane::Visibility
