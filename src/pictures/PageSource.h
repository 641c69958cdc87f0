#pragma once

/// The parts of the page, as they stand in src/pictures/page/.
namespace Lumivane::Pictures::PageSource {

extern const char* const Html;
extern const char* const Style;
extern const char* const Map;
extern const char* const Script;

}  // namespace Lumivane::Pictures::PageSource
