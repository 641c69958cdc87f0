#include "BuildingRows.h"

#include <lumivane/session/Text.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>

namespace Lumivane::Host {
namespace {

using Visibility::ShareRow;
using Visibility::ViewShare;

void add(const ViewShare& part, ViewShare& sum) {
  if (!(part.solidAngle > 0.0)) return;
  sum.minDistance =
      sum.solidAngle > 0.0 ? std::min(sum.minDistance, part.minDistance) : part.minDistance;
  sum.maxDistance = std::max(sum.maxDistance, part.maxDistance);
  sum.solidAngle += part.solidAngle;
  sum.viewFactor += part.viewFactor;
}

}  // namespace

std::vector<ShareRow> buildingRows(const Visibility::VisibleMap& map,
                                   const Visibility::MapShares& shares, const Wholes& wholes) {
  const std::vector<ShareRow> objects = shareRows(map, shares, Visibility::ShareDepth::Object);
  std::vector<ShareRow> rows;
  std::map<std::string, std::size_t> known;
  for (const ShareRow& object : objects) {
    if (object.kind != "object") continue;
    const std::string& id = map.names->objectIds.at(static_cast<std::size_t>(object.object) - 1);
    const auto whole = wholes.find(id);
    const std::string& name = whole == wholes.end() ? id : whole->second;
    const auto place = known.emplace(name, rows.size());
    if (place.second) {
      ShareRow row;
      row.kind = "building";
      row.id = Session::idText(name);
      row.className = object.className;
      rows.push_back(row);
    }
    ShareRow& row = rows[place.first->second];
    if (row.className != object.className) row.className.clear();
    add(object.share, row.share);
  }
  rows.push_back(objects.back());
  return rows;
}

}  // namespace Lumivane::Host
