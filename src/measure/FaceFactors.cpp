// A row is the sum of those of the flat pieces of the element. Of a piece:
//
// - It is one leaf, a cluster of triangles, at first. Each leaf is looked from at its centroid.
// - Columns are the elements that have been seen from there. Where a column's factor is that which
//   it would have alone, at every point, its factor is that of the pair, without a rule of points.
//   Else that is multiplied by the part that is seen, the quotient of both sums over the leaves.
// - Where the estimates are too large, the leaves at fault are divided: clusters in two, triangles
//   in four, of which the middle one keeps its parent's point.
// - One point may see all of a room that is not convex. If it sees next to no silhouettes, but
//   corners of the piece lie behind what it sees, there is a look from near the corners, too.
#include "kernel/EarClipping.h"
#include "kernel/Planar.h"
#include "measure/PairFactor.h"

#include <lumivane/measure/FaceFactors.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Kernel::Vec3;
using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::VisibleMap;

using Kernel::Pi;
// The part of the area of all elements beside which an exchange area counts as small.
constexpr double SmallPart = 1.0 / 20.0;
// Of the area of all elements and the root of the tolerance: what a leaf may leave unseen.
constexpr double UnseenPart = 0.1;
// Of the gain of the last division, what is added to the sums.
constexpr double Extrapolation = 1.0 / 3.0;
// What counts as the error that a division leaves, by what it changed.
constexpr double Left = 0.3;
// Of what is wrong with a sum, the part that may be due to factors that are partly hidden. Most is
// the sky's, which has no factor of its own to be held against.
constexpr double PartialBlame = 0.3;
// Of what silhouettes sweep over between the points, the part that a factor may lose there: this by
// the number of leaves, and no less than the other one. Found by experiment, so that nearly all
// estimates are at least the error in rooms full of things.
constexpr double UnseenBlame = 4.0;
constexpr double LeastUnseenBlame = 0.05;
// Of a piece, what silhouettes may sweep over if its first point is said to see next to none.
constexpr double CleanPart = 0.02;
// How far from a corner, of the way to the middle of its triangle, there is a look.
constexpr double CornerInset = 0.02;
// A difference of factors from a point that is rounding's.
constexpr double SameFactor = 1e-9;
constexpr double SameFactorPart = 1e-7;
// Of the wanted error, what the factors of pairs that see each other fully may have.
constexpr double PairPart = 1e-3;

using Triangle = std::array<Vec3, 3>;

double areaOf(const Triangle& t) {
  return 0.5 * Kernel::length3(Kernel::cross(t[1] - t[0], t[2] - t[0]));
}

Vec3 centroidOf(const Triangle& t) { return t[0] + (1.0 / 3.0) * ((t[1] - t[0]) + (t[2] - t[0])); }

// The mean square of the distance from the centroid.
double spreadOf(const Triangle& t) {
  double sum = 0.0;
  for (size_t i = 0; i < 3; ++i) {
    const Vec3 side = t[(i + 1) % 3] - t[i];
    sum += Kernel::dot(side, side);
  }
  return sum / 36.0;
}

bool contains(const Triangle& t, Vec3 p, Vec3 normal) {
  for (size_t i = 0; i < 3; ++i)
    if (Kernel::dot(normal, Kernel::cross(t[(i + 1) % 3] - t[i], p - t[i])) < 0.0) return false;
  return true;
}

// A line on the emitter where another face stands on it or runs through it: what is seen changes
// there at once.
struct Contact {
  Vec3 from;
  Vec3 to;
};

// Whether a part of the contact lies inside the triangle, and not only along its border.
bool crosses(const Contact& contact, const Triangle& t, Vec3 normal) {
  const double size = std::sqrt(areaOf(t));
  const double margin = 1e-7 * size;
  const Vec3 along = contact.to - contact.from;
  double from = 0.0;
  double to = 1.0;
  for (size_t i = 0; i < 3; ++i) {
    const Vec3 side = t[(i + 1) % 3] - t[i];
    const Vec3 inwards = (1.0 / Kernel::length3(side)) * Kernel::cross(normal, side);
    const double height = Kernel::dot(inwards, contact.from - t[i]) - margin;
    const double slope = Kernel::dot(inwards, along);
    if (slope == 0.0) {
      if (height < 0.0) return false;
    } else if (slope > 0.0) {
      from = std::max(from, -height / slope);
    } else {
      to = std::min(to, -height / slope);
    }
  }
  return (to - from) * Kernel::length3(along) > margin;
}

Vec3 toVec(const Visibility::Vector& v) { return {v[0], v[1], v[2]}; }
Visibility::Vector toVector(Vec3 v) { return {v.x, v.y, v.z}; }

FlatPolygon turned(FlatPolygon polygon) {
  std::reverse(polygon.corners.begin(), polygon.corners.end());
  polygon.normal = -polygon.normal;
  return polygon;
}

// A flat piece of a region, from its seen side.
struct Piece {
  FlatPolygon front;
  std::vector<Triangle> triangles;  // counter-clockwise from there
  double area = 0.0;
};

