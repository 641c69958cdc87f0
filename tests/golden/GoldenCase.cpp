// Makes the shot of one case in a fresh process: `golden_case FOLDER NAME OUT` reads
// FOLDER/NAME.scene.json and .view.json, and writes OUT.shot.json (if there is a shot) and
// OUT.stats.json, both to be compared by the parent. Runs in the folder of OUT.

#include "support/Capture.h"
#include "support/ShotScene.h"
#include "support/Vectors.h"

#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/Properties.h>
#include <lumivane/base/Property.h>
#include <lumivane/base/Scale.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using Lumivane::Test::Json;
using Lumivane::Test::SharingShot;
namespace Geometry = Lumivane::Geometry;
namespace Base = Lumivane::Base;
namespace Scene = Lumivane::Scene;

/// A view as the case's file describes it; owns what the library's View only points at.
struct CaseView {
  explicit CaseView(const Json& json)
      : orientation(new Geometry::Point3d(number(json, "eye", 0), number(json, "eye", 1),
                                          number(json, "eye", 2)),
                    direction(json, "forward", {1, 0, 0}), direction(json, "up", {0, 0, 1})) {
    const std::string kind = json.value("camera", "spherical");
    if (kind == "spherical") view.setCamera(&spherical);
    if (kind == "normal") view.setCamera(&normal);
    if (kind == "undefined") view.setCamera(&undefined);
    view.setOrientation(&orientation);
    parameters.setPropertyNum(json.value("property", -1));
    parameters.setScaleNum(json.value("scale", -1));
    parameters.setD1(json.value("d1", 0.01));
    parameters.setD2(json.value("d2", 1.0));
    Lumivane::Cmd::CmdManager::minSegmentsNumber = json.value("sn", 6);
    Lumivane::Cmd::CmdManager::maxSegmentsLength = json.value("sl", 0.0);
  }

  Base::View view;
  Lumivane::Algorithm::ShotParameters parameters;

 private:
  struct UndefinedCamera : Base::ViewCamera {};

  static double number(const Json& json, const char* key, size_t index) {
    return Lumivane::Test::toDouble(json.at(key).at(index));
  }
  static Geometry::Vector3d* direction(const Json& json, const char* key,
                                       const std::vector<double>& otherwise) {
    const std::vector<double> v =
        json.contains(key) ? Lumivane::Test::toVector(json.at(key)) : otherwise;
    return new Geometry::Vector3d(v.at(0), v.at(1), v.at(2));
  }

  Base::ViewSphericalCamera spherical;
  Base::ViewNormalCamera normal;
  UndefinedCamera undefined;
  Base::ViewOrientation3D orientation;
};

/// Puts a VFace with the value in the place of the face, whose regions and normal it takes over:
/// [object, face, property, value].
void setFaceValue(Scene::Scene3D& scene, const Json& entry) {
  Scene::Object* object = scene.getObjects()->getObject(entry.at(0).get<int>() - 1);
  Geometry::Face*& face = object->getFaces()->getFaces()->at(entry.at(1).get<size_t>() - 1);
  auto* valued = dynamic_cast<Geometry::VFace*>(face);
  if (valued == nullptr) {
    valued = new Geometry::VFace;
    std::vector<int>* ownRegions = valued->getRegions();
    Geometry::Vector3d* ownNormal = valued->getNormal();
    valued->setRegions(face->getRegions());
    valued->setNormal(face->getNormal());
    face->setRegions(ownRegions);
    face->setNormal(ownNormal);
    delete face;
    face = valued;
  }
  valued->setProperty(entry.at(2).get<int>(), Lumivane::Test::toDouble(entry.at(3)));
}

Json eyeOf(Base::View& view) { return view.getOrientation()->getEyePosition()->toVector(); }

Json overrideColorOf(Geometry::Region2d& region) {
  if (!region.getOverrideColor()) return nullptr;
  Base::Color color = *region.getOverrideColor();
  return {color.getRed(), color.getGreen(), color.getBlue(), color.getAlpha()};
}

