#include "check/Document.h"

#include <lumivane/jzon/Node.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

// What reading passes over in silence: unknown and repeated keys, missing lists, values of another
// kind, and text behind the document. These are found in the tree, since the model does not know
// them.
namespace Lumivane::Check {
namespace {

using Keys = std::initializer_list<std::string_view>;
constexpr const char* FixKey = "keys count exactly as they are written; correct or remove it";

void checkKeys(const Jzon::Node& node, const Keys& known, const std::string& where,
               Findings& findings) {
  std::vector<std::string_view> seen;
  for (const auto& [key, value] : node) {
    if (std::find(known.begin(), known.end(), key) == known.end())
      findings.add(Severity::Warning, "unknown-key", where + "unknown key \"" + key + "\"", FixKey);
    else if (std::find(seen.begin(), seen.end(), key) != seen.end())
      findings.add(Severity::Warning, "double-key",
                   where + "key \"" + key + "\" stands here twice; the first counts",
                   "keep one of them");
    else
      seen.push_back(key);
  }
}

void checkLists(const Jzon::Node& node, const Keys& lists, const std::string& where,
                Findings& findings) {
  for (const std::string_view key : lists)
    if (!node.get(std::string(key)).isArray())
      findings.add(Severity::Warning, "missing-list",
                   where + "there is not a list \"" + std::string(key) + "\"",
                   "add it, as [] if it is empty");
}

bool holdsNumbers(const Jzon::Node& node, size_t count) {
  return node.isArray() && node.getCount() == count &&
         std::all_of(node.begin(), node.end(),
                     [](const Jzon::Node::NamedNode& item) { return item.second.isNumber(); });
}

// "point 5"
std::string numbered(const char* what, size_t index) {
  return std::string(what) + " " + std::to_string(index + 1);
}

void checkPoints(const Jzon::Node& points, Findings& findings) {
  for (size_t i = 0; i < points.getCount(); ++i)
    if (!holdsNumbers(points.get(i), 3))
      findings.add(Severity::Warning, "point", numbered("point", i) + " is not [x, y, z]",
                   "give it three numbers; what is none counts as 0");
}

// Reading throws on these, so they are errors.
void checkComponents(const Jzon::Node& color, const std::string& what, Severity severity,
                     size_t first, Findings& findings) {
  for (size_t i = first; i < first + 4 && i < color.getCount(); ++i) {
    const int value = color.get(i).toInt();
    if (value < 0 || value > 255) {
      findings.add(severity, "color", what + " has a colour component " + std::to_string(value),
                   "colour components are 0 to 255");
      return;
    }
  }
}

void checkBrushes(const Jzon::Node& brushes, Findings& findings) {
  for (size_t i = 0; i < brushes.getCount(); ++i) {
    const Jzon::Node brush = brushes.get(i);
    const std::string what = numbered("brush", i);
    if (!holdsNumbers(brush, 4))
      findings.add(Severity::Warning, "brush", what + " is not [red, green, blue, alpha]",
                   "give it four numbers; it counts as black");
    if (brush.getCount() == 4) checkComponents(brush, what, Severity::Error, 0, findings);
  }
}

void checkPens(const Jzon::Node& pens, Findings& findings) {
  for (size_t i = 0; i < pens.getCount(); ++i) {
    const Jzon::Node pen = pens.get(i);
    const std::string what = numbered("pen", i);
    if (!holdsNumbers(pen, 5))
      findings.add(Severity::Warning, "pen", what + " is not [red, green, blue, alpha, width]",
                   "give it five numbers; it counts as black");
    if (pen.getCount() != 5) continue;
    checkComponents(pen, what, Severity::Error, 0, findings);
    if (pen.get(4).toDouble() < 0.0)
      findings.add(Severity::Error, "pen-width", what + " has a width below 0",
                   "a width is 0 or more");
  }
}

void checkScales(const Jzon::Node& scales, Findings& findings) {
  for (size_t i = 0; i < scales.getCount(); ++i) {
    const std::string what = numbered("scale", i);
    checkKeys(scales.get(i), {"Name", "Items"}, what + ": ", findings);
    const Jzon::Node items = scales.get(i).get("Items");
    for (size_t k = 0; k < items.getCount(); ++k) {
      if (!holdsNumbers(items.get(k), 4))
        findings.add(Severity::Warning, "scale-item",
                     what + ", " + numbered("item", k) + " is not [value, red, green, blue]",
                     "give it four numbers; it is left out");
      else
        checkComponents(items.get(k), what + ", " + numbered("item", k), Severity::Warning, 1,
                        findings);
    }
  }
}

// What is no number in a list of numbers is passed over.
void checkNumbers(const Jzon::Node& owner, const std::string& where, Findings& findings) {
  for (const auto& [key, list] : owner) {
    if (key != "Regions" && key != "Points" && key != "DockingEdges") continue;
    if (!holdsNumbers(list, list.getCount()))
      findings.add(Severity::Warning, "number-list",
                   where + "\"" + key + "\" is not a list of numbers",
                   "a list of numbers is [1,2,3]; what is no number is passed over");
  }
}

void checkEach(const Jzon::Node& list, const Keys& keys, const char* what, Findings& findings) {
  for (size_t i = 0; i < list.getCount(); ++i) {
    if (list.get(i).isObject()) {
      checkKeys(list.get(i), keys, numbered(what, i) + ": ", findings);
      checkNumbers(list.get(i), numbered(what, i) + ": ", findings);
    } else {
      findings.add(Severity::Warning, "no-object", numbered(what, i) + " is not {...}",
                   "it counts as an empty one; correct or remove it");
    }
  }
}

void checkObject(const Jzon::Node& object, Findings& findings) {
  findings.setObject(object.get("Id").toString());
  checkKeys(object, {"Id", "PartsCount", "Pen", "Faces", "Parts", "Regions", "Overlays"}, "",
            findings);
  checkLists(object, {"Faces", "Regions"}, "", findings);
  checkEach(object.get("Faces"), {"Regions", "Normal", "Values"}, "face", findings);
  checkEach(object.get("Parts"), {"Regions"}, "part", findings);
  checkEach(object.get("Regions"), {"Brush", "Face", "Points", "DockingEdges"}, "region", findings);
  checkEach(object.get("Overlays"), {"Object", "Face"}, "overlay", findings);
  const Jzon::Node faces = object.get("Faces");
  for (size_t i = 0; i < faces.getCount(); ++i)
    if (faces.get(i).has("Normal") && !holdsNumbers(faces.get(i).get("Normal"), 3))
      findings.addFace(Severity::Warning, "normal", i + 1, "its normal is not [x, y, z]",
                       "give it three numbers");
}

}  // namespace

void findInDocument(const Jzon::Node& root, Findings& findings) {
  if (!root.isObject()) {
    findings.add(Severity::Warning, "no-scene", "the document is an array, which holds no scene",
                 "a scene is {\"Brushes\": [...], ...}");
    return;
  }
  checkKeys(root, {"Brushes", "Pens", "Points", "Objects", "Properties", "Scales"}, "", findings);
  checkLists(root, {"Brushes", "Pens", "Points", "Objects"}, "", findings);
  checkBrushes(root.get("Brushes"), findings);
  checkPens(root.get("Pens"), findings);
  checkPoints(root.get("Points"), findings);
  checkScales(root.get("Scales"), findings);
  const Jzon::Node objects = root.get("Objects");
  for (size_t i = 0; i < objects.getCount() && !findings.full(); ++i) {
    if (objects.get(i).isObject()) {
      checkObject(objects.get(i), findings);
    } else {
      findings.setObject("");
      findings.add(Severity::Warning, "no-object", numbered("object", i) + " is not {...}",
                   "it counts as an empty one; correct or remove it");
    }
  }
  findings.setObject("");
}

namespace {

// Walks over a document as the parser does: strings hide brackets, comments hide all.
class Walk {
 public:
  explicit Walk(const std::string& walked) : text(walked) {}

