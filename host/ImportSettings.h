#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// How a mesh or a city model is turned into a scene, and what its surfaces are, as the command
/// line says.
struct ImportSettings {
  /// Other files of the same scene, such as tiles of a city: meshes and city models as the first.
  std::vector<std::string> also;
  bool twoSided = false;
  bool flip = false;
  bool yUp = false;
  bool center = false;
  bool allowOutside = false;
  double scale = 1.0;
  double crease = -1.0;                      ///< below 0: as the importer thinks best
  std::string scaleOption;                   ///< what the command line calls `scale`
  std::optional<std::array<double, 3>> eye;  ///< from where the scene will be seen
  bool asksForClasses = false;  ///< whether a table of classes beside a scene file is read
  std::string classes;          ///< another table of classes to read, or empty
};

struct ImportCommandOptions {
  std::string file;
  std::string out;
  std::string stats;  ///< the statistics to write, or empty
  ImportSettings settings;
};

}  // namespace Lumivane::Host
