#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Algorithm {

/// A directed edge of a graph whose nodes are strings.
class LUMIVANE_EXPORT Edge {
 public:
  /// Between two empty names.
  Edge();

  void setStart(std::string value);
  void setEnd(std::string value);
  std::string getStart() const;
  std::string getEnd() const;

 private:
  std::string start;
  std::string end;
};

}  // namespace Lumivane::Algorithm
