#include "support/ListPattern.h"

#include <lumivane/scene/Objects.h>

namespace Lumivane::Test {
namespace {

struct ObjectsCase {
  static constexpr const char* Name = "Objects";
  static ListOperations<Scene::Objects, Scene::Object> operations() {
    using List = Scene::Objects;
    return {&List::getObjects,   &List::setObjects,   &List::getObject,   &List::addObject,
            &List::insertObject, &List::removeObject, &List::removeObject};
  }
};

using ObjectsCases = ::testing::Types<ObjectsCase>;
INSTANTIATE_TYPED_TEST_SUITE_P(Objects, ModelList, ObjectsCases, CaseNames);

}  // namespace
}  // namespace Lumivane::Test
