// When the sun shines on eye points, and what they see of the sky. All outputs are made in memory
// before the first is written; what has been found at the eyes of a table goes into a journal, from
// which a run that was ended takes it.

#include "Csv.h"
#include "ExactScene.h"
#include "EyeThreads.h"
#include "FileMark.h"
#include "HostError.h"
#include "ImportWork.h"
#include "OutputNames.h"
#include "SceneSource.h"
#include "SunJournal.h"
#include "SunOptions.h"
#include "SunPlace.h"
#include "UnderGroundTest.h"
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
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

namespace Lumivane::Host {
namespace {

using Measure::SunEye;
using Measure::SunPath;
using Measure::SunText;
using Visibility::VisibleMap;

constexpr double HourSeconds = 3600.0;

struct Output {
  std::string path;
  std::string bytes;
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
  return hasTables(options) || options.where.hasDays() || !isElse;
}

bool needsPath(const SunOptions& options) {
  return wantsSun(options) || !options.svg.empty() || skyOf(options).needsSun();
}

bool isDirection(const Vector& v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]) &&
         (v[0] != 0.0 || v[1] != 0.0 || v[2] != 0.0);
}

void need(bool isThere, const char* option, const std::string& why) {
  if (!isThere) throw ArgumentError(option, "is needed " + why);
}

// Options that would change nothing are mistakes.
void checkEffects(const SunOptions& options) {
  const SunOptions usual;
  if (options.patchValues != usual.patchValues && !isPatches(options))
    throw ArgumentError("--patch-values", "is for --sky patches");
  if (options.sunAbove != usual.sunAbove && !wantsSun(options))
    throw ArgumentError("--sun-above", "is for sun hours: name days, or a table of them");
  if (!options.svg.empty() || !options.html.empty()) return;
  const char* const ofDiagram = options.size                             ? "--size"
                                : options.projection != usual.projection ? "--projection"
                                : options.colorBy != usual.colorBy       ? "--color-by"
                                                                         : nullptr;
  if (ofDiagram != nullptr)
    throw ArgumentError(ofDiagram, "is that of the diagram: name one with --svg or --html");
}

