#pragma once

#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <string>
#include <vector>

namespace Lumivane::Host {

/// The surfaces that a scene shows, and what they are. Names of classes are compared without regard
/// to upper and lower case.
class SceneSurfaces {
 public:
  explicit SceneSurfaces(const Visibility::SceneIndex& index);

  /// Flat outlines, with labels and classes.
  const Visibility::PolygonScene& pieces() const { return all; }
  bool hasClasses() const { return !all.classNames.empty(); }

  /// The class of a region; empty for none.
  const std::string& classOf(const Visibility::Label& label) const;
  /// Whether it is one of some classes.
  bool isOf(const Visibility::Label& label, const std::vector<std::string>& names) const;
  /// Whether any surface is of one of these classes.
  bool hasAny(const std::vector<std::string>& names) const;
  /// Which of the scene's classes are some of these, by their numbers.
  std::vector<bool> areClasses(const std::vector<std::string>& names) const;
  /// The classes there are, for messages.
  std::string classList() const;

  /// The id of an object, as tables show it.
  std::string idOf(int object) const;

 private:
  Visibility::PolygonScene all;
  std::vector<std::vector<int>> classes;  // by object and region
};

/// Classes of what lies on the ground, and of what stands on it.
const std::vector<std::string>& terrainClasses();
const std::vector<std::string>& builtClasses();

}  // namespace Lumivane::Host
