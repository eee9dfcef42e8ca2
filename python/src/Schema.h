#pragma once

#include <pybind11/pybind11.h>

namespace Korvo::Python {

/// The message tables as Python data (built under the GIL, at import):
/// - "commands": (name, reply class, read-only, continuous, fields) per command;
/// - "replies": (class name, may come in parts, fields) per reply; the class name is the "type"
///   of the reply's JSON form;
/// - "notifications": (type name, family, fields) per notification;
/// - "classes": the value classes the fields reach, name -> fields.
/// `fields` is a list of (JSON key, type), where a type is ("int",), ("bool",), ("str",),
/// ("text",) (an 8-bit or UTF-16 text), ("class", name), ("optional", t), ("list", t) or
/// ("map", key, value).
pybind11::dict Schema();

}  // namespace Korvo::Python