std::vector<Triangle> trianglesOf(const FlatPolygon& polygon) {
  const Vec3 n = polygon.normal;
  const bool alongX = std::abs(n.x) <= std::abs(n.y) && std::abs(n.x) <= std::abs(n.z);
  const Vec3 axis = alongX                           ? Vec3{1, 0, 0}
                    : std::abs(n.y) <= std::abs(n.z) ? Vec3{0, 1, 0}
                                                     : Vec3{0, 0, 1};
  Vec3 u = Kernel::cross(axis, n);
  u = (1.0 / Kernel::length3(u)) * u;
  const Vec3 v = Kernel::cross(n, u);
  std::vector<Kernel::Vec2> flat;
  for (const Vec3 corner : polygon.corners)
    flat.push_back(
        {Kernel::dot(u, corner - polygon.point), Kernel::dot(v, corner - polygon.point)});
  std::vector<Triangle> result;
  for (const Kernel::CornerTriple& triple : Kernel::clippedEars(flat)) {
    const Triangle t{polygon.corners[triple[0]], polygon.corners[triple[1]],
                     polygon.corners[triple[2]]};
    // What runs clockwise is of an outline that crosses itself.
    if (Kernel::dot(n, Kernel::cross(t[1] - t[0], t[2] - t[0])) > 0.0) result.push_back(t);
  }
  return result;
}

// The part of a piece that one point stands for.
struct Leaf {
  std::vector<Triangle> triangles;
  size_t sample = 0;           // position in the samples
  double weight = 0.0;         // of its area in that of the piece
  std::vector<double> errors;  // by column, of the factor; shorter where there are new columns
  // What the sums over a triangle gained when it was divided into this leaf and its like; each has
  // the same part of it.
  std::vector<double> seenGain;
  std::vector<double> aloneGain;
  double skyError = 0.0;
  const Contact* contact = nullptr;  // that runs through it
  double unseen = 0.0;  // exchange area that may come into sight from elsewhere in the leaf
};

double areaOf(const std::vector<Triangle>& triangles) {
  double sum = 0.0;
  for (const Triangle& t : triangles) sum += areaOf(t);
  return sum;
}

Vec3 centroidOf(const std::vector<Triangle>& triangles) {
  const Vec3 origin = triangles[0][0];
  Vec3 sum;
  for (const Triangle& t : triangles) sum = sum + areaOf(t) * (centroidOf(t) - origin);
  return origin + (1.0 / areaOf(triangles)) * sum;
}

// The centroid, or that of the nearest triangle where it lies in none.
Vec3 pointIn(const std::vector<Triangle>& triangles, Vec3 normal) {
  const Vec3 centre = centroidOf(triangles);
  Vec3 best = centre;
  double least = std::numeric_limits<double>::infinity();
  for (const Triangle& t : triangles) {
    if (contains(t, centre, normal)) return centre;
    const Vec3 p = centroidOf(t);
    const double distance = Kernel::distance(p, centre);
    if (distance < least) {
      least = distance;
      best = p;
    }
  }
  return best;
}

double spreadAround(const std::vector<Triangle>& triangles, Vec3 point) {
  double sum = 0.0;
  for (const Triangle& t : triangles) {
    const Vec3 away = centroidOf(t) - point;
    sum += areaOf(t) * (spreadOf(t) + Kernel::dot(away, away));
  }
  return std::sqrt(sum / areaOf(triangles));
}

// What another element is to the piece.
struct Column {
  size_t element = 0;
  std::vector<FlatPolygon> receivers;  // cut off at the plane of the piece
  double exchange = 0.0;               // with nothing between them, by the area of the piece
  double exchangeError = 0.0;
  bool isPartial = false;    // something stands between them
  bool isIrregular = false;  // more is seen of it than there should be: its outline crosses itself
};

// What is seen from one point.
struct Sample {
  Vec3 point;
  std::vector<double> seen;   // by column: the view factor
  std::vector<double> alone;  // by column: with nothing in front of it
  double sky = 0.0;
  // What silhouettes in front of it, and of the sky, sweep over when the eye moves by 1, and the
  // same by the distance of the silhouettes.
  std::vector<double> swing;
  std::vector<double> bend;
  double skyBend = 0.0;
  double allSwing = 0.0;
  double nearest = std::numeric_limits<double>::infinity();
};

double at(const std::vector<double>& values, size_t i) {
  return i < values.size() ? values[i] : 0.0;
}

void addTo(std::vector<double>& values, size_t i, double value) {
  if (values.size() <= i) values.resize(i + 1, 0.0);
  values[i] += value;
}

}  // namespace

struct FaceFactors::State {
  SceneIndex index;
  FactorOptions options;
  std::vector<Piece> pieces;
  std::vector<std::vector<size_t>> piecesOf;  // of each face that has elements
  std::vector<Vec3> meanNormals;              // and its vector area
  std::vector<Vec3> centres;
  std::unordered_map<std::uint64_t, size_t> faces;  // by object and region
  std::vector<FactorElement> elements;
  std::vector<std::string> objectIds;
  std::vector<std::string> classNames;
  double area = 0.0;

  size_t sides() const { return options.twoSided ? 2 : 1; }
  static std::uint64_t key(const Visibility::Label& label) {
    return static_cast<std::uint64_t>(label.object) << 32U |
           static_cast<std::uint32_t>(label.region);
  }

  State(const SceneIndex& sceneIndex, const FactorOptions& factorOptions)
      : index(sceneIndex), options(factorOptions) {
    if (!(options.tolerance > 0.0)) throw std::invalid_argument("the tolerance is not above 0");
    if (options.mostPoints == 0) throw std::invalid_argument("no points to look from");
    const PolygonScene scene = index.pieces();
    objectIds = scene.objectIds;
    classNames = scene.classNames;
    for (const size_t i : inOrder(scene)) addPiece(scene, i);
    for (FactorElement& element : elements) area += element.area;
  }

