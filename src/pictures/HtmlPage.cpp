// A page is one file: the template with the pictures' SVG and a table of values in it. Texts are
// escaped for the place where they stand, in HTML or in a script. Classes stand beside the rows of
// a table, and only where something has one: pages of other scenes have no column of them.

#include "algorithm/pipeline/TypeProjection.h"
#include "kernel/DisplayText.h"
#include "pictures/MapPlane.h"
#include "pictures/PageSource.h"
#include "pictures/SeenClasses.h"
#include "pictures/SvgText.h"
#include "pictures/WrongShading.h"

#include <lumivane/measure/ShareClasses.h>
#include <lumivane/measure/ShotAudit.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/pictures/HtmlPage.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorOptions.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/ParallelMap.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cmath>
#include <map>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

namespace Lumivane::Pictures {
namespace {

using Json = nlohmann::json;

constexpr double LeastPlaces = 40000.0;  // on the height of a picture

// Nine digits are more than any drawing shows, and make for shorter numbers than all of them.
double rounded(double value) {
  if (value == 0.0 || !std::isfinite(value)) return 0.0;
  const double step = std::pow(10.0, 8.0 - std::floor(std::log10(std::abs(value))));
  return std::isfinite(step) ? std::round(value * step) / step : value;
}

Json row(int number, const std::string& id, const std::vector<double>& values) {
  Json result = {number, xmlText(Kernel::idText(id))};
  for (const double value : values) result.push_back(rounded(value));
  return result;
}

// "<" stands in a script only where a tag cannot begin.
std::string scriptJson(const Json& json) {
  std::string result;
  for (const char c : json.dump()) {
    if (c == '<')
      result += "\\u003c";
    else
      result += c;
  }
  return result;
}

// What the page shows of a picture: the columns of its rows, the main one first.
Json table(const std::string& name, const char* field, const std::vector<std::string>& columns) {
  return {{"name", name}, {"field", field}, {"columns", columns}, {"rows", Json::array()}};
}

std::vector<double> valuesOf(const Measure::Share& share, const Visibility::ViewShare* exact) {
  std::vector<double> values = {share.viewFactor, share.solidAngle, share.hemisphereShare()};
  if (exact != nullptr) values.insert(values.end(), {exact->viewFactor, exact->solidAngle});
  return values;
}

Json tableOf(const Measure::VisibleShares& shares, const Visibility::MapShares* exact,
             const Measure::ShareClasses& classes) {
  std::vector<std::string> columns = {"viewFactor", "solidAngle", "share"};
  if (exact != nullptr) columns.insert(columns.end(), {"exactFactor", "exactAngle"});
  Json result = table(Algorithm::tableNameOf(shares.projection()), "hemisphere", columns);
  const Visibility::ViewShare none;
  const SeenClasses seen(shares, classes);
  for (const Measure::ObjectShare& object : shares.objects()) {
    const auto at = static_cast<std::size_t>(object.objectNumber) - 1;
    const Visibility::ViewShare* share = exact == nullptr ? nullptr : &none;
    if (exact != nullptr && at < exact->objects().size()) share = &exact->objects()[at].share;
    result["rows"].push_back(row(object.objectNumber, object.id, valuesOf(object.share, share)));
    if (!classes.isEmpty())
      result["classes"].push_back(
          xmlText(seen.text(object.objectNumber, classes.ofObject(object.objectNumber))));
  }
  const Visibility::ViewShare* sky = exact == nullptr ? nullptr : &exact->sky();
  result["rows"].push_back(row(0, "", valuesOf(shares.open(), sky)));
  return result;
}

Json tableOf(const Visibility::VisibleMap& map, const Visibility::MapShares& shares,
             const std::string& name) {
  const bool isHemisphere = map.field == Visibility::Field::Hemisphere;
  std::vector<std::string> columns = {"solidAngle", "share"};
  if (isHemisphere) columns.insert(columns.begin(), "viewFactor");
  Json result = table(name, isHemisphere ? "hemisphere" : "sphere", columns);
  const auto add = [&](int number, const std::string& id, const Visibility::ViewShare& share) {
    std::vector<double> values = {share.solidAngle, share.solidAngle / map.fieldSolidAngle()};
    if (isHemisphere) values.insert(values.begin(), share.viewFactor);
    result["rows"].push_back(row(number, id, values));
  };
  const SeenClasses seen(map, shares);
  const bool hasClasses = map.names && !map.names->classNames.empty();
  for (std::size_t i = 0; i < shares.objects().size(); ++i) {
    const Visibility::MapShares::Row& object = shares.objects()[i];
    const bool hasId = map.names && i < map.names->objectIds.size();
    add(object.label.object, hasId ? map.names->objectIds[i] : "", object.share);
    if (hasClasses)
      result["classes"].push_back(
          xmlText(seen.text(object.label.object, SeenClasses::nameOf(map, object.classNumber))));
  }
  add(0, "", shares.sky());
  return result;
}

// Areas are those in the plane of the picture.
Json tableOf(const Visibility::ParallelMap& map, const std::string& name) {
  std::vector<double> areas(map.names->objectIds.size(), 0.0);
  double sum = 0.0;
  for (const Visibility::ParallelMap::Cell& cell : map.cells) {
    if (cell.label.object <= 0) continue;
    const auto at = static_cast<std::size_t>(cell.label.object) - 1;
    if (at >= areas.size()) areas.resize(at + 1, 0.0);
    areas[at] += cell.area;
    sum += cell.area;
  }
  Json result = table(name, "picture", {"area", "share"});
  const SeenClasses seen(map);
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    result["rows"].push_back(row(number,
                                 i < map.names->objectIds.size() ? map.names->objectIds[i] : "",
                                 {areas[i], sum > 0.0 ? areas[i] / sum : 0.0}));
    if (!map.names->classNames.empty()) result["classes"].push_back(xmlText(seen.text(number, "")));
  }
  return result;
}

int decimalsFor(int height) {
  int decimals = 2;
  for (double steps = height * 100.0; steps < LeastPlaces && decimals < 6; steps *= 10.0)
    ++decimals;
  return decimals;
}

// Directions in whole numbers, of which a unit has this many: finer than any zoom shows.
constexpr double PlacesOfUnit = 1e7;

// What the page draws a map of, in other projections: see map.js.
Json mapJson(const VectorPicture& picture, const Visibility::VisibleMap& map) {
  Json result = {{"projection", picture.mapPart()->projection},
                 {"isSphere", map.field == Visibility::Field::Sphere},
                 {"height", picture.height()},
                 {"decimals", decimalsFor(picture.height())},
                 {"vertices", Json::array()},
                 {"cells", Json::array()}};
  for (const Kernel::Vec3 direction : eyeDirections(map))
    for (const double value : {direction.x, direction.y, direction.z})
      result["vertices"].push_back(std::llround(value * PlacesOfUnit));
  for (std::size_t i = 0; i < map.cells.size(); ++i) {
    Json cell = {i + 1, rounded(map.cells[i].solidAngle)};
    for (const std::vector<int>& ring : map.rings(i)) cell.push_back(ring);
    result["cells"].push_back(std::move(cell));
  }
  const auto ends = [&map](const std::vector<std::vector<std::size_t>>& paths) {
    Json lines = Json::array();
    for (const std::vector<std::size_t>& edges : paths) {
      std::vector<int> vertices;
      for (const std::size_t edge : edges)
        vertices.insert(vertices.end(), {map.edges[edge].from, map.edges[edge].to});
      lines.push_back(vertices);
    }
    return lines;
  };
  result["underlay"] = ends(picture.mapPart()->underlayEdges);
  result["lines"] = ends(picture.mapPart()->lineEdges);
  if (const auto& opening = picture.mapPart()->opening)
    result["opening"] = {{"projection", opening->projection},
                         {"angle", rounded(opening->fieldOfView)},
                         {"aspect", rounded(opening->aspect)},
                         {"shift", {rounded(opening->shift[0]), rounded(opening->shift[1])}}};
  return result;
}

// Of an object, or of the sky.
struct Wrong {
  double all = 0.0;  // each place once
  double shownWrongly = 0.0;
  double missing = 0.0;
};

// Shares of what is covered. Objects that are right are left out; the sky is object 0, as in rows.
Json auditJson(const Measure::ShotAudit& audit) {
  double shaded = 0.0;
  std::map<int, Wrong> wrongs;
  for (const Measure::WrongPart& part : audit.wrongParts()) {
    if (isShaded(part)) shaded += part.area;
    Wrong& shown = wrongs[part.shown.object];
    shown.shownWrongly += part.area;
    shown.all += part.area;
    Wrong& seen = wrongs[part.seen.object];
    seen.missing += part.area;
    if (part.seen.object != part.shown.object) seen.all += part.area;
  }
  const auto share = [&audit](double area) { return rounded(area / audit.covered()); };
  Json objects = Json::array();
  for (const auto& [number, wrong] : wrongs)
    objects.push_back({number, share(wrong.all), share(wrong.shownWrongly), share(wrong.missing)});
  return {{"share", rounded(audit.wrongShare())},
          {"shaded", shaded > 0.0 ? share(shaded) : 0.0},
          {"objects", std::move(objects)}};
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
  std::string result;
  for (const std::string& part : parts) result += (result.empty() ? "" : separator) + part;
  return result;
}

// In front of all ids of a picture. \param number  of the picture, from 1
std::string idPrefix(std::size_t number) { return "p" + std::to_string(number) + "-"; }

// The template with what belongs in the place of each "{{name}}".
std::string filled(const std::string& text, const std::map<std::string, std::string>& values) {
  std::string result;
  size_t at = 0;
  for (size_t open = text.find("{{"); open != std::string::npos; open = text.find("{{", at)) {
    const size_t close = text.find("}}", open);
    result += text.substr(at, open - at) + values.at(text.substr(open + 2, close - open - 2));
    at = close + 2;
  }
  return result + text.substr(at);
}

}  // namespace

