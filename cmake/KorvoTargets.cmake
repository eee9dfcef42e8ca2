# Helpers that give every target of the project the same compile settings.

# Installed programs find the installed library beside them when the prefix is not one the dynamic
# loader searches anyway (a Debian package installs into /usr and needs no run path).
if(NOT "${CMAKE_INSTALL_FULL_LIBDIR}" IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    file(RELATIVE_PATH korvo_lib_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set(CMAKE_INSTALL_RPATH "$ORIGIN/${korvo_lib_from_bin}")
endif()

# Warnings and sanitizers for one target (library, test, tool or example).
function(korvo_target_settings target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    if(KORVO_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(KORVO_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${KORVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${KORVO_SANITIZE})
    endif()
endfunction()

# korvo_add_library(<target> OUTPUT_NAME <file name> EXPORT_NAME <name>
#                   SOURCES ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...])
# Adds one layer of the library: a static archive of position-independent objects, with the public
# headers of include/ and the private headers of src/. The layers are not installed: the project's
# own tests, fuzzers and benchmarks link them (and reach their internals); applications link the
# one library made of all of them (korvo_add_client_library).
function(korvo_add_library target)
    cmake_parse_arguments(ARG "" "OUTPUT_NAME;EXPORT_NAME" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
    add_library(${target} STATIC ${ARG_SOURCES})
    # In a folder of their own: the client library's static form bears the client layer's name.
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/layers
        POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${target}
        PUBLIC
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        PRIVATE
            ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
    korvo_target_settings(${target})
endfunction()

# korvo_add_client_library(<target> OUTPUT_NAME <file name> EXPORT_NAME <name>
#                          LAYERS ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...])
# The library applications link, made of the objects of every layer: shared unless
# BUILD_SHARED_LIBS is off, versioned from the project version, installed and exported as
# Korvo::<EXPORT_NAME>. A shared build exports only the public API: a version script, written just
# before each link from the objects themselves (cmake/KorvoExportMap.cmake), keeps the symbols of
# the Korvo namespaces global and makes everything else local, internal namespaces included.
function(korvo_add_client_library target)
    cmake_parse_arguments(ARG "" "OUTPUT_NAME;EXPORT_NAME" "LAYERS;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
    set(objects)
    foreach(layer IN LISTS ARG_LAYERS)
        list(APPEND objects $<TARGET_OBJECTS:${layer}>)
    endforeach()
    add_library(${target} ${objects})
    add_library(Korvo::${ARG_EXPORT_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        EXPORT_NAME ${ARG_EXPORT_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${KORVO_SOVERSION}
        POSITION_INDEPENDENT_CODE ON
        LINKER_LANGUAGE CXX)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
    if(KORVO_SANITIZE)
        target_link_options(${target} PRIVATE -fsanitize=${KORVO_SANITIZE})
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
        set(map ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
        find_program(KORVO_CXXFILT NAMES c++filt llvm-cxxfilt REQUIRED)
        add_custom_command(TARGET ${target} PRE_LINK
            COMMAND ${CMAKE_COMMAND}
                -D "OBJECTS=${objects}"
                -D NM=${CMAKE_NM}
                -D CXXFILT=${KORVO_CXXFILT}
                -D OUTPUT=${map}
                -P ${PROJECT_SOURCE_DIR}/cmake/KorvoExportMap.cmake
            COMMENT "Listing the exported symbols of ${target}"
            VERBATIM)
        target_link_options(${target} PRIVATE LINKER:--version-script=${map})
        if(NOT KORVO_SANITIZE)
            # Every library it needs is named at link time, so a consumer never has to add one.
            target_link_options(${target} PRIVATE LINKER:--no-undefined)
        endif()
    endif()
    install(TARGETS ${target}
        EXPORT KorvoTesselClientTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endfunction()

# korvo_add_test(<target> SOURCES ... [DEPS ...] [LABELS ...] [SERIAL])
# One GoogleTest executable; each of its tests becomes a CTest test with a generous time-out, so
# that a hang fails the run instead of stalling it. SERIAL tests run alone even when CTest runs
# others in parallel: they load the machine or measure its CPU time and memory.
function(korvo_add_test target)
    cmake_parse_arguments(ARG "SERIAL" "" "SOURCES;DEPS;LABELS" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE ${ARG_DEPS} GTest::gmock GTest::gtest_main)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src)
    korvo_target_settings(${target})
    gtest_discover_tests(${target}
        DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT 300 LABELS "${ARG_LABELS}" RUN_SERIAL ${ARG_SERIAL})
endfunction()
