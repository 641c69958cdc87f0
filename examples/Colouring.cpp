// Colours the faces of a scene by how large they are, through a scale from blue to red.

#include <lumivane/lumivane.h>

#include <iostream>

namespace Base = Lumivane::Base;
namespace Session = Lumivane::Session;

constexpr int Size = 1;  // the property's own number

void addSizeAndScale(Lumivane::Scene::Scene3D& scene) {
  scene.getProperties()->addProperty(new Base::Property(Size, "points of the face's regions"));
  auto* const scale = new Base::Scale();
  scale->addItem(3, 0, 0, 255);
  scale->addItem(4, 255, 0, 0);
  scene.getScales()->addScale(scale);
}

int sizeOf(Lumivane::Scene::Object& object, Lumivane::Geometry::Face& face) {
  size_t points = 0;
  for (const int region : *face.getRegions())
    points += object.getRegions()->getRegion(region - 1)->getPoints()->size();
  return static_cast<int>(points);
}

void setSizes(Lumivane::Scene::Object& object) {
  const int faces = static_cast<int>(object.getFaces()->getFaces()->size());
  for (int number = 1; number <= faces; ++number)
    Session::setFaceValue(object, number, Size,
                          sizeOf(object, *object.getFaces()->getFace(number - 1)));
}

int main(int, char** argv) try {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(argv[1]);
  addSizeAndScale(scene.scene());
  for (auto* object : *scene.scene().getObjects()->getObjects()) setSizes(*object);

  Session::ViewSettings view;
  view.eye = {-2.6, 0.35, 1.9};
  view.forward = {1, -0.06, -0.45};
  view.property = Size;
  view.scale = 1;
  const Session::TakenShot shot = scene.take(view);
  for (auto* region : *shot.shot().getRegions()->getRegions()) {
    const auto colour = region->getOverrideColor();
    if (colour && colour->getBlue() == 255) std::cout << "triangle: blue\n";
    if (colour && colour->getRed() == 255) std::cout << "quadrangle: red\n";
  }
} catch (const Session::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
