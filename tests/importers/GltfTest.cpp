// glTF files whose data lies in files beside them, and documents that are long, deep or repeat
// themselves.

#include "importers/ImportedRegions.h"

#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Importers::ImportedScene;
using Importers::Importer;
using Importers::ImportOptions;

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t place = text.find(from);
  if (place == std::string::npos) throw std::runtime_error("there is no " + from);
  return text.replace(place, from.size(), to);
}

// The boxes with another URI in place of their data.
std::string boxesWithUri(const std::string& uri) {
  const std::string text = fileBytes(modelPath("boxes.gltf"));
  const size_t start = text.find("data:application");
  return std::string(text).replace(start, text.find('"', start) - start, uri);
}

// The data of the boxes, which is what ends the binary file.
std::string boxesData() {
  const std::string binary = fileBytes(modelPath("boxes.glb"));
  return binary.substr(binary.size() - 168);
}

std::string faultOf(const std::function<void()>& work) {
  try {
    work();
    return "";
  } catch (const Session::Error& error) {
    return error.cause();
  }
}

class GltfBuffers : public testing::Test {
 protected:
  GltfBuffers() { std::filesystem::create_directory(folder.path("model")); }

  // Writes the boxes with this URI into "model", and imports them.
  ImportedScene import(const std::string& uri, bool allowOutside = false) const {
    ImportOptions options;
    options.allowOutside = allowOutside;
    return Importer::importFile(folder.file("model/boxes.gltf", boxesWithUri(uri)), options);
  }

  std::string faultWith(const std::string& uri, bool allowOutside = false) const {
    return faultOf([&] { import(uri, allowOutside); });
  }

  static void expectBoxes(const ImportedScene& imported) {
    const auto wanted = importedRegions(importModel("boxes.gltf"));
    const auto regions = importedRegions(imported);
    ASSERT_EQ(wanted.size(), regions.size());
    for (size_t i = 0; i < wanted.size(); ++i) EXPECT_EQ(wanted[i].corners, regions[i].corners);
  }

  TempFolder folder;
};

TEST_F(GltfBuffers, FileLongerThanItsBufferIsReadAsFarAsTheBufferSays) {
  for (const size_t surplus : {0U, 1U, 4096U, 1000000U}) {
    folder.file("model/boxes.bin", boxesData() + std::string(surplus, '\x7F'));
    expectBoxes(import("boxes.bin"));
  }
}

TEST_F(GltfBuffers, FileShorterThanItsBufferIsRefused) {
  folder.file("model/boxes.bin", boxesData().substr(1));
  EXPECT_EQ("buffers 0: has 167 of its 168 bytes", faultWith("boxes.bin"));
  EXPECT_EQ("buffers 0: its file \"gone.bin\" cannot be read: there is no such file",
            faultWith("gone.bin"));
}

TEST_F(GltfBuffers, PercentEncodedNamesAreDecoded) {
  folder.file("model/two boxes, 100%.bin", boxesData());
  folder.file("model/caf\xC3\xA9.bin", boxesData());
  expectBoxes(import("two%20boxes%2c%20100%25.bin"));
  expectBoxes(import("two boxes, 100%.bin"));
  expectBoxes(import("caf%C3%A9.bin"));
  EXPECT_EQ("buffers 0: its file \"boxes%00.bin\" cannot be read", faultWith("boxes%00.bin"));
}

TEST_F(GltfBuffers, FileOutsideTheFolderOfTheModelIsRefusedUnlessAllowed) {
  const std::string outside = folder.file("boxes.bin", boxesData());
  std::filesystem::create_symlink(outside, folder.path("model/link.bin"));
  std::filesystem::create_directory(folder.path("model/part"));
  folder.file("model/part/boxes.bin", boxesData());
  for (const std::string& uri :
       {std::string("../boxes.bin"), std::string("%2E%2E%2Fboxes.bin"),
        std::string("part/../../boxes.bin"), outside, std::string("link.bin")}) {
    const std::string fault = faultWith(uri);
    EXPECT_NE(std::string::npos, fault.find("lies outside the folder of the model")) << uri;
    EXPECT_NE(std::string::npos, fault.find("--allow-outside")) << uri;
    expectBoxes(import(uri, true));
  }
  expectBoxes(import("part/boxes.bin"));
  expectBoxes(import("part/../part/boxes.bin"));
}

TEST_F(GltfBuffers, OnlyPlainFilesAreRead) {
  EXPECT_NE("", faultWith("/dev/zero", true));
  EXPECT_NE("", faultWith(".", true));
  EXPECT_NE(std::string::npos,
            faultWith("http://example.org/a.bin", true).find("is not named by a relative path"));
}

TEST(Gltf, NumbersWhereListsAreDueAreNamed) {
  const std::string text = fileBytes(modelPath("boxes.gltf"));
  EXPECT_EQ("nodes 0, mesh: \"array\" is none of the 2 meshes",
            importFault("a.gltf", replaced(text, "\"mesh\": 0", "\"mesh\": [0]")));
  EXPECT_EQ("scene: \"array\" is none of the 1 scenes",
            importFault("a.gltf", replaced(text, "\"scene\": 0", "\"scene\": [0]")));
}

TEST(Gltf, StripsAndFansRunTheSameWayRoundAsTriangles) {
  // A unit square in the order of a strip: 0 1 2 3 make two triangles.
  const std::string text =
      R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],)"
      R"("meshes":[{"primitives":[{"attributes":{"POSITION":0},"mode":MODE}]}],)"
      R"("accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3"}],)"
      R"("bufferViews":[{"buffer":0,"byteLength":48}],)"
      R"("buffers":[{"byteLength":48,"uri":"data:;base64,DATA"}]})";
  const std::string strip = "AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAAAACAPwAAgD8AAAAA";
  const std::string fan = "AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAACAPwAAgD8AAAAAAAAAAAAAgD8AAAAA";
  for (const auto& [mode, data] : {std::pair("5", strip), std::pair("6", fan)}) {
    const auto regions =
        importedRegions(importText("s.gltf", replaced(replaced(text, "MODE", mode), "DATA", data)));
    ASSERT_EQ(2u, regions.size());
    double area = 0.0;
    for (const ImportedRegion& region : regions) area += region.areaVector().y;
    EXPECT_NEAR(1.0, std::abs(area), 1e-6) << mode;
  }
}

}  // namespace
}  // namespace Lumivane::Test
