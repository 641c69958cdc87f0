#pragma once

#include <lumivane/pictures/DrawingOptions.h>
#include <lumivane/pictures/export.h>
#include <lumivane/visibility/SceneIndex.h>

#include <string>
#include <vector>

namespace Lumivane::Pictures {

/// One look of a page of drawings.
struct DrawingView {
  std::string name;        ///< as the page calls it
  DrawingOptions options;  ///< of the drawing
};

/// A page that shows drawings of a scene beside the table of its objects: a `HtmlPage`, with the
/// lines of drawings by their kinds, hidden ones too. What an eye sees is shown in any projection,
/// to be chosen in the browser, beginning with that of the options; each parallel projection is a
/// picture of its own, between which, and the eye, the page switches.
///
/// Of the options the page, its margins, crop, scale, labels and marks, strokes, flatness and exact
/// arcs are left out. Without a fill cells are white.
///
/// \param views  the first is shown first; of the others those are left out in which there is
///               nothing, as of a flat scene seen along its plane
/// \param title  the page's heading; any bytes
/// \throws std::invalid_argument for options out of range and without views
/// \throws std::runtime_error if nothing is in the first picture
/// \throws Visibility::Cancelled
LUMIVANE_PICTURES_EXPORT std::string drawingPage(const Visibility::SceneIndex& index,
                                                 const DrawingColors& colors,
                                                 const std::vector<DrawingView>& views,
                                                 const std::string& title);

}  // namespace Lumivane::Pictures