 private:
  static std::vector<size_t> inOrder(const PolygonScene& scene) {
    std::vector<size_t> order(scene.labels.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&scene](size_t a, size_t b) {
      return key(scene.labels[a]) < key(scene.labels[b]);
    });
    return order;
  }

  void addPiece(const PolygonScene& scene, size_t i) {
    Piece piece;
    // Corners run clockwise as seen from the seen side.
    for (size_t c = scene.offsets[i + 1]; c > scene.offsets[i]; --c)
      piece.front.corners.push_back(toVec(scene.points[static_cast<size_t>(scene.corners[c - 1])]));
    const Vec3 vector = vectorArea(piece.front.corners);
    const double length = Kernel::length3(vector);
    if (!(length > 0.0)) return;
    piece.front.normal = (1.0 / length) * vector;
    for (const Vec3 corner : piece.front.corners)
      piece.front.point =
          piece.front.point + (1.0 / static_cast<double>(piece.front.corners.size())) * corner;
    piece.triangles = trianglesOf(piece.front);
    piece.area = areaOf(piece.triangles);
    if (!(piece.area > 0.0)) return;
    const auto found = faces.emplace(key(scene.labels[i]), piecesOf.size());
    if (found.second) addFace(scene.labels[i], scene.classes[i]);
    const size_t face = found.first->second;
    piecesOf[face].push_back(pieces.size());
    meanNormals[face] = meanNormals[face] + vector;
    const Vec3 centre = centroidOf(piece.triangles);
    for (size_t side = 0; side < sides(); ++side) {
      FactorElement& element = elements[face * sides() + side];
      const double whole = element.area + piece.area;
      const Vec3 before = toVec(element.centre);
      const Vec3 now = before + (piece.area / whole) * (centre - before);
      element.centre = toVector(now);
      element.area = whole;
      const Vec3 normal = (1.0 / Kernel::length3(meanNormals[face])) * meanNormals[face];
      element.normal = toVector(side == 0 ? normal : -normal);
      centres[face] = now;
    }
    pieces.push_back(std::move(piece));
  }

  void addFace(const Visibility::Label& label, int classNumber) {
    piecesOf.emplace_back();
    meanNormals.emplace_back();
    centres.emplace_back();
    for (size_t side = 0; side < sides(); ++side) {
      FactorElement element;
      element.label = label;
      element.isBack = side == 1;
      element.classNumber = classNumber;
      elements.push_back(element);
    }
  }
};

namespace {

// Integrates over one piece.
template <class State>
class PieceRow {
 public:
  PieceRow(const State& theState, size_t emitter, size_t piece)
      : state(theState),
        element(state.elements[emitter]),
        source(element.isBack ? turned(state.pieces[piece].front) : state.pieces[piece].front),
        area(state.pieces[piece].area) {
    Leaf leaf;
    leaf.triangles = state.pieces[piece].triangles;
    if (element.isBack)
      for (Triangle& t : leaf.triangles) std::swap(t[1], t[2]);
    lookFrom(leaf);
    place(leaf);
    if (mayHideMore(leaf)) {
      probeCorners(leaf.triangles);
      place(leaf);
    }
    leaves.push_back(std::move(leaf));
    estimateAlone(leaves[0]);
  }

  FactorRow run() {
    FactorRow row;
    for (;;) {
      sumUp();
      const std::vector<size_t> wrong = leavesAtFault();
      if (wrong.empty()) break;
      if (samples.size() >= state.options.mostPoints) {
        row.isWithinTolerance = false;
        break;
      }
      divide(wrong);
    }
    row.looks = samples.size();
    close(row);
    return row;
  }

 private:
  // ---- looking

  void lookFrom(Leaf& leaf) { leaf.sample = look(pointIn(leaf.triangles, source.normal)); }

  // What silhouettes give free as the eye moves over the leaf may hold what no point has seen yet.
  void place(Leaf& leaf) const {
    const double leafArea = areaOf(leaf.triangles);
    const Sample& sample = samples[leaf.sample];
    double swing = sample.allSwing;
    for (const size_t probe : probes)
      if (std::any_of(leaf.triangles.begin(), leaf.triangles.end(), [&](const Triangle& t) {
            return contains(t, samples[probe].point, source.normal);
          }))
        swing = std::max(swing, samples[probe].allSwing);
    leaf.weight = leafArea / area;
    leaf.unseen = leafArea * std::min(1.0, swing * spreadAround(leaf.triangles, sample.point));
  }

  // A point without silhouettes around it sees all of what encloses it; so do the points in front
  // of all planes of that. Whether some of the piece are not. What is small anyway is left at that.
  bool mayHideMore(const Leaf& leaf) const {
    if (leaf.unseen > CleanPart * area) return false;
    if (!(area > state.options.tolerance * SmallPart * state.area)) return false;
    const double margin = 1e-7 * std::sqrt(area);
    for (const Column& column : columns)
      for (const FlatPolygon& receiver : column.receivers)
        for (const Vec3 corner : source.corners)
          if (Kernel::dot(receiver.normal, corner - receiver.point) < -margin) return true;
    return false;
  }

