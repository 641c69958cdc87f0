#pragma once

#include "algorithm/pipeline/FirstPass.h"

#include <memory>

namespace Lumivane::Base {
class Brushes;
class Pens;
class Properties;
class Scales;
}  // namespace Lumivane::Base
namespace Lumivane::Geometry {
class Faces2d;
}
namespace Lumivane::Scene {
class Objects;
}
namespace Lumivane::Shot {
class Shot2d;
}

/// The second pass over a scene's objects: the records of the shot.
namespace Lumivane::Algorithm {

/// Destroys a shot that is not finished, and not what it shares with the scene.
struct UnfinishedShotDeleter {
  void operator()(Shot::Shot2d* shot) const;
};
using UnfinishedShot = std::unique_ptr<Shot::Shot2d, UnfinishedShotDeleter>;

/// A shot with empty lists, without brushes and pens.
UnfinishedShot newShot(Base::View* view);

/// Appends the record of a scene's object, owned by the shot from now on. Returns its faces.
Geometry::Faces2d& addObject(Shot::Shot2d& shot, const Scene::Object& object);

/// What a shot takes over from its scene, and how its faces are coloured.
struct ShotSource {
  Base::View* view;
  Scene::Objects* objects;
  Base::Brushes* brushes;
  Base::Pens* pens;
  Base::Properties* properties;
  Base::Scales* scales;
  int propertyNum;   ///< to colour by; below 1 for none
  int scaleNum;      ///< likewise
  double precision;  ///< of docking edges
};

/// Makes the shot of what the first pass has found, its faces in the order of the scene.
UnfinishedShot buildShot(const ShotSource& source, ProjectedObjects& projections);

}  // namespace Lumivane::Algorithm
