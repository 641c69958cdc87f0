#include "ViewTable.h"

#include "Csv.h"
#include "HostError.h"
#include "NpyRows.h"

#include <lumivane/session/Files.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <map>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

// Tables of views. A column is an option of the command, by any of its names, and a row is read as
// a command line would be: what `shot` takes, a table can hold, and faults have the same words.
//
// A command line takes a tenth of a millisecond, which is too much for millions of rows. So names,
// vectors and cells of a grid, by which rows of large tables differ, are read as values, and what
// is left of a row is read as a command line once for all rows that have it in common (a pattern).
// Whatever does not read as a value at once takes the slow way, which knows all the words.
namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

constexpr const char* NamePlace = "{name}";
const std::vector<std::string> Vectors = {"eye", "forward", "up"};

// What `grid` says of its eyes beside their views. The cell is read, the others are for readers.
const std::vector<std::string> CellColumns = {"row", "column", "cell"};
const std::vector<std::string> PassedOver = {"inside", "object", "face", "class"};

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

// A number as an option of a vector takes it, if it is written as numbers mostly are.
bool readPlainNumber(const char*& at, const char* end, double& number) {
  const std::from_chars_result read = std::from_chars(at, end, number);
  at = read.ptr;
  return read.ec == std::errc() && std::isfinite(number);
}

bool readPlainNumber(const std::string& text, double& number) {
  const char* at = text.data();
  const char* const end = at + text.size();
  return readPlainNumber(at, end, number) && at == end;
}

bool readPlainVector(const std::string& text, Vector& vector) {
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t i = 0; i < vector.size(); ++i) {
    if (i > 0 && (at == end || *at++ != ',')) return false;
    if (!readPlainNumber(at, end, vector[i])) return false;
  }
  return at == end;
}

// Reads the heading of a table and then its rows, of text or of an array.
class RowCursor {
 public:
  RowCursor(const std::string& text, const std::string& file, const NpyRows* theArray)
      : csv(text, file), array(theArray) {}

  bool next(CsvRecord& record) {
    if (array == nullptr) return csv.next(record);
    if (at > array->size()) return false;
    record.line = 0;
    if (at == 0)
      record.fields = array->heading();
    else
      array->read(at - 1, record);
    ++at;
    return true;
  }

  // Of the record that was read last, and back to it.
  std::size_t position() const { return array == nullptr ? csv.position() : at - 1; }
  void goTo(std::size_t position) {
    if (array == nullptr)
      csv.goTo(position);
    else
      at = position;
  }

 private:
  CsvCursor csv;
  const NpyRows* array;
  std::size_t at = 0;
};

}  // namespace

class ViewTable::Reader {
 public:
  Reader(const std::string& theFile, const TableSetting& theSetting)
      : file(theFile),
        setting(theSetting),
        known(shotOptionNames()),
        tableText(Session::readBytes(theFile)) {
    if (NpyRows::isNpy(tableText, file)) array.emplace(tableText, file);
    RowCursor cursor = rowCursor();
    CsvRecord record;
    if (!cursor.next(record))
      throw HostError(file, "is empty: a heading with the columns is missing");
    readHeading(record);
    findSlots();
    listRows(cursor, record);
    if (offsets.empty()) throw HostError(file, "has a heading, but no view");
    checkAll();
  }

  std::size_t size() const { return offsets.size(); }
  std::uint64_t key(std::size_t i) const { return keys[i]; }
  bool hasFiles() const { return filesFound; }

  // Rows have been checked, so the lines that errors would name are not counted.
  TableView view(std::size_t i) const {
    RowCursor cursor = rowCursor();
    cursor.goTo(offsets[i]);
    CsvRecord record;
    cursor.next(record);
    TableView result;
    if (!readValues(record, i + 1, &result)) result = slowView(record, i + 1);
    result.key = keys[i];
    return result;
  }

 private:
  using Cells = std::map<std::string, std::string>;

  // Where an argument of a row stands among its columns.
  struct Slot {
    std::string name;           // of the option
    std::size_t vector = 3;     // position in `Vectors`; 3 for another option
    std::size_t column = None;  // of the whole; None for a vector of three columns
    std::array<std::size_t, 3> parts{None, None, None};
  };
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  // What rows with the same other options have in common.
  struct Pattern {
    ShotOptions options;
    bool isGood = false;  // it reads as a command line
  };

  RowCursor rowCursor() const { return {tableText, file, array ? &*array : nullptr}; }

