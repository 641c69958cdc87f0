#pragma once

#include "ExactBatch.h"

#include <optional>
#include <string>

namespace Lumivane::Session {
class TakenShot;
}

namespace Lumivane::Host {

/// The heading of a summary, without a line end.
std::string summaryHeading();

/// The row of a view that was made, and of one that was not.
///
/// \param isSafe  texts that a spreadsheet would take for formulas get an apostrophe in front
std::string summaryRow(const std::string& name, const Session::TakenShot& shot,
                       const std::optional<ExactSummary>& seen, bool isSafe);
std::string failureRow(const std::string& name, const std::string& error, bool isSafe);

}  // namespace Lumivane::Host
