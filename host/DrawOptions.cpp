#include "DrawOptions.h"

#include "OptionParts.h"
#include "Options.h"
#include "ToolParts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include <CLI/CLI.hpp>

// The options of `lumivane draw`. Texts become values here, so that every fault is one line with
// the option's name before the scene is read.
namespace Lumivane::Host {
namespace {

using Pictures::DrawingFill;
using Pictures::DrawingGroups;
using Pictures::DrawingLabels;
using Pictures::LineKind;

const char* const ViewGroup = "What is drawn";
const char* const LineGroup = "Lines and fills";
const char* const PageGroup = "Page";
const char* const FileGroup = "Files";

[[noreturn]] void refuse(const std::string& option, const std::string& text,
                         const std::string& wanted) {
  throw CLI::ValidationError(option + ": \"" + text + "\" is not " + wanted);
}

double readNumber(const std::string& option, const std::string& text, const std::string& wanted) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const bool isNumber =
      !text.empty() && *end == '\0' && text.find_first_of(" \t\n\v\f\r") == std::string::npos;
  if (!isNumber || !std::isfinite(number)) refuse(option, text, wanted);
  return number;
}

// Two numbers with a letter between them.
std::pair<double, double> readPair(const std::string& option, const std::string& text, char between,
                                   const std::string& wanted) {
  const size_t at = text.find(between);
  if (at == std::string::npos) refuse(option, text, wanted);
  return {readNumber(option, text.substr(0, at), wanted),
          readNumber(option, text.substr(at + 1), wanted)};
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

Pictures::Drawing::Color readColor(const std::string& option, const std::string& text) {
  std::array<int, 6> digits{};
  const bool isLong = text.size() == 7;
  bool proper = !text.empty() && text[0] == '#' && (isLong || text.size() == 4);
  for (size_t i = 0; proper && i < 6; ++i) {
    digits[i] = hexDigit(text[isLong ? i + 1 : i / 2 + 1]);
    proper = digits[i] >= 0;
  }
  if (!proper) refuse(option, text, "a colour #rgb or #rrggbb");
  return {16 * digits[0] + digits[1], 16 * digits[2] + digits[3], 16 * digits[4] + digits[5], 1.0};
}

// KIND=MM,KIND=MM,...
void readWidths(const std::string& text, Pictures::DrawingOptions& drawing) {
  const std::string wanted =
      "a list like outline=0.5,crease=0.25 of outline, silhouette, crease, inner, crossing, field "
      "and hidden, with widths of 0 to 100 mm";
  size_t start = 0;
  while (start <= text.size()) {
    const size_t end = std::min(text.find(',', start), text.size());
    const std::string entry = text.substr(start, end - start);
    const size_t equals = entry.find('=');
    bool known = false;
    for (size_t kind = 0; kind < Pictures::LineKindCount && equals != std::string::npos; ++kind) {
      if (entry.substr(0, equals) != Pictures::lineKindName(static_cast<LineKind>(kind))) continue;
      const double width = readNumber("--widths", entry.substr(equals + 1), wanted);
      if (!(width >= 0.0 && width <= 100.0)) refuse("--widths", text, wanted);
      drawing.widths[kind] = width;
      known = true;
    }
    if (!known) refuse("--widths", text, wanted);
    start = end + 1;
  }
}

template <class Value>
void addChoice(CLI::App& command, const std::string& name, Value& target, const std::string& help,
               const std::vector<std::pair<std::string, Value>>& choices,
               const std::string& byDefault, const char* group) {
  std::vector<std::string> names;
  for (const auto& choice : choices) names.push_back(choice.first);
  command
      .add_option_function<std::string>(
          name,
          [choices, &target](const std::string& text) {
            for (const auto& choice : choices)
              if (text == choice.first) target = choice.second;
          },
          help)
      ->check(CLI::IsMember(names))
      ->default_str(byDefault)
      ->group(group);
}

void addVector(CLI::App& command, const std::string& name, Visibility::Vector& target,
               const std::string& help, const std::string& byDefault, const char* group) {
  command
      .add_option_function<std::string>(
          name, [name, &target](const std::string& text) { target = readVector(name, text); }, help)
      ->type_name("X,Y,Z")
      ->default_str(byDefault)
      ->group(group);
}

void addLength(CLI::App& command, const std::string& name, double& target, const std::string& help,
               const char* group) {
  command
      .add_option_function<std::string>(
          name,
          [name, &target](const std::string& text) {
            target = readNumber(name, text, "a number of 0 or more");
            if (target < 0.0) refuse(name, text, "a number of 0 or more");
          },
          help)
      ->type_name("NUMBER")
      ->default_str(CLI::detail::to_string(target))
      ->group(group);
}

void addView(CLI::App& command, DrawOptions& options) {
  Pictures::DrawingOptions& drawing = options.drawing;
  std::vector<std::string> names;
  for (const Pictures::DrawingProjectionName& entry : Pictures::drawingProjections())
    names.emplace_back(entry.name);
  names.emplace_back("cube");
  command.add_option("--projection", options.projection, "how what is seen becomes a picture")
      ->transform(otherNames({{"fisheye", "orthographic"}, {"nusselt", "orthographic"}}))
      ->check(CLI::IsMember(names))
      ->default_str("perspective")
      ->group(ViewGroup);
  command
      .add_option("--parallel", options.parallel,
                  "along parallel lines of sight: top, bottom, front (towards north), back, left "
                  "(towards east), right, isometric, or the direction of sight X,Y,Z")
      ->type_name("NAME|X,Y,Z")
      ->group(ViewGroup);
  addVector(command, "--eye", drawing.eye, "where the eye stands", "", ViewGroup);
  addVector(command, "--forward", drawing.forward, "the middle of the picture", "1,0,0", ViewGroup);
  command
      .add_option_function<std::string>(
          "--target",
          [&options](const std::string& text) { options.target = readVector("--target", text); },
          "a point to look at, in place of --forward")
      ->type_name("X,Y,Z")
      ->excludes("--forward")
      ->group(ViewGroup);
  addVector(command, "--up", drawing.up, "the up direction of the picture", "0,0,1", ViewGroup);
  addLength(command, "--fov", drawing.fieldOfView,
            "field of view, degrees: horizontal of a perspective, vertical of a cylinder",
            ViewGroup);
  command
      .add_option_function<std::string>(
          "--shift",
          [&drawing](const std::string& text) {
            const auto shift = readPair("--shift", text, ',', "two numbers X,Y");
            drawing.shift = {shift.first, shift.second};
          },
          "moves the window of a perspective by parts of its width and height")
      ->type_name("X,Y")
      ->group(ViewGroup);
  command
      .add_flag("--upright", options.upright,
                "looks level and shifts the window instead, so that upright edges stay upright")
      ->excludes("--shift")
      ->group(ViewGroup);
  command
      .add_option_function<std::string>(
          "--field", [&drawing](const std::string& text) { drawing.isWhole = text == "sphere"; },
          "of an equirectangular picture: in front, or all around")
      ->check(CLI::IsMember({"hemisphere", "sphere"}))
      ->default_str("hemisphere")
      ->group(ViewGroup);
  command.add_flag("--two-sided", drawing.twoSided, "polygons are seen from behind, too")
      ->group(ViewGroup);
  command.add_option("--threads", drawing.threads, "threads; 0 for as many as processors")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str()
      ->group(ViewGroup);
}

void addLook(CLI::App& command, DrawOptions& options) {
  Pictures::DrawingOptions& drawing = options.drawing;
  command
      .add_option_function<std::string>(
          "--widths", [&drawing](const std::string& text) { readWidths(text, drawing); },
          "widths of lines by their kind, mm; 0 draws none")
      ->type_name("KIND=MM,...")
      ->default_str(
          "outline=0.5,silhouette=0.35,crease=0.25,inner=0,crossing=0.25,field=0.25,hidden=0.18")
      ->group(LineGroup);
  addChoice<bool>(command, "--hidden", drawing.hidden, "how hidden edges and crossings are drawn",
                  {{"none", false}, {"dashed", true}}, "none", LineGroup);
  addLength(command, "--crease-angle", drawing.creaseAngle,
            "edges whose faces have a smaller angle between them, in degrees, are inner ones",
            LineGroup);
  addChoice<DrawingFill>(command, "--fill", drawing.fill, "what surfaces are filled with",
                         {{"none", DrawingFill::None},
                          {"white", DrawingFill::White},
                          {"brush", DrawingFill::Brush},
                          {"class", DrawingFill::Class},
                          {"object", DrawingFill::Object},
                          {"shading", DrawingFill::Shading}},
                         "none", LineGroup);
  addVector(command, "--light", drawing.light, "where light comes from", "-0.5,0.3,1", LineGroup);
  addChoice<DrawingGroups>(command, "--group-by,--layers", drawing.groups,
                           "how paths are grouped; classes are layers",
                           {{"none", DrawingGroups::None},
                            {"class", DrawingGroups::Class},
                            {"object", DrawingGroups::Object},
                            {"face", DrawingGroups::Face}},
                           "object", LineGroup);
  addChoice<DrawingLabels>(
      command, "--labels", drawing.labels, "what is written on objects",
      {{"none", DrawingLabels::None}, {"id", DrawingLabels::Id}, {"class", DrawingLabels::Class}},
      "none", LineGroup);
  addChoice<bool>(command, "--arcs", drawing.exactArcs,
                  "curves in the SVG: chords, or arcs of circles and ellipses, of stereographic "
                  "and orthographic fisheyes",
                  {{"chords", false}, {"exact", true}}, "chords", LineGroup);
  addLength(command, "--text-height", drawing.textHeight, "of labels, mm", LineGroup);
  command
      .add_flag(
          "--strokes", drawing.strokes,
          "for plotters and cutters: lines alone, in long paths, in an order of little travel")
      ->group(LineGroup);
  for (const auto& [name, target, help] :
       {std::make_tuple("--sky", &drawing.sky, "where nothing is seen"),
        std::make_tuple("--background", &drawing.background, "of the page")}) {
    const std::string option = name;
    std::optional<Pictures::Drawing::Color>* const color = target;
    command
        .add_option_function<std::string>(
            option, [option, color](const std::string& text) { *color = readColor(option, text); },
            help)
        ->type_name("#RRGGBB")
        ->group(LineGroup);
  }
}

void addPage(CLI::App& command, DrawOptions& options) {
  Pictures::DrawingOptions& drawing = options.drawing;
  command
      .add_option_function<std::string>(
          "--page", [&drawing](const std::string& text) { drawing.page = readPage(text); },
          "of the paper: A0 to A6, A4-landscape, or width and height in mm; without it as large "
          "as the drawing")
      ->type_name("NAME|WxH")
      ->group(PageGroup);
  addLength(command, "--margin", drawing.margin, "around the drawing, mm", PageGroup);
  addLength(command, "--width", drawing.contentWidth,
            "of the drawing without its margins, mm, where neither --page nor --scale says it",
            PageGroup);
  command
      .add_option_function<std::string>(
          "--scale", [&drawing](const std::string& text) { drawing.scale = readScale(text); },
          "of parallel projections, for scenes in metres")
      ->type_name("1:N")
      ->group(PageGroup);
  command
      .add_option_function<std::string>(
          "--aspect",
          [&options](const std::string& text) {
            options.drawing.aspect =
                readNumber("--aspect", text, "a number above 0, width by height");
            options.aspectGiven = true;
          },
          "width by height of a perspective")
      ->type_name("NUMBER")
      ->default_str("that of the page, or 1.5")
      ->group(PageGroup);
  command.add_flag("--crop", drawing.crop, "the page ends where the drawing does")
      ->group(PageGroup);
  command.add_flag("--scale-bar", drawing.scaleBar, "under a parallel projection")
      ->group(PageGroup);
  command
      .add_flag("--north", drawing.north,
                "an arrow beside a parallel projection, marks at a fisheye; north is y")
      ->group(PageGroup);
  command.add_flag("--legend", drawing.legend, "a list of classes")->group(PageGroup);
  addLength(command, "--rings", drawing.rings, "degrees between circles of a fisheye; 0: none",
            PageGroup);
}

}  // namespace

std::array<double, 2> readPage(const std::string& text) {
  const std::string wanted = "A0 to A6, one of them with -landscape, or WxH in mm";
  const bool isWide = text.size() == 12 && text.substr(2) == "-landscape";
  if ((text.size() == 2 || isWide) && text[0] == 'A' && text[1] >= '0' && text[1] <= '6') {
    double width = 841.0;
    double height = 1189.0;
    for (char size = '0'; size < text[1]; ++size) {
      const double next = std::floor(height / 2.0);
      height = width;
      width = next;
    }
    if (isWide) std::swap(width, height);
    return {width, height};
  }
  const auto [width, height] = readPair("--page", text, 'x', wanted);
  if (!(width > 0.0 && height > 0.0)) refuse("--page", text, wanted);
  return {width, height};
}

double readScale(const std::string& text) {
  const std::string wanted = "a scale like 1:100";
  const auto [paper, scene] = readPair("--scale", text, ':', wanted);
  if (!(paper > 0.0 && scene > 0.0)) refuse("--scale", text, wanted);
  return 1000.0 * paper / scene;
}

void setDrawOptions(CLI::App& command, DrawOptions& options) {
  options.drawing.fill = DrawingFill::None;
  addScene(command, options.scene, options.import);
  command.remove_option(command.get_option("--two-sided"));  // the look itself sees both sides
  addClasses(command, options.import);
  addView(command, options);
  addLook(command, options);
  addPage(command, options);
  for (const auto& [name, target, help] :
       {std::make_tuple("--svg", &options.svg, "SVG to write"),
        std::make_tuple("--pdf", &options.pdf, "PDF to write"),
        std::make_tuple("--png", &options.png, "PNG to write"),
        std::make_tuple("--dxf", &options.dxf, "DXF to write, a layer for each kind of lines"),
        std::make_tuple("--html", &options.html,
                        "web page to write: the drawing in any projection, to be chosen there"),
        std::make_tuple("--stats", &options.stats, "statistics to write (JSON)")})
    command.add_option(name, *target, help)->type_name("FILE")->group(FileGroup);
  command.add_option("--dpi", options.dpi, "dots per inch of the PNG")
      ->type_name("N")
      ->check(CLI::Range(1, 4800))
      ->default_str("150")
      ->needs("--png")
      ->group(FileGroup);
  command.callback([&command, &options] {
    options.eyeGiven = command.count("--eye") > 0;
    options.forwardGiven = command.count("--forward") > 0;
    options.upGiven = command.count("--up") > 0;
  });
}

}  // namespace Lumivane::Host
