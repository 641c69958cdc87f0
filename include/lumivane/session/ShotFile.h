#pragma once

#include <lumivane/export.h>
#include <lumivane/session/Error.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <string>

namespace Lumivane::Session {

/// Reads a shot file. The shot owns all that it points at; its view, scale and property are null.
/// \throws Error if it cannot be read, is no JSON or holds a value out of range, and says which
LUMIVANE_EXPORT std::unique_ptr<Shot::Shot2d> readShot(const std::string& path);

/// The same for the text of a shot file; `name` stands in errors. \throws Error
LUMIVANE_EXPORT std::unique_ptr<Shot::Shot2d> readShotText(const std::string& text,
                                                           const std::string& name);

}  // namespace Lumivane::Session
