#include "base/Indices.h"
#include "support/Thrown.h"

#include <climits>
#include <memory>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using Test::thrownText;
using Numbers = std::vector<int>;

std::string indexError(int index, std::size_t count) {
  return thrownText<std::out_of_range>([&] { checkedIndex(index, count); });
}

std::string insertionError(int index, std::size_t count) {
  return thrownText<std::out_of_range>([&] { checkedInsertion(index, count); });
}

TEST(LiteralFrom, PositionZeroGivesTheWholeLiteral) { EXPECT_EQ("abc", literalFrom("abc", 0)); }

TEST(LiteralFrom, PositionInsideGivesTheTail) { EXPECT_EQ("c", literalFrom("abc", 2)); }

TEST(LiteralFrom, PositionsAtAndBeyondTheEndGiveAnEmptyText) {
  EXPECT_EQ("", literalFrom("abc", 3));
  EXPECT_EQ("", literalFrom("abc", 4));
  EXPECT_EQ("", literalFrom("abc", INT_MAX));
}

TEST(LiteralFrom, NegativePositionsGiveAnEmptyText) {
  EXPECT_EQ("", literalFrom("abc", -1));
  EXPECT_EQ("", literalFrom("abc", INT_MIN));
}

TEST(CheckedIndex, PassesExactlyThePositionsOfElements) {
  EXPECT_EQ(0u, checkedIndex(0, 2));
  EXPECT_EQ(1u, checkedIndex(1, 2));
  for (const int index : {2, -1, INT_MIN, INT_MAX})
    EXPECT_THROW(checkedIndex(index, 2), std::out_of_range) << index;
}

TEST(CheckedIndex, TextIsTheLiteralAdvancedByTheIndex) {
  EXPECT_EQ("index = ", indexError(0, 0));
  EXPECT_EQ("dex = ", indexError(2, 2));
  EXPECT_EQ("", indexError(8, 2));
  EXPECT_EQ("", indexError(9, 2));
  EXPECT_EQ("", indexError(-1, 2));
}

TEST(CheckedInsertion, PassesTheCountToo) {
  EXPECT_EQ(0u, checkedInsertion(0, 0));
  EXPECT_EQ(2u, checkedInsertion(2, 2));
  EXPECT_EQ("ex = ", insertionError(3, 2));
  EXPECT_EQ("", insertionError(-1, 2));
}

TEST(NumberLists, ReadInsertAndEraseByPosition) {
  Numbers numbers{4, 6};
  Numbers* list = &numbers;
  appendItem(list, 7);
  insertItem(list, 1, 5);
  insertItem(list, 4, 8);
  EXPECT_EQ((Numbers{4, 5, 6, 7, 8}), numbers);
  EXPECT_EQ(5, itemAt(list, 1));
  eraseAt(list, 0);
  EXPECT_EQ((Numbers{5, 6, 7, 8}), numbers);
}

TEST(NumberLists, FailuresChangeNothing) {
  Numbers numbers{4, 6};
  Numbers* list = &numbers;
  EXPECT_THROW(insertItem(list, 3, 1), std::out_of_range);
  EXPECT_THROW(insertItem(list, -1, 1), std::out_of_range);
  EXPECT_THROW(eraseAt(list, 2), std::out_of_range);
  EXPECT_THROW(eraseAt(list, -1), std::out_of_range);
  EXPECT_THROW(itemAt(list, 2), std::out_of_range);
  EXPECT_EQ((Numbers{4, 6}), numbers);
}

TEST(NumberLists, EraseItemTakesEveryOccurrence) {
  Numbers numbers{7, 1, 7};
  eraseItem(&numbers, 7);
  EXPECT_EQ(Numbers{1}, numbers);
  eraseItem(&numbers, 9);
  EXPECT_EQ(Numbers{1}, numbers);
}

TEST(NumberLists, NullVectorCountsAsEmpty) {
  Numbers* none = nullptr;
  eraseItem(none, 1);
  EXPECT_THROW(itemAt(none, 0), std::out_of_range);
  EXPECT_THROW(eraseAt(none, 0), std::out_of_range);
  EXPECT_THROW(insertItem(none, 1, 5), std::out_of_range);
  EXPECT_EQ(nullptr, none);
}

TEST(NumberLists, AddingToANullVectorMakesOne) {
  Numbers* appended = nullptr;
  appendItem(appended, 5);
  const std::unique_ptr<Numbers> first(appended);
  EXPECT_EQ(Numbers{5}, *first);

  Numbers* inserted = nullptr;
  insertItem(inserted, 0, 6);
  const std::unique_ptr<Numbers> second(inserted);
  EXPECT_EQ(Numbers{6}, *second);
}

}  // namespace
}  // namespace Lumivane::Base
