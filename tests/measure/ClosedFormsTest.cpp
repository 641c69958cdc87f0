// View factors of shots against closed forms: see docs/view-factors.md.

#include "measure/ClosedForms.h"

#include <lumivane/measure/VisibleShares.h>

#include <cmath>
#include <map>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

constexpr double Pi = 3.141592653589793;

double viewFactor(const Measure::VisibleShares& shares, const std::string& object) {
  for (const Measure::ObjectShare& share : shares.objects())
    if (share.id == object) return share.share.viewFactor;
  ADD_FAILURE() << "no object " << object;
  return 0.0;
}

// By name of the form; the error relative to the closed form, or to the polygons in its place.
std::map<std::string, double> errors(const ClosedFormScene& form, double length,
                                     bool ofPolygons = false) {
  const PieceLength limit(length);
  const auto scene = build(form);
  const SharingShot shot = scene->makeShot();
  const Measure::VisibleShares shares(*shot);
  std::map<std::string, double> result;
  for (const ClosedForm& expected : form.expected) {
    const double truth = ofPolygons ? expected.ofPolygons : expected.viewFactor;
    result[expected.name] = std::abs(viewFactor(shares, expected.object) / truth - 1);
  }
  return result;
}

TEST(ClosedForms, FormulasGiveTheNumbersThatAreKnown) {
  const std::map<std::string, double> known = {
      {"rect_corner", 0.073075465806},  {"rect_centre", 0.554126423980},
      {"rect_side", 0.109313337673},    {"disc_axis", 0.280898876404},
      {"disc_tilt", 0.215181023348},    {"disc_shift", 0.126295340658},
      {"strip", 0.063102955701},        {"triangle", 0.143644695741},
      {"shadow, back", 0.314669953519}, {"shadow, front", 0.239456470461},
      {"cube, top", 0.554126423980},    {"cube, left", 0.111468394005}};
  std::map<std::string, double> found;
  for (const ClosedFormScene& form : closedFormScenes())
    for (const ClosedForm& expected : form.expected) found[expected.name] = expected.viewFactor;
  for (const auto& [name, factor] : known) EXPECT_NEAR(factor, found[name], 1e-12) << name;
}

TEST(ClosedForms, PolygonsInPlaceOfDiscsAndTheEndlessStripHaveTheSumsThatAreKnown) {
  const std::map<std::string, double> known = {{"disc_axis", 0.280896535646},
                                               {"disc_tilt", 0.215179230223},
                                               {"disc_shift", 0.126291898421},
                                               {"strip", 0.063102953155}};
  std::map<std::string, double> found;
  for (const ClosedFormScene& form : closedFormScenes())
    for (const ClosedForm& expected : form.expected) found[expected.name] = expected.ofPolygons;
  for (const auto& [name, factor] : known) EXPECT_NEAR(factor, found[name], 1e-12) << name;
}

TEST(ClosedForms, AtTheUsualPieceLengthViewFactorsAgreeWithinOneInAThousand) {
  for (const ClosedFormScene& form : closedFormScenes())
    for (const auto& [name, error] : errors(form, 0.02)) EXPECT_LT(error, 1e-3) << name;
}

TEST(ClosedForms, TheErrorFallsWithThePieceLength) {
  for (const ClosedFormScene& form : closedFormScenes()) {
    if (form.name.find("disc") == 0) continue;  // below: their error is that of merged points
    std::map<std::string, double> last = errors(form, 0.08);
    for (const double length : {0.04, 0.02, 0.01, 0.005}) {
      const std::map<std::string, double> now = errors(form, length);
      for (const auto& [name, error] : now) EXPECT_LT(error, last[name]) << name << " " << length;
      last = now;
    }
  }
}

// Without merging far points, all that is left of a disc's error is single precision and the
// polygon in the disc's place.
TEST(ClosedForms, WithPointsKeptApartTheDiscsAreThoseOfTheirPolygons) {
  const MergeDistance apart(1e-7);
  for (const ClosedFormScene& form : closedFormScenes()) {
    if (form.name.find("disc") != 0) continue;
    for (const auto& [name, error] : errors(form, 0.08, true)) EXPECT_LT(error, 1e-7) << name;
    for (const auto& [name, error] : errors(form, 0.08)) EXPECT_LT(error, 3e-5) << name;
  }
}

// Edges are arcs to the eye, and so they are to the solid angle, however long their pieces are.
TEST(ClosedForms, TheSolidAngleDoesNotNeedShortPieces) {
  for (const ClosedFormScene& form : closedFormScenes()) {
    if (form.name != "rect_centre") continue;
    const PieceLength off(0.0);
    const auto scene = build(form);
    const SharingShot shot = scene->makeShot();
    const Measure::VisibleShares shares(*shot);
    // A side of a cube around the eye: a sixth of the sphere.
    EXPECT_NEAR(4 * Pi / 6, shares.objects()[0].share.solidAngle, 1e-6);
  }
}

}  // namespace
}  // namespace Lumivane::Test
