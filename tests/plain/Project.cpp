// The first pass: polygon data of the regions, their part ahead of the eye, the polygons that are
// kept, and these on the plane.

#include "plain/Pipeline.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkClipPolyData.h>
#include <vtkDataArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPlane.h>
#include <vtkPoints.h>
#include <vtkPolyDataNormals.h>
#include <vtkPolygon.h>

namespace Lumivane::Plain {
namespace {

constexpr double Precision = 1e-07;
constexpr double ShortestEdge = 0.0001;
constexpr int CameraRegionFactor = 300;
constexpr std::int64_t MostPieces = 1'048'576;
constexpr std::int64_t EnoughSquarePieces = 1000;

double rounded(double value, double scale) { return std::round(scale * value) / scale; }

double angle(Vector a, Vector b, double scale) { return rounded(angleInDegrees(a, b), scale); }

// --- Polygon data ---

vtkSmartPointer<vtkPolyData> regionPolyData(const Region& region, const Matrix& points,
                                            std::string& messages) {
  auto result = vtkSmartPointer<vtkPolyData>::New();
  if (region.points.size() < 3) {
    messages += "Error: region points size < 3 \n";
    return result;
  }
  const vtkNew<vtkPoints> vtkList;
  const vtkNew<vtkPolygon> polygon;
  const auto count = static_cast<vtkIdType>(region.points.size());
  polygon->GetPointIds()->SetNumberOfIds(count);
  for (vtkIdType k = 0; k < count; ++k) {
    const Vector p = points.at(static_cast<std::size_t>(region.points[static_cast<size_t>(k)] - 1));
    vtkList->InsertNextPoint(p[0], p[1], p[2]);
    polygon->GetPointIds()->SetId(k, k);
  }
  const vtkNew<vtkCellArray> cells;
  cells->InsertNextCell(polygon);
  const vtkNew<vtkPolyData> data;
  data->SetPoints(vtkList);
  data->SetPolys(cells);
  result->ShallowCopy(data);
  return result;
}

vtkSmartPointer<vtkPolyData> clipped(vtkSmartPointer<vtkPolyData> data, Vector origin,
                                     Vector normal) {
  const vtkNew<vtkPlane> plane;
  plane->SetOrigin(origin.data());
  plane->SetNormal(normal.data());
  const vtkNew<vtkClipPolyData> clip;
  clip->SetClipFunction(plane);
  clip->GenerateClippedOutputOn();
  clip->SetInputData(data);
  clip->Update();
  auto result = vtkSmartPointer<vtkPolyData>::New();
  result->ShallowCopy(clip->GetOutput());
  return result;
}

struct Cells {
  std::vector<Matrix> polygons;
  std::vector<Vector> normals;
};

Matrix cellPoints(vtkPolyData* data, vtkIdType cell) {
  const vtkNew<vtkIdList> ids;
  data->GetCellPoints(cell, ids);
  Matrix polygon;
  for (vtkIdType i = 0; i < ids->GetNumberOfIds(); ++i) {
    double p[3];
    data->GetPoint(ids->GetId(i), p);
    polygon.push_back({p[0], p[1], p[2]});
  }
  return polygon;
}

Cells cellsOf(vtkPolyData* data) {
  const vtkNew<vtkPolyData> copy;
  if (data->GetCellData()->GetNormals() == nullptr) {
    const vtkNew<vtkPolyDataNormals> filter;
    filter->SetInputData(data);
    filter->ComputeCellNormalsOn();
    filter->ConsistencyOff();
    filter->AutoOrientNormalsOff();
    filter->NonManifoldTraversalOff();
    filter->Update();
    copy->ShallowCopy(filter->GetOutput());
  } else {
    copy->ShallowCopy(data);
  }
  Cells cells;
  vtkDataArray* normals = copy->GetCellData()->GetNormals();
  for (vtkIdType c = 0; normals != nullptr && c < copy->GetNumberOfCells(); ++c) {
    if (copy->GetCellType(c) <= VTK_POLY_LINE) continue;
    const Matrix polygon = cellPoints(copy, c);
    if (polygon.empty()) continue;
    double n[3];
    normals->GetTuple(c, n);
    cells.polygons.push_back(polygon);
    cells.normals.push_back({n[0], n[1], n[2]});
  }
  return cells;
}

// --- What is kept ---

bool isInConvexArea(const Vector& point, const Matrix& polygon) {
  double sum = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i)
    sum += angle(difference(polygon[i], point),
                 difference(polygon[(i + 1) % polygon.size()], point), 10000.0);
  return 0.1 > std::fabs(sum - 360.0);
}

/// Steps the view's eye off the cell if it stands on it. \return whether it did
bool stepOff(const Matrix& polygon, Vector normal, Vector eye, View& view) {
  const double a = angle(normal, view.forward, 100000.0);
  Vector origin = polygon[0];
  const vtkNew<vtkPlane> plane;
  plane->SetNormal(normal.data());
  plane->SetOrigin(origin.data());
  Vector foot(3);
  plane->ProjectPoint(eye.data(), foot.data());
  if (!(view.d1 > length(difference(eye, foot)))) return false;
  if (!(view.d2 > std::fabs(a - 90.0))) return false;
  if (!isInConvexArea(foot, polygon)) return false;
  for (std::size_t k = 0; k < 3; ++k) view.eye[k] = foot[k] - (view.d1 * 5.0) * normal[k];
  return true;
}

std::vector<Matrix> visiblePolygons(Object& object, int position, const Vector& eye, View& view) {
  const Cells cells = cellsOf(object.clipped[static_cast<std::size_t>(position)]);
  for (std::size_t c = 0; c < cells.polygons.size(); ++c)
    if (stepOff(cells.polygons[c], cells.normals[c], eye, view)) object.cameraInRegion = position;

  std::vector<Matrix> result;
  for (std::size_t c = 0; c < cells.polygons.size(); ++c) {
    const Vector d = difference(cells.polygons[c][0], view.eye);
    if (length(d) == 0.0) {
      result.push_back(cells.polygons[c]);
      continue;
    }
    const double a = angle(cells.normals[c], d, 100.0);
    if (a >= 90.0) result.emplace_back();
    if (a < 90.0) result.push_back(cells.polygons[c]);
  }
  return result;
}

// --- Onto the plane ---

struct Frame {
  bool isSquare;
  Vector eye;
  Vector right;
  Vector forward;
  std::vector<int> dockingEdges;
  Matrix regionPoints;
};

Matrix splitPoints(const Matrix& polygon, std::int64_t pieces, std::string& messages) {
  Matrix result;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Vector a = polygon[i];
    const Vector v = difference(a, polygon[(i + 1) % polygon.size()]);
    const double l = length(v);
    if (ShortestEdge > l) return {};
    const Vector direction = normalised(v, messages);
    const double step = l / static_cast<double>(pieces);
    double t = 0.0;
    do {
      result.push_back({a[0] - t * direction[0], a[1] - t * direction[1], a[2] - t * direction[2]});
      t += step;
    } while (l > t);
  }
  return result;
}

