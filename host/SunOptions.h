#pragma once

#include "Options.h"
#include "SunPlaceOptions.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// What `lumivane sun` finds out and writes; the names of choices are those of the command line.
struct SunOptions {
  std::string scene;
  ImportSettings import;      ///< for a scene that is a mesh or a city model
  std::optional<Vector> eye;  ///< one of this and the table of views
  std::string views;
  bool twoSided = false;
  int threads = 0;  ///< 0 for as many as processors

  SunPlaceOptions where;
  double sunAbove = 0.0;  ///< degrees: lower the sun is not up

  std::string intervals;  ///< a table to write, or empty, and so for the others
  std::string days;
  std::string months;
  std::string totals;
  bool csvSafe = false;  ///< texts in tables are kept from being taken for formulas
  std::string horizon;
  double horizonStep = 1.0;  ///< degrees

  std::string sky;  ///< uniform, cie:N or patches:N, or empty
  std::string skyValues;
  std::string patchValues = "solid-angle";
  std::optional<Vector> plane;  ///< the normal of what gets the sky's light; level without it
  std::string at;               ///< when, for skies that depend on the sun, or empty

  std::string svg;
  std::string html;
  std::string projection = "equidistant";
  std::string colorBy = "brush";
  std::optional<Size> size;
};

/// Declares the arguments of the command; `options` must live until they are parsed.
void setSunOptions(CLI::App& command, SunOptions& options);

/// Finds out when the sun shines on eye points, and what they see of the sky. Only where the
/// program is built with the components. \throws HostError
void runSun(const SunOptions& options);

}  // namespace Lumivane::Host
