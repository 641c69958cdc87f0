#include "support/JsonText.h"

#include <lumivane/base/BaseLibClass.h>

#include <type_traits>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

TEST(BaseLibClass, WritesAnEmptyObject) {
  BaseLibClass object;
  EXPECT_TRUE(object.serialize().isObject());
  EXPECT_EQ(0u, object.serialize().getCount());
}

TEST(BaseLibClass, EachWritingGivesANodeOfItsOwn) {
  BaseLibClass object;
  const Jzon::Node first = object.serialize(), second = object.serialize();
  EXPECT_NE(first, second);  // containers are equal only if shared
}

TEST(BaseLibClass, ReadingReturnsTheObjectItself) {
  BaseLibClass object;
  read(object, "[1]");
  EXPECT_EQ("{}", written(object));
}

TEST(BaseLibClass, HasNoVirtualDestructor) {
  EXPECT_TRUE(std::is_polymorphic_v<BaseLibClass>);
  EXPECT_FALSE(std::has_virtual_destructor_v<BaseLibClass>);
}

}  // namespace
}  // namespace Lumivane::Base
