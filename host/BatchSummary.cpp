// The rows of the summary of a batch. Columns of classes stand behind the others, so that tables
// with and without them have the same first columns.

#include "BatchSummary.h"

#include "Csv.h"
#include "Stats.h"

#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/session/Text.h>
#include <lumivane/shot/Shot2d.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <vector>

namespace Lumivane::Host {
namespace {

const std::vector<std::string> Columns = {
    "name",
    "status",
    "error",
    "eye_x",
    "eye_y",
    "eye_z",
    "points",
    "regions",
    "faces_drawn",
    "faces_hidden",
    "cycle",
    "inside",
    "objects_visible",
    "sky_view_factor",
    "sky_hemisphere_share",
    "largest_object",
    "largest_view_factor",
    "true_x",
    "true_y",
    "true_z",
    "largest_class",
    "largest_class_view_factor",
};

// As few digits as read back to the same double.
std::string text(double value) {
  char buffer[32];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, end.ptr};
}

// A text from outside, in UTF-8.
std::string cell(const std::string& text, bool isSafe) {
  const std::string clean = Session::utf8Text(text);
  return isSafe ? Session::csvSafe(clean) : clean;
}

// A class may have that name itself.
std::string noClassColumn(const std::vector<std::string>& classes) {
  const bool isTaken = std::find(classes.begin(), classes.end(), "no_class") != classes.end();
  return isTaken ? "view_factor_without_class" : "view_factor_of_no_class";
}

// Empty where nothing is measured.
std::vector<std::string> measureFields(const std::optional<ExactSummary>& seen, bool isSafe) {
  if (!seen) return {"", "", "", "", ""};
  return {std::to_string(seen->visibleObjects), text(seen->skyViewFactor),
          text(seen->skyHemisphereShare), cell(Session::idText(seen->largestId), isSafe),
          seen->largestViewFactor ? text(*seen->largestViewFactor) : ""};
}

// Of their columns.
std::size_t countOf(const SummaryClasses& classes) { return classes ? classes->size() + 1 : 0; }

void addPlaceAndClasses(const std::optional<ExactSummary>& seen, const Session::Vector& trueEye,
                        const SummaryClasses& classes, bool isSafe,
                        std::vector<std::string>& fields) {
  for (const double coordinate : trueEye) fields.push_back(text(coordinate));
  fields.push_back(seen ? cell(seen->largestClass, isSafe) : "");
  fields.push_back(seen && seen->largestClassViewFactor ? text(*seen->largestClassViewFactor) : "");
  for (std::size_t i = 0; i < countOf(classes); ++i)
    fields.push_back(seen && i < seen->classViewFactors.size() ? text(seen->classViewFactors[i])
                                                               : "");
}

}  // namespace

std::string summaryHeading(const SummaryClasses& classes, bool isSafe) {
  std::vector<std::string> columns = Columns;
  if (classes) {
    for (const std::string& name : *classes)
      columns.push_back(cell("view_factor_of_" + name, isSafe));
    columns.push_back(noClassColumn(*classes));
  }
  return csvRecord(columns);
}

bool isTextOfSummary(const std::string& column) {
  static const std::vector<std::string> texts = {"name", "status", "error", "largest_object",
                                                 "largest_class"};
  return std::find(texts.begin(), texts.end(), column) != texts.end();
}

std::string summaryRow(const std::string& name, const Session::TakenShot& shot,
                       const std::optional<ExactSummary>& seen, const Session::Vector& trueEye,
                       const SummaryClasses& classes, bool isSafe) {
  std::vector<std::string> fields = {cell(name, isSafe), "ok", ""};
  for (const double coordinate : shot.eye()) fields.push_back(text(coordinate));
  fields.push_back(std::to_string(shot.shot().getPoints()->getPoints()->size()));
  fields.push_back(std::to_string(shot.shot().getRegions()->getRegions()->size()));
  fields.push_back(std::to_string(drawnFaces(shot.shot())));
  fields.push_back(std::to_string(hiddenFaces(shot)));
  fields.push_back(shot.hasCycle() ? "1" : "0");
  fields.push_back(shot.isInside() || (seen && seen->isInside) ? "1" : "0");
  for (const std::string& field : measureFields(seen, isSafe)) fields.push_back(field);
  addPlaceAndClasses(seen, trueEye, classes, isSafe, fields);
  return csvRecord(fields);
}

std::string exactSummaryRow(const std::string& name, const Session::Vector& eye,
                            const ExactSummary& seen, const Session::Vector& trueEye,
                            const SummaryClasses& classes, bool isSafe) {
  std::vector<std::string> fields = {cell(name, isSafe), "ok", ""};
  for (const double coordinate : eye) fields.push_back(text(coordinate));
  fields.insert(fields.end(), 5, "");  // of shots alone
  fields.push_back(seen.isInside ? "1" : "0");
  for (const std::string& field : measureFields(seen, isSafe)) fields.push_back(field);
  addPlaceAndClasses(seen, trueEye, classes, isSafe, fields);
  return csvRecord(fields);
}

std::string failureRow(const std::string& name, const std::string& error,
                       const SummaryClasses& classes, bool isSafe) {
  std::vector<std::string> fields(Columns.size() + countOf(classes));
  fields[0] = cell(name, isSafe);
  fields[1] = "failed";
  fields[2] = cell(error, isSafe);
  return csvRecord(fields);
}

}  // namespace Lumivane::Host
