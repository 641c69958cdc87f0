#include "ViewTable.h"

#include "Csv.h"
#include "HostError.h"

#include <lumivane/session/Files.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>

#include <CLI/CLI.hpp>

// Tables of views. A column is an option of the command, by any of its names, and a row is read as
// a command line would be: what `shot` takes, a table can hold, and faults have the same words.
namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

constexpr const char* NamePlace = "{name}";
const std::vector<std::string> Vectors = {"eye", "forward", "up"};

// What `grid` says of its eyes beside their views. The cell is read, the others are for readers.
const std::vector<std::string> CellColumns = {"row", "column", "cell"};
const std::vector<std::string> PassedOver = {"inside", "object", "face"};

// How a scene is read is a matter of all views.
constexpr const char* ImportGroup = "Options for meshes and city models";

// Options of `shot` that no view of a table can have: statistics hold times, which no two runs have
// in common, a scene is checked once for all views, and the summary is one table.
const std::vector<std::string> LeftOut = {"help", "stats", "no-check", "csv-safe"};

std::string optionOf(std::string column) {
  column.erase(0, column.find_first_not_of('-'));
  std::replace(column.begin(), column.end(), '_', '-');
  return column;
}

struct ColumnOption {
  std::string name;  // the option's first name, of which others are aliases
  bool isFileToWrite = false;
};

// The options that a view may have, by each of their names.
std::map<std::string, ColumnOption> shotOptionNames() {
  CLI::App app;
  ShotOptions ignored;
  setBatchedShotOptions(app, ignored);
  std::map<std::string, ColumnOption> names;
  for (const CLI::Option* option : app.get_options()) {
    const auto longNames = option->get_lnames();
    if (longNames.empty() || option->get_group() == ImportGroup) continue;
    if (std::count(LeftOut.begin(), LeftOut.end(), longNames[0]) != 0) continue;
    for (const std::string& name : longNames)
      names[name] = {longNames[0], option->get_type_name() == "FILE"};
  }
  return names;
}

class TableReader {
 public:
  TableReader(const std::string& theFile, const TableSetting& theSetting)
      : file(theFile), setting(theSetting), known(shotOptionNames()) {}

  std::vector<TableView> views() {
    const std::vector<CsvRecord> records = readCsv(Session::readBytes(file), file);
    if (records.empty()) throw HostError(file, "is empty: a heading with the columns is missing");
    readHeading(records[0]);
    if (records.size() == 1) throw HostError(file, "has a heading, but no view");
    for (size_t i = 1; i < records.size(); ++i) addView(records[i], i, records.size() - 1);
    return std::move(result);
  }

 private:
  using Cells = std::map<std::string, std::string>;

  [[noreturn]] void fail(const CsvRecord& record, const std::string& cause) const {
    throw HostError(file, "line " + std::to_string(record.line) + ": " + cause);
  }

  static bool isCoordinate(const std::string& column) {
    return std::any_of(Vectors.begin(), Vectors.end(), [&column](const std::string& vector) {
      return column == vector + "-x" || column == vector + "-y" || column == vector + "-z";
    });
  }

  static bool isOfGrid(const std::string& column) {
    return std::count(CellColumns.begin(), CellColumns.end(), column) > 0 ||
           std::count(PassedOver.begin(), PassedOver.end(), column) > 0;
  }

  void readHeading(const CsvRecord& record) {
    for (const std::string& field : record.fields) {
      std::string column = optionOf(field);
      const auto option = known.find(column);
      if (option != known.end()) column = option->second.name;
      if (column != "name" && option == known.end() && !isCoordinate(column) && !isOfGrid(column))
        fail(record, "column \"" + field + "\" is neither \"name\" nor an option of shot" +
                         (field.size() == 1 && field.find_first_of("xyzXYZ") == 0
                              ? "; coordinates of the eye are eye_x, eye_y and eye_z"
                              : ""));
      if (std::count(columns.begin(), columns.end(), column) > 0)
        fail(record, "column \"" + field + "\" is there twice");
      columns.push_back(column);
    }
    for (const std::string& vector : Vectors) checkCoordinates(record, vector);
  }

