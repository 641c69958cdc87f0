#pragma once

#include <pybind11/pybind11.h>

namespace Lumivane::Python {

// What stands in each file of the module. All texts for users stand in the package around it.
void bindErrors(pybind11::module_& module);
void bindFactors(pybind11::module_& module);
void bindSun(pybind11::module_& module);
void bindScene(pybind11::module_& module);
void bindMap(pybind11::module_& module);
void bindShot(pybind11::module_& module);

}  // namespace Lumivane::Python
