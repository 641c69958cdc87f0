// When the sun shines on eye points, and what they see of the sky. All outputs are made in memory
// before the first is written.

#include "Csv.h"
#include "ExactScene.h"
#include "HostError.h"
#include "OutputNames.h"
#include "ProgressBar.h"
#include "SceneSource.h"
#include "SunOptions.h"
#include "SunZone.h"
#include "ViewTable.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/measure/HorizonLine.h>
#include <lumivane/measure/SkyLight.h>
#include <lumivane/measure/SunHours.h>
#include <lumivane/measure/SunText.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/SunDiagram.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/Text.h>
#include <lumivane/visibility/MapShares.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace Lumivane::Host {
namespace {

using Measure::CivilDate;
using Measure::SunEye;
using Measure::SunPath;
using Measure::SunText;
using Visibility::VisibleMap;

constexpr double HourSeconds = 3600.0;

struct Output {
  std::string path;
  std::string bytes;
};

struct DayRange {
  CivilDate first;
  CivilDate last;
};

bool isPatches(const SunOptions& options) { return options.sky.rfind("patches:", 0) == 0; }

// The number after the colon; 0 for the uniform sky.
int skyNumber(const SunOptions& options) {
  const size_t colon = options.sky.find(':');
  return colon == std::string::npos ? 0 : std::stoi(options.sky.substr(colon + 1));
}

Measure::SkyType skyOf(const SunOptions& options) {
  Measure::SkyType type;
  if (!isPatches(options)) type.number = skyNumber(options);
  return type;
}

bool hasTables(const SunOptions& options) {
  return !options.intervals.empty() || !options.days.empty() || !options.months.empty() ||
         !options.totals.empty() || !options.html.empty();
}

// Whether sun hours are asked for; they are if nothing else is.
bool wantsSun(const SunOptions& options) {
  const bool isElse = !options.horizon.empty() || !options.sky.empty() || !options.svg.empty();
  const bool hasDays = !options.day.empty() || !options.from.empty() || options.year.has_value();
  return hasTables(options) || hasDays || !isElse;
}

bool needsPath(const SunOptions& options) {
  return wantsSun(options) || !options.svg.empty() || skyOf(options).needsSun();
}

bool isDirection(const Vector& v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]) &&
         (v[0] != 0.0 || v[1] != 0.0 || v[2] != 0.0);
}

template <class Value>
void need(const Value& isThere, const char* option, const std::string& why) {
  if (!isThere) throw ArgumentError(option, "is needed " + why);
}

void checkArguments(const SunOptions& options) {
  need(options.eye || !options.views.empty(), "--eye", "unless there is a table with --views");
  if (needsPath(options)) {
    need(options.latitude, "--latitude", "to know where the sun stands");
    need(options.longitude, "--longitude", "to know where the sun stands");
    need(!options.timeZone.empty(), "--time-zone", "to know what clocks show");
  }
  if (needsPath(options) || !options.horizon.empty() || isPatches(options))
    need(options.north, "--north", "to know how the scene lies: 90 where y points north");
  if (wantsSun(options))
    need(!options.day.empty() || !options.from.empty() || options.year, "--day",
         "unless there are --from and --to, or --year");
  if (skyOf(options).needsSun())
    need(!options.at.empty(), "--at", "by --sky " + options.sky + ", which depends on the sun");
  if (std::filesystem::path(options.horizon).extension() == ".hor")
    need(options.latitude, "--latitude",
         "for a .hor file, whose azimuths depend on the hemisphere");
  if (isPatches(options)) need(!options.skyValues.empty(), "--sky-values", "by --sky patches");
  if (options.plane && (options.sky.empty() || isPatches(options)))
    throw ArgumentError("--plane",
                        "gets the light of --sky uniform or --sky cie:N: name one of them");
  if (options.plane && !isDirection(*options.plane))
    throw ArgumentError("--plane", "is not a direction: three finite numbers, not all 0");
  if (!options.at.empty() && !skyOf(options).needsSun())
    throw ArgumentError("--at", "is for skies with a sun, as --sky cie:12");
  if (!options.views.empty() && !options.horizon.empty())
    throw ArgumentError("--horizon", "is of one eye: use --eye in place of --views");
  if (!options.views.empty() && !options.svg.empty())
    throw ArgumentError("--svg", "is of one eye: use --eye in place of --views");
  if (!options.views.empty() && !options.html.empty())
    throw ArgumentError("--html", "is of one eye: use --eye in place of --views");
  const double steps = 360.0 / options.horizonStep;
  if (std::abs(steps - std::round(steps)) > 1e-6 * steps)
    throw ArgumentError("--horizon-step", "does not divide 360 degrees");
}

