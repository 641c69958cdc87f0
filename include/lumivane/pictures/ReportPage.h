#pragma once

#include <lumivane/pictures/export.h>

#include <string>
#include <vector>

namespace Lumivane::Measure {
struct Place;
struct SunDay;
}  // namespace Lumivane::Measure
namespace Lumivane::Visibility {
class MapShares;
struct VisibleMap;
}  // namespace Lumivane::Visibility

namespace Lumivane::Pictures {

class VectorPicture;

/// One page to print on what one eye sees: the picture, the eye and its directions, the sky view
/// factor, tables by class and by object, and sun hours if they are added. HTML that loads nothing
/// from anywhere and needs no script.
class LUMIVANE_PICTURES_EXPORT ReportPage {
 public:
  /// A table that a host adds, as one of sun hours.
  struct Table {
    std::string title;                           ///< its heading
    std::string note;                            ///< a line under it; may be empty
    std::vector<std::string> columns;            ///< their headings; none: only title and note
    std::vector<std::vector<std::string>> rows;  ///< cells, the first of each row its name
  };

  /// \param title    the page's heading, as the scene's name
  /// \param picture  of the map
  /// \param map      of which the page is; without its visible fractions a column is left out
  /// \param shares   of that map
  ReportPage(const std::string& title, const VectorPicture& picture,
             const Visibility::VisibleMap& map, const Visibility::MapShares& shares);

  /// Adds a line to those about the eye, as "place": "Delft".
  void addFact(const std::string& name, const std::string& value);
  /// Adds a table behind the others.
  void add(Table table);
  /// Adds the sun hours of the eye: as facts how long the sun shines on it and which part of the
  /// daylight that is, the diagram of the sun's paths, and tables of its days (or of their months,
  /// if there are more than 31), of the times of a single day, and of what stands in front of the
  /// sun how long.
  /// \param upwards  a map of the hemisphere above the eye, as `Measure::lookUpwards` asks for
  /// \param days     as `Measure::SunHours` found them from that map
  /// \param diagram  an SVG without a declaration, as `sunDiagram` draws it; may be empty
  void addSun(const Visibility::VisibleMap& upwards, const Measure::Place& place,
              const std::vector<Measure::SunDay>& days, const std::string& diagram);

  /// The document. Equal content gives equal bytes: it holds no date. Texts may hold any bytes.
  std::string text() const;

 private:
  struct Fact {
    std::string name;
    std::string value;
  };

  std::string pageTitle;
  std::string svg;
  // A table with a picture over it.
  struct Section {
    Table table;
    std::string svg;
  };

  std::vector<Fact> facts;
  std::vector<Section> sections;
};

}  // namespace Lumivane::Pictures
