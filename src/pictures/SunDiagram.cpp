// The picture of a map with lines and names over it. They are put into the document that the SVG
// writer makes, since vector pictures have no text.
#include "kernel/Planar.h"
#include "kernel/Projection.h"
#include "pictures/PictureFrame.h"
#include "pictures/ProjectionRules.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/SunDiagram.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/visibility/VisibleMap.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Lumivane::Pictures {
namespace {

using Kernel::Vec3;
using Measure::SunPath;
using Point = VectorPicture::Point;
using Line = VectorPicture::Line;

constexpr double Extent = 1.14;        // room for the names around the sky
constexpr double StepSeconds = 300.0;  // of a path: chords are off by less than 0.1 pixel
constexpr double HourSeconds = 3600.0;

// The days drawn, the names beside them.
struct NamedDay {
  int month;
  int day;
  const char* name;
};
constexpr NamedDay Days[] = {{12, 21, "21 Dec"},        {1, 21, "21 Jan, 21 Nov"},
                             {2, 20, "20 Feb, 23 Oct"}, {3, 20, "20 Mar, 22 Sep"},
                             {4, 20, "20 Apr, 23 Aug"}, {5, 21, "21 May, 23 Jul"},
                             {6, 21, "21 Jun"}};

void check(const Visibility::VisibleMap& map, const SunDiagramOptions& options) {
  checkPictureSize(options.width, options.height, Extent);
  if (options.projection == MapProjection::Equirectangular)
    throw std::invalid_argument("a sun-path diagram is a fisheye picture");
  if (map.field != Visibility::Field::Hemisphere ||
      map.forward != Visibility::Vector{0.0, 0.0, 1.0})
    throw std::invalid_argument("the map is not of the hemisphere above the eye");
  if (options.year < 1900 || options.year > 2100)
    throw std::invalid_argument("the year is not from 1900 to 2100");
}

MapPictureOptions pictureOptions(const SunDiagramOptions& options) {
  MapPictureOptions result;
  result.projection = options.projection;
  result.width = options.width;
  result.height = options.height;
  result.extent = Extent;
  result.title = options.title;
  return result;
}

class Overlay {
 public:
  Overlay(const Visibility::VisibleMap& map, const SunPath& thePath,
          const SunDiagramOptions& theOptions)
      : options(theOptions),
        path(thePath),
        rule(ruleOf(options.projection)),
        frame(options.width, options.height, Extent, rule.halfSize(false)),
        numbers(SvgNumbers::forHeight(options.height)),
        up{map.up[0], map.up[1], map.up[2]},
        right(Kernel::cross({0.0, 0.0, 1.0}, up)),
        unit(std::min(options.width, options.height) / 800.0) {}

  std::string text() {
    result =
        " <g id=\"sun\" fill=\"none\" stroke-linejoin=\"round\" stroke-linecap=\"round\" "
        "pointer-events=\"none\">\n";
    addRim();
    addHours();
    addDays();
    if (options.day) addSpans(*options.day);
    addNames();
    return result + " </g>\n";
  }

 private:
  Point pointOf(Vec3 direction) const {
    const Vec3 seen = {Kernel::dot(direction, right), Kernel::dot(direction, up),
                       std::max(direction.z, 0.0)};
    return frame.at(rule.place(seen));
  }
  Vec3 sunAt(double moment) const {
    const Visibility::Vector d = path.direction(moment);
    return {d[0], d[1], d[2]};
  }

  // Lines of the sun where it is up, from moment to moment.
  std::vector<Line> linesOf(const std::vector<double>& moments) const {
    std::vector<Line> lines;
    bool wasUp = false;
    for (size_t i = 0; i < moments.size(); ++i) {
      const bool isUp = sunAt(moments[i]).z > 0.0;
      if (isUp && !wasUp) {
        lines.emplace_back();
        if (i > 0) lines.back().push_back(pointOf(horizonBetween(moments[i], moments[i - 1])));
      }
      if (isUp) lines.back().push_back(pointOf(sunAt(moments[i])));
      if (!isUp && wasUp)
        lines.back().push_back(pointOf(horizonBetween(moments[i - 1], moments[i])));
      wasUp = isUp;
    }
    return lines;
  }

  // Where the sun is on the horizon, between a moment when it is up and one when it is not. Between
  // the same hours of two days the direction itself is parted.
  Vec3 horizonBetween(double whenUp, double whenDown) const {
    const Vec3 a = sunAt(whenUp);
    const Vec3 b = sunAt(whenDown);
    return a + (a.z / (a.z - b.z)) * (b - a);
  }

  std::string data(const std::vector<Line>& lines) const {
    VectorPicture::Path drawn;
    drawn.lines = lines;
    return numbers.data(drawn);
  }

  // White below, so that lines show on every ground.
  void stroke(const std::string& data, const char* color, double width, const char* more = "") {
    if (data.empty()) return;
    result += "  <path d=\"" + data + "\" stroke=\"#fff\" stroke-opacity=\"0.6\" stroke-width=\"" +
              numbers.text((width + 1.6) * unit) + "\"/>\n";
    result += "  <path d=\"" + data + "\" stroke=\"" + color + "\" stroke-width=\"" +
              numbers.text(width * unit) + "\"" + more + "/>\n";
  }

  void name(Point at, const std::string& text, double size, const char* color, double dx = 0.0,
            double dy = 0.0) {
    const std::string place = " x=\"" + numbers.text(at.x + dx * unit) + "\" y=\"" +
                              numbers.text(at.y + (dy + 0.35 * size) * unit) +
                              "\" font-family=\"sans-serif\" font-size=\"" +
                              numbers.text(size * unit) + "\" text-anchor=\"middle\"";
    result += "  <text" + place + " stroke=\"#fff\" stroke-width=\"" + numbers.text(3.0 * unit) +
              "\" stroke-opacity=\"0.8\">" + text + "</text>\n";
    result += "  <text" + place + " fill=\"" + color + "\">" + text + "</text>\n";
  }

