// Of a uniform sky the light on a plane is the sum over the arcs of the sky's borders (J. H.
// Lambert, Photometria, 1760), cut by the plane. Of other skies it is an integral by azimuth over
// the borders, as in SkyPatches.cpp, of what lies above them at that azimuth, both by adaptive
// Gauss-Kronrod rules.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "measure/SkyBorders.h"
#include "visibility/SphereMeasure.h"

#include <lumivane/measure/SkyLight.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

using Kernel::arcTangent;
using Kernel::dot;
using Kernel::Pi;
using Kernel::Vec3;

// ISO 15469:2004, table 1: gradation a, b; indicatrix c, d, e.
struct CieType {
  double a, b, c, d, e;
};
constexpr std::array<CieType, 15> CieTypes = {{{4.0, -0.70, 0.0, -1.0, 0.00},
                                               {4.0, -0.70, 2.0, -1.5, 0.15},
                                               {1.1, -0.80, 0.0, -1.0, 0.00},
                                               {1.1, -0.80, 2.0, -1.5, 0.15},
                                               {0.0, -1.00, 0.0, -1.0, 0.00},
                                               {0.0, -1.00, 2.0, -1.5, 0.15},
                                               {0.0, -1.00, 5.0, -2.5, 0.30},
                                               {0.0, -1.00, 10.0, -3.0, 0.45},
                                               {-1.0, -0.55, 2.0, -1.5, 0.15},
                                               {-1.0, -0.55, 5.0, -2.5, 0.30},
                                               {-1.0, -0.55, 10.0, -3.0, 0.45},
                                               {-1.0, -0.32, 10.0, -3.0, 0.45},
                                               {-1.0, -0.32, 16.0, -3.0, 0.30},
                                               {-1.0, -0.15, 16.0, -3.0, 0.30},
                                               {-1.0, -0.15, 24.0, -2.8, 0.15}}};

constexpr int Overcast = 16;  // the traditional overcast sky
constexpr const char* NoType = "skies are of the types 0 to 16";

Vec3 unitVector(const Visibility::Vector& v, const char* what) {
  const Vec3 vector = {v[0], v[1], v[2]};
  const double length = Kernel::length3(vector);
  if (!(length > 0.0) || !std::isfinite(length)) throw std::invalid_argument(what);
  return (1.0 / length) * vector;
}

// The part of a uniform sky's borders in front of a plane. The plane closes what it cuts: between
// the places where borders enter and leave its front it runs through the sky, and adds its own arc.
class UniformSky {
 public:
  explicit UniformSky(Vec3 theNormal) : normal(theNormal) {
    const Vec3 down = Vec3{0.0, 0.0, -1.0} + normal.z * normal;
    const double length = Kernel::length3(down);
    isLevel = length < 1e-9;
    if (isLevel) return;
    lowest = (1.0 / length) * down;  // of the plane's circle: no sky is there
    ahead = Kernel::cross(lowest, normal);
  }

  void add(const SkyBorder& border) {
    const double from = dot(normal, border.from);
    const double to = dot(normal, border.to);
    if (isLevel || (from >= 0.0 && to >= 0.0)) {
      sum += Visibility::arcViewFactor(border.from, border.to, normal);
      return;
    }
    if (from < 0.0 && to < 0.0) return;
    const Vec3 between = std::abs(to) * border.from + std::abs(from) * border.to;
    const Vec3 at = (1.0 / Kernel::length3(between)) * between;
    const double turns = arcTangent(dot(at, ahead), dot(at, lowest)) / (2.0 * Pi);
    const double along = turns < 0.0 ? turns + 1.0 : turns;
    if (from < 0.0) {
      sum += Visibility::arcViewFactor(at, border.to, normal) + along;
    } else {
      sum += Visibility::arcViewFactor(border.from, at, normal) - along;
    }
  }

  double viewFactor() const { return isLevel && normal.z < 0.0 ? 0.0 : std::max(0.0, sum); }

 private:
  Vec3 normal;
  bool isLevel = false;
  Vec3 lowest;
  Vec3 ahead;
  double sum = 0.0;
};