void checkOutputs(const SunOptions& options) {
  std::vector<std::string> inputs = sourceFiles(options.scene);
  if (!options.views.empty()) inputs.push_back(options.views);
  OutputNames names(std::move(inputs));
  for (const std::string& path : {options.intervals, options.days, options.months, options.totals,
                                  options.horizon, options.skyValues, options.svg, options.html})
    names.add(path);
}

CivilDate dateOf(const char* option, const std::string& text) {
  const std::optional<CivilDate> date = Measure::readDate(text);
  if (!date) throw ArgumentError(option, "\"" + oneLine(text) + "\" is no day YYYY-MM-DD");
  return *date;
}

DayRange daysOf(const SunOptions& options) {
  if (options.year) return {{*options.year, 1, 1}, {*options.year, 12, 31}};
  if (!options.from.empty()) {
    const DayRange range{dateOf("--from", options.from), dateOf("--to", options.to)};
    const auto order = [](const CivilDate& d) { return std::tuple(d.year, d.month, d.day); };
    if (order(range.last) < order(range.first))
      throw ArgumentError("--to", "is before --from " + oneLine(options.from));
    return range;
  }
  if (!options.day.empty()) return {dateOf("--day", options.day), dateOf("--day", options.day)};
  return {{2024, 1, 1}, {2024, 12, 31}};  // of a diagram alone: one year is like another
}

struct LocalTime {
  CivilDate date;
  double seconds = 0.0;  // after midnight
};

LocalTime timeOf(const std::string& text) {
  const auto number = [&text](size_t at, int below) {
    const bool isNumber = std::isdigit(static_cast<unsigned char>(text[at])) != 0 &&
                          std::isdigit(static_cast<unsigned char>(text[at + 1])) != 0;
    const int value = isNumber ? (text[at] - '0') * 10 + (text[at + 1] - '0') : below;
    return value < below ? value : -1;
  };
  const std::optional<CivilDate> date = Measure::readDate(text.substr(0, 10));
  const bool isWhole = text.size() == 16 && (text[10] == 'T' || text[10] == ' ') && text[13] == ':';
  const int hour = isWhole ? number(11, 24) : -1;
  const int minute = isWhole ? number(14, 60) : -1;
  if (!date || hour < 0 || minute < 0)
    throw ArgumentError("--at", "\"" + oneLine(text) + "\" is no time YYYY-MM-DDTHH:MM");
  return {*date, hour * HourSeconds + minute * 60.0};
}

Measure::Place placeOf(const SunOptions& options, const DayRange& days) {
  Measure::Place place;
  place.latitude = options.latitude.value_or(0.0);
  place.longitude = options.longitude.value_or(0.0);
  if (options.north) place.north = *options.north;
  int firstYear = days.first.year;
  int lastYear = days.last.year;
  if (!options.at.empty()) {
    const int year = timeOf(options.at).date.year;
    firstYear = std::min(firstYear, year);
    lastYear = std::max(lastYear, year);
  }
  if (!options.timeZone.empty())
    place.zone = timeZoneOf(options.timeZone, std::clamp(firstYear, 1900, 2100),
                            std::clamp(lastYear, 1900, 2100));
  return place;
}

