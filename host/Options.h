#pragma once

#include "ImportSettings.h"
#include "VectorFiles.h"

#include <lumivane/session/ViewSettings.h>

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Lumivane::Host {

using Session::Vector;
using Session::ViewSettings;

struct ShotOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  ViewSettings view;
  bool noCheck = false;  ///< whether the scene's errors are left to the shot to find
  std::string shot;      ///< the shot file to write, or empty
  std::string png;       ///< the picture to write, or empty
  std::string stats;     ///< the statistics to write, or empty
  std::string visible;   ///< the visible shares to write, or empty
  int width = 800;
  int height = 800;
  VectorFiles vector;
};

struct ShowOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  std::string shot;       ///< empty: the shot is made first
  ViewSettings view;
  bool viewGiven = false;  ///< whether any of the view's options stands on the command line
};

struct CheckOptions {
  std::string scene;
  bool json = false;
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
void setCheckOptions(CLI::App& command, CheckOptions& options);
bool viewWasGiven(const CLI::App& command);

/// The arguments of a process without its name, with "--eye -1,2,3" turned into "--eye=-1,2,3": a
/// value that starts with a minus is none to a command line parser.
std::vector<std::string> joinedVectorOptions(const std::vector<std::string>& arguments);

}  // namespace Lumivane::Host
