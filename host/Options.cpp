// The arguments of the commands, with the checks that need no file. What components add is asked of
// Tools, so that a program without them has no trace of it.

#include "Options.h"

#include "OptionParts.h"
#include "Streams.h"
#include "Tools.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

constexpr int LargestPicture = 16384;  // what OpenGL draws at most
constexpr int ManySegments = 100000;   // more pieces an edge than any picture shows

// The whole text as a number, which may be infinite or not a number.
bool readNumber(const std::string& text, double& number) {
  if (text.empty() || text.find_first_of(" \t\n\v\f\r") != std::string::npos) return false;
  char* end = nullptr;
  number = std::strtod(text.c_str(), &end);
  return *end == '\0';
}

std::string vectorText(const Vector& vector) {
  const auto text = [](double value) { return std::to_string(static_cast<int>(value)); };
  return text(vector[0]) + "," + text(vector[1]) + "," + text(vector[2]);
}

// A finite number that is not negative.
void addNumber(CLI::App& command, const std::string& name, double& target,
               const std::string& help) {
  const auto check = [](const std::string& text) -> std::string {
    double number = 0.0;
    if (readNumber(text, number) && std::isfinite(number) && number >= 0.0) return "";
    return "\"" + text + "\" is not a finite number of at least 0";
  };
  command.add_option(name, target, help)
      ->check(check, "")
      ->type_name("NUMBER")
      ->capture_default_str();
}

// One of some names; the first is the default.
template <class Value>
void addChoice(CLI::App& command, const std::string& name, Value& target, const std::string& help,
               const std::vector<std::pair<std::string, Value>>& choices) {
  std::vector<std::string> names;
  names.reserve(choices.size());
  for (const auto& choice : choices) names.push_back(choice.first);
  const auto choose = [choices, &target](const std::string& text) {
    for (const auto& [label, value] : choices)
      if (text == label) target = value;
  };
  command.add_option_function<std::string>(name, choose, help)
      ->check(CLI::IsMember(names))
      ->default_str(names.front());
}

// Without --up the upper edge depends on --forward, in whatever order the two are given.
void addDirections(CLI::App& command, ViewSettings& view) {
  const auto isUpGiven = std::make_shared<bool>(false);
  command
      .add_option_function<std::string>(
          "--forward",
          [&view, isUpGiven](const std::string& text) {
            view.forward = readVector("--forward", text);
            if (!*isUpGiven) view.up = Session::usualUp(view.forward);
          },
          "the direction of the picture's centre")
      ->type_name("X,Y,Z")
      ->default_str(vectorText(view.forward));
  command
      .add_option_function<std::string>(
          "--up",
          [&view, isUpGiven](const std::string& text) {
            view.up = readVector("--up", text);
            *isUpGiven = true;
          },
          "the direction of the picture's upper edge; without it 0,1,0 for a look straight up or "
          "down")
      ->type_name("X,Y,Z")
      ->default_str(vectorText(view.up));
}

void addViewOptions(CLI::App& command, ViewSettings& view) {
  addVector(command, "--eye", view.eye, "where the eye stands");
  addDirections(command, view);
  addChoice<Base::ViewCameraKind>(command, "--camera", view.camera,
                                  "orthographic fisheye picture of the hemisphere (also spherical, "
                                  "radial), or equirectangular, "
                                  "180 by 180 degrees (also normal, square)",
                                  {{"fisheye", Base::ViewCameraKind::Spherical},
                                   {"equirectangular", Base::ViewCameraKind::Normal},
                                   {"spherical", Base::ViewCameraKind::Spherical},
                                   {"radial", Base::ViewCameraKind::Spherical},
                                   {"normal", Base::ViewCameraKind::Normal},
                                   {"square", Base::ViewCameraKind::Normal}});
  addNumber(command, "--eye-clearance,--d1", view.d1,
            "an eye closer than this to a polygon is moved off it (eye offset)");
  addNumber(command, "--grazing-angle,--d2", view.d2,
            "if it looks along the polygon to within this many degrees");
  command.add_option("--segments", view.segments, "least number of pieces of an edge")
      ->type_name("N")
      ->check(CLI::Range(1, 1048576))
      ->capture_default_str();
  addNumber(
      command, "--max-length", view.maxLength,
      "greatest length of a piece in the picture, twice it in the equirectangular one; none if "
      "0 or above 1");
  addNumber(command, "--merge-distance", view.mergeDistance,
            "points of the picture closer than this become one; 0 for the usual 0.001");
  addChoice<Base::ViewDisplayStyle>(command, "--style", view.style, "how the shot is drawn",
                                    {{"filled", Base::ViewDisplayStyle::Filled},
                                     {"outline", Base::ViewDisplayStyle::Outline},
                                     {"half", Base::ViewDisplayStyle::HalfTransparent}});
}

