// The sample scenes from their recommended views.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

struct SampleView {
  std::string name, scene, camera, eye, forward;
};

std::vector<SampleView> sampleViews() {
  std::ifstream file(LUMIVANE_SCENES "/views.txt");
  std::vector<SampleView> views;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    SampleView view;
    std::istringstream(line) >> view.name >> view.scene >> view.camera >> view.eye >> view.forward;
    views.push_back(view);
  }
  return views;
}

TEST(SampleScenes, EachHasARoundViewAndASquareOne) {
  std::vector<std::string> names;
  for (const SampleView& view : sampleViews()) names.push_back(view.scene + " " + view.camera);
  EXPECT_EQ(
      (std::vector<std::string>{"small.json spherical", "small.json normal", "room.json spherical",
                                "room.json normal", "street.json spherical", "street.json normal"}),
      names);
}

TEST(SampleScenes, ScriptMakesTheFilesThatAreThere) {
  const TempFolder folder;
  ASSERT_EQ(0, Lumivane::Test::runProcess(
                   {"python3", LUMIVANE_SCENES "/../scripts/make_scenes.py", folder.path("")})
                   .status);
  for (const std::string name :
       {"small.json", "room.json", "street.json", "winding.json", "docking.json", "ring.json"})
    EXPECT_EQ(fileBytes(folder.path(name)), fileBytes(LUMIVANE_SCENES "/" + name)) << name;
}

// A cycle in the drawing order would show as such a message, and in the picture.
TEST(SampleScenes, ShotsAreMadeInAnOrderWithoutCycle) {
  for (const SampleView& view : sampleViews()) {
    SCOPED_TRACE(view.name);
    const TempFolder folder;
    const Result result = Lumivane::Test::runProcess(
        {LUMIVANE_PROGRAM, "shot", LUMIVANE_SCENES "/" + view.scene, "--camera", view.camera,
         "--eye", view.eye, "--forward", view.forward, "--stats", folder.path("stats")});
    ASSERT_EQ(0, result.status) << result.err;
    EXPECT_EQ("Projecting objects\n\nCalculating objects order\n\n", result.out);
    const Json stats = Json::parse(fileBytes(folder.path("stats")));
    EXPECT_GT(stats.at("faces_drawn"), view.scene == "small.json" ? 5 : 250);
    EXPECT_EQ("[" + view.eye + "]", stats.at("eye").dump());
  }
}

}  // namespace
}  // namespace Lumivane::Host
