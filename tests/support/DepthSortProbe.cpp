#include "support/DepthSortProbe.h"

#include "algorithm/pipeline/ClassificationMatrix.h"

#include <lumivane/algorithm/Edge.h>

#include <memory>

namespace Lumivane::Test {
namespace {

using Executor = DepthSortProbe::Executor;
using Point = DepthSortProbe::Point;
using Polygon = DepthSortProbe::Polygon;

// Access is not checked where a template is instantiated explicitly, so an instantiation can hand
// out a pointer to a private member, through a friend that is found by its tag.
template <class Tag, typename Tag::Type Member>
struct Opened {
  friend typename Tag::Type opened(Tag) { return Member; }
};

template <class MemberType>
struct Tagged {
  using Type = MemberType;
};

struct Fill : Tagged<void (Executor::*)()> {
  friend Type opened(Fill);
};
template struct Opened<Fill, &Executor::fillObjectDataList>;

struct Classify : Tagged<void (Executor::*)()> {
  friend Type opened(Classify);
};
template struct Opened<Classify, &Executor::classifyObjects>;

struct Calculate : Tagged<void (Executor::*)()> {
  friend Type opened(Calculate);
};
template struct Opened<Calculate, &Executor::calculateObjectsOrder>;

struct ObjectList : Tagged<std::shared_ptr<DepthSortProbe::Objects> Executor::*> {
  friend Type opened(ObjectList);
};
template struct Opened<ObjectList, &Executor::objectDataList>;

struct Cells : Tagged<std::shared_ptr<Algorithm::ClassificationMatrix> Executor::*> {
  friend Type opened(Cells);
};
template struct Opened<Cells, &Executor::classificationMatrix>;

struct Rotate : Tagged<double (Executor::*)(Point, Point, Point)> {
  friend Type opened(Rotate);
};
template struct Opened<Rotate, &Executor::rotate>;

struct Intersect
    : Tagged<bool (Executor::*)(const Point&, const Point&, const Point&, const Point&)> {
  friend Type opened(Intersect);
};
template struct Opened<Intersect, &Executor::intersect>;

struct ContainsPoint : Tagged<bool (Executor::*)(const Polygon&, const Point&)> {
  friend Type opened(ContainsPoint);
};
template struct Opened<ContainsPoint, &Executor::isContainsPointArea>;

struct Equals : Tagged<bool (Executor::*)(Polygon, Polygon)> {
  friend Type opened(Equals);
};
template struct Opened<Equals, &Executor::isPolygonsEquals>;

struct TypeOf : Tagged<Algorithm::IntersectionType (Executor::*)(Polygon*, Polygon*)> {
  friend Type opened(TypeOf);
};
template struct Opened<TypeOf, &Executor::getPolygonsIntersectionType>;

struct LocationOf : Tagged<int (Executor::*)(const Polygon&, const Polygon&)> {
  friend Type opened(LocationOf);
};
template struct Opened<LocationOf, &Executor::checkPolygonsLocation>;

struct GraphEdges : Tagged<std::vector<Algorithm::Edge> Algorithm::Graph::*> {
  friend Type opened(GraphEdges);
};
template struct Opened<GraphEdges, &Algorithm::Graph::edges>;

}  // namespace

void DepthSortProbe::fill() { (executor.*opened(Fill()))(); }
void DepthSortProbe::classify() { (executor.*opened(Classify()))(); }
void DepthSortProbe::calculate() { (executor.*opened(Calculate()))(); }

DepthSortProbe::Objects* DepthSortProbe::objects() const {
  return (executor.*opened(ObjectList())).get();
}

DepthSortProbe::Matrix DepthSortProbe::matrix() const {
  const Algorithm::ClassificationMatrix& cells = *(executor.*opened(Cells()));
  Matrix rows(cells.rowCount(), std::vector<int>(cells.rowCount()));
  for (std::size_t i = 0; i < rows.size(); ++i)
    for (std::size_t j = 0; j < rows.size(); ++j) rows[i][j] = cells.at(i, j);
  return rows;
}

void DepthSortProbe::setRows(const Matrix& rows) {
  Algorithm::ClassificationMatrix& cells = *(executor.*opened(Cells()));
  cells.restart();
  for (const std::vector<int>& row : rows) {
    for (std::size_t j = 0; j < row.size(); ++j) cells.put(j, row[j]);
    cells.endRow();
  }
}

double DepthSortProbe::rotate(const Point& a, const Point& b, const Point& c) {
  return (executor.*opened(Rotate()))(a, b, c);
}

bool DepthSortProbe::intersect(const Point& a, const Point& b, const Point& c, const Point& d) {
  return (executor.*opened(Intersect()))(a, b, c, d);
}

bool DepthSortProbe::isContainsPointArea(const Polygon& polygon, const Point& point) {
  return (executor.*opened(ContainsPoint()))(polygon, point);
}

bool DepthSortProbe::isPolygonsEquals(const Polygon& first, const Polygon& second) {
  return (executor.*opened(Equals()))(first, second);
}

Algorithm::IntersectionType DepthSortProbe::getPolygonsIntersectionType(Polygon* first,
                                                                        Polygon* second) {
  return (executor.*opened(TypeOf()))(first, second);
}

int DepthSortProbe::checkPolygonsLocation(const Polygon& first, const Polygon& second) {
  return (executor.*opened(LocationOf()))(first, second);
}

const std::vector<Algorithm::Edge>& edgesOf(const Algorithm::Graph& graph) {
  return graph.*opened(GraphEdges());
}

}  // namespace Lumivane::Test
