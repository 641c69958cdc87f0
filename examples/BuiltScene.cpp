// A scene built in memory: a wall with a window, and a post behind it.

#include <lumivane/lumivane.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Base = Lumivane::Base;
namespace Geometry = Lumivane::Geometry;
namespace Scene = Lumivane::Scene;
namespace Session = Lumivane::Session;

using Loop = std::vector<Geometry::Point3d>;

// A rectangle across the line of sight; the other way round it is a hole in a larger one.
Loop rectangle(double x, double halfWidth, double halfHeight, bool isHole = false) {
  const double w = isHole ? -halfWidth : halfWidth;
  return {{x, -w, -halfHeight},
          {x, w, -halfHeight},
          {x, w, halfHeight},
          {x, -w, halfHeight},
          {x, -w, -halfHeight}};
}

Scene::Object& addObject(Scene::Scene3D& scene, const std::string& id) {
  auto* const object = new Scene::Object();
  scene.getObjects()->addObject(object);  // which owns it from now on
  object->setId(id);
  object->setPenNumber(1);
  object->setFaces(new Geometry::Faces());
  object->setRegions(new Geometry::Regions());
  return *object;
}

Session::LoadedScene wallAndPost() {
  auto scene = std::make_unique<Scene::Scene3D>();
  scene->setPoints(new Geometry::Points3d());
  scene->setObjects(new Scene::Objects());
  scene->setBrushes(new Base::Brushes());
  scene->getBrushes()->addBrush(new Base::Brush(200, 180, 150, 255));
  scene->getBrushes()->addBrush(new Base::Brush(90, 60, 30, 255));
  scene->setPens(new Base::Pens());
  scene->getPens()->addPen(new Base::Pen());

  Geometry::Face::makeFromLoops(scene.get(), &addObject(*scene, "wall"),
                                {rectangle(3, 2, 1), rectangle(3, 0.5, 0.5, true)}, 1);
  Geometry::Face::makeFromLoops(scene.get(), &addObject(*scene, "post"), {rectangle(5, 0.2, 2)}, 2);
  return Session::LoadedScene::adopt(scene.release(), "wall and post");
}

int main(int, char** argv) try {
  Session::LoadedScene scene = wallAndPost();
  const Session::TakenShot shot = scene.take({});
  shot.write(argv[1]);
  for (const auto* object : *shot.shot().getObjects()->getObjects())
    std::cout << object->getId() << ": faces seen " << object->getFaces()->getFaces()->size()
              << '\n';
} catch (const Session::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
