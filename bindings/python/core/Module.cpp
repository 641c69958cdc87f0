// The module beneath the package: values in, arrays out. It checks what memory safety asks for; the
// package around it checks and converts what users give.

#include "Module.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/Text.h>

#include <new>
#include <stdexcept>

namespace py = pybind11;

namespace Lumivane::Python {

// Texts of the library may hold ids of any bytes; Python's are Unicode.
void bindErrors(py::module_& module) {
  static py::exception<Session::Error> error(module, "Error");
  error.attr("__module__") = "lumivane";  // where users find it
  error.attr("__doc__") =
      "What the library reports of files, scenes and views: \"SUBJECT: CAUSE\" in one line.";
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const py::error_already_set&) {
      throw;
    } catch (const py::builtin_exception&) {
      throw;
    } catch (const Session::Error& fault) {
      PyErr_SetString(error.ptr(), fault.what());
    } catch (const std::invalid_argument& fault) {
      PyErr_SetString(PyExc_ValueError, Session::oneLine(fault.what()).c_str());
    } catch (const std::runtime_error& fault) {
      PyErr_SetString(error.ptr(), Session::oneLine(fault.what()).c_str());
    }
  });
}

}  // namespace Lumivane::Python

PYBIND11_MODULE(_core, module) {
  module.attr("__version__") = LUMIVANE_VERSION;
  Lumivane::Python::bindErrors(module);
  Lumivane::Python::bindMap(module);
  Lumivane::Python::bindShot(module);
  Lumivane::Python::bindFactors(module);
  Lumivane::Python::bindSun(module);
  Lumivane::Python::bindScene(module);
}
