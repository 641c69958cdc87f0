#pragma once

#include <lumivane/export.h>
#include <lumivane/jzon/Node.h>

namespace Lumivane::Base {

/// The root of every class of the model: how an object turns into a JSON node and back.
///
/// No class of the model has a virtual destructor: an object is deleted through a pointer of its
/// own exact class.
class LUMIVANE_EXPORT BaseLibClass {
 public:
  /// \return the object as a JSON node; here a new empty object node
  virtual Jzon::Node serialize();

  /// Reads the object from a JSON node. A node of the wrong kind leaves the object as it is.
  ///
  /// \return this; here nothing else is done
  virtual BaseLibClass* deserialize(Jzon::Node node);
};

}  // namespace Lumivane::Base
