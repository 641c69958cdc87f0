// Classes stand in a table beside the scene, and not in the scene file: programs that read a scene
// and write it again drop keys that they do not know, and the table is one that people make in a
// spreadsheet for any scene. A table that does not fit its scene is refused, with the line.

#include "kernel/CsvText.h"

#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/io/CsvReading.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/ClassFile.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/Text.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace Lumivane::Session {
namespace {

const char* const Columns[] = {"object", "id", "face", "class"};
constexpr int WholeObject = 0;

// An object of the scene, and where its regions stand among all.
struct Place {
  std::string id;  // as tables show it
  std::size_t firstRegion = 0;
  std::vector<int> faces;  // of its regions, as the scene has them
  std::set<int> known;     // the same, each once
};

std::vector<Place> placesOf(const Scene::Scene3D& scene) {
  std::vector<Place> places;
  if (scene.getObjects() == nullptr) return places;
  std::size_t first = 0;
  for (const Scene::Object* const object : *scene.getObjects()->getObjects()) {
    Place place;
    place.firstRegion = first;
    if (object != nullptr) place.id = idText(object->getId());
    if (object != nullptr && object->getRegions() != nullptr)
      for (const Geometry::Region* const region : *object->getRegions()->getRegions())
        place.faces.push_back(region == nullptr ? -1 : region->getFaceNumber());
    first += place.faces.size();
    place.known.insert(place.faces.begin(), place.faces.end());
    places.push_back(std::move(place));
  }
  return places;
}

std::vector<std::string> namesOf(const LoadedScene& scene, const std::vector<Place>& places) {
  std::vector<std::string> names = scene.classes().namesOfRegions();
  names.resize(places.empty() ? 0 : places.back().firstRegion + places.back().faces.size());
  return names;
}

class ClassReader {
 public:
  ClassReader(const LoadedScene& theScene, const std::string& theFile)
      : scene(theScene), file(theFile), places(placesOf(theScene.scene())) {
    for (std::size_t i = 0; i < places.size(); ++i) numbers[places[i].id].push_back(i);
  }

  SurfaceClasses read(const std::string& text) {
    const std::vector<IO::CsvRecord> records = IO::readCsv(text, file);
    if (records.empty())
      throw Error(file, "is empty: a heading with the columns id, face and class is missing");
    readHeading(records.front());
    for (std::size_t i = 1; i < records.size(); ++i) addRow(records[i]);
    return merged();
  }

 private:
  struct Given {
    std::string className;
    std::size_t line = 0;
  };
  using Key = std::pair<std::size_t, int>;  // position of an object, and face or WholeObject

  [[noreturn]] void fail(const IO::CsvRecord& record, const std::string& cause) const {
    throw Error(file, "line " + std::to_string(record.line) + ": " + cause);
  }

  void readHeading(const IO::CsvRecord& record) {
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
      const std::string& name = record.fields[i];
      if (std::find(std::begin(Columns), std::end(Columns), name) == std::end(Columns))
        fail(record, "column \"" + name + "\" is none of object, id, face and class");
      if (!columns.emplace(name, i).second) fail(record, "column \"" + name + "\" is there twice");
    }
    if (columns.count("class") == 0) fail(record, "there is no column \"class\"");
    if (columns.count("object") + columns.count("id") == 0)
      fail(record, "there is no column \"id\" or \"object\"");
  }

  // Empty for a column that the table does not have.
  std::string cell(const IO::CsvRecord& record, const char* column) const {
    const auto found = columns.find(column);
    return found == columns.end() ? "" : record.fields[found->second];
  }

  void addRow(const IO::CsvRecord& record) {
    if (record.fields.size() != columns.size())
      fail(record, std::to_string(record.fields.size()) + " fields for " +
                       std::to_string(columns.size()) + " columns");
    const std::vector<std::size_t> objects = objectsOf(record);
    const std::string face = cell(record, "face");
    const int number = face.empty() ? WholeObject : numberIn(record, "face", face);
    bool isThere = number == WholeObject;
    for (const std::size_t object : objects) {
      if (number != WholeObject && places[object].known.count(number) == 0) continue;
      isThere = true;
      give(record, {object, number});
    }
    if (!isThere)
      fail(record, "column \"face\": object \"" + places[objects.front()].id + "\" of " +
                       scene.name() + " has no face " + face + advice());
  }

  void give(const IO::CsvRecord& record, const Key& key) {
    const std::string name = utf8Text(cell(record, "class"));
    const auto [place, isNew] = given.emplace(key, Given{name, record.line});
    if (!isNew && place->second.className != name)
      fail(record, "column \"class\": \"" + name + "\", but line " +
                       std::to_string(place->second.line) + " says \"" + place->second.className +
                       "\" of the same " + (key.second == WholeObject ? "object" : "face"));
  }