// A number of bytes: digits, and then nothing or one of K, M, G, T, which may have "B" or "iB".
std::int64_t readBytes(const std::string& option, const std::string& text) {
  const std::string units = "KMGT";
  std::int64_t number = 0;
  const char* const last = text.data() + text.size();
  const auto read = std::from_chars(text.data(), last, number);
  const std::string unit(read.ptr, last);
  const size_t power = unit.empty() ? 0 : units.find(unit[0]) + 1;
  const std::string more = unit.empty() ? "" : unit.substr(1);
  const bool isUnit = unit.empty() || (power > 0 && (more.empty() || more == "B" || more == "iB"));
  const auto shift = static_cast<unsigned>(10 * power);
  if (read.ec != std::errc() || number < 0 || !isUnit ||
      number > (std::numeric_limits<std::int64_t>::max() >> shift))
    throw CLI::ValidationError(option + ": \"" + text +
                               "\" is not a size such as 500M, 2G or 0 for any");
  return number << shift;
}

// The limits of a shot. Very many pieces an edge must be asked for together with a limit: by
// mistake they would run for minutes before they come to the usual one.
void addLimits(CLI::App& command, ViewSettings& view) {
  const auto isCount = [](const std::string& text) -> std::string {
    if (!text.empty() && text.find_first_not_of("0123456789") == std::string::npos) return "";
    return "\"" + text + "\" is not a whole number of at least 0";
  };
  const CLI::Option* const points =
      command
          .add_option("--limit-points", view.limitPoints,
                      "most point references of a shot; any number if 0")
          ->check(isCount, "")
          ->type_name("N")
          ->capture_default_str();
  command
      .add_option_function<std::string>(
          "--limit-memory",
          [&view](const std::string& text) {
            view.limitMemory = readBytes("--limit-memory", text);
          },
          "most memory of a shot beside its scene, as 500M or 4G; any if 0")
      ->type_name("SIZE")
      ->default_str("2G");
  command.callback([points, &view] {
    if (view.segments > ManySegments && points->count() == 0)
      throw CLI::ValidationError("--segments: " + std::to_string(view.segments) + " is above " +
                                 std::to_string(ManySegments) +
                                 ": say with --limit-points N how many point references the shot "
                                 "may have");
  });
}

// Of "I/K", with 1 <= I <= K.
Shard readShard(const std::string& text) {
  int number = 0;
  int count = 0;
  int used = 0;
  // Too short a text for a number that an int cannot hold.
  const bool fits = text.size() < 12 &&  // NOLINTNEXTLINE(cert-err34-c)
                    std::sscanf(text.c_str(), "%d/%d%n", &number, &count, &used) == 2 &&
                    static_cast<size_t>(used) == text.size();
  if (!fits || number < 1 || number > count)
    throw CLI::ValidationError("--shard: \"" + text + "\" is not I/K with 1 <= I <= K");
  return {number, count, std::nullopt};
}

// The name of a file of some kind to write.
std::function<std::string(const std::string&)> ending(const std::string& wanted) {
  return [wanted](const std::string& path) -> std::string {
    const bool has = path.size() > wanted.size() &&
                     path.compare(path.size() - wanted.size(), wanted.size(), wanted) == 0;
    return has ? "" : "\"" + path + "\" does not end in " + wanted;
  };
}

