# Generation of the wire records from interface definitions, at build time.

find_program(THRIFT_EXECUTABLE thrift REQUIRED)

# korvo_thrift_generate(<sources-var> OUTPUT_DIR <dir> FILES <file.thrift>... [INCLUDE_DIRS <dir>...])
#
# Runs `thrift --gen cpp:templates,moveable_types` on each file into OUTPUT_DIR and stores the
# generated .cpp files in <sources-var>; the headers (<name>_types.h and .tcc) sit beside them.
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
            ${ARG_OUTPUT_DIR}/${name}_types.cpp)
        add_custom_command(
            OUTPUT ${outputs}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${ARG_OUTPUT_DIR}
            COMMAND ${THRIFT_EXECUTABLE} --gen cpp:templates,moveable_types ${include_flags}
                    -out ${ARG_OUTPUT_DIR} ${absolute}
            DEPENDS ${all_files}
            COMMENT "Generating C++ records from ${name}.thrift"
            VERBATIM)
        list(APPEND sources ${ARG_OUTPUT_DIR}/${name}_types.cpp)
    endforeach()
    set(${var} ${sources} PARENT_SCOPE)
endfunction()
