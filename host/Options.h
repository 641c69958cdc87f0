#pragma once

#include "ImportSettings.h"
#include "SunPlaceOptions.h"
#include "VectorFiles.h"

#include <lumivane/session/ViewSettings.h>

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Lumivane::Host {

using Session::Vector;
using Session::ViewSettings;

/// Of a picture, in pixels.
struct Size {
  int width = 800;
  int height = 800;
};

struct ShotOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  ViewSettings view;
  std::string shot;             ///< the shot file to write, or empty
  std::string png;              ///< the picture to write, or empty
  std::string stats;            ///< the statistics to write, or empty
  std::string visible;          ///< the visible shares to write, or empty
  std::string shares;           ///< the exact shares to write, or empty; of `batch` alone
  std::string rows = "object";  ///< how deep the exact shares go
  bool csvSafe = false;         ///< texts in tables are kept from being taken for formulas
  bool noShots = false;         ///< of `batch` alone: only what the eye really sees is found out
  bool audit = false;           ///< whether the picture is compared with the visibility map
  int width = 800;
  int height = 800;
  VectorFiles vector;
};

/// What `lumivane view` looks at and writes; the names of choices are those of the command line.
struct ViewOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  Vector eye{};
  Vector forward{1.0, 0.0, 0.0};
  Vector up{0.0, 0.0, 1.0};
  std::optional<Vector> target;  ///< a point to look at, in place of `forward`
  std::string field = "hemisphere";
  bool twoSided = false;
  int threads = 0;     ///< 0 for as many as processors
  std::string shares;  ///< the table of shares to write, or empty, and so for the others
  std::string rows = "object";
  bool csvSafe = false;  ///< texts in tables are kept from being taken for formulas
  std::string map;
  std::string stats;
  std::string svg;
  std::string pdf;
  std::string png;
  std::string html;
  std::string report;     ///< the page to print
  SunPlaceOptions where;  ///< for the sun hours of that page
  std::string projection = "fisheye";
  std::string colorBy = "brush";
  std::optional<Size> size;  ///< without it 800 pixels high, and as wide as the projection
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
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  bool json = false;
};

/// Rows of a matrix or table from 1, both of them included.
struct RowRange {
  size_t first = 1;
  size_t last = 1;
};

/// Which of how many shares of a table's rows: row r of 0, 1, ... is of share r mod count + 1. Of a
/// range only the rows of the share that lie in it.
struct Shard {
  int number = 1;
  int count = 1;
  std::optional<RowRange> range;

  bool has(size_t row) const {
    const bool isInRange = !range || (row + 1 >= range->first && row + 1 <= range->last);
    return isInRange && row % static_cast<size_t>(count) == static_cast<size_t>(number - 1);
  }
  /// For its files: another one for each share and range.
  std::string name() const {
    const std::string share = std::to_string(number) + "-of-" + std::to_string(count);
    return range
               ? share + "-rows-" + std::to_string(range->first) + "-" + std::to_string(range->last)
               : share;
  }
};

struct BatchOptions {
  ShotOptions shot;                      ///< the scene; the rest of it stands in `shotOptions`
  std::vector<std::string> shotOptions;  ///< those given for all views, as "--name=value"
  std::string views;                     ///< the table of views
  std::string folder;                    ///< of the outputs
  int jobs = 0;                          ///< processes; 0 for as many as processors
  Shard shard;
  bool merge = false;   ///< no view is made, parts are merged
  std::string raster;   ///< the summary as a raster to write into the folder, or empty
  std::string geojson;  ///< the summary as points to write into the folder, or empty
  std::string npy;      ///< the summary as an array to write into the folder, or empty
  std::string crs;      ///< "EPSG:N", or empty for that of the scene's file
};

struct GridOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  std::string out;        ///< empty: standard output
  double spacing = 0.0;
  std::optional<double> height;
  double ground = 0.0;
  bool groundGiven = false;  ///< otherwise the scene's lowest point is the ground
  std::string above;         ///< the surface under the eyes, or empty for one level
  std::string on;            ///< the faces that eyes stand on, or empty
  double clearance = 0.01;   ///< of eyes on faces
  std::string look = "up";   ///< or "horizontal" or "down"
  std::vector<double> headings = {0.0};
  bool skipInside = false;
  std::string shares;          ///< the table of exact shares of all views to write, or empty
  std::string rows = "total";  ///< how deep it goes
  bool csvSafe = false;        ///< texts in tables are kept from being taken for formulas
};

struct FactorsOptions {
  std::string scene;
  ImportSettings import;  ///< for a scene that is a mesh or a city model
  std::string out;
  std::string elements;  ///< the table of what rows and columns are to write, or empty
  double tolerance = 1e-4;
  size_t mostPoints = 4000;
  bool twoSided = false;
  bool reciprocal = false;
  bool csvSafe = false;          ///< texts in tables are kept from being taken for formulas
  int threads = 0;               ///< 0 for as many as processors
  std::optional<RowRange> rows;  ///< all without it
};

struct Json5Options {
  std::string file;
  std::string out;  ///< empty: standard output
};

/// Each declares the arguments of one command. `options` takes their values when the command line
/// is parsed and must live until then. `setShowOptions` returns nothing about the view: ask
/// `viewWasGiven` after the parse.
void setShotOptions(CLI::App& command, ShotOptions& options);
/// Those of `shot` and those that only views of a batch have.
void setBatchedShotOptions(CLI::App& command, ShotOptions& options);
void setShowOptions(CLI::App& command, ShowOptions& options);
void setViewOptions(CLI::App& command, ViewOptions& options);
void setBatchOptions(CLI::App& command, BatchOptions& options);
void setGridOptions(CLI::App& command, GridOptions& options);
void setFactorsOptions(CLI::App& command, FactorsOptions& options);
void setJson5Options(CLI::App& command, Json5Options& options);
void setCheckOptions(CLI::App& command, CheckOptions& options);

/// The scene of a command, and how it is imported where the program is built with importers.
void addScene(CLI::App& command, std::string& scene, ImportSettings& import);

/// Lets "-" stand for standard output where the command writes a file whose format no ending says.
/// What the program prints goes to standard error then.
void addStandardOutput(CLI::App& command);

bool viewWasGiven(const CLI::App& command);

/// The options of `shot` that stand on the command line, as "--name=value", after the parse.
std::vector<std::string> givenShotOptions(const CLI::App& command);

/// The value X,Y,Z of an option; the numbers may be infinite or none.
/// \throws CLI::ValidationError that names the option
Vector readVector(const std::string& option, const std::string& text);

/// FIRST:LAST of an option, from 1, both included.
/// \throws CLI::ValidationError that names the option
RowRange readRowRange(const std::string& option, const std::string& text);

/// The arguments of a process without its name, with "--eye -1,2,3" turned into "--eye=-1,2,3": a
/// value that starts with a minus is none to a command line parser.
std::vector<std::string> joinedVectorOptions(const std::vector<std::string>& arguments);

}  // namespace Lumivane::Host