  // The horizon and the circles of latitude of each 30 degrees.
  void addRim() {
    for (const double elevation : {0.0, 30.0, 60.0}) {
      const double angle = elevation * Kernel::Pi / 180.0;
      const Point middle = frame.at({0.0, 0.0});
      const Point at = pointOf(std::cos(angle) * right + Vec3{0.0, 0.0, std::sin(angle)});
      result += "  <circle cx=\"" + numbers.text(middle.x) + "\" cy=\"" + numbers.text(middle.y) +
                "\" r=\"" + numbers.text(at.x - middle.x) + "\" stroke=\"#444\" stroke-width=\"" +
                numbers.text((elevation == 0.0 ? 1.0 : 0.5) * unit) + "\"/>\n";
    }
  }

  // The clocks' offset without daylight saving time.
  int standardOffset() const {
    const Measure::TimeZone& zone = path.place().zone;
    return std::min(zone.offsetAt(zone.momentOf({options.year, 1, 1})),
                    zone.offsetAt(zone.momentOf({options.year, 7, 1})));
  }

  double momentOf(const Measure::CivilDate& date, double hour) const {
    return static_cast<double>(Measure::dayNumber(date)) * 24.0 * HourSeconds + hour * HourSeconds -
           standardOffset();
  }

  void addHours() {
    for (int hour = 0; hour < 24; ++hour) {
      std::vector<double> moments;
      for (int day = 0; day <= 366; day += 3)
        moments.push_back(momentOf({options.year, 1, 1}, 24.0 * std::min(day, 364) + hour));
      stroke(data(linesOf(moments)), "#555", 0.7);
    }
    // A name where the sun is highest in the year.
    const int longest = path.place().latitude >= 0.0 ? 6 : 12;
    for (int hour = 0; hour < 24; ++hour) {
      const Vec3 sun = sunAt(momentOf({options.year, longest, 21}, hour));
      if (sun.z > 0.02) hourNames.emplace_back(pointOf(sun), std::to_string(hour));
    }
  }

  void addDays() {
    for (const NamedDay& day : Days) {
      std::vector<double> moments;
      const double start = momentOf({options.year, day.month, day.day}, 0.0);
      for (double after = 0.0; after <= 24.0 * HourSeconds; after += StepSeconds)
        moments.push_back(start + after);
      const std::vector<Line> lines = linesOf(moments);
      const bool isTurn = day.month % 3 == 0;
      stroke(data(lines), isTurn ? "#b00020" : "#a05000", isTurn ? 1.4 : 0.8);
      // At noon, where arcs are farthest apart.
      const double noon = start + 12.0 * HourSeconds - noonShift();
      const Vec3 sun = sunAt(noon);
      if (sun.z > 0.0) dayNames.emplace_back(pointOf(sun), day.name);
    }
  }

  // Seconds that the mean sun's noon is before that of the clocks.
  double noonShift() const {
    return path.place().longitude * 240.0 - static_cast<double>(standardOffset());
  }

  void addSpans(const Measure::SunDay& day) {
    for (const Measure::SunSpan& span : day.spans) {
      std::vector<Line> lines(1);
      const double count = std::max(1.0, std::ceil(span.seconds() / StepSeconds));
      for (double i = 0.0; i <= count; i += 1.0)
        lines[0].push_back(pointOf(sunAt(span.start + span.seconds() * (i / count))));
      if (span.isLit())
        stroke(data(lines), "#ff9800", 4.0);
      else
        stroke(data(lines), "#333", 2.0, " stroke-dasharray=\"1 5\"");
    }
  }

  // The right of a picture that looks up with north above is in the west.
  void addNames() {
    const std::pair<const char*, Vec3> sides[] = {
        {"N", up}, {"S", -up}, {"W", right}, {"E", -right}};
    const Point middle = frame.at({0.0, 0.0});
    for (const auto& [side, direction] : sides) {
      const Point rim = pointOf(direction);
      const Point at = {middle.x + 1.06 * (rim.x - middle.x), middle.y + 1.06 * (rim.y - middle.y)};
      name(at, side, 18.0, "#222");
    }
    for (const auto& [at, text] : hourNames) name(at, text, 11.0, "#333", 0.0, -8.0);
    for (const auto& [at, text] : dayNames) name(at, text, 9.0, "#7a0015", 0.0, 7.0);
  }

  const SunDiagramOptions& options;
  const SunPath& path;
  const Kernel::Projection& rule;
  PictureFrame frame;
  SvgNumbers numbers;
  Vec3 up;
  Vec3 right;
  double unit;
  std::string result;
  std::vector<std::pair<Point, std::string>> hourNames;
  std::vector<std::pair<Point, std::string>> dayNames;
};

}  // namespace

std::string sunDiagram(const Visibility::VisibleMap& upwards, const MapColors& colors,
                       const Measure::Place& place, const SunDiagramOptions& options) {
  check(upwards, options);
  const SunPath path(place, {options.year, 1, 1}, {options.year, 12, 31});
  SvgWriter::Options how;
  how.declaration = options.declaration;
  std::string document =
      SvgWriter::write(VectorPicture(upwards, colors, pictureOptions(options)), how);
  document.insert(document.rfind("</svg>"), Overlay(upwards, path, options).text());
  return document;
}

}  // namespace Lumivane::Pictures
