# How every target is built: language level, warnings, sanitizers, and the three functions that declare targets.

option(ZELTO_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(ZELTO_BENCH "Build the benchmarks" OFF)
option(ZELTO_FUZZ "Build the fuzz targets (Clang)" OFF)
set(ZELTO_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_VISIBILITY_PRESET default)

add_library(zelto_options INTERFACE)
target_compile_options(zelto_options INTERFACE -pthread -Wall -Wextra -Wpedantic -Werror -Wnon-virtual-dtor
                                               -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 reports false positives from inlined library code at -O2 and above.
  target_compile_options(zelto_options INTERFACE -Wshadow=local -Wno-maybe-uninitialized -Wno-stringop-overflow -Wno-stringop-overread
                                                 -Wno-restrict -Wno-array-bounds -Wno-dangling-pointer
                                                 -Wno-free-nonheap-object)
else()
  target_compile_options(zelto_options INTERFACE -Wshadow)
endif()
if(ZELTO_SANITIZE)
  target_compile_options(zelto_options INTERFACE -fsanitize=${ZELTO_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=all)
  target_link_options(zelto_options INTERFACE -fsanitize=${ZELTO_SANITIZE})
  if(ZELTO_SANITIZE MATCHES "thread")
    # The sanitizer does not model fences; the warning is all there is to it.
    target_compile_options(zelto_options INTERFACE -Wno-tsan)
  endif()
endif()

find_program(ZELTO_CCACHE ccache)
if(ZELTO_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ZELTO_CCACHE}")
endif()
find_program(ZELTO_MOLD mold)
if(ZELTO_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

# What most sources include; compiled once for all libraries and once for all tests.
set(ZELTO_STANDARD_HEADERS <algorithm> <chrono> <expected> <filesystem> <functional> <map> <memory> <optional>
                           <string> <string_view> <utility> <variant> <vector>)

# Owns the precompiled headers; a target of its own, since they fit only targets that define at least its macros.
file(WRITE "${CMAKE_BINARY_DIR}/zelto_headers.cpp" "")
add_library(zelto_headers STATIC "${CMAKE_BINARY_DIR}/zelto_headers.cpp")
target_link_libraries(zelto_headers PRIVATE zelto_options)
target_precompile_headers(zelto_headers PRIVATE ${ZELTO_STANDARD_HEADERS})

# zelto_library(NAME FOLDER src-folder [EXCLUDE regex] [PUBLIC libs...] [PRIVATE libs...])
# A static library of all sources below a folder of src/. Adding a file needs no edit here.
function(zelto_library name)
  cmake_parse_arguments(ARG "" "FOLDER;EXCLUDE" "PUBLIC;PRIVATE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/${ARG_FOLDER}/*.cpp")
  if(ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "${ARG_EXCLUDE}")
  endif()
  if(NOT sources)
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${name} INTERFACE ${ARG_PUBLIC})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>" "$<INSTALL_INTERFACE:include>")
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE zelto_options ${ARG_PRIVATE})
  # Its threads go on while a process that calls exit() tears down what has a destructor.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:Clang>:-Wexit-time-destructors>)
  target_precompile_headers(${name} REUSE_FROM zelto_headers)
endfunction()

# zelto_tests(NAME FOLDER tests-folder [EXCLUDE regex] LIBRARIES libs...): the program <NAME>Tests of all sources below
# a folder of tests/.
function(zelto_tests name)
  cmake_parse_arguments(ARG "" "FOLDER;EXCLUDE" "LIBRARIES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/${ARG_FOLDER}/*.cpp")
  if(ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "${ARG_EXCLUDE}")
  endif()
  if(NOT sources)
    return()
  endif()
  add_executable(${name}Tests ${sources})
  target_include_directories(${name}Tests PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name}Tests PRIVATE zelto_options zelto_test_main ${ARG_LIBRARIES})
  # What a test itself does costs less time than to optimise it.
  target_compile_options(${name}Tests PRIVATE -O0)
  target_precompile_headers(${name}Tests REUSE_FROM zelto_test_main)
  add_test(NAME ${name} COMMAND ${name}Tests)
endfunction()

# zelto_programs(FOLDER libs...): one program a source file of bench/ or fuzz/, named after the file.
function(zelto_programs folder)
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
  foreach(source IN LISTS sources)
    get_filename_component(name "${source}" NAME_WE)
    add_executable(${name} "${source}")
    target_link_libraries(${name} PRIVATE zelto_options ${ARGN})
  endforeach()
endfunction()
