// A page is put together as a tree, so that no text needs care; the diagram's SVG stands in it as
// it is.
#include "pictures/SunTables.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/SunDiagram.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cstdio>
#include <locale>
#include <sstream>

#include <pugixml.hpp>

namespace Lumivane::Pictures {
namespace {

using Measure::SunDay;
using Cells = std::vector<std::string>;

constexpr const char* DiagramPlace = "<!--diagram-->";
constexpr const char* Style =
    "body{font-family:sans-serif;margin:1.5em auto;max-width:60em;color:#222}"
    "svg{max-width:100%;height:auto}table{border-collapse:collapse;margin:1em 0}"
    "th,td{padding:.15em .8em;border-bottom:1px solid #ccc;text-align:left}"
    "td.number{text-align:right;font-variant-numeric:tabular-nums}"
    "@media print{body{margin:0}table{break-inside:avoid}}";

class Page {
 public:
  Page(const Visibility::VisibleMap& theMap, const Measure::Place& thePlace,
       const SunDiagramOptions& options)
      : map(theMap), place(thePlace) {
    document.append_child(pugi::node_doctype).set_value("html");
    pugi::xml_node html = document.append_child("html");
    html.append_attribute("lang") = "en";
    pugi::xml_node head = html.append_child("head");
    head.append_child("meta").append_attribute("charset") = "utf-8";
    const std::string title = xmlText(options.title.empty() ? "Sun hours" : options.title);
    head.append_child("title").text() = title.c_str();
    head.append_child("style").text() = Style;
    body = html.append_child("body");
    body.append_child("h1").text() = title.c_str();
    char where[200];
    std::snprintf(where, sizeof where,
                  "Eye %.10g, %.10g, %.10g; latitude %.8g, longitude %.8g degrees.", map.eye[0],
                  map.eye[1], map.eye[2], place.latitude, place.longitude);
    body.append_child("p").text() = where;
    body.append_child(pugi::node_comment).set_value("diagram");
    body.append_child("p").text() =
        "Looking up: north above, east on the left. The sun is the centre of its disc, without "
        "refraction.";
  }

  void addDays(const std::vector<SunDay>& days) {
    for (const SunTable& part : sunTables(days, place.zone, map.names.get())) {
      pugi::xml_node table = addTable(part.table.title, part.table.columns);
      for (const Cells& row : part.table.rows) addRow(table, row, part.firstNumber);
    }
  }

  std::string text(const std::string& diagram) const {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    document.save(
        stream, "",
        pugi::format_raw | pugi::format_no_declaration | pugi::format_no_empty_element_tags,
        pugi::encoding_utf8);
    std::string result = stream.str();
    const std::string mark = DiagramPlace;
    return result.replace(result.find(mark), mark.size(), diagram) + "\n";
  }

 private:
  pugi::xml_node addTable(const std::string& title, const Cells& columns) {
    body.append_child("h2").text() = title.c_str();
    pugi::xml_node table = body.append_child("table");
    pugi::xml_node row = table.append_child("tr");
    for (const std::string& column : columns) row.append_child("th").text() = column.c_str();
    return table;
  }

  // From one of the cells on they are numbers.
  static void addRow(pugi::xml_node table, const Cells& cells, size_t firstNumber) {
    pugi::xml_node row = table.append_child("tr");
    for (size_t i = 0; i < cells.size(); ++i) {
      pugi::xml_node cell = row.append_child("td");
      if (i >= firstNumber) cell.append_attribute("class") = "number";
      cell.text() = xmlText(cells[i]).c_str();
    }
  }

  const Visibility::VisibleMap& map;
  const Measure::Place& place;
  pugi::xml_document document;
  pugi::xml_node body;
};

}  // namespace

std::string sunPage(const Visibility::VisibleMap& upwards, const MapColors& colors,
                    const Measure::Place& place, const std::vector<SunDay>& days,
                    const SunDiagramOptions& options) {
  SunDiagramOptions part = options;
  part.declaration = false;
  const std::string diagram = sunDiagram(upwards, colors, place, part);
  Page page(upwards, place, options);
  page.addDays(days);
  return page.text(diagram);
}

}  // namespace Lumivane::Pictures
