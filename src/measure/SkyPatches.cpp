// The sky in sight of a patch is an integral by azimuth over its borders (Green): at each azimuth
// the sky above a border counts what the patch has above the border's elevation, and where the sky
// is below a border, that is taken away again. It vanishes at the zenith, so that nothing has to be
// known of it. On an arc of a great circle tan(elevation) = T cos(azimuth - that of its top), and
// what is integrated, the sine of the elevation and its square, has antiderivatives.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "measure/SkyBorders.h"

#include <lumivane/measure/SkyLight.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

using Kernel::arcTangent;
using Kernel::Pi;
using Kernel::Vec3;

constexpr double Degree = Pi / 180.0;

// A ring of patches between two circles of latitude.
struct Row {
  double lowest;  // radians
  double highest;
  int count;
  size_t first;  // its first patch
};

std::vector<Row> rowsOf(int patches) {
  constexpr std::array<int, 7> Counts = {30, 30, 24, 24, 18, 12, 6};
  const int factor = patches == 145 ? 1 : patches == 577 ? 2 : patches == 2305 ? 4 : 0;
  if (factor == 0) throw std::invalid_argument("the sky is divided into 145, 577 or 2305 patches");
  // The cap is half a row high.
  const double height = 0.5 * Pi / (7.0 * factor + 0.5);
  std::vector<Row> rows;
  size_t first = 0;
  for (int i = 0; i < 7 * factor; ++i) {
    const int count = factor * Counts[static_cast<size_t>(i / factor)];
    rows.push_back({height * i, height * (i + 1), count, first});
    first += static_cast<size_t>(count);
  }
  rows.push_back({height * 7.0 * factor, 0.5 * Pi, 1, first});
  return rows;
}

// The circle of an arc in azimuths from north, clockwise.
class Arc {
 public:
  // False for an upright one, which has no azimuths to integrate over.
  bool set(Vec3 from, Vec3 to) {
    const Vec3 normal = Kernel::cross(from, to);
    if (!(std::abs(normal.z) > 1e-15 * Kernel::length3(normal))) return false;
    start = arcTangent(from.x, from.y);
    turn = std::remainder(arcTangent(to.x, to.y) - start, 2.0 * Pi);
    top = arcTangent(-normal.x / normal.z, -normal.y / normal.z);
    slope = std::hypot(normal.x, normal.y) / std::abs(normal.z);
    // By the nearest turn, so that angles from the top are within a right angle.
    start = top + std::remainder(start - top, 2.0 * Pi);
    stretch = std::sqrt(1.0 + slope * slope);
    return true;
  }
  double from() const { return start; }
  double to() const { return start + turn; }
  double tangentAt(double azimuth) const { return slope * Kernel::cosine(azimuth - top); }

  // Adds where it passes an elevation between two azimuths.
  void addPasses(double tangent, double low, double high, std::vector<double>& azimuths) const {
    if (!(tangent <= slope) || slope == 0.0) return;
    const double c = tangent / slope;
    const double away = arcTangent(std::sqrt((1.0 - c) * (1.0 + c)), c);
    for (const double at : {top - away, top + away})
      if (at > low && at < high) azimuths.push_back(at);
  }

  // Antiderivatives of the sine of the elevation and of its square.
  double sines(double azimuth) const {
    const double angle = azimuth - top;
    const double c = slope * Kernel::cosine(angle);
    return arcTangent(slope * Kernel::sine(angle), std::sqrt(1.0 + c * c));
  }
  double squares(double azimuth) const {
    const double angle = azimuth - top;
    return angle - arcTangent(Kernel::sine(angle), Kernel::cosine(angle) * stretch) / stretch;
  }

 private:
  double start = 0.0;
  double turn = 0.0;
  double top = 0.0;    // the azimuth of its highest point
  double slope = 0.0;  // the tangent of its elevation
  double stretch = 1.0;
};

class PatchSums {
 public:
  explicit PatchSums(int count) : rows(rowsOf(count)) {
    result.solidAngles.assign(static_cast<size_t>(count), 0.0);
    result.cosines.assign(static_cast<size_t>(count), 0.0);
    for (const Row& row : rows) {
      lowest.push_back({Kernel::sine(row.lowest), Kernel::tangent(row.lowest)});
      highest.push_back(row.count == 1
                            ? Level{1.0, std::numeric_limits<double>::infinity()}
                            : Level{Kernel::sine(row.highest), Kernel::tangent(row.highest)});
    }
  }

