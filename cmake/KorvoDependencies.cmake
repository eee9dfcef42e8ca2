# Third-party dependencies, all from Debian's packages (the set-up script installs them).

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(THRIFT REQUIRED IMPORTED_TARGET GLOBAL thrift>=0.17)
# ZeroMQ for the messaging layer; 4.3 brings heartbeats and the handshake events of the monitor.
pkg_check_modules(ZMQ REQUIRED IMPORTED_TARGET GLOBAL libzmq>=4.3)
# cppzmq, its header-only C++ wrapper, used by the library's sources and tests only: no public
# header includes it, so applications need neither it nor the libzmq headers.
find_path(CPPZMQ_INCLUDE_DIR zmq.hpp HINTS ${ZMQ_INCLUDE_DIRS} REQUIRED)
# nlohmann-json, header-only, for the JSON layer's sources; no public header includes it.
find_path(NLOHMANN_JSON_INCLUDE_DIR nlohmann/json.hpp REQUIRED)

if(KORVO_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()

if(KORVO_BUILD_TOOLS)
    # CLI11, header-only, parses the programs' command lines.
    find_path(CLI11_INCLUDE_DIR CLI/CLI.hpp REQUIRED)
endif()
