// The depth sort: a cell for every pair of faces, both scans of a pair made anew, the graph by the
// names of its nodes, and the shot written anew in its order.

#include "plain/DepthSort.h"
#include "plain/Pipeline.h"

#include <algorithm>

namespace Lumivane::Plain {
namespace {

struct SortObject {
  std::string id;
  std::string sourceObject;
  std::vector<Region2d> regions;
  Face face;
  Vector box;
  std::vector<Vector> boxes;
  int depthIndex = -1;
};

Matrix pointsOf(const std::vector<int>& numbers, const Matrix& points) {
  Matrix result;
  for (const int number : numbers)
    result.push_back(points.at(static_cast<std::size_t>(number - 1)));
  return result;
}

const Object& objectById(const Scene& scene, const std::string& id) {
  for (const Object& object : scene.objects)
    if (object.id == id) return object;
  throw std::out_of_range("no object " + id);
}

void addPiece(SortObject& made, const Region2d& region, const Shot& shot, const Scene& scene,
              const Object& source) {
  made.regions.push_back(region);
  const Matrix projected = pointsOf(region.points, shot.points);
  if (projected.empty()) return;
  made.face.projected.push_back(projected);
  made.boxes.push_back(bounds({projected}));
  const Region& sourceRegion = source.regions.at(static_cast<std::size_t>(region.sourceRegion - 1));
  const Matrix corners = pointsOf(sourceRegion.points, scene.points);
  if (!corners.empty()) made.face.sources.push_back(corners);
}

std::vector<SortObject> sortObjects(const Shot& shot, const Scene& scene, int& nextId) {
  std::vector<SortObject> result;
  for (const Object2d& object : shot.objects) {
    const Object& source = objectById(scene, object.id);
    for (const Face2d& face : object.faces) {
      SortObject made;
      made.sourceObject = object.id;
      for (const int number : face)
        addPiece(made, shot.regions.at(static_cast<std::size_t>(number - 1)), shot, scene, source);
      if (made.face.projected.empty()) continue;
      made.id = std::to_string(nextId++);
      made.box = bounds(made.face.projected);
      result.push_back(made);
    }
  }
  return result;
}

/// The type of the meeting of two pieces, 0 where their boxes are apart.
int meetingOf(const SortObject& a, std::size_t ia, const SortObject& b, std::size_t ib) {
  if (!meet(a.boxes[ia], b.boxes[ib])) return 0;
  return intersectionType(a.face.projected[ia], b.face.projected[ib]);
}

bool overlap(const SortObject& a, const SortObject& b) {
  for (std::size_t ia = 0; ia < a.boxes.size(); ++ia)
    for (std::size_t ib = 0; ib < b.boxes.size(); ++ib)
      if (meetingOf(a, ia, b, ib) != 0) return true;
  return false;
}

bool allSet(const std::vector<bool>& flags) {
  return std::find(flags.begin(), flags.end(), false) == flags.end();
}

int cellOf(const SortObject& a, const SortObject& b, std::string& messages) {
  if (!meet(a.box, b.box) || !overlap(a, b)) return 3;
  std::vector<int> locations;
  std::vector<bool> hiddenOfA(a.boxes.size());
  std::vector<bool> hiddenOfB(b.boxes.size());
  for (std::size_t ia = 0; ia < a.boxes.size(); ++ia) {
    for (std::size_t ib = 0; ib < b.boxes.size(); ++ib) {
      const int t = meetingOf(a, ia, b, ib);
      if (t == 0) continue;
      const int c = location(a.face.sources.at(ia), b.face.sources.at(ib), messages);
      locations.push_back(c);
      if (c == 1 && t == 2) hiddenOfB[ib] = true;
      if (c == 2 && t == 3) hiddenOfA[ia] = true;
    }
  }
  if (allSet(hiddenOfA)) return 5;
  if (allSet(hiddenOfB)) return 4;
  return vote(locations);
}

std::vector<std::vector<int>> classify(const std::vector<SortObject>& objects,
                                       std::string& messages) {
  std::vector<std::vector<int>> matrix(objects.size(), std::vector<int>(objects.size(), 0));
  for (std::size_t i = 0; i < objects.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) matrix[i][j] = cellOf(objects[i], objects[j], messages);
  return matrix;
}

/// Of what sorting the graph has left: by the numbers of the ends.
std::string reportText(std::vector<Names> edges, const std::string& m) {
  std::sort(edges.begin(), edges.end(), [](const Names& a, const Names& b) {
    const int startA = std::stoi(a[0]);
    const int startB = std::stoi(b[0]);
    return startA != startB ? startA < startB : std::stoi(a[1]) < std::stoi(b[1]);
  });
  std::string text =
      "LOGFILE:\nTopological sorting of a graph\n\nerror: graph is cyclic\n\nm = " + m +
      "\n\nedges with unsorted nodes:\n";
  for (const Names& edge : edges) text += edge[0] + " -> " + edge[1] + "\n";
  return text;
}

void rewrite(Shot& shot, const std::vector<SortObject>& objects) {
  shot.regions.clear();
  for (Object2d& object : shot.objects) object.faces.clear();
  for (const SortObject& object : objects) {
    Face2d numbers;
    for (const Region2d& region : object.regions) {
      shot.regions.push_back(region);
      numbers.push_back(static_cast<int>(shot.regions.size()));
    }
    for (Object2d& object2d : shot.objects) {
      if (object2d.id != object.sourceObject) continue;
      object2d.faces.push_back(numbers);
      break;
    }
  }
}

}  // namespace

void sortShot(Shot& shot, const Scene& scene, int& nextId) {
  std::vector<SortObject> objects = sortObjects(shot, scene, nextId);
  const std::vector<std::vector<int>> matrix = classify(objects, shot.messages);
  Names ids;
  for (const SortObject& object : objects) ids.push_back(object.id);
  const Order order = objectsOrder(ids, matrix);
  if (!order.unsorted.empty()) {
    shot.messages += "\nError: Graph is cyclic\n\n";
    shot.report = reportText(order.unsorted, order.m);
  }
  for (std::size_t k = 0; k < order.drawn.size(); ++k)
    for (SortObject& object : objects)
      if (object.id == order.drawn[k]) object.depthIndex = static_cast<int>(k) + 1;
  std::sort(objects.begin(), objects.end(),
            [](const SortObject& a, const SortObject& b) { return a.depthIndex < b.depthIndex; });
  objects.erase(std::remove_if(objects.begin(), objects.end(),
                               [](const SortObject& object) { return object.depthIndex < 1; }),
                objects.end());
  rewrite(shot, objects);
}

}  // namespace Lumivane::Plain
