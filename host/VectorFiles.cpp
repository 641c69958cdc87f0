#include "VectorFiles.h"

#include "HostError.h"

#include <lumivane/exchange/CairoWriter.h>
#include <lumivane/exchange/SvgWriter.h>
#include <lumivane/exchange/VectorPicture.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/TakenShot.h>

#include <utility>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

using Exchange::CairoWriter;
using Exchange::VectorPicture;

constexpr const char* Group = "Vector pictures (need no display)";

struct Drawn {
  std::string path;
  std::string bytes;
};

std::vector<Drawn> drawn(const VectorFiles& files, const VectorPicture& picture) {
  std::vector<Drawn> result;
  if (!files.svg.empty()) result.push_back({files.svg, Exchange::SvgWriter::write(picture)});
  if (!files.pdf.empty()) result.push_back({files.pdf, CairoWriter::pdf(picture)});
  if (!files.eps.empty()) result.push_back({files.eps, CairoWriter::eps(picture)});
  if (!files.png.empty()) result.push_back({files.png, CairoWriter::png(picture)});
  return result;
}

std::string firstPath(const VectorFiles& files) {
  for (const std::string& path : files.paths())
    if (!path.empty()) return path;
  return "";
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
  command
      .add_flag("--axes", files.axes, "draw the axes of the projection under the vector pictures")
      ->group(Group);
  command
      .add_option("--extent", files.extent,
                  "half the height of the vector pictures; 1.2 shows the ends of the axes")
      ->type_name("NUMBER")
      ->check(CLI::Range(0.001, 1000.0))
      ->capture_default_str()
      ->group(Group);
}

void writeVectorFiles(const VectorFiles& files, const Session::TakenShot& shot,
                      const std::string& title, int width, int height) {
  const std::string first = firstPath(files);
  if (first.empty()) return;
  Exchange::VectorOptions options;
  options.width = width;
  options.height = height;
  options.extent = files.extent;
  options.axes = files.axes ? Exchange::VectorAxes::OfShot : Exchange::VectorAxes::None;
  options.title = title;
  std::vector<Drawn> pictures;
  try {
    pictures = drawn(files, VectorPicture(shot.shot(), options));
  } catch (const std::exception& error) {
    throw HostError(first, std::string("the picture is not drawn: ") + error.what());
  }
  for (const Drawn& picture : pictures) Session::writeFile(picture.path, picture.bytes);
}

}  // namespace Lumivane::Host
