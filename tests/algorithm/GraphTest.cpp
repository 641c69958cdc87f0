#include "plain/DepthSort.h"
#include "support/Capture.h"
#include "support/DepthSortProbe.h"
#include "support/Thrown.h"
#include "support/Vectors.h"
#include "support/WorkingFolder.h"

#include <lumivane/algorithm/Edge.h>
#include <lumivane/algorithm/Graph.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::Edge;
using Algorithm::Graph;
using Names = std::vector<std::string>;
using Rows = std::vector<Names>;

const std::string CyclicMessage = "\nError: Graph is cyclic\n\n";
const std::string ReportHead =
    "LOGFILE:\nTopological sorting of a graph\n\nerror: graph is cyclic\n\n";
const std::string ReportName = "log_sort.txt";

Rows rowsOf(const Graph& graph) {
  Rows rows;
  for (const Edge& edge : edgesOf(graph)) rows.push_back({edge.getStart(), edge.getEnd()});
  return rows;
}

Names sortedNodes(Graph& graph) {
  const std::unique_ptr<Names> nodes(graph.topologicalSort());
  return *nodes;
}

// The nodes of a graph that has no cycle, with the check that the sort is silent.
Names sortedSilently(const Rows& rows) {
  const WorkingFolder folder;
  Graph graph(rows);
  Names nodes;
  EXPECT_EQ("", capturedStdout([&] { nodes = sortedNodes(graph); }));
  EXPECT_TRUE(folder.isEmpty());
  EXPECT_TRUE(edgesOf(graph).empty());
  return nodes;
}

struct Cyclic {
  Names nodes;
  Rows left;
  std::string report;
};

Cyclic sortedCyclic(const Rows& rows) {
  const WorkingFolder folder;
  Graph graph(rows);
  Cyclic result;
  EXPECT_EQ(CyclicMessage, capturedStdout([&] { result.nodes = sortedNodes(graph); }));
  result.left = rowsOf(graph);
  result.report = folder.read(ReportName);
  return result;
}

const VectorTests GraphSortVectors("graphSort", [](const VectorCase& c) {
  const WorkingFolder folder;
  checkedRun(c, [&] {
    Graph graph(c.in.at("rows").get<Rows>());
    const Names sorted = sortedNodes(graph);  // may throw: then there is no `out` to look at
    EXPECT_EQ(c.out.at(0).get<Names>(), sorted);
    EXPECT_EQ(c.out.at(1).get<Rows>(), rowsOf(graph));
  });
  if (!c.throws.empty()) return;
  EXPECT_EQ(c.out.at(2).is_null(), folder.isEmpty());
  if (!c.out.at(2).is_null()) {
    EXPECT_EQ(c.out.at(2).get<std::string>(), folder.read(ReportName));
  }
});

TEST(Edge, DefaultRunsBetweenEmptyNames) {
  const Edge edge;
  EXPECT_EQ("", edge.getStart());
  EXPECT_EQ("", edge.getEnd());
}

TEST(Edge, CopyHasNamesOfItsOwn) {
  Edge edge;
  edge.setStart("a");
  edge.setEnd("b");
  Edge copy(edge);
  copy.setStart("c");
  EXPECT_EQ("a", edge.getStart());
  EXPECT_EQ("c", copy.getStart());
  EXPECT_EQ("b", copy.getEnd());
}

TEST(Graph, WithoutEdgesSortsToAnEmptyListInSilence) {
  EXPECT_EQ(Names{}, sortedSilently({}));
  Graph graph;
  EXPECT_EQ(Names{}, sortedNodes(graph));
}

TEST(Graph, RowsGiveEdgesInOrderAndFurtherElementsAreIgnored) {
  const Graph graph(Rows{{"2", "1", "9"}, {"1", "3"}});
  EXPECT_EQ((Rows{{"2", "1"}, {"1", "3"}}), rowsOf(graph));
}

TEST(Graph, RowOfOneElementThrows) {
  EXPECT_EQ("invalid vector subscript", thrownText<std::out_of_range>([] {
              Graph(Rows{{"1", "2"}, {"3"}});
            }));
}

