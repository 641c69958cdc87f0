#pragma once

#include "algorithm/pipeline/SortFacts.h"
#include "session/LoadedSceneState.h"

#include <lumivane/base/Property.h>
#include <lumivane/base/Scale.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/session/ViewSetup.h>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace Lumivane::Session {

/// The raw shot with what it refers to, which goes after it.
struct TakenShot::State {
  State(std::shared_ptr<LoadedScene::State> scene, const ViewSettings& settings)
      : sceneState(std::move(scene)), setup(settings), askedEye(settings.eye) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  /// Takes the shot over; whatever it points at among the shared lists is the scene's.
  void hold(Shot::Shot2d* newShot, const Algorithm::SortFacts& facts);

  std::shared_ptr<LoadedScene::State> sceneState;
  ViewSetup setup;
  Shot::Shot2d* shot = nullptr;
  Vector askedEye;
  std::size_t hiddenFaces = 0;
  std::vector<FaceNumber> cycle;
  bool isInside = false;

 private:
  // As the shot was made: what a host puts in their place is the shot's own.
  Base::Brushes* brushes = nullptr;
  Base::Pens* pens = nullptr;
  Base::Scale* scale = nullptr;
  Base::Property* property = nullptr;
};

}  // namespace Lumivane::Session
