#pragma once

namespace Lumivane::Utils {

/// The stages from a scene's text to a shot's text, in the order in which they first begin.
enum class Stage {
  Read,            ///< a document read: its text parsed and the model filled
  PolygonData,     ///< regions made into polygon data
  ClipAndCull,     ///< clipped by the plane through the eye; polygons turned away left out
  Projection,      ///< edges split and carried onto the plane
  Docking,         ///< edges found that pieces of one region share
  Points,          ///< the records of the shot, their points merged into one list
  Classification,  ///< the pairs of faces compared, and what that needs laid out
  Order,           ///< the faces put in order, the shot written anew in it, the sort's data freed
  Write            ///< a document written: the model made into text
};

}  // namespace Lumivane::Utils
