#include "io/ShotText.h"
#include "session/PolygonsOfShot.h"
#include "session/TakenShotState.h"
#include "utils/StageScope.h"

#include <lumivane/geometry/Faces2d.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/session/Files.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

namespace Lumivane::Session {

namespace {

std::size_t faceCount(Shot::Shot2d& shot) {
  std::size_t count = 0;
  for (const Shot::Object2d* object : *shot.getObjects()->getObjects())
    if (object->getFaces() != nullptr) count += object->getFaces()->getFaces()->size();
  return count;
}

}  // namespace

void TakenShot::State::hold(Shot::Shot2d* newShot, const Algorithm::SortFacts& facts) {
  shot = newShot;
  hiddenFaces = facts.faceCount - faceCount(*shot);
  for (const Algorithm::SortFacts::Face& face : facts.cycle)
    cycle.push_back({face.object, face.face});
  brushes = shot->getBrushes();
  pens = shot->getPens();
  scale = shot->getScale();
  property = shot->getProperty();
}

TakenShot::State::~State() {
  if (shot == nullptr) return;
  if (shot->getBrushes() == brushes) shot->setBrushes(nullptr);
  if (shot->getPens() == pens) shot->setPens(nullptr);
  if (shot->getScale() == scale) shot->setScale(nullptr);
  if (shot->getProperty() == property) shot->setProperty(nullptr);
  delete shot;
}

TakenShot::TakenShot(std::unique_ptr<State> newState) : state(std::move(newState)) {}
TakenShot::TakenShot(TakenShot&&) noexcept = default;
TakenShot& TakenShot::operator=(TakenShot&&) noexcept = default;
TakenShot::~TakenShot() = default;

Shot::Shot2d& TakenShot::shot() const { return *state->shot; }

Base::View& TakenShot::view() const { return *state->setup.view(); }

Vector TakenShot::eye() const { return state->setup.eye(); }

Vector TakenShot::eyeOffset() const {
  const Vector now = eye();
  const Vector& asked = state->askedEye;
  return {now[0] - asked[0], now[1] - asked[1], now[2] - asked[2]};
}

Scene::Scene3D& TakenShot::scene() const { return *state->sceneState->scene; }

bool TakenShot::isInside() const { return state->isInside; }

std::size_t TakenShot::hiddenFaces() const { return state->hiddenFaces; }

bool TakenShot::hasCycle() const { return !state->cycle.empty(); }

const std::vector<FaceNumber>& TakenShot::cycle() const { return state->cycle; }

ShotPolygons TakenShot::polygons() const {
  return polygonsOf(*state->shot, state->sceneState->name);
}

std::string TakenShot::text() const { return IO::DataWriter().writeShotString(state->shot); }

void TakenShot::write(const std::string& path) const {
  const Utils::StageScope stage(Utils::Stage::Write);
  writeFile(path, [this](std::ostream& stream) { IO::writeShotText(*state->shot, stream); });
}

}  // namespace Lumivane::Session