// The rule of 15 points and its part of 7: A. S. Kronrod (1964), as tabulated in R. Piessens et
// al., QUADPACK (1983).
struct Estimate {
  double value;
  double error;
};
template <class Function>
Estimate kronrod(const Function& f, double from, double to) {
  constexpr double Points[8] = {
      0.991455371120812639206854697526329, 0.949107912342758524526189684047851,
      0.864864423359769072789712788640926, 0.741531185599394439863864773280788,
      0.586087235467691130294144691693013, 0.405845151377397166906606412076961,
      0.207784955007898467600689403773245, 0.0};
  constexpr double Weights[8] = {
      0.022935322010529224963732008058970, 0.063092092629978553290700663189204,
      0.104790010322250183839876322541518, 0.140653259715525918745189590510238,
      0.169004726639267902826583426598550, 0.190350578064785409913256402421014,
      0.204432940075298892414161999234649, 0.209482141084727828012999174891714};
  constexpr double GaussWeights[4] = {
      0.129484966168869693270611432679082, 0.279705391489276667901467771423780,
      0.381830050505118944950369775488975, 0.417959183673469387755102040816327};
  const double middle = 0.5 * (from + to);
  const double half = 0.5 * (to - from);
  double sum = 0.0;
  double gauss = 0.0;
  for (int i = 0; i < 8; ++i) {
    const double away = half * Points[i];
    const double value = i == 7 ? f(middle) : f(middle - away) + f(middle + away);
    sum += Weights[i] * value;
    if (i % 2 == 1) gauss += GaussWeights[i / 2] * value;
  }
  return {half * sum, std::abs(half * (sum - gauss))};
}

template <class Function>
double integral(const Function& f, double from, double to, double tolerance, int depth = 0) {
  const Estimate estimate = kronrod(f, from, to);
  constexpr int Deepest = 24;
  if (estimate.error <= tolerance || depth >= Deepest) return estimate.value;
  const double middle = 0.5 * (from + to);
  return integral(f, from, middle, 0.5 * tolerance, depth + 1) +
         integral(f, middle, to, 0.5 * tolerance, depth + 1);
}

// A sky that is not equally bright, and the plane that gets its light.
class CieSky {
 public:
  CieSky(const SkyType& theType, Vec3 theSun, Vec3 theNormal)
      : type(theType),
        sun(theSun),
        normal(theNormal),
        sunAzimuth(arcTangent(sun.y, sun.x)),
        sunAcross(std::hypot(sun.x, sun.y)),
        normalAzimuth(arcTangent(normal.y, normal.x)),
        normalAcross(std::hypot(normal.x, normal.y)) {}

  // Over the azimuths of a border; counterclockwise from x.
  double along(const SkyBorder& border) const {
    const Vec3 circle = Kernel::cross(border.from, border.to);
    if (!(std::abs(circle.z) > 1e-15 * Kernel::length3(circle))) return 0.0;
    const double from = arcTangent(border.from.y, border.from.x);
    const double to = from + std::remainder(arcTangent(border.to.y, border.to.x) - from, 2.0 * Pi);
    const auto value = [&](double azimuth) {
      const double rise = -(circle.x * Kernel::cosine(azimuth) + circle.y * Kernel::sine(azimuth));
      return above(azimuth, arcTangent(rise / circle.z, 1.0));
    };
    // Azimuths run counterclockwise, that is to the left: the sky on the left is below.
    return -over(value, from, to);
  }

  // Of the whole sky.
  double whole() const {
    return over([&](double azimuth) { return above(azimuth, 0.0); }, -Pi, Pi);
  }

 private:
  static constexpr double Tolerance = 1e-9;

  // Cut where the plane turns its back, and at the azimuth of the sun, where the brightness has an
  // edge.
  template <class Function>
  double over(const Function& value, double from, double to) const {
    const double low = std::min(from, to);
    const double high = std::max(from, to);
    double cuts[16];
    int count = 0;
    cuts[count++] = low;
    for (const double base : {sunAzimuth, normalAzimuth + 0.5 * Pi, normalAzimuth - 0.5 * Pi})
      for (const double turn : {-2.0 * Pi, 0.0, 2.0 * Pi})
        if (base + turn > low && base + turn < high) cuts[count++] = base + turn;
    cuts[count++] = high;
    std::sort(cuts, cuts + count);
    double sum = 0.0;
    for (int i = 1; i < count; ++i)
      if (cuts[i] > cuts[i - 1])
        sum += integral(value, cuts[i - 1], cuts[i], Tolerance * (cuts[i] - cuts[i - 1]));
    return from <= to ? sum : -sum;
  }

