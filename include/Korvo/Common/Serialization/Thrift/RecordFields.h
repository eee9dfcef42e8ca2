#pragma once

// The field lists of the generated wire records. The build writes one header per definition
// file, <name>_fields.h beside <name>_types.h (cmake/KorvoRecordFields.cmake), which specialises
// `RecordFields` for each of its records; the converters walk them.

namespace Korvo::Common::Serialization::Thrift::Fields {

/// How a field of a record is marked in its definition: `required` fields are always written and
/// must be read; default ones are always written; optional ones only when their set-flag is on.
enum class Presence { Required, Default, Optional };

/// `List`: a `std::tuple` of one type per field, in definition order, each with `Type`, `name`,
/// `presence`, `Get(record)`, `IsSet(record)` and `MarkSet(record, set)` (always set, and a no-op,
/// for required fields).
template <class Record>
struct RecordFields;

}  // namespace Korvo::Common::Serialization::Thrift::Fields
