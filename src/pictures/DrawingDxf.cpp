// DXF, release 12: the form that every program reads. A document is a list of pairs, a group code
// and a value, each on a line of its own. The libraries for it in Debian stand under licences that
// a library under MIT cannot be linked with.

#include "pictures/SvgText.h"

#include <lumivane/pictures/Drawing.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <string>

namespace Lumivane::Pictures {
namespace {

constexpr int Decimals = 4;  // of mm
constexpr std::size_t LongestName = 31;

std::string layerName(const std::string& id) {
  std::string name;
  for (const char c : id.substr(0, LongestName)) {
    const auto letter = static_cast<unsigned char>(c);
    const bool allowed = letter < 128 && (std::isalnum(letter) != 0 || c == '-' || c == '_');
    name += allowed ? static_cast<char>(std::toupper(letter)) : '_';
  }
  return name;
}

// Release 12 knows no letters beyond ASCII but by their numbers.
std::string asciiText(const std::string& bytes) {
  static const char* const digits = "0123456789ABCDEF";
  const std::string text = xmlText(bytes);
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const auto first = static_cast<unsigned char>(text[i]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 1) {
      result += first < 0x20 ? ' ' : text[i];
    } else {
      unsigned code = first & (0xFFU >> (length + 1));
      for (std::size_t k = 1; k < length && i + k < text.size(); ++k)
        code = code << 6U | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
      result += "\\U+";
      for (int shift = 12; shift >= 0; shift -= 4)
        result += digits[(code >> static_cast<unsigned>(shift)) & 15U];
    }
    i += length;
  }
  return result;
}

class DxfDrawing {
 public:
  explicit DxfDrawing(const Drawing& theDrawing) : drawing(theDrawing), numbers(Decimals) {}

  std::string text() {
    section("HEADER");
    pair(9, "$ACADVER");
    pair(1, "AC1009");
    corner("$EXTMIN", 0.0, 0.0);
    corner("$EXTMAX", drawing.width, drawing.height);
    pair(0, "ENDSEC");
    tables();
    section("ENTITIES");
    for (const Drawing::Group& layer : drawing.layers) add(layer, layerName(layer.id));
    pair(0, "ENDSEC");
    pair(0, "EOF");
    return std::move(out);
  }

 private:
  void pair(int code, const std::string& value) {
    out += std::to_string(code) + '\n' + value + '\n';
  }
  void number(int code, double value) { pair(code, numbers.text(value)); }
  void section(const char* name) {
    pair(0, "SECTION");
    pair(2, name);
  }
  void corner(const char* name, double x, double y) {
    pair(9, name);
    number(10, x);
    number(20, y);
  }

  void tables() {
    section("TABLES");
    pair(0, "TABLE");
    pair(2, "LTYPE");
    pair(70, "2");
    lineType("CONTINUOUS", "Solid line", {});
    lineType("DASHED", "__ __ __", {1.6, -0.9});
    pair(0, "ENDTAB");
    pair(0, "TABLE");
    pair(2, "LAYER");
    std::map<std::string, bool> layers;
    for (const Drawing::Group& group : drawing.layers) collect(group, layerName(group.id), layers);
    pair(70, std::to_string(layers.size() + 1));
    layer("0", false);
    for (const auto& [name, isDashed] : layers) layer(name, isDashed);
    pair(0, "ENDTAB");
    pair(0, "ENDSEC");
  }
  void lineType(const char* name, const char* shown, const std::vector<double>& dashes) {
    double whole = 0.0;
    for (const double dash : dashes) whole += std::fabs(dash);
    pair(0, "LTYPE");
    pair(2, name);
    pair(70, "0");
    pair(3, shown);
    pair(72, "65");
    pair(73, std::to_string(dashes.size()));
    number(40, whole);
    for (const double dash : dashes) number(49, dash);
  }
  void layer(const std::string& name, bool isDashed) {
    pair(0, "LAYER");
    pair(2, name);
    pair(70, "0");
    pair(62, "7");
    pair(6, isDashed ? "DASHED" : "CONTINUOUS");
  }

  // A layer in a layer has both names.
  static std::string nameIn(const std::string& outer, const Drawing::Group& group) {
    return group.isLayer ? layerName(outer + "_" + group.name) : outer;
  }

  // All layers, and whether their lines are dashed.
  // NOLINTNEXTLINE(misc-no-recursion): groups are three deep
  static void collect(const Drawing::Group& group, const std::string& name,
                      std::map<std::string, bool>& layers) {
    layers[name] |= !group.paths.empty() && !group.paths.front().dashes.empty();
    for (const Drawing::Group& inner : group.groups) collect(inner, nameIn(name, inner), layers);
  }

  // NOLINTNEXTLINE(misc-no-recursion): groups are three deep
  void add(const Drawing::Group& group, const std::string& name) {
    for (const Drawing::Path& path : group.paths)
      for (const Drawing::Line& line : path.lines) add(line, path.closed, name);
    for (const Drawing::Text& text : group.texts) add(text, name);
    for (const Drawing::Group& inner : group.groups) add(inner, nameIn(name, inner));
  }

  void place(const Drawing::Point& p, int codeX = 10) {
    number(codeX, p.x);
    number(codeX + 10, drawing.height - p.y);
  }

  void add(const Drawing::Line& line, bool isClosed, const std::string& name) {
    if (line.size() < 2) return;
    if (line.size() == 2) {
      pair(0, "LINE");
      pair(8, name);
      place(line[0]);
      place(line[1], 11);
      return;
    }
    const bool returns = line.front().x == line.back().x && line.front().y == line.back().y;
    pair(0, "POLYLINE");
    pair(8, name);
    pair(66, "1");
    pair(70, isClosed || returns ? "1" : "0");
    for (std::size_t i = 0; i + (returns ? 1 : 0) < line.size(); ++i) {
      pair(0, "VERTEX");
      pair(8, name);
      place(line[i]);
    }
    pair(0, "SEQEND");
    pair(8, name);
  }

  void add(const Drawing::Text& text, const std::string& name) {
    pair(0, "TEXT");
    pair(8, name);
    place(text.place);
    number(40, text.height);
    pair(1, asciiText(text.text));
    if (text.anchor <= 0.0) return;
    pair(72, text.anchor < 1.0 ? "1" : "2");
    place(text.place, 11);
  }

  const Drawing& drawing;
  SvgNumbers numbers;
  std::string out;
};

}  // namespace

std::string DrawingWriter::dxf(const Drawing& drawing) { return DxfDrawing(drawing).text(); }

}  // namespace Lumivane::Pictures
