// The depth sort against its plain form, on random scenes: every cell, every message, the order,
// the report of a cycle.

#include "kernel/Classify.h"
#include "plain/DepthSort.h"
#include "support/Capture.h"
#include "support/DepthSortProbe.h"
#include "support/SortStage.h"
#include "support/WorkingFolder.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Plain::Face;
using Plain::Names;
using Piece = SortStage::Piece;
using Random = std::mt19937_64;

const std::string CycleMessage = "\nError: Graph is cyclic\n\n";

double anyIn(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// An upright polygon, convex or not, that faces an eye at the origin and leans a little, with its
// central projection.
Piece anyFreePiece(Random& random) {
  const double distance = anyIn(random, 2, 9);
  const double lean = anyIn(random, -0.4, 0.4);
  const double centreY = anyIn(random, -2, 2);
  const double centreZ = anyIn(random, -2, 2);
  const std::size_t corners = 3 + random() % 20;
  Piece piece;
  for (std::size_t k = 0; k < corners; ++k) {
    const double angle = 6.283185307179586 * static_cast<double>(k) / static_cast<double>(corners);
    const double radius = random() % 4 == 0 ? 0.4 : 1.0;
    const double y = centreY + radius * std::cos(angle);
    const double z = centreZ + radius * std::sin(angle);
    const double x = distance + lean * (y - centreY);
    piece.source.push_back({x, y, z});
    piece.projected.push_back({-y / x, z / x});
  }
  return piece;
}

// A rectangle on a lattice, so that corners, edges and planes are shared, and some fall together.
Piece anyLatticePiece(Random& random) {
  const auto lattice = [&random](std::uint64_t count) {
    return static_cast<double>(random() % count);
  };
  const double x = lattice(5);
  const double y = lattice(5);
  const double width = lattice(4);
  const double height = 1 + lattice(3);
  Piece piece;
  piece.projected = {{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}};
  for (int k = 0; k < 4; ++k) piece.source.push_back({lattice(3), lattice(3), lattice(3)});
  return piece;
}

// Mostly small rectangles behind large ones, some nested, some across others, so that most are
// hidden and hidden ones hide others. Some look the other way, some have no plane.
Piece anyPieceOfManyHidden(Random& random) {
  if (random() % 6 == 0) return anyLatticePiece(random);
  const double distance = static_cast<double>(1 + random() % 6);
  const bool isLarge = random() % 4 == 0;
  const double half = isLarge ? distance * 2.0 : distance * anyIn(random, 0.05, 0.4);
  const double centreY = isLarge ? distance : distance * anyIn(random, 0.0, 2.0);
  const double centreZ = isLarge ? distance : distance * anyIn(random, 0.0, 2.0);
  const double lean = random() % 2 == 0 ? 0.0 : anyIn(random, -0.3, 0.3);
  Piece piece;
  for (const auto& [y, z] : {std::pair(-half, -half), std::pair(half, -half), std::pair(half, half),
                             std::pair(-half, half)})
    piece.source.push_back({distance + lean * y, centreY + y, centreZ + z});
  if (random() % 8 == 0) std::reverse(piece.source.begin(), piece.source.end());
  for (const auto& p : piece.source) piece.projected.push_back({p[1] / p[0], p[2] / p[0]});
  if (random() % 30 == 0) piece.source[2] = piece.source[1];
  return piece;
}

using AnyPiece = Piece (*)(Random&);

// The faces of a stage in their order.
std::vector<Face> fill(SortStage& stage, Random& random, AnyPiece anyPiece) {
  std::vector<Face> faces;
  const std::uint64_t count = random() % 40;
  stage.addObject("0");
  for (std::uint64_t i = 0; i < count; ++i) {
    if (random() % 5 == 0) stage.addObject(std::to_string(i + 1));
    std::vector<Piece> pieces(random() % 4 == 0 ? 1 + random() % 3 : 1);
    Face face;
    for (Piece& piece : pieces) {
      piece = anyPiece(random);
      face.projected.push_back(piece.projected);
      face.sources.push_back(piece.source);
    }
    stage.addFace(pieces);
    faces.push_back(face);
  }
  return faces;
}

struct Expected {
  DepthSortProbe::Matrix cells;
  std::string printed;
};

Expected plainCells(const std::vector<Face>& faces) {
  Expected expected;
  expected.cells.assign(faces.size(), std::vector<int>(faces.size(), 0));
  for (std::size_t i = 0; i < faces.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      expected.cells[i][j] = Plain::cell(faces[i], faces[j], expected.printed);
  return expected;
}

Names idsOf(const DepthSortProbe& probe) {
  Names ids;
  for (const Algorithm::ObjectData* object : *probe.objects()) ids.push_back(object->getId());
  return ids;
}

// What the report holds behind its heading.
std::string plainReport(const Plain::Sorted& sorted) {
  std::vector<Names> edges = sorted.edges;
  std::sort(edges.begin(), edges.end(), [](const Names& a, const Names& b) {
    const int startOfA = std::stoi(a[0]);
    const int startOfB = std::stoi(b[0]);
    return startOfA != startOfB ? startOfA < startOfB : std::stoi(a[1]) < std::stoi(b[1]);
  });
  std::string text = "m = " + sorted.m + "\n\nedges with unsorted nodes:\n";
  for (const Names& edge : edges) text += edge[0] + " -> " + edge[1] + "\n";
  return text;
}

void expectPlainOrder(SortStage& stage, DepthSortProbe& probe, const WorkingFolder& folder,
                      const DepthSortProbe::Matrix& cells, int& cycles) {
  const Plain::Order order = Plain::objectsOrder(idsOf(probe), cells);
  const Plain::Sorted sorted = Plain::sortGraph(order.edges);
  const std::string printed = capturedStdout([&] { probe.calculate(); });
  EXPECT_EQ(order.drawn, idsOf(probe));
  EXPECT_EQ(sorted.edges.empty() ? "" : CycleMessage, printed);
  std::size_t regions = 0;
  for (std::size_t k = 0; k < order.drawn.size(); ++k) {
    EXPECT_EQ(static_cast<int>(k) + 1, (*probe.objects())[k]->getDepthIndex());
    regions += (*probe.objects())[k]->getProjectedPolygons()->size();
  }
  EXPECT_EQ(regions, stage.regions().size());
  if (sorted.edges.empty()) return;
  ++cycles;
  const std::string report = folder.read("log_sort.txt");
  EXPECT_EQ(plainReport(sorted), report.substr(report.find("m = ")));
}

// Gives how many scenes had a cycle.
int expectPlainSorts(std::uint64_t seed, int scenes, AnyPiece anyPiece) {
  const WorkingFolder folder;
  Random random(seed);
  int cycles = 0;
  int counts[6] = {};
  for (int i = 0; i < scenes && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", scene " + std::to_string(i));
    SortStage stage;
    const Expected expected = plainCells(fill(stage, random, anyPiece));
    Algorithm::DepthSortAlgorithmExecutor executor;
    executor.setScene(&stage.scene);
    executor.setShot(&stage.shot);
    DepthSortProbe probe(executor);
    probe.fill();
    EXPECT_EQ(expected.printed, capturedStdout([&] { probe.classify(); }));
    EXPECT_EQ(expected.cells, probe.matrix());
    for (std::size_t row = 0; row < expected.cells.size(); ++row)
      for (std::size_t j = 0; j < row; ++j) ++counts[expected.cells[row][j]];
    expectPlainOrder(stage, probe, folder, expected.cells, cycles);
  }
  for (const int count : counts) EXPECT_GT(count, 20);
  return cycles;
}

// What the next object of a sort will be called.
int nextId() { return std::stoi(Algorithm::ObjectData().getId()) + 1; }

// The brush numbers of the regions of faces in their order.
std::vector<int> regionsOf(const std::vector<Face>& faces, const Names& drawn, int firstId) {
  std::vector<int> firstOf{101};
  for (const Face& face : faces)
    firstOf.push_back(firstOf.back() + static_cast<int>(face.projected.size()));
  std::vector<int> regions;
  for (const std::string& id : drawn) {
    const auto face = static_cast<std::size_t>(std::stoi(id) - firstId);
    for (int number = firstOf[face]; number < firstOf[face + 1]; ++number)
      regions.push_back(number);
  }
  return regions;
}

// A whole sort, which leaves out cells that decide nothing: what it prints, draws and reports.
// Gives how many faces are hidden and whether there was a cycle.
std::pair<std::size_t, bool> expectPlainRun(SortStage& stage, const std::vector<Face>& faces,
                                            const WorkingFolder& folder) {
  const Expected expected = plainCells(faces);
  Algorithm::DepthSortAlgorithmExecutor executor;
  executor.setScene(&stage.scene);
  executor.setShot(&stage.shot);
  const int firstId = nextId();
  Names ids;
  for (std::size_t k = 0; k < faces.size(); ++k)
    ids.push_back(std::to_string(firstId + static_cast<int>(k)));
  const Plain::Order order = Plain::objectsOrder(ids, expected.cells);
  const bool isCyclic = !order.unsorted.empty();

  const std::string printed = capturedStdout([&] { executor.run(); });
  EXPECT_EQ("Calculating objects order\n\n" + expected.printed + (isCyclic ? CycleMessage : ""),
            printed);
  EXPECT_EQ(regionsOf(faces, order.drawn, firstId), stage.regions());
  if (isCyclic) {
    const std::string report = folder.read("log_sort.txt");
    EXPECT_EQ(plainReport(Plain::sortGraph(order.edges)), report.substr(report.find("m = ")));
  }
  const DepthSortProbe::Matrix cells = DepthSortProbe(executor).matrix();
  for (std::size_t i = 0; i < cells.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (cells[i][j] != Kernel::Cell::Apart) {
        EXPECT_EQ(expected.cells[i][j], cells[i][j]);
      }
  return {faces.size() - order.drawn.size(), isCyclic};
}

void expectPlainRuns(std::uint64_t seed, int scenes, AnyPiece anyPiece, std::size_t leastHidden,
                     int leastCycles) {
  const WorkingFolder folder;
  Random random(seed);
  std::size_t hidden = 0;
  int cycles = 0;
  for (int i = 0; i < scenes && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", scene " + std::to_string(i));
    SortStage stage;
    const std::vector<Face> faces = fill(stage, random, anyPiece);
    const auto [hiddenHere, isCyclic] = expectPlainRun(stage, faces, folder);
    hidden += hiddenHere;
    cycles += isCyclic ? 1 : 0;
  }
  EXPECT_GT(hidden, leastHidden);
  EXPECT_GT(cycles, leastCycles);
}

TEST(DepthSortProperty, WholeSortsOfFreeFacesAreThoseOfTheReferenceImplementation) {
  expectPlainRuns(20261124, 100, anyFreePiece, 100, 0);
}

TEST(DepthSortProperty, WholeSortsOnALatticeAreThoseOfTheReferenceImplementation) {
  expectPlainRuns(20261125, 300, anyLatticePiece, 300, 20);
}

TEST(DepthSortProperty, WholeSortsWhereMostIsHiddenAreThoseOfTheReferenceImplementation) {
  expectPlainRuns(20261126, 400, anyPieceOfManyHidden, 3000, 10);
}

TEST(DepthSortProperty, ScenesOfFreeFacesAreSortedAsInTheReferenceImplementation) {
  expectPlainSorts(20261122, 100, anyFreePiece);
}

TEST(DepthSortProperty, ScenesOnALatticeAreSortedAsInTheReferenceImplementation) {
  EXPECT_GT(expectPlainSorts(20261123, 300, anyLatticePiece), 20);
}

}  // namespace
}  // namespace Lumivane::Test
