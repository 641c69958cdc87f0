#pragma once

#include <lumivane/exchange/export.h>

#include <string>
#include <vector>

namespace Lumivane::Measure {
class VisibleShares;
}

namespace Lumivane::Exchange {

class VectorPicture;

/// A page to explore a shot: the picture beside the table of its objects with their view factors,
/// in one file that loads nothing from anywhere. See docs/shot-page.md for what it does.
class LUMIVANE_EXCHANGE_EXPORT HtmlPage {
 public:
  /// \param title  the page's heading; any bytes
  explicit HtmlPage(std::string title);

  /// Adds a shot of the same scene; between several the page switches. The first is shown first.
  /// Of the picture the page keeps two decimals of a pixel at least and 1/40000 of the height.
  ///
  /// \param picture  how it looks
  /// \param shares   what is visible of its objects, measured on the same shot
  void add(const VectorPicture& picture, const Measure::VisibleShares& shares);

  /// The document. Equal pictures and shares give equal bytes.
  std::string text() const;

 private:
  std::string pageTitle;
  std::vector<std::string> pictures;  // SVG
  std::vector<std::string> tables;    // JSON
};

}  // namespace Lumivane::Exchange