std::vector<double> readHeadings(const std::string& text) {
  std::vector<double> headings;
  for (size_t start = 0; start <= text.size();) {
    const size_t comma = std::min(text.find(',', start), text.size());
    double degrees = 0.0;
    if (!readNumber(text.substr(start, comma - start), degrees) || !std::isfinite(degrees))
      throw CLI::ValidationError("--heading: \"" + text + "\" is not a list of degrees D,D,...");
    headings.push_back(degrees);
    start = comma + 1;
  }
  return headings;
}

}  // namespace

void addVector(CLI::App& command, const std::string& name, Vector& target,
               const std::string& help) {
  command
      .add_option_function<std::string>(
          name, [name, &target](const std::string& text) { target = readVector(name, text); }, help)
      ->type_name("X,Y,Z")
      ->default_str(vectorText(target));
}

void readSize(const std::string& text, int& width, int& height) {
  const std::string fault = "--size: \"" + text + "\" is not a size WxH of 1 to " +
                            std::to_string(LargestPicture) + " pixels";
  const auto side = [&fault](const std::string& digits) {
    const bool plain = !digits.empty() && digits.size() < 6 &&
                       digits.find_first_not_of("0123456789") == std::string::npos;
    const int number = plain ? std::stoi(digits) : 0;
    if (number < 1 || number > LargestPicture) throw CLI::ValidationError(fault);
    return number;
  };
  const size_t x = text.find('x');
  if (x == std::string::npos) throw CLI::ValidationError(fault);
  width = side(text.substr(0, x));
  height = side(text.substr(x + 1));
}

std::function<std::string(const std::string&)> numberRange(double low, double high) {
  return [low, high](const std::string& text) -> std::string {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (!text.empty() && *end == '\0' && number >= low && number <= high) return "";
    char range[80];
    std::snprintf(range, sizeof range, "%.12g to %.12g", low, high);
    return "\"" + text + "\" is not a number from " + range;
  };
}

void addCsvSafe(CLI::App& command, bool& isSafe) {
  command.add_flag(
      "--csv-safe", isSafe,
      "put an apostrophe in front of texts in tables that start with = + - @ or a tab, "
      "which spreadsheets take for formulas");
}

void addFile(CLI::App& command, const std::string& name, std::string& target,
             const std::string& help, const std::string& group) {
  command.add_option(name, target, help)->type_name("FILE")->group(group);
}

void addNames(CLI::App& command, const std::string& name, std::string& target,
              const std::string& help, const std::vector<std::string>& names,
              const std::string& group) {
  command.add_option(name, target, help)
      ->check(CLI::IsMember(names))
      ->capture_default_str()
      ->group(group);
}

std::function<std::string(std::string)> otherNames(std::map<std::string, std::string> valueOf) {
  return [valueOf = std::move(valueOf)](const std::string& text) {
    const auto found = valueOf.find(text);
    return found == valueOf.end() ? text : found->second;
  };
}

void addSize(CLI::App& command, std::optional<Size>& target, const std::string& help,
             const std::string& group) {
  command
      .add_option_function<std::string>(
          "--size",
          [&target](const std::string& text) {
            Size size;
            readSize(text, size.width, size.height);
            target = size;
          },
          help)
      ->type_name("WxH")
      ->group(group);
}

void addScene(CLI::App& command, std::string& scene, ImportSettings& import) {
  Tools::addScene(command, scene, import);
}

Vector readVector(const std::string& option, const std::string& text) {
  const std::string expected = option + ": \"" + text + "\" is not three numbers X,Y,Z";
  Vector result{};
  size_t start = 0;
  for (size_t i = 0; i < result.size(); ++i) {
    const size_t comma = text.find(',', start);
    const bool last = i + 1 == result.size();
    if (last != (comma == std::string::npos)) throw CLI::ValidationError(expected);
    if (!readNumber(text.substr(start, comma - start), result[i]))
      throw CLI::ValidationError(expected);
    start = comma + 1;
  }
  return result;
}

