#include "Options.h"

#include "VisibleFile.h"

#ifdef LUMIVANE_HOST_EXCHANGE
#include "ImportOptions.h"
#endif

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

constexpr int LargestPicture = 16384;  // what OpenGL draws at most
const std::vector<std::string> ViewOptionNames = {
    "--eye", "--forward", "--up",       "--camera",     "--property", "--scale",
    "--d1",  "--d2",      "--segments", "--max-length", "--style"};

// The whole text as a number, which may be infinite or not a number.
bool readNumber(const std::string& text, double& number) {
  if (text.empty() || text.find_first_of(" \t\n\v\f\r") != std::string::npos) return false;
  char* end = nullptr;
  number = std::strtod(text.c_str(), &end);
  return *end == '\0';
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

std::string vectorText(const Vector& vector) {
  const auto text = [](double value) { return std::to_string(static_cast<int>(value)); };
  return text(vector[0]) + "," + text(vector[1]) + "," + text(vector[2]);
}

void addVector(CLI::App& command, const std::string& name, Vector& target,
               const std::string& help) {
  command
      .add_option_function<std::string>(
          name, [name, &target](const std::string& text) { target = readVector(name, text); }, help)
      ->type_name("X,Y,Z")
      ->default_str(vectorText(target));
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

void addViewOptions(CLI::App& command, ViewSettings& view) {
  addVector(command, "--eye", view.eye, "where the eye stands");
  addVector(command, "--forward", view.forward, "the direction of the picture's centre");
  addVector(command, "--up", view.up, "the direction of the picture's upper edge");
  addChoice<Base::ViewCameraKind>(
      command, "--camera", view.camera, "round picture or square one",
      {{"spherical", Base::ViewCameraKind::Spherical}, {"normal", Base::ViewCameraKind::Normal}});
  command.add_option("--property", view.property, "number of the property to colour by")
      ->type_name("N");
  command.add_option("--scale", view.scale, "number of the scale to colour by, from 1")
      ->type_name("N");
  addNumber(command, "--d1", view.d1, "an eye closer than this to a polygon is moved off it");
  addNumber(command, "--d2", view.d2, "if it looks along the polygon to within this many degrees");
  command.add_option("--segments", view.segments, "least number of pieces of an edge")
      ->type_name("N")
      ->check(CLI::Range(1, 1048576))
      ->capture_default_str();
  addNumber(command, "--max-length", view.maxLength,
            "greatest length of a piece in the picture; 0 for no limit");
  addChoice<Base::ViewDisplayStyle>(command, "--style", view.style, "how the shot is drawn",
                                    {{"filled", Base::ViewDisplayStyle::Filled},
                                     {"outline", Base::ViewDisplayStyle::Outline},
                                     {"half", Base::ViewDisplayStyle::HalfTransparent}});
}

void readSize(const std::string& text, int& width, int& height) {
  const CLI::ValidationError error("--size: \"" + text + "\" is not a size WxH of 1 to " +
                                   std::to_string(LargestPicture) + " pixels");
  const auto side = [&error](const std::string& digits) {
    const bool plain = !digits.empty() && digits.size() < 6 &&
                       digits.find_first_not_of("0123456789") == std::string::npos;
    const int number = plain ? std::stoi(digits) : 0;
    if (number < 1 || number > LargestPicture) throw error;
    return number;
  };
  const size_t x = text.find('x');
  if (x == std::string::npos) throw error;
  width = side(text.substr(0, x));
  height = side(text.substr(x + 1));
}

#ifdef LUMIVANE_HOST_EXCHANGE
constexpr const char* SceneHelp = "scene file (JSON), mesh or city model";
#else
constexpr const char* SceneHelp = "scene file (JSON)";
#endif

void addScene(CLI::App& command, std::string& scene, ImportSettings& import) {
  command.add_option("SCENE", scene, SceneHelp)->required()->type_name("");
#ifdef LUMIVANE_HOST_EXCHANGE
  addImportSettings(command, import);
#else
  static_cast<void>(import);
#endif
}

#ifdef LUMIVANE_HOST_MEASURES
void addVisible(CLI::App& command, std::string& visible) {
  command
      .add_option("--visible", visible,
                  "what is visible of every object, face and region, to write (.csv or .json)")
      ->check(visibleFileFault, "")
      ->type_name("FILE");
}
#endif

}  // namespace

void setShotOptions(CLI::App& command, ShotOptions& options) {
  addScene(command, options.scene, options.import);
  addViewOptions(command, options.view);
  command.add_option("-o,--output", options.shot, "shot file to write (JSON)")->type_name("FILE");
  command.add_option("--png", options.png, "picture to write")->type_name("FILE");
  command
      .add_option_function<std::string>(
          "--size",
          [&options](const std::string& text) { readSize(text, options.width, options.height); },
          "size of the picture in pixels")
      ->type_name("WxH")
      ->default_str("800x800");
  command.add_flag("--no-check", options.noCheck, "do not look for errors in the scene first");
  command.add_option("--stats", options.stats, "statistics to write (JSON)")->type_name("FILE");
#ifdef LUMIVANE_HOST_MEASURES
  addVisible(command, options.visible);
#endif
#ifdef LUMIVANE_HOST_EXCHANGE
  setVectorOptions(command, options.vector);
#endif
}

void setShowOptions(CLI::App& command, ShowOptions& options) {
  addScene(command, options.scene, options.import);
  command.add_option("SHOT", options.shot, "shot file (JSON); without it the shot is made first")
      ->type_name("");
  addViewOptions(command, options.view);
}

void setJson5Options(CLI::App& command, Json5Options& options) {
  command.add_option("FILE", options.file, "text to convert (JSON5)")->required()->type_name("");
  command.add_option("-o,--output", options.out, "file to write; standard output without it")
      ->type_name("OUT");
}

bool viewWasGiven(const CLI::App& command) {
  return std::any_of(ViewOptionNames.begin(), ViewOptionNames.end(),
                     [&command](const std::string& name) { return command.count(name) > 0; });
}

std::vector<std::string> joinedVectorOptions(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  bool join = false;
  for (const std::string& argument : arguments) {
    if (join)
      result.back() += "=" + argument;
    else
      result.push_back(argument);
    join = !join && (argument == "--eye" || argument == "--forward" || argument == "--up");
  }
  return result;
}

}  // namespace Lumivane::Host
