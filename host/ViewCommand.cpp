// What one eye sees, exactly. All outputs are made in memory before the first is written.

#include "Commands.h"
#include "ExactScene.h"
#include "HostError.h"
#include "ImportWork.h"
#include "Options.h"
#include "OutputNames.h"
#include "ProgressBar.h"
#include "SceneSource.h"
#include "Stats.h"
#include "StatsNumbers.h"
#include "UnderGroundTest.h"
#include "ViewReport.h"
#include "Warnings.h"

#include <lumivane/pictures/CairoWriter.h>
#include <lumivane/pictures/HtmlPage.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/MapText.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <utility>
#include <vector>

namespace Lumivane::Host {
namespace {

using Pictures::VectorPicture;
using Visibility::MapShares;
using Visibility::VisibleMap;

// Processor time of all threads, in seconds.
struct ViewSeconds {
  double read = 0.0;
  double index = 0.0;
  double look = 0.0;
  double write = 0.0;
};

class ProcessorTimer {
 public:
  explicit ProcessorTimer(double& seconds) : target(seconds), start(std::clock()) {}
  ProcessorTimer(const ProcessorTimer&) = delete;
  ProcessorTimer& operator=(const ProcessorTimer&) = delete;
  ~ProcessorTimer() { target += static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC; }

