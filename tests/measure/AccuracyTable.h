#pragma once

#include <string>
#include <vector>

/// The tables of docs/view-factors.md: how far the view factors of shots are off closed forms.
namespace Lumivane::Test {

/// The relative errors of one form, by greatest length of a piece.
struct AccuracyRow {
  std::string scene;
  double viewFactor = 0.0;  ///< of the closed form
  std::vector<double> errors;
};

struct AccuracyTable {
  double mergeDistance = 0.0;  ///< points of the picture closer than this are one
  std::vector<AccuracyRow> rows;
};

/// The lengths of the columns, from the longest to the shortest.
const std::vector<double>& accuracyLengths();

/// Takes the shots and measures them.
AccuracyTable measuredAccuracy(double mergeDistance);

/// The table as it stands in the page.
std::string markdown(const AccuracyTable& table);

/// The table that stands in the page under the comment "<!-- accuracy: DISTANCE -->".
/// \throws std::invalid_argument if there is none, or a figure is no number
AccuracyTable tableInPage(const std::string& page, double mergeDistance);

/// What differs between two tables, a line each; figures may differ by one unit of the digits that
/// are printed, since the last bits of the machine's sines do.
std::string differences(const AccuracyTable& page, const AccuracyTable& measured);

}  // namespace Lumivane::Test
