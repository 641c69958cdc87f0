// Values on a plan. A command of its own: `draw` makes pictures of a scene alone, and all that this
// one adds comes out of a table.

#include "Csv.h"
#include "ExactScene.h"
#include "HostError.h"
#include "MapOptions.h"
#include "OutputNames.h"
#include "SceneSource.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/pictures/DrawingOptions.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Lumivane::Host {
namespace {

using Pictures::Drawing;
using Pictures::DrawingOptions;
using Pictures::DrawingValues;
using Pictures::DrawingWriter;
using Session::Vector;

bool readNumber(const std::string& text, double& number) {
  char* end = nullptr;
  number = std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0' && std::isfinite(number);
}

// A table by the names of its columns.
class Table {
 public:
  explicit Table(const std::string& thePath)
      : path(thePath), records(readCsv(Session::readBytes(path), path)) {
    if (records.empty()) throw HostError(path, "is empty: a heading with the columns is missing");
    for (std::size_t i = 0; i < records[0].fields.size(); ++i) columns[records[0].fields[i]] = i;
    for (const CsvRecord& record : records)
      if (record.fields.size() != records[0].fields.size())
        fail(record, std::to_string(record.fields.size()) + " fields for " +
                         std::to_string(records[0].fields.size()) + " columns");
  }

  std::size_t rows() const { return records.size() - 1; }
  bool has(const std::string& column) const { return columns.count(column) > 0; }

  const std::string& cell(std::size_t row, const std::string& column) const {
    const auto found = columns.find(column);
    if (found == columns.end())
      throw HostError(path, "has no column \"" + column + "\"; there are " + columnList());
    return records[row + 1].fields[found->second];
  }

  bool hasEyes() const { return has("eye") || (has("eye_x") && has("eye_y") && has("eye_z")); }

  Vector eye(std::size_t row) const {
    std::vector<std::string> texts;
    if (has("eye")) {
      const std::string& all = cell(row, "eye");
      for (std::size_t start = 0; start <= all.size();) {
        const std::size_t comma = std::min(all.find(',', start), all.size());
        texts.push_back(all.substr(start, comma - start));
        start = comma + 1;
      }
    } else {
      texts = {cell(row, "eye_x"), cell(row, "eye_y"), cell(row, "eye_z")};
    }
    Vector eye{};
    bool isRight = texts.size() == eye.size();
    for (std::size_t i = 0; isRight && i < eye.size(); ++i) isRight = readNumber(texts[i], eye[i]);
    if (!isRight) fail(records[row + 1], "its eye is not three numbers");
    return eye;
  }

  [[noreturn]] void fail(std::size_t row, const std::string& cause) const {
    fail(records[row + 1], cause);
  }

 private:
  [[noreturn]] void fail(const CsvRecord& record, const std::string& cause) const {
    throw HostError(path, "line " + std::to_string(record.line) + ": " + cause);
  }

  std::string columnList() const {
    std::string text;
    for (const std::string& name : records[0].fields) text += (text.empty() ? "" : ", ") + name;
    return text;
  }

  std::string path;
  std::vector<CsvRecord> records;
  std::map<std::string, std::size_t> columns;
};

// The eyes of a table of views by their names.
std::map<std::string, Vector> eyesByName(const Table& views) {
  std::map<std::string, Vector> eyes;
  for (std::size_t row = 0; row < views.rows(); ++row)
    eyes[views.cell(row, "name")] = views.eye(row);
  return eyes;
}

class ValueReader {
 public:
  ValueReader(const MapOptions& theOptions, const Vector& theShift)
      : options(theOptions), shift(theShift), table(options.table) {
    if (options.views.empty() && !table.hasEyes())
      throw HostError(options.table,
                      "has no eyes (eye_x, eye_y, eye_z, or eye): name their table with --views");
    if (!options.views.empty()) eyes = eyesByName(Table(options.views));
  }

