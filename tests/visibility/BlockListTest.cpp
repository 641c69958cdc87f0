#include "visibility/BlockList.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

struct Item {
  std::int64_t first;
  std::int64_t second;
};
using Items = BlockList<Item>;
constexpr std::size_t Several = 2 * Items::BlockSize + 17;

Items filled(std::size_t count) {
  Items items;
  for (std::size_t i = 0; i < count; ++i)
    items.push_back({static_cast<std::int64_t>(i), -static_cast<std::int64_t>(i)});
  return items;
}

std::size_t countWrong(const Items& items) {
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < items.size(); ++i)
    if (items[i].first != static_cast<std::int64_t>(i) || items[i].second != -items[i].first)
      ++wrong;
  return wrong;
}

TEST(BlockList, BlocksAreSoLargeThatTheyAreGivenBackToTheMachine) {
  EXPECT_GE(Items::BlockSize * sizeof(Item), PagedBytes);
  EXPECT_LT(Items::BlockSize * sizeof(Item), 2 * PagedBytes);
  EXPECT_GE(BlockList<std::int32_t>::BlockSize * sizeof(std::int32_t), PagedBytes);
}

TEST(BlockList, HoldsWhatIsPutIntoItOverManyBlocks) {
  const Items items = filled(Several);
  EXPECT_EQ(items.size(), Several);
  EXPECT_EQ(countWrong(items), 0u);
}

TEST(BlockList, StaysInItsPlaceOnceTheFirstBlockIsFull) {
  Items items = filled(Items::BlockSize);
  const Item* const first = &items[0];
  for (std::size_t i = Items::BlockSize; i < Several; ++i)
    items.push_back({static_cast<std::int64_t>(i), -static_cast<std::int64_t>(i)});
  EXPECT_EQ(&items[0], first);
  EXPECT_EQ(countWrong(items), 0u);
}

TEST(BlockList, GrowsOnAfterItsEndIsForgotten) {
  for (const std::size_t kept : {std::size_t{0}, std::size_t{5}, Items::BlockSize - 1,
                                 Items::BlockSize, Items::BlockSize + 1, Several}) {
    Items items = filled(Several);
    items.truncate(kept);
    EXPECT_EQ(items.size(), kept);
    for (std::size_t i = kept; i < Several; ++i)
      items.push_back({static_cast<std::int64_t>(i), -static_cast<std::int64_t>(i)});
    EXPECT_EQ(countWrong(items), 0u) << kept;
  }
}

TEST(BlockList, KeepsTheRestWhenItsFirstBlocksAreReleased) {
  Items items = filled(Several);
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    items.releaseBefore(i);
    if (items[i].first != static_cast<std::int64_t>(i)) ++wrong;
  }
  EXPECT_EQ(wrong, 0u);
  items = Items();
  EXPECT_TRUE(items.empty());
}

TEST(BlockList, IsEmptyAfterItIsMoved) {
  Items items = filled(Several);
  Items others = std::move(items);
  EXPECT_EQ(others.size(), Several);
  EXPECT_EQ(countWrong(others), 0u);
  EXPECT_EQ(items.size(), 0u);  // NOLINT(bugprone-use-after-move): what is promised
  items.push_back({0, 0});
  EXPECT_EQ(items.size(), 1u);
}

}  // namespace
}  // namespace Lumivane::Visibility