SunPath pathOf(const Measure::Place& place, const DayRange& days) {
  if (!SunPath::isBuilt())
    throw HostError("sun", "this program was built without libnova, which knows where the sun is");
  try {
    return SunPath(place, days.first, days.last);
  } catch (const std::invalid_argument& error) {
    throw HostError("the days", error.what());
  }
}

// Without one every view would stand at the origin, as it does for shots.
void checkEyeColumn(const std::string& path) {
  const std::vector<CsvRecord> records = readCsv(Session::readBytes(path), path);
  if (records.empty()) return;  // is named by who reads it
  const std::vector<std::string> names = {"eye", "eye_x", "eye-x"};
  const auto isEye = [&names](std::string field) {
    field.erase(0, std::min(field.find_first_not_of('-'), field.size()));
    return std::find(names.begin(), names.end(), field) != names.end();
  };
  if (std::none_of(records[0].fields.begin(), records[0].fields.end(), isEye))
    throw HostError(path,
                    "has no column \"eye\", nor eye_x, eye_y and eye_z: where do the eyes stand?");
}

std::vector<SunEye> eyesOf(const SunOptions& options) {
  std::vector<SunEye> eyes;
  if (options.eye) {
    eyes.emplace_back();
    eyes.back().name = "eye";
    eyes.back().eye = *options.eye;
    return eyes;
  }
  checkEyeColumn(options.views);
  TableSetting setting;
  setting.scene = options.scene;
  setting.folder = ".";
  for (const TableView& view : readViewTable(options.views, setting)) {
    eyes.emplace_back();
    eyes.back().name = view.name;
    eyes.back().eye = view.options.view.eye;
  }
  return eyes;
}

// What is found out at each eye.
class Work {
 public:
  Work(const SunOptions& theOptions, const Measure::Place& thePlace, const DayRange& days)
      : options(theOptions), place(thePlace) {
    if (wantsSun(options)) path.emplace(pathOf(place, days));
    if (!skyOf(options).needsSun()) return;
    const LocalTime at = timeOf(options.at);
    const SunPath day = pathOf(place, {at.date, at.date});
    sun = day.direction(place.zone.momentOf(at.date, at.seconds));
    if (!(sun[2] > 0.0)) throw HostError("--at", "the sun is not up at " + oneLine(options.at));
  }

  void at(const VisibleMap& map, SunEye& eye) const {
    if (path) {
      Measure::SunHours::Options how;
      how.lowestElevation = options.sunAbove;
      eye.days = Measure::SunHours(map, *path, how).days();
    }
    if (options.sky.empty()) return;
    if (isPatches(options)) {
      const Measure::SkyPatchShares shares =
          Measure::visibleSkyPatches(map, place.north, skyNumber(options));
      eye.values = options.patchValues == "cosine" ? shares.cosines : shares.solidAngles;
      return;
    }
    const Measure::SkyType type = skyOf(options);
    eye.values.push_back(Visibility::MapShares(map).sky().solidAngle);
    eye.values.push_back(skyComponent(map, type, {0.0, 0.0, 1.0}, sun));
    if (options.plane) eye.values.push_back(skyComponent(map, type, *options.plane, sun));
  }

  std::vector<std::string> columns() const {
    std::vector<std::string> result;
    if (isPatches(options)) {
      const int count = skyNumber(options);
      const size_t digits = std::to_string(count).size();
      for (int i = 1; i <= count; ++i) {
        const std::string number = std::to_string(i);
        result.push_back("p" + std::string(digits - number.size(), '0') + number);
      }
      return result;
    }
    result = {"sky_solid_angle", "level_component"};
    if (options.plane) result.emplace_back("plane_component");
    return result;
  }

 private:
  const SunOptions& options;
  const Measure::Place& place;
  std::optional<SunPath> path;
  Vector sun{};
};

