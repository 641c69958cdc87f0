// How groups are found without asking all pairs.
//
// Of two coplanar polygons let A be the larger one, and c the tolerance. All its corners lie within
// c size(A) of the other's plane, so its vector area leans from the other's normal by no more than
// c size(A) perimeter(A) (the area of its shadow on a plane across is that of a strip), and the
// angle between the normals has at most the sine c size perimeter / area. Unless A is a sliver,
// normals are as good as equal, and so are the planes' distances from the middle of the scene: few
// polygons have a neighbour in the order of these distances at all, and most of a scene is done
// with by that.
//
// The rest, and slivers, are in trees over normal, distance and place, which are searched for the
// larger partners of each polygon: one tree for slivers, whose partners' normals say little, and
// one for the others. Subtrees that are in the polygon's group already are passed over, or the
// tiles of a square would be compared with each other one by one.
#include "visibility/Layers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

constexpr double GroupToLayer = 10.0;  // how much farther than `coplanar` a layer reaches
// Polygons whose size by perimeter and area is beyond this are slivers: 5.7 is that of a square.
constexpr double MostSlender = 64.0;
constexpr double Rounding = 1e-14;  // more than rounding changes of a distance, by the scene's size
constexpr int MostNeighbours = 100;  // planes looked at on either side in the order of distances

double absoluteDot(Vec3 a, Vec3 b) {
  return std::abs(a.x * b.x) + std::abs(a.y * b.y) + std::abs(a.z * b.z);
}

// Of two unit vectors with an angle of this sine, or their negatives: more than their difference.
double differenceOfNormals(double sine) { return sine < 0.4 ? 1.1 * sine : 2.0; }

struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void add(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  void add(const Range& other) {
    low = std::min(low, other.low);
    high = std::max(high, other.high);
  }
  double middle() const { return 0.5 * (low + high); }
  double half() const { return 0.5 * (high - low); }
  double length() const { return high - low; }
};

// The polygons of a state, as planes.
class Planes {
 public:
  Planes(const IndexState& index, double tolerance) : state(index), coplanar(tolerance) {
    std::array<Range, 3> box;
    for (const Vec3 v : state.vertices) {
      box[0].add(v.x);
      box[1].add(v.y);
      box[2].add(v.z);
    }
    middle = {box[0].middle(), box[1].middle(), box[2].middle()};
    reach = Kernel::length3({box[0].half(), box[1].half(), box[2].half()});
  }

  std::size_t count() const { return state.polygonCount(); }
  double size(std::size_t i) const { return state.sizes[i]; }
  const ScenePlane& plane(std::size_t i) const { return state.planes[i]; }
  // From the middle of the scene.
  double distance(std::size_t i) const {
    return Kernel::dot(plane(i).normal, plane(i).point - middle);
  }
  double noise() const { return Rounding * reach; }

  std::size_t cornerCount(std::size_t i) const {
    return static_cast<std::size_t>(state.cornerOffsets[i + 1] - state.cornerOffsets[i]);
  }
  Vec3 corner(std::size_t i, std::size_t k) const {
    const auto at = static_cast<std::size_t>(state.cornerOffsets[i]) + k;
    return state.vertices[static_cast<std::size_t>(state.cornerVertices[at])];
  }

  bool isWithin(std::size_t i, const ScenePlane& other, double most) const {
    for (std::size_t k = 0; k < cornerCount(i); ++k)
      if (std::abs(Kernel::dot(other.normal, corner(i, k) - other.point)) > most) return false;
    return true;
  }
  bool areCoplanar(std::size_t i, std::size_t j) const {
    const double most = coplanar * std::max(size(i), size(j));
    return isWithin(i, plane(j), most) && isWithin(j, plane(i), most);
  }

  // Size by perimeter and area: 5.7 for a square. Infinite where the area is lost.
  double slenderness(std::size_t i) const {
    const std::size_t n = cornerCount(i);
    const Vec3 first = corner(i, 0);
    double perimeter = 0.0;
    Vec3 area;
    Vec3 p = corner(i, n - 1) - first;
    for (std::size_t k = 0; k < n; ++k) {
      const Vec3 q = corner(i, k) - first;
      perimeter += std::abs(q.x - p.x) + std::abs(q.y - p.y) + std::abs(q.z - p.z);
      area = area + Kernel::cross(p, q);
      p = q;
    }
    return size(i) * perimeter / (0.5 * Kernel::length3(area));
  }
  // The most by which the unit normal of a smaller partner, or its negative, may differ from that
  // of a polygon.
  double lean(std::size_t i) const {
    return differenceOfNormals((coplanar + noise() / size(i)) * slenderness(i));
  }

