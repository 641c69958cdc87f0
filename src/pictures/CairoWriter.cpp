// Surfaces are drawn in their order by cairo. Where transparency is not kept, as in EPS, the axes
// have the opaque colours that they make on the background, the only thing that lies under them.

#include "pictures/CairoTarget.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/CairoWriter.h>
#include <lumivane/pictures/VectorPicture.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <cairo-pdf.h>
#include <cairo-ps.h>
#include <cairo.h>

namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;
using Path = VectorPicture::Path;
using Region = VectorPicture::Region;
using Surface = VectorPicture::Surface;

constexpr double PointsPerPixel = 72.0 / 96.0;

// In pixels. A wider line covers every picture as well, and cairo counts in whole numbers that end
// at 8 million pixels.
constexpr double WidestLine = 1e6;

using Context = CairoContext;
using Target = CairoTarget;

void setColor(cairo_t* context, const Color& color) {
  cairo_set_source_rgba(context, color.red / 255.0, color.green / 255.0, color.blue / 255.0,
                        color.opacity);
}

void trace(cairo_t* context, const Path& path) {
  cairo_new_path(context);
  for (const VectorPicture::Line& line : path.lines) {
    cairo_new_sub_path(context);
    for (const VectorPicture::Point& point : line) cairo_line_to(context, point.x, point.y);
    if (path.closed) cairo_close_path(context);
  }
}

void draw(cairo_t* context, const Path& path) {
  if (path.lines.empty() || (!path.fill && !path.pen)) return;
  trace(context, path);
  if (path.fill) {
    setColor(context, *path.fill);
    cairo_fill_preserve(context);
  }
  if (path.pen) {
    setColor(context, path.pen->color);
    cairo_set_line_width(context, std::min(path.pen->width, WidestLine));
    cairo_set_line_cap(context, path.pen->roundEnds ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_dash(context, path.pen->dashes.data(), static_cast<int>(path.pen->dashes.size()),
                   0.0);
    cairo_stroke(context);
  }
}

void drawLayer(cairo_t* context, const Surface& surface) {
  cairo_push_group(context);
  for (const Path& path : surface.merged) draw(context, path);
  cairo_pop_group_to_source(context);
  cairo_paint_with_alpha(context, surface.opacity);
  for (const Region& region : surface.regions) draw(context, region.edges);
}

void drawSurface(cairo_t* context, const Surface& surface) {
  if (surface.opacity < 1.0) {
    drawLayer(context, surface);
    return;
  }
  for (const Path& path : surface.merged) draw(context, path);
  for (const Region& region : surface.regions) {
    draw(context, region.interior);
    draw(context, region.spread);
    draw(context, region.edges);
  }
}

// The opaque colour that a colour makes on a ground.
Color laidOn(const Color& ground, const Color& color) {
  const auto mixed = [&color](int below, int above) {
    return static_cast<int>(std::lround(below + (above - below) * color.opacity));
  };
  return {mixed(ground.red, color.red), mixed(ground.green, color.green),
          mixed(ground.blue, color.blue), 1.0};
}

enum class Transparency { Kept, Flattened };

// The axes lie on the background alone, so that without transparency an opaque colour does.
void drawAxes(cairo_t* context, const VectorPicture& picture, Transparency transparency) {
  const Color white = {255, 255, 255, 1.0};
  const Color ground = picture.background() ? laidOn(white, *picture.background()) : white;
  for (Path path : picture.axes()) {
    if (transparency == Transparency::Flattened && path.pen)
      path.pen->color = laidOn(ground, path.pen->color);
    draw(context, path);
  }
}

void draw(cairo_surface_t* target, const VectorPicture& picture, double scale,
          Transparency transparency = Transparency::Kept) {
  const Context context(cairo_create(target));
  cairo_scale(context.get(), scale, scale);
  cairo_set_line_join(context.get(), CAIRO_LINE_JOIN_ROUND);
  if (picture.background()) {
    setColor(context.get(), *picture.background());
    cairo_paint(context.get());
  }
  drawAxes(context.get(), picture, transparency);
  for (const Path& path : picture.underlay()) draw(context.get(), path);
  for (const Surface& surface : picture.surfaces()) drawSurface(context.get(), surface);
  for (const Path& path : picture.lines()) draw(context.get(), path);
  checkCairo(cairo_status(context.get()));
}

// Draws the one page of a document, whose bytes are complete only then.
void finish(cairo_surface_t* target, const VectorPicture& picture, Transparency transparency) {
  checkCairo(cairo_surface_status(target));
  draw(target, picture, PointsPerPixel, transparency);
  cairo_surface_finish(target);
  checkCairo(cairo_surface_status(target));
}

// Without the line that says when it was written: equal pictures give equal bytes.
std::string undated(std::string postscript) {
  const size_t start = postscript.find("%%CreationDate:");
  if (start == std::string::npos) return postscript;
  const size_t end = postscript.find('\n', start);
  return postscript.erase(start, end == std::string::npos ? end : end + 1 - start);
}

}  // namespace

std::string CairoWriter::pdf(const VectorPicture& picture) {
  std::string bytes;
  const Target target(cairo_pdf_surface_create_for_stream(
      appendBytes, &bytes, picture.width() * PointsPerPixel, picture.height() * PointsPerPixel));
  checkCairo(cairo_surface_status(target.get()));
  if (!picture.title().empty()) {
    cairo_pdf_surface_set_metadata(target.get(), CAIRO_PDF_METADATA_TITLE,
                                   xmlText(picture.title()).c_str());
  }
  cairo_pdf_surface_set_metadata(target.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
  finish(target.get(), picture, Transparency::Kept);
  return bytes;
}

std::string CairoWriter::eps(const VectorPicture& picture) {
  std::string bytes;
  const Target target(cairo_ps_surface_create_for_stream(
      appendBytes, &bytes, picture.width() * PointsPerPixel, picture.height() * PointsPerPixel));
  cairo_ps_surface_set_eps(target.get(), 1);
  cairo_ps_surface_restrict_to_level(target.get(), CAIRO_PS_LEVEL_3);
  finish(target.get(), picture, Transparency::Flattened);
  return undated(std::move(bytes));
}

std::string CairoWriter::png(const VectorPicture& picture, double scale) {
  const double width = std::round(picture.width() * scale);
  const double height = std::round(picture.height() * scale);
  const double largest = VectorOptions::LargestSide;
  if (!(scale > 0.0 && width >= 1.0 && height >= 1.0 && width <= largest && height <= largest))
    throw std::invalid_argument("the scale of the picture gives no size of 1 to 16384 pixels");
  const Target target(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                                 static_cast<int>(height)));
  checkCairo(cairo_surface_status(target.get()));
  {
    const Context white(cairo_create(target.get()));
    cairo_set_source_rgb(white.get(), 1.0, 1.0, 1.0);
    cairo_paint(white.get());
  }
  draw(target.get(), picture, scale);
  std::string bytes;
  checkCairo(cairo_surface_write_to_png_stream(target.get(), appendBytes, &bytes));
  return bytes;
}

}  // namespace Lumivane::Pictures
