#include "session/TakenShotState.h"

#include <lumivane/io/DataWriter.h>
#include <lumivane/session/Files.h>
#include <lumivane/shot/Shot2d.h>

namespace Lumivane::Session {

void TakenShot::State::hold(Shot::Shot2d* newShot) {
  shot = newShot;
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

Scene::Scene3D& TakenShot::scene() const { return *state->sceneState->scene; }

std::string TakenShot::text() const { return IO::DataWriter().writeShotString(state->shot); }

void TakenShot::write(const std::string& path) const { writeFile(path, text()); }

}  // namespace Lumivane::Session
