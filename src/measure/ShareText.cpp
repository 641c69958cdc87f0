#include "algorithm/pipeline/TypeProjection.h"
#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"
#include "kernel/JsonText.h"

#include <lumivane/measure/ShareText.h>
#include <lumivane/measure/VisibleShares.h>

#include <charconv>
#include <map>

namespace Lumivane::Measure {
namespace {

std::string text(double value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, result.ptr};
}

std::string csvRow(const std::string& labels, const Share& share) {
  return labels + "," + text(share.area) + "," + text(share.viewFactor) + "," +
         text(share.solidAngle) + "," + text(share.hemisphereShare()) + "\n";
}

std::string jsonShare(const Share& share) {
  return "\"area\":" + text(share.area) + ",\"viewFactor\":" + text(share.viewFactor) +
         ",\"solidAngle\":" + text(share.solidAngle) +
         ",\"hemisphereShare\":" + text(share.hemisphereShare());
}

// The members of a list, one to a line.
template <class Record, class Labels>
std::string jsonList(const std::string& key, const std::vector<Record>& records, Labels labels) {
  std::string result = "\"" + key + "\":[";
  const char* separator = "\n";
  for (const Record& record : records) {
    result += separator + ("{" + labels(record)) + jsonShare(record.share) + "}";
    separator = ",\n";
  }
  return result + "]";
}

std::string jsonNumber(const char* key, int value) {
  return "\"" + std::string(key) + "\":" + std::to_string(value) + ",";
}

// As they stand in the cells of a table.
std::map<int, std::string> cellsOfIds(const VisibleShares& shares, bool isSafe) {
  std::map<int, std::string> cells;
  for (const ObjectShare& object : shares.objects()) {
    const std::string id = Kernel::idText(object.id);
    cells[object.objectNumber] = Kernel::csvField(isSafe ? Kernel::csvSafe(id) : id);
  }
  return cells;
}

}  // namespace

std::string ShareText::csv(const VisibleShares& shares, bool isSafe) {
  const auto ids = cellsOfIds(shares, isSafe);
  const auto row = [&ids](const std::string& kind, int object, const std::string& more,
                          const Share& share) {
    return csvRow(kind + "," + std::to_string(object) + "," + ids.at(object) + "," + more, share);
  };
  std::string result =
      "kind,object,id,face,region,source_region,area,view_factor,solid_angle,hemisphere_share\n";
  for (const ObjectShare& object : shares.objects())
    result += row("object", object.objectNumber, ",,", object.share);
  for (const FaceShare& face : shares.faces())
    result += row("face", face.objectNumber, std::to_string(face.faceNumber) + ",,", face.share);
  for (const RegionShare& region : shares.regions())
    result += row("region", region.objectNumber,
                  std::to_string(region.faceNumber) + "," + std::to_string(region.regionNumber) +
                      "," + std::to_string(region.sourceRegionNumber),
                  region.share);
  return result + csvRow("sky,,,,,", shares.open());
}

std::string ShareText::csv(const VisibleShares& shares) { return csv(shares, false); }

std::string ShareText::json(const VisibleShares& shares) {
  const auto object = [](const ObjectShare& o) {
    return jsonNumber("object", o.objectNumber) +
           "\"id\":" + Kernel::jsonString(Kernel::idText(o.id)) + ",";
  };
  const auto face = [](const FaceShare& f) {
    return jsonNumber("object", f.objectNumber) + jsonNumber("face", f.faceNumber);
  };
  const auto region = [](const RegionShare& r) {
    return jsonNumber("region", r.regionNumber) + jsonNumber("object", r.objectNumber) +
           jsonNumber("face", r.faceNumber) + jsonNumber("sourceRegion", r.sourceRegionNumber);
  };
  return std::string("{\n\"projection\":\"") + Algorithm::tableNameOf(shares.projection()) +
         "\",\n" + "\"whole\":{" + jsonShare(shares.whole()) + "},\n" + "\"sky\":{" +
         jsonShare(shares.open()) + "},\n" + jsonList("objects", shares.objects(), object) + ",\n" +
         jsonList("faces", shares.faces(), face) + ",\n" +
         jsonList("regions", shares.regions(), region) + "\n}\n";
}

}  // namespace Lumivane::Measure
