// The colours are documented in docs/importing.md, which is to be changed with them.

#include "importers/CityColours.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>

namespace Lumivane::Importers {
namespace {

// Within 15 degrees of the vertical a surface is a wall.
constexpr double WallSine = 0.258819;

using Colours = std::map<std::string, SourceMaterial>;

Colours named(std::initializer_list<SourceMaterial> colours) {
  Colours result;
  for (const SourceMaterial& colour : colours) result.emplace(colour.name, colour);
  return result;
}

const Colours& surfaceColours() {
  static const Colours colours = named({
      {"RoofSurface", 190, 96, 78, 255},
      {"WallSurface", 238, 226, 204, 255},
      {"GroundSurface", 150, 142, 130, 255},
      {"ClosureSurface", 214, 222, 228, 255},
      {"OuterCeilingSurface", 206, 198, 184, 255},
      {"OuterFloorSurface", 184, 174, 158, 255},
      {"Window", 122, 164, 204, 255},
      {"Door", 126, 88, 60, 255},
      {"InteriorWallSurface", 244, 238, 226, 255},
      {"CeilingSurface", 250, 248, 242, 255},
      {"FloorSurface", 196, 168, 132, 255},
      {"WaterSurface", 132, 176, 214, 255},
      {"WaterGroundSurface", 150, 156, 140, 255},
      {"WaterClosureSurface", 160, 196, 222, 255},
      {"TrafficArea", 172, 172, 176, 255},
      {"AuxiliaryTrafficArea", 188, 196, 168, 255},
      {"TransportationMarking", 248, 248, 246, 255},
      {"TransportationHole", 96, 96, 100, 255},
  });
  return colours;
}

const Colours& objectColours() {
  static const Colours colours = named({
      {"Bridge", 176, 160, 150, 255},
      {"Building", 238, 226, 204, 255},
      {"CityFurniture", 120, 120, 128, 255},
      {"GenericCityObject", 206, 196, 180, 255},
      {"LandUse", 216, 214, 184, 255},
      {"OtherConstruction", 200, 190, 178, 255},
      {"PlantCover", 160, 194, 124, 255},
      {"Railway", 150, 140, 132, 255},
      {"Road", 178, 178, 182, 255},
      {"SolitaryVegetationObject", 104, 154, 84, 255},
      {"TINRelief", 196, 204, 164, 255},
      {"TransportSquare", 190, 186, 182, 255},
      {"Tunnel", 140, 136, 132, 255},
      {"WaterBody", 132, 176, 214, 255},
      {"Waterway", 132, 176, 214, 255},
  });
  return colours;
}

// "BuildingRoom" and "BridgePart" belong to "Building" and "Bridge".
std::string familyOf(const std::string& type) {
  for (const char* const family : {"Building", "Bridge", "Tunnel"})
    if (type.rfind(family, 0) == 0) return family;
  return type == "Square" ? "TransportSquare" : type;
}

}  // namespace

const SourceMaterial* surfaceColour(const std::string& surfaceType) {
  const auto found = surfaceColours().find(surfaceType);
  return found == surfaceColours().end() ? nullptr : &found->second;
}

const SourceMaterial& objectColour(const std::string& objectType) {
  const auto found = objectColours().find(familyOf(objectType));
  static const SourceMaterial other = {"other", 198, 192, 200, 255};
  return found == objectColours().end() ? other : found->second;
}

std::string cityClass(const std::string& surfaceType, const std::string& objectType) {
  constexpr std::string_view Ending = "Surface";
  std::string name = surfaceType.empty() ? familyOf(objectType) : surfaceType;
  if (name.size() > 1 && name.front() == '+') name.erase(0, 1);
  const std::size_t length = name.size() > Ending.size() ? name.size() - Ending.size() : 0;
  if (length > 0 && !surfaceType.empty() && name.compare(length, Ending.size(), Ending) == 0)
    name.resize(length);
  return name;
}

bool isBuildingType(const std::string& objectType) {
  const std::string family = familyOf(objectType);
  return family == "Building" || family == "OtherConstruction";
}

bool isTerrainType(const std::string& objectType) {
  static const char* const types[] = {"LandUse",   "PlantCover", "Railway",
                                      "Road",      "TINRelief",  "TransportSquare",
                                      "WaterBody", "Waterway",   "GenericCityObject"};
  return std::find(std::begin(types), std::end(types), familyOf(objectType)) != std::end(types);
}

const char* surfaceTypeBySlope(Kernel::Vec3 normal) {
  if (normal.z > WallSine) return "RoofSurface";
  return normal.z < -WallSine ? "GroundSurface" : "WallSurface";
}

}  // namespace Lumivane::Importers
