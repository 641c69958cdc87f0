#include "measure/WindingIntervals.h"

namespace Lumivane::Measure {

RegionNumber RegionPairs::numberOf(RegionNumber first, RegionNumber second) {
  const Pair& pair = pairs[static_cast<std::size_t>(latest)];
  if (pair.first == first && pair.second == second) return latest;
  const std::uint64_t key =
      static_cast<std::uint64_t>(first) << 32U | static_cast<unsigned>(second);
  const auto [found, isNew] = numbers.try_emplace(key, static_cast<RegionNumber>(pairs.size()));
  if (isNew) pairs.push_back({first, second});
  return latest = found->second;
}

// Fragments stand region by region, and so do covers.
void WindingIntervals::enter(const Tile& entered) {
  tile = &entered;
  locals.clear();
  fragmentLocals.clear();
  coverLocals.clear();
  auto cover = entered.covers.begin();
  const auto localFor = [this](RegionNumber region) {
    if (locals.empty() || locals.back().region != region) locals.push_back({region, 0});
    return static_cast<int>(locals.size()) - 1;
  };
  const auto takeCoversUpTo = [&](RegionNumber region) {
    for (; cover != entered.covers.end() && cover->region <= region; ++cover)
      coverLocals.push_back(localFor(cover->region));
  };
  for (const Fragment& f : entered.fragments) {
    takeCoversUpTo(f.region);
    fragmentLocals.push_back(localFor(f.region));
  }
  if (!entered.covers.empty()) takeCoversUpTo(entered.covers.back().region);
  const auto second = std::find_if(locals.rbegin(), locals.rend(), [this](const Local& local) {
                        return local.region <= lastOfFirst;
                      }).base();
  secondPlace = static_cast<int>(second - locals.begin());
}

bool WindingIntervals::coversChange(double y) const {
  return std::any_of(tile->covers.begin(), tile->covers.end(),
                     [y](const Cover& c) { return c.low == y || c.high == y; });
}

void WindingIntervals::begin(double y) {
  for (Local& local : locals) local.winding = 0;
  for (std::size_t i = 0; i < tile->covers.size(); ++i) {
    const Cover& cover = tile->covers[i];
    if (cover.low <= y && cover.high > y)
      locals[static_cast<std::size_t>(coverLocals[i])].winding += cover.winding;
  }
  topLocal = topFrom(secondPlace - 1, 0);
  topSecond = topFrom(static_cast<int>(locals.size()) - 1, secondPlace);
}

}  // namespace Lumivane::Measure
