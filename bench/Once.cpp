// One run of the pipeline in a process, for counting instructions and for profiles: the scene's
// text read, the shot made, its text written. Each step is a function of a name that tools can
// pick.
//
// Usage: bench_once city|sphere COUNT [VIEW [MAX_LENGTH]]      (the first view, no length limit)

#include "scene/City.h"
#include "scene/Sphere.h"

#include <lumivane/lumivane.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <vtkSMPTools.h>

namespace Lv = Lumivane;

extern "C" {
[[gnu::noinline]] Lv::Scene::Scene3D* benchRead(const std::string* text) {
  return Lv::IO::DataReader().readSceneString(*text);
}

[[gnu::noinline]] Lv::Shot::Shot2d* benchShot(Lv::Scene::Scene3D* scene, Lv::Base::View* view,
                                              Lv::Algorithm::ShotParameters* parameters) {
  return scene->makeShot(view, parameters);
}

[[gnu::noinline]] std::size_t benchWrite(Lv::Shot::Shot2d* shot) {
  return Lv::IO::DataWriter().writeShotString(shot).size();
}
}

namespace {

using Lv::Bench::BenchScene;
using Lv::Bench::NamedView;

const NamedView& viewNamed(const BenchScene& scene, const std::string& name) {
  for (const NamedView& view : scene.views)
    if (name.empty() || view.name == name) return view;
  throw std::invalid_argument("no view " + name);
}

void run(const std::vector<std::string>& words) {
  const int count = std::stoi(words.at(1));
  const BenchScene scene = words[0] == "city" ? Lv::Bench::city(count) : Lv::Bench::sphere(count);
  const NamedView& named = viewNamed(scene, words.size() > 2 ? words[2] : "");
  const std::string text = sceneText(scene.model);
  Lv::Cmd::CmdManager::maxSegmentsLength = words.size() > 3 ? std::stod(words[3]) : 0.0;
  Lv::Base::ViewSphericalCamera camera;
  Lv::Base::ViewOrientation3D orientation(
      new Lv::Geometry::Point3d(named.eye.x, named.eye.y, named.eye.z),
      new Lv::Geometry::Vector3d(named.forward.x, named.forward.y, named.forward.z),
      new Lv::Geometry::Vector3d(named.up.x, named.up.y, named.up.z));
  Lv::Base::View view;
  view.setCamera(&camera);
  view.setOrientation(&orientation);
  Lv::Algorithm::ShotParameters parameters;
  // Scene and shot stay to the end of the process, as in the program.
  Lv::Shot::Shot2d* shot = benchShot(benchRead(&text), &view, &parameters);
  std::cout << "faces drawn " << shot->getRegions()->getRegions()->size() << ", bytes "
            << benchWrite(shot) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  vtkSMPTools::Initialize(1);  // one thread: the same work in the same order
  try {
    run({argv + 1, argv + argc});
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "Usage: bench_once city|sphere COUNT [VIEW [MAX_LENGTH]]\nError: " << error.what()
              << '\n';
    return EXIT_FAILURE;
  }
}