bool isSame(Vector a, Vector b) {
  if (a.size() != b.size()) return false;
  for (std::size_t k = 0; k < a.size(); ++k)
    if (!(Precision > std::fabs(a[k] - b[k]))) return false;
  return true;
}

bool hasEdgeFrom(const Vector& p, const std::vector<std::pair<Vector, Vector>>& segments) {
  for (const auto& [a, b] : segments) {
    if (isSame(p, a)) return false;
    if (isSame(p, b)) continue;
    const double s = length(difference(b, p)) + length(difference(a, p)) - length(difference(b, a));
    if (Precision > std::fabs(s)) return false;
  }
  return true;
}

double degrees(double radians) { return radians * 57.29577951308232; }
double radians(double degree) { return degree * 3.141592653589793 / 180.0; }

Vector radialPoint(const Vector& camera) {
  const double x = camera[0];
  const double y = camera[1];
  const double z = camera[2];
  double c = 0.0;
  double s = 0.0;
  if (x != 0.0 || y != 0.0) {
    const double h = std::sqrt(y * y + x * x);
    c = x / h;
    s = y / h;
  }
  double w = 0.0;
  if (x != 0.0 || y != 0.0 || z != 0.0) w = z / std::sqrt(y * y + x * x + z * z);
  const double phi = radians(s >= 0.0 ? degrees(std::acos(c)) : 360.0 - degrees(std::acos(c)));
  const double theta = radians(degrees(std::acos(w)));
  return {-std::cos(phi) * std::sin(theta), std::sin(theta) * std::sin(phi)};
}

Vector squarePoint(const Vector& camera) {
  const double x = camera[0];
  const double y = camera[1];
  const double z = camera[2];
  double cosA = 1.0;
  double sinA = 0.0;
  if (x != 0.0 || z != 0.0) {
    const double h = std::sqrt(z * z + x * x);
    cosA = z / h;
    sinA = x / h;
  }
  double cosB = 1.0;
  double sinB = 0.0;
  if (x != 0.0 || y != 0.0 || z != 0.0) {
    const double g = std::sqrt(y * y + x * x + z * z);
    cosB = std::sqrt(z * z + x * x) / g;
    sinB = y / g;
  }
  double a = 90.0;
  if (sinA != 0.0) a = sinA < 0.0 ? -degrees(std::acos(cosA)) : degrees(std::acos(cosA));
  const double b = sinB < 0.0 ? -degrees(std::acos(cosB)) : degrees(std::acos(cosB));
  if (a < -90.0) a = -90.0;
  if (a > 90.0) a = 90.0;
  return {-a / 90.0, b / 90.0};
}