  void checkCoordinates(const CsvRecord& record, const std::string& vector) const {
    const auto has = [this](const std::string& column) {
      return std::count(columns.begin(), columns.end(), column) > 0;
    };
    const int parts = has(vector + "-x") + has(vector + "-y") + has(vector + "-z");
    if (parts != 0 && parts != 3)
      fail(record, "of the columns \"" + vector + "_x\", \"" + vector + "_y\" and \"" + vector +
                       "_z\" there must be all or none");
    if (parts == 3 && has(vector))
      fail(record, "column \"" + vector + "\" is there as one and as three");
  }

  void addView(const CsvRecord& record, size_t number, size_t count) {
    if (record.fields.size() != columns.size())
      fail(record, std::to_string(record.fields.size()) + " fields for " +
                       std::to_string(columns.size()) + " columns");
    Cells cells;
    for (size_t i = 0; i < columns.size(); ++i)
      if (!record.fields[i].empty()) cells[columns[i]] = record.fields[i];
    joinVectors(record, cells);

    TableView view;
    view.cell = gridCell(record, cells);
    for (const std::string& column : PassedOver) cells.erase(column);
    view.name = viewName(record, cells, number, count);
    const std::vector<std::string> arguments = argumentsOf(cells);
    view.key = textKey(view.name, setting.sceneKey);
    for (const std::string& argument : arguments) view.key = textKey(argument + "\n", view.key);
    parse(record, arguments, view);
    result.push_back(std::move(view));
  }

  // Takes the cell out of a row, if it is there.
  std::optional<GridCell> gridCell(const CsvRecord& record, Cells& cells) const {
    std::vector<std::string> texts;
    for (const std::string& column : CellColumns) {
      const auto cell = cells.find(column);
      if (cell == cells.end()) continue;
      texts.push_back(cell->second);
      cells.erase(cell);
    }
    if (texts.empty()) return std::nullopt;
    if (texts.size() < CellColumns.size())
      fail(record, "of \"row\", \"column\" and \"cell\" there must be all or none");
    GridCell cell;
    cell.row = wholeNumber(record, "row", texts[0]);
    cell.column = wholeNumber(record, "column", texts[1]);
    const char* const last = texts[2].data() + texts[2].size();
    const auto read = std::from_chars(texts[2].data(), last, cell.side);
    if (read.ec != std::errc() || read.ptr != last || !(cell.side > 0.0) ||
        !std::isfinite(cell.side))
      fail(record, "column \"cell\": \"" + texts[2] + "\" is not a length above 0");
    return cell;
  }

  std::size_t wholeNumber(const CsvRecord& record, const std::string& column,
                          const std::string& text) const {
    constexpr std::size_t Most = 1000000000;
    std::size_t number = 0;
    const char* const last = text.data() + text.size();
    const auto read = std::from_chars(text.data(), last, number);
    if (read.ec != std::errc() || read.ptr != last || number < 1 || number > Most)
      fail(record, "column \"" + column + "\": \"" + text +
                       "\" is not a whole number from 1 to 1000000000");
    return number;
  }

  void joinVectors(const CsvRecord& record, Cells& cells) const {
    for (const std::string& vector : Vectors) {
      std::string joined;
      int parts = 0;
      for (const char* part : {"-x", "-y", "-z"}) {
        const auto cell = cells.find(vector + part);
        if (cell == cells.end()) continue;
        joined += (parts++ == 0 ? "" : ",") + cell->second;
        cells.erase(cell);
      }
      if (parts != 0 && parts != 3)
        fail(record, vector + " has " + std::to_string(parts) + " of three coordinates");
      if (parts == 3) cells[vector] = joined;
    }
  }