void describe(Lumivane::Shot::Shot2d& shot, Json& stats) {
  const auto& regions = *shot.getRegions()->getRegions();
  int emptyRegions = 0;
  Json colors = Json::array();
  for (Geometry::Region2d* region : regions) {
    emptyRegions += region->getPoints()->empty() ? 1 : 0;
    colors.push_back(overrideColorOf(*region));
  }
  size_t faces = 0;
  for (Lumivane::Shot::Object2d* object : *shot.getObjects()->getObjects())
    faces += object->getFaces()->getFaces()->size();
  stats["points"] = shot.getPoints()->getPoints()->size();
  stats["regions"] = regions.size();
  stats["emptyRegions"] = emptyRegions;
  stats["objects"] = shot.getObjects()->getObjects()->size();
  stats["faces"] = faces;
  stats["overrideColors"] = colors;
  stats["property"] =
      shot.getProperty() == nullptr ? Json() : Json(shot.getProperty()->getNumber());
  stats["scale"] = shot.getScale() == nullptr ? Json() : Json(shot.getScale()->getName());
}

Json cameraRegions(Scene::Scene3D& scene) {
  Json result = Json::object();
  for (Scene::Object* object : *scene.getObjects()->getObjects())
    if (object->getCameraInRegionIndex() >= 0)
      result[object->getId()] = object->getCameraInRegionIndex();
  return result;
}

void freeWorkingLists(Scene::Scene3D& scene) {
  if (scene.getObjects() == nullptr) return;
  for (Scene::Object* object : *scene.getObjects()->getObjects())
    Lumivane::Test::freeWorkingLists(*object);
}

Json readJson(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  return Json::parse(file);
}

Json makeShots(Scene::Scene3D& scene, const Json& json, const std::string& out) {
  for (const Json& before : json.value("before", Json::array())) {
    CaseView earlier(before);
    const SharingShot shot(scene.makeShot(&earlier.view, &earlier.parameters));
    freeWorkingLists(scene);
  }
  CaseView view(json);
  Json stats = Json::object();
  SharingShot shot;
  try {
    stats["printed"] = Lumivane::Test::capturedStdout(
        [&] { shot.reset(scene.makeShot(&view.view, &view.parameters)); });
  } catch (const std::out_of_range& error) {
    return {{"throws", "std::out_of_range"}, {"what", error.what()}};
  } catch (const std::length_error& error) {
    return {{"throws", "std::length_error"}, {"what", error.what()}};
  } catch (const std::invalid_argument& error) {
    return {{"throws", "std::invalid_argument"}, {"what", error.what()}};
  } catch (const std::runtime_error& error) {
    return {{"throws", "std::runtime_error"}, {"what", error.what()}};
  }
  if (shot == nullptr) return {{"shot", nullptr}};
  describe(*shot, stats);
  stats["eyeAfter"] = eyeOf(view.view);
  stats["cameraRegions"] = cameraRegions(scene);
  stats["progress"] = Lumivane::Utils::ProgressbarUtils::getInstance()->getProgress();
  Lumivane::IO::DataWriter().writeShotFile(shot.get(), out + ".shot.json");
  return stats;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const std::string input = std::string(argv[1]) + "/" + argv[2];
  const std::string out = argv[3];
  try {
    const Json json = readJson(input + ".view.json");
    const std::unique_ptr<Scene::Scene3D> scene(
        Lumivane::IO::DataReader().readSceneFile(input + ".scene.json"));
    if (scene == nullptr) throw std::runtime_error("no scene in " + input + ".scene.json");
    for (const Json& entry : json.value("faceValues", Json::array())) setFaceValue(*scene, entry);
    std::ofstream(out + ".stats.json") << makeShots(*scene, json, out);
    freeWorkingLists(*scene);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
