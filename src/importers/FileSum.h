#pragma once

#include "importers/ModelSum.h"
#include "importers/SourceModel.h"

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace Lumivane::Importers {

/// Puts the models of several files together as one, such as the tiles of a city. All of them lie
/// in one system of coordinates. A name that several files have gets that of its file in front.
class FileSum {
 public:
  /// \param paths  of all files in the order in which they will be added
  /// \throws Session::Error if a file is named twice
  explicit FileSum(const std::vector<std::string>& paths);

  /// Adds the model of the next file.
  /// \throws ImportError if there are more points than numbers
  /// \throws Session::Error if its coordinate reference system is not that of the files before
  void add(SourceModel model);

  /// The sum of all that were added.
  /// \param turnsLater  all of it will be turned, y up becoming z, whatever its formats say
  SourceModel take(bool turnsLater);

 private:
  struct File {
    std::string path;
    std::string label;  ///< the path as far as it is needed to know the file from the others
    bool yUp = false;
    bool hasSystem = false;
    std::size_t firstVertex = 0;
    std::size_t firstObject = 0;
    std::map<std::string, std::string> wholes;
  };
  struct NameUse {
    std::size_t last = 0;  ///< the last file that has it, counted from 0
    bool isShared = false;
  };

  void checkSystem(const File& file, const SourceModel& model);
  void takeFormat(const std::string& format);
  void noteName(const std::string& name);
  std::string nameIn(const File& file, const std::string& name) const;
  void turnFiles(SourceModel& sum) const;
  void noteFarFiles(SourceModel& sum) const;
  void nameObjects(SourceModel& sum) const;

  std::vector<File> files;
  std::size_t added = 0;
  ModelSum models;
  std::size_t vertexCount = 0;
  std::size_t objectCount = 0;
  std::vector<std::string> formats;
  std::string system;       // of the coordinates; empty as long as no file has named one
  std::string systemOwner;  // the file that has named it
  std::vector<std::string> withoutSystem;
  std::unordered_map<std::string, NameUse> names;
};

}  // namespace Lumivane::Importers