TEST(Graph, NodeWithTwoPredecessorsComesAfterBoth) {
  EXPECT_EQ((Names{"1", "3", "2"}), sortedSilently({{"1", "2"}, {"3", "2"}}));
}

TEST(Graph, FreeNodesKeepTheOrderInWhichTheyBecameFree) {
  EXPECT_EQ((Names{"5", "2", "1", "3"}),
            sortedSilently({{"5", "2"}, {"5", "1"}, {"2", "3"}, {"1", "3"}}));
}

TEST(Graph, DoubledEdgeFreesItsEndOnce) {
  EXPECT_EQ((Names{"1", "2"}), sortedSilently({{"1", "2"}, {"1", "2"}}));
}

TEST(Graph, NamesOfAnAcyclicGraphNeedNotBeNumbers) {
  EXPECT_EQ((Names{"", "roof", "wall"}), sortedSilently({{"", "wall"}, {"roof", "wall"}}));
}

TEST(Graph, SelfLoopNeverBecomesFree) {
  const Cyclic result = sortedCyclic({{"4", "4"}});
  EXPECT_EQ(Names{}, result.nodes);
  EXPECT_EQ((Rows{{"4", "4"}}), result.left);
  EXPECT_EQ(ReportHead + "m = \n\nedges with unsorted nodes:\n4 -> 4\n", result.report);
}

TEST(Graph, CycleLeavesItsEdgesAndNamesTheLastEndReached) {
  const Cyclic result = sortedCyclic({{"1", "2"}, {"2", "3"}, {"3", "2"}});
  EXPECT_EQ(Names{"1"}, result.nodes);
  EXPECT_EQ(ReportHead + "m = 2\n\nedges with unsorted nodes:\n2 -> 3\n3 -> 2\n", result.report);
}

TEST(Graph, EdgesBehindACycleRemainToo) {
  const Cyclic result = sortedCyclic({{"3", "4"}, {"2", "1"}, {"1", "2"}, {"2", "3"}, {"8", "9"}});
  EXPECT_EQ((Names{"8", "9"}), result.nodes);
  EXPECT_EQ((Rows{{"1", "2"}, {"2", "1"}, {"2", "3"}, {"3", "4"}}), result.left);
}

TEST(Graph, RemainingEdgesAreSortedByNumberNotByText) {
  const Cyclic result =
      sortedCyclic({{"10", "9"}, {"9", "10"}, {"9", "9"}, {"-1", "10"}, {"10", "-1"}});
  EXPECT_EQ((Rows{{"-1", "10"}, {"9", "9"}, {"9", "10"}, {"10", "-1"}, {"10", "9"}}), result.left);
}

TEST(Graph, ReportReplacesWhatTheFileHeld) {
  const WorkingFolder folder;
  std::ofstream(folder.file(ReportName)) << std::string(1000, 'x');
  Graph graph(Rows{{"4", "4"}});
  capturedStdout([&] { sortedNodes(graph); });
  EXPECT_EQ(ReportHead + "m = \n\nedges with unsorted nodes:\n4 -> 4\n", folder.read(ReportName));
}

TEST(Graph, ReportThatCannotBeWrittenIsPassedOver) {
  const WorkingFolder folder;
  std::filesystem::create_directory(folder.file(ReportName));
  Graph graph(Rows{{"1", "4"}, {"4", "4"}});
  Names nodes;
  EXPECT_EQ(CyclicMessage, capturedStdout([&] { nodes = sortedNodes(graph); }));
  EXPECT_EQ(Names{"1"}, nodes);
}

TEST(Graph, SecondSortOfAnEmptiedGraphIsEmpty) {
  const WorkingFolder folder;
  Graph graph(Rows{{"1", "2"}});
  sortedNodes(graph);
  EXPECT_EQ(Names{}, sortedNodes(graph));
}

TEST(Graph, CyclicNameThatIsNoNumberThrows) {
  const WorkingFolder folder;
  capturedStdout([] {
    EXPECT_EQ("invalid stoi argument", thrownText<std::invalid_argument>([] {
                Graph graph(Rows{{"a", "b"}, {"b", "a"}});
                sortedNodes(graph);
              }));
  });
}

