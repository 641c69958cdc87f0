#pragma once

#include <new>

namespace Lumivane::Test {

/// A copy of an object of the model that is never destroyed, as befits one of two objects that
/// share what they own.
template <class Object>
class UndestroyedCopy {
 public:
  explicit UndestroyedCopy(const Object& source) : copy(new (place) Object(source)) {}
  UndestroyedCopy(const UndestroyedCopy&) = delete;
  UndestroyedCopy& operator=(const UndestroyedCopy&) = delete;

  Object* operator->() { return copy; }
  Object& operator*() { return *copy; }

 private:
  alignas(Object) unsigned char place[sizeof(Object)];
  Object* copy;
};

}  // namespace Lumivane::Test
