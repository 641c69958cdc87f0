#include "exchange/PageSource.h"
#include "exchange/SvgText.h"
#include "kernel/DisplayText.h"

#include <lumivane/exchange/HtmlPage.h>
#include <lumivane/exchange/SvgWriter.h>
#include <lumivane/exchange/VectorPicture.h>
#include <lumivane/measure/VisibleShares.h>

#include <cmath>
#include <map>
#include <utility>

#include <nlohmann/json.hpp>

namespace Lumivane::Exchange {
namespace {

using Json = nlohmann::json;

constexpr double LeastPlaces = 40000.0;  // on the height of a picture

std::string htmlText(const std::string& bytes) {
  std::string result;
  for (const char c : xmlText(bytes)) {
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else
      result += c;
  }
  return result;
}

// Nine digits tell more than any drawing shows, and make for shorter numbers than all of them.
double rounded(double value) {
  if (value == 0.0 || !std::isfinite(value)) return 0.0;
  const double step = std::pow(10.0, 8.0 - std::floor(std::log10(std::abs(value))));
  return std::isfinite(step) ? std::round(value * step) / step : value;
}

Json row(int number, const std::string& id, const Measure::Share& share) {
  return {number, xmlText(Kernel::idText(id)), rounded(share.viewFactor), rounded(share.solidAngle),
          rounded(share.hemisphereShare())};
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

std::string tableOf(const Measure::VisibleShares& shares) {
  Json rows = Json::array();
  for (const Measure::ObjectShare& object : shares.objects())
    rows.push_back(row(object.objectNumber, object.id, object.share));
  rows.push_back(row(0, "", shares.open()));
  const bool isRadial = shares.projection() == Algorithm::ProjectionType::Radial;
  return scriptJson({{"name", isRadial ? "radial" : "square"}, {"rows", rows}});
}

int decimalsFor(int height) {
  int decimals = 2;
  for (double steps = height * 100.0; steps < LeastPlaces && decimals < 6; steps *= 10.0)
    ++decimals;
  return decimals;
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
  std::string result;
  for (const std::string& part : parts) result += (result.empty() ? "" : separator) + part;
  return result;
}

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

void HtmlPage::add(const VectorPicture& picture, const Measure::VisibleShares& shares) {
  SvgWriter::Options options;
  options.titles = false;
  options.declaration = false;
  options.idPrefix = "p" + std::to_string(pictures.size() + 1) + "-";
  options.decimals = decimalsFor(picture.height());
  pictures.push_back(SvgWriter::write(picture, options));
  tables.push_back(tableOf(shares));
}

std::string HtmlPage::text() const {
  return filled(PageSource::Html, {{"title", htmlText(pageTitle)},
                                   {"style", PageSource::Style},
                                   {"script", PageSource::Script},
                                   {"pictures", joined(pictures, "")},
                                   {"data", "{\"pictures\":[" + joined(tables, ",") + "]}"}});
}

}  // namespace Lumivane::Exchange
