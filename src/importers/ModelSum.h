#pragma once

#include "importers/SourceModel.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <tuple>

namespace Lumivane::Importers {

/// Puts models together as one: points, objects and polygons one after the other, equal materials
/// once. Format and reference system are those of the first.
class ModelSum {
 public:
  /// \throws ImportError if there are more points than numbers
  void add(SourceModel model);
  SourceModel take();

 private:
  using MaterialKey = std::tuple<std::string, int, int, int, int, std::string>;

  int materialOf(const SourceMaterial& material);

  SourceModel sum;
  bool isEmpty = true;
  std::map<MaterialKey, int> materials;
  std::set<std::string> warnings;
};

}  // namespace Lumivane::Importers