  // From near the corners that lie outermost in eight directions.
  void probeCorners(const std::vector<Triangle>& triangles) {
    const Vec3 side = triangles[0][1] - triangles[0][0];
    const Vec3 u = (1.0 / Kernel::length3(side)) * side;
    const Vec3 v = Kernel::cross(source.normal, u);
    const double half = std::sqrt(0.5);
    std::vector<Vec3> corners;
    for (const Vec3 direction :
         {u, half * (u + v), v, half * (v - u), -u, -half * (u + v), -v, half * (u - v)}) {
      Vec3 corner = triangles[0][0];
      const Triangle* of = &triangles[0];
      for (const Triangle& t : triangles)
        for (const Vec3 p : t)
          if (Kernel::dot(direction, p - corner) > 0.0) {
            corner = p;
            of = &t;
          }
      if (std::any_of(corners.begin(), corners.end(),
                      [&](Vec3 other) { return Kernel::distance(other, corner) == 0.0; }))
        continue;
      corners.push_back(corner);
      probes.push_back(look(corner + CornerInset * (centroidOf(*of) - corner)));
    }
  }

  size_t look(Vec3 point) {
    Visibility::LookOptions how;
    how.forward = toVector(source.normal);
    how.twoSided = state.options.twoSided;
    how.cancelled = state.options.cancelled;
    const VisibleMap map = state.index.look(toVector(point), how);
    Sample sample;
    sample.point = point;
    std::vector<size_t> columnOf;
    for (const VisibleMap::Cell& cell : map.cells) {
      if (cell.label.object == 0) {
        sample.sky += cell.viewFactor;
        columnOf.push_back(NoColumn);
        continue;
      }
      sample.nearest = std::min(sample.nearest, cell.minDistance);
      columnOf.push_back(columnFor(cell.label, point));
      if (columnOf.back() != NoColumn) addTo(sample.seen, columnOf.back(), cell.viewFactor);
    }
    addSwings(map, columnOf, sample);
    for (size_t c = 0; c < columns.size(); ++c)
      sample.alone.push_back(aloneFrom(columns[c], point));
    samples.push_back(std::move(sample));
    return samples.size() - 1;
  }

  size_t columnFor(const Visibility::Label& label, Vec3 point) {
    const auto found = state.faces.find(State::key(label));
    if (found == state.faces.end()) return NoColumn;
    const size_t face = found->second;
    const bool back = state.options.twoSided &&
                      Kernel::dot(state.meanNormals[face], point - state.centres[face]) < 0.0;
    const size_t target = face * state.sides() + (back ? 1 : 0);
    const auto known = numbers.emplace(target, columns.size());
    if (known.second) addColumn(target, face, back);
    return known.first->second;
  }

  void addColumn(size_t target, size_t face, bool back) {
    Column column;
    column.element = target;
    PairFactor sum;
    const double wanted =
        PairPart * state.options.tolerance * std::max(1e-2 * area, SmallPart * state.area);
    for (const size_t piece : state.piecesOf[face]) {
      FlatPolygon receiver = back ? turned(state.pieces[piece].front) : state.pieces[piece].front;
      const PairFactor pair = pairFactor(source, receiver, std::min(wanted, 1e-6 * area));
      if (addContacts(receiver)) continue;
      sum.exchange += pair.exchange;
      sum.error += pair.error;
      receiver.corners = inFront(receiver.corners, source.normal, source.point);
      if (!receiver.corners.empty()) column.receivers.push_back(std::move(receiver));
    }
    column.exchange = sum.exchange / area;
    column.exchangeError = sum.error / area;
    columns.push_back(std::move(column));
    for (Sample& sample : samples) sample.alone.push_back(aloneFrom(columns.back(), sample.point));
  }

  // Edges in the plane of the emitter, and what lies between two others that cross it. Whether all
  // of the receiver is in that plane: then it is not seen.
  bool addContacts(const FlatPolygon& receiver) {
    const Corners& corners = receiver.corners;
    double size = 0.0;
    std::vector<double> heights;
    for (const Vec3 corner : corners) {
      heights.push_back(Kernel::dot(source.normal, corner - source.point));
      size = std::max(size, Kernel::distance(corner, corners[0]));
    }
    for (double& height : heights)
      if (std::abs(height) <= 1e-7 * size) height = 0.0;
    if (std::all_of(heights.begin(), heights.end(), [](double height) { return height == 0.0; }))
      return true;
    std::vector<Vec3> crossings;
    for (size_t i = 0; i < corners.size(); ++i) {
      const size_t next = i + 1 < corners.size() ? i + 1 : 0;
      if (heights[i] == 0.0 && heights[next] == 0.0)
        contacts.push_back({corners[i], corners[next]});
      if (heights[i] * heights[next] < 0.0)
        crossings.push_back(corners[i] + heights[i] / (heights[i] - heights[next]) *
                                             (corners[next] - corners[i]));
    }
    const Vec3 line = Kernel::cross(source.normal, receiver.normal);
    std::sort(crossings.begin(), crossings.end(),
              [line](Vec3 a, Vec3 b) { return Kernel::dot(line, a) < Kernel::dot(line, b); });
    for (size_t i = 0; i + 1 < crossings.size(); i += 2)
      contacts.push_back({crossings[i], crossings[i + 1]});
    return false;
  }

  void findContact(Leaf& leaf) const {
    leaf.contact = nullptr;
    for (const Contact& contact : contacts)
      for (const Triangle& t : leaf.triangles)
        if (crosses(contact, t, source.normal)) {
          leaf.contact = &contact;
          return;
        }
  }

