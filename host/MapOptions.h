#pragma once

#include "ImportSettings.h"

#include <array>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// What `lumivane map` draws and writes.
struct MapOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  std::string table;      ///< of the values (CSV)
  std::string views;      ///< a table of views with the eyes, or empty
  std::string column = "sky_view_factor";
  std::string whereColumn;  ///< rows are taken if this column holds the text below; empty: all
  std::string whereText;
  std::optional<std::array<double, 2>> range;  ///< of the colours; else that of the values
  std::optional<double> cell;                 ///< side of squares, 0 for dots; else as the eyes lie
  double dot = 1.2;                           ///< width of dots, mm
  double width = 180.0;                       ///< of the picture without margins, mm
  std::optional<double> scale;                ///< mm on paper for a unit of the scene
  std::optional<std::array<double, 2>> page;  ///< mm
  std::string title;                          ///< over the colours; empty: the column's name
  int dpi = 150;
  std::string svg;  ///< the file to write, or empty, and so for the others
  std::string pdf;
  std::string png;
};

/// Declares the arguments of the command; `options` must live until they are parsed.
void setMapOptions(CLI::App& command, MapOptions& options);

/// Draws the plan of a scene with the values of a table where its eyes stand. Only where the
/// program is built with the components. \throws HostError
void runMap(const MapOptions& options);

}  // namespace Lumivane::Host
