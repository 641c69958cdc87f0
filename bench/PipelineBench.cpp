// The whole pipeline on the sample scenes, by the public classes: reading, the shot, writing.
// The library prints its lines between the results; --benchmark_out=FILE keeps them apart.

#include <lumivane/lumivane.h>

#include <fstream>
#include <iterator>
#include <string>

#include <benchmark/benchmark.h>

namespace {

namespace Lv = Lumivane;

std::string textOf(const char* scene) {
  std::ifstream file(std::string(LUMIVANE_SCENES "/") + scene);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void readScene(benchmark::State& state, const char* name) {
  const std::string text = textOf(name);
  for (auto _ : state) delete Lv::IO::DataReader().readSceneString(text);
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}

/// Forgets what the shot shares with the scene, so that both can be destroyed.
void destroyShot(Lv::Shot::Shot2d* shot) {
  shot->setBrushes(nullptr);
  shot->setPens(nullptr);
  shot->setScale(nullptr);
  shot->setProperty(nullptr);
  delete shot;
}

/// A round view along x with the length limit of the program.
struct BenchView {
  explicit BenchView(const Lv::Geometry::Point3d& eye)
      : orientation(new Lv::Geometry::Point3d(eye), new Lv::Geometry::Vector3d(1, 0, 0),
                    new Lv::Geometry::Vector3d(0, 0, 1)) {
    view.setCamera(&camera);
    view.setOrientation(&orientation);
    Lv::Cmd::CmdManager::maxSegmentsLength = 0.02;
  }
  Lv::Shot::Shot2d* shotOf(Lv::Scene::Scene3D& scene) { return scene.makeShot(&view, &parameters); }

  Lv::Base::ViewSphericalCamera camera;
  Lv::Base::ViewOrientation3D orientation;
  Lv::Base::View view;
  Lv::Algorithm::ShotParameters parameters;
};

void makeShot(benchmark::State& state, const char* name, Lv::Geometry::Point3d eye) {
  Lv::Scene::Scene3D* scene = Lv::IO::DataReader().readSceneString(textOf(name));
  for (auto _ : state) destroyShot(BenchView(eye).shotOf(*scene));
  delete scene;
}

void writeShot(benchmark::State& state, const char* name, Lv::Geometry::Point3d eye) {
  Lv::Scene::Scene3D* scene = Lv::IO::DataReader().readSceneString(textOf(name));
  Lv::Shot::Shot2d* shot = BenchView(eye).shotOf(*scene);
  for (auto _ : state) benchmark::DoNotOptimize(Lv::IO::DataWriter().writeShotString(shot));
  destroyShot(shot);
  delete scene;
}

const Lv::Geometry::Point3d RoomEye(0.35, 2.137, 1.6);
const Lv::Geometry::Point3d StreetEye(-5.3, -1.37, 3.4);

BENCHMARK_CAPTURE(readScene, room, "room.json")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readScene, street, "street.json")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(makeShot, room, "room.json", RoomEye)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(makeShot, street, "street.json", StreetEye)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeShot, street, "street.json", StreetEye)->Unit(benchmark::kMillisecond);

}  // namespace
