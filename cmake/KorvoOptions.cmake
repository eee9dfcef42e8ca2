# Options of the build. Tests and examples default on only when this is the top-level project,
# so that a parent project that adds us with add_subdirectory gets just the library.

option(KORVO_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(KORVO_BUILD_TOOLS "Build the simulator and the command-line programs" ${PROJECT_IS_TOP_LEVEL})
option(KORVO_BUILD_EXAMPLES "Build the example programs" ${PROJECT_IS_TOP_LEVEL})
# Benchmarks are for release builds of this project itself (the release preset turns them on);
# they are never built for a parent project.
option(KORVO_BUILD_BENCHMARKS "Build the benchmarks (top-level builds only)" OFF)
option(KORVO_BUILD_FUZZERS "Build the libFuzzer targets of fuzz/ (clang only)" OFF)
option(KORVO_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
set(KORVO_SANITIZE "" CACHE STRING
    "Sanitizers to build with: empty, 'address,undefined', 'thread' or, for the fuzzers, 'fuzzer-no-link,address,undefined'")
set_property(CACHE KORVO_SANITIZE PROPERTY STRINGS "" "address,undefined" "thread"
    "fuzzer-no-link,address,undefined")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()
