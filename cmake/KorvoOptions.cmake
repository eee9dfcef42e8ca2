# Options of the build. Tests and examples default on only when this is the top-level project,
# so that a parent project that adds us with add_subdirectory gets just the library.

option(KORVO_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(KORVO_BUILD_TOOLS "Build the simulator and the command-line programs" ${PROJECT_IS_TOP_LEVEL})
option(KORVO_BUILD_EXAMPLES "Build the example programs" ${PROJECT_IS_TOP_LEVEL})
# Benchmarks are for release builds of this project itself (the release preset turns them on);
# they are never built for a parent project.
option(KORVO_BUILD_BENCHMARKS "Build the benchmarks (top-level builds only)" OFF)
# The Python package needs the simulator (KORVO_BUILD_TOOLS), pybind11 and the Python headers; it is
# skipped with a note when they are missing.
option(KORVO_BUILD_PYTHON "Build the Python package tessel" ${PROJECT_IS_TOP_LEVEL})
option(KORVO_BUILD_FUZZERS "Build the libFuzzer targets of fuzz/ (clang only)" OFF)
# The client library is shared unless BUILD_SHARED_LIBS says otherwise. A parent project that adds
# this one with add_subdirectory keeps its own choice (static when it has made none).
if(PROJECT_IS_TOP_LEVEL)
    option(BUILD_SHARED_LIBS "Build the client library as a shared library" ON)
endif()
option(KORVO_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
set(KORVO_SANITIZE "" CACHE STRING
    "Sanitizers to build with: empty, 'address,undefined', 'thread' or, for the fuzzers, 'fuzzer-no-link,address,undefined'")
set_property(CACHE KORVO_SANITIZE PROPERTY STRINGS "" "address,undefined" "thread"
    "fuzzer-no-link,address,undefined")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

# The shared library's ABI version. Before 1.0 every minor version may change the ABI, so the
# SONAME carries major and minor (libKorvo.Plexis.Tessel.Client.so.0.1); from 1.0 on, the major.
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(KORVO_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
else()
    set(KORVO_SOVERSION ${PROJECT_VERSION_MAJOR})
endif()