void addDiagrams(const SunOptions& options, const Session::LoadedScene& scene,
                 const VisibleMap& map, const Measure::Place& place, const DayRange& days,
                 const SunEye& eye, std::vector<Output>& outputs) {
  Pictures::SunDiagramOptions how;
  for (const Pictures::MapProjectionName& entry : Pictures::mapProjections())
    if (options.projection == entry.name) how.projection = entry.projection;
  const Size size = options.size.value_or(Size());
  how.width = size.width;
  how.height = size.height;
  how.title = std::filesystem::path(options.scene).filename().string();
  how.year = days.first.year;
  if (days.first == days.last && !eye.days.empty()) how.day = eye.days.front();
  const Pictures::MapColors colors =
      options.colorBy == "object" ? Pictures::MapColors() : Pictures::MapColors(scene.scene());
  if (!options.svg.empty())
    outputs.push_back({options.svg, Pictures::sunDiagram(map, colors, place, how)});
  if (!options.html.empty())
    outputs.push_back({options.html, Pictures::sunPage(map, colors, place, eye.days, how)});
}

// What there is of one eye alone.
void addPictures(const SunOptions& options, const Session::LoadedScene& scene,
                 const VisibleMap& map, const Measure::Place& place, const DayRange& days,
                 const SunEye& eye, std::vector<Output>& outputs) {
  if (!options.horizon.empty()) {
    const auto count = static_cast<int>(std::lround(360.0 / options.horizonStep));
    const Measure::HorizonLine line(map, place.north, count);
    const bool isHor = std::filesystem::path(options.horizon).extension() == ".hor";
    outputs.push_back(
        {options.horizon, isHor ? line.horText(place.latitude < 0.0) : line.listText()});
  }
  if (!options.svg.empty() || !options.html.empty())
    addDiagrams(options, scene, map, place, days, eye, outputs);
}

// Calls `visit(i)` once for each i below `count`, from several threads, and shows how far they have
// come. Throws what the first that failed has thrown.
template <class Visit>
void forEachEye(size_t count, int wanted, const Visit& visit) {
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  std::atomic<size_t> next{0};
  std::mutex mutex;
  std::exception_ptr failure;
  const auto work = [&](bool isCaller) {
    try {
      for (size_t i = next.fetch_add(1); i < count; i = next.fetch_add(1)) {
        if (isCaller && show) show(100.0 * static_cast<double>(i) / static_cast<double>(count));
        visit(i);
      }
    } catch (...) {
      next.store(count);
      const std::lock_guard<std::mutex> lock(mutex);
      if (!failure) failure = std::current_exception();
    }
  };
  const size_t most =
      wanted > 0 ? static_cast<size_t>(wanted) : std::max(1U, std::thread::hardware_concurrency());
  std::vector<std::thread> threads;
  try {
    for (size_t i = 1; i < std::min(most, count); ++i) threads.emplace_back(work, false);
  } catch (const std::system_error&) {
    // Those that are there do it all.
  }
  work(true);
  for (std::thread& thread : threads) thread.join();
  if (failure) std::rethrow_exception(failure);
}

void addTables(const SunOptions& options, const std::vector<SunEye>& eyes, const SunText& text,
               const std::vector<std::string>& columns, std::vector<Output>& outputs) {
  const auto formatOf = [](const std::string& path) {
    return std::filesystem::path(path).extension() == ".json" ? SunText::Format::Json
                                                              : SunText::Format::Csv;
  };
  const std::pair<const std::string&,
                  std::string (SunText::*)(const std::vector<SunEye>&, SunText::Format) const>
      tables[] = {{options.intervals, &SunText::spans},
                  {options.days, &SunText::days},
                  {options.months, &SunText::months},
                  {options.totals, &SunText::totals}};
  for (const auto& [path, table] : tables)
    if (!path.empty()) outputs.push_back({path, (text.*table)(eyes, formatOf(path))});
  if (!options.skyValues.empty())
    outputs.push_back({options.skyValues, text.values(eyes, columns, formatOf(options.skyValues))});
}

std::string hours(double seconds) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.3f h", seconds / HourSeconds);
  return buffer;
}

