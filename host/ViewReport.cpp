// The sky view factor and the sun hours are of the hemisphere above the eye, whatever it looks at:
// so there is another look, but for an eye that looks up itself.
#include "ViewReport.h"

#include "HostError.h"
#include "SunPlace.h"

#include <lumivane/measure/SunHours.h>
#include <lumivane/pictures/ReportPage.h>
#include <lumivane/pictures/SunDiagram.h>
#include <lumivane/pictures/VectorPicture.h>

#include <cstdio>
#include <utility>

namespace Lumivane::Host {
namespace {

using Pictures::ReportPage;
using Visibility::VisibleMap;

constexpr DayRange NoDays{};

// The first option of a place or of days that is given; null if none is.
const char* givenOption(const SunPlaceOptions& where) {
  const std::pair<bool, const char*> options[] = {{where.latitude.has_value(), "--latitude"},
                                                  {where.longitude.has_value(), "--longitude"},
                                                  {!where.timeZone.empty(), "--time-zone"},
                                                  {where.north.has_value(), "--north"},
                                                  {!where.day.empty(), "--day"},
                                                  {!where.from.empty(), "--from"},
                                                  {where.year.has_value(), "--year"}};
  for (const auto& [isGiven, name] : options)
    if (isGiven) return name;
  return nullptr;
}

VisibleMap lookUp(const ViewOptions& options, const ExactScene& scene,
                  const Visibility::Vector& eye, const Measure::Place& place) {
  Visibility::LookOptions how = lookUpwards(place);
  how.twoSided = options.twoSided;
  how.threads = options.threads;
  return scene.look(eye, how);
}

void addSun(const ViewOptions& options, const ReportedLook& look, const VisibleMap& upwards,
            const Measure::Place& place, ReportPage& page) {
  const DayRange days = daysOf(options.where, NoDays);
  const Measure::SunHours hours(upwards, pathOf(place, days));
  Pictures::SunDiagramOptions how;
  how.year = days.first.year;
  how.declaration = false;
  if (hours.days().size() == 1) how.day = hours.days().front();
  page.addSun(upwards, place, hours.days(), Pictures::sunDiagram(upwards, look.colors, place, how));
}

std::string factorText(double factor) {
  char text[40];
  std::snprintf(text, sizeof text, "%.6f", factor);
  return text;
}

}  // namespace

void checkReport(const ViewOptions& options) {
  const char* const given = givenOption(options.where);
  if (given == nullptr) return;
  if (options.report.empty())
    throw ArgumentError(given, "is for the sun hours of a page to print: name one with --report");
  needPlace(options.where);
  needDays(options.where);
  const DayRange days = daysOf(options.where, NoDays);
  pathOf(placeOf(options.where, days), days);
}

std::string viewReport(const ViewOptions& options, const ExactScene& scene,
                       const ReportedLook& look) {
  Pictures::MapPictureOptions picture = look.picture;
  const std::string name = std::exchange(picture.title, "");
  picture.extent = 1.02;  // so that no line of the rim is cut
  ReportPage page("What is seen in " + name,
                  Pictures::VectorPicture(look.map, look.colors, picture), look.map, look.shares);
  if (look.place.isUnderGround)
    page.addFact("Under the ground", "yes: what is seen is as if the ground were not there");
  if (look.place.isInside)
    page.addFact("Inside a body", "yes: what is seen is as if the body were not there");
  const bool hasSun = givenOption(options.where) != nullptr;
  const bool looksUp = look.map.field == Visibility::Field::Hemisphere &&
                       look.map.forward == Visibility::Vector{0.0, 0.0, 1.0};
  const Measure::Place place =
      hasSun ? placeOf(options.where, daysOf(options.where, NoDays)) : Measure::Place();
  if (hasSun || !looksUp) {
    const VisibleMap upwards = lookUp(options, scene, look.map.eye, place);
    if (!looksUp)
      page.addFact("sky view factor",
                   factorText(Visibility::MapShares(upwards).sky().viewFactor) + ", looking up");
    if (hasSun) addSun(options, look, upwards, place, page);
  }
  if (!hasSun)
    page.add({"Sun hours",
              "For sun hours give a place and days to lumivane view, too: --latitude, --longitude, "
              "--time-zone, --north, and --day, or --from and --to, or --year.",
              {},
              {}});
  return page.text();
}

}  // namespace Lumivane::Host