  std::vector<DrawingValues::Value> values() {
    std::vector<DrawingValues::Value> result;
    std::size_t empty = 0;
    for (std::size_t row = 0; row < table.rows(); ++row) {
      if (!options.whereColumn.empty() && table.cell(row, options.whereColumn) != options.whereText)
        continue;
      DrawingValues::Value value;
      const std::string& text = table.cell(row, options.column);
      if (text.empty()) {
        ++empty;
        continue;
      }
      if (!readNumber(text, value.value))
        table.fail(row, "column \"" + options.column + "\": \"" + text + "\" is not a number");
      value.place = placeOf(row);
      result.push_back(value);
    }
    if (empty > 0)
      std::cerr << "lumivane: " << oneLine(options.table) << ": " << empty
                << " rows have no value of " << oneLine(options.column) << " and are left out\n";
    if (result.empty())
      throw HostError(options.table,
                      "has no value in column \"" + options.column + "\"" +
                          (options.whereColumn.empty() ? std::string()
                                                       : " where " + options.whereColumn +
                                                             " is \"" + options.whereText + "\""));
    return result;
  }

 private:
  // A summary has the eyes where they stood in the scene, a table of views those of its file.
  Vector placeOf(std::size_t row) const {
    if (options.views.empty()) {
      const Vector eye = table.eye(row);
      return table.has("status") ? eye : moved(eye, shift);
    }
    const auto found = eyes.find(table.cell(row, "name"));
    if (found == eyes.end())
      table.fail(row, "there is no view \"" + table.cell(row, "name") + "\" in " + options.views);
    return moved(found->second, shift);
  }

  const MapOptions& options;
  Vector shift;
  Table table;
  std::map<std::string, Vector> eyes;
};

// Two values at one place would hide each other.
void checkPlaces(const std::string& table, const std::vector<DrawingValues::Value>& values) {
  std::set<Vector> places;
  for (const DrawingValues::Value& value : values)
    if (!places.insert(value.place).second)
      throw HostError(table,
                      "has several values for one eye: choose among them with --where "
                      "COLUMN=TEXT");
}

// The distance of neighbours in a grid along the axes; 0 if the places are none.
double gridSide(const std::vector<DrawingValues::Value>& values) {
  double side = 0.0;
  constexpr double Slack = 1e-6;
  for (const std::size_t axis : {std::size_t{0}, std::size_t{1}}) {
    std::vector<double> places;
    for (const DrawingValues::Value& value : values) places.push_back(value.place[axis]);
    std::sort(places.begin(), places.end());
    for (std::size_t i = 1; i < places.size(); ++i) {
      const double step = places[i] - places[i - 1];
      if (step > Slack && (side == 0.0 || step < side)) side = step;
    }
  }
  if (side == 0.0) return 0.0;
  for (const DrawingValues::Value& value : values)
    for (const std::size_t axis : {std::size_t{0}, std::size_t{1}}) {
      const double steps = (value.place[axis] - values[0].place[axis]) / side;
      if (std::abs(steps - std::round(steps)) > 1e-4) return 0.0;
    }
  return side;
}

DrawingValues drawnValues(const MapOptions& options, const Vector& shift) {
  DrawingValues drawn;
  drawn.values = ValueReader(options, shift).values();
  checkPlaces(options.table, drawn.values);
  drawn.side = options.cell ? *options.cell : gridSide(drawn.values);
  drawn.dot = options.dot;
  drawn.title = options.title.empty() ? options.column : options.title;
  if (options.range) {
    drawn.low = (*options.range)[0];
    drawn.high = (*options.range)[1];
    return drawn;
  }
  const auto [least, greatest] =
      std::minmax_element(drawn.values.begin(), drawn.values.end(),
                          [](const DrawingValues::Value& a, const DrawingValues::Value& b) {
                            return a.value < b.value;
                          });
  drawn.low = least->value;
  drawn.high = greatest->value > drawn.low ? greatest->value : drawn.low + 1.0;
  return drawn;
}

DrawingOptions planOf(const MapOptions& options, const Vector& shift) {
  DrawingOptions plan;
  plan.projection = Pictures::DrawingProjection::Parallel;
  plan.forward = {0.0, 0.0, -1.0};
  plan.up = {0.0, 1.0, 0.0};
  plan.fill = Pictures::DrawingFill::None;
  // Thin, so that the colours are seen.
  plan.widths = {0.2, 0.13, 0.1, 0.0, 0.1, 0.1, 0.0};
  plan.contentWidth = options.width;
  plan.scale = options.scale;
  plan.page = options.page;
  plan.title = std::filesystem::path(options.table).filename().string();
  plan.background = Drawing::Color{255, 255, 255, 1.0};
  plan.scaleBar = true;
  plan.north = true;
  plan.values = drawnValues(options, shift);
  if (!options.png.empty()) plan.flatness = std::min(plan.flatness, 2.54 / options.dpi);
  return plan;
}

// A plan shows the scene, so values beside it are not on it.
void reportBeside(const std::string& table, const std::vector<DrawingValues::Value>& values,
                  double side, Scene::Scene3D& scene) {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  std::array<double, 2> low = {Infinity, Infinity};
  std::array<double, 2> high = {-Infinity, -Infinity};
  if (scene.getPoints() == nullptr) return;
  for (const Geometry::Point3d* const point : *scene.getPoints()->getPoints()) {
    if (point == nullptr) continue;
    low = {std::min(low[0], point->getX()), std::min(low[1], point->getY())};
    high = {std::max(high[0], point->getX()), std::max(high[1], point->getY())};
  }
  const auto isBeside = [&](const DrawingValues::Value& value) {
    for (const std::size_t axis : {std::size_t{0}, std::size_t{1}})
      if (value.place[axis] < low[axis] - side || value.place[axis] > high[axis] + side)
        return true;
    return false;
  };
  const auto beside =
      static_cast<std::size_t>(std::count_if(values.begin(), values.end(), isBeside));
  if (beside == values.size())
    throw HostError(table,
                    "no eye of it lies over the scene: the eyes are of another scene, or lack "
                    "the shift that its import prints");
  if (beside > 0)
    std::cerr << "lumivane: " << oneLine(table) << ": warning: " << beside << " of "
              << values.size() << " eyes lie beside the scene, and not on its plan\n";
}

// Of eyes above each other, as on walls, a plan shows the highest.
void reportHidden(const std::string& table, const std::vector<DrawingValues::Value>& values) {
  std::set<std::array<double, 2>> places;
  for (const DrawingValues::Value& value : values) places.insert({value.place[0], value.place[1]});
  if (places.size() < values.size())
    std::cerr << "lumivane: " << oneLine(table) << ": " << values.size() - places.size()
              << " eyes stand straight below others, which are drawn over them\n";
}

Drawing drawn(const MapOptions& options, const SourcedScene& source, const DrawingOptions& plan) {
  try {
    return Pictures::drawScene(sceneIndexOf(options.scene, source),
                               Pictures::DrawingColors(source.scene().scene()), plan);
  } catch (const std::invalid_argument& error) {
    throw HostError("the map", error.what());
  } catch (const std::runtime_error& error) {
    throw HostError(options.scene, error.what());
  }
}

}  // namespace

