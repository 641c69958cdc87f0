#include "support/TempFolder.h"
#include "support/Thrown.h"

#include <lumivane/session/ClassFile.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/LoadedScene.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::TempFolder;
using Lumivane::Test::thrownText;
using Names = std::vector<std::string>;

// A house with two faces, one of two regions; two objects of one id; and a tree in letters beyond
// ASCII, as an escape in the file.
const char* const House = R"({"Points": [[0,0,0],[1,0,0],[1,1,0]], "Objects": [
  {"Id": "house", "Regions": [{"Face": 1, "Points": [1,2,3]}, {"Face": 2, "Points": [1,2,3]},
                              {"Face": 2, "Points": [1,3,2]}]},
  {"Id": "lamp", "Regions": [{"Face": 1, "Points": [1,2,3]}]},
  {"Id": "lamp", "Regions": [{"Face": 4, "Points": [1,2,3]}]},
  {"Id": "B\u00e4ume, 2", "Regions": [{"Points": [1,2,3]}]}]})";

LoadedScene house() { return LoadedScene::fromText(House, "house.json"); }

Names classesBy(const std::string& table) {
  LoadedScene scene = house();
  readClassesText(scene, table, "t.csv");
  return scene.classes().namesOfRegions();
}

std::string refusal(const std::string& table) {
  return thrownText<Error>([&table] { classesBy(table); });
}

TEST(ClassFile, RowsOfFacesComeBeforeThoseOfTheirObject) {
  EXPECT_EQ((Names{"Wall", "Roof", "Roof", "", "", ""}),
            classesBy("id,face,class\nhouse,2,Roof\nhouse,,Wall\n"));
  EXPECT_EQ((Names{"Wall", "Roof", "Roof", "", "", ""}),
            classesBy("id,face,class\nhouse,,Wall\nhouse,2,Roof\n"));
}

TEST(ClassFile, ObjectsAreNamedByNumberOrId) {
  EXPECT_EQ((Names{"", "", "", "", "Light", ""}), classesBy("class,object\nLight,3\n"));
  EXPECT_EQ((Names{"", "", "", "Light", "Light", ""}), classesBy("id,class\nlamp,Light\n"));
  EXPECT_EQ((Names{"", "", "", "", "Light", ""}), classesBy("object,id,class\n3,lamp,Light\n"));
  EXPECT_EQ((Names{"", "", "", "", "Light", ""}), classesBy("id,face,class\nlamp,4,Light\n"));
}

TEST(ClassFile, IdsAreThoseThatTablesShow) {
  EXPECT_EQ((Names{"", "", "", "", "", "Tree"}), classesBy("id,class\n\"B\xC3\xA4ume, 2\",Tree\n"));
}

TEST(ClassFile, WhatNoRowNamesStaysAndAnEmptyClassTakesAway) {
  LoadedScene scene = house();
  readClassesText(scene, "id,face,class\nhouse,,Wall\nlamp,,Light\n", "a.csv");
  readClassesText(scene, "id,face,class\nhouse,1,\nlamp,1,Post\n", "b.csv");
  EXPECT_EQ((Names{"", "Wall", "Wall", "Post", "Light", ""}), scene.classes().namesOfRegions());
}

TEST(ClassFile, WrongColumnsAreNamed) {
  EXPECT_EQ("t.csv: is empty: a heading with the columns id, face and class is missing",
            refusal(""));
  EXPECT_EQ("t.csv: line 1: column \"colour\" is none of object, id, face and class",
            refusal("id,colour\n"));
  EXPECT_EQ("t.csv: line 1: column \"id\" is there twice", refusal("id,id,class\n"));
  EXPECT_EQ("t.csv: line 1: there is no column \"class\"", refusal("id,face\n"));
  EXPECT_EQ("t.csv: line 1: there is no column \"id\" or \"object\"", refusal("face,class\n"));
  EXPECT_EQ("t.csv: line 2: 1 fields for 2 columns", refusal("id,class\nhouse\n"));
}

