// What a process may do after a fork.

#include "session/Scenes.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>

#include <atomic>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::smallScene;
using Lumivane::Test::smallView;
using Lumivane::Test::TempFolder;

int statusOf(pid_t child) {
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

TEST(Fork, AChildMadeBetweenTakesTakesTheSameShot) {
  const TempFolder folder;
  LoadedScene scene = smallScene();
  const std::string expected = scene.take(smallView()).text();
  const std::string file = folder.path("child.json");
  const pid_t child = fork();
  if (child == 0) {
    scene.take(smallView()).write(file);
    _exit(0);
  }
  EXPECT_EQ(expected, scene.take(smallView()).text());
  EXPECT_EQ(0, statusOf(child));
  EXPECT_EQ(expected, fileBytes(file));
}

TEST(Fork, AForkDuringATakeDisturbsTheParentsShotByNothing) {
  LoadedScene scene = smallScene();
  const std::string expected = scene.take(smallView()).text();
  std::atomic<pid_t> child{-1};
  // The callback's thread forks while the other one takes; the child ends at once.
  const TakenShot shot = scene.take(smallView(), [&child](double) {
    if (child != -1) return;
    const pid_t made = fork();
    if (made == 0) _exit(0);
    child = made;
  });
  ASSERT_GT(child, 0);
  EXPECT_EQ(0, statusOf(child));
  EXPECT_EQ(expected, shot.text());
  EXPECT_EQ(expected, scene.take(smallView()).text());
}

}  // namespace
}  // namespace Lumivane::Session
