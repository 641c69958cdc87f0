// Classes come from importers and tables; which of them are the ground and which are built is known
// here alone.

#include "SceneSurfaces.h"

#include <lumivane/session/Text.h>

#include <algorithm>
#include <cstddef>

namespace Lumivane::Host {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isSameName(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

bool isAmong(const std::string& name, const std::vector<std::string>& names) {
  return std::any_of(names.begin(), names.end(),
                     [&name](const std::string& other) { return isSameName(name, other); });
}

}  // namespace

SceneSurfaces::SceneSurfaces(const Visibility::SceneIndex& index) : all(index.pieces()) {
  for (std::size_t i = 0; i < all.labels.size() && i < all.classes.size(); ++i) {
    const auto object = static_cast<std::size_t>(all.labels[i].object);
    const auto region = static_cast<std::size_t>(all.labels[i].region);
    if (classes.size() <= object) classes.resize(object + 1);
    if (classes[object].size() <= region) classes[object].resize(region + 1, -1);
    classes[object][region] = all.classes[i];
  }
}

const std::string& SceneSurfaces::classOf(const Visibility::Label& label) const {
  static const std::string none;
  const auto object = static_cast<std::size_t>(label.object);
  const auto region = static_cast<std::size_t>(label.region);
  if (object >= classes.size() || region >= classes[object].size()) return none;
  const int number = classes[object][region];
  return number < 0 ? none : all.classNames[static_cast<std::size_t>(number)];
}

bool SceneSurfaces::isOf(const Visibility::Label& label,
                         const std::vector<std::string>& names) const {
  const std::string& name = classOf(label);
  return !name.empty() && isAmong(name, names);
}

bool SceneSurfaces::hasAny(const std::vector<std::string>& names) const {
  const std::vector<bool> are = areClasses(names);
  return std::any_of(all.classes.begin(), all.classes.end(), [&are](int number) {
    return number >= 0 && are[static_cast<std::size_t>(number)];
  });
}

std::vector<bool> SceneSurfaces::areClasses(const std::vector<std::string>& names) const {
  std::vector<bool> result;
  for (const std::string& name : all.classNames) result.push_back(isAmong(name, names));
  return result;
}

std::string SceneSurfaces::classList() const {
  if (!hasClasses()) return "it has no classes";
  std::string text = "its classes are ";
  for (std::size_t i = 0; i < all.classNames.size(); ++i)
    text += (i == 0 ? "" : ", ") + all.classNames[i];
  return text;
}

std::string SceneSurfaces::idOf(int object) const {
  const auto position = static_cast<std::size_t>(object) - 1;
  return position < all.objectIds.size() ? Session::idText(all.objectIds[position]) : "";
}

const std::vector<std::string>& terrainClasses() {
  static const std::vector<std::string> names = {"Terrain",
                                                 "TINRelief",
                                                 "Ground",
                                                 "LandUse",
                                                 "PlantCover",
                                                 "Railway",
                                                 "Road",
                                                 "TransportSquare",
                                                 "Square",
                                                 "WaterBody",
                                                 "Waterway",
                                                 "TrafficArea",
                                                 "AuxiliaryTrafficArea",
                                                 "Water",
                                                 "WaterGround"};
  return names;
}

const std::vector<std::string>& builtClasses() {
  static const std::vector<std::string> names = {"Roof",
                                                 "Wall",
                                                 "Window",
                                                 "Door",
                                                 "OuterFloor",
                                                 "OuterCeiling",
                                                 "Closure",
                                                 "Building",
                                                 "OtherConstruction",
                                                 "CityFurniture",
                                                 "SolitaryVegetationObject"};
  return names;
}

}  // namespace Lumivane::Host
