#pragma once

#include "visibility/IndexState.h"

#include <string>

namespace Lumivane::Visibility {

/// What is wrong with the arrays of a state that was read from a file: a few words, empty if
/// nothing is. After that no number of the state points beyond an array, no coordinate is not
/// finite, and the hierarchy is a tree of bounded depth over all polygons.
std::string indexFault(const IndexState& state);

}  // namespace Lumivane::Visibility