HtmlPage::HtmlPage(std::string title) : pageTitle(std::move(title)) {}

void HtmlPage::add(const VectorPicture& picture, const Measure::VisibleShares& shares,
                   const Visibility::MapShares* exact, const Measure::ShareClasses& classes) {
  addSvg(picture);
  tables.push_back(scriptJson(tableOf(shares, exact, classes)));
}

void HtmlPage::add(const VectorPicture& picture, const Measure::VisibleShares& shares,
                   const Visibility::MapShares* exact) {
  add(picture, shares, exact, Measure::ShareClasses());
}

void HtmlPage::add(const VectorPicture& picture, const Measure::VisibleShares& shares) {
  add(picture, shares, nullptr);
}

void HtmlPage::addAudit(const Measure::ShotAudit& audit, const VectorOptions& options) {
  if (pictures.empty()) throw std::logic_error("an audit is of a shot that the page has");
  if (!audit.hasWrongParts())
    throw std::invalid_argument("the audit has not kept where the shot is wrong");
  audits.resize(pictures.size(), "null");
  audits.back() = scriptJson(auditJson(audit));
  std::string& svg = pictures.back();
  svg.insert(svg.rfind("</svg>"),
             wrongShading(audit, options, idPrefix(pictures.size()), decimalsFor(options.height)));
}

