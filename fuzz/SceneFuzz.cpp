// A scene's text to whole shots. What is wrong with it a session's error says, and the checks of
// scenes have said so before; and a scene once written stays as it is.

#include "Bounded.h"
#include "Bytes.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

namespace {

namespace Session = Lumivane::Session;
using Lumivane::Fuzz::require;

constexpr std::size_t LargestText = 1 << 16;

// Two shots of every scene, one with each camera. The spaces behind the document, which are of no
// other use, say from where, so that a fuzzer can change both.
std::array<Session::ViewSettings, 2> views(const std::string& text) {
  const auto end = std::find_if_not(text.rbegin(), text.rend(), [](char c) { return c == ' '; });
  const auto spaces = end - text.rbegin();
  Session::ViewSettings view;
  view.eye = {-2.6, 0.35, 1.9};
  view.forward = {1, -0.06, -0.45};
  if (spaces % 2 != 0) view.eye = {0.5, 0.5, 0.5};
  if (spaces % 4 >= 2) view.up = {0, 1, 0};
  if (spaces % 8 >= 4) view.property = view.scale = 1;
  view.maxLength = 0.1;
  Session::ViewSettings square = view;
  square.camera = Lumivane::Base::ViewCameraKind::Normal;
  return {view, square};
}

bool hasErrors(const std::string& text) {
  const auto findings = Lumivane::Check::SceneChecker::checkText(text);
  for (const auto& finding : findings) require(!finding.line().empty() && !finding.fix.empty());
  return std::any_of(findings.begin(), findings.end(), [](const auto& finding) {
    return finding.severity == Lumivane::Check::Severity::Error;
  });
}

void checkMessage(const Session::Error& error) {
  const std::string message = error.what();
  require(message.compare(0, 6, "fuzz: ") == 0 && message.find('\n') == std::string::npos);
}

// What no check of the scene can know, since the view decides: a missing scale, and an edge so near
// to the eye that no splitting is fine enough.
bool isOfTheView(const Session::Error& error, const Session::ViewSettings& view) {
  return view.scale > 0 || error.cause().find("no splitting brings its") != std::string::npos;
}

void takeShots(Session::LoadedScene& scene, const std::string& text, bool errors) {
  for (const Session::ViewSettings& view : views(text)) {
    const Lumivane::Fuzz::BoundedShots shots(scene.scene(), view);
    if (!shots.arePossible()) return;
    try {
      require(!scene.take(shots.settings()).text().empty());
    } catch (const Session::Error& error) {
      checkMessage(error);
      require(errors || isOfTheView(error, view));
    }
  }
}

// Numbers are written with 6 digits, so the second text is the fixed one.
void writeAndReadAgain(Lumivane::Scene::Scene3D& scene) {
  Lumivane::IO::DataReader reader;
  Lumivane::IO::DataWriter writer;
  std::string written = writer.writeSceneString(&scene);
  for (int i = 0; i < 2; ++i) {
    const std::unique_ptr<Lumivane::Scene::Scene3D> again(reader.readSceneString(written));
    require(again != nullptr);
    const std::string second = writer.writeSceneString(again.get());
    require(i == 0 || second == written);
    written = second;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  if (size > LargestText) return 0;
  const std::string text = Lumivane::Fuzz::Bytes(data, size).rest();
  const bool errors = hasErrors(text);
  try {
    Session::LoadedScene scene = Session::LoadedScene::fromText(text, "fuzz");
    takeShots(scene, text, errors);
    writeAndReadAgain(scene.scene());
  } catch (const Session::Error& error) {
    checkMessage(error);
    require(errors);
  }
  return 0;
}
