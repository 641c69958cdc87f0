#pragma once

#include <cstdint>

namespace Jzon {

/// How a Writer lays out its text.
///
/// The files of the library are written with `Format{true, true, true, 1}`.
struct Format {
  bool newline;              ///< a line feed behind `{`, behind each member and before `}`
  bool spacing;              ///< a space behind the colon of a member
  bool useTabs;              ///< the indentation character; without effect on the text
  std::uint32_t indentSize;  ///< indentation characters per level; without effect on the text
};

}  // namespace Jzon

namespace Lumivane {
/// \cond
namespace Jzon = ::Jzon;
/// \endcond
}  // namespace Lumivane
