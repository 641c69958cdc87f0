#include "Warnings.h"

#include "HostError.h"
#include "SceneSource.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/check/SceneChecker.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>

#include <cstdio>
#include <iostream>

namespace Lumivane::Host {
namespace {

void warn(const std::string& file, const std::string& text) {
  std::cout << std::flush;
  std::fflush(stdout);  // the library prints there
  std::cerr << "lumivane: " << oneLine(file) << ": warning: " << oneLine(text) << std::endl;
}

bool warnOfInside(const std::string& subject, bool isInside) {
  if (isInside)
    warn(
        subject,
        "the eye is inside a body, which is not drawn from there: what is visible is as if it were "
        "not there");
  return isInside;
}

}  // namespace

void warnOfFarCoordinates(const std::string& file, const Session::LoadedScene& scene) {
  if (const auto far = Check::SceneChecker::farCoordinates(scene.scene()))
    warn(file, far->line() + ": " + far->fix);
}

void warnOfCycle(const std::string& file, const Session::TakenShot& shot) {
  if (!shot.hasCycle()) return;
  warn(file,
       "some faces overlap in a cycle, each hiding part of the next one, so no drawing order is "
       "right "
       "for all of them and some are drawn over what they should not hide; split one of them where "
       "another one covers it, or move the eye (log_sort.txt lists the relations)");
}

void warnOfUnderGround(const std::string& subject) {
  warn(
      subject,
      "the eye is under the ground, which is not seen from below: what is visible is as if it were "
      "not there; raise the eye, or see both sides with --two-sided");
}

bool warnIfInside(const std::string& subject, const Session::TakenShot& shot) {
  return warnOfInside(subject, shot.isInside());
}

bool warnIfInside(const std::string& subject, const SourcedScene& source,
                  const std::array<double, 3>& eye) {
  return warnOfInside(subject, insideTestOf(source)->isInside(eye));
}

}  // namespace Lumivane::Host
