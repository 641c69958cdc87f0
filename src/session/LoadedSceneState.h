#pragma once

#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/WorkingLists.h>

#include <memory>
#include <string>
#include <utility>

namespace Lumivane::Session {

/// What a scene and its shots hold together: it goes with the last of them.
struct LoadedScene::State {
  State(std::unique_ptr<Scene::Scene3D> newScene, std::string newName)
      : scene(std::move(newScene)), name(std::move(newName)) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { Session::releaseWorkingLists(*scene); }

  std::unique_ptr<Scene::Scene3D> scene;
  std::string name;
  SurfaceClasses classes;
};

}  // namespace Lumivane::Session
