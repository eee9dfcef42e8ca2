# Third-party dependencies, all from Debian's packages (the set-up script installs them).

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(THRIFT REQUIRED IMPORTED_TARGET GLOBAL thrift>=0.17)

if(KORVO_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
