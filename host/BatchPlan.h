#pragma once

#include "Options.h"
#include "ViewTable.h"

#include <string>
#include <vector>

namespace Lumivane::Host {

/// What a batch is going to make.
struct BatchPlan {
  TableSetting setting;
  ViewTable views;
};

/// Reads the table, and the scene as far as its files are concerned.
/// \throws ArgumentError if an output is an input, the output of another view or one of the run's
///                       own files, by whatever name or link; nothing has been written then
/// \throws HostError if table or scene cannot be read
BatchPlan planBatch(const BatchOptions& options);

/// The options that stand for all views, as the journal keeps them.
std::string optionsText(const TableSetting& setting);

}  // namespace Lumivane::Host
