// The page is plain HTML with the picture's SVG in it. What stands in cells is made here once, as
// text, so that tables of hosts look as the page's own. Colours of classes are those of drawings.

#include "kernel/DisplayText.h"
#include "pictures/ClassColor.h"
#include "pictures/SeenClasses.h"
#include "pictures/SunTables.h"
#include "pictures/SvgText.h"

#include <lumivane/measure/SunHours.h>
#include <lumivane/pictures/ReportPage.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/MapText.h>
#include <lumivane/visibility/VisibleMap.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Table = ReportPage::Table;
using Visibility::Field;
using Visibility::MapShares;
using Visibility::ShareDepth;
using Visibility::ShareRow;
using Visibility::ViewShare;
using Visibility::VisibleMap;

constexpr int ShareDecimals = 6;
constexpr int LengthDecimals = 3;

const char* const Style = R"(@page { size: A4; margin: 14mm }
body { font: 10pt/1.35 sans-serif; color: #222; max-width: 182mm; margin: 8mm auto }
h1 { font-size: 16pt; margin: 0 0 4mm } h2 { font-size: 12pt; margin: 6mm 0 2mm }
.look { display: flex; gap: 8mm; align-items: flex-start }
.look svg { width: 95mm; height: auto; flex: none } .look svg .o0 { fill: #dbeaf6 }
dl { display: grid; grid-template-columns: max-content 1fr; gap: 1mm 4mm; margin: 0 }
dt { color: #666 } dd { margin: 0; font-variant-numeric: tabular-nums }
p { margin: 0 0 2mm; color: #666 }
table { border-collapse: collapse; width: 100%; font-size: 8pt;
        font-variant-numeric: tabular-nums }
th, td { text-align: right; padding: 0.6mm 1.2mm; border-bottom: 0.2mm solid #ccc }
th:first-child, td:first-child { text-align: left; overflow-wrap: anywhere; min-width: 38mm }
section svg { display: block; width: 110mm; height: auto; margin: 2mm auto }
thead { display: table-header-group } tr { break-inside: avoid }
i { display: inline-block; width: 3mm; height: 3mm; margin-right: 2mm; border: 0.2mm solid #555;
    print-color-adjust: exact; -webkit-print-color-adjust: exact })";

std::string fixed(double value, int decimals) {
  std::array<char, 400> text{};
  const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(),
                                                 value + 0.0, std::chars_format::fixed, decimals);
  return {text.data(), end.ptr};
}

std::string shortest(double value) {
  std::array<char, 40> text{};
  const std::to_chars_result end =
      std::to_chars(text.data(), text.data() + text.size(), value + 0.0);
  return {text.data(), end.ptr};
}

std::string vectorText(const Visibility::Vector& v) {
  std::string text;
  for (const double value : v)
    text += (text.empty() ? "" : ", ") + shortest(std::round(value * 1e6) / 1e6);
  return text;
}

bool isHemisphere(const VisibleMap& map) { return map.field == Field::Hemisphere; }

// Only then is the sky's view factor what the word means.
bool looksUp(const VisibleMap& map) {
  return isHemisphere(map) && map.forward == Visibility::Vector{0.0, 0.0, 1.0};
}

std::vector<std::string> shareColumns(const VisibleMap& map) {
  if (!isHemisphere(map)) return {"solid angle, sr", "share of the sphere"};
  return {"area on the disc", "view factor", "solid angle, sr", "share of the hemisphere"};
}

void addShare(const VisibleMap& map, const ViewShare& share, std::vector<std::string>& cells) {
  if (isHemisphere(map)) {
    cells.push_back(fixed(share.area(), ShareDecimals));
    cells.push_back(fixed(share.viewFactor, ShareDecimals));
  }
  cells.push_back(fixed(share.solidAngle, ShareDecimals));
  cells.push_back(fixed(share.solidAngle / map.fieldSolidAngle(), ShareDecimals));
}

// Of what is seen; the sky has none.
void addDistances(const ShareRow& row, std::vector<std::string>& cells) {
  const bool isSeen = row.kind != "sky" && row.share.solidAngle > 0.0;
  for (const double distance : {row.share.minDistance, row.share.maxDistance})
    cells.push_back(isSeen ? fixed(distance, LengthDecimals) : "");
}

bool isSeen(const ShareRow& row) { return row.share.solidAngle > 0.0; }

// Only what is seen, the most first; the sky last.
std::vector<ShareRow> seenRows(const VisibleMap& map, const MapShares& shares, ShareDepth depth) {
  std::vector<ShareRow> rows = Visibility::shareRows(map, shares, depth);
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [](const ShareRow& row) { return row.kind != "sky" && !isSeen(row); }),
             rows.end());
  if (!rows.empty())
    std::stable_sort(rows.begin(), rows.end() - 1, [](const ShareRow& a, const ShareRow& b) {
      return a.share.solidAngle > b.share.solidAngle;
    });
  return rows;
}

std::vector<std::string> cellsOf(const VisibleMap& map, const ShareRow& row,
                                 const std::string& name) {
  std::vector<std::string> cells = {name};
  addShare(map, row.share, cells);
  return cells;
}

Table classTable(const VisibleMap& map, const MapShares& shares) {
  Table table;
  table.title = "By class";
  table.columns = shareColumns(map);
  table.columns.insert(table.columns.begin(), "class");
  table.columns.insert(table.columns.end(), {"least distance", "greatest distance"});
  for (const ShareRow& row : seenRows(map, shares, ShareDepth::Class)) {
    const std::string name = row.className.empty() ? "no class" : row.className;
    table.rows.push_back(cellsOf(map, row, row.kind == "sky" ? "sky" : name));
    addDistances(row, table.rows.back());
  }
  return table;
}

Table objectTable(const VisibleMap& map, const MapShares& shares) {
  const bool hasFractions = !shares.visibleFractions().empty();
  Table table;
  const std::vector<ShareRow> rows = seenRows(map, shares, ShareDepth::Object);
  const SeenClasses classes(map, shares);
  table.title = "By object";
  table.note = std::to_string(rows.empty() ? 0 : rows.size() - 1) + " of " +
               std::to_string(shares.objects().size()) + " objects are seen";
  table.columns = shareColumns(map);
  table.columns.pop_back();  // the share of the field, for which the page is too narrow
  table.columns.insert(table.columns.begin(), {"object", "class"});
  if (hasFractions) table.columns.emplace_back("visible part of it");
  table.columns.insert(table.columns.end(), {"least distance", "greatest distance"});
  for (const ShareRow& row : rows) {
    std::vector<std::string> cells = cellsOf(map, row, row.kind == "sky" ? "sky" : row.id);
    cells.pop_back();
    cells.insert(cells.begin() + 1,
                 row.kind == "sky" ? "" : classes.text(row.object, row.className));
    if (hasFractions)
      cells.push_back(row.visibleFraction ? fixed(*row.visibleFraction, LengthDecimals) : "");
    addDistances(row, cells);
    table.rows.push_back(std::move(cells));
  }
  return table;
}

std::string svgOf(const VectorPicture& picture) {
  SvgWriter::Options options;
  options.titles = false;
  options.declaration = false;
  return SvgWriter::write(picture, options);
}

std::string swatch(const std::string& className) {
  return "<i style=\"background:" + svgColor(classColor(className)) + "\"></i>";
}

// \param areClasses  whether the first cells are classes, which have colours
// \param svg         a picture between the note and the table; may be empty
std::string htmlOf(const Table& table, bool areClasses, const std::string& svg) {
  std::string text = "<section>\n<h2>" + htmlText(table.title) + "</h2>\n";
  if (!table.note.empty()) text += "<p>" + htmlText(table.note) + "</p>\n";
  text += svg;
  if (table.columns.empty()) return text + "</section>\n";
  text += "<table>\n<thead><tr>";
  for (const std::string& column : table.columns) text += "<th>" + htmlText(column) + "</th>";
  text += "</tr></thead>\n<tbody>\n";
  for (const std::vector<std::string>& row : table.rows) {
    text += "<tr>";
    for (std::size_t i = 0; i < row.size(); ++i) {
      const bool hasColor = areClasses && i == 0;
      text += "<td>" + (hasColor ? swatch(row[i] == "no class" ? "" : row[i]) : std::string()) +
              htmlText(row[i]) + "</td>";
    }
    text += "</tr>\n";
  }
  return text + "</tbody>\n</table>\n</section>\n";
}

}  // namespace

