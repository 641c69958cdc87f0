// STL through VTK's reader, which is given nothing but files whose structure holds: it reads past
// what a damaged file has.

#include "exchange/ImportError.h"
#include "exchange/MemoryFile.h"
#include "exchange/PolyDataCells.h"
#include "exchange/Readers.h"
#include "exchange/TextLines.h"
#include "exchange/VtkMessages.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>

#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkSTLReader.h>

namespace Lumivane::Exchange {
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

void checkBinary(const std::string& bytes) {
  const size_t facets = (bytes.size() - HeaderSize) / FacetSize;
  for (size_t facet = 0; facet < facets; ++facet) {
    for (size_t i = 3; i < 12; ++i) {  // the first three numbers are the normal
      float value = 0.0F;
      const std::uint32_t bits = littleEndian(bytes, HeaderSize + FacetSize * facet + 4 * i);
      std::memcpy(&value, &bits, sizeof value);
      if (!std::isfinite(value))
        throw ImportError("facet " + std::to_string(facet + 1) +
                          " has a corner coordinate that is not finite");
    }
  }
}

std::string lowered(std::string_view word) {
  std::string result(word);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

// Walks the statements of a text STL in their order and gathers the names of its solids.
class TextCheck {
 public:
  std::vector<std::string> check(std::string_view text) {
    for (std::string_view line; nextLine(text, line);) {
      ++lineNumber;
      const auto words = wordsOf(line);
      if (!words.empty()) take(words);
    }
    if (expected != Solid && expected != FacetOrEnd) fail("the file ends inside a facet");
    if (expected == FacetOrEnd) fail("the file ends before \"endsolid\"");
    return names;
  }

 private:
  enum State { Solid, FacetOrEnd, Loop, Vertex1, Vertex2, Vertex3, EndLoop, EndFacet };

  [[noreturn]] void fail(const std::string& cause) const {
    throw ImportError("line " + std::to_string(lineNumber) + ": " + cause);
  }

  void take(const std::vector<std::string_view>& words) {
    const std::string word = lowered(words[0]);
    if (expected == Solid && word == "solid") {
      names.emplace_back(words.size() > 1 ? std::string(words[1]) : "");
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
      expected = FacetOrEnd;
    } else {
      fail(inQuotes(words[0]) + " where " + expectation() + " is due");
    }
  }

  void takeVertex(const std::vector<std::string_view>& words) {
    if (words.size() != 4) fail("a vertex has no 3 coordinates");
    double number = 0.0;
    for (size_t i = 1; i < 4; ++i)
      if (!readNumber(words[i], number) || !std::isfinite(static_cast<float>(number)))
        fail("vertex coordinate " + inQuotes(words[i]) + " is not a finite number");
    expected = static_cast<State>(expected + 1);
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
  std::vector<std::string> names;
};

void addPolygons(vtkPolyData& data, SourceModel& model) {
  appendVertices(data, model);
  vtkDataArray* const solids = data.GetCellData()->GetScalars();
  const std::vector<std::vector<int>> polygons = polygonsOf(data);
  const int last = static_cast<int>(model.objects.size()) - 1;
  for (size_t i = 0; i < polygons.size(); ++i) {
    SourcePolygon polygon;
    polygon.loops = {polygons[i]};
    if (solids != nullptr)
      polygon.object =
          std::clamp(static_cast<int>(solids->GetTuple1(static_cast<vtkIdType>(i))), 0, last);
    model.polygons.push_back(std::move(polygon));
  }
}

}  // namespace

SourceModel readStl(const std::string& path, const std::string& bytes) {
  SourceModel model;
  model.format = "STL";
  model.materials.emplace_back();
  std::vector<std::string> names = {""};
  if (isBinary(bytes)) {
    checkBinary(bytes);
  } else if (startsWithSolid(bytes)) {
    names = TextCheck().check(bytes);
  } else if (bytes.size() >= HeaderSize) {
    throw ImportError("it tells of " + std::to_string(littleEndian(bytes, HeaderSize - 4)) +
                      " facets, which does not fit its size of " + std::to_string(bytes.size()) +
                      " bytes");
  } else {
    throw ImportError("it is too short for an STL file");
  }
  const std::string stem = std::filesystem::path(path).stem().string();
  for (const std::string& name : names)
    model.objects.push_back({name.empty() ? stem : name, false});

  const VtkMessages messages;
  const MemoryFile checked(bytes);
  const vtkNew<vtkSTLReader> reader;
  reader->SetFileName(checked.path().c_str());
  reader->ScalarTagsOn();
  reader->Update();
  if (!messages.firstError().empty()) throw ImportError(messages.firstError());
  addPolygons(*reader->GetOutput(), model);
  return model;
}

}  // namespace Lumivane::Exchange
