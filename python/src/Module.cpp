// The native part of the `tessel` package. Applications use the pure-Python layer above it
// (`tessel.connect`, `tessel.Simulator`); the names here may change without notice.

#include <pybind11/pybind11.h>

#include "Bindings.h"
#include "Schema.h"

PYBIND11_MODULE(_tessel, module) {
    module.doc() = "Native part of the tessel package; use the tessel module instead.";
    Korvo::Python::BindConnection(module);
    Korvo::Python::BindMirror(module);
    Korvo::Python::BindSimulator(module);
    module.def("schema", &Korvo::Python::Schema);
}
