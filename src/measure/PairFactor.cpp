#include "measure/PairFactor.h"

#include "kernel/Planar.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

// Far from each other, the factor from a point is integrated by a rule of seven points over the
// triangles of the emitter. Near, the double contour integral is better:
//
//   A F = 1 / (2 pi) times the integral over both outlines of ln r dx . dy,
//
// since it stays as it is where the polygons touch. The integral over a straight edge of the
// receiver has a closed form; that over an edge of the emitter is halved until halves and whole
// agree, which takes a few steps at the ends of edges that meet.
namespace Lumivane::Measure {
namespace {

using Kernel::Vec3;

constexpr int MostHalvings = 24;

struct RulePoint {
  double place;
  double weight;
};

// Gauss and Legendre on 0 to 1.
constexpr std::array<RulePoint, 8> LineRule = {{{0.019855071751231884, 0.050614268145188129},
                                                {0.101666761293186630, 0.111190517226687235},
                                                {0.237233795041835507, 0.156853322938943644},
                                                {0.408282678752175098, 0.181341891689180991},
                                                {0.591717321247824902, 0.181341891689180991},
                                                {0.762766204958164493, 0.156853322938943644},
                                                {0.898333238706813370, 0.111190517226687235},
                                                {0.980144928248768116, 0.050614268145188129}}};

struct TriangleRulePoint {
  double a, b, c, weight;
};

// Of degree 5 (J. Radon, 1948).
constexpr double A1 = 0.470142064105115089, B1 = 0.059715871789769820, W1 = 0.132394152788506181;
constexpr double A2 = 0.101286507323456338, B2 = 0.797426985353087322, W2 = 0.125939180544827152;
constexpr double Third = 1.0 / 3.0;
constexpr std::array<TriangleRulePoint, 7> TriangleRule = {{{Third, Third, Third, 0.225},
                                                            {A1, A1, B1, W1},
                                                            {A1, B1, A1, W1},
                                                            {B1, A1, A1, W1},
                                                            {A2, A2, B2, W2},
                                                            {A2, B2, A2, W2},
                                                            {B2, A2, A2, W2}}};

// The integral of ln r over an edge of length 1 or more, seen from p; r in units of `scale`.
double logIntegral(Vec3 p, Vec3 a, Vec3 along, double length, double scale) {
  const Vec3 v = a - p;
  const double t0 = Kernel::dot(v, along);
  const double t1 = t0 + length;
  const Vec3 across = v - t0 * along;
  const double d2 = Kernel::dot(across, across);
  const double d = std::sqrt(d2);
  const double inverse = 1.0 / (scale * scale);
  const auto part = [&](double t) {
    const double r2 = t * t + d2;
    return r2 > 0.0 ? 0.5 * t * std::log(r2 * inverse) : 0.0;
  };
  double result = part(t1) - part(t0) - length;
  if (d > 0.0) result += d * std::atan2(d * length, d2 + t0 * t1);
  return result;
}

struct Edge {
  Vec3 from;
  Vec3 along;
  double length;
};

std::vector<Edge> edgesOf(const Corners& corners) {
  std::vector<Edge> edges;
  for (size_t i = 0; i < corners.size(); ++i) {
    const Vec3 v = corners[i + 1 < corners.size() ? i + 1 : 0] - corners[i];
    const double length = Kernel::length3(v);
    if (length > 0.0) edges.push_back({corners[i], (1.0 / length) * v, length});
  }
  return edges;
}

class DoubleContour {
 public:
  DoubleContour(const Corners& from, const Corners& to, double wantedError)
      : emitter(edgesOf(from)), receiver(edgesOf(to)) {
    double around = 0.0;
    for (const Edge& e : emitter) {
      around += e.length;
      for (const Edge& f : receiver) scale = std::max(scale, Kernel::distance(e.from, f.from));
    }
    tolerance = 2.0 * Kernel::Pi * wantedError / std::max(around, 1e-300);
  }

  PairFactor value() {
    double sum = 0.0;
    for (const Edge& e : emitter) sum += integral(e, 0.0, e.length, whole(e, 0.0, e.length), 0);
    return {sum / (2.0 * Kernel::Pi), error / (2.0 * Kernel::Pi)};
  }

 private:
  double whole(const Edge& e, double from, double to) const {
    double sum = 0.0;
    for (const RulePoint& rule : LineRule) {
      const Vec3 p = e.from + (from + rule.place * (to - from)) * e.along;
      double value = 0.0;
      for (const Edge& f : receiver) {
        const double cosine = Kernel::dot(e.along, f.along);
        if (cosine != 0.0) value += cosine * logIntegral(p, f.from, f.along, f.length, scale);
      }
      sum += rule.weight * value;
    }
    return sum * (to - from);
  }

