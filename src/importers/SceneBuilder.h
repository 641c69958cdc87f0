#pragma once

#include "importers/SourceFaces.h"
#include "importers/SourceModel.h"

#include <lumivane/importers/ImportOptions.h>
#include <lumivane/importers/ImportReport.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Importers {

/// A scene, and the name of the class of each of its regions; empty for none.
struct BuiltScene {
  std::unique_ptr<Scene::Scene3D> scene;
  std::vector<std::string> classNames;
};

/// Writes the faces of a placed model into a new scene, with one brush for each colour in use, one
/// pen, and ids that differ. Objects without faces are left out. Fills the counts of the report.
///
/// \param surfaces  the faces of each object of the model
/// \param order     the objects in the order of the scene's list
/// \param given     names of the classes that `SurfaceRegion::givenClass` points at
/// \throws ImportError if nothing is left
BuiltScene buildScene(const SourceModel& model, const std::vector<ObjectSurfaces>& surfaces,
                      const std::vector<std::size_t>& order, const std::vector<std::string>& given,
                      ImportSides sides, ImportReport& report);

/// How many regions of a scene each `SurfaceRegion` becomes, one behind the other.
int regionsOfEach(ImportSides sides);

}  // namespace Lumivane::Importers