double planeLength(const Vector& a, const Vector& b) {
  const Vector d = difference(b, a);
  return std::sqrt(d[0] * d[0] + d[1] * d[1]);
}

PlanePolygon projectPolygon(Frame frame, Matrix polygon, std::int64_t pieces,
                            std::string& messages) {
  const Matrix split = splitPoints(polygon, pieces, messages);
  std::vector<std::pair<Vector, Vector>> segments;
  const auto count = static_cast<int>(frame.regionPoints.size());
  for (const int e : frame.dockingEdges)
    segments.emplace_back(frame.regionPoints.at(static_cast<std::size_t>((e - 1) % count)),
                          frame.regionPoints.at(static_cast<std::size_t>(e % count)));
  PlanePolygon all;
  for (const Vector& p : split) {
    const bool hasEdge = hasEdgeFrom(p, segments);
    const Vector camera =
        transformedBack(difference(p, frame.eye), frame.right, frame.forward, messages);
    all.push_back({frame.isSquare ? squarePoint(camera) : radialPoint(camera), hasEdge});
  }
  PlanePolygon result;
  for (const PlanePoint& point : all)
    if (result.empty() || !(Precision > planeLength(point.at, result.back().at)))
      result.push_back(point);
  return result;
}

bool hasLongerPiece(const PlanePolygon& polygon, double limit) {
  for (std::size_t k = 0; k < polygon.size(); ++k)
    if (planeLength(polygon[k].at, polygon[(k + 1) % polygon.size()].at) > limit) return true;
  return false;
}

PlanePolygon settledPolygon(const Frame& frame, const Matrix& polygon, std::int64_t& pieces,
                            double maxLength, std::string& messages) {
  const double limit = frame.isSquare ? maxLength * 2.0 : maxLength;
  for (;;) {
    PlanePolygon projected = projectPolygon(frame, polygon, pieces, messages);
    if (projected.empty() || !(maxLength > 0.0 && 1.0 >= maxLength)) return projected;
    if (!hasLongerPiece(projected, limit)) return projected;
    if (frame.isSquare && pieces > EnoughSquarePieces) return projected;
    if (pieces * 2 > MostPieces) throw std::length_error("splitting has no end");
    pieces *= 2;
  }
}

std::vector<PlanePolygon> settledPolygons(const Frame& frame, const std::vector<Matrix>& polygons,
                                          std::int64_t firstCount, double maxLength,
                                          std::string& messages) {
  std::vector<PlanePolygon> result;
  std::vector<std::int64_t> counts;
  std::int64_t most = 0;
  for (const Matrix& polygon : polygons) {
    std::int64_t pieces = firstCount;
    result.push_back(settledPolygon(frame, polygon, pieces, maxLength, messages));
    counts.push_back(pieces);
    if (pieces > most) most = pieces;
  }
  for (std::size_t j = 0; j < polygons.size(); ++j)
    if (counts[j] != most) result[j] = projectPolygon(frame, polygons[j], most, messages);
  return result;
}

Frame frameOf(const Region& region, const Matrix& points, const View& view, std::string& messages) {
  const Vector up = normalised(view.up, messages);
  const Vector forward = normalised(view.forward, messages);
  const Vector right = normalised(cross(up, forward), messages);
  Frame frame{view.isSquare, view.eye, right, forward, region.dockingEdges, {}};
  for (const int number : region.points)
    frame.regionPoints.push_back(points.at(static_cast<std::size_t>(number - 1)));
  return frame;
}

}  // namespace

void projectObject(Scene& scene, Object& object, View& view, std::string& messages) {
  object.polyData.clear();
  object.clipped.clear();
  object.visible.clear();
  object.projected.clear();
  for (const Region& region : object.regions)
    object.polyData.push_back(regionPolyData(region, scene.points, messages));
  const Vector eye = view.eye;
  for (const auto& data : object.polyData)
    object.clipped.push_back(clipped(data, eye, view.forward));
  for (std::size_t k = 0; k < object.clipped.size(); ++k)
    object.visible.push_back(visiblePolygons(object, static_cast<int>(k), eye, view));
  for (std::size_t r = 0; r < object.visible.size(); ++r) {
    std::int64_t count = view.segments;
    if (static_cast<int>(r) == object.cameraInRegion) count *= CameraRegionFactor;
    object.projected.push_back(
        settledPolygons(frameOf(object.regions[r], scene.points, view, messages), object.visible[r],
                        count, view.maxLength, messages));
  }
}

}  // namespace Lumivane::Plain
