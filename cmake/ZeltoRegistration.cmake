# The clients that are registered at the services, compiled into the program (see make-registration).

set(ZELTO_CLIENTS_FILE "" CACHE FILEPATH "JSON file of the registered clients; without it there are placeholders")

function(zelto_registration target)
  zelto_generated(${target} Accounts/RegistrationInternal.h make-registration "Taking in the registered clients"
                  ${ZELTO_CLIENTS_FILE})
  # What whoever includes Secrets.h needs must be there before anything is compiled.
  set(program "${PROJECT_SOURCE_DIR}/cmake/make-registration")
  set(folder "${CMAKE_BINARY_DIR}/generated")
  set(accounts "${folder}/${target}/Accounts")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${program}")
  execute_process(COMMAND "${ZELTO_PYTHON}" "${program}" --getters "${accounts}/SecretsGetters.inc"
                          "${accounts}/SecretsGettersInternal.inc"
                  COMMAND_ERROR_IS_FATAL ANY)
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${folder}>")
endfunction()
