#pragma once

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/Graph.h>

#include <vector>

namespace Lumivane::Test {

/// The private parts of a depth sort, step by step.
class DepthSortProbe {
 public:
  using Executor = Algorithm::DepthSortAlgorithmExecutor;
  using Point = std::vector<double>;
  using Polygon = std::vector<Point>;
  using Objects = std::vector<Algorithm::ObjectData*>;
  using Matrix = std::vector<std::vector<int>>;

  explicit DepthSortProbe(Executor& probed) : executor(probed) {}

  void fill();       ///< fillObjectDataList
  void classify();   ///< classifyObjects
  void calculate();  ///< calculateObjectsOrder

  Objects* objects() const;          ///< The executor's own.
  Matrix matrix() const;             ///< All cells of the executor's matrix, row by row.
  void setRows(const Matrix& rows);  ///< Fills rows of the executor's matrix, from the first on.

  double rotate(const Point& a, const Point& b, const Point& c);
  bool intersect(const Point& a, const Point& b, const Point& c, const Point& d);
  bool isContainsPointArea(const Polygon& polygon, const Point& point);
  bool isPolygonsEquals(const Polygon& first, const Polygon& second);
  Algorithm::IntersectionType getPolygonsIntersectionType(Polygon* first, Polygon* second);
  int checkPolygonsLocation(const Polygon& first, const Polygon& second);

 private:
  Executor& executor;
};

/// The edges of a graph as they stand.
const std::vector<Algorithm::Edge>& edgesOf(const Algorithm::Graph& graph);

}  // namespace Lumivane::Test
