// Scenes from text and shots to text: a tree of values between a stream read character by character
// and the model, and one stream for every number.

#include "plain/JsonNumber.h"
#include "plain/Pipeline.h"

#include <istream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Lumivane::Plain {
namespace {

struct Value {
  char kind = ' ';  // { [ " or 0 for a number or a word
  std::string text;
  std::vector<std::pair<std::string, Value>> children;
};

char nextCharacter(std::istream& stream) {
  for (;;) {
    const int c = stream.get();
    if (c == std::istream::traits_type::eof()) throw std::runtime_error("the scene ends early");
    if (c != ' ' && c != '\n' && c != '\r' && c != '\t') return static_cast<char>(c);
  }
}

std::string readString(std::istream& stream) {
  std::string text;
  for (;;) {
    const int c = stream.get();
    if (c == std::istream::traits_type::eof()) throw std::runtime_error("the scene ends early");
    if (c == '"') return text;
    text += static_cast<char>(c == '\\' ? stream.get() : c);
  }
}

Value readValue(std::istream& stream, char first);

void readChildren(std::istream& stream, Value& value) {
  const char end = value.kind == '{' ? '}' : ']';
  for (char c = nextCharacter(stream); c != end; c = nextCharacter(stream)) {
    if (c == ',') c = nextCharacter(stream);
    std::string name;
    if (value.kind == '{') {
      name = readString(stream);
      nextCharacter(stream);  // the colon
      c = nextCharacter(stream);
    }
    value.children.emplace_back(name, readValue(stream, c));
  }
}

Value readValue(std::istream& stream, char first) {
  Value value;
  if (first == '{' || first == '[') {
    value.kind = first;
    readChildren(stream, value);
  } else if (first == '"') {
    value.kind = first;
    value.text = readString(stream);
  } else {
    value.kind = '0';
    value.text += first;
    while (std::string(",]} \n\r\t").find(static_cast<char>(stream.peek())) == std::string::npos)
      value.text += static_cast<char>(stream.get());
  }
  return value;
}

/// A copy of the child; one without a kind if there is none.
Value child(const Value& value, const std::string& name) {
  for (const auto& [childName, found] : value.children)
    if (childName == name) return found;
  return {};
}

int readInt(const Value& value, const std::string& name) {
  const Value number = child(value, name);
  return number.kind == '0' ? readNumber<int>(number.text) : -1;
}

std::vector<int> readInts(const Value& value, const std::string& name) {
  std::vector<int> result;
  for (const auto& [none, number] : child(value, name).children)
    if (number.kind == '0') result.push_back(readNumber<int>(number.text));
  return result;
}

Matrix readRows(const Value& value) {
  Matrix rows;
  for (const auto& [none, row] : value.children) {
    rows.emplace_back();
    for (const auto& [nothing, number] : row.children)
      rows.back().push_back(readNumber<double>(number.text));
  }
  return rows;
}

Rows readList(const Value& root, const std::string& name) {
  const Value list = child(root, name);
  if (list.kind == ' ') return std::nullopt;
  return readRows(list);
}

Object readObject(const Value& value) {
  Object object;
  object.id = child(value, "Id").text;
  object.pen = readInt(value, "Pen");
  object.faceCount = child(value, "Faces").children.size();
  for (const auto& [none, region] : child(value, "Regions").children)
    object.regions.push_back({readInt(region, "Brush"), readInt(region, "Face"),
                              readInts(region, "Points"), readInts(region, "DockingEdges")});
  return object;
}

// --- Writing ---

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const std::size_t special = std::string("\n\t\b\f\r").find(c);
    if (c == '"' || c == '\\' || c == '/' || special != std::string::npos) result += '\\';
    result += special == std::string::npos ? c : "ntbfr"[special];
  }
  return result;
}

template <class Items, class ItemText>
std::string listText(const Items& items, ItemText itemText) {
  std::string text = "[";
  for (const auto& item : items) text += (text.size() == 1 ? "" : ",") + itemText(item);
  return text + "]";
}

std::string numbersText(const std::vector<int>& numbers) {
  return listText(numbers, numberText<int>);
}

std::string rowsText(const Matrix& rows) {
  return listText(rows, [](const Vector& row) { return listText(row, numberText<double>); });
}

/// Keys with their texts, one to a line.
class ObjectText {
 public:
  void add(const std::string& key, const std::string& text) {
    if (!lines.empty()) lines += ",\n";
    lines += "\"" + key + "\": " + text;
  }
  void addNumber(const std::string& key, int number) {
    if (number >= 0) add(key, numberText(number));
  }
  void addNumbers(const std::string& key, const std::vector<int>& numbers) {
    if (!numbers.empty()) add(key, numbersText(numbers));
  }
  std::string text() const { return "{\n" + lines + "\n}"; }

 private:
  std::string lines;
};

std::string regionText(const Region2d& region) {
  ObjectText text;
  text.addNumber("Object", region.object);
  text.addNumber("Pen", region.pen);
  text.addNumber("Brush", region.brush);
  text.addNumber("Face", region.face);
  text.addNumber("SourceRegion", region.sourceRegion);
  text.addNumbers("Points", region.points);
  text.addNumbers("DockingEdges", region.dockingEdges);
  return text.text();
}

std::string faceText(const Face2d& face) {
  ObjectText text;
  text.addNumbers("Regions", face);
  return text.text();
}

std::string objectText(const Object2d& object) {
  ObjectText text;
  if (!object.id.empty()) text.add("Id", "\"" + escaped(object.id) + "\"");
  text.add("Faces", listText(object.faces, faceText));
  return text.text();
}

}  // namespace

Scene readScene(const std::string& text) {
  std::istringstream stream(text);
  const Value root = readValue(stream, nextCharacter(stream));
  Scene scene;
  scene.brushes = readList(root, "Brushes");
  scene.pens = readList(root, "Pens");
  scene.points = readRows(child(root, "Points"));
  for (const auto& [none, object] : child(root, "Objects").children)
    scene.objects.push_back(readObject(object));
  return scene;
}

std::string shotText(const Scene& scene, const Shot& shot) {
  ObjectText text;
  if (scene.brushes) text.add("Brushes", rowsText(*scene.brushes));
  if (scene.pens) text.add("Pens", rowsText(*scene.pens));
  text.add("Points", rowsText(shot.points));
  text.add("Regions", listText(shot.regions, regionText));
  text.add("Objects", listText(shot.objects, objectText));
  return text.text();
}

}  // namespace Lumivane::Plain