TEST(ClassFile, ARowThatDoesNotFitTheSceneIsRefusedWithItsLine) {
  EXPECT_EQ(
      "t.csv: line 3: column \"id\": house.json has no object \"shed\": correct the line, or "
      "remove it",
      refusal("id,class\nhouse,Wall\nshed,Wall\n"));
  EXPECT_EQ(
      "t.csv: line 2: column \"object\": house.json has no object 5, but objects 1 to 4: correct "
      "the line, or remove it",
      refusal("object,class\n5,Wall\n"));
  EXPECT_EQ(
      "t.csv: line 2: column \"id\": object 2 of house.json is \"lamp\", not \"house\": correct "
      "the line, or remove it",
      refusal("object,id,class\n2,house,Wall\n"));
  EXPECT_EQ(
      "t.csv: line 2: column \"face\": object \"house\" of house.json has no face 3: correct the "
      "line, or remove it",
      refusal("id,face,class\nhouse,3,Wall\n"));
}

TEST(ClassFile, CellsThatAreNoNumbersAndContradictionsAreRefused) {
  EXPECT_EQ("t.csv: line 2: column \"face\": \"two\" is not a number from 1",
            refusal("id,face,class\nhouse,two,Wall\n"));
  EXPECT_EQ("t.csv: line 2: column \"object\": \"0\" is not a number from 1",
            refusal("object,class\n0,Wall\n"));
  EXPECT_EQ("t.csv: line 2: column \"id\" is empty", refusal("id,class\n,Wall\n"));
  EXPECT_EQ("t.csv: line 2: column \"object\" is empty", refusal("object,class\n,Wall\n"));
  EXPECT_EQ(
      "t.csv: line 4: column \"class\": \"Roof\", but line 2 says \"Wall\" of the same object",
      refusal("id,class\nhouse,Wall\nhouse,Wall\nhouse,Roof\n"));
  EXPECT_EQ("t.csv: line 3: column \"class\": \"Roof\", but line 2 says \"Wall\" of the same face",
            refusal("id,face,class\nhouse,1,Wall\nhouse,1,Roof\n"));
}

TEST(ClassFile, ARefusedTableLeavesTheClassesAsTheyWere) {
  LoadedScene scene = house();
  readClassesText(scene, "id,class\nhouse,Wall\n", "a.csv");
  EXPECT_THROW(readClassesText(scene, "id,class\nhouse,Roof\nshed,Roof\n", "b.csv"), Error);
  EXPECT_EQ((Names{"Wall", "Wall", "Wall", "", "", ""}), scene.classes().namesOfRegions());
}

TEST(ClassFile, TheTableOfASceneGivesItsClassesBack) {
  LoadedScene scene = house();
  EXPECT_EQ("id,face,class\n", classesText(scene));
  readClassesText(scene,
                  "id,face,class\nhouse,1,\"Wall, old\"\nhouse,2,Roof\nlamp,,Light\n"
                  "\"B\xC3\xA4ume, 2\",,Tree\n",
                  "t.csv");
  const std::string written = classesText(scene);
  EXPECT_EQ(
      "id,face,class\nhouse,1,\"Wall, old\"\nhouse,2,Roof\nlamp,,Light\nlamp,,Light\n"
      "\"B\xC3\xA4ume, 2\",,Tree\n",
      written);
  LoadedScene again = house();
  readClassesText(again, written, "t.csv");
  EXPECT_EQ(scene.classes().namesOfRegions(), again.classes().namesOfRegions());
}

TEST(ClassFile, TheTableBesideASceneIsReadIfThereIsOne) {
  const TempFolder folder;
  LoadedScene scene = LoadedScene::fromFile(folder.file("house.json", House));
  EXPECT_FALSE(readClassesBeside(scene));
  EXPECT_EQ(folder.path("house.classes.csv"), classFileBeside(scene.name()));
  folder.file("house.classes.csv", "id,class\nlamp,Light\n");
  EXPECT_TRUE(readClassesBeside(scene));
  EXPECT_EQ(Names{"Light"}, scene.classes().names);
  folder.file("house.classes.csv", "id,class\nshed,Light\n");
  EXPECT_EQ(folder.path("house.classes.csv") + ": line 2: column \"id\": " + scene.name() +
                " has no object \"shed\": correct the line, or remove it",
            thrownText<Error>([&scene] { readClassesBeside(scene); }));
}

TEST(ClassFile, AMissingTableIsNamed) {
  LoadedScene scene = house();
  EXPECT_EQ("there is none.csv: cannot be read: No such file or directory",
            thrownText<Error>([&scene] { readClasses(scene, "there is none.csv"); }));
}

}  // namespace
}  // namespace Lumivane::Session
