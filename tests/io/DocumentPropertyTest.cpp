// From a text to a model and back: random documents come back byte for byte, a tree that
// somebody else holds stays as it was, and depth does no harm.

#include "plain/JsonNumber.h"
#include "support/Capture.h"
#include "support/Documents.h"
#include "support/TempFolder.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

using Test::capturedStdout;
using Test::fileBytes;
using Test::nodeOf;
using Test::TempFolder;
using Test::textOf;
using Random = std::mt19937_64;
using ScenePointer = std::unique_ptr<Scene::Scene3D>;
using ShotPointer = std::unique_ptr<Shot::Shot2d>;

constexpr std::size_t Million = 1000000;

// ---- documents as the library writes them ----

/// "[a,b,...]" with up to `most` entries, at least `least`.
std::string listOf(Random& random, std::size_t least, std::size_t most,
                   const std::function<std::string()>& entry) {
  std::string text = "[";
  const std::size_t count = least + random() % (most - least + 1);
  for (std::size_t i = 0; i < count; ++i) text += (i > 0 ? "," : "") + entry();
  return text + "]";
}

/// An object of the members that are not empty.
std::string objectOf(std::initializer_list<std::string> members) {
  std::string text = "{\n";
  for (const std::string& member : members) {
    if (member.empty()) continue;
    if (text.size() > 2) text += ",\n";
    text += member;
  }
  return text + "\n}";
}

class Documents {
 public:
  explicit Documents(unsigned int seed) : random(seed) {}

  std::string scene() {
    return objectOf({sometimes("Brushes", colors(4)), sometimes("Pens", colors(5)),
                     sometimes("Points", vectors(3)), sometimes("Objects", objects()),
                     sometimes("Properties", listOf(random, 0, 3, [] { return "[1,\"a\\/b\"]"; })),
                     sometimes("Scales", listOf(random, 0, 2, [this] { return scale(); }))});
  }

  std::string shot() {
    return objectOf({sometimes("Brushes", colors(4)), sometimes("Pens", colors(5)),
                     sometimes("Points", vectors(2)),
                     sometimes("Regions", listOf(random, 0, 6, [this] { return region2d(); })),
                     sometimes("Objects", listOf(random, 0, 4, [this] { return object2d(); }))});
  }

 private:
  /// What `value` makes is always made, so that a document does not hang on the order of calls.
  std::string sometimes(const std::string& key, const std::string& value) {
    return random() % 4 > 0 ? member(key, value) : std::string();
  }
  static std::string member(const std::string& key, const std::string& value) {
    return "\"" + key + "\": " + value;
  }

  /// Any double with 6 digits, as a stream prints it.
  std::string number() {
    const double size = std::pow(10.0, static_cast<double>(random() % 16) - 8.0);
    const double value = std::uniform_real_distribution<double>(-size, size)(random);
    return Plain::numberText(random() % 5 == 0 ? std::floor(value) + 0.0 : value);
  }
  std::string count() { return std::to_string(random() % 100); }
  std::string counts() {
    return listOf(random, 1, 9, [this] { return count(); });
  }
  std::string vectors(std::size_t length) {
    return listOf(random, 0, 30, [this, length] {
      return listOf(random, length, length, [this] { return number(); });
    });
  }
  std::string colors(std::size_t length) {
    return listOf(random, 0, 5, [this, length] {
      return listOf(random, length, length, [this] { return count(); });
    });
  }
  std::string id() { return member("Id", "\"" + std::string(random() % 40, 'i') + "\\n1\""); }

  std::string region() {
    return objectOf({sometimes("Brush", count()), sometimes("Face", count()),
                     sometimes("Points", counts()), sometimes("DockingEdges", counts())});
  }
  std::string face() {
    return objectOf({sometimes("Regions", counts()),
                     member("Normal", listOf(random, 3, 3, [this] { return number(); }))});
  }
  std::string objects() {
    return listOf(random, 0, 6, [this] {
      return objectOf({id(), member("PartsCount", count()), sometimes("Pen", count()),
                       sometimes("Faces", listOf(random, 0, 4, [this] { return face(); })),
                       sometimes("Parts", "[{\n\"Regions\": " + counts() + "\n},{\n\n}]"),
                       sometimes("Regions", listOf(random, 0, 4, [this] { return region(); })),
                       sometimes("Overlays", "[{\n\"Object\": 1,\n\"Face\": 2\n}]")});
    });
  }
  std::string scale() {
    return objectOf({member("Name", "\"\""), member("Items", "[[-1.5,0,0,255],[2e+07,1,2,3]]")});
  }
  std::string region2d() {
    return objectOf({sometimes("Object", count()), sometimes("Pen", count()),
                     sometimes("Brush", count()), sometimes("Face", count()),
                     member("SourceRegion", count()), sometimes("Points", counts()),
                     sometimes("DockingEdges", counts())});
  }
  std::string object2d() {
    return objectOf({id(), sometimes("Faces", "[{\n\"Regions\": " + counts() + "\n},{\n\n}]")});
  }

