#pragma once

/// The parts of the page, as they stand in src/exchange/page/.
namespace Lumivane::Exchange::PageSource {

extern const char* const Html;
extern const char* const Style;
extern const char* const Script;

}  // namespace Lumivane::Exchange::PageSource
