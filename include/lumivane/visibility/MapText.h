#pragma once

#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/VisibleMap.h>
#include <lumivane/visibility/export.h>

#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Visibility {

/// Which rows a table of shares has, besides the sky's, which is always last.
enum class ShareDepth {
  Total,   ///< one row for all objects together
  Class,   ///< one for each class, then one for the regions of none
  Object,  ///< one for each object of the scene, seen or not
  Face,    ///< those of the objects, then one for each face that is seen
  Region   ///< those of the objects and faces, then one for each region that is seen
};

/// One row of a table of shares.
struct ShareRow {
  std::string kind;       ///< total, class, object, face, region or sky
  int object = 0;         ///< from 1; 0 if it does not apply
  std::string id;         ///< of the object, as `Session::idText` shows it
  int face = 0;           ///< from 1 in the object's faces; 0 if it does not apply
  int region = 0;         ///< from 1, counted through all objects of the scene; 0 likewise
  int sourceRegion = 0;   ///< from 1 in the object's regions; 0 if it does not apply
  std::string className;  ///< empty for none and for more than one
  ViewShare share;        ///< what is seen of it
  std::optional<double> visibleFraction;  ///< of objects, if the map was asked for it
};

/// The rows of a map to one depth: objects in the scene's order, the sky last.
LUMIVANE_VISIBILITY_EXPORT std::vector<ShareRow> shareRows(const VisibleMap& map,
                                                           const MapShares& shares,
                                                           ShareDepth depth);

/// Maps and their shares as text. Ids may hold any bytes: they stand as `Session::idText` shows
/// them. Numbers have a point whatever the locale, and equal values give equal bytes.
class LUMIVANE_VISIBILITY_EXPORT MapText {
 public:
  /// The heading of a table of shares (RFC 4180), without a line end. Columns that only a
  /// hemisphere has (area, view_factor, hemisphere_share) are left out for a sphere.
  static std::string csvHeading(Field field);
  /// The rows of a table, each ended by a line feed. Columns that do not apply to a row are empty.
  ///
  /// \param before  leads each row, as the fields of a table's own first columns with their commas
  /// \param isSafe  a text that a spreadsheet would take for a formula, since it starts with
  ///                = + - @, a tab or a carriage return, gets an apostrophe in front
  static std::string csvRows(const std::vector<ShareRow>& rows, Field field,
                             const std::string& before = "", bool isSafe = false);
  /// The table of a map's shares. Numbers have as many digits as distinguish them from all others.
  static std::string csv(const VisibleMap& map, const MapShares& shares,
                         ShareDepth depth = ShareDepth::Object, bool isSafe = false);
  /// The same as one JSON object: version, eye, forward, up, field and the rows, whose keys are
  /// the table's columns as far as they apply.
  static std::string json(const VisibleMap& map, const MapShares& shares,
                          ShareDepth depth = ShareDepth::Object);
  /// The same of rows that the caller has made.
  static std::string json(const VisibleMap& map, const std::vector<ShareRow>& rows);

  /// The map itself as one JSON object; numbers that are not whole have 17 digits, which read back
  /// to the same doubles. docs/schema/map.schema.json describes it.
  static std::string mapJson(const VisibleMap& map);
};

}  // namespace Lumivane::Visibility
