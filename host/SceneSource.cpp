// A scene comes from a scene file, or from a mesh or city model by Tools::modelOf. For many eyes a
// model is read once, since only the order of its objects depends on the eye.

#include "SceneSource.h"

#include "HostError.h"
#include "StatsNumbers.h"
#include "Tools.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/ClassFile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
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
  if (shift == Session::Vector{}) return shift;
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

// A file of another format is not blamed for its text.
Session::LoadedScene readSceneFile(const std::string& path) {
  try {
    return Session::LoadedScene::fromFile(path);
  } catch (const Session::Error& error) {
    const std::string ending = std::filesystem::path(path).extension().string();
    const bool isOther = !ending.empty() && ending != ".json" && ending != ".json5";
    if (isOther && error.cause().compare(0, 8, "not JSON") == 0)
      throw HostError(path,
                      "is of no format that is read: those are scenes (JSON), OBJ, STL, PLY, "
                      "glTF and CityJSON; export it as one of them");
    throw;
  }
}

void addGivenClasses(Session::LoadedScene& scene, const ImportSettings& settings) {
  if (!settings.classes.empty()) Session::readClasses(scene, settings.classes);
}

// A scene file with its classes.
Session::LoadedScene fileWithClasses(const std::string& path, const ImportSettings& settings) {
  Session::LoadedScene scene = readSceneFile(path);
  if (settings.asksForClasses) Session::readClassesBeside(scene);
  addGivenClasses(scene, settings);
  return scene;
}

// What only models take: an option of those that is given, or empty.
std::string modelOption(const ImportSettings& settings, const std::string& scaleOption) {
  if (settings.twoSided) return "--two-sided";
  if (settings.flip) return "--flip";
  if (settings.yUp) return "--y-up";
  if (settings.scale != 1.0) return scaleOption;
  if (settings.crease >= 0.0) return "--crease";
  return "";
}

SourcedScene sceneFile(const std::string& path, const ImportSettings& settings) {
  refuseModelOptions(path, settings);
  SourcedScene source;
  source.lazy = std::make_shared<LazyScene>(fileWithClasses(path, settings));
  source.isSceneFile = true;
  source.import = Jzon::Node(Jzon::Node::T_INVALID);
  if (!settings.center) return source;
  source.eyeShift = centred(source.scene().scene());
  source.place.shift = source.eyeShift;
  source.import = shiftNode(source.eyeShift);
  return source;
}

// A scene that has been made ready is as it is.
void checkReadySettings(const std::string& path, const ImportSettings& settings) {
  std::string option = modelOption(settings, "--scale");  // its name there
  if (settings.center) option = "--center";
  if (!settings.classes.empty()) option = "--classes";
  if (!option.empty())
    throw ArgumentError(path, "is a scene made ready, which stays as it is: give " + option +
                                  " to lumivane import when it is made");
}

// The model is kept as long as the scene may still be made of it.
SourcedScene readyScene(const std::shared_ptr<Tools::Model>& model) {
  SourcedScene source;
  source.lazy = std::make_shared<LazyScene>([model] { return model->scene({}); });
  source.import = model->reportNode();
  source.place = model->place();
  source.wholes = model->wholes();
  source.ready = model->ready();
  return source;
}

SourcedScene importedScene(Tools::Model& model, const std::optional<std::array<double, 3>>& eye) {
  SourcedScene source;
  source.lazy = std::make_shared<LazyScene>(model.scene(eye));
  std::cout << model.reportText() << std::flush;
  source.import = model.reportNode();
  source.place = model.place();
  source.wholes = model.wholes();
  return source;
}

SourcedScene sourced(const std::shared_ptr<Tools::Model>& model, const std::string& path,
                     const ImportSettings& settings,
                     const std::optional<std::array<double, 3>>& eye) {
  if (model == nullptr) return sceneFile(path, settings);
  if (model->ready() == nullptr) return importedScene(*model, eye);
  checkReadySettings(path, settings);
  return readyScene(model);
}

}  // namespace

void refuseModelOptions(const std::string& path, const ImportSettings& settings) {
  const std::string option = modelOption(settings, settings.scaleOption);
  if (!option.empty())
    throw ArgumentError(path, "is a scene file, whose polygons stay as they are: leave out " +
                                  option + ", which is for meshes and city models");
}

Session::Vector moved(const Session::Vector& point, const Session::Vector& shift) {
  return {point[0] + shift[0], point[1] + shift[1], point[2] + shift[2]};
}

std::vector<std::string> sourceFiles(const std::string& path, const ImportSettings& settings) {
  std::vector<std::string> files = Tools::sourceFiles(path);
  for (const std::string& other : settings.also)
    for (std::string& file : Tools::sourceFiles(other)) files.push_back(std::move(file));
  const std::string beside = Session::classFileBeside(path);
  std::error_code ignored;
  if (settings.asksForClasses && isSceneFile(path) &&
      std::filesystem::is_regular_file(beside, ignored))
    files.push_back(beside);
  if (!settings.classes.empty()) files.push_back(settings.classes);
  return files;
}

bool isSceneFile(const std::string& path) { return !Tools::isImportable(path); }

SourcedScene loadScene(const std::string& path, const ImportSettings& settings) {
  return sourced(Tools::modelOf(path, settings), path, settings, settings.eye);
}

std::unique_ptr<const Check::InsideTest> insideTestOf(const SourcedScene& source) {
  if (source.ready) return Tools::insideTestOf(*source.ready);
  return std::make_unique<const Check::InsideTest>(source.scene().scene());
}

const std::vector<std::string>& classNames(const SourcedScene& source) {
  return source.ready ? Tools::classNamesOf(*source.ready) : source.scene().classes().names;
}

std::vector<std::string> classNamesOf(const std::string& path, const ImportSettings& settings) {
  const std::unique_ptr<Tools::Model> model = Tools::modelOf(path, settings);
  if (model == nullptr) return fileWithClasses(path, settings).classes().names;
  if (model->ready()) return Tools::classNamesOf(*model->ready());
  return model->scene({}).classes().names;
}

SceneForEyes::SceneForEyes(const std::string& path, const ImportSettings& settings)
    : model(Tools::modelOf(path, settings)), current(sourced(model, path, settings, {})) {}

SceneForEyes::~SceneForEyes() = default;

Session::LoadedScene& SceneForEyes::at(const std::array<double, 3>& eye) {
  // One that came ready lists its objects as they are in its file.
  if (model && !current.ready && currentEye != eye) {
    currentEye.reset();  // so that a failure leaves no scene under a wrong eye
    current.lazy = std::make_shared<LazyScene>(model->scene(eye));
    currentEye = eye;
  }
  return current.scene();
}

}  // namespace Lumivane::Host
