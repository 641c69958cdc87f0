#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include <cairo.h>

/// What owns cairo's things.
namespace Lumivane::Pictures {

struct CairoRelease {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using CairoContext = std::unique_ptr<cairo_t, CairoRelease>;
using CairoTarget = std::unique_ptr<cairo_surface_t, CairoRelease>;

/// \throws std::runtime_error unless all went well
inline void checkCairo(cairo_status_t status) {
  if (status == CAIRO_STATUS_SUCCESS) return;
  throw std::runtime_error(std::string("the picture cannot be drawn: ") +
                           cairo_status_to_string(status));
}

/// Appends to the string `target`.
inline cairo_status_t appendBytes(void* target, const unsigned char* bytes, unsigned count) {
  static_cast<std::string*>(target)->append(reinterpret_cast<const char*>(bytes), count);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace Lumivane::Pictures
