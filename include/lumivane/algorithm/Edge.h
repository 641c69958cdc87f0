#pragma once

#include <lumivane/export.h>

#include <string>
#include <utility>

namespace Lumivane::Algorithm {

/// A directed edge of a graph whose nodes are strings.
class LUMIVANE_EXPORT Edge {
 public:
  Edge() = default;  ///< Between two empty names.

  void setStart(std::string value) {
    start = std::move(value);
  }                                                           ///< Renames the node it leads from.
  void setEnd(std::string value) { end = std::move(value); }  ///< Renames the node it leads to.
  std::string getStart() const { return start; }              ///< The node it leads from.
  std::string getEnd() const { return end; }                  ///< The node it leads to.

 private:
  std::string start;
  std::string end;
};

}  // namespace Lumivane::Algorithm
