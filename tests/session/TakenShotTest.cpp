#include "session/Scenes.h"
#include "support/TempFolder.h"
#include "support/Thrown.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/View.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::smallScene;
using Lumivane::Test::smallView;
using Lumivane::Test::squareScene;
using Lumivane::Test::TempFolder;
using Lumivane::Test::thrownText;

TEST(TakenShot, SharesTheScenesListsAndRefersToAViewOfItsOwn) {
  LoadedScene scene = squareScene();
  ViewSettings settings;
  settings.style = Base::ViewDisplayStyle::Outline;
  const TakenShot shot = scene.take(settings);
  EXPECT_EQ(scene.scene().getBrushes(), shot.shot().getBrushes());
  EXPECT_EQ(scene.scene().getPens(), shot.shot().getPens());
  EXPECT_EQ(&scene.scene(), &shot.scene());
  EXPECT_EQ(&shot.view(), shot.shot().getView());
  EXPECT_EQ(Base::ViewDisplayStyle::Outline, shot.view().getDisplayStyle());
  EXPECT_EQ(settings.eye, shot.eye());
}

TEST(TakenShot, OutlivesItsScene) {
  std::optional<LoadedScene> scene(smallScene());
  const TakenShot shot = scene->take(smallView());
  const std::string before = shot.text();
  scene.reset();
  EXPECT_EQ(before, shot.text());
  EXPECT_EQ(3u, shot.scene().getObjects()->getObjects()->size());
}

TEST(TakenShot, GoesBeforeItsScene) {
  LoadedScene scene = smallScene();
  const std::string first = scene.take(smallView()).text();
  EXPECT_EQ(first, scene.take(smallView()).text());
}

TEST(TakenShot, SeveralOfOneSceneLiveTogetherAndGoInAnyOrder) {
  std::optional<LoadedScene> scene(smallScene());
  std::vector<std::unique_ptr<TakenShot>> shots;
  std::vector<std::string> texts;
  for (int i = 0; i < 4; ++i) {
    ViewSettings view = smallView();
    view.eye[0] -= i;
    if (i % 2 == 1) view.camera = Base::ViewCameraKind::Normal;
    shots.push_back(std::make_unique<TakenShot>(scene->take(view)));
    texts.push_back(shots.back()->text());
  }
  shots[2].reset();
  scene.reset();
  shots[0].reset();
  EXPECT_EQ(texts[3], shots[3]->text());
  EXPECT_EQ(texts[1], shots[1]->text());
  EXPECT_NE(texts[1], texts[3]);
}

TEST(TakenShot, MovesWithAllThatItRefersTo) {
  LoadedScene scene = squareScene();
  TakenShot first = scene.take({});
  const std::string text = first.text();
  TakenShot second = std::move(first);
  LoadedScene moved = std::move(scene);
  EXPECT_EQ(text, second.text());
  second = moved.take(ViewSettings{});
  moved = smallScene();
  EXPECT_EQ(text, second.text());
  EXPECT_EQ(&second.view(), second.shot().getView());
}

TEST(TakenShot, ListThatAHostPutsInPlaceOfASharedOneIsTheShots) {
  LoadedScene scene = squareScene();
  {
    const TakenShot shot = scene.take({});
    shot.shot().setBrushes(new Base::Brushes());
    shot.shot().getBrushes()->addBrush(new Base::Brush(1, 2, 3, 4));
    shot.shot().setPens(nullptr);
  }
  EXPECT_EQ(1u, scene.scene().getBrushes()->getBrushes()->size());
}

TEST(TakenShot, EyeOnAPolygonIsReported) {
  LoadedScene scene = squareScene();
  ViewSettings view;
  view.eye = {2.995, 0.0, 0.0};
  view.forward = {0.0, 1.0, 0.0};
  EXPECT_NE(view.eye, scene.take(view).eye());
  EXPECT_EQ(2.995, view.eye[0]);
}

TEST(TakenShot, TextAndFileAreThoseOfTheLibrarysWriter) {
  const TempFolder folder;
  LoadedScene scene = squareScene();
  const TakenShot shot = scene.take({});
  EXPECT_EQ(IO::DataWriter().writeShotString(&shot.shot()), shot.text());
  shot.write(folder.path("a"));
  EXPECT_EQ(shot.text(), fileBytes(folder.path("a")));
}

TEST(TakenShot, FileThatCannotBeWrittenIsAnError) {
  const TempFolder folder;
  LoadedScene scene = squareScene();
  const TakenShot shot = scene.take({});
  EXPECT_EQ(folder.path("no/a") + ": cannot be written: No such file or directory",
            thrownText<Error>([&] { shot.write(folder.path("no/a")); }));
}

}  // namespace
}  // namespace Lumivane::Session