RowRange readRowRange(const std::string& option, const std::string& text) {
  RowRange rows;
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, rows.first);
  if (first.ec == std::errc{} && first.ptr != end && *first.ptr == ':') {
    const auto last = std::from_chars(first.ptr + 1, end, rows.last);
    if (last.ec == std::errc{} && last.ptr == end && rows.first >= 1 && rows.first <= rows.last)
      return rows;
  }
  throw CLI::ValidationError(option + ": \"" + text +
                             "\" is not FIRST:LAST, two row numbers from 1 in rising order");
}

namespace {

// What a shot takes wherever it is taken.
void addShotOptions(CLI::App& command, ShotOptions& options) {
  addViewOptions(command, options.view);
  addLimits(command, options.view);
  command.add_option("-o,--output", options.shot, "shot file to write (JSON)")->type_name("FILE");
  command.add_option("--png", options.png, "PNG to write, as show draws it; needs a display")
      ->type_name("FILE");
  command
      .add_option_function<std::string>(
          "--size",
          [&options](const std::string& text) { readSize(text, options.width, options.height); },
          "size of the picture in pixels")
      ->type_name("WxH")
      ->default_str("800x800");
  command.add_flag_callback(
      "--no-check", [&options] { options.view.checkScene = false; },
      "do not look for errors in the scene first");
  command.add_option("--stats", options.stats, "statistics to write (JSON)")->type_name("FILE");
  addCsvSafe(command, options.csvSafe);
  Tools::addShotOptions(command, options);
}

}  // namespace

// A batch has processes in place of threads.
void setShotOptions(CLI::App& command, ShotOptions& options) {
  addScene(command, options.scene, options.import);
  addShotOptions(command, options);
  Tools::addShotSceneOptions(command, options);
  options.view.threads = 0;
  command.add_option("--threads", options.view.threads, "threads; 0 for as many as processors")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
}

void setBatchedShotOptions(CLI::App& command, ShotOptions& options) {
  Tools::addSceneBeforeOthers(command, options.scene, options.import);
  addShotOptions(command, options);
  Tools::addBatchedShotOptions(command, options);
}

void setShowOptions(CLI::App& command, ShowOptions& options) {
  Tools::addSceneBeforeOthers(command, options.scene, options.import);
  command.add_option("SHOT", options.shot, "shot file (JSON); without it the shot is made first")
      ->type_name("");
  addViewOptions(command, options.view);
  addLimits(command, options.view);
}

void setBatchOptions(CLI::App& command, BatchOptions& options) {
  setBatchedShotOptions(command, options.shot);
  command.callback({});  // what must stand together may stand in the table
  command.remove_option(command.get_option("--stats"));  // times are never the same twice
  Tools::addBatchOptions(command, options);
  command.add_option("VIEWS", options.views, "table of views: CSV, or an array (.npy) of eyes")
      ->required()
      ->type_name("");
  command.add_option("--out-dir", options.folder, "folder of all outputs; made if it is missing")
      ->required()
      ->type_name("DIR");
  command.add_option("--jobs", options.jobs, "processes; 0 for as many as processors")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
  command
      .add_option_function<std::string>(
          "--shard",
          [&options](const std::string& text) {
            const Shard shard = readShard(text);
            options.shard.number = shard.number;
            options.shard.count = shard.count;
          },
          "make only every K-th view, from the I-th on")
      ->type_name("I/K")
      ->default_str("1/1");
  command
      .add_option_function<std::string>(
          "--views-range",
          [&options](const std::string& text) {
            options.shard.range = readRowRange("--views-range", text);
          },
          "make only these rows of the table, from 1, both included")
      ->type_name("FIRST:LAST");
  command
      .add_option("--npy", options.npy,
                  "the summary as an array of records to write into the folder, for numpy.load")
      ->check(ending(".npy"), "")
      ->type_name("FILE");
  command.add_flag("--merge", options.merge, "make no view; merge what the shards have made");
  command.footer(
      "Options of shot apply to all views; those of one view are columns of the table. \"{name}\" "
      "in\n"
      "an output file is replaced by the view's name.");
}

