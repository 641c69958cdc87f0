// Wrong parts are hatched, over a tint: lines of two colours are seen on any ground, the picture is
// still seen between them, and the tint shows parts that are smaller than the hatch is wide.

#include "pictures/WrongShading.h"

#include "pictures/PictureFrame.h"
#include "pictures/SvgText.h"

#include <lumivane/measure/ShotAudit.h>
#include <lumivane/pictures/VectorOptions.h>
#include <lumivane/pictures/VectorPicture.h>

#include <cmath>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace Lumivane::Pictures {
namespace {

using Measure::WrongPart;
using Line = VectorPicture::Line;

// In halves of the picture: 0.04 pixels of a picture that is 800 high, and three times what chords
// of the usual length leave of an arc.
constexpr double LeastWidth = 1e-4;
constexpr double LargestStep = 0.05;  // pixels that a line may be off where points are left out

double lengthOf(const std::vector<WrongPart::Point>& outline) {
  double length = 0.0;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const WrongPart::Point& a = outline[i];
    const WrongPart::Point& b = outline[(i + 1) % outline.size()];
    length += std::hypot(b.x - a.x, b.y - a.y);
  }
  return length;
}

// How far a point is from the line through two others, or from the first if they are one.
double offLine(VectorPicture::Point p, VectorPicture::Point a, VectorPicture::Point b) {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  if (!(length > 0.0)) return std::hypot(p.x - a.x, p.y - a.y);
  return std::abs((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / length;
}

// Arcs come in far shorter pieces than are seen: points that a straight line passes by are left
// out.
Line lineOf(const std::vector<WrongPart::Point>& outline, const PictureFrame& frame) {
  Line line;
  std::vector<VectorPicture::Point> leftOut;
  for (const WrongPart::Point& point : outline) {
    const VectorPicture::Point p = frame.at({point.x, point.y});
    const auto isOff = [&](VectorPicture::Point q) {
      const VectorPicture::Point& a = line.back();
      const bool isBehind = (q.x - a.x) * (p.x - a.x) + (q.y - a.y) * (p.y - a.y) < 0.0 ||
                            (q.x - p.x) * (a.x - p.x) + (q.y - p.y) * (a.y - p.y) < 0.0;
      return isBehind || offLine(q, a, p) > LargestStep;
    };
    bool isNeeded = leftOut.size() > 50;
    for (std::size_t i = 0; i < leftOut.size() && !isNeeded; ++i) isNeeded = isOff(leftOut[i]);
    if (isNeeded) {
      line.push_back(leftOut.back());
      leftOut.clear();
    }
    if (line.empty())
      line.push_back(p);
    else
      leftOut.push_back(p);
  }
  if (!leftOut.empty()) line.push_back(leftOut.back());
  return line;
}

// Twice as fine as the tint alone would need: see the page's legend, which has the same.
std::string hatch(const std::string& id) {
  return "<pattern id=\"" + id +
         "\" class=\"hatch\" patternUnits=\"userSpaceOnUse\" width=\"8\" height=\"8\" "
         "patternTransform=\"rotate(45)\">"
         "<path d=\"M0 0H8V8H0z\" fill=\"#d6003c\" fill-opacity=\".22\"/>"
         "<path d=\"M0 0H4V8H0z\" fill=\"#fff\" fill-opacity=\".7\"/>"
         "<path d=\"M1 0H3V8H1z\" fill=\"#d6003c\"/></pattern>";
}

}  // namespace

bool isShaded(const WrongPart& part) {
  double length = 0.0;
  for (const std::vector<WrongPart::Point>& outline : part.outlines) length += lengthOf(outline);
  return 2.0 * part.area > LeastWidth * length;
}

std::string wrongShading(const Measure::ShotAudit& audit, const VectorOptions& options,
                         const std::string& idPrefix, int decimals) {
  const PictureFrame frame(options);
  std::map<std::pair<int, int>, VectorPicture::Path> paths;
  for (const WrongPart& part : audit.wrongParts()) {
    if (!isShaded(part)) continue;
    VectorPicture::Path& path = paths[{part.shown.object, part.seen.object}];
    path.closed = true;
    for (const std::vector<WrongPart::Point>& outline : part.outlines)
      path.lines.push_back(lineOf(outline, frame));
  }
  if (paths.empty()) return "";
  const SvgNumbers numbers(decimals);
  std::string text = " <g id=\"" + idPrefix + "wrong\" class=\"wrong\" fill=\"url(#" + idPrefix +
                     "hatch)\">\n  " + hatch(idPrefix + "hatch") + "\n";
  for (const auto& [objects, path] : paths)
    text += "  <path data-shown=\"" + std::to_string(objects.first) + "\" data-seen=\"" +
            std::to_string(objects.second) + "\" d=\"" + numbers.data(path) + "\"/>\n";
  return text + " </g>\n";
}

}  // namespace Lumivane::Pictures