  const IndexState& state;
  double coplanar;
  Vec3 middle;
  double reach = 0.0;  // from there to the farthest corner of the scene's box
};

// Which polygons are in one group.
class Groups {
 public:
  explicit Groups(std::size_t count) : parents(count) {
    std::iota(parents.begin(), parents.end(), 0);
  }
  std::int32_t groupOf(std::int32_t i) {
    while (parents[static_cast<std::size_t>(i)] != i) {
      std::int32_t& parent = parents[static_cast<std::size_t>(i)];
      parent = parents[static_cast<std::size_t>(parent)];
      i = parent;
    }
    return i;
  }
  // The lowest number stands for all.
  void join(std::int32_t i, std::int32_t j) {
    i = groupOf(i);
    j = groupOf(j);
    parents[static_cast<std::size_t>(std::max(i, j))] = std::min(i, j);
  }

 private:
  std::vector<std::int32_t> parents;
};

// Searched for the larger partners of one polygon after the other.
class PlaneTree {
 public:
  // \param questions  how many polygons will be asked about
  PlaneTree(const Planes& allPlanes, const std::vector<std::int32_t>& members,
            std::size_t questions, Groups& allGroups)
      : planes(allPlanes), groups(allGroups) {
    entries.reserve(members.size());
    for (const std::int32_t member : members) entries.push_back(entryOf(member));
    if (!entries.empty()) build();
    // Where so many steps have not led to groups, partners are only looked for nearby.
    stepsLeft = 500 * static_cast<long long>(questions) + 1000000;
  }

  void joinPartnersOf(std::int32_t polygon) {
    if (nodes.empty()) return;
    const auto i = static_cast<std::size_t>(polygon);
    asked = polygon;
    askedNormal = entryOf(polygon).place;
    askedBox = boxOf(i);
    askedCorners.clear();
    // Some corners are enough to pass over what is elsewhere.
    const std::size_t step = planes.cornerCount(i) / 8 + 1;
    for (std::size_t k = 0; k < planes.cornerCount(i); k += step)
      askedCorners.push_back(planes.corner(i, k) - planes.middle);
    visit(0);
  }

 private:
  using Box = std::array<Range, 3>;

  struct Entry {
    std::int32_t polygon;
    // Normal and distance, normals on one half of the sphere, and the middle of the corners.
    std::array<double, 7> place;
  };

  struct Node {
    std::array<Range, 3> normal;
    Range distance;
    Box box;  // of all corners
    double largest = 0.0;
    double lean = 0.0;       // the greatest
    std::int32_t first = 0;  // first child, or first entry of a leaf
    std::int32_t count = 0;  // of entries in a leaf; 0 for an inner node
    std::int32_t same = -1;  // a polygon in whose group all are; -1 if not known to be so
  };

  Entry entryOf(std::int32_t polygon) const {
    const auto i = static_cast<std::size_t>(polygon);
    const Vec3 n = planes.plane(i).normal;
    const Vec3 p = planes.plane(i).point;
    const double sign = 0.577 * n.x + 0.612 * n.y + 0.541 * n.z < 0.0 ? -1.0 : 1.0;
    return {polygon,
            {sign * n.x, sign * n.y, sign * n.z, sign * planes.distance(i), p.x, p.y, p.z}};
  }

  Box boxOf(std::size_t i) const {
    Box box;
    for (std::size_t k = 0; k < planes.cornerCount(i); ++k) {
      const Vec3 corner = planes.corner(i, k);
      box[0].add(corner.x);
      box[1].add(corner.y);
      box[2].add(corner.z);
    }
    return box;
  }

