#pragma once

#include <lumivane/pictures/Drawing.h>

#include <vector>

namespace Lumivane::Pictures {

/// Joins lines that meet end to end into long ones: straight on where several go on, closed ones
/// with their first point once more at the end. Each piece comes out once. Points in one straight
/// line are left out.
std::vector<Drawing::Line> joinedLines(const std::vector<Drawing::Line>& lines);

/// Puts lines in an order, and turns them round, so that a pen travels little between them: from
/// each end to the nearest beginning or end of what is left.
std::vector<Drawing::Line> orderedForPen(const std::vector<Drawing::Line>& lines);

/// The way between the lines in their order, from the first one's beginning.
double penTravel(const std::vector<Drawing::Line>& lines);
double lengthOf(const std::vector<Drawing::Line>& lines);

}  // namespace Lumivane::Pictures
