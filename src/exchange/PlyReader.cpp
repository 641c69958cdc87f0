// PLY through VTK's reader, which is given nothing but files that were checked from end to end.

#include "exchange/ImportError.h"
#include "exchange/PlyCheck.h"
#include "exchange/PolyDataCells.h"
#include "exchange/Readers.h"
#include "exchange/VtkMessages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>

#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkNew.h>
#include <vtkPLYReader.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>

namespace Lumivane::Exchange {
namespace {

using Rgb = std::array<int, 3>;

// Mean colours of corners are rounded to these steps, so that a scan has hundreds of brushes and
// not millions.
constexpr double MixedStep = 17.0;

vtkDataArray* colours(vtkDataSetAttributes& data) {
  vtkDataArray* const array =
      data.GetArray("RGB") != nullptr ? data.GetArray("RGB") : data.GetArray("RGBA");
  return array != nullptr && array->GetNumberOfComponents() >= 3 ? array : nullptr;
}

// The colours of a mesh: of its faces, or mixed of those of their corners, or one for all.
class FaceColours {
 public:
  FaceColours(vtkPolyData& data, SourceModel& target)
      : ofFaces(colours(*data.GetCellData())),
        ofPoints(colours(*data.GetPointData())),
        model(target) {}

  int material(size_t face, const std::vector<int>& corners) {
    Rgb rgb{SourceMaterial().red, SourceMaterial().green, SourceMaterial().blue};
    if (ofFaces != nullptr && static_cast<vtkIdType>(face) < ofFaces->GetNumberOfTuples())
      rgb = tuple(*ofFaces, static_cast<vtkIdType>(face));
    else if (ofPoints != nullptr && !corners.empty())
      rgb = mixed(corners);
    const auto [place, isNew] = numbers.emplace(rgb, static_cast<int>(model.materials.size()));
    if (isNew) model.materials.push_back({"", rgb[0], rgb[1], rgb[2], 255});
    return place->second;
  }

 private:
  static Rgb tuple(vtkDataArray& array, vtkIdType index) {
    Rgb rgb{};
    for (int c = 0; c < 3; ++c)
      rgb[static_cast<size_t>(c)] =
          std::clamp(static_cast<int>(array.GetComponent(index, c)), 0, 255);
    return rgb;
  }

  Rgb mixed(const std::vector<int>& corners) const {
    std::array<double, 3> sum{};
    for (const int corner : corners) {
      const Rgb rgb = tuple(*ofPoints, corner);
      for (size_t c = 0; c < 3; ++c) sum[c] += rgb[c];
    }
    Rgb result{};
    for (size_t c = 0; c < 3; ++c)
      result[c] = static_cast<int>(
          std::round(sum[c] / static_cast<double>(corners.size()) / MixedStep) * MixedStep);
    return result;
  }

  vtkDataArray* ofFaces;
  vtkDataArray* ofPoints;
  SourceModel& model;
  std::map<Rgb, int> numbers;
};

}  // namespace

SourceModel readPly(const std::string& path, const std::string& bytes) {
  checkPly(bytes);
  SourceModel model;
  model.format = "PLY";
  model.objects.push_back({std::filesystem::path(path).stem().string(), false});

  const VtkMessages messages;
  const vtkNew<vtkPLYReader> reader;
  reader->SetFileName(path.c_str());
  reader->Update();
  if (!messages.firstError().empty()) throw ImportError(messages.firstError());
  vtkPolyData& data = *reader->GetOutput();
  appendVertices(data, model);
  FaceColours faceColours(data, model);
  const std::vector<std::vector<int>> polygons = polygonsOf(data);
  for (size_t i = 0; i < polygons.size(); ++i) {
    SourcePolygon polygon;
    polygon.material = faceColours.material(i, polygons[i]);
    polygon.loops = {polygons[i]};
    model.polygons.push_back(std::move(polygon));
  }
  return model;
}

}  // namespace Lumivane::Exchange
