#pragma once

#include <lumivane/export.h>
#include <lumivane/jzon/Node.h>

#include <cstddef>
#include <string>

/// Trees built without moves and read without a rest: for the model, which knows how many children
/// it will write and reads each child once.
namespace Jzon {

/// An empty container whose first `room` children are added without moving the others.
LUMIVANE_EXPORT Node arrayWithRoom(std::size_t room);
LUMIVANE_EXPORT Node objectWithRoom(std::size_t room);

/// As `get`, but if nobody else has a handle on the container's data the child is taken out and an
/// invalid node left in its place. So the child is destroyed as soon as it has been read.
LUMIVANE_EXPORT Node takenChild(Node& container, std::size_t index);
LUMIVANE_EXPORT Node takenChild(Node& object, const std::string& name);

}  // namespace Jzon