  double aloneFrom(const Column& column, Vec3 point) const {
    double sum = 0.0;
    for (const FlatPolygon& receiver : column.receivers)
      if (Kernel::dot(receiver.normal, point - receiver.point) > 0.0)
        sum += pointFactor(point, source.normal, receiver.corners);
    return std::max(0.0, sum);
  }

  // How the borders of what is seen move with the eye: a silhouette at the distance t, before what
  // is at the distance s, moves by 1 / t - 1 / s.
  void addSwings(const VisibleMap& map, const std::vector<size_t>& columnOf, Sample& sample) const {
    for (const VisibleMap::Edge& edge : map.edges) {
      if (edge.left < 0 || edge.right < 0 || edge.kind != VisibleMap::EdgeKind::Silhouette)
        continue;
      const Vec3 a = toVec(map.vertices[static_cast<size_t>(edge.from)]);
      const Vec3 b = toVec(map.vertices[static_cast<size_t>(edge.to)]);
      const Vec3 middle = 0.5 * (a + b);
      const double cosine = Kernel::dot(middle, source.normal);
      if (!(cosine > 0.0)) continue;
      const double left = nearness(map.cells[static_cast<size_t>(edge.left)], middle, sample.point);
      const double right =
          nearness(map.cells[static_cast<size_t>(edge.right)], middle, sample.point);
      const double swing = std::abs(left - right) * Kernel::distance(a, b) * cosine / Pi;
      const double bend = swing * std::max(left, right);
      sample.allSwing += swing;
      const int farther = left < right ? edge.left : edge.right;
      const size_t column = columnOf[static_cast<size_t>(farther)];
      if (column == NoColumn) {
        sample.skyBend += bend;
        continue;
      }
      addTo(sample.swing, column, swing);
      addTo(sample.bend, column, bend);
    }
  }

  // 1 / distance of a cell in a direction.
  double nearness(const VisibleMap::Cell& cell, Vec3 direction, Vec3 point) const {
    if (cell.label.object == 0) return 0.0;
    const double most = 1.0 / std::max(cell.minDistance, 1e-300);
    const double least = cell.maxDistance > 0.0 ? 1.0 / cell.maxDistance : 0.0;
    const auto found = state.faces.find(State::key(cell.label));
    if (found == state.faces.end() || state.piecesOf[found->second].size() != 1)
      return 0.5 * (most + least);
    const FlatPolygon& plane = state.pieces[state.piecesOf[found->second][0]].front;
    const double offset = Kernel::dot(plane.normal, plane.point - point);
    const double along = Kernel::dot(plane.normal, direction);
    return offset == 0.0 ? most : std::clamp(along / offset, least, most);
  }

  // ---- sums

  void sumUp() {
    const size_t count = columns.size();
    seen.assign(count, 0.0);
    alone.assign(count, 0.0);
    errors.assign(count, 0.0);
    sky = 0.0;
    skyError = 0.0;
    for (Column& column : columns) column.isPartial = column.isIrregular = false;
    if (knownContacts != contacts.size())
      for (Leaf& leaf : leaves) findContact(leaf);
    knownContacts = contacts.size();
    for (const size_t probe : probes)
      for (size_t c = 0; c < count; ++c) compareAlone(samples[probe], c);
    for (const Leaf& leaf : leaves) {
      const Sample& sample = samples[leaf.sample];
      sky += leaf.weight * sample.sky;
      skyError += leaf.skyError;
      for (size_t c = 0; c < count; ++c) {
        const double here = at(sample.seen, c);
        const double free = sample.alone[c];
        seen[c] += leaf.weight * here + Extrapolation * at(leaf.seenGain, c);
        alone[c] += leaf.weight * free + Extrapolation * at(leaf.aloneGain, c);
        compareAlone(sample, c);
        if (leaf.contact != nullptr) columns[c].isPartial = true;
      }
      for (size_t c = 0; c < leaf.errors.size(); ++c) errors[c] += leaf.errors[c];
      for (size_t c = 0; c < count && leaf.contact != nullptr; ++c)
        errors[c] += contactError(leaf, c);
    }
    for (size_t c = 0; c < count; ++c)
      if (!columns[c].isPartial && !columns[c].isIrregular) errors[c] = 0.0;
  }

  // Whether a point sees all of a column, or less, or more.
  void compareAlone(const Sample& sample, size_t c) {
    const double here = at(sample.seen, c);
    const double margin = SameFactor + SameFactorPart * sample.alone[c];
    if (here < sample.alone[c] - margin) columns[c].isPartial = true;
    if (here > sample.alone[c] + margin) columns[c].isIrregular = true;
  }

  // Both sides of a contact have what the point has, or nothing.
  double contactError(const Leaf& leaf, size_t c) const {
    const Sample& sample = samples[leaf.sample];
    return 0.5 * leaf.weight * std::max(at(sample.seen, c), sample.alone[c]);
  }

  double seenPart(size_t c) const {
    return alone[c] > 0.0 ? std::min(1.0, seen[c] / alone[c]) : 0.0;
  }

  double factorOf(size_t c) const {
    const Column& column = columns[c];
    if (column.isIrregular) return seen[c];
    return column.isPartial ? column.exchange * seenPart(c) : column.exchange;
  }