  // At least one.
  std::vector<std::size_t> objectsOf(const IO::CsvRecord& record) const {
    const std::string id = utf8Text(cell(record, "id"));
    const std::string object = cell(record, "object");
    if (id.empty() && object.empty())
      fail(record,
           columns.count("id") > 0 ? "column \"id\" is empty" : "column \"object\" is empty");
    if (object.empty()) return objectsWith(record, id);
    const int number = numberIn(record, "object", object);
    if (static_cast<std::size_t>(number) > places.size())
      fail(record, "column \"object\": " + scene.name() + " has no object " + object +
                       ", but objects 1 to " + std::to_string(places.size()) + advice());
    const std::size_t position = static_cast<std::size_t>(number) - 1;
    if (!id.empty() && places[position].id != id)
      fail(record, "column \"id\": object " + object + " of " + scene.name() + " is \"" +
                       places[position].id + "\", not \"" + id + "\"" + advice());
    return {position};
  }

  std::vector<std::size_t> objectsWith(const IO::CsvRecord& record, const std::string& id) const {
    const auto found = numbers.find(id);
    if (found == numbers.end())
      fail(record, "column \"id\": " + scene.name() + " has no object \"" + id + "\"" + advice());
    return found->second;
  }

  static const char* advice() { return ": correct the line, or remove it"; }

  int numberIn(const IO::CsvRecord& record, const char* column, const std::string& text) const {
    int number = 0;
    const std::from_chars_result end =
        std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || number < 1)
      fail(record,
           "column \"" + std::string(column) + "\": \"" + text + "\" is not a number from 1");
    return number;
  }

  SurfaceClasses merged() const {
    std::vector<std::string> names = namesOf(scene, places);
    for (std::size_t i = 0; i < places.size(); ++i)
      for (std::size_t k = 0; k < places[i].faces.size(); ++k) {
        auto found = given.find({i, places[i].faces[k]});
        if (found == given.end()) found = given.find({i, WholeObject});
        if (found != given.end()) names[places[i].firstRegion + k] = found->second.className;
      }
    return SurfaceClasses::ofNames(names);
  }

  const LoadedScene& scene;
  const std::string& file;
  std::vector<Place> places;
  std::map<std::string, std::vector<std::size_t>> numbers;  // of the objects with an id
  std::map<std::string, std::size_t> columns;
  std::map<Key, Given> given;
};

bool areEqual(const std::vector<std::string>& names, std::size_t first, std::size_t count) {
  return std::all_of(names.begin() + static_cast<std::ptrdiff_t>(first),
                     names.begin() + static_cast<std::ptrdiff_t>(first + count),
                     [&](const std::string& name) { return name == names[first]; });
}

// The rows of an object of several classes. A region of no face cannot be named.
void addFaces(const Place& place, const std::vector<std::string>& names, std::string& text) {
  std::set<int> done;
  Kernel::CsvRow row(false);
  for (std::size_t k = 0; k < place.faces.size(); ++k) {
    const std::string& name = names[place.firstRegion + k];
    if (place.faces[k] < 1 || name.empty() || !done.insert(place.faces[k]).second) continue;
    text += row.text(place.id).number(place.faces[k]).text(name).take();
  }
}

}  // namespace

void readClasses(LoadedScene& scene, const std::string& path) {
  readClassesText(scene, readBytes(path), path);
}

void readClassesText(LoadedScene& scene, const std::string& text, const std::string& name) {
  scene.setClasses(ClassReader(scene, name).read(text));
}

std::string classesText(const LoadedScene& scene) {
  const std::vector<Place> places = placesOf(scene.scene());
  const std::vector<std::string> names = namesOf(scene, places);
  std::string text = "id,face,class\n";
  Kernel::CsvRow row(false);
  for (const Place& place : places) {
    if (place.faces.empty()) continue;
    if (!areEqual(names, place.firstRegion, place.faces.size()))
      addFaces(place, names, text);
    else if (!names[place.firstRegion].empty())
      text += row.text(place.id).empty().text(names[place.firstRegion]).take();
  }
  return text;
}

std::string classFileBeside(const std::string& scenePath) {
  return std::filesystem::path(scenePath).replace_extension(".classes.csv").string();
}

bool readClassesBeside(LoadedScene& scene) {
  const std::string path = classFileBeside(scene.name());
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;
  readClasses(scene, path);
  return true;
}

}  // namespace Lumivane::Session
