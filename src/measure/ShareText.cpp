// Shares as CSV and JSON. Rows and records of both have the same order, and classes stand last,
// where readers of older tables do not miss them.
#include "algorithm/pipeline/TypeProjection.h"
#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"
#include "kernel/JsonText.h"

#include <lumivane/measure/ShareClasses.h>
#include <lumivane/measure/ShareText.h>
#include <lumivane/measure/VisibleShares.h>

#include <map>

namespace Lumivane::Measure {
namespace {

using Kernel::CsvRow;
using Kernel::JsonWriter;

// By the number of the object.
std::map<int, std::string> idsOf(const VisibleShares& shares) {
  std::map<int, std::string> ids;
  for (const ObjectShare& object : shares.objects())
    ids[object.objectNumber] = Kernel::idText(object.id);
  return ids;
}

// Ends a record with the columns of a share and of a class.
std::string withShare(CsvRow& row, const Share& share, const std::string& className) {
  row.number(share.area).number(share.viewFactor).number(share.solidAngle);
  row.number(share.hemisphereShare());
  return row.text(className).take();
}

void addShare(JsonWriter& json, const Share& share) {
  json.key("area").number(share.area).key("viewFactor").number(share.viewFactor);
  json.key("solidAngle").number(share.solidAngle);
  json.key("hemisphereShare").number(share.hemisphereShare());
}

// The members of a list, one to a line. `addLabels` returns the class of a record.
template <class Record, class AddLabels>
void addList(JsonWriter& json, const char* key, const std::vector<Record>& records,
             const AddLabels& addLabels) {
  json.newLine().key(key).beginArray();
  for (const Record& record : records) {
    json.newLine().beginObject();
    const std::string& className = addLabels(record);
    addShare(json, record.share);
    if (!className.empty()) json.key("class").text(className);
    json.endObject();
  }
  json.endArray();
}

}  // namespace

std::string ShareText::csv(const VisibleShares& shares, const ShareClasses& classes, bool isSafe) {
  const std::map<int, std::string> ids = idsOf(shares);
  CsvRow row(isSafe);
  const auto start = [&](const char* kind, int object) -> CsvRow& {
    return row.text(kind).number(object).text(ids.at(object));
  };
  std::string result =
      "kind,object,id,face,region,source_region,area,view_factor,solid_angle,hemisphere_share,"
      "class\n";
  for (const ObjectShare& object : shares.objects())
    result += withShare(start("object", object.objectNumber).empty().empty().empty(), object.share,
                        classes.ofObject(object.objectNumber));
  for (const FaceShare& face : shares.faces())
    result += withShare(start("face", face.objectNumber).number(face.faceNumber).empty().empty(),
                        face.share, classes.ofFace(face.objectNumber, face.faceNumber));
  for (const RegionShare& region : shares.regions())
    result +=
        withShare(start("region", region.objectNumber)
                      .number(region.faceNumber)
                      .number(region.regionNumber)
                      .number(region.sourceRegionNumber),
                  region.share, classes.ofRegion(region.objectNumber, region.sourceRegionNumber));
  row.text("sky").empty().empty().empty().empty().empty();
  return result + withShare(row, shares.open(), "");
}

std::string ShareText::csv(const VisibleShares& shares, bool isSafe) {
  return csv(shares, ShareClasses(), isSafe);
}

std::string ShareText::csv(const VisibleShares& shares) { return csv(shares, false); }

std::string ShareText::json(const VisibleShares& shares, const ShareClasses& classes) {
  JsonWriter json;
  json.beginObject().newLine().key("projection").text(Algorithm::tableNameOf(shares.projection()));
  json.newLine().key("whole").beginObject();
  addShare(json, shares.whole());
  json.endObject().newLine().key("sky").beginObject();
  addShare(json, shares.open());
  json.endObject();
  addList(json, "objects", shares.objects(), [&](const ObjectShare& object) -> const std::string& {
    json.key("object").number(object.objectNumber).key("id").text(Kernel::idText(object.id));
    return classes.ofObject(object.objectNumber);
  });
  addList(json, "faces", shares.faces(), [&](const FaceShare& face) -> const std::string& {
    json.key("object").number(face.objectNumber).key("face").number(face.faceNumber);
    return classes.ofFace(face.objectNumber, face.faceNumber);
  });
  addList(json, "regions", shares.regions(), [&](const RegionShare& region) -> const std::string& {
    json.key("region").number(region.regionNumber).key("object").number(region.objectNumber);
    json.key("face").number(region.faceNumber);
    json.key("sourceRegion").number(region.sourceRegionNumber);
    return classes.ofRegion(region.objectNumber, region.sourceRegionNumber);
  });
  return json.newLine().endObject().take();
}

std::string ShareText::json(const VisibleShares& shares) { return json(shares, ShareClasses()); }

}  // namespace Lumivane::Measure
