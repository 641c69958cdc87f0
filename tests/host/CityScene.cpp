#include "host/CityScene.h"

#include <array>
#include <vector>

namespace Lumivane::Test {
namespace {

using Corner = std::array<int, 3>;

class CityText {
 public:
  void addTerrain(int x, int y, int z) {
    const int first = static_cast<int>(vertices.size());
    for (const Corner& corner :
         {Corner{0, 0, z}, Corner{x, 0, z}, Corner{x, y, z}, Corner{0, y, z}})
      vertices.push_back(corner);
    const std::string a = std::to_string(first);
    add("terrain", "TINRelief", "",
        R"({"type":"CompositeSurface","lod":"1","boundaries":[[[)" + a + "," + next(first, 1) +
            "," + next(first, 2) + "]],[[" + a + "," + next(first, 2) + "," + next(first, 3) +
            "]]]}");
  }

  void addBox(const std::string& id, const std::string& type, const std::string& more, Corner low,
              Corner high) {
    const int first = static_cast<int>(vertices.size());
    for (int i = 0; i < 8; ++i)
      vertices.push_back({(i & 1) != 0 ? high[0] : low[0], (i & 2) != 0 ? high[1] : low[1],
                          (i & 4) != 0 ? high[2] : low[2]});
    // Counter-clockwise as seen from outside: floor, top, low y, high y, low x, high x.
    const std::vector<std::array<int, 4>> sides = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                                   {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    std::string shell;
    for (const std::array<int, 4>& side : sides) {
      shell += shell.empty() ? "[[" : ",[[";
      for (std::size_t i = 0; i < side.size(); ++i)
        shell += (i == 0 ? "" : ",") + next(first, side[i]);
      shell += "]]";
    }
    add(id, type, more, R"({"type":"Solid","lod":"1","boundaries":[[)" + shell + "]]}");
  }

  void addWhole(const std::string& id, const std::string& more) {
    objects += (objects.empty() ? "" : ",") + ("\"" + id + R"(":{"type":"Building")" + more + "}");
  }

  std::string text(const std::string& referenceSystem) const {
    std::string list;
    for (const Corner& corner : vertices)
      list += (list.empty() ? "[" : ",[") + std::to_string(corner[0]) + "," +
              std::to_string(corner[1]) + "," + std::to_string(corner[2]) + "]";
    const std::string metadata =
        referenceSystem.empty() ? ""
                                : R"("metadata":{"referenceSystem":")" + referenceSystem + "\"},";
    return R"({"type":"CityJSON","version":"2.0",)" + metadata +
           R"("transform":{"scale":[1,1,1],"translate":[100000,400000,0]},"CityObjects":{)" +
           objects + R"(},"vertices":[)" + list + "]}";
  }

 private:
  static std::string next(int first, int offset) { return std::to_string(first + offset); }

  void add(const std::string& id, const std::string& type, const std::string& more,
           const std::string& geometry) {
    objects += (objects.empty() ? "" : ",") + ("\"" + id + R"(":{"type":")" + type + "\"" + more +
                                               R"(,"geometry":[)" + geometry + "]}");
  }

  std::vector<Corner> vertices;
  std::string objects;
};

}  // namespace

std::string cityText(const std::string& referenceSystem) {
  CityText city;
  city.addTerrain(12, 11, 1);
  city.addWhole("house", R"(,"children":["house-1","house-2"])");
  city.addBox("house-1", "BuildingPart", R"(,"parents":["house"])", {2, 2, 1}, {4, 6, 8});
  city.addBox("house-2", "BuildingPart", R"(,"parents":["house"])", {4, 2, 1}, {6, 6, 8});
  city.addBox("shed", "Building", "", {15, 2, 1}, {19, 6, 4});
  return city.text(referenceSystem);
}

}  // namespace Lumivane::Test
