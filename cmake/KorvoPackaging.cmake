# Installation: headers, libraries and a CMake package so that another project can write
#   find_package(KorvoTesselClient REQUIRED)
#   target_link_libraries(app PRIVATE Korvo::TesselClient)

include(CMakePackageConfigHelpers)

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(KORVO_CMAKE_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/KorvoTesselClient")

install(EXPORT KorvoTesselClientTargets
    NAMESPACE Korvo::
    DESTINATION ${KORVO_CMAKE_INSTALL_DIR})

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
    DESTINATION ${KORVO_CMAKE_INSTALL_DIR})
