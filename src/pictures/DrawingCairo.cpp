#include "pictures/CairoTarget.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/Drawing.h>

#include <cmath>
#include <stdexcept>

#include <cairo-pdf.h>

// A drawing as PDF and PNG: the same paths in the same order as in the SVG, scaled from
// millimetres.
namespace Lumivane::Pictures {
namespace {

using Color = Drawing::Color;

constexpr double PointsPerMillimetre = 72.0 / 25.4;

void setColor(cairo_t* context, const Color& color) {
  cairo_set_source_rgb(context, color.red / 255.0, color.green / 255.0, color.blue / 255.0);
}

void draw(cairo_t* context, const Drawing::Path& path) {
  cairo_new_path(context);
  for (const Drawing::Line& line : path.lines) {
    cairo_new_sub_path(context);
    for (const Drawing::Point& p : line) cairo_line_to(context, p.x, p.y);
    if (path.closed) cairo_close_path(context);
  }
  if (path.fill) {
    setColor(context, *path.fill);
    cairo_fill_preserve(context);
  }
  if (path.color && path.width > 0.0) {
    setColor(context, *path.color);
    cairo_set_line_width(context, path.width);
    cairo_set_line_cap(context, path.roundEnds ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_dash(context, path.dashes.data(), static_cast<int>(path.dashes.size()), 0.0);
    cairo_stroke(context);
  }
  cairo_new_path(context);
}

void drawHalo(cairo_t* context, const char* text, double width) {
  double x = 0.0;
  double y = 0.0;
  cairo_get_current_point(context, &x, &y);
  cairo_text_path(context, text);
  cairo_set_source_rgb(context, 1.0, 1.0, 1.0);
  cairo_set_line_width(context, 2.0 * width);
  cairo_set_dash(context, nullptr, 0, 0.0);
  cairo_stroke(context);
  cairo_move_to(context, x, y);
}

void draw(cairo_t* context, const Drawing::Text& text) {
  cairo_set_font_size(context, text.height);
  const std::string shown = xmlText(text.text);
  cairo_text_extents_t extents{};
  cairo_text_extents(context, shown.c_str(), &extents);
  cairo_move_to(context, text.place.x - text.anchor * extents.x_advance, text.place.y);
  if (text.halo > 0.0) drawHalo(context, shown.c_str(), text.halo);
  setColor(context, text.color);
  cairo_show_text(context, shown.c_str());
}

// NOLINTNEXTLINE(misc-no-recursion): groups are three deep
void draw(cairo_t* context, const Drawing::Group& group) {
  for (const Drawing::Path& path : group.paths) draw(context, path);
  for (const Drawing::Text& text : group.texts) draw(context, text);
  for (const Drawing::Group& inner : group.groups) draw(context, inner);
}

void draw(cairo_surface_t* target, const Drawing& drawing, double scale) {
  const CairoContext context(cairo_create(target));
  cairo_t* const c = context.get();
  cairo_scale(c, scale, scale);
  cairo_set_line_join(c, CAIRO_LINE_JOIN_ROUND);
  cairo_set_fill_rule(c, CAIRO_FILL_RULE_EVEN_ODD);
  cairo_select_font_face(c, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  if (drawing.background) {
    setColor(c, *drawing.background);
    cairo_paint(c);
  }
  for (const Drawing::Group& layer : drawing.layers) draw(c, layer);
  checkCairo(cairo_status(c));
}

}  // namespace

std::string DrawingWriter::pdf(const Drawing& drawing) {
  std::string bytes;
  const CairoTarget target(
      cairo_pdf_surface_create_for_stream(appendBytes, &bytes, drawing.width * PointsPerMillimetre,
                                          drawing.height * PointsPerMillimetre));
  checkCairo(cairo_surface_status(target.get()));
  if (!drawing.title.empty())
    cairo_pdf_surface_set_metadata(target.get(), CAIRO_PDF_METADATA_TITLE,
                                   xmlText(drawing.title).c_str());
  cairo_pdf_surface_set_metadata(target.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
  draw(target.get(), drawing, PointsPerMillimetre);
  cairo_surface_finish(target.get());
  checkCairo(cairo_surface_status(target.get()));
  return bytes;
}

std::string DrawingWriter::png(const Drawing& drawing, double dotsPerInch) {
  const double scale = dotsPerInch / 25.4;
  const double width = std::round(drawing.width * scale);
  const double height = std::round(drawing.height * scale);
  const double largest = VectorOptions::LargestSide;
  if (!(scale > 0.0 && width >= 1.0 && height >= 1.0 && width <= largest && height <= largest))
    throw std::invalid_argument(
        "the page would have no side of 1 to 16384 pixels: change the "
        "dots per inch or the page");
  const CairoTarget target(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                                      static_cast<int>(height)));
  checkCairo(cairo_surface_status(target.get()));
  {
    const CairoContext white(cairo_create(target.get()));
    cairo_set_source_rgb(white.get(), 1.0, 1.0, 1.0);
    cairo_paint(white.get());
  }
  draw(target.get(), drawing, scale);
  std::string bytes;
  checkCairo(cairo_surface_write_to_png_stream(target.get(), appendBytes, &bytes));
  return bytes;
}

}  // namespace Lumivane::Pictures
