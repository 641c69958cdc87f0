// What is seen of each object of a scene from many eye points around it.

#include <lumivane/lumivane.h>

#include <cmath>
#include <iostream>

namespace Session = Lumivane::Session;

constexpr int Eyes = 8;

// Looking at the origin from a circle around it.
Session::ViewSettings viewFrom(int number) {
  const double angle = 2.0 * 3.14159265358979323846 * (number + 0.1) / Eyes;
  Session::ViewSettings view;
  view.eye = {4.0 * std::cos(angle), 4.0 * std::sin(angle), 2.0};
  view.forward = {-view.eye[0], -view.eye[1], -view.eye[2]};
  return view;
}

int main(int, char** argv) try {
  const Lumivane::Cmd::MessageScope quiet({});  // drops the lines that the library prints
  Session::LoadedScene scene = Session::LoadedScene::fromFile(argv[1]);
  for (int i = 0; i < Eyes; ++i) {
    const Session::TakenShot shot = scene.take(viewFrom(i));
    std::cout << "eye " << i + 1 << ':';
    for (const auto* object : *shot.shot().getObjects()->getObjects())
      std::cout << ' ' << object->getId() << ' ' << object->getFaces()->getFaces()->size();
    std::cout << '\n';
  }
} catch (const Session::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
