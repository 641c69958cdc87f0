#include "SceneSource.h"

#include "StatsNumbers.h"

#ifdef LUMIVANE_HOST_TOOLS
#include "ImportWork.h"

#include <lumivane/importers/Importer.h>
#endif

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <limits>
#include <utility>

namespace Lumivane::Host {
namespace {

bool isFinite(const Geometry::Point3d& point) {
  return std::isfinite(point.getX()) && std::isfinite(point.getY()) && std::isfinite(point.getZ());
}

// What brings the middle of a scene to x = y = 0 and its lowest point to z = 0, in whole units.
Session::Vector shiftToCentre(const Geometry::Points3d::Vector& points) {
  constexpr double infinite = std::numeric_limits<double>::infinity();
  Session::Vector lower{infinite, infinite, infinite};
  Session::Vector upper{-infinite, -infinite, -infinite};
  for (const Geometry::Point3d* const point : points) {
    if (point == nullptr || !isFinite(*point)) continue;
    const Session::Vector at{point->getX(), point->getY(), point->getZ()};
    for (size_t axis = 0; axis < 3; ++axis) {
      lower[axis] = std::min(lower[axis], at[axis]);
      upper[axis] = std::max(upper[axis], at[axis]);
    }
  }
  if (lower[0] > upper[0]) return {};
  // Halved first: a sum may be beyond a double. Adding 0 makes a 0 of -0.
  return {0.0 - std::round(lower[0] / 2 + upper[0] / 2),
          0.0 - std::round(lower[1] / 2 + upper[1] / 2), 0.0 - std::floor(lower[2])};
}

// Moves a scene to its centre, prints by how much, and returns that.
Session::Vector centred(Scene::Scene3D& scene) {
  if (scene.getPoints() == nullptr || scene.getPoints()->getPoints() == nullptr) return {};
  const Session::Vector shift = shiftToCentre(*scene.getPoints()->getPoints());
  for (Geometry::Point3d* const point : *scene.getPoints()->getPoints()) {
    if (point == nullptr) continue;
    point->setX(point->getX() + shift[0]);
    point->setY(point->getY() + shift[1]);
    point->setZ(point->getZ() + shift[2]);
  }
  char text[200];
  std::snprintf(text, sizeof text, "%.17g,%.17g,%.17g", shift[0], shift[1], shift[2]);
  std::cout << "Moved by " << text << ": scene and eye\n" << std::flush;
  return shift;
}

Jzon::Node shiftNode(const Session::Vector& shift) {
  Jzon::Node list = Jzon::array();
  for (const double value : shift) list.add(numberNode(value));
  Jzon::Node node = Jzon::object();
  node.add("shift", list);
  return node;
}

SourcedScene sceneFile(const std::string& path, const ImportSettings& settings) {
  SourcedScene source{
      Session::LoadedScene::fromFile(path), Jzon::Node(Jzon::Node::T_INVALID), true, {}};
  if (!settings.center) return source;
  source.eyeShift = centred(source.scene.scene());
  source.import = shiftNode(source.eyeShift);
  return source;
}

}  // namespace

Session::Vector moved(const Session::Vector& point, const Session::Vector& shift) {
  return {point[0] + shift[0], point[1] + shift[1], point[2] + shift[2]};
}

std::vector<std::string> sourceFiles(const std::string& path) {
#ifdef LUMIVANE_HOST_TOOLS
  return Importers::Importer::inputFiles(path);
#else
  return {path};
#endif
}

bool isSceneFile(const std::string& path) {
#ifdef LUMIVANE_HOST_TOOLS
  return !Importers::Importer::isImportable(path);
#else
  static_cast<void>(path);
  return true;
#endif
}

SourcedScene loadScene(const std::string& path, const ImportSettings& settings) {
#ifdef LUMIVANE_HOST_TOOLS
  if (Importers::Importer::isImportable(path)) {
    Importers::ImportedScene imported = importFile(path, settings);
    std::cout << reportText(imported.report) << std::flush;
    return {std::move(imported.scene), reportNode(imported.report), false, {}};
  }
#endif
  return sceneFile(path, settings);
}

#ifdef LUMIVANE_HOST_TOOLS
struct SceneForEyes::Model {
  static std::unique_ptr<Model> of(const std::string& path, const ImportSettings& settings) {
    if (!Importers::Importer::isImportable(path)) return nullptr;
    return std::make_unique<Model>(Model{Importers::ImportedModel(path, importOptions(settings))});
  }

  Session::LoadedScene scene(const std::optional<std::array<double, 3>>& eye, bool isReported) {
    Importers::ImportedScene imported = file.sceneFor(eye);
    if (isReported) std::cout << reportText(imported.report) << std::flush;
    return std::move(imported.scene);
  }

  Importers::ImportedModel file;
};
#else
struct SceneForEyes::Model {};
#endif

SceneForEyes::SceneForEyes(const std::string& path, const ImportSettings& settings)
#ifdef LUMIVANE_HOST_TOOLS
    : model(Model::of(path, settings)),
      current(model ? model->scene({}, true) : Session::LoadedScene::fromFile(path)) {
  if (!model && settings.center) shift = centred(current.scene());
}
#else
    : current(Session::LoadedScene::fromFile(path)) {
  if (settings.center) shift = centred(current.scene());
}
#endif

SceneForEyes::~SceneForEyes() = default;

Session::LoadedScene& SceneForEyes::at(const std::array<double, 3>& eye) {
#ifdef LUMIVANE_HOST_TOOLS
  if (model && currentEye != eye) {
    currentEye.reset();  // so that a failure leaves no scene under a wrong eye
    current = model->scene(eye, false);
    currentEye = eye;
  }
#else
  static_cast<void>(eye);
#endif
  return current;
}

}  // namespace Lumivane::Host
