// The second pass: one list of points for all, searched from its start for every point, and the
// edges that pieces of one region share.

#include "plain/Pipeline.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Plain {
namespace {

constexpr double PointPrecision = 0.001;
constexpr double EdgePrecision = 1e-07;

bool agree(const Vector& a, const Vector& b, double precision) {
  return precision > std::fabs(a[0] - b[0]) && precision > std::fabs(a[1] - b[1]);
}

bool agree(Vector a, Vector b) { return agree(a, b, EdgePrecision); }

/// Every edge of every polygon against every edge of every other one.
std::vector<std::vector<int>> dockingEdges(std::vector<PlanePolygon> polygons) {
  std::vector<std::vector<int>> result;
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    const PlanePolygon& p = polygons[i];
    result.emplace_back();
    for (std::size_t j = 0; j < polygons.size(); ++j) {
      if (j == i) continue;
      const PlanePolygon& q = polygons[j];
      for (std::size_t a = 0; a < p.size(); ++a) {
        const Vector pa = p[a].at;
        const Vector pb = p[(a + 1) % p.size()].at;
        for (std::size_t b = 0; b < q.size(); ++b) {
          const Vector qa = q[b].at;
          const Vector qb = q[(b + 1) % q.size()].at;
          if ((agree(pa, qa) && agree(pb, qb)) || (agree(pa, qb) && agree(pb, qa)))
            result.back().push_back(static_cast<int>(a) + 1);
        }
      }
    }
  }
  return result;
}

int pointNumber(Matrix& points, const Vector& point) {
  for (std::size_t i = 0; i < points.size(); ++i)
    if (agree(point, points[i], PointPrecision)) return static_cast<int>(i) + 1;
  points.push_back(point);
  return static_cast<int>(points.size());
}

void appendOnce(std::vector<int>& numbers, const std::vector<int>& more) {
  for (const int number : more)
    if (std::find(numbers.begin(), numbers.end(), number) == numbers.end())
      numbers.push_back(number);
}

void buildRegions(Shot& shot, const Object& object, std::size_t r, int objectNumber,
                  std::vector<Face2d>& faces) {
  const std::vector<PlanePolygon>& polygons = object.projected[r];
  std::vector<std::vector<int>> docking(polygons.size());
  if (polygons.size() > 1) docking = dockingEdges(polygons);
  const Region& region = object.regions[r];
  for (std::size_t p = 0; p < polygons.size(); ++p) {
    Region2d made{objectNumber, object.pen, region.brush, region.face, static_cast<int>(r) + 1,
                  {},           {}};
    std::vector<int> edgeless;
    for (const PlanePoint& point : polygons[p]) {
      made.points.push_back(pointNumber(shot.points, point.at));
      if (!point.hasEdge) edgeless.push_back(static_cast<int>(made.points.size()));
    }
    appendOnce(made.dockingEdges, docking[p]);
    appendOnce(made.dockingEdges, edgeless);
    shot.regions.push_back(made);
    faces.at(static_cast<std::size_t>(region.face - 1))
        .push_back(static_cast<int>(shot.regions.size()));
  }
}

}  // namespace

void buildObject(Shot& shot, const Object& object, int objectNumber) {
  std::vector<Face2d> faces(object.faceCount);
  for (std::size_t r = 0; r < object.projected.size(); ++r)
    if (!object.projected[r].empty()) buildRegions(shot, object, r, objectNumber, faces);
  shot.objects.push_back({object.id, {}});
  for (const Face2d& face : faces)
    if (!face.empty()) shot.objects.back().faces.push_back(face);
}

}  // namespace Lumivane::Plain
