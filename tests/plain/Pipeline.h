#pragma once

#include "plain/Geometry.h"

#include <optional>
#include <string>
#include <vector>

#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

/// The pipeline from the text of a scene to the text of its shot once more, step by step:
/// texts go through streams, points are small vectors, lists are searched from the start, every
/// pair of faces has a cell and every scan is made in full. It shares no code with the library, so
/// that equal texts say something, and its time is the measure of what the faster forms gain.
///
/// It takes well-formed scenes: what the library answers with an exception is not distinguished
/// here. Colours by a scale are left out, since they are not in the text.
namespace Lumivane::Plain {

struct Region {
  int brush = -1;
  int face = -1;
  std::vector<int> points;
  std::vector<int> dockingEdges;
};

struct PlanePoint {
  Vector at;
  bool hasEdge = true;
};
using PlanePolygon = std::vector<PlanePoint>;

/// With what the first pass leaves on an object.
struct Object {
  std::string id;
  int pen = -1;
  std::size_t faceCount = 0;
  std::vector<Region> regions;
  int cameraInRegion = -1;
  std::vector<vtkSmartPointer<vtkPolyData>> polyData;
  std::vector<vtkSmartPointer<vtkPolyData>> clipped;
  std::vector<std::vector<Matrix>> visible;
  std::vector<std::vector<PlanePolygon>> projected;
};

/// A missing list is written as none, which an empty one is not.
using Rows = std::optional<Matrix>;

struct Scene {
  Rows brushes;
  Rows pens;
  Matrix points;
  std::vector<Object> objects;
};

struct View {
  Vector eye;  ///< moved by a shot that finds it standing on a polygon
  Vector forward = {1, 0, 0};
  Vector up = {0, 0, 1};
  bool isSquare = false;
  double d1 = 0.01;
  double d2 = 1.0;
  int segments = 6;
  double maxLength = 0.0;
};

struct Region2d {
  int object = -1;
  int pen = -1;
  int brush = -1;
  int face = -1;
  int sourceRegion = -1;
  std::vector<int> points;
  std::vector<int> dockingEdges;
};

using Face2d = std::vector<int>;

struct Object2d {
  std::string id;
  std::vector<Face2d> faces;
};

struct Shot {
  Matrix points;
  std::vector<Region2d> regions;
  std::vector<Object2d> objects;
  std::string messages;               ///< what the library prints
  std::optional<std::string> report;  ///< of a cycle
};

/// Processor seconds by step.
struct Seconds {
  double read = 0.0;
  double project = 0.0;  ///< polygon data, clip and cull, projection
  double build = 0.0;    ///< points and docking edges
  double sort = 0.0;     ///< classification and order
  double write = 0.0;
  double total() const { return read + project + build + sort + write; }
};

/// The steps in their order. The ids of the sort count on from shot to shot.
class Pipeline {
 public:
  Scene read(const std::string& text);
  Shot makeShot(Scene& scene, View& view);
  std::string write(const Scene& scene, const Shot& shot);

  Seconds seconds;

 private:
  int nextId = 1;
};

// The steps, each in a file of its own.
Scene readScene(const std::string& text);
void projectObject(Scene& scene, Object& object, View& view, std::string& messages);
void buildObject(Shot& shot, const Object& object, int objectNumber);
void sortShot(Shot& shot, const Scene& scene, int& nextId);
std::string shotText(const Scene& scene, const Shot& shot);

}  // namespace Lumivane::Plain
