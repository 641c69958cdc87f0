// A shot is mostly numbers, hundreds of thousands of them, and a tree of nodes takes longer to make
// and to take apart than to print. So its lists are printed as they stand, in the format that
// DocumentWriter.h names: one member a line, arrays on one line.
//
// What `serialize` would put into nodes is printed in the same order by the same rules: numbers
// below 0 and empty lists are left out, elements that are not there are null. Brushes and pens are
// few and go through their nodes. Classes of hosts, derived from those of the library, may write
// themselves in their own way: if any stands in the shot, all of it goes through nodes.

#include "io/ShotText.h"

#include "io/DocumentWriter.h"
#include "jzon/JsonNumber.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/Aliases.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Lumivane::IO {
namespace {

using Utils::Aliases;
using Numbers = std::vector<int>;

constexpr std::size_t BlockSize = std::size_t{1} << 16U;

// ---- whether all classes are the library's own ----

// Whether an object is one of exactly this class, or none.
template <class Exact>
bool isExactly(const Exact* object) {
  return object == nullptr || typeid(*object) == typeid(Exact);
}

template <class Elements>
bool areExact(const Elements* elements) {
  return elements == nullptr || std::all_of(elements->begin(), elements->end(),
                                            [](const auto* element) { return isExactly(element); });
}

bool isOfTheLibrary(Geometry::Faces2d* faces) {
  return isExactly(faces) && (faces == nullptr || areExact(faces->getFaces()));
}

bool isOfTheLibrary(Shot::Objects2d* objects) {
  if (objects == nullptr) return true;
  if (!isExactly(objects) || !areExact(objects->getObjects())) return false;
  if (objects->getObjects() == nullptr) return true;
  return std::all_of(objects->getObjects()->begin(), objects->getObjects()->end(),
                     [](const Shot::Object2d* object) {
                       return object == nullptr || isOfTheLibrary(object->getFaces());
                     });
}

bool isOfTheLibrary(Shot::Shot2d& shot) {
  Geometry::Points2d* const points = shot.getPoints();
  Geometry::Regions2dInDrawingOrder* const regions = shot.getRegions();
  return isExactly(&shot) && isExactly(points) && isExactly(regions) &&
         (points == nullptr || areExact(points->getPoints())) &&
         (regions == nullptr || areExact(regions->getRegions())) &&
         isOfTheLibrary(shot.getObjects());
}

// ---- text ----

// Gathers text, and gives it to a stream, if there is one, block by block.
class Text {
 public:
  explicit Text(std::ostream* target) : stream(target), buffer(2 * BlockSize, '\0') {}

  void add(char c) { *room(1) = c, ++used; }
  void add(std::string_view piece) {
    std::copy(piece.begin(), piece.end(), room(piece.size()));
    used += piece.size();
  }
  template <class Number>
  void addNumber(Number number) {
    used += Jzon::writeNumber(number, room(Jzon::NumberTextLength));
  }
  void addNumber(int number) { addNumber(static_cast<long long>(number)); }

  // Between two elements: what is there may go.
  void endPiece() {
    if (stream != nullptr && used >= BlockSize) flush();
  }
  void flush() {
    stream->write(buffer.data(), static_cast<std::streamsize>(used));
    used = 0;
  }
  std::string take() {
    buffer.resize(used);
    return std::move(buffer);
  }

 private:
  char* room(std::size_t count) {
    if (buffer.size() - used < count) buffer.resize(2 * (used + count));
    return buffer.data() + used;
  }

  std::ostream* stream;
  std::string buffer;  // of which `used` characters are text
  std::size_t used = 0;
};

// An object whose members are added one by one.
class ObjectText {
 public:
  explicit ObjectText(Text& target) : text(target) { text.add("{\n"); }
  void end() { text.add("\n}"); }

