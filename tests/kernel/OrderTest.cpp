#include "kernel/Order.h"
#include "plain/DepthSort.h"
#include "support/Vectors.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Plain::Names;
using Rows = std::vector<std::vector<int>>;

struct Ordered {
  Names drawn;
  Names hidden;
  std::vector<Names> edges;
};

Kernel::SparseCells sparse(const Rows& rows) {
  Kernel::SparseCells cells;
  cells.addRows(rows.size());
  for (const std::vector<int>& row : rows) {
    for (std::size_t j = 0; j < row.size(); ++j) cells.put(j, row[j]);
    cells.endRow();
  }
  return cells;
}

// The steps from the cells to the order, as the executor takes them, with names at the end.
Ordered orderOf(const Names& ids, const Rows& rows) {
  const Kernel::SparseCells cells = sparse(rows);
  const std::vector<std::uint32_t> hidden = Kernel::hiddenFaces(cells);
  const std::vector<char> isHidden = Kernel::flagsOf(hidden, ids.size());
  const std::vector<Kernel::Arrow> arrows = Kernel::drawnBefore(cells, isHidden);
  const Kernel::TopologicalOrder sorted = Kernel::topologicalOrder(ids.size(), arrows);
  Ordered result;
  for (const std::uint32_t face : hidden) result.hidden.push_back(ids[face]);
  for (const Kernel::Arrow& arrow : arrows)
    result.edges.push_back({ids[arrow.first], ids[arrow.second]});
  for (const std::uint32_t face : Kernel::drawingOrder(sorted.nodes, isHidden))
    result.drawn.push_back(ids[face]);
  return result;
}

const VectorTests ObjectsOrderVectors("objectsOrder", [](const VectorCase& c) {
  // The message and the report are the graph's: they are tested with it.
  const Ordered found = orderOf(c.in.at("ids").get<Names>(), c.in.at("rows").get<Rows>());
  EXPECT_EQ(c.out.at(0).get<Names>(), found.drawn);
  EXPECT_EQ(c.out.at(1).get<Names>(), found.hidden);
  EXPECT_EQ(c.out.at(2).get<std::vector<Names>>(), found.edges);
});

TEST(ObjectsOrder, NothingGivesNothing) { EXPECT_EQ(Names{}, orderOf({}, {}).drawn); }

TEST(ObjectsOrder, UnrelatedKeepTheOrderOfTheList) {
  const Ordered found = orderOf({"a", "b", "c"}, {{}, {3}, {3, 3}});
  EXPECT_EQ((Names{"a", "b", "c"}), found.drawn);
  EXPECT_TRUE(found.edges.empty());
}

TEST(ObjectsOrder, FrontIsDrawnLast) {
  EXPECT_EQ((Names{"a", "b"}), orderOf({"a", "b"}, {{}, {1}}).drawn);
  EXPECT_EQ((Names{"b", "a"}), orderOf({"a", "b"}, {{}, {2}}).drawn);
}

TEST(ObjectsOrder, UnrelatedComeAfterTheRelated) {
  EXPECT_EQ((Names{"b", "c", "a"}), orderOf({"a", "b", "c"}, {{}, {3}, {3, 1}}).drawn);
}

TEST(ObjectsOrder, HiddenIsGoneAndHasNoEdge) {
  const Ordered found = orderOf({"a", "b"}, {{}, {4}});
  EXPECT_EQ(Names{"b"}, found.drawn);
  EXPECT_EQ(Names{"a"}, found.hidden);
  EXPECT_TRUE(found.edges.empty());
  EXPECT_EQ(Names{"a"}, orderOf({"a", "b"}, {{}, {5}}).drawn);
}

TEST(ObjectsOrder, HiddenHasNoEdgeToOthersEither) {
  const Ordered found = orderOf({"a", "b", "c"}, {{}, {4}, {1, 3}});
  EXPECT_EQ((Names{"b", "c"}), found.drawn);
  EXPECT_TRUE(found.edges.empty());
}

TEST(ObjectsOrder, CycleIsDrawnInTheOrderOfTheList) {
  const Ordered found = orderOf({"a", "b", "c"}, {{}, {1}, {2, 1}});
  EXPECT_EQ(3U, found.edges.size());
  EXPECT_EQ((Names{"a", "b", "c"}), found.drawn);
}

TEST(ObjectsOrderProperty, AgreesWithThePlainSteps) {
  std::mt19937_64 random(20240741);
  for (int i = 0; i < 3000; ++i) {
    const std::size_t count = random() % 12;
    const std::uint64_t hides = random() % 2 == 0 ? 6 : 4;  // with or without hidden faces
    Names ids;
    Rows rows;
    for (std::size_t k = 0; k < count; ++k) {
      ids.push_back(std::to_string(100 + k * 3));
      std::vector<int> row;
      for (std::size_t j = 0; j < k; ++j)
        row.push_back(random() % 3 != 0 ? 3 : static_cast<int>(random() % hides));
      rows.push_back(row);
    }
    const Plain::Order expected = Plain::objectsOrder(ids, rows);
    const Ordered found = orderOf(ids, rows);
    ASSERT_EQ(expected.drawn, found.drawn) << i;
    ASSERT_EQ(expected.hidden, found.hidden) << i;
    ASSERT_EQ(expected.edges, found.edges) << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
