#include "measure/AccuracyTable.h"

#include "measure/ClosedForms.h"

#include <lumivane/measure/VisibleShares.h>

#include <algorithm>
#include <cmath>
#include <ios>
#include <map>
#include <sstream>
#include <stdexcept>

namespace Lumivane::Test {
namespace {

// What the rows are called; forms without a name are shown by another row of equal figures.
const std::vector<std::pair<std::string, std::string>> RowNames = {
    {"rect_corner", "rectangle, normal through a corner"},
    {"rect_centre", "rectangle, normal through its centre"},
    {"rect_side", "rectangle at the side"},
    {"disc_axis", "disc on the axis"},
    {"disc_tilt", "disc, tilted element"},
    {"disc_shift", "disc, shifted"},
    {"strip", "strip without end"},
    {"triangle", "triangle"},
    {"shadow, front", "small plate in front of a large one"},
    {"shadow, back", "what it leaves of the large one"},
    {"cube, top", "top of a cube from its middle"},
    {"cube, right", "side of a cube from its middle"}};

double viewFactorOf(const Measure::VisibleShares& shares, const std::string& object) {
  for (const Measure::ObjectShare& share : shares.objects())
    if (share.id == object) return share.share.viewFactor;
  throw std::invalid_argument("the shot has no object " + object);
}

void addErrors(std::map<std::string, AccuracyRow>& rows, const ClosedFormScene& form) {
  const auto scene = build(form);
  const SharingShot shot = scene->makeShot();
  const Measure::VisibleShares shares(*shot);
  for (const ClosedForm& expected : form.expected) {
    AccuracyRow& row = rows[expected.name];
    row.viewFactor = expected.viewFactor;
    row.errors.push_back(viewFactorOf(shares, expected.object) / expected.viewFactor - 1.0);
  }
}

// By the stream's form for floating numbers; the default one is the shortest that holds the digits.
std::string printed(double value, int digits, std::ios_base::fmtflags form = {}) {
  std::ostringstream text;
  text.setf(form, std::ios_base::floatfield);
  text.precision(digits);
  text << value;
  return text.str();
}

// With two digits, and no more of the exponent than it needs: -2.7e-4.
std::string errorText(double error) {
  std::string text = printed(error, 1, std::ios_base::scientific);
  const size_t zero = text.find("e-0");
  if (zero != std::string::npos) text.erase(zero + 2, 1);
  return text;
}

std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream stream(line);
  std::string cell;
  std::getline(stream, cell, '|');  // before the first bar
  while (std::getline(stream, cell, '|')) {
    const size_t first = cell.find_first_not_of(' ');
    const size_t last = cell.find_last_not_of(' ');
    cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
  }
  return cells;
}

double numberOf(const std::string& text) {
  size_t end = 0;
  const double value = std::stod(text, &end);
  if (end != text.size()) throw std::invalid_argument("no number: " + text);
  return value;
}

// One unit of the second digit.
double lastUnit(double value) {
  return value == 0.0 ? 0.0 : std::pow(10.0, std::floor(std::log10(std::abs(value))) - 1.0);
}

std::string marker(double mergeDistance) {
  return "<!-- accuracy: " + printed(mergeDistance, 6) + " -->";
}

std::string difference(const AccuracyRow& page, const AccuracyRow& measured) {
  if (page.scene != measured.scene)
    return "\"" + page.scene + "\" stands where \"" + measured.scene + "\" should\n";
  if (std::abs(page.viewFactor - measured.viewFactor) > 0.6e-9)
    return page.scene + ": closed form " + printed(measured.viewFactor, 9, std::ios_base::fixed) +
           "\n";
  if (page.errors.size() != measured.errors.size())
    return page.scene + ": has " + std::to_string(page.errors.size()) + " errors\n";
  std::string result;
  for (size_t i = 0; i < page.errors.size(); ++i)
    if (std::abs(page.errors[i] - measured.errors[i]) > lastUnit(measured.errors[i]))
      result += page.scene + " at " + printed(accuracyLengths()[i], 6) + ": the page says " +
                errorText(page.errors[i]) + ", measured is " + errorText(measured.errors[i]) + "\n";
  return result;
}

}  // namespace

const std::vector<double>& accuracyLengths() {
  static const std::vector<double> lengths = {0.08, 0.04, 0.02, 0.01, 0.005};
  return lengths;
}

AccuracyTable measuredAccuracy(double mergeDistance) {
  std::map<std::string, AccuracyRow> rows;
  const MergeDistance distance(mergeDistance);
  for (const double length : accuracyLengths()) {
    const PieceLength limit(length);
    for (const ClosedFormScene& form : closedFormScenes()) addErrors(rows, form);
  }
  AccuracyTable table{mergeDistance, {}};
  for (const auto& [form, name] : RowNames) {
    table.rows.push_back(rows.at(form));
    table.rows.back().scene = name;
  }
  return table;
}

std::string markdown(const AccuracyTable& table) {
  std::string text = marker(table.mergeDistance) + "\n\n| Scene | Closed form |";
  for (const double length : accuracyLengths()) text += " " + printed(length, 6) + " |";
  text += "\n|---|---|";
  for (size_t i = 0; i < accuracyLengths().size(); ++i) text += "---|";
  for (const AccuracyRow& row : table.rows) {
    text += "\n| " + row.scene + " | " + printed(row.viewFactor, 9, std::ios_base::fixed) + " |";
    for (const double error : row.errors) text += " " + errorText(error) + " |";
  }
  return text + "\n";
}

AccuracyTable tableInPage(const std::string& page, double mergeDistance) {
  const size_t place = page.find(marker(mergeDistance));
  if (place == std::string::npos)
    throw std::invalid_argument("the page has no " + marker(mergeDistance));
  std::istringstream lines(page.substr(place));
  std::string line;
  for (int i = 0; i < 4; ++i) std::getline(lines, line);  // marker, empty line, head, rule
  AccuracyTable table{mergeDistance, {}};
  while (std::getline(lines, line) && !line.empty()) {
    const std::vector<std::string> cells = cellsOf(line);
    AccuracyRow row{cells.at(0), numberOf(cells.at(1)), {}};
    for (size_t i = 2; i < cells.size(); ++i) row.errors.push_back(numberOf(cells[i]));
    table.rows.push_back(row);
  }
  return table;
}

std::string differences(const AccuracyTable& page, const AccuracyTable& measured) {
  std::string result;
  if (page.rows.size() != measured.rows.size())
    result += "the page has " + std::to_string(page.rows.size()) + " rows of " +
              std::to_string(measured.rows.size()) + "\n";
  for (size_t i = 0; i < std::min(page.rows.size(), measured.rows.size()); ++i)
    result += difference(page.rows[i], measured.rows[i]);
  return result;
}

}  // namespace Lumivane::Test
