#include <lumivane/algorithm/ShotParameters.h>

namespace Lumivane::Algorithm {

ShotParameters::ShotParameters() = default;

void ShotParameters::increaseHandledObjectsCounter() {
  // Unsigned, so that the step past the highest int is defined.
  handledObjectsCounter = static_cast<int>(static_cast<unsigned>(handledObjectsCounter) + 1U);
}

}  // namespace Lumivane::Algorithm
