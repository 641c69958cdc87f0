#include "visibility/PageMemory.h"

#include <cstddef>
#include <cstdint>
#include <new>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

TEST(PageMemory, ListsOfAllSizesHoldWhatIsPutIntoThem) {
  for (const std::size_t count :
       {std::size_t{1}, PagedBytes / 8 - 1, PagedBytes / 8, PagedBytes / 8 + 1, PagedBytes / 4 - 1,
        PagedBytes / 4, PagedBytes / 4 + 1, PagedBytes + 12345}) {
    LargeVector<std::uint64_t> list(count, 7);
    list.back() = count;
    LargeVector<std::uint64_t> copy = list;
    copy.push_back(9);
    EXPECT_EQ(copy.size(), count + 1);
    EXPECT_EQ(copy.front(), count == 1 ? 1u : 7u);
    EXPECT_EQ(copy[count - 1], count);
  }
}

TEST(PageMemory, LargePiecesBeginAtABorderOfHugePages) {
  constexpr std::size_t HugePage = std::size_t{1} << 21;
  for (const std::size_t bytes : {HugePage, HugePage + 1, 3 * HugePage - 5}) {
    void* const memory = takeMemory(bytes);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % HugePage, 0u);
    static_cast<char*>(memory)[bytes - 1] = 1;
    giveMemoryBack(memory, bytes);
  }
}

TEST(PageMemory, WhatIsTooMuchIsAnError) {
  LargeVector<double> list;
  EXPECT_THROW(list.reserve(std::size_t{1} << 58), std::bad_alloc);
  trimHeap();  // has no effect that could be seen
}

}  // namespace
}  // namespace Lumivane::Visibility
