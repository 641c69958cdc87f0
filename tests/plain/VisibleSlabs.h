#pragma once

#include "kernel/SphereContour.h"
#include "plain/VisibleShares.h"

#include <algorithm>
#include <cmath>
#include <vector>

/// What is visible of the regions of a round picture, computed in the plain way: one sweep of the
/// whole picture by slabs between all heights at which edges end or any two cross.
namespace Lumivane::Plain {

/// By region in drawing order; entry 0 is the open picture.
struct VisibleSums {
  std::vector<double> areas;
  std::vector<double> solidAngles;
};

class VisibleSlabs {
 public:
  explicit VisibleSlabs(const std::vector<Polygon>& outlines) {
    sums.areas.assign(outlines.size() + 1, 0.0);
    sums.solidAngles.assign(outlines.size() + 1, 0.0);
    for (size_t i = 0; i < outlines.size(); ++i) addEdges(outlines[i], i + 1);
    addHeights();
    for (size_t i = 0; i + 1 < heights.size(); ++i) sweep(heights[i], heights[i + 1]);
    sums.areas[0] += Kernel::Pi;
    sums.solidAngles[0] += 2 * Kernel::Pi;
  }

  VisibleSums sums;

 private:
  using Vec2 = Kernel::Vec2;
  struct Edge {
    Vec2 low, high;
    size_t region;
    int winding;
    double way(double y) const { return (y - low.y) / (high.y - low.y); }
    double x(double y) const { return low.x + way(y) * (high.x - low.x); }
    Vec2 at(double y) const { return {x(y), y}; }
  };

  void addEdges(const Polygon& outline, size_t region) {
    const double c = std::cos(1.1);  // a turn, so that no edge is level
    const double s = std::sin(1.1);
    for (size_t i = 0; i < outline.size(); ++i) {
      const Vec2 p = outline[i];
      const Vec2 q = outline[(i + 1) % outline.size()];
      const Vec2 a = {c * p.x - s * p.y, s * p.x + c * p.y};
      const Vec2 b = {c * q.x - s * q.y, s * q.x + c * q.y};
      if (a.y < b.y) edges.push_back({a, b, region, 1});
      if (b.y < a.y) edges.push_back({b, a, region, -1});
    }
  }

  void addHeights() {
    for (size_t i = 0; i < edges.size(); ++i) {
      heights.push_back(edges[i].low.y);
      heights.push_back(edges[i].high.y);
      for (size_t k = 0; k < i; ++k) addCrossing(edges[i], edges[k]);
    }
    std::sort(heights.begin(), heights.end());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
  }

  void addCrossing(const Edge& a, const Edge& b) {
    const double from = std::max(a.low.y, b.low.y);
    const double to = std::min(a.high.y, b.high.y);
    const double below = a.x(from) - b.x(from);
    const double above = a.x(to) - b.x(to);
    if (from < to && below * above < 0)
      heights.push_back(from + (to - from) * below / (below - above));
  }

  void sweep(double y0, double y1) {
    const double y = 0.5 * (y0 + y1);
    std::vector<const Edge*> active;
    for (const Edge& edge : edges)
      if (edge.low.y <= y && edge.high.y >= y) active.push_back(&edge);
    std::stable_sort(active.begin(), active.end(),
                     [y](const Edge* a, const Edge* b) { return a->x(y) < b->x(y); });
    std::vector<int> windings(sums.areas.size(), 0);
    size_t left = 0;
    for (const Edge* edge : active) {
      windings[edge->region] += edge->winding;
      size_t right = windings.size() - 1;
      while (right > 0 && windings[right] == 0) --right;
      addSeam(*edge, y0, y1, left, right);
      left = right;
    }
  }

  // To the solid angle edges are arcs of great circles; of the sliver between chord and arc a piece
  // has its share to the first order.
  void addSeam(const Edge& edge, double y0, double y1, size_t left, size_t right) {
    if (left == right) return;
    const auto share = [](double t) { return t * t * (3 - 2 * t); };
    const Kernel::DiscLine line = Kernel::discLine(edge.low, edge.high);
    const double arc =
        Kernel::arcTerm(Kernel::directionOfDisc(edge.low), Kernel::directionOfDisc(edge.high));
    const double sliver = arc - Kernel::lineSolidAngle(line, edge.low, edge.high);
    const double angle = Kernel::lineSolidAngle(line, edge.at(y0), edge.at(y1)) +
                         sliver * (share(edge.way(y1)) - share(edge.way(y0)));
    const double area = (y1 - y0) * edge.x(0.5 * (y0 + y1));
    sums.areas[left] += area;
    sums.areas[right] -= area;
    sums.solidAngles[left] += angle;
    sums.solidAngles[right] -= angle;
  }

  std::vector<Edge> edges;
  std::vector<double> heights;
};

}  // namespace Lumivane::Plain
