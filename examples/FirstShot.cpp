#include <lumivane/lumivane.h>

namespace Lv = Lumivane;

int main(int, char** argv) {
  Lv::Scene::Scene3D* scene = Lv::IO::DataReader().readSceneFile(argv[1]);
  Lv::Base::ViewSphericalCamera camera;
  Lv::Base::ViewOrientation3D orientation;
  orientation.getEyePosition()->setX(-4);
  Lv::Base::View view;
  view.setCamera(&camera);
  view.setOrientation(&orientation);
  Lv::Algorithm::ShotParameters parameters;
  Lv::Shot::Shot2d* shot = scene->makeShot(&view, &parameters);
  Lv::IO::DataWriter().writeShotFile(shot, argv[2]);
}
