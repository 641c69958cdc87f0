#pragma once

#include <cmath>
#include <string>

namespace Lumivane::Test {

/// The text of a scene of one object "floor": a polygon of many corners in the plane z = 0, around
/// the origin, seen from above.
inline std::string floorText(int corners, double radius) {
  std::string points;
  std::string numbers;
  for (int i = 0; i < corners; ++i) {
    const double angle = 2.0 * 3.141592653589793 * i / corners;
    points += (i == 0 ? "[" : ",[") + std::to_string(radius * std::cos(angle)) + "," +
              std::to_string(radius * std::sin(angle)) + ",0]";
    numbers += (i == 0 ? "" : ",") + std::to_string(corners - i);
  }
  return R"({"Points":[)" + points + R"(],"Brushes":[[200,200,200,255]],"Pens":[[0,0,0,255,1]],)" +
         R"("Objects":[{"Id":"floor","Pen":1,"Faces":[{"Regions":[1]}],)" +
         R"("Regions":[{"Brush":1,"Face":1,"Points":[)" + numbers + "]}]}]}";
}

}  // namespace Lumivane::Test
