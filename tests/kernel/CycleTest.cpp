#include "kernel/Cycle.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Arrow;
using Nodes = std::vector<std::uint32_t>;

// As a depth sort asks: of what the topological order leaves.
Nodes cycleNodes(std::size_t nodeCount, const std::vector<Arrow>& arrows) {
  return Kernel::nodesOfCycles(nodeCount, Kernel::topologicalOrder(nodeCount, arrows).remaining);
}

TEST(NodesOfCycles, AreNoneWhereAnOrderSuitsAll) {
  EXPECT_EQ(Nodes(), cycleNodes(0, {}));
  EXPECT_EQ(Nodes(), cycleNodes(4, {{0, 1}, {1, 2}, {0, 2}}));
}

TEST(NodesOfCycles, AreTheNodesOfACycleWithoutThoseBeforeAndBehindIt) {
  EXPECT_EQ(Nodes({2, 3, 5}), cycleNodes(7, {{0, 2}, {2, 5}, {5, 3}, {3, 2}, {3, 4}, {4, 6}}));
}

TEST(NodesOfCycles, HoldBothCyclesAndThePathBetweenThem) {
  EXPECT_EQ(Nodes({0, 1, 2, 3, 4}),
            cycleNodes(6, {{0, 1}, {1, 0}, {1, 2}, {2, 3}, {3, 4}, {4, 3}, {4, 5}}));
}

TEST(NodesOfCycles, CountAnEdgeThatComesTwiceTwice) {
  EXPECT_EQ(Nodes({0, 1}), cycleNodes(3, {{0, 1}, {0, 1}, {1, 0}, {1, 2}, {1, 2}}));
}

}  // namespace
}  // namespace Lumivane::Test
