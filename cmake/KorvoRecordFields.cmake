# Run as a script (cmake -P) on one .thrift file: writes <name>_fields.h, the field list of every
# struct it defines, for the converters to walk (see <Korvo/Common/Serialization/Thrift/RecordFields.h>).
#
# Each field becomes a small struct in `RecordFields<Record>`: its name, its presence (required,
# default or optional), its type, and access to its value and its set-flag. The list keeps the
# order of the definition.
#
# Usage: cmake -DIDL=<file.thrift> -DOUTPUT=<name>_fields.h -DTYPES=<name>_types.h -P KorvoRecordFields.cmake
foreach(variable IDL OUTPUT TYPES)
    if(NOT DEFINED ${variable})
        message(FATAL_ERROR "${variable} is not set")
    endif()
endforeach()
file(STRINGS ${IDL} lines)
set(namespace "")
set(record "")
set(body "")
set(field_names "")
set(nsdecl "Korvo::Common::Serialization::Thrift::Fields")
foreach(line IN LISTS lines)
    string(REGEX REPLACE " *//.*$" "" line "${line}")
    if(line MATCHES "^namespace cpp ([A-Za-z0-9_.]+)")
        string(REPLACE "." "::" namespace "${CMAKE_MATCH_1}")
    elseif(line MATCHES "^struct ([A-Za-z0-9_]+)")
        set(record "::${namespace}::${CMAKE_MATCH_1}")
        set(field_names "")
        string(APPEND body "template <>\nstruct RecordFields<${record}> {\n    using R = ${record};\n")
    elseif(line MATCHES "^}" AND NOT record STREQUAL "")
        list(JOIN field_names ", " joined)
        string(APPEND body "    using List = std::tuple<${joined}>;\n};\n\n")
        set(record "")
    elseif(NOT record STREQUAL "" AND line MATCHES "^ *[0-9]+: *(required |optional )?.*[^ ] +([A-Za-z_][A-Za-z0-9_]*)( *=[^,;]*)?[,;]? *$")
        set(name ${CMAKE_MATCH_2})
        if(CMAKE_MATCH_1 STREQUAL "required ")
            set(presence Required)
            set(isset "static constexpr bool IsSet(const R&) { return true; }\n        static void MarkSet(R&, bool) {}")
        else()
            if(CMAKE_MATCH_1 STREQUAL "optional ")
                set(presence Optional)
            else()
                set(presence Default)
            endif()
            set(isset "static bool IsSet(const R& r) { return r.__isset.${name}; }\n        static void MarkSet(R& r, bool set) { r.__isset.${name} = set; }")
        endif()
        string(APPEND body
"    struct f_${name} {
        using Type = decltype(R::${name});
        static constexpr const char* name = \"${name}\";
        static constexpr Presence presence = Presence::${presence};
        static Type& Get(R& r) { return r.${name}; }
        static const Type& Get(const R& r) { return r.${name}; }
        ${isset}
    };
")
        list(APPEND field_names f_${name})
    elseif(NOT record STREQUAL "" AND line MATCHES "^ *[0-9]+:")
        message(FATAL_ERROR "${IDL}: a field of an unknown form: ${line}")
    endif()
endforeach()
get_filename_component(types_name ${TYPES} NAME)
file(WRITE ${OUTPUT}.tmp "// Generated from ${IDL} by KorvoRecordFields.cmake; do not edit.
#pragma once

#include <tuple>

#include <Korvo/Common/Serialization/Thrift/RecordFields.h>

#include \"${types_name}\"

namespace ${nsdecl} {

${body}}  // namespace ${nsdecl}
")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.tmp)
