#pragma once

#include "measure/Outlines.h"
#include "measure/Tile.h"

#include <cstddef>
#include <vector>

namespace Lumivane::Measure {

/// The edges that reach through a slab of a tile, from left to right at its middle height: the
/// active edges of a scan by level lines.
class ActiveEdges {
 public:
  /// A fragment of an edge, with its x at the slab's bottom and top.
  struct Active {
    const SweepEdge* edge;
    int fragment;
    int place;  ///< of its region among the tile's
    double x0, x1;
    bool isBefore(const Active& other) const {
      const double middle = x0 + x1;
      const double otherMiddle = other.x0 + other.x1;
      return middle != otherMiddle ? middle < otherMiddle : fragment < other.fragment;
    }
  };
  /// What comes of an active fragment in the slab above: itself, or what its outline goes on with.
  struct Next {
    const SweepEdge* edge;
    int fragment;
    double x0, x1;
  };
  /// A fragment by the height at which it starts.
  struct Start {
    double low;
    int fragment;
  };

  explicit ActiveEdges(const std::vector<SweepEdge>& theEdges) : edges(theEdges) {}

  /// Begins a tile, with no edge active. \param placesOfFragments  of the fragments' regions
  void enter(const Tile& entered, const std::vector<int>& placesOfFragments);

  const std::vector<Active>& all() const { return actives; }
  const std::vector<Start>& starts() const { return starting; }  ///< The lowest first.

  /// Takes up the fragments that reach through the slab above the last one, and lets go what ends:
  /// `ended(fragment, height)` is called for each of those.
  template <class Ended>
  void activate(double y0, double y1, const Ended& ended) {
    std::size_t count = 0;
    for (const Active& active : actives) {
      const double high = fragmentOf(active).high;
      if (high < y1)
        ended(active.fragment, high);
      else
        actives[count++] = active;
    }
    actives.resize(count);
    goOn();
    takeUp(y0, y1);
  }
  /// Those of a tile that reach over its middle, as if they reached through it.
  void activateMiddle();

  /// Whether between the slab below and this one nothing happens but that outlines go on from one
  /// edge to the next, and in this slab nothing crosses. Then `takeNext` brings each up.
  bool findNexts(double y0, double y1);
  /// Returns whether another fragment has taken the place of the active one.
  bool takeNext(std::size_t place) {
    Active& active = actives[place];
    const Next& next = nexts[place];
    const bool isOther = active.fragment != next.fragment;
    active.edge = next.edge;
    active.fragment = next.fragment;
    active.x0 = next.x0;
    active.x1 = next.x1;
    return isOther;
  }
  /// Undoes what `findNexts` has prepared.
  void forgetNexts() { started = startedBefore; }

  /// Brings the slab's top to a height and its fragments into the order of its middle. They stand
  /// in that of the slab before, which is nearly it.
  void reachUpTo(double y1);
  /// The slab's top becomes the bottom of the next.
  void goOn();
  bool inOrder() const;
  /// Adds the heights at which edges cross within the slab, in ascending order; about `most` are
  /// enough.
  void findCrossings(double y0, double y1, std::size_t most, std::vector<double>& crossings);

 private:
  const Fragment& fragmentOf(const Active& active) const {
    return tile->fragments[static_cast<std::size_t>(active.fragment)];
  }
  bool findNext(const Active& active, double y);
  void takeUp(double y0, double y1);
  const SweepEdge* edgeOf(int fragment) const;
  Active activeAt(int fragment, double y) const;

  const std::vector<SweepEdge>& edges;
  const Tile* tile = nullptr;
  const std::vector<int>* places = nullptr;  // of the fragments' regions
  std::vector<Start> starting;               // fragments by their lower ends
  std::vector<Start> later;
  std::size_t started = 0;  // how many of those have been active
  std::size_t startedBefore = 0;
  std::vector<Active> actives;
  std::vector<Active> swapped;
  std::vector<Next> nexts;  // by place among the actives
};

}  // namespace Lumivane::Measure
