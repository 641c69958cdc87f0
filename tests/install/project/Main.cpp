#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <iostream>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  Lumivane::Scene::Scene3D* const scene = Lumivane::IO::DataReader().readSceneFile(argv[1]);
  if (scene == nullptr) return 1;

  Lumivane::Base::ViewNormalCamera camera;
  Lumivane::Base::ViewOrientation3D orientation(new Lumivane::Geometry::Point3d(-4, 0.35, 1.9),
                                                new Lumivane::Geometry::Vector3d(1, 0, -0.25),
                                                new Lumivane::Geometry::Vector3d(0, 0, 1));
  Lumivane::Base::View view;
  view.setCamera(&camera);
  view.setOrientation(&orientation);
  Lumivane::Algorithm::ShotParameters parameters;
  Lumivane::Shot::Shot2d* const shot = scene->makeShot(&view, &parameters);
  if (shot == nullptr) return 1;
  Lumivane::IO::DataWriter().writeShotFile(shot, argv[2]);
  std::cout << "written: " << argv[2] << std::endl;
  return 0;
}
