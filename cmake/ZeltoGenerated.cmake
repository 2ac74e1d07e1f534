# Sources that the build writes from other files, each by a program of this folder.

find_program(ZELTO_PYTHON NAMES /usr/bin/python3 python3 REQUIRED)

# zelto_generated(TARGET FILE PROGRAM COMMENT inputs...): makes "PROGRAM FILE inputs..." write a source of a target,
# which is included as <TARGET/FILE> where it is a header.
function(zelto_generated target file program comment)
  set(folder "${CMAKE_BINARY_DIR}/generated")
  set(output "${folder}/${target}/${file}")
  add_custom_command(OUTPUT "${output}"
                     COMMAND "${ZELTO_PYTHON}" "${PROJECT_SOURCE_DIR}/cmake/${program}" "${output}" ${ARGN}
                     DEPENDS "${PROJECT_SOURCE_DIR}/cmake/${program}" ${ARGN}
                     COMMENT "${comment}" VERBATIM)
  target_sources(${target} PRIVATE "${output}")
  target_include_directories(${target} PRIVATE "${folder}")
endfunction()
