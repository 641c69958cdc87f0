// By Green's theorem what an outline encloses is a sum over its edges. An edge stands for an arc on
// the sphere; its terms are those of SphereContour.h, in the coordinates of the picture at hand.

#include "measure/ContourRule.h"

#include "kernel/SphereContour.h"
#include "measure/Outlines.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Measure {
namespace {

using Algorithm::ProjectionType;
using namespace Kernel;

// The turn of the sweep's frame: no angle that a drawing is likely to have.
const double TurnCosine = cosine(0.4142);
const double TurnSine = sine(0.4142);
constexpr double QuarterTurn = 0.5 * Pi;  // what a half side of the square stands for

// Between directions closer to opposite than this, no great circle is distinguished.
constexpr double NearlyOpposite = -0.999999;

Vec2 turned(Vec2 p) {
  return {TurnCosine * p.x - TurnSine * p.y, TurnSine * p.x + TurnCosine * p.y};
}

Vec2 turnedBack(Vec2 p) {
  return {TurnCosine * p.x + TurnSine * p.y, TurnCosine * p.y - TurnSine * p.x};
}

Vec2 intoDisc(Vec2 p) {
  constexpr double SurelyInside = 1.0 - 1e-12;
  if (p.x * p.x + p.y * p.y < SurelyInside) return p;
  const double radius = length2(p);
  return radius > 1.0 ? Vec2{p.x / radius, p.y / radius} : p;
}

Vec2 intoSquare(Vec2 p) { return {std::clamp(p.x, -1.0, 1.0), std::clamp(p.y, -1.0, 1.0)}; }

}  // namespace

Vec2 ContourRule::sweepPoint(Vec2 picture) const {
  if (!std::isfinite(picture.x) || !std::isfinite(picture.y)) return {NAN, NAN};
  switch (type) {
    case ProjectionType::Radial:
      return turned(intoDisc(picture));
    case ProjectionType::Square:
      break;
  }
  return turned(intoSquare(picture));
}

Vec2 ContourRule::picturePoint(Vec2 sweep) { return turnedBack(sweep); }

Vec2 ContourRule::angles(Vec2 sweep) const {
  const Vec2 p = turnedBack(sweep);
  return {QuarterTurn * p.x, QuarterTurn * p.y};
}

Content ContourRule::line(const SweepEdge& edge, double y0, double y1) const {
  const Vec2 a = {edge.xAt(y0), y0};
  const Vec2 b = {edge.xAt(y1), y1};
  switch (type) {
    case ProjectionType::Radial:
      return {lineSolidAngle(discLine(edge.low, edge.high), a, b), 0.0};
    case ProjectionType::Square:
      break;
  }
  const Vec2 p = angles(a);
  const Vec2 q = angles(b);
  return {angleLineSolidAngle(p, q), angleLineViewFactor(p, q)};
}

Content ContourRule::arc(const SweepEdge& edge) const {
  switch (type) {
    case ProjectionType::Radial:
      return discArc(edge);
    case ProjectionType::Square:
      break;
  }
  return bandArc(edge);
}

Content ContourRule::discArc(const SweepEdge& edge) const {
  const Vec3 a = directionOfDisc(edge.low);
  const Vec3 b = directionOfDisc(edge.high);
  if (dot(a, b) < NearlyOpposite) return line(edge, edge.low.y, edge.high.y);
  return {arcTerm(a, b), 0.0};
}

Content ContourRule::bandArc(const SweepEdge& edge) const {
  const Vec2 a = angles(edge.low);
  const Vec2 b = angles(edge.high);
  if (dot(directionOfAngles(a), directionOfAngles(b)) < NearlyOpposite)
    return line(edge, edge.low.y, edge.high.y);
  return {angleArcSolidAngle(a, b), angleArcViewFactor(a, b)};
}

double ContourRule::wholeArea() const {
  switch (type) {
    case ProjectionType::Radial:
      return Pi;
    case ProjectionType::Square:
      break;
  }
  return 4.0;
}

bool ContourRule::areasAreViewFactors() const {
  switch (type) {
    case ProjectionType::Radial:
      return true;
    case ProjectionType::Square:
      break;
  }
  return false;
}

Content ContourRule::whole() const { return {2.0 * Pi, 1.0}; }

}  // namespace Lumivane::Measure
