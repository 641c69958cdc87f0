// Part, Face, VFace and Face2d, which build on one another, and their lists.

#include "support/Copies.h"
#include "support/Documents.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Part.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/geometry/Vector3d.h>

#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using namespace Geometry;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Part, WritesAnEmptyObjectUntilItHasRegions) {
  Part part;
  EXPECT_EQ("{\n\n}", textOf(part));
  part.addRegion(2);
  part.addRegion(1);
  EXPECT_EQ("{\n\"Regions\": [2,1]\n}", textOf(part));
}

TEST(Part, ACopySharesItsRegions) {
  Part source;
  UndestroyedCopy<Part> copy(source);
  copy->addRegion(5);
  EXPECT_THAT(*source.getRegions(), ElementsAre(5));
}

TEST(Part, AnAssignmentSharesItsRegionsAndFreesNothing) {
  Part source;
  Part target;
  const std::unique_ptr<std::vector<int>> old(target.getRegions());
  target = source;
  target.addRegion(5);
  EXPECT_THAT(*source.getRegions(), ElementsAre(5));
  EXPECT_THAT(*old, IsEmpty());
  target.setRegions(nullptr);
}

TEST(Face2d, WritesAndReadsAsAPartDoes) {
  for (const char* text :
       {"{}", "[1]", "{\"Regions\":[]}", "{\"Regions\":[3,\"x\",1]}", "{\"Regions\":3}"}) {
    Part part;
    Face2d face;
    EXPECT_EQ(textOf(readInto(part, text)), textOf(readInto(face, text))) << text;
    EXPECT_EQ(*part.getRegions(), *face.getRegions()) << text;
  }
}

TEST(Face2d, IsNoPart) {
  static_assert(!std::is_base_of_v<Part, Face2d>);
  Face2d face;
  EXPECT_EQ("{\n\n}", textOf(face));
}

TEST(Face2d, CopiesShareItsRegions) {
  Face2d source;
  UndestroyedCopy<Face2d> copy(source);
  copy->addRegion(5);
  Face2d target;
  const std::unique_ptr<std::vector<int>> old(target.getRegions());
  target = source;
  target.addRegion(6);
  EXPECT_THAT(*source.getRegions(), ElementsAre(5, 6));
  EXPECT_THAT(*old, IsEmpty());
  target.setRegions(nullptr);
}

TEST(Face, LooksAlongZAtFirst) {
  const Face face;
  EXPECT_THAT(face.getNormal()->toVector(), ElementsAre(0, 0, 1));
  EXPECT_THAT(*face.getRegions(), IsEmpty());
}

TEST(Face, WritesRegionsThenItsNormal) {
  Face face;
  EXPECT_EQ("{\n\"Normal\": [0,0,1]\n}", textOf(face));
  face.addRegion(1);
  EXPECT_EQ("{\n\"Regions\": [1],\n\"Normal\": [0,0,1]\n}", textOf(face));
}

TEST(Face, WritesNoNormalWhereThereIsNone) {
  Face face;
  delete face.getNormal();
  face.setNormal(nullptr);
  EXPECT_EQ("{\n\n}", textOf(face));
  readInto(face, "{\"Normal\":[1,2,3]}");
  EXPECT_THAT(face.getNormal()->toVector(), ElementsAre(1, 2, 3));
}

TEST(Face, KeepsItsNormalWhereTheFileHasNone) {
  Face face;
  readInto(face, "{\"Regions\":[1]}");
  readInto(face, "[1,2]");
  EXPECT_THAT(face.getNormal()->toVector(), ElementsAre(0, 0, 1));
}

TEST(Face, ReadsAMalformedNormalAsZero) {
  for (const char* text :
       {"{\"Normal\":[1,2]}", "{\"Normal\":7}", "{\"Normal\":null}", "{\"Normal\":{}}"}) {
    Face face;
    const std::unique_ptr<Vector3d> first(face.getNormal());
    EXPECT_THAT(readInto(face, text).getNormal()->toVector(), ElementsAre(0, 0, 0)) << text;
  }
}

