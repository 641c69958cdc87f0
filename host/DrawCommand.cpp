// Line drawings. A command of its own: `view` measures what one eye sees and draws it as it is,
// while a drawing may have no eye at all, has a page, widths and layers, and asks for what is
// hidden.

#include "DrawOptions.h"
#include "ExactScene.h"
#include "HostError.h"
#include "ImportWork.h"
#include "Options.h"
#include "OutputNames.h"
#include "SceneSource.h"
#include "Stats.h"
#include "StatsNumbers.h"

#include <lumivane/pictures/DrawingPage.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace Lumivane::Host {
namespace {

using Pictures::Drawing;
using Pictures::DrawingOptions;
using Pictures::DrawingProjection;
using Pictures::DrawingWriter;
using Vector = Visibility::Vector;

const char* const FaceMark = "{face}";
constexpr int UsualDpi = 150;

struct Output {
  std::string path;
  std::string bytes;
};

Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector scaled(double s, const Vector& v) { return {s * v[0], s * v[1], s * v[2]}; }

struct Direction {
  const char* name;
  Vector forward;
  Vector up;
};

const std::vector<Direction>& directions() {
  static const std::vector<Direction> all = {
      {"top", {0, 0, -1}, {0, 1, 0}},    {"plan", {0, 0, -1}, {0, 1, 0}},
      {"bottom", {0, 0, 1}, {0, -1, 0}}, {"front", {0, 1, 0}, {0, 0, 1}},
      {"back", {0, -1, 0}, {0, 0, 1}},   {"left", {1, 0, 0}, {0, 0, 1}},
      {"right", {-1, 0, 0}, {0, 0, 1}},  {"isometric", {-1, 1, -1}, {0, 0, 1}}};
  return all;
}

void setParallel(const DrawOptions& options, DrawingOptions& drawing) {
  drawing.projection = DrawingProjection::Parallel;
  for (const Direction& direction : directions())
    if (options.parallel == direction.name) {
      drawing.forward = direction.forward;
      if (!options.upGiven) drawing.up = direction.up;
      return;
    }
  if (options.parallel.find(',') == std::string::npos)
    throw ArgumentError("--parallel", "\"" + options.parallel +
                                          "\" is none of top, bottom, front, back, left, right, "
                                          "isometric and X,Y,Z");
  try {
    drawing.forward = readVector("--parallel", options.parallel);
  } catch (const std::exception&) {
    throw ArgumentError("--parallel", "\"" + options.parallel + "\" is not three numbers X,Y,Z");
  }
}

Vector forwardOf(const DrawOptions& options) {
  if (!options.target) return options.drawing.forward;
  Vector forward{};
  for (std::size_t i = 0; i < forward.size(); ++i)
    forward[i] = (*options.target)[i] - options.drawing.eye[i];
  if (forward == Vector{})
    throw HostError("--target", "is where the eye stands: name another point to look at");
  return forward;
}

// Looks level in the same direction, and shifts the window to where it was looked at.
void setUpright(DrawingOptions& drawing) {
  const double square = dot(drawing.up, drawing.up);
  const double height = square > 0.0 ? dot(drawing.forward, drawing.up) / square : 0.0;
  Vector level = drawing.forward;
  for (std::size_t i = 0; i < level.size(); ++i) level[i] -= height * drawing.up[i];
  const double length = std::sqrt(dot(level, level));
  if (!(length > 1e-6 * std::sqrt(dot(drawing.forward, drawing.forward))))
    throw HostError("--upright", "needs a look that is not straight up or down");
  const double tangent = height * std::sqrt(square) / length;
  const double half = std::tan(drawing.fieldOfView * 0.008726646259971648);
  drawing.shift = {0.0, tangent * drawing.aspect / (2.0 * half)};
  drawing.forward = level;
}

DrawingProjection projectionOf(const DrawOptions& options) {
  for (const Pictures::DrawingProjectionName& entry : Pictures::drawingProjections())
    if (options.projection == entry.name) return entry.projection;
  return DrawingProjection::Perspective;
}

bool isCube(const DrawOptions& options) { return options.projection == "cube"; }

DrawingOptions drawingOf(const DrawOptions& options) {
  DrawingOptions drawing = options.drawing;
  drawing.title = titleOf(options.scene, options.import);
  const int dpi = options.dpi > 0 ? options.dpi : UsualDpi;
  // A tenth of a pixel.
  if (!options.png.empty()) drawing.flatness = std::min(drawing.flatness, 2.54 / dpi);
  if (!options.aspectGiven && drawing.page) {
    const double width = (*drawing.page)[0] - 2.0 * drawing.margin;
    const double height = (*drawing.page)[1] - 2.0 * drawing.margin;
    if (width > 0.0 && height > 0.0) drawing.aspect = width / height;
  }
  if (!options.parallel.empty()) {
    setParallel(options, drawing);
    return drawing;
  }
  drawing.projection = projectionOf(options);
  drawing.forward = forwardOf(options);
  if (drawing.projection == DrawingProjection::Parallel) return drawing;
  if (options.upright) setUpright(drawing);
  return drawing;
}

// Whether anything but the page is asked for.
bool isDrawn(const DrawOptions& options) {
  return !options.svg.empty() || !options.pdf.empty() || !options.png.empty() ||
         !options.dxf.empty() || !options.stats.empty();
}

void checkOptions(const DrawOptions& options) {
  const bool isParallel = !options.parallel.empty() || options.projection == "parallel";
  if (!options.parallel.empty() && !options.projection.empty() && options.projection != "parallel")
    throw ArgumentError("--parallel", "is another projection than --projection " +
                                          options.projection + ": leave one of them out");
  if (!isParallel && !options.eyeGiven)
    throw ArgumentError("--eye", "is needed, but for parallel projections (--parallel)");
  if (!isParallel && options.drawing.scale)
    throw ArgumentError("--scale", "is one of parallel projections alone (--parallel)");
  if (!isDrawn(options) && options.html.empty())
    throw ArgumentError("--svg", "or --pdf, --png, --dxf, --html or --stats is needed");
  if (!isCube(options)) return;
  for (const std::string& path : {options.svg, options.pdf, options.png, options.dxf})
    if (!path.empty() && path.find(FaceMark) == std::string::npos)
      throw ArgumentError(path, "has no {face} in its name, which a cube's six pictures need");
}

std::string named(std::string path, const std::string& face) {
  const size_t at = path.find(FaceMark);
  if (at != std::string::npos) path.replace(at, std::string(FaceMark).size(), face);
  return path;
}

const std::vector<std::string>& cubeFaces() {
  static const std::vector<std::string> names = {"front", "right", "back", "left", "up", "down"};
  return names;
}

void checkOutputs(const DrawOptions& options) {
  OutputNames names(sourceFiles(options.scene, options.import));
  names.add("--stats", options.stats);
  names.add("--html", options.html);
  const std::vector<std::string> faces =
      isCube(options) ? cubeFaces() : std::vector<std::string>{""};
  for (const std::string& face : faces)
    for (const auto& [option, path] :
         {std::make_pair("--svg", options.svg), std::make_pair("--pdf", options.pdf),
          std::make_pair("--png", options.png), std::make_pair("--dxf", options.dxf)})
      names.add(option, named(path, face));
}

// The six looks of a cube, in the order of their names.
std::vector<DrawingOptions> cubeLooks(DrawingOptions drawing) {
  drawing.fieldOfView = 90.0;
  drawing.aspect = 1.0;
  drawing.shift = {0.0, 0.0};
  const Vector forward =
      scaled(1.0 / std::sqrt(dot(drawing.forward, drawing.forward)), drawing.forward);
  Vector right = cross(forward, drawing.up);
  if (!(dot(right, right) > 1e-12 * dot(drawing.up, drawing.up)))
    throw HostError("--up", "is along the direction of sight: a cube needs another one");
  right = scaled(1.0 / std::sqrt(dot(right, right)), right);
  const Vector up = cross(right, forward);
  std::vector<DrawingOptions> looks;
  for (const auto& [look, top] :
       {std::make_pair(forward, up), std::make_pair(right, up),
        std::make_pair(scaled(-1.0, forward), up), std::make_pair(scaled(-1.0, right), up),
        std::make_pair(up, scaled(-1.0, forward)), std::make_pair(scaled(-1.0, up), forward)}) {
    looks.push_back(drawing);
    looks.back().forward = look;
    looks.back().up = top;
  }
  return looks;
}

void addOutputs(const DrawOptions& options, const Drawing& drawing, const std::string& face,
                std::vector<Output>& outputs) {
  if (!options.svg.empty())
    outputs.push_back({named(options.svg, face), DrawingWriter::svg(drawing)});
  if (!options.pdf.empty())
    outputs.push_back({named(options.pdf, face), DrawingWriter::pdf(drawing)});
  if (!options.png.empty())
    outputs.push_back({named(options.png, face),
                       DrawingWriter::png(drawing, options.dpi > 0 ? options.dpi : UsualDpi)});
  if (!options.dxf.empty())
    outputs.push_back({named(options.dxf, face), DrawingWriter::dxf(drawing)});
}

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// What took how long.
struct DrawSeconds {
  double read = 0.0;
  double index = 0.0;
  double draw = 0.0;
  double write = 0.0;
};

std::string statsText(const Drawing::Counts& counts, const DrawSeconds& seconds) {
  Jzon::Node times = Jzon::object();
  times.add("read", numberNode(seconds.read));
  times.add("index", numberNode(seconds.index));
  times.add("draw", numberNode(seconds.draw));
  times.add("write", numberNode(seconds.write));
  Jzon::Node lines = Jzon::object();
  for (std::size_t kind = 0; kind < Pictures::LineKindCount; ++kind)
    lines.add(Pictures::lineKindName(static_cast<Pictures::LineKind>(kind)),
              numberNode(counts.lines[kind]));
  Jzon::Node root = Jzon::object();
  root.add("seconds", times);
  root.add("cells", numberNode(counts.cells));
  root.add("lines", lines);
  root.add("paths", numberNode(counts.paths));
  root.add("drawn_mm", numberNode(counts.drawn));
  root.add("travel_mm", numberNode(counts.travel));
  root.add("peak_memory_bytes", numberNode(peakMemoryBytes()));
  return jsonText(root);
}

void add(const Drawing::Counts& more, Drawing::Counts& sum) {
  sum.cells += more.cells;
  for (std::size_t kind = 0; kind < Pictures::LineKindCount; ++kind)
    sum.lines[kind] += more.lines[kind];
  sum.paths += more.paths;
  sum.drawn += more.drawn;
  sum.travel += more.travel;
}

Drawing drawn(const std::string& scene, const Visibility::SceneIndex& index,
              const Pictures::DrawingColors& colors, const DrawingOptions& options) {
  try {
    return Pictures::drawScene(index, colors, options);
  } catch (const std::invalid_argument& error) {
    throw HostError("the drawing", error.what());
  } catch (const std::runtime_error& error) {
    throw HostError(scene, error.what());
  }
}

// The drawing that is asked for, then what the eye sees if that is another one, then all named
// parallel projections.
std::vector<Pictures::DrawingView> pageViews(const DrawOptions& options,
                                             const DrawingOptions& drawing) {
  std::vector<Pictures::DrawingView> views;
  const bool isParallel = drawing.projection == DrawingProjection::Parallel;
  const std::string direction = options.parallel.empty() ? "parallel" : options.parallel;
  views.push_back({isParallel ? direction : "the eye", drawing});
  if (isParallel && options.eyeGiven) {
    views.push_back({"the eye", drawing});
    views.back().options.projection = DrawingProjection::Perspective;
    views.back().options.forward = forwardOf(options);
    views.back().options.up = options.drawing.up;
  }
  for (const Direction& other : directions()) {
    const bool isSame = other.forward == drawing.forward && isParallel;
    if (isSame || std::string(other.name) == "plan") continue;
    views.push_back({other.name, drawing});
    views.back().options.projection = DrawingProjection::Parallel;
    views.back().options.forward = other.forward;
    views.back().options.up = other.up;
    views.back().options.exactArcs = false;
  }
  return views;
}

std::string pageOf(const DrawOptions& options, const Visibility::SceneIndex& index,
                   const Pictures::DrawingColors& colors, const DrawingOptions& drawing) {
  try {
    return Pictures::drawingPage(index, colors, pageViews(options, drawing), drawing.title);
  } catch (const std::invalid_argument& error) {
    throw HostError("the drawing", error.what());
  } catch (const std::runtime_error& error) {
    throw HostError(options.scene, error.what());
  }
}

}  // namespace

