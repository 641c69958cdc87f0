#pragma once

#include <lumivane/measure/export.h>

#include <string>

namespace Lumivane::Measure {

class ShareClasses;
class VisibleShares;

/// Visible shares as text. Numbers have as many digits as distinguish them from all others, and a
/// point whatever the locale.
class LUMIVANE_MEASURE_EXPORT ShareText {
 public:
  /// A table (RFC 4180, lines ended by a line feed): one heading, a row for every object, every
  /// face and every region, and one for the sky. Columns that do not apply to a row are empty. Ids
  /// stand as `Session::idText` shows them.
  ///
  /// \param classes  what the last column names
  /// \param isSafe  an id or class that a spreadsheet would take for a formula, since it starts
  /// with
  ///                = + - @, a tab or a carriage return, gets an apostrophe in front
  static std::string csv(const VisibleShares& shares, const ShareClasses& classes, bool isSafe);
  static std::string csv(const VisibleShares& shares, bool isSafe);  ///< Without classes.
  static std::string csv(const VisibleShares& shares);  ///< Ids as they are, without classes.

  /// One JSON object with the keys "projection", "whole", "sky", "objects", "faces" and "regions",
  /// whose records have "class" last where they have one.
  static std::string json(const VisibleShares& shares, const ShareClasses& classes);
  static std::string json(const VisibleShares& shares);  ///< Without classes.
};

}  // namespace Lumivane::Measure