  // Names become file names, and one line of a table each.
  std::string viewName(const CsvRecord& record, Cells& cells, size_t number, size_t count) {
    const bool named = std::count(columns.begin(), columns.end(), "name") > 0;
    std::string digits = std::to_string(number);
    digits.insert(0, std::to_string(count).size() - digits.size(), '0');
    std::string name = named ? cells["name"] : "view" + digits;
    cells.erase("name");
    if (name.empty()) fail(record, "column \"name\": there is none");
    const bool odd = std::any_of(name.begin(), name.end(), [](char c) {
      return static_cast<unsigned char>(c) < 0x20 || c == '/' || c == 0x7F;
    });
    if (odd || name.front() == '.')
      fail(record, "column \"name\": \"" + oneLine(name) + "\" cannot be part of a file name");
    if (!names.insert({name, record.line}).second)
      fail(record, "column \"name\": \"" + name + "\" is the name of line " +
                       std::to_string(names[name]) + " as well");
    return name;
  }

  // Those for all views, but where the row has its own, and then those of the row.
  std::vector<std::string> argumentsOf(const Cells& cells) const {
    std::vector<std::string> arguments;
    for (const std::string& option : setting.options) {
      const std::string name = option.substr(2, option.find('=') - 2);
      if (cells.count(name) == 0) arguments.push_back(option);
    }
    for (const auto& [name, value] : cells) arguments.push_back("--" + name + "=" + value);
    return arguments;
  }

  void parse(const CsvRecord& record, const std::vector<std::string>& arguments, TableView& view) {
    CLI::App app;
    setBatchedShotOptions(app, view.options);
    std::vector<std::string> reversed = {setting.scene};
    for (const std::string& argument : arguments)
      reversed.insert(reversed.begin(), placed(record, argument, view));
    try {
      app.parse(reversed);
    } catch (const CLI::ParseError& error) {
      fail(record, "column " + std::string(error.what()));
    }
  }

  // An option, its file, if it names one, put into the folder of outputs.
  std::string placed(const CsvRecord& record, const std::string& argument, TableView& view) {
    const size_t equals = argument.find('=');
    const std::string name = argument.substr(2, equals - 2);
    const auto option = known.find(name);
    if (option == known.end() || !option->second.isFileToWrite) return argument;
    std::string path = argument.substr(equals + 1);
    for (size_t at = 0; (at = path.find(NamePlace, at)) != std::string::npos;
         at += view.name.size())
      path.replace(at, std::string(NamePlace).size(), view.name);
    checkFile(record, name, path);
    // Also as written: "x/../a" must not mean one file before x is made and another one after.
    path = fs::path(path).lexically_normal().string();
    view.files.push_back(path);
    return "--" + name + "=" + (fs::path(setting.folder) / path).string();
  }

  void checkFile(const CsvRecord& record, const std::string& option, const std::string& path) {
    const fs::path normal = fs::path(path).lexically_normal();
    const std::string start = normal.empty() ? ".." : normal.begin()->string();
    const std::string column = "column --" + option + ": \"" + path + "\" ";
    if (normal.is_absolute() || start == ".." || start == ".")
      fail(record, column + "is not a name inside the folder of outputs");
    if (start == "parts" || normal == "summary.csv" || normal == "journal.csv")
      fail(record, column + "is kept for the run's own files");
    if (!writtenFiles.insert({normal.string(), record.line}).second)
      fail(record, column + "is written by line " + std::to_string(writtenFiles[normal.string()]) +
                       " as well; {name} in it stands for the view's name");
  }

  const std::string& file;
  const TableSetting& setting;
  const std::map<std::string, ColumnOption> known;
  std::vector<std::string> columns;
  std::map<std::string, size_t> names;         // with their lines
  std::map<std::string, size_t> writtenFiles;  // with their lines
  std::vector<TableView> result;
};

}  // namespace

std::vector<TableView> readViewTable(const std::string& file, const TableSetting& setting) {
  return TableReader(file, setting).views();
}

}  // namespace Lumivane::Host