  void add(Vec3 from, Vec3 to) {
    if (!arc.set(from, to)) return;
    for (size_t i = 0; i < rows.size(); ++i) addInRow(i);
  }

  SkyPatchShares take() {
    for (std::vector<double>* values : {&result.solidAngles, &result.cosines})
      for (double& value : *values) value = std::max(value, 0.0);
    return std::move(result);
  }

 private:
  struct Level {
    double sine;
    double tangent;
  };

  // Cut by meridians and by the circles of the row.
  void addInRow(size_t i) {
    const Row& row = rows[i];
    const double low = std::min(arc.from(), arc.to());
    const double high = std::max(arc.from(), arc.to());
    const double sign = arc.to() >= arc.from() ? 1.0 : -1.0;
    const double width = 2.0 * Pi / row.count;
    cuts.assign(1, low);
    // The first patch lies around north, half on either side.
    for (double k = std::floor(low / width - 0.5); k <= high / width + 0.5; k += 1.0) {
      const double meridian = (k + 0.5) * width;
      if (row.count > 1 && meridian > low && meridian < high) cuts.push_back(meridian);
    }
    arc.addPasses(lowest[i].tangent, low, high, cuts);
    arc.addPasses(highest[i].tangent, low, high, cuts);
    cuts.push_back(high);
    std::sort(cuts.begin(), cuts.end());
    for (size_t k = 1; k < cuts.size(); ++k) addPiece(i, cuts[k - 1], cuts[k], sign);
  }

  void addPiece(size_t i, double from, double to, double sign) {
    const double middle = 0.5 * (from + to);
    const double tangent = arc.tangentAt(middle);
    const double sine = highest[i].sine;
    if (tangent >= highest[i].tangent) return;
    double plain = (to - from) * sine;
    double weighted = (to - from) * (sine * sine);
    if (tangent <= lowest[i].tangent) {
      plain -= (to - from) * lowest[i].sine;
      weighted -= (to - from) * (lowest[i].sine * lowest[i].sine);
    } else {
      plain -= arc.sines(to) - arc.sines(from);
      weighted -= arc.squares(to) - arc.squares(from);
    }
    const Row& row = rows[i];
    const double turns = middle / (2.0 * Pi) + 0.5 / row.count;
    const auto patch = static_cast<int>((turns - std::floor(turns)) * row.count);
    const size_t number = row.first + static_cast<size_t>(std::min(patch, row.count - 1));
    result.solidAngles[number] += sign * plain;
    result.cosines[number] += sign * 0.5 * weighted;
  }

  std::vector<Row> rows;
  std::vector<Level> lowest;
  std::vector<Level> highest;
  Arc arc;
  std::vector<double> cuts;
  SkyPatchShares result;
};

}  // namespace

std::vector<SkyPatch> skyPatches(int count) {
  std::vector<SkyPatch> result;
  for (const Row& row : rowsOf(count)) {
    const double low = Kernel::sine(row.lowest);
    const double high = row.count == 1 ? 1.0 : Kernel::sine(row.highest);
    const double width = 2.0 * Pi / row.count;
    for (int i = 0; i < row.count; ++i)
      result.push_back({row.lowest / Degree, row.highest / Degree, 360.0 * i / row.count,
                        360.0 / row.count, width * (high - low),
                        0.5 * width * (high - low) * (high + low)});
  }
  return result;
}

SkyPatchShares visibleSkyPatches(const Visibility::VisibleMap& upwards,
                                 const Visibility::Vector& north, int count) {
  const double length = std::hypot(north[0], north[1]);
  if (!(length > 0.0) || !std::isfinite(length))
    throw std::invalid_argument("the direction to the north has no level part");
  PatchSums sums(count);
  const Vec3 ahead = {north[0] / length, north[1] / length, 0.0};
  const Vec3 east = {ahead.y, -ahead.x, 0.0};
  // East, north, up.
  const auto turned = [&](Vec3 v) -> Vec3 {
    return {Kernel::dot(v, east), Kernel::dot(v, ahead), v.z};
  };
  const SkyCells cells(upwards);
  for (const SkyBorder& border : skyBorders(cells))
    sums.add(turned(border.from), turned(border.to));
  return sums.take();
}

}  // namespace Lumivane::Measure
