#include "Memory.h"

#include <cstdlib>  // tells which C library it is

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Lumivane::Host {

void prepareMemory() {
#ifdef __GLIBC__
  // Without its bins for small pieces the C library joins them when they are freed. With the bins
  // it does so later and over and over again, whenever a large piece is freed: a fifth of a whole
  // run.
  mallopt(M_MXFAST, 0);
#endif
}

}  // namespace Lumivane::Host
