#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"
#include "kernel/JsonText.h"
#include "measure/NumpyArchive.h"

#include <lumivane/measure/FactorText.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

// View factors as tables, JSON, matrices and lines of a journal. Numbers have the fewest digits
// that read back to them, so a row that comes from the journal is the row that was computed.
namespace Lumivane::Measure {
namespace {

template <class Number>
std::string text(Number value) {
  char buffer[40];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, end.ptr};
}

std::string idOf(const FactorTable& table, const FactorElement& element) {
  const auto i = static_cast<size_t>(element.label.object) - 1;
  return i < table.objectIds.size() ? Kernel::idText(table.objectIds[i]) : std::string();
}

std::string classOf(const FactorTable& table, const FactorElement& element) {
  const auto i = static_cast<size_t>(element.classNumber);
  return element.classNumber >= 0 && i < table.classNames.size() ? table.classNames[i]
                                                                 : std::string();
}

const char* sideOf(const FactorElement& element) { return element.isBack ? "back" : "front"; }

std::string jsonElement(const FactorTable& table, size_t i) {
  const FactorElement& element = table.elements[i];
  const auto vector = [](const Visibility::Vector& v) {
    return "[" + text(v[0]) + "," + text(v[1]) + "," + text(v[2]) + "]";
  };
  const std::string className = classOf(table, element);
  return "{\"number\":" + text(i + 1) + ",\"object\":" + text(element.label.object) +
         ",\"id\":" + Kernel::jsonString(idOf(table, element)) +
         ",\"face\":" + text(element.label.face) + ",\"region\":" + text(element.label.region) +
         ",\"side\":\"" + sideOf(element) + "\"" +
         (className.empty() ? "" : ",\"class\":" + Kernel::jsonString(className)) +
         ",\"area\":" + text(element.area) + ",\"centre\":" + vector(element.centre) +
         ",\"normal\":" + vector(element.normal) + "}";
}

template <class Value>
std::string jsonArray(const FactorRow& row, Value value) {
  std::string result = "[";
  for (const FactorEntry& entry : row.entries) {
    if (result.size() > 1) result += ",";
    result += value(entry);
  }
  return result + "]";
}

std::string jsonRow(const FactorRow& row) {
  return "{\"i\":" + text(row.element + 1) + ",\"sky\":" + text(row.sky) +
         ",\"sky_estimate\":" + text(row.skyEstimate) + ",\"residual\":" + text(row.residual) +
         ",\"points\":" + text(row.looks) +
         ",\"within_tolerance\":" + (row.isWithinTolerance ? "true" : "false") + ",\"j\":" +
         jsonArray(row, [](const FactorEntry& entry) { return text(entry.element + 1); }) +
         ",\"view_factor\":" +
         jsonArray(row, [](const FactorEntry& entry) { return text(entry.factor); }) +
         ",\"estimate\":" +
         jsonArray(row, [](const FactorEntry& entry) { return text(entry.estimate); }) + "}";
}

// Reads numbers that stand between single spaces.
class Words {
 public:
  explicit Words(const std::string& line) : at(line.data()), end(line.data() + line.size()) {}

  template <class Number>
  bool read(Number& value) {
    if (at != end && *at == ' ') ++at;
    const std::from_chars_result result = std::from_chars(at, end, value);
    at = result.ptr;
    return result.ec == std::errc{};
  }
  bool isAtEnd() const { return at == end; }

 private:
  const char* at;
  const char* end;
};

// What each element has, in its own array.
template <class Value, class Get>
std::vector<Value> column(const FactorTable& table, Get get) {
  std::vector<Value> result;
  for (const FactorElement& element : table.elements) result.push_back(get(element));
  return result;
}

}  // namespace

std::string FactorText::csv(const FactorTable& table) {
  std::string result = "i,j,view_factor,estimate\n";
  for (const FactorRow& row : table.rows) {
    const std::string i = text(row.element + 1) + ",";
    for (const FactorEntry& entry : row.entries)
      result += i + text(entry.element + 1) + "," + text(entry.factor) + "," +
                text(entry.estimate) + "\n";
    result += i + "0," + text(row.sky) + "," + text(row.skyEstimate) + "\n";
  }
  return result;
}

std::string FactorText::json(const FactorTable& table) {
  std::string result = "{\"version\":1,\n\"elements\":[";
  for (size_t i = 0; i < table.elements.size(); ++i)
    result += (i == 0 ? "\n" : ",\n") + jsonElement(table, i);
  result += "],\n\"rows\":[";
  for (size_t i = 0; i < table.rows.size(); ++i)
    result += (i == 0 ? "\n" : ",\n") + jsonRow(table.rows[i]);
  return result + "]}\n";
}

