#pragma once

#include <lumivane/measure/export.h>

#include <map>
#include <string>
#include <utility>

namespace Lumivane::Session {
class LoadedScene;
}

namespace Lumivane::Measure {

/// What the surfaces are that a shot shows (roof, wall ...): the classes of its scene, by the
/// numbers that shares name. A value.
class LUMIVANE_MEASURE_EXPORT ShareClasses {
 public:
  /// Nothing has a class.
  ShareClasses() = default;
  /// Those of a scene, whose objects, faces and regions a shot of it numbers in the same way.
  explicit ShareClasses(const Session::LoadedScene& scene);

  /// Whether anything has one.
  bool isEmpty() const { return regions.empty(); }

  /// The class of a region, by its object and its number there, both from 1; empty for none, as for
  /// numbers that the scene does not have.
  const std::string& ofRegion(int object, int sourceRegion) const;
  /// That of all regions of a face; empty if they do not all have the same one.
  const std::string& ofFace(int object, int face) const;
  /// That of all regions of an object; empty if they do not all have the same one.
  const std::string& ofObject(int object) const;

 private:
  using Numbers = std::pair<int, int>;

  std::map<Numbers, std::string> regions;
  std::map<Numbers, std::string> faces;
  std::map<int, std::string> objects;
};

}  // namespace Lumivane::Measure
