// PLY. Read here and not by VTK, whose reader ends the process over a file that ends early, were it
// only the last line end that is missing, and keeps single precision.

#include "importers/ImportError.h"
#include "importers/PlyHeader.h"
#include "importers/PlyValues.h"
#include "importers/Readers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>

namespace Lumivane::Importers {
namespace {

using Ply::Element;
using Ply::Header;
using Ply::Property;
using Ply::Values;
using Rgb = std::array<double, 3>;

// Mean colours of corners are rounded to these steps, so that a scan has hundreds of brushes and
// not millions.
constexpr double MixedStep = 17.0;

// What a property is to us.
enum class Role { Other, X, Y, Z, Red, Green, Blue, Corners };

Role roleOf(const Element& element, const Property& property) {
  static const std::map<std::string, Role> single = {{"x", Role::X},         {"y", Role::Y},
                                                     {"z", Role::Z},         {"red", Role::Red},
                                                     {"green", Role::Green}, {"blue", Role::Blue}};
  const bool isVertex = element.name == "vertex";
  if (!isVertex && element.name != "face") return Role::Other;
  if (property.isList) {
    const bool isCorners = property.name == "vertex_indices" || property.name == "vertex_index";
    return !isVertex && isCorners ? Role::Corners : Role::Other;
  }
  const auto found = single.find(property.name);
  if (found == single.end() || (!isVertex && found->second <= Role::Z)) return Role::Other;
  return found->second;
}

// Colours are bytes, or shares of 1 in floats.
double channelOf(double value, const Property& property) {
  const bool isShare = property.type == Ply::Type::Float || property.type == Ply::Type::Double;
  return std::clamp(isShare ? value * 255.0 : value, 0.0, 255.0);
}

// One element as far as it matters.
struct Record {
  Kernel::Vec3 position;
  Rgb colour{};
  std::vector<int> corners;
};

class PlyReader {
 public:
  PlyReader(const Header& head, const std::string& path) : header(head) {
    model.format = "PLY";
    model.objects.push_back({std::filesystem::path(path).stem().string(), false});
    for (const Element& element : header.elements) {
      if (element.name == "vertex") vertexCount = element.count;
      checkProperties(element);
    }
    if (coordinates != 3) throw ImportError("header: the vertices have no x, y and z");
    if (!hasCorners) throw ImportError("there is no polygon in it: it has no list of faces");
  }

  SourceModel read(Values values) {
    for (const Element& element : header.elements) {
      std::vector<Role> roles;
      for (const Property& property : element.properties)
        roles.push_back(roleOf(element, property));
      for (long long i = 0; i < element.count; ++i) {
        values.startElement();
        Record record;
        for (size_t p = 0; p < roles.size(); ++p)
          readProperty(element, element.properties[p], roles[p], i, values, record);
        values.endElement();
        if (element.name == "vertex") addVertex(record);
        if (element.name == "face") faces.push_back(std::move(record));
      }
    }
    // Last, since a file may list its faces before its vertices.
    for (Record& face : faces) addFace(face);
    return std::move(model);
  }

 private:
  void checkProperties(const Element& element) {
    if (element.properties.empty())
      throw ImportError("header: element " + inQuotes(element.name) + " has no property");
    for (const Property& property : element.properties) {
      const Role role = roleOf(element, property);
      hasCorners = hasCorners || role == Role::Corners;
      if (role == Role::X || role == Role::Y || role == Role::Z) ++coordinates;
      if (role >= Role::Red && role <= Role::Blue)
        (element.name == "face" ? faceColours : vertexColours) = true;
    }
  }

  void readProperty(const Element& element, const Property& property, Role role, long long index,
                    Values& values, Record& record) const {
    if (property.isList) {
      readList(element, property, role, index, values, record);
      return;
    }
    const double value = values.next(property.type);
    double* const coordinate[] = {&record.position.x, &record.position.y, &record.position.z};
    if (role >= Role::X && role <= Role::Z) {
      if (!std::isfinite(value))
        throw ImportError(where(element, index) + property.name + " is not finite");
      *coordinate[static_cast<int>(role) - static_cast<int>(Role::X)] = value;
    }
    if (role >= Role::Red && role <= Role::Blue)
      record.colour[static_cast<size_t>(role) - static_cast<size_t>(Role::Red)] =
          std::isfinite(value) ? channelOf(value, property) : 0.0;
  }

  void readList(const Element& element, const Property& property, Role role, long long index,
                Values& values, Record& record) const {
    const double count = values.next(property.countType);
    if (count < 0.0 || count != std::floor(count))
      throw ImportError(where(element, index) + "the length of a list is not a count");
    for (double i = 0.0; i < count; ++i) {
      const double value = values.next(property.type);
      if (role != Role::Corners) continue;
      if (!(value >= 0.0 && value < static_cast<double>(vertexCount)) || value != std::floor(value))
        throw ImportError(where(element, index) + "refers to vertex " + numberText(value) +
                          ", but there are " + std::to_string(vertexCount));
      record.corners.push_back(static_cast<int>(value));
    }
  }

  static std::string where(const Element& element, long long index) {
    return element.name + " " + std::to_string(index + 1) + ": ";
  }

  static std::string numberText(double value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
  }

  void addVertex(const Record& record) {
    model.vertices.push_back(record.position);
    if (vertexColours) colours.push_back(record.colour);
  }

  void addFace(Record& face) {
    SourcePolygon polygon;
    polygon.material = material(face);
    polygon.loops.push_back(std::move(face.corners));
    model.polygons.push_back(std::move(polygon));
  }

  int material(const Record& face) {
    const SourceMaterial plain;
    Rgb rgb{static_cast<double>(plain.red), static_cast<double>(plain.green),
            static_cast<double>(plain.blue)};
    if (faceColours)
      rgb = face.colour;
    else if (vertexColours && !face.corners.empty())
      rgb = mixed(face.corners);
    const auto [place, isNew] = numbers.emplace(rgb, static_cast<int>(model.materials.size()));
    if (isNew) {
      const auto channel = [&rgb](size_t c) { return static_cast<int>(std::lround(rgb[c])); };
      model.materials.push_back({"", channel(0), channel(1), channel(2), 255});
    }
    return place->second;
  }

  Rgb mixed(const std::vector<int>& corners) const {
    Rgb sum{};
    for (const int corner : corners)
      for (size_t c = 0; c < 3; ++c) sum[c] += colours[static_cast<size_t>(corner)][c];
    for (double& channel : sum)
      channel = std::round(channel / static_cast<double>(corners.size()) / MixedStep) * MixedStep;
    return sum;
  }

  const Header& header;
  long long vertexCount = 0;
  int coordinates = 0;
  bool hasCorners = false;
  bool faceColours = false;
  bool vertexColours = false;
  SourceModel model;
  std::vector<Rgb> colours;
  std::vector<Record> faces;
  std::map<Rgb, int> numbers;
};

}  // namespace

SourceModel readPly(const std::string& path, const std::string& bytes) {
  std::string_view rest = bytes;
  const Header header = Ply::readHeader(rest);
  return PlyReader(header, path).read(Values(rest, header.encoding));
}

}  // namespace Lumivane::Importers
