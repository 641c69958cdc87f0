#include <lumivane/lumivane.h>

#include <iostream>

namespace Session = Lumivane::Session;

int main(int, char** argv) try {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(argv[1]);
  Session::ViewSettings view;
  view.eye = {-4, 0, 1};
  scene.take(view).write(argv[2]);
} catch (const Session::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