  // What is integrated with the points, where the factor alone is not.
  double rest(const Sample& sample, size_t c) const {
    const Column& column = columns[c];
    if (column.isIrregular) return at(sample.seen, c);
    return column.isPartial ? at(sample.seen, c) - seenPart(c) * sample.alone[c] : 0.0;
  }

  double limitOf(size_t c) const {
    return state.options.tolerance * std::max(factorOf(c), SmallPart * state.area / element.area);
  }

  // ---- errors

  // Of a leaf that has not been divided. As long as the borders on a column move evenly, what they
  // gain on one side they lose on the other; what remains is of second order, and what moves off
  // the column or onto it.
  void estimateAlone(Leaf& leaf) const {
    const Sample& sample = samples[leaf.sample];
    const double h = spreadAround(leaf.triangles, sample.point);
    leaf.errors.assign(columns.size(), 0.0);
    for (size_t c = 0; c < columns.size(); ++c) {
      const double here = at(sample.seen, c);
      const double hidden = std::max(0.0, sample.alone[c] - here);
      const double most = std::max(here, hidden);
      const double swing = std::min(most, h * at(sample.swing, c));
      const double off = 0.25 * std::max(0.0, 2.0 * swing - std::min(here, hidden));
      // What the factor alone has elsewhere on the leaf may be seen or not.
      const double kernel =
          hidden > 0.0 && sample.alone[c] > 0.0
              ? 0.5 * here / sample.alone[c] * std::abs(columns[c].exchange - sample.alone[c])
              : 0.0;
      leaf.errors[c] =
          leaf.weight * (kernel + std::min(most, 0.5 * h * h * at(sample.bend, c) + off));
    }
    leaf.skyError = leaf.weight * std::min(1.0, 0.5 * h * h * sample.skyBend);
  }

  double errorOf(const Leaf& leaf, size_t c) const {
    return at(leaf.errors, c) + (leaf.contact != nullptr ? contactError(leaf, c) : 0.0);
  }

  std::vector<size_t> leavesAtFault() const {
    std::vector<char> isWrong(columns.size(), 0);
    std::vector<double> limits(columns.size());
    for (size_t c = 0; c < columns.size(); ++c) {
      limits[c] = limitOf(c);
      if (errors[c] > limits[c]) isWrong[c] = 1;
    }
    const double mostUnseen = UnseenPart * std::sqrt(state.options.tolerance) * state.area;
    std::vector<double> scores;
    double worst = 0.0;
    for (const Leaf& leaf : leaves) {
      double score = leaf.unseen > mostUnseen ? leaf.unseen / mostUnseen : 0.0;
      for (size_t c = 0; c < columns.size(); ++c)
        if (isWrong[c] != 0) score = std::max(score, errorOf(leaf, c) / limits[c]);
      scores.push_back(score);
      worst = std::max(worst, score);
    }
    std::vector<size_t> result;
    for (size_t i = 0; i < leaves.size(); ++i)
      if (scores[i] > 0.0 && scores[i] >= 0.5 * worst) result.push_back(i);
    return result;
  }

  struct Family {
    Leaf parent;
    size_t first;  // of its parts among the leaves
    size_t count;
  };

  void divide(const std::vector<size_t>& wrong) {
    std::vector<Leaf> parents;
    for (size_t i = wrong.size(); i-- > 0;) {
      const auto place = leaves.begin() + static_cast<std::ptrdiff_t>(wrong[i]);
      parents.push_back(std::move(*place));
      leaves.erase(place);
    }
    std::vector<Family> families;
    for (Leaf& parent : parents) {
      const size_t first = leaves.size();
      for (Leaf& leaf : parts(parent)) leaves.push_back(std::move(leaf));
      families.push_back({std::move(parent), first, leaves.size() - first});
    }
    for (const Family& family : families) setGains(family);
    sumUp();  // with all that is seen now, of which the families' errors are
    for (const Family& family : families) estimate(family);
  }

  // Triangles in four are a rule of second order: a third of the gain brings it to fourth order
  // (L. F. Richardson, 1911).
  void setGains(const Family& family) {
    if (family.parent.triangles.size() > 1 || family.parent.contact != nullptr) return;
    const auto parts = static_cast<double>(family.count);
    const Sample& coarse = samples[family.parent.sample];
    for (size_t c = 0; c < columns.size(); ++c) {
      double seenSum = -family.parent.weight * at(coarse.seen, c);
      double aloneSum = -family.parent.weight * coarse.alone[c];
      for (size_t i = family.first; i < family.first + family.count; ++i) {
        const Sample& fine = samples[leaves[i].sample];
        seenSum += leaves[i].weight * at(fine.seen, c);
        aloneSum += leaves[i].weight * fine.alone[c];
      }
      for (size_t i = family.first; i < family.first + family.count; ++i) {
        leaves[i].seenGain.push_back(seenSum / parts);
        leaves[i].aloneGain.push_back(aloneSum / parts);
      }
    }
  }

  // What the part of a column that is not in its factor alone gained, by a leaf.
  double gain(const Leaf& leaf, size_t c) const {
    const Column& column = columns[c];
    if (column.isIrregular) return at(leaf.seenGain, c);
    return column.isPartial ? at(leaf.seenGain, c) - seenPart(c) * at(leaf.aloneGain, c) : 0.0;
  }

