// glTF 2.0 through VTK's document loader, which is given nothing but documents that were checked.

#include "exchange/GltfCheck.h"
#include "exchange/ImportError.h"
#include "exchange/PolyDataCells.h"
#include "exchange/Readers.h"
#include "exchange/VtkMessages.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

#include <vtkGLTFDocumentLoader.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkPolyData.h>

namespace Lumivane::Exchange {
namespace {

using Model = vtkGLTFDocumentLoader::Model;
using Material = vtkGLTFDocumentLoader::Material;
using Node = vtkGLTFDocumentLoader::Node;

// Base colours are linear shares of light, and pictures hold the values of screens.
int channel(double linear) {
  const double value = std::clamp(linear, 0.0, 1.0);
  const double screen =
      value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1.0 / 2.4) - 0.055;
  return static_cast<int>(std::lround(screen * 255.0));
}

SourceMaterial materialOf(const Material& source) {
  SourceMaterial material;
  material.name = source.Name;
  const std::vector<double>& colour = source.PbrMetallicRoughness.BaseColorFactor;
  if (colour.size() < 4) return material;
  material.red = channel(colour[0]);
  material.green = channel(colour[1]);
  material.blue = channel(colour[2]);
  if (source.AlphaMode == Material::AlphaModeType::BLEND)
    material.alpha = static_cast<int>(std::lround(std::clamp(colour[3], 0.0, 1.0) * 255.0));
  return material;
}

class GltfReader {
 public:
  explicit GltfReader(Model& loaded) : source(loaded) {
    model.format = "glTF";
    model.yUp = true;
    for (const Material& material : source.Materials)
      model.materials.push_back(materialOf(material));
    model.materials.emplace_back();  // for primitives without a material
  }

  SourceModel read() {
    const size_t scene =
        source.DefaultScene >= 0 && static_cast<size_t>(source.DefaultScene) < source.Scenes.size()
            ? static_cast<size_t>(source.DefaultScene)
            : 0;
    for (const unsigned int node : source.Scenes[scene].Nodes) addNode(static_cast<int>(node));
    if (skippedPrimitives > 0)
      model.warnings.push_back(std::to_string(skippedPrimitives) +
                               " primitives of points or lines are left out");
    return std::move(model);
  }

 private:
  // Trees of nodes can be deep, so this does not call itself.
  void addNode(int root) {
    std::vector<int> waiting = {root};
    while (!waiting.empty()) {
      const Node& node = source.Nodes[static_cast<size_t>(waiting.back())];
      const int number = waiting.back();
      waiting.pop_back();
      waiting.insert(waiting.end(), node.Children.rbegin(), node.Children.rend());
      if (node.Mesh < 0) continue;
      const vtkGLTFDocumentLoader::Mesh& mesh = source.Meshes[static_cast<size_t>(node.Mesh)];
      std::string name = node.Name.empty() ? mesh.Name : node.Name;
      if (name.empty()) name = "node " + std::to_string(number);
      model.objects.push_back({name, false});
      for (const auto& primitive : mesh.Primitives) addPrimitive(primitive, node);
    }
  }

  void addPrimitive(const vtkGLTFDocumentLoader::Primitive& primitive, const Node& node) {
    vtkPolyData* const data = primitive.Geometry;
    if (data == nullptr || data->GetNumberOfPolys() + data->GetNumberOfStrips() == 0) {
      ++skippedPrimitives;
      return;
    }
    const int first = appendVertices(*data, model);
    const bool turned = transform(static_cast<size_t>(first), node.GlobalTransform);
    for (std::vector<int>& loop : polygonsOf(*data)) {
      for (int& vertex : loop) vertex += first;
      if (turned) std::reverse(loop.begin(), loop.end());
      SourcePolygon polygon;
      polygon.loops.push_back(std::move(loop));
      polygon.material = primitive.Material >= 0 ? primitive.Material
                                                 : static_cast<int>(model.materials.size()) - 1;
      polygon.object = static_cast<int>(model.objects.size()) - 1;
      model.polygons.push_back(std::move(polygon));
    }
  }

  // Places the vertices from `first` on. A mirroring matrix turns inside and outside round.
  bool transform(size_t first, vtkMatrix4x4* matrix) {
    if (matrix == nullptr) return false;
    for (size_t i = first; i < model.vertices.size(); ++i) {
      Kernel::Vec3& v = model.vertices[i];
      const double in[4] = {v.x, v.y, v.z, 1.0};
      double out[4];
      matrix->MultiplyPoint(in, out);
      v = {out[0], out[1], out[2]};
    }
    return matrix->Determinant() < 0.0;
  }

  Model& source;
  SourceModel model;
  size_t skippedPrimitives = 0;
};

// Takes out of a model what is not needed here, so that its data is not loaded: textures that are
// missing do no harm then.
void keepShapes(Model& model) {
  model.Images.clear();
  model.Textures.clear();
  model.Skins.clear();
  model.Animations.clear();
  for (Node& node : model.Nodes) node.Skin = -1;
  for (auto& mesh : model.Meshes) {
    for (auto& primitive : mesh.Primitives) {
      primitive.Targets.clear();
      const int positions = primitive.AttributeIndices["POSITION"];
      primitive.AttributeIndices = {{"POSITION", positions}};
    }
  }
}

std::string reason(const VtkMessages& messages) {
  return messages.firstError().empty() ? "it cannot be read as glTF" : messages.firstError();
}

}  // namespace

SourceModel readGltf(const std::string& path, const std::string& bytes) {
  // It is read once more by its name, beside which its buffers lie.
  if (!std::filesystem::is_regular_file(path)) throw ImportError("it is no plain file");
  checkGltf(path, bytes);
  const VtkMessages messages;
  const vtkNew<vtkGLTFDocumentLoader> loader;
  std::vector<char> data;
  const bool isBinary = bytes.rfind("glTF", 0) == 0;
  if (!loader->LoadModelMetaDataFromFile(path)) throw ImportError(reason(messages));
  Model& loaded = *loader->GetInternalModel();
  const bool moves = !loaded.Skins.empty() || !loaded.Animations.empty();
  keepShapes(loaded);
  if (isBinary && !loader->LoadFileBuffer(path, data)) throw ImportError(reason(messages));
  if (!loader->LoadModelData(data) || !loader->BuildModelVTKGeometry())
    throw ImportError(reason(messages));
  loader->BuildGlobalTransforms();
  SourceModel model = GltfReader(loaded).read();
  if (moves)
    model.warnings.emplace_back("skins and animations are left out: everything stands at rest");
  return model;
}

}  // namespace Lumivane::Exchange