TEST(Face, LeavesAnEarlierNormalUnfreed) {
  Face face;
  const std::unique_ptr<Vector3d> first(face.getNormal());
  readInto(face, "{\"Normal\":[1,2,3]}");
  EXPECT_NE(first.get(), face.getNormal());
  EXPECT_THAT(first->toVector(), ElementsAre(0, 0, 1));

  auto* given = new Vector3d(4, 5, 6);
  delete face.getNormal();
  face.setNormal(given);
  readInto(face, "{\"Normal\":[7,8,9]}");
  EXPECT_THAT(given->toVector(), ElementsAre(4, 5, 6));
  delete given;
}

TEST(Face, ReadingManyTimesEndsWithTheLast) {
  Face face;
  const std::unique_ptr<Vector3d> first(face.getNormal());
  readInto(face, "{\"Normal\":[1,2,3]}");
  const std::unique_ptr<Vector3d> second(face.getNormal());
  readInto(face, "{\"Normal\":[4,5,6]}");
  EXPECT_THAT(face.getNormal()->toVector(), ElementsAre(4, 5, 6));
}

TEST(Face, ACopySharesNormalAndRegions) {
  Face source;
  UndestroyedCopy<Face> copy(source);
  copy->addRegion(5);
  copy->getNormal()->setX(2);
  EXPECT_THAT(*source.getRegions(), ElementsAre(5));
  EXPECT_THAT(source.getNormal()->toVector(), ElementsAre(2, 0, 1));
}

TEST(Face, ReadingASourceLeavesTheNormalOfItsCopyAlone) {
  Face source;
  UndestroyedCopy<Face> copy(source);
  readInto(source, "{\"Normal\":[1,2,3]}");
  EXPECT_THAT(copy->getNormal()->toVector(), ElementsAre(0, 0, 1));
  delete copy->getNormal();
}

TEST(Face, AnAssignmentSharesNormalAndRegionsAndFreesNothing) {
  Face source;
  Face target;
  const std::unique_ptr<std::vector<int>> oldRegions(target.getRegions());
  const std::unique_ptr<Vector3d> oldNormal(target.getNormal());
  target = source;
  EXPECT_EQ(source.getNormal(), target.getNormal());
  EXPECT_EQ(source.getRegions(), target.getRegions());
  EXPECT_THAT(oldNormal->toVector(), ElementsAre(0, 0, 1));
  EXPECT_THAT(*oldRegions, IsEmpty());
  target.setNormal(nullptr);
  target.setRegions(nullptr);
}

TEST(Face, AssigningAFaceToItselfChangesNothing) {
  Face face;
  face.addRegion(1);
  const Face& same = face;
  face = same;
  EXPECT_EQ("{\n\"Regions\": [1],\n\"Normal\": [0,0,1]\n}", textOf(face));
}

TEST(VFace, TakesNoValueForANegativeNumber) {
  VFace face;
  EXPECT_FALSE(face.setProperty(-1, 2.0));
  EXPECT_FALSE(face.getPropertyValue(-1).has_value());
  EXPECT_EQ("{\n\"Normal\": [0,0,1]\n}", textOf(face));
}

TEST(VFace, OverwritesAnOlderValue) {
  VFace face;
  EXPECT_TRUE(face.setProperty(3, 1.0));
  EXPECT_TRUE(face.setProperty(3, 2.0));
  EXPECT_EQ(2.0, face.getPropertyValue(3));
  EXPECT_EQ("{\n\"Normal\": [0,0,1],\n\"Values\": [[3,2]]\n}", textOf(face));
}

TEST(VFace, HasNoValueForANumberNeverSet) {
  VFace face;
  face.setProperty(0, 1.0);
  EXPECT_EQ(1.0, face.getPropertyValue(0));
  EXPECT_FALSE(face.getPropertyValue(1).has_value());
}

TEST(VFace, WritesItsValuesInAscendingOrder) {
  VFace face;
  face.setProperty(10, 0.5);
  face.setProperty(2, -1.25);
  face.addRegion(1);
  EXPECT_EQ("{\n\"Regions\": [1],\n\"Normal\": [0,0,1],\n\"Values\": [[2,-1.25],[10,0.5]]\n}",
            textOf(face));
}

TEST(VFace, ReadsPairsOfAnIntegerAndANumberAndDropsNegativeNumbers) {
  VFace face;
  face.setProperty(9, 9.0);
  readInto(face,
           "{\"Regions\":[4],\"Values\":[[1,2.5],[1.5,3],[\"2\",3],[3,\"x\"],[4],[5,6,7],8,"
           "[-1,2],[6.0,7]]}");
  EXPECT_EQ("{\n\"Regions\": [4],\n\"Normal\": [0,0,1],\n\"Values\": [[1,2.5],[6,7]]\n}",
            textOf(face));
}

