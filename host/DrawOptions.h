#pragma once

#include "ImportSettings.h"

#include <lumivane/pictures/DrawingOptions.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// What `lumivane draw` draws and writes; the names of choices are those of the command line.
struct DrawOptions {
  std::string scene;
  ImportSettings import;             ///< for a scene that is a mesh or a city model
  std::string projection;            ///< empty: parallel if there is a direction, else perspective
  std::string parallel;              ///< top, front, ..., or X,Y,Z; empty if not parallel
  Pictures::DrawingOptions drawing;  ///< what needs no more than its own option
  bool eyeGiven = false;
  bool forwardGiven = false;
  bool upGiven = false;
  bool scaleBarGiven = false;
  std::optional<Visibility::Vector> target;  ///< a point to look at, in place of forward
  bool upright = false;                      ///< upright edges stay upright in a perspective
  bool aspectGiven = false;
  int dpi = 0;      ///< of the PNG; 0: 150
  std::string svg;  ///< the file to write, or empty, and so for the others
  std::string pdf;
  std::string png;
  std::string dxf;
  std::string html;
  std::string stats;
};

/// The sides of a page in mm, and the mm on paper for a unit of the scene, out of --page and
/// --scale. \throws CLI::ValidationError that names the option
std::array<double, 2> readPage(const std::string& text);
double readScale(const std::string& text);

/// Declares the arguments of the command; `options` must live until they are parsed.
void setDrawOptions(CLI::App& command, DrawOptions& options);

/// Draws a scene with its lines, hidden ones too, in any projection; writes what is asked for. Only
/// where the program is built with the components. \throws HostError
void runDraw(const DrawOptions& options);

}  // namespace Lumivane::Host
