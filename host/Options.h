#pragma once

#include <array>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Lumivane::Host {

using Vector = std::array<double, 3>;

/// From where and how a shot is made and drawn.
struct ViewOptions {
  Vector eye{0.0, 0.0, 0.0};
  Vector forward{1.0, 0.0, 0.0};
  Vector up{0.0, 0.0, 1.0};
  std::string camera = "spherical";  ///< or "normal"
  int property = -1;                 ///< the number of the property to colour by, -1 for none
  int scale = -1;                    ///< the number of the scale, from 1, -1 for none
  double d1 = 0.01;
  double d2 = 1.0;
  int segments = 6;
  double maxLength = 0.02;       ///< 0 turns the limit off
  std::string style = "filled";  ///< or "outline" or "half"
};

struct ShotOptions {
  std::string scene;
  ViewOptions view;
  std::string shot;   ///< the shot file to write, or empty
  std::string png;    ///< the picture to write, or empty
  std::string stats;  ///< the statistics to write, or empty
  int width = 800;
  int height = 800;
};

struct ShowOptions {
  std::string scene;
  std::string shot;  ///< empty: the shot is made first
  ViewOptions view;
  bool viewGiven = false;  ///< whether any of the view's options stands on the command line
};

struct Json5Options {
  std::string file;
  std::string out;  ///< empty: standard output
};

/// Each declares the arguments of one command. `options` takes their values when the command line
/// is parsed and must live until then. `setShowOptions` returns nothing about the view: ask
/// `viewWasGiven` after the parse.
void setShotOptions(CLI::App& command, ShotOptions& options);
void setShowOptions(CLI::App& command, ShowOptions& options);
void setJson5Options(CLI::App& command, Json5Options& options);
bool viewWasGiven(const CLI::App& command);

/// The arguments of a process without its name, with "--eye -1,2,3" turned into "--eye=-1,2,3": a
/// value that starts with a minus is none to a command line parser.
std::vector<std::string> joinedVectorOptions(const std::vector<std::string>& arguments);

}  // namespace Lumivane::Host