void reportShades(const VisibleMap::Names& names, const std::vector<Measure::SunDay>& days) {
  constexpr size_t Most = 5;
  const std::vector<Measure::SunShade> shades = Measure::sunShades(days);
  for (size_t i = 0; i < shades.size() && i < Most; ++i) {
    const auto object = static_cast<size_t>(shades[i].object) - 1;
    const std::string id = object < names.objectIds.size() ? names.objectIds[object] : "";
    std::printf("  behind %s: %s\n", oneLine(Session::idText(id)).c_str(),
                hours(shades[i].seconds).c_str());
  }
}

// What is worth a line on the terminal, where no table of sun hours was asked for.
void report(const SunOptions& options, const std::vector<SunEye>& eyes,
            const std::vector<std::string>& columns, const VisibleMap::Names& names) {
  const size_t inside = static_cast<size_t>(
      std::count_if(eyes.begin(), eyes.end(), [](const SunEye& eye) { return eye.isInside; }));
  std::fflush(stdout);
  if (inside > 0 && eyes.size() == 1)
    std::cerr
        << "lumivane: --eye: lies inside a body: what is seen is as if the body were not there"
        << (hasTables(options) ? " (column \"inside\" of the tables)\n" : "\n");
  else if (inside > 0)
    std::cerr << "lumivane: " << options.views << ": " << inside << " of " << eyes.size()
              << " eyes lie inside a body: their column \"inside\" is 1\n";
  if (eyes.size() != 1) {
    std::printf("%zu eyes\n", eyes.size());
    return;
  }
  const SunEye& eye = eyes.front();
  if (!hasTables(options)) {
    if (eye.days.size() <= 31) {
      for (const Measure::SunDay& day : eye.days)
        std::printf("%s: %s of sun in %s of daylight\n", Measure::dateText(day.date).c_str(),
                    hours(day.litSeconds()).c_str(), hours(day.daylightSeconds()).c_str());
    } else {
      for (const Measure::SunMonth& month : Measure::sunMonths(eye.days))
        std::printf("%04d-%02d: %s of sun in %s of daylight\n", month.year, month.month,
                    hours(month.litSeconds).c_str(), hours(month.daylightSeconds).c_str());
    }
    reportShades(names, eye.days);
  }
  if (options.skyValues.empty() && eye.values.size() == columns.size())
    for (size_t i = 0; i < columns.size(); ++i)
      std::printf("%s: %.9g\n", columns[i].c_str(), eye.values[i]);
}

}  // namespace

void runSun(const SunOptions& options) {
  checkArguments(options);
  const DayRange days = daysOf(options);
  Session::checkReadable(options.scene);
  checkOutputs(options);
  const Measure::Place place = placeOf(options, days);
  const Work work(options, place, days);
  std::vector<SunEye> eyes = eyesOf(options);
  const SourcedScene source = loadScene(options.scene, options.import);
  const ExactScene exact(options.scene, source.scene);
  const Check::InsideTest inside(source.scene.scene());
  const bool isOne = eyes.size() == 1;
  Visibility::LookOptions how = lookUpwards(place);
  how.twoSided = options.twoSided;
  how.threads = isOne ? options.threads : 1;
  std::vector<Output> outputs;
  std::shared_ptr<const VisibleMap::Names> names;
  forEachEye(eyes.size(), options.threads, [&](size_t i) {
    const Vector eye = moved(eyes[i].eye, source.eyeShift);
    eyes[i].isInside = !options.twoSided && inside.isInside(eye);
    const VisibleMap map = exact.look(eye, how);
    work.at(map, eyes[i]);
    if (i == 0) names = map.names;
    if (isOne) addPictures(options, source.scene, map, place, days, eyes[i], outputs);
  });
  const std::vector<std::string> columns =
      options.sky.empty() ? std::vector<std::string>() : work.columns();
  addTables(options, eyes, SunText(place.zone, names, options.csvSafe), columns, outputs);
  for (const Output& output : outputs) Session::writeFile(output.path, output.bytes);
  report(options, eyes, columns, *names);
}

}  // namespace Lumivane::Host
