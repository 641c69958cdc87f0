#include "view/Drivers.h"

#include <cstring>

#include <dlfcn.h>
#include <link.h>
#include <vtkNew.h>
#include <vtkRenderWindow.h>

namespace Lumivane::Test {
namespace {

int keepIfDriver(dl_phdr_info* library, size_t /*size*/, void* /*nothing*/) {
  if (std::strstr(library->dlpi_name, "_dri.so") != nullptr) {
    dlopen(library->dlpi_name, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
  return 0;
}

}  // namespace

void keepDrivers() {
  const vtkNew<vtkRenderWindow> window;  // any drawing loads them
  window->OffScreenRenderingOn();
  window->Render();
  dl_iterate_phdr(keepIfDriver, nullptr);
}

}  // namespace Lumivane::Test