  // Where all is smooth the gain is a quarter of that of the division before, by area, and what is
  // left is small beside it. Where it is not, as where a border leaves a column, that shows.
  void estimate(const Family& family) {
    double skyDifference = -family.parent.weight * samples[family.parent.sample].sky;
    for (size_t i = family.first; i < family.first + family.count; ++i)
      skyDifference += leaves[i].weight * samples[leaves[i].sample].sky;
    const auto parts = static_cast<double>(family.count);
    std::vector<double> shares(columns.size(), 0.0);
    for (size_t c = 0; c < columns.size(); ++c) {
      double difference = -family.parent.weight * rest(samples[family.parent.sample], c);
      for (size_t i = family.first; i < family.first + family.count; ++i)
        difference += leaves[i].weight * rest(samples[leaves[i].sample], c);
      const bool wasDivided = !family.parent.seenGain.empty();
      const double expected = wasDivided ? 0.25 * gain(family.parent, c) : 0.0;
      shares[c] =
          Left * std::max(std::abs(difference - expected), 0.1 * std::abs(difference)) / parts;
    }
    for (size_t i = family.first; i < family.first + family.count; ++i) {
      leaves[i].errors = shares;
      leaves[i].skyError = Left * std::abs(skyDifference) / parts;
    }
  }

  // ---- leaves

  std::vector<Leaf> parts(const Leaf& leaf) {
    std::vector<Leaf> result;
    const bool keepsPoint = leaf.triangles.size() == 1 && leaf.contact == nullptr;
    if (leaf.contact != nullptr) {
      for (std::vector<Triangle>& side : sidesOf(leaf)) {
        result.emplace_back();
        result.back().triangles = std::move(side);
      }
    } else if (leaf.triangles.size() > 1) {
      for (std::vector<Triangle>& half : halves(leaf.triangles)) {
        result.emplace_back();
        result.back().triangles = std::move(half);
      }
    } else {
      const Triangle& t = leaf.triangles[0];
      const Vec3 ab = 0.5 * (t[0] + t[1]);
      const Vec3 bc = 0.5 * (t[1] + t[2]);
      const Vec3 ca = 0.5 * (t[2] + t[0]);
      for (const Triangle& part : {Triangle{ab, bc, ca}, Triangle{t[0], ab, ca},
                                   Triangle{ab, t[1], bc}, Triangle{ca, bc, t[2]}}) {
        result.emplace_back();
        result.back().triangles = {part};
      }
    }
    for (size_t i = 0; i < result.size(); ++i) {
      if (keepsPoint && i == 0)
        result[i].sample = leaf.sample;
      else
        lookFrom(result[i]);
      place(result[i]);
    }
    for (Leaf& part : result) findContact(part);
    return result;
  }

  // On either side of the line of a contact.
  std::array<std::vector<Triangle>, 2> sidesOf(const Leaf& leaf) const {
    const Vec3 across = Kernel::cross(source.normal, leaf.contact->to - leaf.contact->from);
    std::array<std::vector<Triangle>, 2> result;
    for (size_t side = 0; side < 2; ++side)
      for (const Triangle& t : leaf.triangles) {
        const Corners cut =
            inFront({t[0], t[1], t[2]}, side == 0 ? across : -across, leaf.contact->from);
        for (size_t i = 1; i + 1 < cut.size(); ++i) {
          const Triangle part{cut[0], cut[i], cut[i + 1]};
          constexpr double Nothing = 1e-14;
          if (areaOf(part) > Nothing * areaOf(t)) result[side].push_back(part);
        }
      }
    return result;
  }