void setGridOptions(CLI::App& command, GridOptions& options) {
  addScene(command, options.scene, options.import);
  addNumber(command, "--spacing", options.spacing, "distance between two eyes");
  command.get_option("--spacing")->required();
  command
      .add_option("--height", options.height,
                  "height of the eyes above the ground, or what --above names; needed, but with "
                  "--on")
      ->type_name("H");
  command
      .add_option_function<double>(
          "--ground",
          [&options](const double& z) {
            options.ground = z;
            options.groundGiven = true;
          },
          "the ground's z; without it that of the scene's lowest point")
      ->type_name("Z");
  command.add_option("--look", options.look, "the direction of the pictures' centres")
      ->check(CLI::IsMember({"up", "horizontal", "down"}))
      ->capture_default_str();
  command
      .add_option_function<std::string>(
          "--heading",
          [&options](const std::string& text) { options.headings = readHeadings(text); },
          "degrees from x towards y of each horizontal view, or of the upper edge of others")
      ->type_name("D,D,...")
      ->default_str("0");
  command.add_flag("--skip-inside", options.skipInside,
                   "leave out eyes inside a body, which is not drawn from there");
  command
      .add_option("-o,--output", options.out, "table to write (CSV); standard output without it")
      ->type_name("VIEWS");
  Tools::addGridOptions(command, options);
}

void setJson5Options(CLI::App& command, Json5Options& options) {
  command.add_option("FILE", options.file, "text to convert (JSON5)")->required()->type_name("");
  command.add_option("-o,--output", options.out, "file to write; standard output without it")
      ->type_name("OUT");
}

void addStandardOutput(CLI::App& command) {
  const auto path = [](const std::string& text) {
    if (text != "-") return text;
    const std::string name = takeStandardOutput();
    if (name.empty())
      throw CLI::ValidationError("\"-\" stands for standard output, which has room for one output");
    return name;
  };
  for (const char* const name : {"--output", "--map", "--stats", "--elements", "--svg", "--pdf",
                                 "--eps", "--png", "--png-vector", "--dxf", "--html", "--report"})
    if (CLI::Option* const option = command.get_option_no_throw(name)) option->transform(path);
}

bool viewWasGiven(const CLI::App& command) {
  CLI::App view("", "");
  view.set_help_flag();
  ViewSettings ignored;
  addViewOptions(view, ignored);
  const auto options = view.get_options();
  return std::any_of(options.begin(), options.end(), [&command](const CLI::Option* option) {
    return command.count(option->get_name()) > 0;
  });
}

std::vector<std::string> givenShotOptions(const CLI::App& command) {
  CLI::App shot;
  ShotOptions ignored;
  setBatchedShotOptions(shot, ignored);
  std::vector<std::string> given;
  for (const CLI::Option* option : command.get_options()) {
    if (option->count() == 0 || option->get_lnames().empty()) continue;
    const std::string name = "--" + option->get_lnames()[0];
    if (name == "--help" || shot.get_option_no_throw(name) == nullptr) continue;
    const bool isList = option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    const std::vector<std::string> values = option->results();
    for (auto value = isList ? values.begin() : values.end() - 1; value != values.end(); ++value)
      given.push_back(name + "=" + *value);
  }
  return given;
}

std::vector<std::string> joinedVectorOptions(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  bool join = false;
  for (const std::string& argument : arguments) {
    // Of draw it is a flag, with another option behind it.
    const bool isFlag = join && result.back() == "--north" && argument.rfind("--", 0) == 0;
    const bool isValue = join && !isFlag;
    if (isValue)
      result.back() += "=" + argument;
    else
      result.push_back(argument);
    join = !isValue &&
           (argument == "--eye" || argument == "--forward" || argument == "--up" ||
            argument == "--target" || argument == "--parallel" || argument == "--light" ||
            argument == "--shift" || argument == "--north" || argument == "--plane" ||
            argument == "--latitude" || argument == "--longitude" || argument == "--time-zone");
  }
  return result;
}

}  // namespace Lumivane::Host