  // What follows is the value.
  void addName(const std::string& name) {
    if (!isFirst) text.add(",\n");
    isFirst = false;
    text.add('"');
    text.add(name);
    text.add("\": ");
  }
  void addNumber(const std::string& name, int number) {
    if (number < 0) return;
    addName(name);
    text.addNumber(number);
  }
  void addNumbers(const std::string& name, const Numbers* numbers) {
    if (numbers == nullptr || numbers->empty()) return;
    addName(name);
    char before = '[';
    for (const int number : *numbers) {
      text.add(before);
      text.addNumber(number);
      before = ',';
    }
    text.add(']');
  }

 private:
  Text& text;
  bool isFirst = true;
};

void addElement(Text& text, Geometry::Point2d& point) {
  text.add('[');
  text.addNumber(point.getX());
  text.add(',');
  text.addNumber(point.getY());
  text.add(']');
}

void addElement(Text& text, Geometry::Region2d& region) {
  ObjectText object(text);
  object.addNumber(Aliases::OBJECT, region.getObjectNumber());
  object.addNumber(Aliases::PEN, region.getPenNumber());
  object.addNumber(Aliases::BRUSH, region.getBrushNumber());
  object.addNumber(Aliases::FACE, region.getFaceNumber());
  object.addNumber(Aliases::SOURCE_REGION, region.getSourceRegionNumber());
  object.addNumbers(Aliases::POINTS, region.getPoints());
  object.addNumbers(Aliases::DOCKING_EDGES, region.getDockingEdges());
  object.end();
}

void addElement(Text& text, Geometry::Face2d& face) {
  ObjectText object(text);
  object.addNumbers(Aliases::REGIONS, face.getRegions());
  object.end();
}

// A null list is an empty one.
template <class Element>
void addElements(Text& text, const std::vector<Element*>* elements) {
  text.add('[');
  bool isFirst = true;
  if (elements != nullptr) {
    for (Element* const element : *elements) {
      if (!isFirst) text.add(',');
      isFirst = false;
      if (element == nullptr)
        text.add("null");
      else
        addElement(text, *element);
      text.endPiece();
    }
  }
  text.add(']');
}

void addElement(Text& text, Shot::Object2d& object2d) {
  ObjectText object(text);
  const std::string& id = object2d.getId();
  if (!id.empty()) {
    object.addName(Aliases::ID);
    text.add('"');
    text.add(Jzon::escapeString(id));
    text.add('"');
  }
  if (object2d.getFaces() != nullptr) {
    object.addName(Aliases::FACES);
    addElements(text, object2d.getFaces()->getFaces());
  }
  object.end();
}

template <class List>
void addByNodes(Text& text, ObjectText& object, const std::string& name, List* list) {
  if (list == nullptr) return;
  std::string json;
  documentWriter().writeString(list->serialize(), json);
  object.addName(name);
  text.add(json);
}

void addShot(Text& text, Shot::Shot2d& shot) {
  ObjectText object(text);
  addByNodes(text, object, Aliases::BRUSHES, shot.getBrushes());
  addByNodes(text, object, Aliases::PENS, shot.getPens());
  if (Geometry::Points2d* const points = shot.getPoints()) {
    object.addName(Aliases::POINTS);
    addElements(text, points->getPoints());
  }
  if (Geometry::Regions2dInDrawingOrder* const regions = shot.getRegions()) {
    object.addName(Aliases::REGIONS);
    addElements(text, regions->getRegions());
  }
  if (Shot::Objects2d* const objects = shot.getObjects()) {
    object.addName(Aliases::OBJECTS);
    addElements(text, objects->getObjects());
  }
  object.end();
}

}  // namespace

std::string shotText(Shot::Shot2d& shot) {
  if (!isOfTheLibrary(shot)) {
    std::string json;
    documentWriter().writeString(shot.serialize(), json);
    return json;
  }
  Text text(nullptr);
  addShot(text, shot);
  return text.take();
}

void writeShotText(Shot::Shot2d& shot, std::ostream& stream) {
  if (!isOfTheLibrary(shot)) return documentWriter().writeStream(shot.serialize(), stream);
  Text text(&stream);
  addShot(text, shot);
  text.flush();
}

}  // namespace Lumivane::IO
