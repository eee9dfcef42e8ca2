# Helpers that give every target of the project the same compile settings.

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
# Adds one layer of the library: an installable library exported as Korvo::<EXPORT_NAME>, with the
# public headers of include/ and the private headers of src/.
function(korvo_add_library target)
    cmake_parse_arguments(ARG "" "OUTPUT_NAME;EXPORT_NAME" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
    add_library(${target} ${ARG_SOURCES})
    add_library(Korvo::${ARG_EXPORT_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        EXPORT_NAME ${ARG_EXPORT_NAME}
        POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${target}
        PUBLIC
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE
            ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
    korvo_target_settings(${target})
    install(TARGETS ${target}
        EXPORT KorvoTesselClientTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# korvo_add_test(<target> SOURCES ... [DEPS ...] [LABELS ...])
# One GoogleTest executable; each of its tests becomes a CTest test with a generous time-out, so
# that a hang fails the run instead of stalling it.
function(korvo_add_test target)
    cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;LABELS" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE ${ARG_DEPS} GTest::gmock GTest::gtest_main)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src)
    korvo_target_settings(${target})
    gtest_discover_tests(${target}
        DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT 300 LABELS "${ARG_LABELS}")
endfunction()
