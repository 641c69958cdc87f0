#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "measure/SkyCells.h"

#include <lumivane/measure/HorizonLine.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

using Kernel::Vec3;

constexpr double Degree = Kernel::Pi / 180.0;

// Millionths of a degree, without zeros at the end.
std::string text(double degrees) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.6f", degrees);
  std::string result = buffer;
  std::replace(result.begin(), result.end(), ',', '.');  // some locales have a comma
  result.erase(result.find_last_not_of('0') + 1);
  if (result.back() == '.') result.pop_back();
  return result == "-0" ? "0" : result;
}

}  // namespace

HorizonLine::HorizonLine(const Visibility::VisibleMap& upwards, const Visibility::Vector& north,
                         int count) {
  const double length = std::hypot(north[0], north[1]);
  if (!(length > 0.0) || !std::isfinite(length))
    throw std::invalid_argument("the direction to the north has no level part");
  if (count < 1 || count > 360000)
    throw std::invalid_argument("a horizon has 1 to 360000 azimuths");
  const SkyCells cells(upwards);
  const Vec3 ahead = {north[0] / length, north[1] / length, 0.0};
  const Vec3 east = {ahead.y, -ahead.x, 0.0};
  for (int i = 0; i < count; ++i) {
    const double azimuth = 2.0 * Kernel::Pi * i / count;
    const Vec3 level = Kernel::cosine(azimuth) * ahead + Kernel::sine(azimuth) * east;
    const double slope = cells.highestBlocked(level);
    heights.push_back(std::isfinite(slope) ? Kernel::arcTangent(slope, 1.0) / Degree : 90.0);
  }
}

std::string HorizonLine::listText() const {
  std::string result;
  for (const double height : heights) result += text(height) + "\n";
  return result;
}

std::string HorizonLine::horText(bool isSouthern) const {
  std::string result = "# Horizon line: azimuth and elevation in degrees, azimuth 0 in the ";
  result += isSouthern ? "north" : "south";
  result += ", west positive\n";
  std::vector<std::pair<double, double>> lines;
  const auto count = static_cast<double>(heights.size());
  for (size_t i = 0; i < heights.size(); ++i) {
    const double fromNorth = 360.0 * static_cast<double>(i) / count;
    // Clockwise is eastwards from north and westwards from south.
    double azimuth = isSouthern ? -fromNorth : fromNorth - 180.0;
    if (azimuth < -180.0) azimuth += 360.0;
    lines.emplace_back(azimuth, heights[i]);
  }
  std::sort(lines.begin(), lines.end());
  for (const auto& [azimuth, height] : lines) result += text(azimuth) + " " + text(height) + "\n";
  return result;
}

}  // namespace Lumivane::Measure
