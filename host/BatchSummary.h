#pragma once

#include "ExactBatch.h"

#include <lumivane/session/ViewSettings.h>

#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Session {
class TakenShot;
}

namespace Lumivane::Host {

/// The classes that a summary has columns for: none at all, or those of the scene and a last column
/// for what has none.
using SummaryClasses = std::optional<std::vector<std::string>>;

/// The heading of a summary, without a line end.
std::string summaryHeading(const SummaryClasses& classes, bool isSafe);

/// Whether a column of summaries holds texts, also where names or ids are digits: so a column has
/// one type in all files.
bool isTextOfSummary(const std::string& column);

/// The row of a view that was made, and of one that was not.
///
/// \param trueEye  the eye of the table, in the coordinates of the scene's file
/// \param isSafe  texts that a spreadsheet would take for formulas get an apostrophe in front
std::string summaryRow(const std::string& name, const Session::TakenShot& shot,
                       const std::optional<ExactSummary>& seen, const Session::Vector& trueEye,
                       const SummaryClasses& classes, bool isSafe);
/// That of a view without a shot.
std::string exactSummaryRow(const std::string& name, const Session::Vector& eye,
                            const ExactSummary& seen, const Session::Vector& trueEye,
                            const SummaryClasses& classes, bool isSafe);
std::string failureRow(const std::string& name, const std::string& error,
                       const SummaryClasses& classes, bool isSafe);

}  // namespace Lumivane::Host
