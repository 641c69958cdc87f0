#pragma once

#include <lumivane/check/SceneChecker.h>

#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Check {

/// Collects findings about one object after the other, and stops at a number that nobody would
/// read. The first error is taken all the same: whether a shot can be made must not depend on how
/// many warnings stand before.
class Findings {
 public:
  /// What follows is about this object; the empty id is the scene's.
  void setObject(const std::string& id) { object = id; }

  /// About the object as a whole, or the scene.
  void add(Severity severity, const char* code, std::string text, const char* fix) {
    put(severity, code, 0, 0, std::move(text), fix);
  }
  /// About a region or face; numbers from 1.
  void addRegion(Severity severity, const char* code, size_t region, std::string text,
                 const char* fix) {
    put(severity, code, static_cast<int>(region), 0, std::move(text), fix);
  }
  void addFace(Severity severity, const char* code, size_t face, std::string text,
               const char* fix) {
    put(severity, code, 0, static_cast<int>(face), std::move(text), fix);
  }

  /// A finding that already says what it is about.
  void add(Finding finding) {
    if (items.size() < static_cast<size_t>(SceneChecker::Most)) items.push_back(std::move(finding));
  }

  bool full() const { return moreReported && errorReported; }
  bool hasErrors() const { return errorReported; }
  std::vector<Finding> take() { return std::move(items); }

 private:
  void put(Severity severity, const char* code, int region, int face, std::string text,
           const char* fix);

  std::string object;
  std::vector<Finding> items;
  bool moreReported = false;
  bool errorReported = false;
};

/// Whether a number from 1 points at one of so many.
inline bool isNumberOf(int number, size_t count) {
  return number >= 1 && static_cast<size_t>(number) <= count;
}

/// "point 9, but there are 1 to 8"
std::string outOfRange(const char* what, int number, size_t count);

/// The items of one of the model's lists, or no items: the list or its vector may be missing.
template <class Vector>
const Vector& itemsOf(const Vector* vector) {
  static const Vector none;
  return vector == nullptr ? none : *vector;
}

}  // namespace Lumivane::Check
