#pragma once

#include "importers/FileOrderMap.h"
#include "importers/SourceModel.h"

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace Lumivane::Importers {

/// CityJSON keeps the order of a file's objects, and so do we.
using CityNode = nlohmann::basic_json<FileOrderMap>;

/// Places from which the boundaries of a geometry are read: which vertices they number, and where
/// these stand among the vertices of the model.
struct CityVertices {
  std::size_t count = 0;
  int first = 0;
};

/// Colours of the polygons of one city object.
class CityPalette {
 public:
  CityPalette(const CityNode& root, SourceModel& model);

  /// The material of a polygon, with its class.
  ///
  /// \param appearance  index into the document's materials, or -1
  /// \param surface     semantic type of the polygon, or empty
  /// \param object      type of the city object
  int material(int appearance, const std::string& surface, const std::string& object,
               const std::vector<int>& outline);

  int appearanceCount() const { return static_cast<int>(appearances.size()); }

 private:
  SourceMaterial colour(int appearance, const std::string& surface, const std::string& object,
                        const std::vector<int>& outline) const;

  SourceModel& model;
  std::vector<SourceMaterial> appearances;
  // Of the model's materials, by class and colour.
  std::map<std::pair<std::string, std::array<int, 4>>, int> numbers;
};

/// Adds the polygons of one geometry object to the model.
///
/// \param objectType   type of the city object
/// \param objectIndex  its place among the model's objects
/// \return false if the geometry holds no surfaces, as points and lines
/// \throws ImportError that does not name the city object
bool addCityGeometry(const CityNode& geometry, const CityVertices& vertices,
                     const std::string& objectType, int objectIndex, CityPalette& palette,
                     SourceModel& model);

}  // namespace Lumivane::Importers