void runMap(const MapOptions& options) {
  if (options.svg.empty() && options.pdf.empty() && options.png.empty())
    throw ArgumentError("--svg", "or --pdf or --png is needed");
  if (options.cell.value_or(0.0) > 0.0 && options.dot != MapOptions().dot)
    throw ArgumentError("--dot", "is the width of dots, but --cell asks for squares");
  Session::checkReadable(options.scene);
  Session::checkReadable(options.table);
  std::vector<std::string> inputs = sourceFiles(options.scene, options.import);
  inputs.push_back(options.table);
  if (!options.views.empty()) inputs.push_back(options.views);
  OutputNames names(inputs);
  names.add("--svg", options.svg);
  names.add("--pdf", options.pdf);
  names.add("--png", options.png);
  const SourcedScene source = loadScene(options.scene, options.import);
  const DrawingOptions plan = planOf(options, source.eyeShift);
  reportBeside(options.table, plan.values->values, plan.values->side, source.scene().scene());
  reportHidden(options.table, plan.values->values);
  const Drawing drawing = drawn(options, source, plan);
  std::vector<std::pair<std::string, std::string>> outputs;
  if (!options.svg.empty()) outputs.emplace_back(options.svg, DrawingWriter::svg(drawing));
  if (!options.pdf.empty()) outputs.emplace_back(options.pdf, DrawingWriter::pdf(drawing));
  if (!options.png.empty())
    outputs.emplace_back(options.png, DrawingWriter::png(drawing, options.dpi));
  for (const auto& output : outputs) Session::writeFile(output.first, output.second);
}

}  // namespace Lumivane::Host
