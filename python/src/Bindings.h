#pragma once

#include <pybind11/pybind11.h>

namespace Korvo::Python {

void BindConnection(pybind11::module_& module);
void BindMirror(pybind11::module_& module);
void BindSimulator(pybind11::module_& module);

}  // namespace Korvo::Python
