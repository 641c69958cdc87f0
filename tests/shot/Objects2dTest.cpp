#include "support/ListPattern.h"

#include <lumivane/shot/Objects2d.h>

namespace Lumivane::Test {
namespace {

struct Objects2dCase {
  static constexpr const char* Name = "Objects2d";
  static ListOperations<Shot::Objects2d, Shot::Object2d> operations() {
    using List = Shot::Objects2d;
    return {&List::getObjects,   &List::setObjects,   &List::getObject,   &List::addObject,
            &List::insertObject, &List::removeObject, &List::removeObject};
  }
};

using Objects2dCases = ::testing::Types<Objects2dCase>;
INSTANTIATE_TYPED_TEST_SUITE_P(Objects2d, ModelList, Objects2dCases, CaseNames);

}  // namespace
}  // namespace Lumivane::Test
