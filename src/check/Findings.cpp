#include "check/Findings.h"

#include "kernel/DisplayText.h"

namespace Lumivane::Check {

std::string Finding::line() const {
  std::string place;
  if (!object.empty() || region > 0 || face > 0)
    place = "object \"" + Kernel::idText(object) + "\"";
  if (region > 0) place += ", region " + std::to_string(region);
  if (face > 0) place += ", face " + std::to_string(face);
  return place.empty() ? text : place + ": " + text;
}

void Findings::put(Severity severity, const char* code, int region, int face, std::string text,
                   const char* fix) {
  const bool isFirstError = severity == Severity::Error && !errorReported;
  if (items.size() < SceneChecker::Most || isFirstError) {
    items.push_back({severity, code, object, region, face, std::move(text), fix});
    errorReported = errorReported || isFirstError;
  } else if (!moreReported) {
    items.push_back({Severity::Warning, "more", "", 0, 0,
                     "there are more findings, which are not listed", "fix these first"});
    moreReported = true;
  }
}

std::string outOfRange(const char* what, int number, size_t count) {
  return std::string(what) + " " + std::to_string(number) + ", but there are " +
         (count == 0 ? "none" : "1 to " + std::to_string(count));
}

}  // namespace Lumivane::Check
