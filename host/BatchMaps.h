#pragma once

#include "BatchPlan.h"
#include "FilePlace.h"

#include <string>
#include <vector>

namespace Lumivane::Host {

/// The summary of a batch as data for geographic information systems: a raster of its grid, and its
/// points. A program without the components has a form of it that writes nothing.
class BatchMaps {
 public:
  /// Borrows both.
  BatchMaps(const BatchOptions& theOptions, const BatchPlan& thePlan)
      : options(theOptions), plan(thePlan) {}

  bool isAsked() const { return !options.raster.empty() || !options.geojson.empty(); }

  /// Whether all is there: the reference system, and a grid. To be called before any work.
  /// \throws HostError that says what is missing
  void check(const FilePlace& thePlace, const Session::Vector& eyeShift);

  /// Writes the files.
  /// \param heading  of the summary
  /// \param rows     of the summary, one for each view of the plan
  /// \throws HostError
  void write(const std::string& heading, const std::vector<std::string>& rows) const;

 private:
  std::string rasterBytes(const std::string& heading, const std::vector<std::string>& rows) const;
  std::string pointsText(const std::string& heading, const std::vector<std::string>& rows) const;

  const BatchOptions& options;
  const BatchPlan& plan;
  int epsg = 0;
  FilePlace place;
  std::vector<Session::Vector> eyes;  // of the views, in the file's coordinates
};

}  // namespace Lumivane::Host