  void build() {
    struct Task {
      std::size_t node;
      std::size_t begin;
      std::size_t end;
      int depth;
    };
    nodes.emplace_back();
    std::vector<Task> tasks = {{0, 0, entries.size(), 0}};
    while (!tasks.empty()) {
      const Task task = tasks.back();
      tasks.pop_back();
      constexpr std::size_t LeafSize = 4;
      if (task.end - task.begin <= LeafSize) {
        nodes[task.node].first = static_cast<std::int32_t>(task.begin);
        nodes[task.node].count = static_cast<std::int32_t>(task.end - task.begin);
        continue;
      }
      const std::size_t middle = divide(task.begin, task.end, task.depth);
      const std::size_t child = nodes.size();
      nodes[task.node].first = static_cast<std::int32_t>(child);
      nodes.resize(child + 2);
      tasks.push_back({child, task.begin, middle, task.depth + 1});
      tasks.push_back({child + 1, middle, task.end, task.depth + 1});
    }
    for (std::size_t i = nodes.size(); i-- > 0;) bound(nodes[i]);
  }

  // Along the widest extent, planes before places, in the middle of the extent and not of the
  // entries: else many that are the same would be dealt out among the few others, and be in many
  // subtrees.
  std::size_t divide(std::size_t begin, std::size_t end, int depth) {
    constexpr double PlaceWeight = 1e-9;
    const double reach = planes.reach;
    const std::array<double, 7> weights = {reach,       reach,       reach,      1.0,
                                           PlaceWeight, PlaceWeight, PlaceWeight};
    std::array<Range, 7> extents;
    for (std::size_t i = begin; i < end; ++i)
      for (std::size_t k = 0; k < extents.size(); ++k) extents[k].add(entries[i].place[k]);
    std::size_t axis = 0;
    for (std::size_t k = 1; k < extents.size(); ++k)
      if (weights[k] * extents[k].length() > weights[axis] * extents[axis].length()) axis = k;
    const double middle = extents[axis].middle();
    const auto first = entries.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto last = entries.begin() + static_cast<std::ptrdiff_t>(end);
    const auto cut = std::partition(
        first, last, [axis, middle](const Entry& entry) { return entry.place[axis] < middle; });
    constexpr int DeepestMiddle = 60;
    const bool isCut = cut != first && cut != last && depth < DeepestMiddle;
    return isCut ? static_cast<std::size_t>(cut - entries.begin()) : begin + (end - begin) / 2;
  }

  void bound(Node& node) const {
    if (node.count == 0) {
      for (std::size_t c = 0; c < 2; ++c) {
        const Node& child = nodes[static_cast<std::size_t>(node.first) + c];
        for (std::size_t k = 0; k < 3; ++k) {
          node.normal[k].add(child.normal[k]);
          node.box[k].add(child.box[k]);
        }
        node.distance.add(child.distance);
        node.largest = std::max(node.largest, child.largest);
        node.lean = std::max(node.lean, child.lean);
      }
      return;
    }
    for (std::int32_t e = node.first; e < node.first + node.count; ++e) {
      const Entry& entry = entries[static_cast<std::size_t>(e)];
      const auto i = static_cast<std::size_t>(entry.polygon);
      const Box box = boxOf(i);
      for (std::size_t k = 0; k < 3; ++k) {
        node.normal[k].add(entry.place[k]);
        node.box[k].add(box[k]);
      }
      node.distance.add(entry.place[3]);
      node.largest = std::max(node.largest, planes.size(i));
      node.lean = std::max(node.lean, planes.lean(i));
    }
  }

  // No deeper than 60 and the binary digits of the number of polygons.
  void visit(std::size_t number) {
    Node& node = nodes[number];
    --stepsLeft;
    if (isOfNoUse(node)) return;
    if (node.count > 0) {
      askLeaf(node);
      return;
    }
    const auto child = static_cast<std::size_t>(node.first);
    visit(child);
    visit(child + 1);
    const std::int32_t left = nodes[child].same;
    const std::int32_t right = nodes[child + 1].same;
    if (left >= 0 && right >= 0 && groups.groupOf(left) == groups.groupOf(right)) node.same = left;
  }

  void askLeaf(Node& node) {
    const std::int32_t first = entries[static_cast<std::size_t>(node.first)].polygon;
    bool same = true;
    for (std::int32_t e = node.first; e < node.first + node.count; ++e) {
      const std::int32_t other = entries[static_cast<std::size_t>(e)].polygon;
      if (groups.groupOf(other) != groups.groupOf(asked) &&
          planes.areCoplanar(static_cast<std::size_t>(asked), static_cast<std::size_t>(other)))
        groups.join(asked, other);
      same = same && groups.groupOf(other) == groups.groupOf(first);
    }
    if (same) node.same = first;
  }

