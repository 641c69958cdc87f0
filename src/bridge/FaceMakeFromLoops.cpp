// Outlines into faces. VTK joins the loops, finds which are holes and makes the triangles; what is
// left is to write each triangle into the scene, once for each side of the surface.

#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include <vtkAppendPolyData.h>
#include <vtkCellArray.h>
#include <vtkContourTriangulator.h>
#include <vtkIdList.h>
#include <vtkLine.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Geometry {
namespace {

using Kernel::Vec3;
using Loop = std::vector<Point3d>;
using Triangle = std::array<Vec3, 3>;

struct BoundaryEdge {
  Vec3 start;
  Vec3 end;
};

Vec3 valueOf(const Point3d& point) { return {point.getX(), point.getY(), point.getZ()}; }

template <class Element>
int countOf(const std::vector<Element*>* elements) {
  return static_cast<int>(elements->size());
}

// All edges of the loops, each closed from its last point to its first.
std::vector<BoundaryEdge> boundaryEdges(const std::vector<Loop>& loops) {
  std::vector<BoundaryEdge> edges;
  for (const Loop& loop : loops) {
    for (std::size_t i = 0; i < loop.size(); ++i) {
      edges.push_back({valueOf(loop[i]), valueOf(loop[(i + 1) % loop.size()])});
    }
  }
  return edges;
}

// A loop as a chain of lines. It is not joined back to its first point: the triangulator does that.
vtkSmartPointer<vtkPolyData> chainOf(const Loop& loop) {
  const vtkNew<vtkPoints> points;
  const vtkNew<vtkCellArray> lines;
  for (const Point3d& point : loop) {
    points->InsertNextPoint(point.getX(), point.getY(), point.getZ());
  }
  for (std::size_t i = 0; i + 1 < loop.size(); ++i) {
    const vtkNew<vtkLine> line;
    line->GetPointIds()->SetId(0, static_cast<vtkIdType>(i));
    line->GetPointIds()->SetId(1, static_cast<vtkIdType>(i) + 1);
    lines->InsertNextCell(line);
  }
  auto chain = vtkSmartPointer<vtkPolyData>::New();
  chain->SetPoints(points);
  chain->SetLines(lines);
  return chain;
}

// A loop with its first point repeated makes the triangulator add a triangle without area.
bool hasTwoEqualCorners(const Triangle& triangle) {
  return triangle[0] == triangle[1] || triangle[1] == triangle[2] || triangle[2] == triangle[0];
}

std::vector<Triangle> trianglesOf(vtkPolyData* data) {
  std::vector<Triangle> triangles;
  vtkCellArray* polygons = data->GetPolys();
  const vtkNew<vtkIdList> ids;
  polygons->InitTraversal();
  while (polygons->GetNextCell(ids) != 0) {
    Triangle triangle;
    for (std::size_t corner = 0; corner < 3; ++corner) {
      double point[3];
      data->GetPoint(ids->GetId(static_cast<vtkIdType>(corner)), point);
      triangle[corner] = {point[0], point[1], point[2]};
    }
    if (!hasTwoEqualCorners(triangle)) triangles.push_back(triangle);
  }
  return triangles;
}

// Whether the triangulator comes to an end: on infinite coordinates, and its points hold floats, it
// looks for ever for a ray out of the outline.
bool canBeFilled(const std::vector<Loop>& loops) {
  constexpr double largest = std::numeric_limits<float>::max();
  const auto fits = [](const Point3d& point) {
    return std::abs(point.getX()) <= largest && std::abs(point.getY()) <= largest &&
           std::abs(point.getZ()) <= largest;
  };
  return std::all_of(loops.begin(), loops.end(), [&fits](const Loop& loop) {
    return std::all_of(loop.begin(), loop.end(), fits);
  });
}

// The triangles that fill the outline; none for loops without points.
std::vector<Triangle> triangulated(const std::vector<Loop>& loops) {
  if (!canBeFilled(loops)) return {};
  const vtkNew<vtkAppendPolyData> append;
  bool hasPoints = false;
  for (const Loop& loop : loops) {
    if (loop.empty()) continue;
    append->AddInputData(chainOf(loop));
    hasPoints = true;
  }
  if (!hasPoints) return {};
  append->Update();
  const vtkNew<vtkContourTriangulator> triangulator;
  triangulator->SetInputData(append->GetOutput());
  triangulator->Update();
  return trianglesOf(triangulator->GetOutput());
}

bool isOnBoundary(Vec3 start, Vec3 end, const std::vector<BoundaryEdge>& edges) {
  const double precision = Point3d::Precision;
  return std::any_of(edges.begin(), edges.end(), [&](const BoundaryEdge& edge) {
    const bool isSame = Kernel::samePoint(edge.start, start, precision) &&
                        Kernel::samePoint(edge.end, end, precision);
    return isSame || (Kernel::samePoint(edge.start, end, precision) &&
                      Kernel::samePoint(edge.end, start, precision));
  });
}

// Writes the triangles of one face into a scene and an object.
class FaceWriter {
 public:
  FaceWriter(Scene::Scene3D& scene, Scene::Object& object) {
    if (scene.getPoints() == nullptr) scene.setPoints(new Points3d());
    if (object.getFaces() == nullptr) object.setFaces(new Faces());
    if (object.getRegions() == nullptr) object.setRegions(new Regions());
    points = scene.getPoints();
    regions = object.getRegions();
    face = new Face();
    object.getFaces()->addFace(face);
    faceNumber = countOf(object.getFaces()->getFaces());
  }

  Face* getFace() const { return face; }

  void addRegion(const Triangle& triangle, int brushNumber,
                 const std::vector<BoundaryEdge>& boundary) {
    auto* region = new Region();
    regions->addRegion(region);
    region->setFaceNumber(faceNumber);
    region->setBrushNumber(brushNumber);
    for (const Vec3& corner : triangle) {
      points->addPoint(new Point3d(corner.x, corner.y, corner.z));
      region->addPoint(countOf(points->getPoints()));
    }
    for (std::size_t k = 0; k < 3; ++k) {
      if (isOnBoundary(triangle[k], triangle[(k + 1) % 3], boundary)) continue;
      region->addDockingEdge(static_cast<int>(k) + 1);
    }
    face->addRegion(countOf(regions->getRegions()));
  }

 private:
  Points3d* points;
  Regions* regions;
  Face* face;
  int faceNumber;
};

}  // namespace

Face* Face::makeFromLoops(Scene::Scene3D* scene, Scene::Object* object, std::vector<Loop> loops,
                          int brushNumber) {
  if (scene == nullptr || object == nullptr) {
    throw std::invalid_argument("A face is made in a scene and an object; one of them is null");
  }
  FaceWriter writer(*scene, *object);
  const std::vector<BoundaryEdge> boundary = boundaryEdges(loops);
  for (Triangle triangle : triangulated(loops)) {
    writer.addRegion(triangle, brushNumber, boundary);
    std::reverse(triangle.begin(), triangle.end());
    writer.addRegion(triangle, brushNumber, boundary);
  }
  return writer.getFace();
}

}  // namespace Lumivane::Geometry
