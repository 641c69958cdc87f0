// A scene's text to a whole shot. Whatever is wrong with it, a session's error says so.

#include "Bytes.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>

namespace {

namespace Session = Lumivane::Session;
constexpr std::size_t LargestText = 1 << 16;

Session::ViewSettings view(bool square) {
  Session::ViewSettings view;
  view.eye = {-2.6, 0.35, 1.9};
  view.forward = {1, -0.06, -0.45};
  view.maxLength = 0.1;
  if (square) view.camera = Lumivane::Base::ViewCameraKind::Normal;
  return view;
}

bool hasErrors(const std::string& text) {
  const auto findings = Lumivane::Check::SceneChecker::checkText(text);
  return std::any_of(findings.begin(), findings.end(), [](const auto& finding) {
    return finding.severity == Lumivane::Check::Severity::Error;
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  if (size > LargestText) return 0;
  const std::string text = Lumivane::Fuzz::Bytes(data, size).rest();
  const bool errors = hasErrors(text);
  try {
    Session::LoadedScene scene = Session::LoadedScene::fromText(text, "fuzz");
    Lumivane::Fuzz::require(!scene.take(view(false)).text().empty());
    Lumivane::Fuzz::require(!scene.take(view(true)).text().empty());
    static_cast<void>(errors);
  } catch (const Session::Error&) {
    // told in one line
  }
  return 0;
}