  // The light from an elevation up to the zenith at one azimuth.
  double above(double azimuth, double elevation) const {
    const double toSun = Kernel::cosine(azimuth - sunAzimuth);
    const double toNormal = Kernel::cosine(azimuth - normalAzimuth);
    const auto light = [&](double at) {
      const double c = Kernel::cosine(at);
      const double s = Kernel::sine(at);
      const double incidence = normalAcross * toNormal * c + normal.z * s;
      if (incidence <= 0.0) return 0.0;
      const double cosine = std::clamp(sunAcross * toSun * c + sun.z * s, -1.0, 1.0);
      const double fromSun = arcTangent(std::sqrt((1.0 - cosine) * (1.0 + cosine)), cosine);
      return type.luminance(at, fromSun) * incidence * c;
    };
    // Cut where it is nearest to the sun, and where the plane turns its back.
    const auto between = [&](double at) {
      return at > elevation && at < 0.5 * Pi ? at : elevation;
    };
    const double nearest = between(arcTangent(sun.z, sunAcross * toSun));
    const double grazing = between(arcTangent(-normalAcross * toNormal / normal.z, 1.0));
    double from = elevation;
    double sum = 0.0;
    for (const double to : {std::min(nearest, grazing), std::max(nearest, grazing), 0.5 * Pi}) {
      if (to > from) sum += integral(light, from, to, Tolerance);
      from = to;
    }
    return sum;
  }

  SkyType type;
  Vec3 sun;
  Vec3 normal;
  double sunAzimuth;
  double sunAcross;
  double normalAzimuth;
  double normalAcross;
};

}  // namespace

bool SkyType::needsSun() const {
  return number >= 1 && number <= 15 && CieTypes[static_cast<size_t>(number) - 1].c != 0.0;
}

double SkyType::luminance(double elevation, double fromSun) const {
  if (number == 0) return 1.0;
  if (number < 1 || number > Overcast) throw std::invalid_argument(NoType);
  const double height = Kernel::sine(elevation);
  if (number == Overcast) return 1.0 + 2.0 * height;
  const CieType& t = CieTypes[static_cast<size_t>(number) - 1];
  const double gradation = height > 0.0 ? 1.0 + t.a * std::exp(t.b / height) : 1.0;
  const double c = Kernel::cosine(fromSun);
  const double indicatrix =
      1.0 + t.c * (std::exp(t.d * fromSun) - std::exp(0.5 * Pi * t.d)) + t.e * c * c;
  return gradation * indicatrix;
}

double skyComponent(const Visibility::VisibleMap& upwards, const SkyType& type,
                    const Visibility::Vector& normal, const Visibility::Vector& sun) {
  const SkyCells cells(upwards);
  const Vec3 plane = unitVector(normal, "the normal of the plane has no length");
  if (type.number < 0 || type.number > Overcast) throw std::invalid_argument(NoType);
  if (type.number == 0 || type.number == 5) {
    UniformSky sky(plane);
    for (const SkyBorder& border : skyBorders(cells)) sky.add(border);
    return sky.viewFactor();
  }
  Vec3 toSun = {0.0, 0.0, 1.0};
  if (type.needsSun()) {
    toSun = unitVector(sun, "the direction to the sun has no length");
    if (!(toSun.z > 0.0)) throw std::invalid_argument("the sun is not above the horizon");
  }
  const CieSky sky(type, toSun, plane);
  double sum = 0.0;
  for (const SkyBorder& border : skyBorders(cells)) sum += sky.along(border);
  return std::max(0.0, sum / CieSky(type, toSun, {0.0, 0.0, 1.0}).whole());
}

}  // namespace Lumivane::Measure
