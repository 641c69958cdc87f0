#include "truth/Reduce.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace Lumivane::Truth {
namespace {

using Visibility::PolygonScene;

PolygonScene without(const PolygonScene& scene, std::size_t from, std::size_t to) {
  PolygonScene result;
  result.offsets = {0};
  std::vector<int> numbers(scene.points.size(), -1);
  for (std::size_t i = 0; i + 1 < scene.offsets.size(); ++i) {
    if (i >= from && i < to) continue;
    for (std::size_t k = scene.offsets[i]; k < scene.offsets[i + 1]; ++k) {
      int& number = numbers[static_cast<std::size_t>(scene.corners[k])];
      if (number < 0) {
        number = static_cast<int>(result.points.size());
        result.points.push_back(scene.points[static_cast<std::size_t>(scene.corners[k])]);
      }
      result.corners.push_back(number);
      if (!scene.docking.empty()) result.docking.push_back(scene.docking[k]);
    }
    result.offsets.push_back(result.corners.size());
    result.labels.push_back(scene.labels[i]);
  }
  return result;
}

/// Objects and regions counted anew, since a scene file has no gaps.
PolygonScene renumbered(PolygonScene scene) {
  int object = 0;
  int before = 0;
  int region = 0;
  for (Visibility::Label& label : scene.labels) {
    if (label.object != before) {
      before = label.object;
      ++object;
      region = 0;
    }
    ++region;
    label = {object, region, region};
  }
  return scene;
}

}  // namespace

PolygonScene reduced(PolygonScene scene, const std::function<bool(const PolygonScene&)>& bad) {
  for (std::size_t step = std::max<std::size_t>(1, scene.labels.size() / 2);; step /= 2) {
    for (std::size_t from = 0; from < scene.labels.size();) {
      PolygonScene less =
          renumbered(without(scene, from, std::min(from + step, scene.labels.size())));
      if (bad(less))
        scene = std::move(less);
      else
        from += step;
    }
    if (step <= 1) return renumbered(scene);
  }
}

std::string sceneFileText(const PolygonScene& scene) {
  std::ostringstream out;
  out.precision(17);
  out << "{\"Brushes\":[[200,200,200,255]],\"Pens\":[[0,0,0,255,1]],\n\"Points\":[";
  for (std::size_t i = 0; i < scene.points.size(); ++i)
    out << (i > 0 ? ",\n" : "\n") << '[' << scene.points[i][0] << ',' << scene.points[i][1] << ','
        << scene.points[i][2] << ']';
  out << "],\n\"Objects\":[";
  for (std::size_t i = 0; i < scene.labels.size(); ++i) {
    const bool first = i == 0 || scene.labels[i].object != scene.labels[i - 1].object;
    if (first) {
      out << (i > 0 ? "],\"Overlays\":[]},\n" : "\n") << "{\"Id\":\"" << scene.labels[i].object
          << "\",\"PartsCount\":1,\"Pen\":1,\"Parts\":[],\"Faces\":[";
      std::size_t end = i;
      while (end < scene.labels.size() && scene.labels[end].object == scene.labels[i].object) ++end;
      for (std::size_t face = 1; face <= end - i; ++face)
        out << (face > 1 ? "," : "") << "{\"Regions\":[" << face << "],\"Normal\":[0,0,1]}";
      out << "],\n \"Regions\":[";
    }
    out << (first ? "" : ",") << "\n  {\"Brush\":1,\"Face\":" << scene.labels[i].face
        << ",\"Points\":[";
    for (std::size_t k = scene.offsets[i]; k < scene.offsets[i + 1]; ++k)
      out << (k > scene.offsets[i] ? "," : "") << scene.corners[k] + 1;
    out << ']';
    if (!scene.docking.empty()) {
      out << ",\"DockingEdges\":[";
      bool any = false;
      for (std::size_t k = scene.offsets[i]; k < scene.offsets[i + 1]; ++k) {
        if (scene.docking[k] == 0) continue;
        out << (any ? "," : "") << k - scene.offsets[i] + 1;
        any = true;
      }
      out << ']';
    }
    out << '}';
  }
  if (!scene.labels.empty()) out << "],\"Overlays\":[]}";
  out << "],\"Properties\":[],\"Scales\":[]}\n";
  return out.str();
}

}  // namespace Lumivane::Truth