void runDraw(const DrawOptions& given) {
  checkOptions(given);
  Session::checkReadable(given.scene);
  checkOutputs(given);
  DrawSeconds seconds;
  auto start = std::chrono::steady_clock::now();
  // Kept to the end of the process, which frees all at once.
  static const SourcedScene& source = *new SourcedScene(loadScene(given.scene, given.import));
  seconds.read = secondsSince(start);
  start = std::chrono::steady_clock::now();
  static const Visibility::SceneIndex& index =
      *new Visibility::SceneIndex(sceneIndexOf(given.scene, source));
  seconds.index = secondsSince(start);
  DrawOptions options = given;
  options.drawing.eye = moved(options.drawing.eye, source.eyeShift);
  if (options.target) options.target = moved(*options.target, source.eyeShift);
  const DrawingOptions drawing = drawingOf(options);
  std::vector<DrawingOptions> looks;
  if (isDrawn(options)) looks = isCube(options) ? cubeLooks(drawing) : std::vector{drawing};
  const Pictures::DrawingColors colors(source.scene().scene());
  std::vector<Output> outputs;
  Drawing::Counts counts;
  for (std::size_t i = 0; i < looks.size(); ++i) {
    start = std::chrono::steady_clock::now();
    const Drawing current = drawn(options.scene, index, colors, looks[i]);
    seconds.draw += secondsSince(start);
    start = std::chrono::steady_clock::now();
    addOutputs(options, current, isCube(options) ? cubeFaces()[i] : "", outputs);
    seconds.write += secondsSince(start);
    add(current.counts, counts);
  }
  start = std::chrono::steady_clock::now();
  if (!options.html.empty())
    outputs.push_back({options.html, pageOf(options, index, colors, drawing)});
  seconds.draw += secondsSince(start);
  start = std::chrono::steady_clock::now();
  for (const Output& output : outputs) Session::writeFile(output.path, output.bytes);
  seconds.write += secondsSince(start);
  if (!options.stats.empty()) Session::writeFile(options.stats, statsText(counts, seconds));
}

}  // namespace Lumivane::Host