  // Along the axis on which the triangles' centroids are farthest apart, by area.
  static std::array<std::vector<Triangle>, 2> halves(std::vector<Triangle> triangles) {
    Vec3 low = centroidOf(triangles[0]);
    Vec3 high = low;
    for (const Triangle& t : triangles) {
      const Vec3 p = centroidOf(t);
      low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    const Vec3 extent = high - low;
    const auto key = [&extent](const Triangle& t) {
      const Vec3 p = centroidOf(t);
      if (extent.x >= extent.y && extent.x >= extent.z) return p.x;
      return extent.y >= extent.z ? p.y : p.z;
    };
    std::stable_sort(triangles.begin(), triangles.end(),
                     [&key](const Triangle& a, const Triangle& b) { return key(a) < key(b); });
    const double half = 0.5 * areaOf(triangles);
    size_t count = 0;
    for (double sum = 0.0; count < triangles.size() - 1; ++count) {
      sum += areaOf(triangles[count]);
      if (sum > half && count > 0) break;
    }
    const auto middle = triangles.begin() + static_cast<std::ptrdiff_t>(std::max<size_t>(1, count));
    return {std::vector<Triangle>(triangles.begin(), middle),
            std::vector<Triangle>(middle, triangles.end())};
  }

  // ---- the row

  // What the sum lacks goes where the estimates allow it most.
  void close(FactorRow& row) const {
    row.sky = sky;
    row.skyEstimate = skyError;
    double sum = sky;
    double partial = 0.0;
    for (size_t c = 0; c < columns.size(); ++c) {
      FactorEntry entry;
      entry.element = columns[c].element;
      entry.factor = factorOf(c);
      entry.estimate = columns[c].exchangeError + errors[c] + SameFactorPart * entry.factor;
      sum += entry.factor;
      if (columns[c].isPartial || columns[c].isIrregular) partial += entry.factor;
      row.entries.push_back(entry);
    }
    // Pairs that see each other fully are sure: what is wrong with the sum is the others'.
    row.residual = sum - 1.0;
    for (size_t c = 0; c < columns.size() && partial > 0.0; ++c)
      if (columns[c].isPartial || columns[c].isIrregular)
        row.entries[c].estimate +=
            PartialBlame * std::abs(row.residual) * row.entries[c].factor / (partial + row.sky);
    std::sort(row.entries.begin(), row.entries.end(),
              [](const FactorEntry& a, const FactorEntry& b) { return a.element < b.element; });
    if (row.sky > 0.0)
      row.skyEstimate += std::abs(row.residual) * std::sqrt(row.sky / (partial + row.sky));
    constexpr int Rounds = 4;  // since no factor falls below 0
    for (int i = 0; i < Rounds && sum != 1.0; ++i) {
      double weights = row.skyEstimate * row.skyEstimate;
      for (const FactorEntry& entry : row.entries)
        if (sum < 1.0 || entry.factor > 0.0) weights += entry.estimate * entry.estimate;
      if (!(weights > 0.0)) break;
      const double part = (1.0 - sum) / weights;
      const auto change = [part](double& factor, double& estimate) {
        const double by = part * estimate * estimate;
        factor = std::max(0.0, factor + by);
      };
      change(row.sky, row.skyEstimate);
      sum = row.sky;
      for (FactorEntry& entry : row.entries) {
        change(entry.factor, entry.estimate);
        sum += entry.factor;
      }
    }
    allowForUnseen(row);
  }

  void allowForUnseen(FactorRow& row) const {
    double unseen = 0.0;
    for (const Leaf& leaf : leaves) unseen += leaf.unseen / area;
    const double blame =
        std::max(LeastUnseenBlame, UnseenBlame / static_cast<double>(leaves.size()));
    double others = 0.0;
    for (FactorEntry& entry : row.entries) {
      entry.estimate += blame * unseen * entry.factor;
      others += entry.estimate;
    }
    // What the others leave is the sky's.
    row.skyEstimate = std::min(row.skyEstimate, others);
  }

  static constexpr size_t NoColumn = ~size_t{0};

  const State& state;
  const FactorElement& element;
  FlatPolygon source;
  double area;
  std::vector<Leaf> leaves;
  std::vector<Sample> samples;
  std::vector<size_t> probes;  // positions of samples that no leaf stands for
  std::vector<Column> columns;
  std::deque<Contact> contacts;                // that leaves point at
  size_t knownContacts = 0;                    // how many of them the leaves have been held against
  std::unordered_map<size_t, size_t> numbers;  // of the columns of elements
  // Sums over the leaves.
  std::vector<double> seen;
  std::vector<double> alone;
  std::vector<double> errors;
  double sky = 0.0;
  double skyError = 0.0;
};

// Adds a part of the row of a piece.
void add(FactorRow& row, const FactorRow& part, double weight) {
  std::vector<FactorEntry> merged;
  size_t i = 0;
  size_t k = 0;
  while (i < row.entries.size() || k < part.entries.size()) {
    const size_t a = i < row.entries.size() ? row.entries[i].element : ~size_t{0};
    const size_t b = k < part.entries.size() ? part.entries[k].element : ~size_t{0};
    FactorEntry entry;
    entry.element = std::min(a, b);
    if (a <= b) entry = row.entries[i++];
    if (b <= a) {
      entry.factor += weight * part.entries[k].factor;
      entry.estimate += weight * part.entries[k].estimate;
      ++k;
    }
    merged.push_back(entry);
  }
  row.entries = std::move(merged);
  row.sky += weight * part.sky;
  row.skyEstimate += weight * part.skyEstimate;
  row.residual += weight * part.residual;
  row.looks += part.looks;
  row.isWithinTolerance = row.isWithinTolerance && part.isWithinTolerance;
}

}  // namespace

FaceFactors::FaceFactors(const SceneIndex& index, const FactorOptions& options)
    : state(std::make_shared<const State>(index, options)) {}
FaceFactors::FaceFactors(const FaceFactors&) noexcept = default;
FaceFactors& FaceFactors::operator=(const FaceFactors&) noexcept = default;
FaceFactors::FaceFactors(FaceFactors&&) noexcept = default;
FaceFactors& FaceFactors::operator=(FaceFactors&&) noexcept = default;
FaceFactors::~FaceFactors() = default;

const std::vector<FactorElement>& FaceFactors::elements() const { return state->elements; }
const std::vector<std::string>& FaceFactors::objectIds() const { return state->objectIds; }
const std::vector<std::string>& FaceFactors::classNames() const { return state->classNames; }
double FaceFactors::area() const { return state->area; }

FactorRow FaceFactors::row(size_t element) const {
  const FactorElement& emitter = state->elements.at(element);
  FactorRow result;
  result.element = element;
  for (const size_t piece : state->piecesOf[element / state->sides()])
    add(result, PieceRow<State>(*state, element, piece).run(),
        state->pieces[piece].area / emitter.area);
  // No smaller error is known even of pairs with nothing between them.
  if (state->options.tolerance < SameFactorPart) result.isWithinTolerance = false;
  // What is seen of nothing but rounding is no entry.
  result.entries.erase(
      std::remove_if(result.entries.begin(), result.entries.end(),
                     [](const FactorEntry& entry) { return !(entry.factor > 0.0); }),
      result.entries.end());
  return result;
}

}  // namespace Lumivane::Measure
