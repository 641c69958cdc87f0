#pragma once

#include <string>

namespace Lumivane::Measure {
class ShotAudit;
struct WrongPart;
}  // namespace Lumivane::Measure

namespace Lumivane::Pictures {

struct VectorOptions;

/// Whether a wrong part is wide enough to be seen. Others are what chords leave of arcs, and
/// rounding: strips along edges, of which any picture has many.
bool isShaded(const Measure::WrongPart& part);

/// The group of an SVG document that shades the wrong parts of a picture: a path for each two
/// objects, with the numbers of what is shown and what is seen; nothing without wrong parts to see.
/// \param options   those that the picture was drawn with
/// \param idPrefix  in front of each id
/// \param decimals  of coordinates
std::string wrongShading(const Measure::ShotAudit& audit, const VectorOptions& options,
                         const std::string& idPrefix, int decimals);

}  // namespace Lumivane::Pictures