  // Whether no polygon of a node can be a larger partner that is not in the group already.
  bool isOfNoUse(const Node& node) {
    const auto i = static_cast<std::size_t>(asked);
    if (node.largest < planes.size(i) || isOffNormals(node)) return true;
    const double most = planes.coplanar * node.largest + planes.noise();
    if (isOffPlanes(node, most)) return true;
    if (node.same >= 0 && groups.groupOf(node.same) == groups.groupOf(asked)) return true;
    return isOffOwnPlane(node, most) || (stepsLeft < 0 && isFar(node));
  }

  // Whether the normal asked about, and its negative, are too far from all normals of a node.
  bool isOffNormals(const Node& node) const {
    double same = 0.0;
    double opposite = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
      const Range& range = node.normal[k];
      const double gap = std::max({0.0, range.low - askedNormal[k], askedNormal[k] - range.high});
      same += gap * gap;
      const double other =
          std::max({0.0, range.low + askedNormal[k], -askedNormal[k] - range.high});
      opposite += other * other;
    }
    return std::min(same, opposite) > node.lean * node.lean;
  }

  // Whether a corner is off all planes of a node.
  bool isOffPlanes(const Node& node, double most) const {
    const Vec3 normal{node.normal[0].middle(), node.normal[1].middle(), node.normal[2].middle()};
    const Vec3 spread{node.normal[0].half(), node.normal[1].half(), node.normal[2].half()};
    const double distance = node.distance.middle();
    for (const Vec3 corner : askedCorners) {
      const double off = std::abs(Kernel::dot(normal, corner) - distance);
      if (off > most + node.distance.half() + absoluteDot(spread, corner)) return true;
    }
    return false;
  }

  // Whether the box of a node is off the plane of the polygon asked about.
  bool isOffOwnPlane(const Node& node, double most) const {
    const ScenePlane& plane = planes.plane(static_cast<std::size_t>(asked));
    const Vec3 middle{node.box[0].middle(), node.box[1].middle(), node.box[2].middle()};
    const Vec3 half{node.box[0].half(), node.box[1].half(), node.box[2].half()};
    const double off = std::abs(Kernel::dot(plane.normal, middle - plane.point));
    return off > most + absoluteDot(plane.normal, half);
  }

  bool isFar(const Node& node) const {
    for (std::size_t k = 0; k < 3; ++k)
      if (node.box[k].low > askedBox[k].high || node.box[k].high < askedBox[k].low) return true;
    return false;
  }

  const Planes& planes;
  Groups& groups;
  std::vector<Entry> entries;
  std::vector<Node> nodes;
  long long stepsLeft = 0;
  // What is asked about.
  std::int32_t asked = 0;
  std::array<double, 7> askedNormal{};  // as the place of an entry
  Box askedBox;
  std::vector<Vec3> askedCorners;  // from the middle of the scene
};

// Which polygons may have a partner that they are not joined with at once.
class Candidates {
 public:
  Candidates(const Planes& allPlanes, Groups& allGroups)
      : planes(allPlanes), groups(allGroups), isOne(allPlanes.count(), 0) {
    double largest = 0.0;
    for (std::size_t i = 0; i < planes.count(); ++i) {
      if (planes.slenderness(i) <= MostSlender)
        largest = std::max(largest, planes.size(i));
      else
        slivers.push_back(static_cast<std::int32_t>(i));
    }
    angle = differenceOfNormals(planes.coplanar * MostSlender);
    window = planes.coplanar * largest + angle * planes.reach + planes.noise();
    sortPlaces();
    findRuns();
    for (std::size_t run = 0; run < runs.size(); ++run) lookFrom(run);
  }

  // Slivers, and polygons with another one in much the same plane.
  std::vector<std::int32_t> list() const {
    std::vector<char> taken = isOne;
    for (const std::int32_t sliver : slivers) taken[static_cast<std::size_t>(sliver)] = 1;
    std::vector<std::int32_t> result;
    for (std::size_t i = 0; i < taken.size(); ++i)
      if (taken[i] != 0) result.push_back(static_cast<std::int32_t>(i));
    return result;
  }

  std::vector<std::int32_t> slivers;

