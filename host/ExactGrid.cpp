#include "ExactGrid.h"

#include "ExactScene.h"
#include "FacePlaces.h"
#include "GroundSearch.h"
#include "ProgressBar.h"

#include <lumivane/session/Text.h>

#include <utility>

namespace Lumivane::Host {

struct ExactGrid::State {
  State(const GridOptions& theOptions, const Session::LoadedScene& scene, const Wholes& wholes)
      : options(theOptions), exact(theOptions.scene, scene, wholes), surfaces(exact.sceneIndex()) {
    if (!options.above.empty())
      ground.emplace(exact.sceneIndex(), surfaces, options.above, options.scene);
  }

  const GridOptions& options;
  ExactScene exact;
  SceneSurfaces surfaces;
  std::optional<GroundSearch> ground;
};

ExactGrid::ExactGrid(const GridOptions& theOptions, const Session::LoadedScene& scene,
                     const Wholes& wholes)
    : state(new State(theOptions, scene, wholes)) {}

ExactGrid::~ExactGrid() = default;

std::optional<GridFoot> ExactGrid::footAt(double x, double y) const {
  const std::optional<GroundSearch::Hit> hit = state->ground->at(x, y);
  if (!hit) return std::nullopt;
  return GridFoot{hit->z, state->surfaces.idOf(hit->label.object), hit->label.face};
}

std::vector<FacePlace> ExactGrid::facePlaces() const {
  const GridOptions& options = state->options;
  return placesOnFaces(state->surfaces, options.on, options.spacing, options.clearance,
                       options.scene);
}

std::string ExactGrid::shares(const std::vector<GridView>& views) const {
  using Visibility::MapText;
  const GridOptions& options = state->options;
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  constexpr Visibility::Field Field = Visibility::Field::Hemisphere;
  std::string text = "name," + MapText::csvHeading(Field) + "\n";
  for (size_t i = 0; i < views.size(); ++i) {
    if (show) show(100.0 * static_cast<double>(i) / static_cast<double>(views.size()));
    Visibility::LookOptions look;
    look.forward = views[i].forward;
    look.up = views[i].up;
    look.alone = hasFractions(options.rows);
    look.threads = 0;
    const Visibility::VisibleMap map = state->exact.look(views[i].eye, look);
    text += MapText::csvRows(state->exact.shareRows(options.rows, map, Visibility::MapShares(map)),
                             Field, Session::csvField(views[i].name) + ",", options.csvSafe);
  }
  return text;
}

}  // namespace Lumivane::Host