  double integral(const Edge& e, double from, double to, double rough, int depth) {
    const double middle = 0.5 * (from + to);
    const double low = whole(e, from, middle);
    const double high = whole(e, middle, to);
    const double difference = std::abs(low + high - rough);
    if (difference <= tolerance * (to - from) || depth == MostHalvings) {
      error += difference;
      return low + high;
    }
    return integral(e, from, middle, low, depth + 1) + integral(e, middle, to, high, depth + 1);
  }

  std::vector<Edge> emitter;
  std::vector<Edge> receiver;
  double scale = 1e-300;
  double tolerance = 0.0;
  double error = 0.0;
};

struct Ball {
  Vec3 centre;
  double radius = 0.0;
};

Ball ballAround(const Corners& corners) {
  Ball ball;
  for (const Vec3 corner : corners)
    ball.centre = ball.centre + (1.0 / static_cast<double>(corners.size())) * corner;
  for (const Vec3 corner : corners)
    ball.radius = std::max(ball.radius, Kernel::distance(ball.centre, corner));
  return ball;
}

// Fans from a corner: of outlines that are not convex some triangles count as less than nothing,
// and their sum is right all the same, since the factor from a point goes on smoothly off the face.
double overTriangles(const FlatPolygon& from, const Corners& emitter, const Corners& receiver) {
  double sum = 0.0;
  for (size_t i = 1; i + 1 < emitter.size(); ++i) {
    const Vec3 a = emitter[0];
    const Vec3 b = emitter[i];
    const Vec3 c = emitter[i + 1];
    const double area = 0.5 * Kernel::dot(from.normal, Kernel::cross(b - a, c - a));
    if (area == 0.0) continue;
    double mean = 0.0;
    for (const TriangleRulePoint& rule : TriangleRule)
      mean +=
          rule.weight * pointFactor(rule.a * a + rule.b * b + rule.c * c, from.normal, receiver);
    sum += area * mean;
  }
  return sum;
}

}  // namespace

Corners inFront(const Corners& corners, Vec3 normal, Vec3 point) {
  std::vector<double> heights;
  bool all = true;
  for (const Vec3 corner : corners) {
    heights.push_back(Kernel::dot(normal, corner - point));
    all = all && heights.back() >= 0.0;
  }
  if (all) return corners;
  Corners result;
  for (size_t i = 0; i < corners.size(); ++i) {
    const size_t next = i + 1 < corners.size() ? i + 1 : 0;
    if (heights[i] >= 0.0) result.push_back(corners[i]);
    if ((heights[i] > 0.0 && heights[next] < 0.0) || (heights[i] < 0.0 && heights[next] > 0.0)) {
      const double t = heights[i] / (heights[i] - heights[next]);
      result.push_back(corners[i] + t * (corners[next] - corners[i]));
    }
  }
  if (result.size() < 3) result.clear();
  return result;
}

Vec3 vectorArea(const Corners& corners) {
  Vec3 sum;
  for (size_t i = 1; i + 1 < corners.size(); ++i)
    sum = sum + Kernel::cross(corners[i] - corners[0], corners[i + 1] - corners[0]);
  return 0.5 * sum;
}

double pointFactor(Vec3 from, Vec3 normal, const Corners& receiver) {
  double sum = 0.0;
  if (receiver.empty()) return sum;
  Vec3 a = receiver.back() - from;
  for (const Vec3 corner : receiver) {
    const Vec3 b = corner - from;
    // As the eye sees it, the receiver's outline runs clockwise about the line of sight.
    const Vec3 across = Kernel::cross(b, a);
    const double sine = Kernel::length3(across);
    if (sine > 0.0) sum += std::atan2(sine, Kernel::dot(a, b)) / sine * Kernel::dot(across, normal);
    a = b;
  }
  return sum / (2.0 * Kernel::Pi);
}

PairFactor pairFactor(const FlatPolygon& from, const FlatPolygon& to, double wanted) {
  const Corners emitter = inFront(from.corners, to.normal, to.point);
  const Corners receiver = inFront(to.corners, from.normal, from.point);
  if (emitter.empty() || receiver.empty()) return {};
  const Ball a = ballAround(emitter);
  const Ball b = ballAround(receiver);
  const double gap = Kernel::distance(a.centre, b.centre) - b.radius;
  constexpr double Far = 5.0;
  if (gap > Far * a.radius) {
    const double exchange = overTriangles(from, emitter, receiver);
    // The rule is of degree 5.
    const double ratio = a.radius / gap;
    return {exchange, exchange * std::pow(ratio, 6)};
  }
  PairFactor result = DoubleContour(emitter, receiver, wanted).value();
  result.exchange = std::max(0.0, result.exchange);
  return result;
}

}  // namespace Lumivane::Measure
