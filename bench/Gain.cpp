// The pipeline by the library against the plain one, on one scene, by turns in one process: what
// the faster forms gain, as ratios that hardly depend on the machine.
//
// Usage: bench_gain [BOXES [RUNS]]      (a town of 200 boxes seen from the air, 3 runs)

#include "plain/Pipeline.h"
#include "scene/City.h"

#include <lumivane/lumivane.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>

#include <vtkSMPTools.h>

namespace {

namespace Lv = Lumivane;
using Lv::Plain::Seconds;
using Lv::Utils::Stage;
using Lv::Utils::StageTimes;

struct Run {
  Seconds seconds;
  std::string text;
};

Run plainRun(const std::string& sceneText, const Lv::Plain::View& atFirst) {
  Lv::Plain::Pipeline pipeline;
  Lv::Plain::View view = atFirst;
  Lv::Plain::Scene scene = pipeline.read(sceneText);
  const Lv::Plain::Shot shot = pipeline.makeShot(scene, view);
  Run run;
  run.text = pipeline.write(scene, shot);
  run.seconds = pipeline.seconds;
  return run;
}

double sum(std::initializer_list<Stage> stages) {
  double seconds = 0.0;
  for (const Stage stage : stages) seconds += StageTimes::seconds(stage);
  return seconds;
}

Run fastRun(const std::string& sceneText, const Lv::Plain::View& atFirst) {
  StageTimes::reset();
  // Scene and shot stay, as in the program: of the two only one may be deleted.
  Lv::Scene::Scene3D* scene = Lv::IO::DataReader().readSceneString(sceneText);
  Lv::Base::ViewSphericalCamera camera;
  Lv::Base::ViewOrientation3D orientation(
      new Lv::Geometry::Point3d(atFirst.eye[0], atFirst.eye[1], atFirst.eye[2]),
      new Lv::Geometry::Vector3d(atFirst.forward[0], atFirst.forward[1], atFirst.forward[2]),
      new Lv::Geometry::Vector3d(atFirst.up[0], atFirst.up[1], atFirst.up[2]));
  Lv::Base::View view;
  view.setCamera(&camera);
  view.setOrientation(&orientation);
  Lv::Algorithm::ShotParameters parameters;
  Lv::Shot::Shot2d* shot = scene->makeShot(&view, &parameters);
  Run run;
  run.text = Lv::IO::DataWriter().writeShotString(shot);
  run.seconds.read = sum({Stage::Read});
  run.seconds.project = sum({Stage::PolygonData, Stage::ClipAndCull, Stage::Projection});
  run.seconds.build = sum({Stage::Docking, Stage::Points});
  run.seconds.sort = sum({Stage::Classification, Stage::Order});
  run.seconds.write = sum({Stage::Write});
  return run;
}

void takeLeast(Seconds& least, const Seconds& other) {
  for (double Seconds::*const part :
       {&Seconds::read, &Seconds::project, &Seconds::build, &Seconds::sort, &Seconds::write})
    least.*part = std::min(least.*part, other.*part);
}

void printRow(const char* name, double plain, double fast) {
  std::cout << std::left << std::setw(10) << name << std::right << std::fixed
            << std::setprecision(5) << std::setw(11) << plain << std::setw(11) << fast
            << std::setprecision(1) << std::setw(9) << (fast > 0.0 ? plain / fast : 0.0) << '\n';
}

void printRow(const Seconds& plain, const Seconds& fast) {
  std::cout << "step          plain s     fast s    ratio\n";
  printRow("read", plain.read, fast.read);
  printRow("project", plain.project, fast.project);
  printRow("build", plain.build, fast.build);
  printRow("sort", plain.sort, fast.sort);
  printRow("write", plain.write, fast.write);
  printRow("total", plain.total(), fast.total());
}

}  // namespace

int main(int argc, char** argv) {
  const int boxes = argc > 1 ? std::atoi(argv[1]) : 200;
  const int runs = argc > 2 ? std::atoi(argv[2]) : 3;
  if (boxes < 1 || runs < 1) {
    std::cerr << "Usage: bench_gain [BOXES [RUNS]]\n";
    return EXIT_FAILURE;
  }
  vtkSMPTools::Initialize(1);  // the time of several threads would count several times
  const Lv::Bench::BenchScene town = Lv::Bench::city(boxes);
  const std::string text = sceneText(town.model);
  const Lv::Bench::NamedView& air = town.views.front();
  Lv::Plain::View view;
  view.eye = {air.eye.x, air.eye.y, air.eye.z};
  view.forward = {air.forward.x, air.forward.y, air.forward.z};
  view.up = {air.up.x, air.up.y, air.up.z};

  StageTimes::enable(true);
  Run fast = fastRun(text, view);
  Run plain = plainRun(text, view);
  for (int i = 1; i < runs; ++i) {
    takeLeast(fast.seconds, fastRun(text, view).seconds);
    takeLeast(plain.seconds, plainRun(text, view).seconds);
  }
  if (plain.text != fast.text) {
    std::cerr << "The two shots differ\n";
    return EXIT_FAILURE;
  }
  std::cout << "The town of " << boxes << " boxes from the air, processor time, least of " << runs
            << " runs; the texts of the two shots are equal\n\n";
  printRow(plain.seconds, fast.seconds);
  return EXIT_SUCCESS;
}