TEST(VFace, KeepsItsValuesWhereTheFileHasNoArrayOfThem) {
  VFace face;
  face.setProperty(1, 2.0);
  readInto(face, "{}");
  readInto(face, "{\"Values\":3}");
  EXPECT_EQ(&face, face.deserialize(nodeOf("[[1,3]]")));
  EXPECT_EQ(2.0, face.getPropertyValue(1));
  readInto(face, "{\"Values\":[]}");
  EXPECT_FALSE(face.getPropertyValue(1).has_value());
}

TEST(VFace, ACopySharesItsValues) {
  VFace source;
  UndestroyedCopy<VFace> copy(source);
  copy->setProperty(1, 2.0);
  EXPECT_EQ(2.0, source.getPropertyValue(1));
}

TEST(VFace, WritesThroughThePointerOfAFace) {
  VFace valued;
  valued.setProperty(1, 2.0);
  Face* face = &valued;
  EXPECT_NE(std::string::npos, textOf(*face).find("\"Values\": [[1,2]]"));
}

TEST(Faces, DestroyAValuedFaceWithAllItHolds) {
  auto faces = std::make_unique<Faces>();
  auto* valued = new VFace();
  for (int number = 0; number < 100; ++number) valued->setProperty(number, 1.0);
  faces->addFace(new Face());
  faces->addFace(valued);
  faces->clear();
  EXPECT_TRUE(faces->getFaces()->empty());
  valued = new VFace();
  valued->setProperty(1, 1.0);
  faces->addFace(valued);
  faces->addFace(nullptr);
  faces.reset();
}

TEST(Faces, FreeTheFirstNormalOfAFaceThatTheyRead) {
  // A leak of what nobody else can hold, or a second deletion, shows under the address sanitizer.
  Faces faces;
  readInto(faces, "[{\"Normal\":[1,2,3]},{\"Normal\":4},{}]");
  EXPECT_THAT(faces.getFace(0)->getNormal()->toVector(), ElementsAre(1, 2, 3));
  EXPECT_THAT(faces.getFace(1)->getNormal()->toVector(), ElementsAre(0, 0, 0));
  EXPECT_THAT(faces.getFace(2)->getNormal()->toVector(), ElementsAre(0, 0, 1));
}

TEST(Faces, ReadPlainFacesOnlySoThatValuesAreDropped) {
  Faces faces;
  readInto(faces, "[{\"Regions\":[1],\"Values\":[[1,2]]}]");
  EXPECT_EQ(nullptr, dynamic_cast<VFace*>(faces.getFace(0)));
  EXPECT_EQ("[{\n\"Regions\": [1],\n\"Normal\": [0,0,1]\n}]", textOf(faces));
}

TEST(Faces2dIndexOf, FindsTheFaceItselfAndAShallowCopyOfIt) {
  Faces2d faces;
  faces.addFace(new Face2d());
  auto* second = new Face2d();
  faces.addFace(second);
  EXPECT_EQ(1, faces.indexOf(second));
  UndestroyedCopy<Face2d> copy(*second);
  EXPECT_EQ(1, faces.indexOf(&*copy));
}

TEST(Faces2dIndexOf, MissesAFaceWithTheSameNumbers) {
  Faces2d faces;
  Face2d other;
  EXPECT_EQ(-1, faces.indexOf(&other));
  faces.addFace(new Face2d());
  faces.getFace(0)->addRegion(1);
  other.addRegion(1);
  EXPECT_EQ(-1, faces.indexOf(&other));
  EXPECT_EQ(-1, faces.indexOf(nullptr));
}

TEST(Faces2dIndexOf, PassesOverNullElementsAndAMissingVector) {
  Faces2d faces;
  auto* face = new Face2d();
  faces.addFace(nullptr);
  faces.addFace(face);
  EXPECT_EQ(1, faces.indexOf(face));
  const std::unique_ptr<Face2d> owned(face);
  delete faces.getFaces();
  faces.setFaces(nullptr);
  EXPECT_EQ(-1, faces.indexOf(face));
}

}  // namespace
}  // namespace Lumivane::Test
