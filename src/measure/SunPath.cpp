// Positions of the sun every six hours by libnova, between which the path is interpolated: the
// apparent sun moves so evenly that four positions give it to 1e-9.
//
// What is interpolated is the hour angle at Greenwich less the turn of the mean sun, which is the
// equation of time and changes slowly; so are declination and distance.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "kernel/Vec.h"

#include <lumivane/measure/SunPath.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <stdexcept>
#include <vector>

#ifdef LUMIVANE_HAS_LIBNOVA
#include <libnova/libnova.h>
#endif

namespace Lumivane::Measure {
namespace {

using Kernel::arcTangent;
using Kernel::cosine;
using Kernel::Pi;
using Kernel::sine;
using Kernel::Vec3;

constexpr double Degree = Pi / 180.0;
constexpr double Arcsecond = Degree / 3600.0;
constexpr double DaySeconds = 86400.0;
constexpr double NodeSeconds = DaySeconds / 4.0;
constexpr double Parallax = 8.794143 * Arcsecond;  // of the sun at a distance of 1, level

#ifdef LUMIVANE_HAS_LIBNOVA

constexpr double UnixEpoch = 2440587.5;  // as a Julian day

// Seconds that dynamical time is ahead of universal time: from 1986 on the polynomials of F.
// Espenak and J. Meeus, Five Millennium Canon of Solar Eclipses (2006), since libnova's table ends
// in 1992.
double dynamicalAhead(double day) {
  const double year = 2000.0 + (day - 2451544.5) / 365.25;
  const double t = year - 2000.0;
  if (year < 1986.0) return ln_get_dynamical_time_diff(day);
  if (year < 2005.0)
    return 63.86 +
           t * (0.3345 + t * (-0.060374 + t * (0.0017275 + t * (0.000651814 + t * 0.00002373599))));
  if (year < 2050.0) return 62.92 + t * (0.32217 + t * 0.005589);
  const double century = (year - 1820.0) / 100.0;
  return -20.0 + 32.0 * century * century - 0.5628 * (2150.0 - year);
}

struct Spherical {
  double longitude;
  double latitude;
};

Vec3 vectorOf(Spherical p) {
  return {cosine(p.latitude) * cosine(p.longitude), cosine(p.latitude) * sine(p.longitude),
          sine(p.latitude)};
}

Spherical sphericalOf(Vec3 v) {
  return {arcTangent(v.y, v.x), arcTangent(v.z, std::hypot(v.x, v.y))};
}

// From the ecliptic to the equator.
Vec3 tilted(Vec3 v, double obliquity) {
  const double c = cosine(obliquity);
  const double s = sine(obliquity);
  return {v.x, c * v.y - s * v.z, s * v.y + c * v.z};
}

// The apparent sun on the true equator of date, and the nutation with which it was found.
Spherical apparentSun(double dynamicalDay, double& distance, ln_nutation& nutation) {
  // libnova's longitudes are counted from the equinox of 2000, although its own functions of the
  // sun take them as of date: precession is added here.
  ln_helio_posn earth{};
  ln_get_earth_helio_coords(dynamicalDay, &earth);
  distance = earth.R;
  constexpr double Aberration = 20.49552 * Arcsecond;
  constexpr double Obliquity2000 = 23.4392911111 * Degree;
  const Spherical ecliptic = {earth.L * Degree + Pi - Aberration / earth.R, -earth.B * Degree};
  const Spherical mean2000 = sphericalOf(tilted(vectorOf(ecliptic), Obliquity2000));
  ln_equ_posn before{mean2000.longitude / Degree, mean2000.latitude / Degree};
  ln_equ_posn mean{};
  ln_get_equ_prec(&before, dynamicalDay, &mean);
  ln_get_nutation(dynamicalDay, &nutation);
  const double obliquity = nutation.ecliptic * Degree;
  Spherical ofDate =
      sphericalOf(tilted(vectorOf({mean.ra * Degree, mean.dec * Degree}), -obliquity));
  ofDate.longitude += nutation.longitude * Degree;
  return sphericalOf(tilted(vectorOf(ofDate), obliquity + nutation.obliquity * Degree));
}

SunPosition libnovaPosition(double moment) {
  // libnova keeps its last nutation in variables of the process, for all days within a tenth of
  // the last one: nodes that are six hours apart never get each other's.
  static std::mutex mutex;
  const std::lock_guard<std::mutex> lock(mutex);
  const double day = UnixEpoch + moment / DaySeconds;
  SunPosition result;
  ln_nutation nutation{};
  const Spherical sun =
      apparentSun(day + dynamicalAhead(day) / DaySeconds, result.distance, nutation);
  const double equinoxes =
      nutation.longitude * Degree * cosine((nutation.ecliptic + nutation.obliquity) * Degree);
  const double sidereal = ln_get_mean_sidereal_time(day) * 15.0 * Degree + equinoxes;
  result.hourAngle = std::remainder(sidereal - sun.longitude, 2.0 * Pi);
  result.declination = sun.latitude;
  return result;
}

#endif

Vec3 levelNorth(const Visibility::Vector& north) {
  const double length = std::hypot(north[0], north[1]);
  if (!(length > 0.0) || !std::isfinite(length) || !std::isfinite(north[2]))
    throw std::invalid_argument("the direction to the north has no level part");
  return {north[0] / length, north[1] / length, 0.0};
}

void checkDay(const CivilDate& date) {
  if (date.month < 1 || date.month > 12 || date.day < 1 || dateOfDay(dayNumber(date)) != date)
    throw std::invalid_argument("there is no day " + dateText(date));
  if (date.year < 1900 || date.year > 2100)
    throw std::invalid_argument(dateText(date) + " is not of the years 1900 to 2100");
}

void checkPlace(const Place& place) {
  if (!(std::abs(place.latitude) <= 90.0))
    throw std::invalid_argument("the latitude is not from -90 to 90 degrees");
  if (!(std::abs(place.longitude) <= 180.0))
    throw std::invalid_argument("the longitude is not from -180 to 180 degrees");
}

}  // namespace

SunPosition sunPosition(double moment) {
#ifdef LUMIVANE_HAS_LIBNOVA
  return libnovaPosition(moment);
#else
  static_cast<void>(moment);
  throw std::runtime_error("built without libnova, which knows where the sun is");
#endif
}

bool SunPath::isBuilt() {
#ifdef LUMIVANE_HAS_LIBNOVA
  return true;
#else
  return false;
#endif
}

struct SunPath::State {
  Place place;
  CivilDate first;
  CivilDate last;
  double start = 0.0;
  double end = 0.0;
  Vec3 north;
  Vec3 east;
  double sineOfLatitude = 0.0;
  double cosineOfLatitude = 0.0;
  double longitude = 0.0;  // radians
  double firstNode = 0.0;
  // Their hour angles are less the turn of the mean sun.
  std::vector<SunPosition> nodes;
};

SunPath::SunPath(const Place& place, const CivilDate& first, const CivilDate& last) {
  checkPlace(place);
  checkDay(first);
  checkDay(last);
  if (dayNumber(last) < dayNumber(first))
    throw std::invalid_argument("the last day, " + dateText(last) + ", is before the first, " +
                                dateText(first));
  const auto made = std::make_shared<State>();
  made->place = place;
  made->first = first;
  made->last = last;
  made->north = levelNorth(place.north);
  made->east = Kernel::cross(made->north, {0.0, 0.0, 1.0});
  made->start = place.zone.momentOf(first);
  made->end = place.zone.momentOf(dateOfDay(dayNumber(last) + 1));
  made->sineOfLatitude = sine(place.latitude * Degree);
  made->cosineOfLatitude = cosine(place.latitude * Degree);
  made->longitude = place.longitude * Degree;
  // One more than the day before and the day after need.
  const double from = std::floor((made->start - DaySeconds) / NodeSeconds) - 1.0;
  const double to = std::ceil((made->end + DaySeconds) / NodeSeconds) + 1.0;
  made->firstNode = from * NodeSeconds;
  for (double i = from; i <= to; i += 1.0) {
    SunPosition node = sunPosition(i * NodeSeconds);
    const double mean = 2.0 * Pi * (i * NodeSeconds / DaySeconds - std::floor(i / 4.0));
    node.hourAngle = std::remainder(node.hourAngle - mean, 2.0 * Pi);
    if (!made->nodes.empty()) {
      const double before = made->nodes.back().hourAngle;
      node.hourAngle = before + std::remainder(node.hourAngle - before, 2.0 * Pi);
    }
    made->nodes.push_back(node);
  }
  state = made;
}

const Place& SunPath::place() const { return state->place; }
const CivilDate& SunPath::first() const { return state->first; }
const CivilDate& SunPath::last() const { return state->last; }
double SunPath::start() const { return state->start; }
double SunPath::end() const { return state->end; }
Visibility::Vector SunPath::north() const { return {state->north.x, state->north.y, 0.0}; }
Visibility::Vector SunPath::east() const { return {state->east.x, state->east.y, 0.0}; }

SunPosition SunPath::position(double moment) const {
  const State& s = *state;
  const double at = (moment - s.firstNode) / NodeSeconds;
  const double last = static_cast<double>(s.nodes.size()) - 3.0;
  if (!(at >= 1.0 && at <= last + 1.0))
    throw std::out_of_range("the moment is not of the days of the path");
  const double floor = std::clamp(std::floor(at), 1.0, last);
  const double u = at - floor;
  const SunPosition* const p = &s.nodes[static_cast<size_t>(floor) - 1];
  // Lagrange's polynomial through the positions at -1, 0, 1 and 2.
  const double w[4] = {-u * (u - 1.0) * (u - 2.0) / 6.0, (u + 1.0) * (u - 1.0) * (u - 2.0) / 2.0,
                       -(u + 1.0) * u * (u - 2.0) / 2.0, (u + 1.0) * u * (u - 1.0) / 6.0};
  SunPosition result{0.0, 0.0, 0.0};
  for (int i = 0; i < 4; ++i) {
    result.hourAngle += w[i] * p[i].hourAngle;
    result.declination += w[i] * p[i].declination;
    result.distance += w[i] * p[i].distance;
  }
  // Turns since the start keep their digits.
  const double noon = std::floor(s.start / DaySeconds) * DaySeconds;
  result.hourAngle += 2.0 * Pi * ((moment - noon) / DaySeconds) + s.longitude;
  return result;
}

Visibility::Vector SunPath::direction(double moment) const {
  const State& s = *state;
  const SunPosition sun = position(moment);
  const double across = cosine(sun.declination);
  const double north = across * cosine(sun.hourAngle);
  const double along = sine(sun.declination);
  const double toEast = -across * sine(sun.hourAngle);
  const double toNorth = along * s.cosineOfLatitude - north * s.sineOfLatitude;
  const double up = along * s.sineOfLatitude + north * s.cosineOfLatitude - Parallax / sun.distance;
  const double length = std::sqrt(toEast * toEast + toNorth * toNorth + up * up);
  const Vec3 level = toEast * s.east + toNorth * s.north;
  return {level.x / length, level.y / length, up / length};
}

}  // namespace Lumivane::Measure
