#pragma once

#include "kernel/Vec.h"
#include "support/TempFolder.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Error.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace Lumivane::Test {

/// A region of an imported scene with what its numbers stand for.
struct ImportedRegion {
  std::string object;
  int face = 0;
  std::array<int, 4> colour{};
  std::vector<Kernel::Vec3> corners;
  std::vector<int> docking;

  /// Half the area vector: a shot keeps the region where this points away from the eye.
  Kernel::Vec3 areaVector() const {
    Kernel::Vec3 sum;
    for (size_t i = 1; i + 1 < corners.size(); ++i)
      sum = sum + Kernel::cross(corners[i] - corners[0], corners[i + 1] - corners[0]);
    return 0.5 * sum;
  }
  double area() const { return Kernel::length3(areaVector()); }

  /// Length of the edges that are drawn.
  double drawnLength() const {
    double sum = 0.0;
    for (size_t i = 0; i < corners.size(); ++i)
      if (std::find(docking.begin(), docking.end(), static_cast<int>(i) + 1) == docking.end())
        sum += Kernel::distance(corners[i], corners[(i + 1) % corners.size()]);
    return sum;
  }
};

inline ImportedRegion importedRegion(Scene::Scene3D& scene, Scene::Object& object,
                                     Geometry::Region& region) {
  ImportedRegion result;
  result.object = object.getId();
  result.face = region.getFaceNumber();
  result.docking = *region.getDockingEdges();
  Base::Brush* const brush = scene.getBrushes()->getBrush(region.getBrushNumber() - 1);
  result.colour = {brush->getRed(), brush->getGreen(), brush->getBlue(), brush->getAlpha()};
  for (const int number : *region.getPoints()) {
    Geometry::Point3d* const point = scene.getPoints()->getPoint(number - 1);
    result.corners.push_back({point->getX(), point->getY(), point->getZ()});
  }
  return result;
}

/// All regions of a scene, object by object.
inline std::vector<ImportedRegion> importedRegions(const Importers::ImportedScene& imported) {
  Scene::Scene3D& scene = imported.scene.scene();
  std::vector<ImportedRegion> result;
  for (Scene::Object* const object : *scene.getObjects()->getObjects())
    for (Geometry::Region* const region : *object->getRegions()->getRegions())
      result.push_back(importedRegion(scene, *object, *region));
  return result;
}

/// The regions of one object.
inline std::vector<ImportedRegion> regionsOf(const Importers::ImportedScene& imported,
                                             const std::string& object) {
  std::vector<ImportedRegion> result;
  for (ImportedRegion& region : importedRegions(imported))
    if (region.object == object) result.push_back(std::move(region));
  return result;
}

/// Imports a text as a file with that name.
inline Importers::ImportedScene importText(const std::string& name, const std::string& text,
                                           const Importers::ImportOptions& options = {}) {
  const TempFolder folder;
  return Importers::Importer::importFile(folder.file(name, text), options);
}

inline std::string modelPath(const std::string& name) { return LUMIVANE_MODELS "/" + name; }

inline Importers::ImportedScene importModel(const std::string& name,
                                            const Importers::ImportOptions& options = {}) {
  return Importers::Importer::importFile(modelPath(name), options);
}

/// The cause of the error that importing a text ends in; empty if it ends well.
inline std::string importFault(const std::string& name, const std::string& text,
                               const Importers::ImportOptions& options = {}) {
  try {
    importText(name, text, options);
    return "";
  } catch (const Session::Error& error) {
    return error.cause();
  }
}

}  // namespace Lumivane::Test
