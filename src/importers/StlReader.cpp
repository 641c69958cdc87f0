// STL, text and binary. Read here and not by VTK, whose reader reads past what a damaged file has,
// and takes time by the square of the corners where many of them lie in one spot of a large model.

#include "importers/ImportError.h"
#include "importers/Readers.h"
#include "importers/TextLines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>

namespace Lumivane::Importers {
namespace {

constexpr size_t HeaderSize = 84;
constexpr size_t FacetSize = 50;

std::uint32_t littleEndian(const std::string& bytes, size_t offset) {
  std::uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

bool isBinary(const std::string& bytes) {
  return bytes.size() >= HeaderSize &&
         bytes.size() == HeaderSize + FacetSize * size_t{littleEndian(bytes, HeaderSize - 4)};
}

bool startsWithSolid(const std::string& bytes) {
  std::string_view rest = bytes;
  std::string_view line;
  while (nextLine(rest, line)) {
    const auto words = wordsOf(line);
    if (!words.empty()) return words[0] == "solid" || words[0] == "SOLID";
  }
  return false;
}

// A facet has three corners of its own; those in one place become one later.
void addFacet(const std::array<Kernel::Vec3, 3>& corners, SourceModel& model) {
  const size_t first = model.vertices.size();
  if (first + 3 > static_cast<size_t>(std::numeric_limits<int>::max()))
    throw ImportError("it has more facets than can be numbered");
  model.vertices.insert(model.vertices.end(), corners.begin(), corners.end());
  SourcePolygon polygon;
  const int number = static_cast<int>(first);
  polygon.loops = {{number, number + 1, number + 2}};
  polygon.object = std::max(0, static_cast<int>(model.objects.size()) - 1);
  model.polygons.push_back(std::move(polygon));
}

double coordinate(const std::string& bytes, size_t facet, size_t index) {
  float value = 0.0F;
  const std::uint32_t bits = littleEndian(bytes, HeaderSize + FacetSize * facet + 4 * index);
  std::memcpy(&value, &bits, sizeof value);
  if (!std::isfinite(value))
    throw ImportError("facet " + std::to_string(facet + 1) +
                      " has a corner coordinate that is not finite");
  return value;
}

void readBinary(const std::string& bytes, SourceModel& model) {
  model.objects.push_back({"", false});
  const size_t facets = (bytes.size() - HeaderSize) / FacetSize;
  for (size_t facet = 0; facet < facets; ++facet) {
    std::array<Kernel::Vec3, 3> corners;
    for (size_t k = 0; k < 3; ++k) {  // the first three numbers are the normal
      const size_t at = 3 + 3 * k;
      corners[k] = {coordinate(bytes, facet, at), coordinate(bytes, facet, at + 1),
                    coordinate(bytes, facet, at + 2)};
    }
    addFacet(corners, model);
  }
}

std::string lowered(std::string_view word) {
  std::string result(word);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

// Walks the statements of a text STL in their order. Each solid is an object.
class TextReader {
 public:
  explicit TextReader(SourceModel& target) : model(target) {}

  void read(std::string_view text) {
    for (std::string_view line; nextLine(text, line);) {
      ++lineNumber;
      const auto words = wordsOf(line);
      if (!words.empty()) take(words);
    }
    if (expected != Solid && expected != FacetOrEnd) fail("the file ends inside a facet");
    if (expected == FacetOrEnd) fail("the file ends before \"endsolid\"");
  }

 private:
  enum State { Solid, FacetOrEnd, Loop, Vertex1, Vertex2, Vertex3, EndLoop, EndFacet };

  [[noreturn]] void fail(const std::string& cause) const {
    throw ImportError("line " + std::to_string(lineNumber) + ": " + cause);
  }

  void take(const std::vector<std::string_view>& words) {
    const std::string word = lowered(words[0]);
    if (expected == Solid && word == "solid") {
      model.objects.push_back({words.size() > 1 ? std::string(words[1]) : "", false});
      expected = FacetOrEnd;
    } else if (expected == FacetOrEnd && word == "endsolid") {
      expected = Solid;
    } else if (expected == FacetOrEnd && word == "facet") {
      expected = Loop;
    } else if (expected == Loop && word == "outer") {
      expected = Vertex1;
    } else if (expected >= Vertex1 && expected <= Vertex3 && word == "vertex") {
      takeVertex(words);
    } else if (expected == EndLoop && word == "endloop") {
      expected = EndFacet;
    } else if (expected == EndFacet && word == "endfacet") {
      addFacet(corners, model);
      expected = FacetOrEnd;
    } else {
      fail(inQuotes(words[0]) + " where " + expectation() + " is due");
    }
  }

  void takeVertex(const std::vector<std::string_view>& words) {
    if (words.size() != 4) fail("a vertex does not have 3 coordinates");
    Kernel::Vec3& corner = corners[static_cast<size_t>(expected - Vertex1)];
    corner = {single(words[1]), single(words[2]), single(words[3])};
    expected = static_cast<State>(expected + 1);
  }

  // STL holds single precision, in texts too.
  double single(std::string_view word) const {
    double number = 0.0;
    if (!readNumber(word, number) || !std::isfinite(static_cast<float>(number)))
      fail("vertex coordinate " + inQuotes(word) + " is not a finite number");
    return static_cast<double>(static_cast<float>(number));
  }

  const char* expectation() const {
    switch (expected) {
      case Solid:
        return "\"solid\"";
      case FacetOrEnd:
        return "\"facet\" or \"endsolid\"";
      case Loop:
        return "\"outer loop\"";
      case EndLoop:
        return "\"endloop\"";
      case EndFacet:
        return "\"endfacet\"";
      default:
        return "\"vertex\"";
    }
  }

  State expected = Solid;
  size_t lineNumber = 0;
  std::array<Kernel::Vec3, 3> corners;
  SourceModel& model;
};

}  // namespace

SourceModel readStl(const std::string& path, const std::string& bytes) {
  SourceModel model;
  model.format = "STL";
  model.materials.emplace_back();
  if (isBinary(bytes)) {
    readBinary(bytes, model);
  } else if (startsWithSolid(bytes)) {
    TextReader(model).read(bytes);
  } else if (bytes.size() >= HeaderSize) {
    throw ImportError("it declares " + std::to_string(littleEndian(bytes, HeaderSize - 4)) +
                      " facets, but the file has " + std::to_string(bytes.size()) + " bytes");
  } else {
    throw ImportError("it is too short for an STL file");
  }
  const std::string stem = std::filesystem::path(path).stem().string();
  for (SourceObject& object : model.objects)
    if (object.id.empty()) object.id = stem;
  return model;
}

}  // namespace Lumivane::Importers
