#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/measure/ShareClasses.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>

#include <cstddef>

namespace Lumivane::Measure {
namespace {

// What has one class keeps it; what has two has none.
template <class Key>
void keepCommon(std::map<Key, std::string>& classes, const Key& key, const std::string& name) {
  const auto [known, isNew] = classes.try_emplace(key, name);
  if (!isNew && known->second != name) known->second.clear();
}

template <class Key>
const std::string& found(const std::map<Key, std::string>& classes, const Key& key) {
  static const std::string none;
  const auto place = classes.find(key);
  return place == classes.end() ? none : place->second;
}

}  // namespace

ShareClasses::ShareClasses(const Session::LoadedScene& scene) {
  const std::vector<std::string> names = scene.classes().namesOfRegions();
  if (names.empty() || scene.scene().getObjects() == nullptr) return;
  std::size_t next = 0;
  int object = 0;
  for (const Scene::Object* const source : *scene.scene().getObjects()->getObjects()) {
    ++object;
    if (source == nullptr || source->getRegions() == nullptr) continue;
    int number = 0;
    for (const Geometry::Region* const region : *source->getRegions()->getRegions()) {
      const std::string& name = next < names.size() ? names[next] : std::string();
      ++next;
      regions[{object, ++number}] = name;
      keepCommon(objects, object, name);
      if (region != nullptr) keepCommon(faces, Numbers(object, region->getFaceNumber()), name);
    }
  }
}

const std::string& ShareClasses::ofRegion(int object, int sourceRegion) const {
  return found(regions, Numbers(object, sourceRegion));
}

const std::string& ShareClasses::ofFace(int object, int face) const {
  return found(faces, Numbers(object, face));
}

const std::string& ShareClasses::ofObject(int object) const { return found(objects, object); }

}  // namespace Lumivane::Measure
