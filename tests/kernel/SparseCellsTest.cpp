#include "kernel/SparseCells.h"

#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Cell;
using Kernel::SparseCells;

std::vector<std::uint32_t> columnsOf(const SparseCells& cells, std::size_t i) {
  std::vector<std::uint32_t> columns;
  for (const SparseCells::Entry& entry : cells.row(i)) columns.push_back(entry.column);
  return columns;
}

TEST(SparseCells, RowsAreMadeOfZeros) {
  SparseCells cells;
  cells.addRows(2);
  cells.addRows(1);
  EXPECT_EQ(3U, cells.rowCount());
  EXPECT_EQ(0, cells.at(2, 0));
  EXPECT_TRUE(columnsOf(cells, 2).empty());
}

TEST(SparseCells, CellThatWasNotPutIsApartBelowTheDiagonalAndZeroOnItAndAbove) {
  SparseCells cells;
  cells.addRows(4);
  cells.endRow();
  cells.endRow();
  cells.put(1, Cell::FirstInFront);
  cells.endRow();
  EXPECT_EQ(Cell::Apart, cells.at(1, 0));
  EXPECT_EQ(Cell::Apart, cells.at(2, 0));
  EXPECT_EQ(Cell::FirstInFront, cells.at(2, 1));
  EXPECT_EQ(0, cells.at(2, 2));
  EXPECT_EQ(0, cells.at(2, 3));
  EXPECT_EQ(0, cells.at(3, 0));  // its row is not filled
}

TEST(SparseCells, WhatIsApartTakesNoEntryAndWhatIsUndecidedDoes) {
  SparseCells cells;
  cells.addRows(3);
  cells.endRow();
  cells.endRow();
  cells.put(0, Cell::Apart);
  cells.put(1, Cell::Undecided);
  cells.endRow();
  EXPECT_EQ(std::vector<std::uint32_t>{1}, columnsOf(cells, 2));
  EXPECT_EQ(Cell::Apart, cells.at(2, 0));
  EXPECT_EQ(Cell::Undecided, cells.at(2, 1));
}

TEST(SparseCells, RestartForgetsTheCellsAndKeepsTheRows) {
  SparseCells cells;
  cells.addRows(2);
  cells.endRow();
  cells.put(0, Cell::FirstHidden);
  cells.endRow();
  cells.restart();
  EXPECT_EQ(2U, cells.rowCount());
  EXPECT_EQ(0, cells.at(1, 0));
  EXPECT_TRUE(columnsOf(cells, 1).empty());
}

}  // namespace
}  // namespace Lumivane::Test