 private:
  struct Place {
    double distance;
    std::int32_t polygon;
    float sign;  // of the normal
  };
  // Places with equal normals and distances, as parallel to an axis.
  struct Run {
    std::size_t begin;
    std::size_t end;
    double largest;  // size
  };

  // Normals to either side of one plane through the middle of the sphere of normals are made one;
  // those near it count on both sides.
  void sortPlaces() {
    places.reserve(planes.count() + planes.count() / 8);
    for (std::size_t i = 0; i < planes.count(); ++i) {
      const Vec3 n = planes.plane(i).normal;
      const double side = 0.577 * n.x + 0.612 * n.y + 0.541 * n.z;
      const double distance = planes.distance(i);
      const auto polygon = static_cast<std::int32_t>(i);
      if (side > -angle) places.push_back({distance, polygon, 1.0F});
      if (side < angle) places.push_back({-distance, polygon, -1.0F});
    }
    std::sort(places.begin(), places.end(), [this](const Place& a, const Place& b) {
      if (a.distance != b.distance) return a.distance < b.distance;
      const Vec3 m = normalOf(a);
      const Vec3 n = normalOf(b);
      if (m != n) return std::tie(m.x, m.y, m.z) < std::tie(n.x, n.y, n.z);
      return a.polygon < b.polygon;
    });
  }

  Vec3 normalOf(const Place& place) const {
    return static_cast<double>(place.sign) *
           planes.plane(static_cast<std::size_t>(place.polygon)).normal;
  }

  void findRuns() {
    for (std::size_t begin = 0; begin < places.size();) {
      Run run{begin, begin + 1, sizeOf(places[begin])};
      for (; run.end < places.size() && places[run.end].distance == places[begin].distance &&
             normalOf(places[run.end]) == normalOf(places[begin]);
           ++run.end)
        run.largest = std::max(run.largest, sizeOf(places[run.end]));
      joinRun(run);
      runs.push_back(run);
      begin = run.end;
    }
  }

  double sizeOf(const Place& place) const {
    return planes.size(static_cast<std::size_t>(place.polygon));
  }

  // Each with the largest, mostly. Where one is not its partner, all are candidates.
  void joinRun(const Run& run) {
    if (run.end - run.begin == 1) return;
    std::size_t largest = run.begin;
    while (sizeOf(places[largest]) != run.largest) ++largest;
    const std::int32_t leader = places[largest].polygon;
    bool areAll = true;
    for (std::size_t i = run.begin; i < run.end; ++i) {
      const std::int32_t polygon = places[i].polygon;
      const bool isPartner =
          planes.areCoplanar(static_cast<std::size_t>(leader), static_cast<std::size_t>(polygon));
      if (isPartner) groups.join(leader, polygon);
      areAll = areAll && isPartner;
    }
    for (std::size_t i = run.begin; i < run.end && !areAll; ++i) mark(places[i].polygon);
  }

  void mark(std::int32_t polygon) { isOne[static_cast<std::size_t>(polygon)] = 1; }

  // Marks the polygons of a run that may have a partner in another one.
  void lookFrom(std::size_t run) {
    for (const std::ptrdiff_t step : {1, -1}) {
      int seen = 0;
      for (auto other = static_cast<std::ptrdiff_t>(run) + step;
           other >= 0 && other < static_cast<std::ptrdiff_t>(runs.size()); other += step) {
        const Run& there = runs[static_cast<std::size_t>(other)];
        if (!lookAt(runs[run], there, ++seen > MostNeighbours)) break;
      }
    }
  }

  // \return false if there is nothing to look at beyond
  bool lookAt(const Run& here, const Run& there, bool isTooFar) {
    const Place& place = places[here.begin];
    const Place& other = places[there.begin];
    if (std::abs(other.distance - place.distance) > window) return false;
    const Vec3 normal = normalOf(other);
    const Vec3 between = normalOf(place) - normal;
    if (!isTooFar && Kernel::dot(between, between) > angle * angle) return true;
    for (std::size_t i = here.begin; i < here.end; ++i) {
      const auto polygon = static_cast<std::size_t>(places[i].polygon);
      const double off =
          Kernel::dot(normal, planes.plane(polygon).point - planes.middle) - other.distance;
      const double most = planes.coplanar * std::max(there.largest, planes.size(polygon));
      if (isTooFar || std::abs(off) <= most + planes.noise()) mark(places[i].polygon);
    }
    return !isTooFar;
  }