  // In the order of the options' names, as arguments stand.
  void findSlots() {
    std::map<std::string, Slot> slots;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::string& column = columns[i];
      if (column == "name") {
        nameColumn = i;
      } else if (std::count(CellColumns.begin(), CellColumns.end(), column) > 0) {
        cellColumns.push_back(i);
        cellSlots[static_cast<std::size_t>(
            std::find(CellColumns.begin(), CellColumns.end(), column) - CellColumns.begin())] = i;
      } else if (std::count(PassedOver.begin(), PassedOver.end(), column) == 0) {
        addSlot(column, i, slots);
      }
    }
    for (auto& [name, slot] : slots) arguments.push_back(std::move(slot));
    for (const std::string& option : setting.options) {
      const std::string name = option.substr(2, option.find('=') - 2);
      const auto found = std::find_if(arguments.begin(), arguments.end(),
                                      [&name](const Slot& slot) { return slot.name == name; });
      optionSlots.push_back(
          found == arguments.end() ? None : static_cast<std::size_t>(found - arguments.begin()));
      isUpForAll = isUpForAll || name == "up";
      const auto described = known.find(name);
      hasFileForAll =
          hasFileForAll || (described != known.end() && described->second.isFileToWrite);
    }
  }

  void addSlot(const std::string& column, std::size_t position,
               std::map<std::string, Slot>& slots) {
    std::string name = column;
    std::size_t part = None;
    if (isCoordinate(column)) {
      name = column.substr(0, column.size() - 2);
      part = static_cast<std::size_t>(column.back() - 'x');
    }
    Slot& slot = slots[name];
    slot.name = name;
    slot.vector =
        static_cast<std::size_t>(std::find(Vectors.begin(), Vectors.end(), name) - Vectors.begin());
    if (part == None)
      slot.column = position;
    else
      slot.parts[part] = position;
  }

  void listRows(RowCursor& cursor, CsvRecord& record) {
    while (cursor.next(record)) offsets.push_back(cursor.position());
  }

  void checkAll() {
    keys.reserve(offsets.size());
    std::vector<std::pair<std::uint64_t, std::size_t>> nameKeys;
    nameKeys.reserve(offsets.size());
    RowCursor cursor = rowCursor();
    CsvRecord record;
    cursor.next(record);
    for (std::size_t i = 0; cursor.next(record); ++i) {
      std::uint64_t key = 0;
      std::uint64_t nameKey = 0;
      if (!readValues(record, i + 1, nullptr, &key, &nameKey)) {
        const TableView view = slowView(record, i + 1);
        key = view.key;
        nameKey = textKey(view.name);
        filesFound = filesFound || !view.files.empty();
      }
      keys.push_back(key);
      nameKeys.emplace_back(nameKey, i);
    }
    if (nameColumn != None) checkNames(std::move(nameKeys));
    isChecked = true;
    writtenFiles.clear();
  }

  // Equal names have equal keys, and stand next to each other once keys are sorted.
  void checkNames(std::vector<std::pair<std::uint64_t, std::size_t>> nameKeys) const {
    std::sort(nameKeys.begin(), nameKeys.end());
    std::size_t second = None;
    std::size_t first = None;
    for (std::size_t i = 1; i < nameKeys.size(); ++i) {
      if (nameKeys[i].first != nameKeys[i - 1].first || nameKeys[i].second >= second) continue;
      for (std::size_t k = i; k-- > 0 && nameKeys[k].first == nameKeys[i].first;)
        if (view(nameKeys[k].second).name == view(nameKeys[i].second).name) {
          first = nameKeys[k].second;
          second = nameKeys[i].second;
        }
    }
    if (second == None) return;
    const CsvRecord later = numberedRecord(second);
    fail(later, "column \"name\": \"" + view(second).name + "\" is the name of line " +
                    std::to_string(numberedRecord(first).line) + " as well");
  }

  // With its line.
  CsvRecord numberedRecord(std::size_t i) const {
    RowCursor cursor = rowCursor();
    CsvRecord record;
    cursor.next(record);
    for (std::size_t k = 0; k <= i; ++k) cursor.next(record);
    return record;
  }

  // Reads what can be read as values: returns whether all of a row can. Fills the view if there is
  // one, else the keys.
  bool readValues(const CsvRecord& record, std::size_t number, TableView* view,
                  std::uint64_t* key = nullptr, std::uint64_t* nameKey = nullptr) const {
    if (hasFileForAll || record.fields.size() != columns.size()) return false;
    const std::string name = nameColumn == None ? numberedName(number) : record.fields[nameColumn];
    if (!isFileName(name)) return false;
    std::array<Vector, 3> vectors{};
    std::array<bool, 3> isGiven{};
    std::string other;
    std::uint64_t argumentsKey = textKey(name, setting.sceneKey);
    for (std::size_t i = 0; i < setting.options.size(); ++i)
      if (optionSlots[i] == None || !isThere(record, arguments[optionSlots[i]]))
        argumentsKey = textKey("\n", textKey(setting.options[i], argumentsKey));
    for (const Slot& slot : arguments) {
      if (!isThere(record, slot)) continue;
      argumentsKey = textKey("=", textKey(slot.name, textKey("--", argumentsKey)));
      if (slot.vector < Vectors.size()) {
        isGiven[slot.vector] = true;
        if (!readVectorOf(record, slot, vectors[slot.vector], argumentsKey)) return false;
      } else {
        if (known.find(slot.name)->second.isFileToWrite) return false;
        const std::string& value = record.fields[slot.column];
        argumentsKey = textKey(value, argumentsKey);
        other += "--" + slot.name + "=" + value + "\n";
      }
      argumentsKey = textKey("\n", argumentsKey);
    }
    std::optional<GridCell> cell;
    if (!cellColumns.empty() && !readCell(record, cell)) return false;
    const Pattern* const pattern = patternOf(record, other);
    if (pattern == nullptr || !pattern->isGood) return false;
    if (key != nullptr) *key = argumentsKey;
    if (nameKey != nullptr) *nameKey = textKey(name);
    if (view != nullptr) fill(*view, name, cell, *pattern, vectors, isGiven);
    return true;
  }

  void fill(TableView& view, const std::string& name, const std::optional<GridCell>& cell,
            const Pattern& pattern, const std::array<Vector, 3>& vectors,
            const std::array<bool, 3>& isGiven) const {
    enum : std::size_t { Eye, Forward, Up };
    view.name = name;
    view.cell = cell;
    view.options = pattern.options;
    Session::ViewSettings& settings = view.options.view;
    if (isGiven[Eye]) settings.eye = vectors[Eye];
    if (isGiven[Forward]) settings.forward = vectors[Forward];
    if (isGiven[Up])
      settings.up = vectors[Up];
    else if (isGiven[Forward] && !isUpForAll)
      settings.up = Session::usualUp(settings.forward);
  }

  // Whether a row has the option. A vector of three columns may have some of them, which is a
  // fault.
  static bool isThere(const CsvRecord& record, const Slot& slot) {
    if (slot.column != None) return !record.fields[slot.column].empty();
    return std::any_of(slot.parts.begin(), slot.parts.end(),
                       [&record](std::size_t part) { return !record.fields[part].empty(); });
  }

  static bool readVectorOf(const CsvRecord& record, const Slot& slot, Vector& vector,
                           std::uint64_t& key) {
    if (slot.column != None) {
      key = textKey(record.fields[slot.column], key);
      return readPlainVector(record.fields[slot.column], vector);
    }
    for (std::size_t i = 0; i < vector.size(); ++i) {
      const std::string& part = record.fields[slot.parts[i]];
      if (i > 0) key = textKey(",", key);
      key = textKey(part, key);
      if (!readPlainNumber(part, vector[i])) return false;
    }
    return true;
  }

  bool readCell(const CsvRecord& record, std::optional<GridCell>& cell) const {
    const auto isEmpty = [&record](std::size_t column) { return record.fields[column].empty(); };
    if (std::all_of(cellColumns.begin(), cellColumns.end(), isEmpty)) return true;
    if (cellColumns.size() < CellColumns.size() ||
        std::any_of(cellColumns.begin(), cellColumns.end(), isEmpty))
      return false;
    cell = cellOf(record, {record.fields[cellSlots[0]], record.fields[cellSlots[1]],
                           record.fields[cellSlots[2]]});
    return true;
  }

  // The pattern of a row; null if there are too many of them to be of use.
  const Pattern* patternOf(const CsvRecord& record, const std::string& other) const {
    constexpr std::size_t MostPatterns = 200;
    const auto found = patterns.find(other);
    if (found != patterns.end()) return &found->second;
    if (patterns.size() >= MostPatterns) return nullptr;
    Pattern& pattern = patterns[other];
    Cells cells;
    for (const Slot& slot : arguments)
      if (slot.vector >= Vectors.size() && isThere(record, slot))
        cells[slot.name] = record.fields[slot.column];
    TableView view;
    try {
      parse(record, argumentsOf(cells), view);
      pattern.options = view.options;
      pattern.isGood = true;
    } catch (const HostError&) {
      pattern.isGood = false;  // the slow way says why
    }
    return &pattern;
  }

  std::string numberedName(std::size_t number) const {
    std::string digits = std::to_string(number);
    digits.insert(0, std::to_string(offsets.size()).size() - digits.size(), '0');
    return "view" + digits;
  }

  static bool isFileName(const std::string& name) {
    const bool odd = std::any_of(name.begin(), name.end(), [](char c) {
      return static_cast<unsigned char>(c) < 0x20 || c == '/' || c == 0x7F;
    });
    return !name.empty() && !odd && name.front() != '.';
  }

  std::string lineName(std::size_t number) const {
    return (array ? "row " : "line ") + std::to_string(number);
  }

  [[noreturn]] void fail(const CsvRecord& record, const std::string& cause) const {
    throw HostError(file, lineName(record.line) + ": " + cause);
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

  TableView slowView(const CsvRecord& record, size_t number) const {
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
    view.name = viewName(record, cells, number);
    const std::vector<std::string> all = argumentsOf(cells);
    view.key = textKey(view.name, setting.sceneKey);
    for (const std::string& argument : all) view.key = textKey(argument + "\n", view.key);
    parse(record, all, view);
    return view;
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
    return cellOf(record, {texts[0], texts[1], texts[2]});
  }

  GridCell cellOf(const CsvRecord& record, const std::array<std::string, 3>& texts) const {
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
  std::string viewName(const CsvRecord& record, Cells& cells, size_t number) const {
    std::string name = nameColumn == None ? numberedName(number) : cells["name"];
    cells.erase("name");
    if (name.empty()) fail(record, "column \"name\": there is none");
    if (!isFileName(name))
      fail(record, "column \"name\": \"" + oneLine(name) + "\" cannot be part of a file name");
    return name;
  }

  // Those for all views, but where the row has its own, and then those of the row.
  std::vector<std::string> argumentsOf(const Cells& cells) const {
    std::vector<std::string> words;
    for (const std::string& option : setting.options) {
      const std::string name = option.substr(2, option.find('=') - 2);
      if (cells.count(name) == 0) words.push_back(option);
    }
    for (const auto& [name, value] : cells) words.push_back("--" + name + "=" + value);
    return words;
  }

  void parse(const CsvRecord& record, const std::vector<std::string>& words,
             TableView& view) const {
    CLI::App app;
    setBatchedShotOptions(app, view.options);
    std::vector<std::string> reversed = {setting.scene};
    for (const std::string& argument : words)
      reversed.insert(reversed.begin(), placed(record, argument, view));
    try {
      app.parse(reversed);
    } catch (const CLI::ParseError& error) {
      fail(record, "column " + std::string(error.what()));
    }
  }

  // An option, its file, if it names one, put into the folder of outputs.
  std::string placed(const CsvRecord& record, const std::string& argument, TableView& view) const {
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

  void checkFile(const CsvRecord& record, const std::string& option,
                 const std::string& path) const {
    const fs::path normal = fs::path(path).lexically_normal();
    const std::string start = normal.empty() ? ".." : normal.begin()->string();
    const std::string column = "column --" + option + ": \"" + path + "\" ";
    if (normal.is_absolute() || start == ".." || start == ".")
      fail(record, column + "is not a name inside the folder of outputs");
    if (start == "parts" || normal == "summary.csv" || normal == "journal.csv")
      fail(record, column + "is kept for the run's own files");
    if (!isChecked && !writtenFiles.insert({normal.string(), record.line}).second)
      fail(record, column + "is written by " + lineName(writtenFiles[normal.string()]) +
                       " as well; {name} in it stands for the view's name");
  }

  const std::string file;
  const TableSetting setting;
  const std::map<std::string, ColumnOption> known;
  const std::string tableText;
  std::optional<NpyRows> array;  // if it is one
  std::vector<std::string> columns;
  std::size_t nameColumn = None;
  std::vector<std::size_t> cellColumns;                    // those that are there
  std::array<std::size_t, 3> cellSlots{None, None, None};  // row, column and cell
  std::vector<Slot> arguments;                             // by their names
  std::vector<std::size_t> optionSlots;                    // of the setting's options, or None
  bool isUpForAll = false;
  bool hasFileForAll = false;
  bool filesFound = false;
  std::vector<std::uint64_t> offsets;                  // of rows in the text
  std::vector<std::uint64_t> keys;                     // of views
  bool isChecked = false;                              // all rows, once
  mutable std::map<std::string, Pattern> patterns;     // by their other options
  mutable std::map<std::string, size_t> writtenFiles;  // with their lines
};

ViewTable::ViewTable(const std::string& file, const TableSetting& setting)
    : reader(std::make_shared<const Reader>(file, setting)) {}

std::size_t ViewTable::size() const { return reader ? reader->size() : 0; }
TableView ViewTable::operator[](std::size_t i) const { return reader->view(i); }
std::uint64_t ViewTable::key(std::size_t i) const { return reader->key(i); }
bool ViewTable::hasFiles() const { return reader && reader->hasFiles(); }

std::vector<TableView> readViewTable(const std::string& file, const TableSetting& setting) {
  const ViewTable table(file, setting);
  std::vector<TableView> views;
  views.reserve(table.size());
  for (std::size_t i = 0; i < table.size(); ++i) views.push_back(table[i]);
  return views;
}

}  // namespace Lumivane::Host
