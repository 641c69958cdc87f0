// A scene's text, or polygons as arrays, to exact maps of the hemisphere and the sphere. Whatever
// the scene, cells are sound numbers and add up to the field, and single directions are answered.

#include "Bytes.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using namespace Lumivane::Visibility;
using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;

constexpr std::size_t LargestInput = 1 << 14;
constexpr std::size_t MostCorners = 400;

// How to look; of a text the spaces behind it say so, which are of no other use.
struct Eye {
  Vector place{-2.6, 0.35, 1.9};
  LookOptions options;
  IndexOptions index;
};

Vector vectorOf(Bytes& bytes) {
  return {bytes.coordinate(), bytes.coordinate(), bytes.coordinate()};
}

Eye eyeOf(Bytes& bytes) {
  Eye eye;
  const auto flags = bytes.take<std::uint8_t>();
  eye.options.twoSided = (flags & 1) != 0;
  eye.options.alone = (flags & 2) != 0;
  if ((flags & 4) != 0) eye.options.forward = vectorOf(bytes);
  if ((flags & 8) != 0) eye.options.up = vectorOf(bytes);
  if ((flags & 16) != 0) eye.index.flatness = std::abs(bytes.coordinate());
  if ((flags & 32) != 0) eye.index.coplanar = std::abs(bytes.coordinate());
  eye.place = vectorOf(bytes);
  return eye;
}

Eye eyeOf(const std::string& text) {
  const auto end = std::find_if_not(text.rbegin(), text.rend(), [](char c) { return c == ' '; });
  const auto spaces = end - text.rbegin();
  Eye eye;
  eye.options.twoSided = spaces % 2 != 0;
  if (spaces % 4 >= 2) eye.place = {0.5, 0.5, 0.5};
  if (spaces % 8 >= 4) eye.options.forward = {0, 0, -1};
  return eye;
}

// Outlines of points of their own, of points again, and of numbers that point nowhere.
PolygonScene polygonsOf(Bytes& bytes) {
  PolygonScene scene;
  scene.offsets = {0};
  int object = 1;
  int region = 0;
  while (!bytes.empty() && scene.corners.size() < MostCorners) {
    const auto head = bytes.take<std::uint8_t>();
    if ((head & 64) != 0) {
      ++object;
      region = 0;
    }
    for (int i = 0; i < (head & 15); ++i) {
      const auto which = bytes.take<std::uint8_t>();
      const int number = which - 160;
      const bool isOld = number >= 0 && static_cast<std::size_t>(number) < scene.points.size();
      scene.corners.push_back(isOld          ? number
                              : which == 159 ? -1
                                             : static_cast<int>(scene.points.size()));
      scene.docking.push_back(head >> 7);
      if (!isOld && which != 159) scene.points.push_back(vectorOf(bytes));
    }
    scene.offsets.push_back(scene.corners.size());
    scene.labels.push_back({object, (head & 32) != 0 ? -1 : region + 1, region + 1});
    ++region;
  }
  return scene;
}

bool isUnit(const Vector& v) {
  return std::abs(v[0] * v[0] + v[1] * v[1] + v[2] * v[2] - 1.0) < 1e-12;
}

void checkMap(const VisibleMap& map) {
  const auto vertices = static_cast<int>(map.vertices.size());
  const auto cells = static_cast<int>(map.cells.size());
  require(std::all_of(map.vertices.begin(), map.vertices.end(), isUnit));
  for (const VisibleMap::Edge& edge : map.edges) {
    require(edge.from >= 0 && edge.from < vertices && edge.to >= 0 && edge.to < vertices);
    require(edge.from != edge.to && edge.left != edge.right);
    require(edge.left >= -1 && edge.left < cells && edge.right >= -1 && edge.right < cells);
  }
  double solidAngle = 0.0;
  double viewFactor = 0.0;
  for (const VisibleMap::Cell& cell : map.cells) {
    require(cell.solidAngle >= 0.0 && cell.viewFactor >= 0.0);
    require(cell.minDistance >= 0.0 && cell.minDistance <= cell.maxDistance * (1.0 + 1e-9));
    require(cell.firstRing + cell.ringCount < map.ringOffsets.size());
    solidAngle += cell.solidAngle;
    viewFactor += cell.viewFactor;
  }
  require(std::abs(solidAngle - map.fieldSolidAngle()) <= 1e-9);
  if (map.field == Field::Hemisphere) require(std::abs(viewFactor - 1.0) <= 1e-9);
  const MapShares shares(map);
  for (const double fraction : shares.visibleFractions())
    require(fraction >= 0.0 && fraction <= 1.0);
}

void checkCrossings(const SceneIndex& index) {
  const auto regions = static_cast<int>(index.regionCount());
  for (const SceneCrossing& crossing : index.crossings()) {
    require(crossing.regions[0] >= 0 && crossing.regions[0] < crossing.regions[1]);
    require(crossing.regions[1] < regions);
    for (const Vector& end : {crossing.from, crossing.to})
      for (const double coordinate : end) require(std::isfinite(coordinate));
  }
}

void look(const SceneIndex& index, Eye eye) {
  for (const Field field : {Field::Hemisphere, Field::Sphere}) {
    eye.options.field = field;
    checkMap(index.look(eye.place, eye.options));
  }
  const auto seen = index.seenIn(
      eye.place, {{1, 0, 0}, {-0.3, 0.2, 1e-300}, {1e300, 1e300, -1e299}}, eye.options.twoSided);
  for (const Seen& one : seen) require(one.distance >= 0.0);
  checkCrossings(index);
}

std::size_t cornersOf(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), ','));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  if (size > LargestInput) return 0;
  try {
    if (size > 0 && data[0] == '{') {
      const std::string text = Bytes(data, size).rest();
      if (cornersOf(text) > 4 * MostCorners) return 0;
      const Eye eye = eyeOf(text);
      look(SceneIndex(Lumivane::Session::LoadedScene::fromText(text, "fuzz"), eye.index), eye);
    } else {
      Bytes bytes(data, size);
      const Eye eye = eyeOf(bytes);
      look(SceneIndex(polygonsOf(bytes), eye.index), eye);
    }
  } catch (const Lumivane::Session::Error&) {
    // A text that is no scene.
  } catch (const std::invalid_argument& error) {
    require(error.what()[0] != '\0');
  }
  return 0;
}