void checkArguments(const SunOptions& options) {
  need(options.eye || !options.views.empty(), "--eye", "unless there is a table with --views");
  if (needsPath(options)) needPlace(options.where);
  if (!options.horizon.empty() || isPatches(options)) needNorth(options.where);
  if (wantsSun(options)) needDays(options.where);
  if (skyOf(options).needsSun())
    need(!options.at.empty(), "--at", "by --sky " + options.sky + ", which depends on the sun");
  if (std::filesystem::path(options.horizon).extension() == ".hor")
    need(options.where.latitude.has_value(), "--latitude",
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
  checkEffects(options);
  checkCsvSafe(options.csvSafe,
               {options.intervals, options.days, options.months, options.totals, options.skyValues},
               "--intervals, --days, --months, --totals or --sky-values");
  const double steps = 360.0 / options.horizonStep;
  if (std::abs(steps - std::round(steps)) > 1e-6 * steps)
    throw ArgumentError("--horizon-step", "does not divide 360 degrees");
}

// The first table that is written for many eyes, and so what their journal is named after; empty if
// there is none.
std::string journalOf(const SunOptions& options) {
  if (options.views.empty()) return "";
  for (const std::string& path :
       {options.intervals, options.days, options.months, options.totals, options.skyValues})
    if (!path.empty()) return path + ".rows";
  return "";
}

void checkOutputs(const SunOptions& options) {
  std::vector<std::string> inputs = sourceFiles(options.scene, options.import);
  if (!options.views.empty()) inputs.push_back(options.views);
  OutputNames names(std::move(inputs));
  names.add("--intervals", options.intervals);
  names.add("--days", options.days);
  names.add("--months", options.months);
  names.add("--totals", options.totals);
  names.add("--horizon", options.horizon);
  names.add("--sky-values", options.skyValues);
  names.add("--svg", options.svg);
  names.add("--html", options.html);
  names.add("the journal", journalOf(options));
}

// Of all that is found out at the eyes depends on.
std::uint64_t keyOf(const SunOptions& options, const Measure::Place& place, const DayRange& days) {
  char numbers[400];
  std::snprintf(numbers, sizeof numbers, "%d %a %a %a %a %d %a", options.twoSided ? 1 : 0,
                place.latitude, place.longitude, place.north[0], place.north[1],
                wantsSun(options) ? 1 : 0, options.sunAbove);
  std::string text = numbers;
  for (const std::string& part :
       {options.where.timeZone, Measure::dateText(days.first), Measure::dateText(days.last),
        options.sky, options.patchValues, options.at})
    text += "\n" + part;
  if (options.plane)
    for (const double coordinate : *options.plane) {
      std::snprintf(numbers, sizeof numbers, "\n%a", coordinate);
      text += numbers;
    }
  const std::uint64_t key = textKey(text, sceneKey(options.scene, options.import));
  return textKey(Session::readBytes(options.views), key);
}

// The years of the days, and of the time that is asked for.
DayRange zoneDays(const SunOptions& options, DayRange days) {
  if (options.at.empty()) return days;
  const Measure::CivilDate at = readTime(options.at).date;
  if (at.year < days.first.year) days.first = at;
  if (at.year > days.last.year) days.last = at;
  return days;
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
    const double moment = momentOf(readTime(options.at), place.zone);
    const Measure::CivilDate date = place.zone.dateAt(moment);
    sun = pathOf(place, {date, date}).direction(moment);
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
    eye.values.push_back(
        Visibility::MapShares(map, Visibility::MapShares::Objects::Seen).sky().solidAngle);
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

void addDiagrams(const SunOptions& options, const SourcedScene& source, const VisibleMap& map,
                 const Measure::Place& place, const DayRange& days, const SunEye& eye,
                 std::vector<Output>& outputs) {
  Pictures::SunDiagramOptions how;
  for (const Pictures::MapProjectionName& entry : Pictures::mapProjections())
    if (options.projection == entry.name) how.projection = entry.projection;
  const Size size = options.size.value_or(Size());
  how.width = size.width;
  how.height = size.height;
  how.title = titleOf(options.scene, options.import);
  how.year = days.first.year;
  if (days.first == days.last && !eye.days.empty()) how.day = eye.days.front();
  const Pictures::MapColors colors = options.colorBy == "class" ? Pictures::MapColors::byClass(map)
                                     : options.colorBy == "object"
                                         ? Pictures::MapColors()
                                         : Pictures::MapColors(source.scene().scene());
  if (!options.svg.empty())
    outputs.push_back({options.svg, Pictures::sunDiagram(map, colors, place, how)});
  if (!options.html.empty())
    outputs.push_back({options.html, Pictures::sunPage(map, colors, place, eye.days, how)});
}

// What there is of one eye alone.
void addPictures(const SunOptions& options, const SourcedScene& source, const VisibleMap& map,
                 const Measure::Place& place, const DayRange& days, const SunEye& eye,
                 std::vector<Output>& outputs) {
  if (!options.horizon.empty()) {
    const auto count = static_cast<int>(std::lround(360.0 / options.horizonStep));
    const Measure::HorizonLine line(map, place.north, count);
    const bool isHor = std::filesystem::path(options.horizon).extension() == ".hor";
    outputs.push_back(
        {options.horizon, isHor ? line.horText(place.latitude < 0.0) : line.listText()});
  }
  if (!options.svg.empty() || !options.html.empty())
    addDiagrams(options, source, map, place, days, eye, outputs);
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
    const auto number = static_cast<size_t>(shades[i].classNumber);
    const bool hasClass = shades[i].classNumber >= 0 && number < names.classNames.size();
    std::printf("  behind %s%s: %s\n", oneLine(Session::idText(id)).c_str(),
                hasClass ? oneLine(" (" + names.classNames[number] + ")").c_str() : "",
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
    std::cerr << "lumivane: --eye: lies inside a body or under the ground: what is seen is as if "
                 "that were not there"
              << (hasTables(options) ? " (column \"inside\" of the tables)\n" : "\n");
  else if (inside > 0)
    std::cerr << "lumivane: " << options.views << ": " << inside << " of " << eyes.size()
              << " eyes lie inside a body or under the ground: their column \"inside\" is 1\n";
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

// Finds out what is not known yet, at each eye.
class EyeWork {
 public:
  EyeWork(const SunOptions& theOptions, const SourcedScene& theSource, const ExactScene& theExact,
          const Measure::Place& thePlace, const DayRange& theDays)
      : options(theOptions),
        source(theSource),
        exact(theExact),
        place(thePlace),
        days(theDays),
        inside(insideTestOf(source)),
        underGround(exact.sceneIndex()) {}

  // \param journal  keeps what has been found; may be null
  void run(const Work& work, std::vector<SunEye>& eyes, SunJournal* journal) {
    const std::vector<bool> isKnown =
        journal != nullptr ? journal->takeInto(eyes) : std::vector<bool>(eyes.size(), false);
    std::vector<size_t> open;
    for (size_t i = 0; i < eyes.size(); ++i)
      if (!isKnown[i]) open.push_back(i);
    if (open.size() < eyes.size())
      std::printf("%zu eyes are known from the run before\n", eyes.size() - open.size());
    std::fflush(stdout);
    const bool isOne = eyes.size() == 1;
    Visibility::LookOptions how = lookUpwards(place);
    how.twoSided = options.twoSided;
    how.threads = isOne ? options.threads : 1;
    forEachEye(open.size(), options.threads, [&](size_t i) {
      SunEye& eye = eyes[open[i]];
      const Vector at = moved(eye.eye, source.eyeShift);
      eye.isInside = !options.twoSided && (inside->isInside(at) || underGround.isUnder(at));
      const VisibleMap map = exact.look(at, how);
      work.at(map, eye);
      if (journal != nullptr) journal->append(open[i], eye);
      if (isOne) addPictures(options, source, map, place, days, eye, outputs);
    });
  }

  std::vector<Output> outputs;  // pictures of a single eye

 private:
  const SunOptions& options;
  const SourcedScene& source;
  const ExactScene& exact;
  const Measure::Place& place;
  const DayRange& days;
  const std::unique_ptr<const Check::InsideTest> inside;
  const UnderGroundTest underGround;
};

std::shared_ptr<const VisibleMap::Names> namesOf(const ExactScene& exact) {
  const Visibility::PolygonScene pieces = exact.sceneIndex().pieces();
  const auto names = std::make_shared<VisibleMap::Names>();
  names->objectIds = pieces.objectIds;
  names->classNames = pieces.classNames;
  return names;
}

}  // namespace

void runSun(const SunOptions& options) {
  checkArguments(options);
  // Of a diagram alone: one year is like another.
  const DayRange days = daysOf(options.where, {{2024, 1, 1}, {2024, 12, 31}});
  Session::checkReadable(options.scene);
  checkOutputs(options);
  const Measure::Place place = placeOf(options.where, zoneDays(options, days));
  const Work work(options, place, days);
  std::vector<SunEye> eyes = eyesOf(options);
  const SourcedScene source = loadScene(options.scene, options.import);
  const ExactScene exact(options.scene, source);
  std::unique_ptr<SunJournal> journal;
  if (!journalOf(options).empty())
    journal = std::make_unique<SunJournal>(journalOf(options), keyOf(options, place, days));
  EyeWork eyeWork(options, source, exact, place, days);
  eyeWork.run(work, eyes, journal.get());
  std::vector<Output> outputs = std::move(eyeWork.outputs);
  const auto names = namesOf(exact);
  const std::vector<std::string> columns =
      options.sky.empty() ? std::vector<std::string>() : work.columns();
  addTables(options, eyes, SunText(place.zone, names, options.csvSafe), columns, outputs);
  for (const Output& output : outputs) Session::writeFile(output.path, output.bytes);
  if (journal) journal->remove();
  report(options, eyes, columns, *names);
}

}  // namespace Lumivane::Host
