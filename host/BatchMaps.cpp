// Rows of the summary become cells and points by the places of their views. All is checked before
// the views are made: a missing reference system is not to be found out after hours of work.

#include "BatchMaps.h"

#include "BatchSummary.h"
#include "Csv.h"
#include "Geodata.h"
#include "HostError.h"
#include "SceneSource.h"
#include "StatsNumbers.h"
#include "WorkFolders.h"

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Writer.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>

namespace Lumivane::Host {
namespace {

// The summary's columns that are bands, first things first.
const std::vector<std::string> Bands = {"sky_view_factor", "sky_hemisphere_share",
                                        "objects_visible", "largest_view_factor",
                                        "inside",          "true_z"};

constexpr double MostCells = 1e8;
// Of a cell's side: that eyes may be off the middles of their cells.
constexpr double Slack = 1e-6;

using Fields = std::map<std::string, std::string>;

std::vector<std::string> fieldsOf(const std::string& record) {
  const std::vector<CsvRecord> records = readCsv(record, "the summary");
  return records.empty() ? std::vector<std::string>() : records[0].fields;
}

Fields fieldsOf(const std::string& row, const std::vector<std::string>& columns) {
  const std::vector<std::string> texts = fieldsOf(row);
  Fields fields;
  for (std::size_t i = 0; i < columns.size(); ++i)
    fields[columns[i]] = i < texts.size() ? texts[i] : "";
  return fields;
}

// With the columns that shares by class add.
std::vector<std::string> bandsOf(const std::vector<std::string>& columns) {
  std::vector<std::string> bands = Bands;
  for (const std::string& column : columns)
    if (column.rfind("view_factor_of_", 0) == 0 || column == "view_factor_without_class")
      bands.push_back(column);
  return bands;
}

std::optional<double> numberOf(const std::string& text) {
  if (text.empty()) return std::nullopt;
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (*end != '\0') return std::nullopt;
  return number;
}

// The cells of a table's grid among those of a raster: from west to east, from north to south.
class RasterFrame {
 public:
  RasterFrame(const std::string& theTable, const ViewTable& theViews,
              const std::vector<Session::Vector>& theEyes, const FilePlace& place)
      : table(theTable), views(theViews), eyes(theEyes) {
    if (place.isTurned)
      throw HostError(table,
                      "--raster: the model was turned from y up to z up, so that its grid is "
                      "none of the file's x and y");
    for (std::size_t i = 0; i < views.size(); ++i) include(i);
    side = views[0].cell->side / place.scale;
    const double most = static_cast<double>(columns()) * static_cast<double>(rows());
    if (!(most <= MostCells))
      throw HostError(table, "--raster: its rows and columns are more than 100 million cells");
    checkPlaces();
  }

  Geodata::Raster raster() const {
    Geodata::Raster result;
    result.columns = columns();
    result.rows = rows();
    result.cell = side;
    result.west = eyes[0][0] - (static_cast<double>(columnOf(0)) + 0.5) * side;
    result.north = eyes[0][1] + (static_cast<double>(rowOf(0)) + 0.5) * side;
    return result;
  }

  std::size_t position(std::size_t view) const { return rowOf(view) * columns() + columnOf(view); }

 private:
  [[noreturn]] void fail(std::size_t view, const std::string& cause) const {
    throw HostError(table, "--raster: view \"" + views[view].name + "\" " + cause);
  }

  void include(std::size_t i) {
    if (!views[i].cell)
      fail(i,
           "has no row, column and cell: a raster takes a table of a grid, as lumivane grid "
           "writes it over the ground");
    const GridCell cell = *views[i].cell;
    if (cell.side != views[0].cell->side) fail(i, "has a cell of another size than the first view");
    firstRow = std::min(firstRow, cell.row);
    lastRow = std::max(lastRow, cell.row);
    firstColumn = std::min(firstColumn, cell.column);
    lastColumn = std::max(lastColumn, cell.column);
    const auto other = taken.emplace(std::make_pair(cell.row, cell.column), i);
    if (!other.second)
      fail(i, "is in the same cell as view \"" + views[other.first->second].name +
                  "\": a raster has one view a cell");
  }

  void checkPlaces() const {
    const Geodata::Raster frame = raster();
    for (std::size_t i = 0; i < eyes.size(); ++i) {
      const double x = frame.west + (static_cast<double>(columnOf(i)) + 0.5) * side;
      const double y = frame.north - (static_cast<double>(rowOf(i)) + 0.5) * side;
      if (!(std::abs(eyes[i][0] - x) <= Slack * side && std::abs(eyes[i][1] - y) <= Slack * side))
        fail(i,
             "is not in the middle of its cell, as its row, column and cell and those of the "
             "first view say");
    }
  }

  std::size_t columns() const { return lastColumn - firstColumn + 1; }
  std::size_t rows() const { return lastRow - firstRow + 1; }
  std::size_t columnOf(std::size_t view) const { return views[view].cell->column - firstColumn; }
  std::size_t rowOf(std::size_t view) const { return lastRow - views[view].cell->row; }

