#include "algorithm/pipeline/TypeProjection.h"
#include "pictures/AxesPaths.h"
#include "pictures/Colors.h"
#include "pictures/PictureFrame.h"
#include "pictures/ShotRegions.h"
#include "pictures/Surfaces.h"

#include <lumivane/base/View.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/shot/Shot2d.h>

#include <stdexcept>
#include <string>

namespace Lumivane::Pictures {
namespace {

// Far enough to see all of a picture, near enough that its numbers keep their meaning.
constexpr double SmallestExtent = 1e-3;
constexpr double LargestExtent = 1e3;

void checkSide(const char* name, int side) {
  if (side >= 1 && side <= VectorOptions::LargestSide) return;
  throw std::invalid_argument(std::string(name) + " " + std::to_string(side) +
                              " of the picture is not within 1 to " +
                              std::to_string(VectorOptions::LargestSide));
}

const VectorOptions& checked(const VectorOptions& options) {
  checkPictureSize(options.width, options.height, options.extent);
  const int style = options.style ? static_cast<int>(*options.style) : 0;
  if (style < 0 || style > 2)
    throw std::invalid_argument("there is no display style " + std::to_string(style));
  return options;
}

Base::ViewDisplayStyle styleOf(const Shot::Shot2d& shot, const VectorOptions& options) {
  if (options.style) return *options.style;
  return shot.getView() ? shot.getView()->getDisplayStyle() : Base::ViewDisplayStyle::Filled;
}

std::vector<VectorPicture::Path> axesOf(Kernel::PlaneGrid grid, const PictureFrame& frame) {
  switch (grid) {
    case Kernel::PlaneGrid::Rings:
      return radialAxes(frame);
    case Kernel::PlaneGrid::Lines:
      return squareAxes(frame);
  }
  return {};
}

std::vector<VectorPicture::Path> axesOf(Shot::Shot2d& shot, VectorAxes axes,
                                        const PictureFrame& frame) {
  switch (axes) {
    case VectorAxes::None:
      return {};
    case VectorAxes::OfShot:
      return axesOf(Algorithm::gridOf(shot.getView()), frame);
    case VectorAxes::Radial:
      return radialAxes(frame);
    case VectorAxes::Square:
      return squareAxes(frame);
  }
  return {};
}

std::optional<VectorPicture::Color> backgroundOf(const VectorOptions& options) {
  if (!options.background) return {};
  return toColor(*options.background);
}

}  // namespace

void checkPictureSize(int width, int height, double extent) {
  checkSide("width", width);
  checkSide("height", height);
  if (!(extent >= SmallestExtent && extent <= LargestExtent))
    throw std::invalid_argument("the extent of the picture is not within 0.001 to 1000");
}

VectorPicture::VectorPicture(Shot::Shot2d& shot, const VectorOptions& options) {
  all.width = checked(options).width;
  all.height = options.height;
  all.title = options.title;
  all.background = backgroundOf(options);
  const PictureFrame frame(options);
  all.axes = axesOf(shot, options.axes, frame);
  all.surfaces = surfacesOf(drawnRegions(shot, frame, styleOf(shot, options)));
}

VectorPicture::VectorPicture(Parts parts) : all(std::move(parts)) {
  checkPictureSize(all.width, all.height, 1.0);
}

}  // namespace Lumivane::Pictures
