# Installation and Debian packages. Another project uses the installed library with
#   find_package(KorvoTesselClient REQUIRED)
#   target_link_libraries(app PRIVATE Korvo::TesselClient)
# or with pkg-config: pkg-config --cflags --libs korvo-tessel-client
#
# Three install components, one Debian package each:
#   runtime      the shared library (libkorvo-tessel-client<SOVERSION>)
#   development  headers, the link-time symlink, the CMake package, the pkg-config file and the
#                simulator library for tests (libkorvo-tessel-client-dev)
#   tools        tessel and tessel-sim (korvo-tessel-tools)
#   python       the Python package tessel, in Debian's dist-packages (python3-tessel)

include(CMakePackageConfigHelpers)

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)

set(KORVO_CMAKE_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/KorvoTesselClient")

install(EXPORT KorvoTesselClientTargets
    NAMESPACE Korvo::
    DESTINATION ${KORVO_CMAKE_INSTALL_DIR}
    COMPONENT development)

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/KorvoTesselClientConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/KorvoTesselClientConfig.cmake"
    INSTALL_DESTINATION ${KORVO_CMAKE_INSTALL_DIR})

write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/KorvoTesselClientConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)

install(FILES
    "${PROJECT_BINARY_DIR}/KorvoTesselClientConfig.cmake"
    "${PROJECT_BINARY_DIR}/KorvoTesselClientConfigVersion.cmake"
    DESTINATION ${KORVO_CMAKE_INSTALL_DIR}
    COMPONENT development)

# `cmake --install --strip` (and so the packages) strips programs and shared libraries; static
# libraries keep their debug information unless told, which would make the development package
# ten times its size.
set(korvo_installed_archives)
if(TARGET korvo_simulator_library)
    list(APPEND korvo_installed_archives korvo_simulator_library)
endif()
if(NOT BUILD_SHARED_LIBS)
    list(APPEND korvo_installed_archives korvo_tessel_client)
endif()
foreach(archive IN LISTS korvo_installed_archives)
    install(CODE "
        if(CMAKE_INSTALL_DO_STRIP)
            execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-debug
                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:${archive}>\"
                COMMAND_ERROR_IS_FATAL ANY)
        endif()"
        COMPONENT development)
endforeach()

# The pkg-config file finds its prefix from its own place, so the installed tree may move.
file(RELATIVE_PATH KORVO_PC_PREFIX_FROM_PCFILEDIR
    "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" KORVO_PC_PREFIX_FROM_PCFILEDIR "${KORVO_PC_PREFIX_FROM_PCFILEDIR}")
if(BUILD_SHARED_LIBS)
    set(KORVO_PC_REQUIRES_PRIVATE "")
else()
    # A static library brings its own dependencies to the application's link.
    set(KORVO_PC_REQUIRES_PRIVATE "Requires.private: libzmq >= 4.3")
endif()
configure_file("${PROJECT_SOURCE_DIR}/cmake/korvo-tessel-client.pc.in"
    "${PROJECT_BINARY_DIR}/korvo-tessel-client.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/korvo-tessel-client.pc"
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)

# Debian packages: `cmake --build --preset package --target package` (scripts/bootstrap.sh package).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvo-tessel-client)
set(CPACK_PACKAGE_VENDOR Korvo)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_CONTACT "Korvo Tessel client maintainers <tessel-client@korvo.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(KORVO_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET korvo_python)
    list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
# Depends on Debian's own libraries come from dpkg-shlibdeps; the packages of this project depend
# on each other at the exact version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The tools need the client library, which no installed package holds yet: dpkg-shlibdeps finds it
# in the build tree and leaves that dependency to the component's own (exact version).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libkorvo-tessel-client${KORVO_SOVERSION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Client library of the Tessel replay server\n The shared library that applications link to drive a Tessel replay server's channels,\n read and change its data and receive its notifications.")
# A shlibs file, so that packages built against this one get their Depends from dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkorvo-tessel-client-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
# Headers and a static library: nothing for dpkg-shlibdeps, which would only look at every file.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
# What the headers and the CMake package need: Thrift's headers (the public headers include them)
# and the Boost headers that Thrift's own include, which Debian's libthrift-dev does not bring,
# ZeroMQ (the simulator library links it) and pkg-config (the CMake package finds both with it).
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libthrift-dev (>= 0.17), libboost-dev, libzmq3-dev (>= 4.3), pkgconf | pkg-config")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Client library of the Tessel replay server: development files\n Headers, the CMake package KorvoTesselClient, the pkg-config file korvo-tessel-client and\n the simulator library Korvo::Simulator for tests.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME korvo-tessel-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "Tessel replay server tools: tessel and tessel-sim\n tessel drives a replay server from a shell, JSON in and out; tessel-sim simulates one.")

# The module holds the client and the simulator (static layers), so it needs none of the other
# packages: its library Depends come from dpkg-shlibdeps, the interpreter's from the version the
# module was built for.
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tessel)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${KORVO_PYTHON_DEB_DEPENDS}")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "Tessel replay server client for Python (asyncio)\n The Python package tessel: connections, notifications, the mirror, the simulator and its\n pytest fixture, with type stubs.")

include(CPack)
