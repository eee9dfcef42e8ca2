# Generation of the wire records from interface definitions, at build time.

find_program(THRIFT_EXECUTABLE thrift REQUIRED)
set(korvo_record_reading_script ${CMAKE_CURRENT_LIST_DIR}/KorvoRecordReading.cmake)
set(korvo_record_fields_script ${CMAKE_CURRENT_LIST_DIR}/KorvoRecordFields.cmake)

# korvo_thrift_generate(<sources-var> OUTPUT_DIR <dir> FILES <file.thrift>... [INCLUDE_DIRS <dir>...])
#
# Runs `thrift --gen cpp:templates,moveable_types` on each file into OUTPUT_DIR and stores the
# generated .cpp files in <sources-var>; the headers (<name>_types.h and .tcc) sit beside them.
# The readers of the .tcc are then routed through our reading helpers (KorvoRecordReading.cmake),
# and <name>_fields.h lists each record's fields for the converters (KorvoRecordFields.cmake).
# Each generated file depends on every file of the call (an edit of an included definition
# regenerates its includers), so editing a .thrift file rebuilds exactly what depends on it.
function(korvo_thrift_generate var)
    cmake_parse_arguments(ARG "" "OUTPUT_DIR" "FILES;INCLUDE_DIRS" ${ARGN})
    set(include_flags)
    foreach(dir IN LISTS ARG_INCLUDE_DIRS)
        list(APPEND include_flags -I ${dir})
    endforeach()
    set(all_files)
    foreach(file IN LISTS ARG_FILES)
        get_filename_component(absolute ${file} ABSOLUTE)
        list(APPEND all_files ${absolute})
    endforeach()
    set(sources)
    foreach(absolute IN LISTS all_files)
        get_filename_component(name ${absolute} NAME_WE)
        set(outputs
            ${ARG_OUTPUT_DIR}/${name}_types.h
            ${ARG_OUTPUT_DIR}/${name}_types.tcc
            ${ARG_OUTPUT_DIR}/${name}_types.cpp
            ${ARG_OUTPUT_DIR}/${name}_fields.h)
        add_custom_command(
            OUTPUT ${outputs}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${ARG_OUTPUT_DIR}
            COMMAND ${THRIFT_EXECUTABLE} --gen cpp:templates,moveable_types ${include_flags}
                    -out ${ARG_OUTPUT_DIR} ${absolute}
            COMMAND ${CMAKE_COMMAND} -DFILE=${ARG_OUTPUT_DIR}/${name}_types.tcc
                    -P ${korvo_record_reading_script}
            COMMAND ${CMAKE_COMMAND} -DIDL=${absolute} -DOUTPUT=${ARG_OUTPUT_DIR}/${name}_fields.h
                    -DTYPES=${name}_types.h -P ${korvo_record_fields_script}
            DEPENDS ${all_files} ${korvo_record_reading_script} ${korvo_record_fields_script}
            COMMENT "Generating C++ records from ${name}.thrift"
            VERBATIM)
        list(APPEND sources ${ARG_OUTPUT_DIR}/${name}_types.cpp)
    endforeach()
    set(${var} ${sources} PARENT_SCOPE)
endfunction()

# korvo_list_records(<output file>)
#
# Writes every struct of idl/, qualified by its namespace and separated by commas, into the output
# file: a list of types that a test or a fuzzer includes to cover every record. Editing a .thrift
# file re-runs this at the next build.
function(korvo_list_records output)
    file(GLOB idl_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/idl/*.thrift)
    set(records)
    foreach(idl IN LISTS idl_files)
        file(STRINGS ${idl} namespace_line REGEX "^namespace cpp ")
        string(REGEX REPLACE "^namespace cpp ([A-Za-z0-9_.]+).*" "\\1" namespace "${namespace_line}")
        string(REPLACE "." "::" namespace "${namespace}")
        file(STRINGS ${idl} struct_lines REGEX "^struct ")
        foreach(line IN LISTS struct_lines)
            string(REGEX REPLACE "^struct ([A-Za-z0-9_]+).*" "::\\1" record "${line}")
            list(APPEND records "::${namespace}${record}")
        endforeach()
    endforeach()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${idl_files})
    list(JOIN records ",\n" records)
    file(CONFIGURE OUTPUT ${output} CONTENT "${records}\n")
endfunction()
