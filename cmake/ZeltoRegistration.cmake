# The clients that are registered at the services, compiled into the program (see make-registration).

set(ZELTO_CLIENTS_FILE "" CACHE FILEPATH "JSON file of the registered clients; without it there are placeholders")
find_program(ZELTO_PYTHON NAMES /usr/bin/python3 python3 REQUIRED)

function(zelto_registration target)
  set(folder "${CMAKE_BINARY_DIR}/generated")
  set(header "${folder}/${target}/Accounts/RegistrationInternal.h")
  add_custom_command(OUTPUT "${header}"
                     COMMAND "${ZELTO_PYTHON}" "${PROJECT_SOURCE_DIR}/cmake/make-registration" "${header}"
                             ${ZELTO_CLIENTS_FILE}
                     DEPENDS "${PROJECT_SOURCE_DIR}/cmake/make-registration" ${ZELTO_CLIENTS_FILE}
                     COMMENT "Taking in the registered clients" VERBATIM)
  target_sources(${target} PRIVATE "${header}")
  target_include_directories(${target} PRIVATE "${folder}")
endfunction()
