#include "pictures/SvgArcs.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/Drawing.h>

// A drawing as SVG in millimetres. Layers are groups that Inkscape shows as layers. The text is
// appended as it comes: a tree of a hundred thousand paths would cost more than the drawing.
namespace Lumivane::Pictures {
namespace {

constexpr int Decimals = 3;     // of mm
constexpr int ArcDecimals = 6;  // where a rounded end would turn a curve

std::string escaped(const std::string& bytes) {
  std::string text;
  for (const char c : xmlText(bytes)) {
    switch (c) {
      case '&':
        text += "&amp;";
        break;
      case '<':
        text += "&lt;";
        break;
      case '>':
        text += "&gt;";
        break;
      case '"':
        text += "&quot;";
        break;
      default:
        text += c;
    }
  }
  return text;
}

class SvgDrawing {
 public:
  explicit SvgDrawing(const Drawing& theDrawing)
      : drawing(theDrawing),
        numbers(drawing.arcs.empty() ? Decimals : ArcDecimals),
        arcs(drawing.arcs, numbers) {}

  std::string text() {
    const std::string width = numbers.text(drawing.width);
    const std::string height = numbers.text(drawing.height);
    out =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" "
        "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" width=\"" +
        width + "mm\" height=\"" + height + "mm\" viewBox=\"0 0 " + width + ' ' + height +
        "\" fill=\"none\" fill-rule=\"evenodd\" stroke-linecap=\"round\" "
        "stroke-linejoin=\"round\" font-family=\"sans-serif\">\n";
    if (!drawing.title.empty()) out += "<title>" + escaped(drawing.title) + "</title>\n";
    if (drawing.background)
      out += "<rect width=\"" + width + "\" height=\"" + height + "\" fill=\"" +
             svgColor(*drawing.background) + "\"/>\n";
    for (const Drawing::Group& layer : drawing.layers) add(layer);
    out += "</svg>\n";
    return std::move(out);
  }

 private:
  void attribute(const char* name, const std::string& value) {
    out += ' ';
    out += name;
    out += "=\"" + value + '"';
  }

  // NOLINTNEXTLINE(misc-no-recursion): groups are three deep
  void add(const Drawing::Group& group) {
    out += "<g";
    attribute("id", escaped(group.id));
    if (group.isLayer) attribute("inkscape:groupmode", "layer");
    attribute("inkscape:label", escaped(group.name));
    out += ">\n";
    for (const Drawing::Path& path : group.paths) add(path);
    for (const Drawing::Text& text : group.texts) add(text);
    for (const Drawing::Group& inner : group.groups) add(inner);
    out += "</g>\n";
  }

  void add(const Drawing::Path& path) {
    out += "<path";
    if (!path.id.empty()) attribute("id", escaped(path.id));
    if (path.fill) attribute("fill", svgColor(*path.fill));
    if (path.color && path.width > 0.0) {
      attribute("stroke", svgColor(*path.color));
      attribute("stroke-width", numbers.text(path.width));
      if (!path.roundEnds) attribute("stroke-linecap", "butt");
      if (!path.dashes.empty()) attribute("stroke-dasharray", dashes(path));
    }
    VectorPicture::Path shape;
    shape.lines = path.lines;
    shape.closed = path.closed;
    attribute("d", drawing.arcs.empty() ? numbers.data(shape) : arcs.data(path.lines, path.closed));
    if (path.title.empty()) {
      out += "/>\n";
    } else {
      out += "><title>" + escaped(path.title) + "</title></path>\n";
    }
  }

  std::string dashes(const Drawing::Path& path) const {
    std::string text;
    for (const double dash : path.dashes) text += (text.empty() ? "" : " ") + numbers.text(dash);
    return text;
  }

  void add(const Drawing::Text& text) {
    out += "<text";
    attribute("x", numbers.text(text.place.x));
    attribute("y", numbers.text(text.place.y));
    attribute("font-size", numbers.text(text.height));
    attribute("fill", svgColor(text.color));
    if (text.halo > 0.0) {
      attribute("stroke", "#fff");
      attribute("stroke-width", numbers.text(2.0 * text.halo));
      attribute("paint-order", "stroke");
    }
    if (text.anchor > 0.0) attribute("text-anchor", text.anchor < 1.0 ? "middle" : "end");
    out += '>' + escaped(text.text) + "</text>\n";
  }

  const Drawing& drawing;
  SvgNumbers numbers;
  SvgArcs arcs;
  std::string out;
};

}  // namespace

std::string DrawingWriter::svg(const Drawing& drawing) { return SvgDrawing(drawing).text(); }

}  // namespace Lumivane::Pictures
