#include "importers/ModelSum.h"

#include "importers/ImportError.h"

#include <limits>
#include <utility>
#include <vector>

namespace Lumivane::Importers {

void ModelSum::add(SourceModel model) {
  if (std::exchange(isEmpty, false)) {
    sum.format = model.format;
    sum.yUp = model.yUp;
    sum.referenceSystem = model.referenceSystem;
  }
  constexpr auto Most = static_cast<std::size_t>(std::numeric_limits<int>::max());
  if (model.vertices.size() > Most - sum.vertices.size())
    throw ImportError("there are more than 2147483647 points");
  const auto firstVertex = static_cast<int>(sum.vertices.size());
  const auto firstObject = static_cast<int>(sum.objects.size());
  std::vector<int> numbers;
  for (const SourceMaterial& material : model.materials) numbers.push_back(materialOf(material));
  for (SourcePolygon& polygon : model.polygons) {
    for (std::vector<int>& loop : polygon.loops)
      for (int& vertex : loop) vertex += firstVertex;
    polygon.material = numbers[static_cast<std::size_t>(polygon.material)];
    polygon.object += firstObject;
    sum.polygons.push_back(std::move(polygon));
  }
  sum.vertices.insert(sum.vertices.end(), model.vertices.begin(), model.vertices.end());
  for (SourceObject& object : model.objects) sum.objects.push_back(std::move(object));
  sum.wholes.merge(model.wholes);
  for (std::string& warning : model.warnings)
    if (warnings.insert(warning).second) sum.warnings.push_back(std::move(warning));
}

SourceModel ModelSum::take() { return std::move(sum); }

int ModelSum::materialOf(const SourceMaterial& material) {
  const MaterialKey key{material.name, material.red,   material.green,
                        material.blue, material.alpha, material.className};
  const auto [known, isNew] = materials.emplace(key, static_cast<int>(sum.materials.size()));
  if (isNew) sum.materials.push_back(material);
  return known->second;
}

}  // namespace Lumivane::Importers