TEST(Graph, CyclicNameBeyondIntThrows) {
  const WorkingFolder folder;
  capturedStdout([] {
    EXPECT_EQ("stoi argument out of range", thrownText<std::out_of_range>([] {
                Graph graph(Rows{{"2147483648", "1"}, {"1", "2147483648"}});
                sortedNodes(graph);
              }));
  });
}

TEST(Graph, SingleCyclicEdgeIsNeverCompared) {
  const Cyclic result = sortedCyclic({{"x", "x"}});
  EXPECT_EQ((Rows{{"x", "x"}}), result.left);
}

TEST(Graph, CopyHasEdgesOfItsOwn) {
  const WorkingFolder folder;
  Graph graph(Rows{{"1", "2"}});
  Graph copy(graph);
  sortedNodes(graph);
  EXPECT_EQ((Names{"1", "2"}), sortedNodes(copy));
}

TEST(Graph, FreeStartsAreAppendedOnceInOrderOfAppearance) {
  Graph graph(Rows{{"3", "2"}, {"1", "2"}, {"3", "4"}, {"2", "5"}});
  Names list{"7", "1"};
  graph.getNodesWithNoIncomingEdges(&list);
  EXPECT_EQ((Names{"7", "1", "3"}), list);
  graph.getNodesWithNoIncomingEdges(nullptr);
}

TEST(Graph, NodeHasNoIncomingEdgesUnlessOneEndsThere) {
  Graph graph(Rows{{"1", "2"}});
  EXPECT_TRUE(graph.noIncomingEdges("1"));
  EXPECT_FALSE(graph.noIncomingEdges("2"));
  EXPECT_TRUE(graph.noIncomingEdges("02"));
  EXPECT_TRUE(Graph().noIncomingEdges("1"));
}

TEST(Graph, FirstElementIsACopy) {
  Graph graph;
  Names list{"a", "b"};
  EXPECT_EQ("a", graph.getFirstElement(&list));
  EXPECT_EQ((Names{"a", "b"}), list);
}

TEST(Graph, FirstElementOfNothingThrows) {
  Graph graph;
  Names empty;
  EXPECT_EQ("invalid vector subscript",
            thrownText<std::out_of_range>([&] { graph.getFirstElement(&empty); }));
  EXPECT_EQ("invalid vector subscript",
            thrownText<std::out_of_range>([&] { graph.getFirstElement(nullptr); }));
}

TEST(GraphProperty, OrderIsThatOfThePlainScan) {
  const WorkingFolder folder;
  std::mt19937_64 random(20240702);
  for (int i = 0; i < 1500; ++i) {
    const std::uint64_t nodes = 1 + random() % 20;
    const std::uint64_t count = random() % 40;
    const bool acyclic = random() % 2 == 0;
    Rows rows;
    for (std::uint64_t k = 0; k < count; ++k) {
      std::uint64_t start = random() % nodes;
      std::uint64_t end = random() % nodes;
      if (acyclic && start == end) continue;
      if (acyclic && start * 7 % 23 > end * 7 % 23) std::swap(start, end);
      rows.push_back({std::to_string(start), std::to_string(end)});
    }
    const Plain::Sorted expected = Plain::sortGraph(rows);
    Graph graph(rows);
    Names nodesFound;
    const std::string printed = capturedStdout([&] { nodesFound = sortedNodes(graph); });
    ASSERT_EQ(expected.nodes, nodesFound) << i;
    ASSERT_EQ(expected.edges.empty() ? "" : CyclicMessage, printed) << i;
    if (acyclic) {
      ASSERT_TRUE(expected.edges.empty()) << i;
    }
    Rows left = expected.edges;
    std::sort(left.begin(), left.end(), [](const Names& a, const Names& b) {
      return std::make_pair(std::stoi(a[0]), std::stoi(a[1])) <
             std::make_pair(std::stoi(b[0]), std::stoi(b[1]));
    });
    ASSERT_EQ(left, rowsOf(graph)) << i;
    if (left.empty()) continue;
    const std::string report = folder.read(ReportName);
    ASSERT_EQ(0U, report.find(ReportHead + "m = " + expected.m + "\n\n")) << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