ReportPage::ReportPage(const std::string& title, const VectorPicture& picture,
                       const VisibleMap& map, const MapShares& shares)
    : pageTitle(title), svg(svgOf(picture)) {
  addFact("eye", vectorText(map.eye));
  addFact("forward", vectorText(map.forward));
  addFact("up", vectorText(map.up));
  addFact("field", isHemisphere(map) ? "hemisphere" : "sphere");
  if (isHemisphere(map))
    addFact(looksUp(map) ? "sky view factor" : "view factor of the sky",
            fixed(shares.sky().viewFactor, ShareDecimals));
  addFact("sky's share of the field",
          fixed(shares.sky().solidAngle / map.fieldSolidAngle(), ShareDecimals));
  if (map.names != nullptr && !map.names->classNames.empty()) add(classTable(map, shares));
  add(objectTable(map, shares));
}

void ReportPage::addFact(const std::string& name, const std::string& value) {
  facts.push_back({name, value});
}

void ReportPage::add(Table table) { sections.push_back({std::move(table), ""}); }

void ReportPage::addSun(const VisibleMap& upwards, const Measure::Place& place,
                        const std::vector<Measure::SunDay>& days, const std::string& diagram) {
  double lit = 0.0;
  double daylight = 0.0;
  for (const Measure::SunDay& day : days) {
    lit += day.litSeconds();
    daylight += day.daylightSeconds();
  }
  constexpr double HourSeconds = 3600.0;
  addFact("latitude, longitude", shortest(place.latitude) + ", " + shortest(place.longitude));
  if (!days.empty()) {
    const std::string first = Measure::dateText(days.front().date);
    const std::string last = Measure::dateText(days.back().date);
    addFact(days.size() > 1 ? "days" : "day", days.size() > 1 ? first + " to " + last : first);
  }
  addFact("sun hours", fixed(lit / HourSeconds, LengthDecimals));
  addFact("daylight hours", fixed(daylight / HourSeconds, LengthDecimals));
  bool isFirst = true;
  for (SunTable& part : sunTables(days, place.zone, upwards.names.get())) {
    if (isFirst)
      part.table.note =
          "The sun is the centre of its disc, without refraction. Looking up: north above, east on "
          "the left.";
    sections.push_back({std::move(part.table), isFirst ? diagram : ""});
    isFirst = false;
  }
}

std::string ReportPage::text() const {
  std::string text =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n<title>" +
      htmlText(pageTitle) + "</title>\n<style>\n" + Style + "\n</style>\n</head>\n<body>\n<h1>" +
      htmlText(pageTitle) + "</h1>\n<div class=\"look\">\n" + svg + "<dl>\n";
  for (const Fact& fact : facts)
    text += "<dt>" + htmlText(fact.name) + "</dt><dd>" + htmlText(fact.value) + "</dd>\n";
  text += "</dl>\n</div>\n";
  for (const Section& section : sections) {
    const std::vector<std::string>& columns = section.table.columns;
    text += htmlOf(section.table, !columns.empty() && columns.front() == "class", section.svg);
  }
  return text + "</body>\n</html>\n";
}

}  // namespace Lumivane::Pictures