 private:
  double& target;
  std::clock_t start;
};

struct Output {
  std::string path;
  std::string bytes;
};

std::vector<std::pair<const char*, std::string>> outputsOf(const ViewOptions& options) {
  return {{"--shares", options.shares}, {"--map", options.map},      {"--stats", options.stats},
          {"--svg", options.svg},       {"--pdf", options.pdf},      {"--png-vector", options.png},
          {"--html", options.html},     {"--report", options.report}};
}

void checkOutputs(const ViewOptions& options) {
  OutputNames names(sourceFiles(options.scene, options.import));
  for (const auto& [option, path] : outputsOf(options)) names.add(option, path);
}

// Options that would change nothing are mistakes.
void checkEffects(const ViewOptions& options) {
  checkCsvSafe(options.csvSafe, {options.shares}, "--shares");
  for (const std::string& picture :
       {options.svg, options.pdf, options.png, options.html, options.report})
    if (!picture.empty()) return;
  const ViewOptions usual;
  const char* const ofPicture = options.size                             ? "--size"
                                : options.projection != usual.projection ? "--projection"
                                : options.colorBy != usual.colorBy       ? "--color-by"
                                                                         : nullptr;
  if (ofPicture != nullptr)
    throw ArgumentError(ofPicture,
                        "is that of pictures: name one with --svg, --pdf, --png-vector, "
                        "--html or --report");
}

void checkFinite(const char* option, const Visibility::Vector& vector) {
  for (const double coordinate : vector)
    if (!std::isfinite(coordinate)) throw HostError(option, "is not finite: name numbers that are");
}

// What the look would refuse, too, but by the names of the options.
void checkDirections(const ViewOptions& options) {
  checkFinite("--eye", options.eye);
  checkFinite("--forward", options.forward);
  checkFinite("--up", options.up);
  if (options.target) checkFinite("--target", *options.target);
  if (!options.target && options.forward == Visibility::Vector{})
    throw HostError("--forward", "is zero: name a direction");
}

bool isUnderGround(const ExactScene& scene, const Visibility::Vector& eye) {
  return UnderGroundTest(scene.sceneIndex()).isUnder(eye);
}

Visibility::Field fieldOf(const ViewOptions& options) {
  return options.field == "sphere" ? Visibility::Field::Sphere : Visibility::Field::Hemisphere;
}

Visibility::Vector forwardOf(const ViewOptions& options) {
  if (!options.target) return options.forward;
  Visibility::Vector forward{};
  for (std::size_t i = 0; i < forward.size(); ++i)
    forward[i] = (*options.target)[i] - options.eye[i];
  if (forward == Visibility::Vector{})
    throw HostError("--target", "is where the eye stands: name another point to look at");
  return forward;
}

VisibleMap look(const ViewOptions& options, const ExactScene& scene, ViewSeconds& seconds) {
  const ProcessorTimer timer(seconds.look);
  Visibility::LookOptions how;
  how.field = fieldOf(options);
  how.forward = forwardOf(options);
  how.up = options.up;
  how.twoSided = options.twoSided;
  how.threads = options.threads;
  how.alone = !options.report.empty() || (!options.shares.empty() && hasFractions(options.rows));
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  if (show) how.progress = [&show](double part) { show(100.0 * part); };
  return scene.look(options.eye, how);
}

Pictures::MapPictureOptions pictureOptions(const ViewOptions& options) {
  Pictures::MapPictureOptions result;
  for (const Pictures::MapProjectionName& entry : Pictures::mapProjections())
    if (options.projection == entry.name) result.projection = entry.projection;
  constexpr int Height = 800;
  const double aspect = Pictures::mapAspect(result.projection, fieldOf(options));
  const Size size = options.size ? *options.size : Size{static_cast<int>(Height * aspect), Height};
  result.width = size.width;
  result.height = size.height;
  result.title = titleOf(options.scene, options.import);
  return result;
}

std::string pageOf(const VisibleMap& map, const Pictures::MapColors& colors,
                   Pictures::MapPictureOptions options, const MapShares& shares) {
  Pictures::HtmlPage page(options.title);
  options.extent = 1.02;  // so that no line of the rim is cut
  options.allCells = true;
  page.add(VectorPicture(map, colors, options), map, shares);
  return page.text();
}

Pictures::MapColors colorsOf(const ViewOptions& options, const SourcedScene& source,
                             const VisibleMap& map) {
  if (options.colorBy == "class") return Pictures::MapColors::byClass(map);
  return options.colorBy == "object" ? Pictures::MapColors()
                                     : Pictures::MapColors(source.scene().scene());
}

void addPictures(const ViewOptions& options, const SourcedScene& source, const ExactScene& exact,
                 const VisibleMap& map, const MapShares& shares, EyePlace place,
                 std::vector<Output>& outputs) {
  const bool isDrawn = !options.svg.empty() || !options.pdf.empty() || !options.png.empty();
  if (!isDrawn && options.html.empty() && options.report.empty()) return;
  const Pictures::MapColors colors = colorsOf(options, source, map);
  const Pictures::MapPictureOptions how = pictureOptions(options);
  if (isDrawn) {
    const VectorPicture picture(map, colors, how);
    if (!options.svg.empty()) outputs.push_back({options.svg, Pictures::SvgWriter::write(picture)});
    if (!options.pdf.empty()) outputs.push_back({options.pdf, Pictures::CairoWriter::pdf(picture)});
    if (!options.png.empty()) outputs.push_back({options.png, Pictures::CairoWriter::png(picture)});
  }
  if (!options.html.empty()) outputs.push_back({options.html, pageOf(map, colors, how, shares)});
  if (!options.report.empty())
    outputs.push_back(
        {options.report, viewReport(options, exact, {map, shares, colors, how, place})});
}

void writeOutputs(const ViewOptions& options, const SourcedScene& source, const ExactScene& exact,
                  const VisibleMap& map, const MapShares& shares, EyePlace place,
                  ViewSeconds& seconds) {
  const ProcessorTimer timer(seconds.write);
  std::vector<Output> outputs;
  if (!options.shares.empty())
    outputs.push_back({options.shares, exact.sharesText(options.shares, options.rows,
                                                        options.csvSafe, map, shares)});
  if (!options.map.empty()) outputs.push_back({options.map, Visibility::MapText::mapJson(map)});
  addPictures(options, source, exact, map, shares, place, outputs);
  for (const Output& output : outputs) Session::writeFile(output.path, output.bytes);
}

void writeStats(const ViewOptions& options, const VisibleMap& map, const ViewSeconds& seconds,
                const Jzon::Node& import) {
  if (options.stats.empty()) return;
  Jzon::Node times = Jzon::object();
  times.add("read", numberNode(seconds.read));
  times.add("index", numberNode(seconds.index));
  times.add("look", numberNode(seconds.look));
  times.add("write", numberNode(seconds.write));
  Jzon::Node root = Jzon::object();
  root.add("seconds", times);
  root.add("cells", numberNode(map.cells.size()));
  root.add("edges", numberNode(map.edges.size()));
  root.add("peak_memory_bytes", numberNode(peakMemoryBytes()));
  if (import.isValid()) root.add("import", import);
  Session::writeFile(options.stats, jsonText(root));
}

// What is worth a line on the terminal, where no file was asked for.
void report(const ViewOptions& options, const VisibleMap& map, const MapShares& shares) {
  for (const auto& output : outputsOf(options))
    if (!output.second.empty()) return;
  const auto isSeen = [](const MapShares::Row& row) { return row.share.solidAngle > 0.0; };
  const auto seen = std::count_if(shares.objects().begin(), shares.objects().end(), isSeen);
  const bool looksUp = map.forward[2] > 0.0 && map.forward[0] == 0.0 && map.forward[1] == 0.0;
  if (map.field == Visibility::Field::Hemisphere)
    std::printf("%s %.4f; ", looksUp ? "sky view factor" : "view factor of the sky",
                shares.sky().viewFactor);
  std::printf("the sky takes %.2f %% of the %s's solid angle; %td of %zu objects are seen\n",
              100.0 * shares.sky().solidAngle / map.fieldSolidAngle(), options.field.c_str(), seen,
              shares.objects().size());
}

}  // namespace

void runView(const ViewOptions& options) {
  checkEffects(options);
  checkReport(options);
  checkDirections(options);
  Session::checkReadable(options.scene);
  checkOutputs(options);
  ViewSeconds seconds;
  // Kept to the end of the process, which frees all at once.
  static const SourcedScene& source = *new SourcedScene([&] {
    const ProcessorTimer timer(seconds.read);
    return loadScene(options.scene, options.import);
  }());
  static const ExactScene& exact = *new ExactScene([&] {
    const ProcessorTimer timer(seconds.index);
    return ExactScene(options.scene, source);
  }());
  ViewOptions placed = options;
  placed.eye = moved(options.eye, source.eyeShift);
  if (options.target) placed.target = moved(*options.target, source.eyeShift);
  const bool isInside = !options.twoSided && warnIfInside(options.scene, source, placed.eye);
  const bool isUnder = !options.twoSided && !isInside && isUnderGround(exact, placed.eye);
  if (isUnder) warnOfUnderGround(options.scene);
  static const VisibleMap& map = *new VisibleMap(look(placed, exact, seconds));
  const MapShares shares(map);
  writeOutputs(options, source, exact, map, shares, {isInside, isUnder}, seconds);
  writeStats(options, map, seconds, source.import);
  report(options, map, shares);
}

}  // namespace Lumivane::Host