  const std::string& table;
  const ViewTable& views;
  const std::vector<Session::Vector>& eyes;
  double side = 0.0;
  std::size_t firstRow = std::numeric_limits<std::size_t>::max();
  std::size_t lastRow = 0;
  std::size_t firstColumn = std::numeric_limits<std::size_t>::max();
  std::size_t lastColumn = 0;
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> taken;
};

int epsgOf(const BatchOptions& options, const FilePlace& place) {
  const std::string option = options.raster.empty() ? "--geojson" : "--raster";
  const std::string fault = Geodata::fault();
  if (!fault.empty()) throw HostError(option, fault);
  if (!options.crs.empty()) return Geodata::epsgCode(options.crs);
  if (place.referenceSystem.empty())
    throw HostError(option, options.shot.scene +
                                " names no coordinate reference system: name it with --crs EPSG:N");
  const int code = Geodata::epsgCode(place.referenceSystem);
  if (code == 0)
    throw HostError(option, "the coordinate reference system \"" + oneLine(place.referenceSystem) +
                                "\" of " + options.shot.scene +
                                " has no EPSG code: name one with --crs EPSG:N");
  return code;
}

std::string lineText(const Jzon::Node& node) {
  std::string text;
  Jzon::Writer(Jzon::Format{false, false, false, 0}).writeString(node, text);
  return text;
}

// Any bytes as a key: the writer takes keys as they are.
std::string keyText(const std::string& name) {
  Jzon::Node list = Jzon::array();
  list.add(textNode(name));
  const std::string text = lineText(list);
  const std::size_t first = text.find('"') + 1;
  return text.substr(first, text.rfind('"') - first);
}

// Null for a view that has no place on the earth, as one whose eye is not finite.
Jzon::Node pointNode(const Session::Vector& eye, const std::array<double, 2>& degrees) {
  if (!std::isfinite(degrees[0]) || !std::isfinite(degrees[1]) || !std::isfinite(eye[2]))
    return Jzon::Node(Jzon::Node::T_NULL);
  Jzon::Node coordinates = Jzon::array();
  // A tenth of a millimetre.
  for (const double angle : degrees) coordinates.add(numberNode(std::round(angle * 1e9) / 1e9));
  coordinates.add(numberNode(eye[2]));
  Jzon::Node point = Jzon::object();
  point.add("type", "Point");
  point.add("coordinates", coordinates);
  return point;
}

}  // namespace

void BatchMaps::check(const FilePlace& thePlace, const Session::Vector& eyeShift) {
  place = thePlace;
  epsg = epsgOf(options, place);
  for (std::size_t i = 0; i < plan.views.size(); ++i)
    eyes.push_back(place.inFile(moved(plan.views[i].options.view.eye, eyeShift)));
  Geodata::checkCode(epsg);
  if (!options.raster.empty()) RasterFrame(options.views, plan.views, eyes, place).raster();
  if (!options.geojson.empty()) Geodata::inDegrees({}, epsg);
  for (const std::string& file : {options.raster, options.geojson}) {
    if (file.empty()) continue;
    const std::filesystem::path path = std::filesystem::path(plan.setting.folder) / file;
    makeFolder(path.parent_path().string());
    Session::checkWritable(path.string());
  }
}

void BatchMaps::write(const std::string& heading, const std::vector<std::string>& rows) const {
  const std::filesystem::path folder = plan.setting.folder;
  if (!options.raster.empty())
    Session::writeFile((folder / options.raster).string(), rasterBytes(heading, rows));
  if (!options.geojson.empty())
    Session::writeFile((folder / options.geojson).string(), pointsText(heading, rows));
}

std::string BatchMaps::rasterBytes(const std::string& heading,
                                   const std::vector<std::string>& rows) const {
  const std::vector<std::string> columns = fieldsOf(heading);
  const RasterFrame frame(options.views, plan.views, eyes, place);
  Geodata::Raster raster = frame.raster();
  for (const std::string& name : bandsOf(columns))
    raster.bands.push_back({name, std::vector<double>(raster.columns * raster.rows,
                                                      std::numeric_limits<double>::quiet_NaN())});
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Fields fields = fieldsOf(rows[i], columns);
    for (Geodata::Raster::Band& band : raster.bands)
      if (const std::optional<double> value = numberOf(fields.at(band.name)))
        band.values[frame.position(i)] = *value;
  }
  return Geodata::geoTiff(raster, epsg);
}

// By RFC 7946, whose coordinates are degrees of WGS 84, one feature on a line.
std::string BatchMaps::pointsText(const std::string& heading,
                                  const std::vector<std::string>& rows) const {
  const std::vector<std::string> columns = fieldsOf(heading);
  std::vector<std::array<double, 2>> places;
  for (const Session::Vector& eye : eyes) places.push_back({eye[0], eye[1]});
  const std::vector<std::array<double, 2>> degrees = Geodata::inDegrees(places, epsg);
  std::string text = "{\"type\":\"FeatureCollection\",\"features\":[";
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Jzon::Node properties = Jzon::object();
    const Fields fields = fieldsOf(rows[i], columns);
    for (const std::string& name : columns) {
      const std::string& value = fields.at(name);
      const std::optional<double> number = isTextOfSummary(name) ? std::nullopt : numberOf(value);
      if (value.empty()) continue;
      properties.add(keyText(name), number ? numberNode(*number) : textNode(value));
    }
    Jzon::Node feature = Jzon::object();
    feature.add("type", "Feature");
    feature.add("geometry", pointNode(eyes[i], degrees[i]));
    feature.add("properties", properties);
    text += (i == 0 ? "\n" : ",\n") + lineText(feature);
  }
  return text + "\n]}\n";
}

}  // namespace Lumivane::Host
