// Three boxes from plain arrays: a shot, its polygons, and how much of the view each box takes.

#include <lumivane/lumivane.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <iostream>

namespace Session = Lumivane::Session;
namespace Visibility = Lumivane::Visibility;

int main() try {
  Session::ScenePolygons boxes;  // points, corners, objects: see also its add()
  boxes.addBox({4, -2.5, -0.5}, {5, -1.5, 0.5}, 0);
  boxes.addBox({3, -0.5, -0.5}, {4, 0.5, 1.5}, 1);
  boxes.addBox({6, -1.0, -0.5}, {7, 3.0, 2.5}, 2);
  Session::LoadedScene scene = Session::LoadedScene::fromPolygons(boxes, "three boxes");
  const Session::TakenShot shot = scene.take({});  // from (0, 0, 0) along x
  const Session::ShotPolygons seen = shot.polygons();
  for (std::size_t i = 0; i < seen.count(); ++i)
    std::cout << "object " << seen.objects[i] << ", face " << seen.faces[i] << ": "
              << seen.offsets[i + 1] - seen.offsets[i] << " points\n";
  const Visibility::MapShares shares(Visibility::SceneIndex(scene).look(shot.eye()));
  for (const auto& row : shares.objects())
    std::cout << "object " << row.label.object << ": view factor " << row.share.viewFactor << '\n';
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