void HtmlPage::add(const VectorPicture& picture, const Visibility::VisibleMap& map,
                   const Visibility::MapShares& shares) {
  add(picture, map, shares, "map");
}

void HtmlPage::add(const VectorPicture& picture, const Visibility::VisibleMap& map,
                   const Visibility::MapShares& shares, const std::string& name) {
  addSvg(picture);
  Json table = tableOf(map, shares, xmlText(name));
  if (picture.mapPart()) table["map"] = mapJson(picture, map);
  tables.push_back(scriptJson(table));
}

void HtmlPage::add(const VectorPicture& picture, const Visibility::ParallelMap& map,
                   const std::string& name) {
  addSvg(picture);
  tables.push_back(scriptJson(tableOf(map, xmlText(name))));
}

void HtmlPage::addSvg(const VectorPicture& picture) {
  SvgWriter::Options options;
  options.titles = false;
  options.declaration = false;
  options.idPrefix = idPrefix(pictures.size() + 1);
  options.decimals = decimalsFor(picture.height());
  pictures.push_back(SvgWriter::write(picture, options));
}

std::string HtmlPage::text() const {
  std::string data = "{\"pictures\":[" + joined(tables, ",") + "]";
  if (!audits.empty()) data += ",\"audits\":[" + joined(audits, ",") + "]";
  return filled(PageSource::Html, {{"title", htmlText(pageTitle)},
                                   {"style", PageSource::Style},
                                   {"map", PageSource::Map},
                                   {"script", PageSource::Script},
                                   {"pictures", joined(pictures, "")},
                                   {"data", data + "}"}});
}

}  // namespace Lumivane::Pictures