  Random random;
};

TEST(DocumentProperty, ScenesComeBackByteForByte) {
  Documents documents(20240801);
  const TempFolder folder;
  for (int i = 0; i < 1500; ++i) {
    const std::string text = documents.scene();
    const ScenePointer scene(DataReader().readSceneString(text));
    ASSERT_NE(nullptr, scene);
    ASSERT_EQ(text, DataWriter().writeSceneString(scene.get()));
    if (i % 50 > 0) continue;
    capturedStdout([&] { DataWriter().writeSceneFile(scene.get(), folder.path("scene")); });
    ASSERT_EQ(text, fileBytes(folder.path("scene")));
  }
}

TEST(DocumentProperty, ShotsComeBackByteForByte) {
  Documents documents(20240802);
  const TempFolder folder;
  for (int i = 0; i < 1500; ++i) {
    const std::string text = documents.shot();
    const ShotPointer shot(DataReader().readShotString(text));
    ASSERT_NE(nullptr, shot);
    ASSERT_EQ(text, DataWriter().writeShotString(shot.get()));
    if (i % 50 > 0) continue;
    capturedStdout([&] { DataWriter().writeShotFile(shot.get(), folder.path("shot")); });
    ASSERT_EQ(text, fileBytes(folder.path("shot")));
  }
}

TEST(DocumentProperty, TreeThatIsHeldElsewhereStaysAsItWas) {
  Documents documents(20240803);
  for (int i = 0; i < 500; ++i) {
    const std::string text = documents.scene();
    const Jzon::Node root = nodeOf(text);
    Scene::Scene3D scene;
    scene.deserialize(root);
    ASSERT_EQ(text, textOf(root));
    ASSERT_EQ(text, textOf(scene));
  }
}

TEST(DocumentProperty, BranchThatIsHeldElsewhereStaysAsItWas) {
  Documents documents(20240804);
  for (int i = 0; i < 500; ++i) {
    Jzon::Node root = nodeOf(documents.scene());
    const Jzon::Node objects = root.get("Objects");
    const Jzon::Node points = root.get("Points");
    const Jzon::Node first = points.get(std::size_t{0});
    const std::string before = textOf(objects) + textOf(points) + textOf(first);
    Scene::Scene3D scene;
    scene.deserialize([&root] {
      const Jzon::Node only(root);
      root = Jzon::Node();
      return only;
    }());
    ASSERT_EQ(before, textOf(objects) + textOf(points) + textOf(first));
    if (scene.getObjects() == nullptr) continue;
    ASSERT_EQ(textOf(objects), textOf(*scene.getObjects()));
  }
}

TEST(DocumentProperty, FilesAreReadAsTheirLinesJoined) {
  Random random(20240805);
  const TempFolder folder;
  for (int i = 0; i < 60; ++i) {
    std::string bytes(random() % (i % 3 == 0 ? 200000 : 100), ' ');
    for (char& c : bytes) c = random() % 3 == 0 ? '\n' : static_cast<char>(random());
    const std::string path = folder.file("bytes", bytes);
    std::string expected;
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);) expected += line;
    ASSERT_EQ(expected, DataReader().readFileIntoString(path));
  }
}

// ---- depth ----

TEST(Document, MillionNestedArraysAreAnEmptyScene) {
  const std::string text = std::string(Million, '[') + std::string(Million, ']');
  const ScenePointer scene(DataReader().readSceneString(text));
  ASSERT_NE(nullptr, scene);
  EXPECT_EQ(nullptr, scene->getObjects());
}

TEST(Document, MillionNestedArraysInAListAreOneDefaultElement) {
  const std::string deep = std::string(Million, '[') + std::string(Million, ']');
  const ScenePointer scene(DataReader().readSceneString(
      "{\"Points\":" + deep + ",\"Brushes\":{\"a\":" + deep + "},\"Objects\":[{\"Faces\":" + deep +
      "}],\"Unknown\":" + deep + "}"));
  ASSERT_NE(nullptr, scene);
  EXPECT_EQ(
      "{\n\"Brushes\": [],\n\"Points\": [[0,0,0]],\n\"Objects\": [{\n\"PartsCount\": 0,\n"
      "\"Faces\": [{\n\"Normal\": [0,0,1]\n}]\n}]\n}",
      DataWriter().writeSceneString(scene.get()));
}

TEST(Document, MillionArraysWithoutAnEndAreNoDocument) {
  Shot::Shot2d* shot = nullptr;
  const std::string log =
      capturedStdout([&] { shot = DataReader().readShotString(std::string(Million, '[')); });
  EXPECT_EQ(nullptr, shot);
  EXPECT_EQ("\n! Error: shot JSON invalid\nReading end\n\n", log);
}

}  // namespace
}  // namespace Lumivane::IO
