#pragma once

#include "FileMark.h"
#include "Options.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// Where a view stands in a grid, as its table says.
struct GridCell {
  std::size_t row = 0;     ///< from 1, towards greater y
  std::size_t column = 0;  ///< from 1, towards greater x
  double side = 0.0;       ///< of a cell, in scene units
};

/// One view of a table, ready to be made.
struct TableView {
  std::string name;
  std::optional<GridCell> cell;
  ShotOptions options;             ///< output files as whole paths
  std::vector<std::string> files;  ///< the same files as names in the folder of outputs
  std::uint64_t key = 0;           ///< distinguishes views that would give other results
};

/// What all views of a table share.
struct TableSetting {
  std::string scene;                 ///< its file
  std::string folder;                ///< of the outputs, as a whole path
  std::vector<std::string> options;  ///< of `shot`, as "--name=value", for all views
  std::uint64_t sceneKey = 0;        ///< of the scene's bytes
};

/// The views of a table with one heading and one row for each view. A column is named `name` or
/// after an option of `shot`, with or without its dashes; `eye`, `forward` and `up` may also be
/// three columns `eye_x`, `eye_y`, `eye_z`. Columns `row`, `column` and `cell` say where the views
/// stand in a grid; `inside`, `object`, `face` and `class`, which `grid` writes, are passed
/// over. An empty cell leaves the option as it is for all views.
/// A table may also be an array (NpyRows.h), which stands for one with the columns `eye_x` and so
/// on.
/// "{name}" in an output file is replaced by the view's name; without names, views are numbered.
///
/// Of a view two numbers are kept, and it is read again when it is asked for: a table may have
/// millions.
class ViewTable {
 public:
  /// No views.
  ViewTable() = default;
  /// Reads and checks all of it. \throws HostError that names the table's file, line and column
  ViewTable(const std::string& file, const TableSetting& setting);

  std::size_t size() const;
  /// A view, by its position from 0.
  TableView operator[](std::size_t i) const;
  /// Its key alone.
  std::uint64_t key(std::size_t i) const;
  /// Whether any view has an output file of its own.
  bool hasFiles() const;

 private:
  class Reader;
  std::shared_ptr<const Reader> reader;
};

/// All views of a table at once. \throws HostError
std::vector<TableView> readViewTable(const std::string& file, const TableSetting& setting);

}  // namespace Lumivane::Host
