# Fails when a layer reaches the wrong way (cmake -D ROOT=<source tree> -P CheckLayers.cmake):
# the Common layers (headers and sources) include nothing of Plexis; the simulator and the programs
# include no private header of the library (a quoted include names a file beside the includer) and
# add no folder of src/ to their include paths.
set(problems)

file(GLOB_RECURSE common_files ${ROOT}/include/Korvo/Common/* ${ROOT}/src/serialization/*)
foreach(path IN LISTS common_files)
    file(STRINGS ${path} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"]Korvo/Plexis/")
    foreach(line IN LISTS lines)
        list(APPEND problems "${path}: ${line}")
    endforeach()
endforeach()

file(GLOB_RECURSE program_files ${ROOT}/simulator/*.h ${ROOT}/simulator/*.cpp ${ROOT}/apps/*.h
    ${ROOT}/apps/*.cpp)
foreach(path IN LISTS program_files)
    get_filename_component(folder ${path} DIRECTORY)
    file(STRINGS ${path} lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^[^\"]*\"([^\"]*)\".*" "\\1" included "${line}")
        if(included MATCHES "/" OR NOT EXISTS ${folder}/${included})
            list(APPEND problems "${path}: ${line}")
        endif()
    endforeach()
endforeach()

foreach(list_file ${ROOT}/simulator/CMakeLists.txt ${ROOT}/apps/CMakeLists.txt)
    file(STRINGS ${list_file} lines REGEX "PROJECT_SOURCE_DIR}/src|\\.\\./src")
    foreach(line IN LISTS lines)
        list(APPEND problems "${list_file}: ${line}")
    endforeach()
endforeach()

if(problems)
    list(JOIN problems "\n  " text)
    message(FATAL_ERROR "Layers reach the wrong way:\n  ${text}")
endif()
