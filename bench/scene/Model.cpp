#include "scene/Model.h"

#include <charconv>
#include <cmath>
#include <string>

namespace Lumivane::Bench {
namespace {

double toMillimetres(double metres) { return std::round(metres * 1000.0) / 1000.0 + 0.0; }

void append(std::string& text, double value) {
  char buffer[32];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value);
  text.append(buffer, end.ptr);
}

void append(std::string& text, int value) { text += std::to_string(value); }

/// "[first,second,...]" with one text for each item.
template <class List, class Write>
void appendList(std::string& text, const List& list, const char* separator, Write write) {
  text += '[';
  bool isFirst = true;
  for (const auto& item : list) {
    if (!isFirst) text += separator;
    isFirst = false;
    write(item);
  }
  text += ']';
}

void appendPoint(std::string& text, const Point& point) {
  text += '[';
  append(text, point.x);
  text += ',';
  append(text, point.y);
  text += ',';
  append(text, point.z);
  text += ']';
}

/// Each face has one region, and each object one part.
void appendThing(std::string& text, const Thing& thing) {
  text += "{\"Id\":\"" + thing.id + "\",\"PartsCount\":1,\"Pen\":1,\n  \"Faces\":";
  int number = 0;
  appendList(text, thing.faces, ",", [&](const Face&) {
    text += "{\"Regions\":[";
    append(text, ++number);
    text += "]}";
  });
  text += ",\n  \"Parts\":[{\"Regions\":";
  number = 0;
  appendList(text, thing.faces, ",", [&](const Face&) { append(text, ++number); });
  text += "}],\n  \"Regions\":";
  number = 0;
  appendList(text, thing.faces, ",\n    ", [&](const Face& face) {
    text += "{\"Brush\":";
    append(text, face.brush);
    text += ",\"Face\":";
    append(text, ++number);
    text += ",\"Points\":";
    appendList(text, face.points, ",", [&](int point) { append(text, point); });
    text += '}';
  });
  text += ",\n  \"Overlays\":[]}";
}

}  // namespace

int Model::add(Point point) {
  points.push_back({toMillimetres(point.x), toMillimetres(point.y), toMillimetres(point.z)});
  return static_cast<int>(points.size());
}

std::size_t Model::faceCount() const {
  std::size_t count = 0;
  for (const Thing& thing : things) count += thing.faces.size();
  return count;
}

std::string sceneText(const Model& model) {
  std::string text =
      "{\n\"Brushes\": [[222,214,196,255],[92,128,176,255],[140,172,212,255],[190,92,70,255]],\n"
      "\"Pens\": [[40,40,40,255,1]],\n\"Points\": ";
  appendList(text, model.points, ",\n", [&](const Point& point) { appendPoint(text, point); });
  text += ",\n\"Objects\": ";
  appendList(text, model.things, ",\n", [&](const Thing& thing) { appendThing(text, thing); });
  text += ",\n\"Properties\": [],\n\"Scales\": []\n}\n";
  return text;
}

}  // namespace Lumivane::Bench
