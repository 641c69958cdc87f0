// All pictures are made in memory before the first file is written, so that either all can be drawn
// or nothing is there.

#include "VectorFiles.h"

#include "ExactScene.h"
#include "HostError.h"
#include "ShotShares.h"

#include <lumivane/measure/ShareClasses.h>
#include <lumivane/measure/ShotAudit.h>
#include <lumivane/pictures/CairoWriter.h>
#include <lumivane/pictures/HtmlPage.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/utils/StageTimes.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

using Pictures::CairoWriter;
using Pictures::VectorPicture;

constexpr const char* Group = "Vector pictures (need no display)";

constexpr int AllProcessors = 0;
constexpr double PageExtent = 1.02;  // so that no line of the rim is cut

// Why a text is no extent; empty if it is one. A range check of the parser would take "nan".
std::string extentFault(const std::string& text) {
  char* end = nullptr;
  const double extent = std::strtod(text.c_str(), &end);
  const bool isNumber = !text.empty() && *end == '\0';
  return isNumber && extent >= 0.001 && extent <= 1000.0
             ? ""
             : "\"" + text + "\" is not a number of 0.001 to 1000";
}

struct Drawn {
  std::string path;
  std::string bytes;
};

std::vector<Drawn> drawn(const VectorFiles& files, Shot::Shot2d& shot,
                         const Pictures::VectorOptions& options) {
  std::vector<Drawn> result;
  if (files.svg.empty() && files.pdf.empty() && files.eps.empty() && files.png.empty()) return {};
  const VectorPicture picture(shot, options);
  if (!files.svg.empty()) result.push_back({files.svg, Pictures::SvgWriter::write(picture)});
  if (!files.pdf.empty()) result.push_back({files.pdf, CairoWriter::pdf(picture)});
  if (!files.eps.empty()) result.push_back({files.eps, CairoWriter::eps(picture)});
  if (!files.png.empty()) result.push_back({files.png, CairoWriter::png(picture)});
  return result;
}

struct PagedShot {
  const Session::TakenShot& shot;
  ShotShares& shares;
  const Measure::ShotAudit* audit;
};

void addToPage(Pictures::HtmlPage& page, const PagedShot& paged, Pictures::VectorOptions options,
               const Visibility::MapShares& exact, const Measure::ShareClasses& classes) {
  options.extent = std::max(options.extent, PageExtent);
  page.add(VectorPicture(paged.shot.shot(), options), paged.shares.get(), &exact, classes);
  if (paged.audit != nullptr) page.addAudit(*paged.audit, options);
}

// From where the shot was taken, which may be a little off from where it was to be taken: so the
// two differ in nothing but the engine.
Visibility::MapShares exactShares(const ExactScene& scene, Session::ViewSettings view,
                                  const Session::TakenShot& shot) {
  view.eye = shot.eye();
  return scene.look(view).shares;
}

Session::ViewSettings withOtherCamera(Session::ViewSettings view) {
  switch (view.camera) {
    case Base::ViewCameraKind::Undefined:
    case Base::ViewCameraKind::Normal:
      view.camera = Base::ViewCameraKind::Spherical;
      break;
    case Base::ViewCameraKind::Spherical:
      view.camera = Base::ViewCameraKind::Normal;
      break;
  }
  return view;
}

// The statistics report the stages of the first shot alone.
Session::TakenShot otherShot(Session::LoadedScene& scene, const Session::ViewSettings& view) {
  Utils::StageTimes::enable(false);
  return scene.take(withOtherCamera(view));
}

std::string pageText(Session::LoadedScene& scene, const Session::ViewSettings& view,
                     const PagedShot& paged, const Pictures::VectorOptions& options, bool both) {
  Pictures::HtmlPage page(options.title);
  const ExactScene exactScene(scene.name(), scene);
  const Visibility::MapShares exact = exactShares(exactScene, view, paged.shot);
  const Measure::ShareClasses classes(scene);
  addToPage(page, paged, options, exact, classes);
  if (!both) return page.text();
  const Session::TakenShot other = otherShot(scene, view);
  ShotShares othersShares(other);
  std::optional<Measure::ShotAudit> othersAudit;
  if (paged.audit != nullptr)
    othersAudit.emplace(other, exactScene.sceneIndex(), AllProcessors, Measure::WrongParts::Kept);
  addToPage(page, {other, othersShares, othersAudit ? &*othersAudit : nullptr}, options, exact,
            classes);
  return page.text();
}

std::string firstPath(const VectorFiles& files) {
  for (const auto& file : files.files())
    if (!file.second.empty()) return file.second;
  return "";
}

Pictures::VectorOptions optionsOf(const VectorFiles& files, const std::string& title, int width,
                                  int height) {
  Pictures::VectorOptions options;
  options.width = width;
  options.height = height;
  options.extent = files.extent;
  options.axes = files.axes ? Pictures::VectorAxes::OfShot : Pictures::VectorAxes::None;
  options.title = title;
  return options;
}

}  // namespace

void setVectorOptions(CLI::App& command, VectorFiles& files) {
  const std::pair<const char*, std::pair<std::string*, const char*>> outputs[] = {
      {"--svg", {&files.svg, "SVG to write: one path per region, with object, face and region"}},
      {"--pdf", {&files.pdf, "PDF to write"}},
      {"--eps", {&files.eps, "encapsulated PostScript to write"}},
      {"--png-vector", {&files.png, "PNG to write, with smooth edges"}}};
  for (const auto& [name, output] : outputs)
    command.add_option(name, *output.first, output.second)->type_name("FILE")->group(Group);
  auto* const html =
      command
          .add_option("--html", files.html,
                      "page to explore the shot in a browser, with what is visible of each object")
          ->type_name("FILE")
          ->group(Group);
  command.add_flag("--html-both", files.htmlBoth, "the page has the shot of the other camera too")
      ->needs(html)
      ->group(Group);
  command
      .add_flag("--axes", files.axes, "draw the axes of the projection under the vector pictures")
      ->group(Group);
  command
      .add_option("--extent", files.extent,
                  "half the height of the vector pictures; 1.2 shows the ends of the axes")
      ->type_name("NUMBER")
      ->check(extentFault, "")
      ->capture_default_str()
      ->group(Group);
}

void writeVectorFiles(const VectorFiles& files, Session::LoadedScene& scene,
                      const Session::ViewSettings& view, const Session::TakenShot& shot,
                      ShotShares& shares, const Measure::ShotAudit* audit, const std::string& title,
                      int width, int height) {
  const std::string first = firstPath(files);
  if (first.empty()) return;
  const Pictures::VectorOptions options = optionsOf(files, title, width, height);
  std::vector<Drawn> pictures;
  try {
    pictures = drawn(files, shot.shot(), options);
    if (!files.html.empty())
      pictures.push_back(
          {files.html, pageText(scene, view, {shot, shares, audit}, options, files.htmlBoth)});
  } catch (const HostError&) {
    throw;
  } catch (const std::exception& error) {
    throw HostError(first, std::string("the picture is not drawn: ") + error.what());
  }
  for (const Drawn& picture : pictures) Session::writeFile(picture.path, picture.bytes);
}

}  // namespace Lumivane::Host
