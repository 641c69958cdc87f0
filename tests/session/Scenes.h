#pragma once

#include <lumivane/session/LoadedScene.h>

#include <string>

namespace Lumivane::Test {

/// The text of a scene of one square of the side 2 at x = 3, seen from the origin along x. Its one
/// face has the region, pen and brush 1; one property (7) and one scale go with it.
inline std::string squareText(
    const std::string& region = R"({"Brush":1,"Face":1,"Points":[1,2,3,4]})") {
  return R"({"Points":[[3,-1,-1],[3,1,-1],[3,1,1],[3,-1,1]],"Brushes":[[200,10,20,255]],)"
         R"("Pens":[[0,0,0,255,1]],"Properties":[[7,"warmth"]],)"
         R"("Scales":[{"Name":"heat","Items":[[0,10,20,30]]}],)"
         R"("Objects":[{"Id":"wall","Pen":1,"Faces":[{"Regions":[1]}],"Regions":[)" +
         region + "]}]}";
}

inline Session::LoadedScene squareScene() {
  return Session::LoadedScene::fromText(squareText(), "square");
}

inline Session::LoadedScene smallScene() {
  return Session::LoadedScene::fromFile(LUMIVANE_SCENES "/small.json");
}

/// A view of smallScene().
inline Session::ViewSettings smallView() {
  Session::ViewSettings view;
  view.eye = {-2.6, 0.35, 1.9};
  view.forward = {1.0, -0.06, -0.45};
  return view;
}

}  // namespace Lumivane::Test
