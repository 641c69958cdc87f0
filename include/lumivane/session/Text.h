#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Session {

/// The bytes as UTF-8: U+FFFD in the place of each byte that is no part of a character. Ids, names
/// and paths may hold any bytes; files of text and messages hold what this returns.
LUMIVANE_EXPORT std::string utf8Text(const std::string& bytes);

/// An object's id as it is shown in tables, pages and messages: as `utf8Text`, with the characters
/// that its "\uXXXX" escapes stand for. Scene and shot files keep the id as it is.
LUMIVANE_EXPORT std::string idText(const std::string& id);

/// A text as a cell of a table (RFC 4180), in quotes if it needs them.
LUMIVANE_EXPORT std::string csvField(const std::string& text);

/// The text with an apostrophe in front if it starts with = + - @, a tab or a carriage return,
/// since a spreadsheet would take it for a formula.
LUMIVANE_EXPORT std::string csvSafe(const std::string& text);

}  // namespace Lumivane::Session