  // The position behind the end of the first outermost container, or npos.
  size_t documentEnd() {
    int depth = 0;
    while (!atEnd()) {
      if (skipComment()) continue;
      const char c = text[position++];
      if (c == '"') skipString();
      if (c == '{' || c == '[') ++depth;
      if ((c == '}' || c == ']') && --depth <= 0) return position;
    }
    return std::string::npos;
  }

  // Whether there is anything but white space and comments from here on.
  bool hasMore() {
    while (!atEnd()) {
      if (skipComment()) continue;
      if (std::string_view(" \t\n\f\r").find(text[position]) == std::string_view::npos) return true;
      ++position;
    }
    return false;
  }

  size_t at() const { return position; }

 private:
  bool atEnd() const { return position >= text.size(); }

  bool skipComment() {
    if (text.compare(position, 2, "/*") != 0) return false;
    // The star is skipped first: "/*/" opens a comment and does not close it.
    const size_t end = text.find("*/", position + 2);
    position = end == std::string::npos ? text.size() : end + 2;
    return true;
  }

  void skipString() {
    for (; !atEnd(); ++position) {
      if (text[position] == '\\') {
        ++position;
      } else if (text[position] == '"') {
        ++position;
        return;
      }
    }
  }

  const std::string& text;
  size_t position = 0;
};

}  // namespace

void findBehindDocument(const std::string& json, Findings& findings) {
  Walk walk(json);
  if (walk.documentEnd() == std::string::npos) {
    findings.add(Severity::Warning, "unfinished", "the document ends before its outermost bracket",
                 "the file may have been cut short");
    return;
  }
  if (walk.hasMore())
    findings.add(Severity::Warning, "text-behind",
                 "there is text behind the document, from byte " + std::to_string(walk.at() + 1) +
                     " on (line ends not counted)",
                 "remove it; if it holds another document, that one counts");
}

}  // namespace Lumivane::Check
