#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Check {

/// How much a finding matters.
enum class Severity : int {
  Warning = 1,  ///< a shot is made, but may be wrong or surprise
  Error = 2     ///< no shot can be made
};

/// One thing that is wrong or surprising in a scene.
struct LUMIVANE_EXPORT Finding {
  Severity severity = Severity::Warning;  ///< how much it matters
  std::string code;    ///< the kind, for machines: lower case words joined by "-"; stays as it is
  std::string object;  ///< the id of the object concerned; empty for the scene as a whole
  int region = 0;      ///< the number of the region in its object, from 1; 0 for none
  int face = 0;        ///< the number of the face in its object, from 1; 0 for none
  std::string text;    ///< what is wrong, e.g. "point 9, but there are 1 to 8"
  std::string fix;     ///< what to do about it

  /// Where and what, in one line: `object "A", region 3: point 9, but there are 1 to 8`.
  std::string line() const;
};

}  // namespace Lumivane::Check
