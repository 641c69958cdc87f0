#include "ExactBatch.h"

#include "ExactScene.h"
#include "Options.h"
#include "SceneSource.h"
#include "UnderGroundTest.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/session/Files.h>

namespace Lumivane::Host {
namespace {

void addClasses(const Visibility::VisibleMap& map, const Visibility::MapShares& shares,
                ExactSummary& summary) {
  for (const Visibility::MapShares::ClassRow& row : shares.classes()) {
    summary.classViewFactors.push_back(row.share.viewFactor);
    if (row.classNumber < 0 || !(row.share.solidAngle > 0.0)) continue;
    if (summary.largestClassViewFactor && row.share.viewFactor <= *summary.largestClassViewFactor)
      continue;
    summary.largestClassViewFactor = row.share.viewFactor;
    summary.largestClass = map.names->classNames.at(static_cast<size_t>(row.classNumber));
  }
}

ExactSummary summaryOf(const Visibility::VisibleMap& map, const Visibility::MapShares& shares) {
  ExactSummary summary;
  summary.skyViewFactor = shares.sky().viewFactor;
  summary.skyHemisphereShare = shares.sky().hemisphereShare();
  for (const Visibility::MapShares::Row& object : shares.objects()) {
    if (!(object.share.solidAngle > 0.0)) continue;
    ++summary.visibleObjects;
    if (summary.largestViewFactor && object.share.viewFactor <= *summary.largestViewFactor)
      continue;
    summary.largestViewFactor = object.share.viewFactor;
    summary.largestId = map.names->objectIds.at(static_cast<size_t>(object.label.object) - 1);
  }
  addClasses(map, shares, summary);
  return summary;
}

}  // namespace

struct ExactBatch::State {
  State(const std::string& name, const SourcedScene& source)
      : scene(name, source), inside(insideTestOf(source)), underGround(scene.sceneIndex()) {}

  ExactScene scene;
  std::unique_ptr<const Check::InsideTest> inside;
  UnderGroundTest underGround;
};

ExactBatch::ExactBatch(const std::string& name, const SourcedScene& source)
    : state(new State(name, source)) {}

ExactBatch::~ExactBatch() = default;

std::optional<ExactSummary> ExactBatch::look(const ShotOptions& view) const {
  Visibility::LookOptions options;
  options.forward = view.view.forward;
  options.up = view.view.up;
  options.alone = !view.shares.empty() && hasFractions(view.rows);
  const Visibility::VisibleMap map = state->scene.look(view.view.eye, options);
  const Visibility::MapShares shares(
      map, view.shares.empty() ? Visibility::MapShares::Objects::Seen : objectsOf(view.rows));
  if (!view.shares.empty())
    Session::writeFile(view.shares,
                       state->scene.sharesText(view.shares, view.rows, view.csvSafe, map, shares));
  ExactSummary summary = summaryOf(map, shares);
  summary.isInside = (view.noShots && state->inside->isInside(view.view.eye)) ||
                     state->underGround.isUnder(view.view.eye);
  return summary;
}

}  // namespace Lumivane::Host
