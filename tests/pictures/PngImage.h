#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>

#include <cairo.h>

namespace Lumivane::Test {

using Rgb = std::array<int, 3>;

/// Bytes, as cairo asks for them.
struct PngReader {
  const std::string& bytes;
  size_t at = 0;
  static cairo_status_t read(void* self, unsigned char* target, unsigned count) {
    auto& reader = *static_cast<PngReader*>(self);
    if (reader.at + count > reader.bytes.size()) return CAIRO_STATUS_READ_ERROR;
    std::copy_n(reader.bytes.begin() + static_cast<std::ptrdiff_t>(reader.at), count, target);
    reader.at += count;
    return CAIRO_STATUS_SUCCESS;
  }
};

/// A PNG, read again.
class Image {
 public:
  explicit Image(const std::string& bytes) {
    PngReader reader{bytes};
    surface.reset(cairo_image_surface_create_from_png_stream(PngReader::read, &reader));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
      throw std::runtime_error("no PNG");
  }
  int width() const { return cairo_image_surface_get_width(surface.get()); }
  int height() const { return cairo_image_surface_get_height(surface.get()); }
  Rgb at(int x, int y) const {
    const unsigned char* row = cairo_image_surface_get_data(surface.get()) +
                               y * cairo_image_surface_get_stride(surface.get());
    return {row[4 * x + 2], row[4 * x + 1], row[4 * x]};
  }

 private:
  struct Release {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
  };
  std::unique_ptr<cairo_surface_t, Release> surface;
};

}  // namespace Lumivane::Test
