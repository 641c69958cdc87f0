#include "kernel/DisplayText.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include <pugixml.hpp>

// A picture as an SVG document. pugixml builds the tree; numbers are written here, without a
// locale, in as few decimals as the picture's size needs.
namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;
using Path = VectorPicture::Path;
using Region = VectorPicture::Region;
using Surface = VectorPicture::Surface;

constexpr int OpacityDecimals = 3;

SvgNumbers numbersFor(const VectorPicture& picture, const SvgWriter::Options& options) {
  if (options.decimals == -1) return SvgNumbers::forHeight(picture.height());
  if (options.decimals < 0 || options.decimals > 6)
    throw std::invalid_argument("an SVG has 0 to 6 decimals, not " +
                                std::to_string(options.decimals));
  return SvgNumbers(options.decimals);
}

class Document {
 public:
  Document(const VectorPicture& source, const SvgWriter::Options& writerOptions)
      : picture(source),
        options(writerOptions),
        numbers(numbersFor(source, writerOptions)),
        opacities(OpacityDecimals) {
    svg = document.append_child("svg");
    svg.append_attribute("xmlns") = "http://www.w3.org/2000/svg";
    svg.append_attribute("width") = picture.width();
    svg.append_attribute("height") = picture.height();
    const std::string size =
        "0 0 " + std::to_string(picture.width()) + " " + std::to_string(picture.height());
    svg.append_attribute("viewBox") = size.c_str();
    svg.append_attribute("role") = "img";
  }

  std::string text() {
    if (!picture.title().empty())
      svg.append_child("title").text() = xmlText(picture.title()).c_str();
    if (picture.background()) addBackground(*picture.background());
    addPaths("axes", picture.axes());
    addPaths("underlay", picture.underlay());
    pugi::xml_node content = addGroup(svg, picture.content().c_str());
    for (const Surface& surface : picture.surfaces()) addSurface(content, surface);
    addPaths("lines", picture.lines());
    return saved();
  }

 private:
  std::string saved() const {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    unsigned flags = pugi::format_indent;
    if (!options.declaration) flags |= pugi::format_no_declaration;
    document.save(stream, " ", flags, pugi::encoding_utf8);
    return stream.str();
  }

  void setColor(pugi::xml_node node, const char* name, const Color& color) const {
    node.append_attribute(name) = svgColor(color).c_str();
    if (color.opacity == 1.0) return;
    node.append_attribute((std::string(name) + "-opacity").c_str()) =
        opacities.text(color.opacity).c_str();
  }

  void setPen(pugi::xml_node node, const VectorPicture::Pen& pen) const {
    setColor(node, "stroke", pen.color);
    if (pen.width != 1.0) node.append_attribute("stroke-width") = numbers.text(pen.width).c_str();
    if (!pen.roundEnds) node.append_attribute("stroke-linecap") = "butt";
    if (pen.dashes.empty()) return;
    std::string dashes;
    for (const double length : pen.dashes)
      dashes += (dashes.empty() ? "" : " ") + numbers.text(length);
    node.append_attribute("stroke-dasharray") = dashes.c_str();
  }

  pugi::xml_node addGroup(pugi::xml_node parent, const char* name) const {
    pugi::xml_node group = parent.append_child("g");
    group.append_attribute("id") = (options.idPrefix + name).c_str();
    group.append_attribute("fill") = "none";
    group.append_attribute("stroke-linejoin") = "round";
    group.append_attribute("stroke-linecap") = "round";
    return group;
  }

  void addBackground(const Color& color) {
    pugi::xml_node node = svg.append_child("rect");
    node.append_attribute("width") = "100%";
    node.append_attribute("height") = "100%";
    setColor(node, "fill", color);
  }

  // A group of paths that belong to no region and do not answer to the pointer.
  void addPaths(const char* name, const std::vector<Path>& paths) {
    if (paths.empty()) return;
    pugi::xml_node group = addGroup(svg, name);
    if (&paths != &picture.axes()) group.append_attribute("pointer-events") = "none";
    for (const Path& path : paths) addPath(group, path, nullptr, nullptr);
  }

  // The class names the object, so that one style rule reaches all that is drawn of it.
  void addPath(pugi::xml_node parent, const Path& path, const Region* region,
               const char* part) const {
    pugi::xml_node node = parent.append_child("path");
    if (region != nullptr) {
      const std::string name = std::string(part) + " o" + std::to_string(region->objectNumber);
      node.append_attribute("class") = name.c_str();
      node.append_attribute("pointer-events") = "none";
    }
    node.append_attribute("d") = numbers.data(path).c_str();
    if (path.fill) setColor(node, "fill", *path.fill);
    if (path.pen) setPen(node, *path.pen);
  }

  void addSurface(pugi::xml_node shot, const Surface& surface) const {
    pugi::xml_node layer = shot;
    if (surface.opacity < 1.0) {
      layer = shot.append_child("g");
      layer.append_attribute("opacity") = opacities.text(surface.opacity).c_str();
    }
    for (const Path& path : surface.merged)
      addPath(layer, path, &surface.regions.front(), "ground");
    for (const Region& region : surface.regions) {
      const bool whole = layer == shot && (region.edges.closed || !region.interior.fill);
      addRegion(layer, region, whole);
      if (!region.spread.lines.empty()) addPath(layer, region.spread, &region, "spread");
      if (!whole && layer == shot) addEdges(shot, region);
    }
    if (layer == shot) return;
    for (const Region& region : surface.regions) addEdges(shot, region);
  }

  void addEdges(pugi::xml_node parent, const Region& region) const {
    if (!region.edges.lines.empty()) addPath(parent, region.edges, &region, "edges");
  }

  // The one path of a region. Docking edges cut its outline, but not what it fills: only where
  // nothing is filled or nothing is cut does the path hold the edges too.
  void addRegion(pugi::xml_node parent, const Region& region, bool withEdges) const {
    pugi::xml_node node = parent.append_child("path");
    node.append_attribute("id") = (options.idPrefix + "r" + std::to_string(region.number)).c_str();
    const bool onlyEdges = withEdges && !region.edges.lines.empty();
    node.append_attribute("class") = ("o" + std::to_string(region.objectNumber)).c_str();
    const std::string object = xmlText(Kernel::idText(region.objectId));
    node.append_attribute("data-object") = object.c_str();
    node.append_attribute("data-face") = region.faceNumber;
    node.append_attribute("data-region") = region.sourceRegionNumber;
    node.append_attribute("d") = numbers.data(onlyEdges ? region.edges : region.interior).c_str();
    if (region.interior.fill) setColor(node, "fill", *region.interior.fill);
    if (onlyEdges && region.edges.pen) setPen(node, *region.edges.pen);
    if (!options.titles) return;
    if (region.objectNumber == 0) {
      node.append_child("title").text() = "sky";
      return;
    }
    const std::string title = object + ", face " + std::to_string(region.faceNumber) + ", region " +
                              std::to_string(region.sourceRegionNumber);
    node.append_child("title").text() = title.c_str();
  }

  const VectorPicture& picture;
  const SvgWriter::Options& options;
  SvgNumbers numbers;
  SvgNumbers opacities;
  pugi::xml_document document;
  pugi::xml_node svg;
};

}  // namespace

std::string SvgWriter::write(const VectorPicture& picture, const Options& options) {
  return Document(picture, options).text();
}

std::string SvgWriter::write(const VectorPicture& picture) { return write(picture, Options()); }

}  // namespace Lumivane::Pictures