std::string FactorText::elementsCsv(const FactorTable& table, bool isSafe) {
  const auto cell = [isSafe](const std::string& value) {
    return Kernel::csvField(isSafe ? Kernel::csvSafe(value) : value);
  };
  std::vector<const FactorRow*> rows(table.elements.size(), nullptr);
  for (const FactorRow& row : table.rows) rows.at(row.element) = &row;
  std::string result =
      "number,object,id,face,region,side,class,area,x,y,z,nx,ny,nz,sky,residual,points,"
      "within_tolerance\n";
  for (size_t i = 0; i < table.elements.size(); ++i) {
    const FactorElement& e = table.elements[i];
    result += text(i + 1) + "," + text(e.label.object) + "," + cell(idOf(table, e)) + "," +
              text(e.label.face) + "," + text(e.label.region) + "," + sideOf(e) + "," +
              cell(classOf(table, e)) + "," + text(e.area);
    for (const Visibility::Vector& v : {e.centre, e.normal})
      for (const double value : v) result += "," + text(value);
    if (rows[i] == nullptr)
      result += ",,,,\n";
    else
      result += "," + text(rows[i]->sky) + "," + text(rows[i]->residual) + "," +
                text(rows[i]->looks) + "," + (rows[i]->isWithinTolerance ? "1" : "0") + "\n";
  }
  return result;
}

std::string FactorText::rowText(const FactorRow& row) {
  std::string result = text(row.element) + " " + text(row.looks) + " " +
                       (row.isWithinTolerance ? "1" : "0") + " " + text(row.residual) + " " +
                       text(row.sky) + " " + text(row.skyEstimate) + " " + text(row.entries.size());
  for (const FactorEntry& entry : row.entries)
    result += " " + text(entry.element) + " " + text(entry.factor) + " " + text(entry.estimate);
  return result;
}

std::optional<FactorRow> FactorText::readRowText(const std::string& line) {
  FactorRow row;
  Words words(line);
  int isWithin = 0;
  size_t count = 0;
  if (!words.read(row.element) || !words.read(row.looks) || !words.read(isWithin) ||
      !words.read(row.residual) || !words.read(row.sky) || !words.read(row.skyEstimate) ||
      !words.read(count) || count > line.size())
    return std::nullopt;
  row.isWithinTolerance = isWithin != 0;
  for (size_t i = 0; i < count; ++i) {
    FactorEntry entry;
    if (!words.read(entry.element) || !words.read(entry.factor) || !words.read(entry.estimate))
      return std::nullopt;
    row.entries.push_back(entry);
  }
  if (!words.isAtEnd()) return std::nullopt;
  return row;
}

bool FactorText::hasNpz() { return NumpyArchive::isBuilt(); }

std::string FactorText::npz(const FactorTable& table) {
  const size_t count = table.elements.size();
  std::vector<double> data, estimate;
  std::vector<std::int64_t> indices;
  std::vector<std::int64_t> offsets(1, 0);
  std::vector<double> sky(count, std::numeric_limits<double>::quiet_NaN());
  std::vector<double> skyEstimate = sky;
  for (const FactorRow& row : table.rows) {
    while (offsets.size() <= row.element) offsets.push_back(static_cast<std::int64_t>(data.size()));
    for (const FactorEntry& entry : row.entries) {
      data.push_back(entry.factor);
      estimate.push_back(entry.estimate);
      indices.push_back(static_cast<std::int64_t>(entry.element));
    }
    sky.at(row.element) = row.sky;
    skyEstimate.at(row.element) = row.skyEstimate;
  }
  while (offsets.size() <= count) offsets.push_back(static_cast<std::int64_t>(data.size()));
  NumpyArchive archive;
  archive.add("data", data);
  archive.add("indices", indices);
  archive.add("indptr", offsets);
  archive.add("shape", std::vector<std::int64_t>(2, static_cast<std::int64_t>(count)));
  archive.addWord("format", "csr");
  archive.add("estimate", estimate);
  archive.add("sky", sky);
  archive.add("sky_estimate", skyEstimate);
  using E = FactorElement;
  using Whole = std::int64_t;
  archive.add("area", column<double>(table, [](const E& e) { return e.area; }));
  archive.add("object", column<Whole>(table, [](const E& e) { return Whole{e.label.object}; }));
  archive.add("face", column<Whole>(table, [](const E& e) { return Whole{e.label.face}; }));
  archive.add("region", column<Whole>(table, [](const E& e) { return Whole{e.label.region}; }));
  archive.add("back", column<Whole>(table, [](const E& e) { return Whole{e.isBack ? 1 : 0}; }));
  archive.add("class", column<Whole>(table, [](const E& e) { return Whole{e.classNumber}; }));
  return archive.bytes();
}

}  // namespace Lumivane::Measure