  const Planes& planes;
  Groups& groups;
  std::vector<char> isOne;
  std::vector<Place> places;
  std::vector<Run> runs;
  double angle = 0.0;
  double window = 0.0;
};

// Every pair is found from its smaller polygon, in the tree that holds the larger one.
void findGroups(const Planes& planes, Groups& groups) {
  const Candidates candidates(planes, groups);
  const std::vector<std::int32_t> list = candidates.list();
  const std::vector<std::int32_t>& slivers = candidates.slivers;  // ascending, as all of the list
  std::vector<std::int32_t> others;
  std::set_difference(list.begin(), list.end(), slivers.begin(), slivers.end(),
                      std::back_inserter(others));
  PlaneTree otherTree(planes, others, list.size(), groups);
  for (const std::int32_t polygon : list) otherTree.joinPartnersOf(polygon);
  // Of those that are not on the list only a larger sliver can be the partner.
  PlaneTree sliverTree(planes, slivers, planes.count(), groups);
  for (std::size_t i = 0; i < planes.count(); ++i)
    sliverTree.joinPartnersOf(static_cast<std::int32_t>(i));
}

class LayerMaker {
 public:
  LayerMaker(const Planes& allPlanes, Groups& groups, IndexState& index)
      : planes(allPlanes), state(index), layerOf(allPlanes.count(), -1) {
    listMembers(groups);
    for (std::size_t i = 0; i < planes.count(); ++i) {
      if (layerOf[i] < 0) layGroup(static_cast<std::size_t>(groups.groupOf(static_cast<int>(i))));
    }
    state.layers = std::move(layerOf);
  }

 private:
  // The members of each group, in the order of the scene.
  void listMembers(Groups& groups) {
    offsets.assign(planes.count() + 1, 0);
    std::vector<std::int32_t> group(planes.count());
    for (std::size_t i = 0; i < planes.count(); ++i) {
      group[i] = groups.groupOf(static_cast<std::int32_t>(i));
      ++offsets[static_cast<std::size_t>(group[i]) + 1];
    }
    std::partial_sum(offsets.begin(), offsets.end(), offsets.begin());
    members.resize(planes.count());
    std::vector<std::int32_t> next(offsets.begin(), offsets.end() - 1);
    for (std::size_t i = 0; i < planes.count(); ++i)
      members[static_cast<std::size_t>(next[static_cast<std::size_t>(group[i])]++)] =
          static_cast<std::int32_t>(i);
  }

  void layGroup(std::size_t group) {
    rest.assign(members.begin() + offsets[group], members.begin() + offsets[group + 1]);
    std::sort(rest.begin(), rest.end(), [this](std::int32_t a, std::int32_t b) {
      return std::pair(regionOf(a), a) < std::pair(regionOf(b), b);
    });
    while (!rest.empty()) layFirst();
  }

  void layFirst() {
    const std::int32_t first = rest.front();
    const auto layer = static_cast<std::int32_t>(state.layerPlanes.size());
    const ScenePlane plane = planes.plane(static_cast<std::size_t>(first));
    state.layerPlanes.push_back(plane);
    bool several = false;
    std::size_t kept = 0;
    for (const std::int32_t member : rest) {
      const auto i = static_cast<std::size_t>(member);
      const double most = GroupToLayer * planes.coplanar * planes.size(i);
      if (member == first || planes.isWithin(i, plane, most)) {
        layerOf[i] = layer;
        several = several || regionOf(member) != regionOf(first);
      } else {
        rest[kept++] = member;
      }
    }
    rest.resize(kept);
    if (several) ++state.layersOfSeveral;
  }

  std::int32_t regionOf(std::int32_t polygon) const {
    return state.regions[static_cast<std::size_t>(polygon)];
  }

  const Planes& planes;
  IndexState& state;
  std::vector<std::int32_t> layerOf;
  std::vector<std::int32_t> offsets;  // of each group, by the number that stands for it
  std::vector<std::int32_t> members;
  std::vector<std::int32_t> rest;  // of the group at hand
};

}  // namespace

void findLayers(double coplanar, IndexState& state) {
  const Planes planes(state, coplanar);
  Groups groups(planes.count());
  findGroups(planes, groups);
  const LayerMaker maker(planes, groups, state);
}

}  // namespace Lumivane::Visibility
