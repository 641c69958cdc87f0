#pragma once

#include <lumivane/pictures/export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::Measure {
class ShareClasses;
class ShotAudit;
class VisibleShares;
}  // namespace Lumivane::Measure

namespace Lumivane::Visibility {
class MapShares;
struct ParallelMap;
struct VisibleMap;
}  // namespace Lumivane::Visibility

namespace Lumivane::Pictures {

class VectorPicture;
struct VectorOptions;

/// A page to explore a shot or a visibility map: the picture beside the table of its objects with
/// their view factors, in one file that loads nothing from anywhere. See docs/shot-page.md for what
/// it does.
class LUMIVANE_PICTURES_EXPORT HtmlPage {
 public:
  /// \param title  the page's heading; any bytes
  explicit HtmlPage(std::string title);

  /// Adds a shot of the same scene; between several the page switches. The first is shown first.
  /// Of the picture the page keeps two decimals of a pixel at least and 1/40000 of the height.
  ///
  /// \param picture  how it looks
  /// \param shares   what is visible of its objects, measured on the same shot
  /// \param exact    if not null, the shares of a map of the same hemisphere, whose objects have
  ///                 the same numbers: shown beside those of the picture
  /// \param classes  what the surfaces of the scene are: a column, unless there are none
  void add(const VectorPicture& picture, const Measure::VisibleShares& shares,
           const Visibility::MapShares* exact, const Measure::ShareClasses& classes);
  void add(const VectorPicture& picture, const Measure::VisibleShares& shares,
           const Visibility::MapShares* exact);  ///< Without classes.
  void add(const VectorPicture& picture, const Measure::VisibleShares& shares);  ///< Without both.
  /// Shades, in the shot added last, where it shows another region than is really seen, and says
  /// how much of it that is, altogether and by object. Parts that are less than 1/10000 of half the
  /// picture wide, as the strips between chords and arcs, are counted but not shaded.
  ///
  /// \param audit    of that shot, with its wrong parts
  /// \param options  those that its picture was drawn with
  /// \throws std::invalid_argument if the audit has not kept the wrong parts
  /// \throws std::logic_error if no shot was added
  void addAudit(const Measure::ShotAudit& audit, const VectorOptions& options);

  /// Adds a map. Between maps of one scene the page switches too, and it shows each in any
  /// projection. What the map knows of classes is a column. Of cells that the picture leaves out
  /// nothing is shown in others, either
  /// (`MapPictureOptions::allCells`).
  ///
  /// \param picture  how it looks at first
  /// \param map      what it is of
  /// \param shares   of that map
  void add(const VectorPicture& picture, const Visibility::VisibleMap& map,
           const Visibility::MapShares& shares);

  /// The same with a name, by which the page calls the picture where there are several.
  void add(const VectorPicture& picture, const Visibility::VisibleMap& map,
           const Visibility::MapShares& shares, const std::string& name);
  /// Adds what is seen along parallel lines of sight, with the areas of objects in it.
  void add(const VectorPicture& picture, const Visibility::ParallelMap& map,
           const std::string& name);
  /// How many were added.
  std::size_t pictureCount() const { return pictures.size(); }

  /// The document. Equal pictures and shares give equal bytes.
  std::string text() const;

 private:
  std::string pageTitle;
  void addSvg(const VectorPicture& picture);

  std::vector<std::string> pictures;  // SVG
  std::vector<std::string> tables;    // JSON
  std::vector<std::string> audits;    // JSON, "null" for pictures without one; may be shorter
};

}  // namespace Lumivane::Pictures
