// Opens windows through the library, for a test that looks at them from outside:
//
//   show_windows models SCENE SHOT X,Y,Z normal|spherical   both, seen from the eye X,Y,Z
//   show_windows files SCENE SHOT                            both, by their file names
//   show_windows scene SCENE                                 the scene's window alone
//   show_windows shot SHOT                                   the shot's window alone
//   show_windows debug                                       two triangles, shown twice
//
// It prints "returned" after each call that opened windows.

#include "view/Drivers.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/VtkUtils.h>
#include <lumivane/view/DebugViewer.h>
#include <lumivane/view/Viewer.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace {

using Lumivane::Base::ViewCamera;
using Lumivane::Base::ViewNormalCamera;
using Lumivane::Base::ViewOrientation3D;
using Lumivane::Base::ViewSphericalCamera;
using Lumivane::Geometry::Point3d;
using Lumivane::Geometry::Vector3d;
using Lumivane::IO::DataReader;
using Lumivane::Utils::VtkUtils;
using Lumivane::View::DebugViewer;
using Lumivane::View::Viewer;
using ScenePointer = std::unique_ptr<Lumivane::Scene::Scene3D>;
using ShotPointer = std::unique_ptr<Lumivane::Shot::Shot2d>;

void tellReturn() {
  std::puts("returned");
  std::fflush(stdout);
}

int showModels(const std::vector<std::string>& arguments) {
  DataReader reader;
  const ScenePointer scene(reader.readSceneFile(arguments.at(1)));
  const ShotPointer shot(reader.readShotFile(arguments.at(2)));
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  if (std::sscanf(arguments.at(3).c_str(), "%lf,%lf,%lf", &x, &y, &z) != 3) return 2;
  ViewOrientation3D orientation(new Point3d(x, y, z), new Vector3d(1, 0, 0), new Vector3d(0, 0, 1));
  ViewNormalCamera normal;
  ViewSphericalCamera spherical;
  Lumivane::Base::View view;
  view.setOrientation(&orientation);
  view.setCamera(arguments.at(4) == "normal" ? static_cast<ViewCamera*>(&normal) : &spherical);
  shot->setView(&view);
  Viewer::createSceneAndShotView(scene.get(), shot.get());
  tellReturn();
  return 0;
}

int showDebug() {
  DebugViewer viewer;
  viewer.addActor(VtkUtils::createPolydataFromPolygon({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}),
                  {200, 40, 40, 255});
  viewer.addActor(VtkUtils::createPolydataFromPolygon({{0.5, 0.5, 1}, {1.5, 0.5, 1}, {0.5, 1, 1}}),
                  {40, 40, 200, 128});
  for (int i = 0; i < 2; ++i) {
    viewer.show();
    tellReturn();
  }
  return 0;
}

int show(const std::vector<std::string>& arguments) {
  const std::string& what = arguments.at(0);
  if (what == "models") return showModels(arguments);
  if (what == "debug") return showDebug();
  DataReader reader;
  if (what == "files") Viewer::createSceneAndShotView(arguments.at(1), arguments.at(2));
  if (what == "scene") {
    const ScenePointer scene(reader.readSceneFile(arguments.at(1)));
    Viewer::createSceneAndShotView(scene.get(), nullptr);
  }
  if (what == "shot") {
    const ShotPointer shot(reader.readShotFile(arguments.at(1)));
    Viewer::createSceneAndShotView(nullptr, shot.get());
  }
  tellReturn();
  return 0;
}

}  // namespace

int main(int count, char** values) {
  try {
    Lumivane::Test::keepDrivers();
    return show(std::vector<std::string>(values + 1, values + count));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "show_windows: %s\n", error.what());
    return 2;
  }
}
