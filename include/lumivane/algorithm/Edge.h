#pragma once

#include <lumivane/export.h>

#include <string>
#include <utility>

namespace Lumivane::Algorithm {

/// A directed edge of a graph whose nodes are strings.
class LUMIVANE_EXPORT Edge {
 public:
  Edge() = default;  ///< Between two empty names.

  void setStart(std::string value) { start = std::move(value); }
  void setEnd(std::string value) { end = std::move(value); }
  std::string getStart() const { return start; }
  std::string getEnd() const { return end; }

 private:
  std::string start;
  std::string end;
};

}  // namespace Lumivane::Algorithm
