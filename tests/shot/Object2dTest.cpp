#include "support/Copies.h"
#include "support/Documents.h"

#include <lumivane/geometry/Faces2d.h>
#include <lumivane/shot/Object2d.h>

#include <memory>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Shot::Object2d;

TEST(Object2d, IsEmptyAtFirst) {
  Object2d object;
  EXPECT_EQ("", object.getId());
  EXPECT_EQ(nullptr, object.getFaces());
  EXPECT_EQ("{\n\n}", textOf(object));
}

TEST(Object2d, WritesIdThenFacesAndReadsThemBack) {
  const char* text = "{\n\"Id\": \"A\",\n\"Faces\": [{\n\"Regions\": [1]\n}]\n}";
  Object2d object;
  EXPECT_EQ(text, textOf(readInto(object, text)));
  EXPECT_EQ("A", object.getId());
}

TEST(Object2d, ReadsAnEmptyArrayAsAnEmptyListAndAnythingElseAsNone) {
  Object2d object;
  readInto(object, "{\"Faces\":3}");
  EXPECT_EQ(nullptr, object.getFaces());
  readInto(object, "{\"Faces\":{}}");
  EXPECT_EQ(nullptr, object.getFaces());
  readInto(object, "{\"Faces\":[]}");
  ASSERT_NE(nullptr, object.getFaces());
  EXPECT_TRUE(object.getFaces()->getFaces()->empty());
  EXPECT_EQ("{\n\"Faces\": []\n}", textOf(object));
}

TEST(Object2d, ReadsItsIdFromAStringOnly) {
  Object2d object;
  readInto(object, "{\"Id\":3}");
  EXPECT_EQ("", object.getId());
  EXPECT_EQ(&object, object.deserialize(nodeOf("[\"A\"]")));
  EXPECT_EQ("", object.getId());
}

TEST(Object2d, CopiesShareTheFacesAndHaveAnIdOfTheirOwn) {
  Object2d source;
  readInto(source, "{\"Id\":\"A\",\"Faces\":[]}");
  UndestroyedCopy<Object2d> copy(source);
  source.setId("B");
  EXPECT_EQ("A", copy->getId());
  EXPECT_EQ(source.getFaces(), copy->getFaces());
  *copy = source;
  EXPECT_EQ("B", copy->getId());
}

TEST(Object2d, SetFacesFreesNothing) {
  Object2d object;
  const auto old = std::make_unique<Geometry::Faces2d>();
  object.setFaces(old.get());
  auto* fresh = new Geometry::Faces2d();
  object.setFaces(fresh);
  EXPECT_EQ(fresh, object.getFaces());
  EXPECT_TRUE(old->getFaces()->empty());
}

}  // namespace
}  // namespace Lumivane::Test
