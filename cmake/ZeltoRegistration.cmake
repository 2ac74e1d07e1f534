# The clients that are registered at the services, compiled into the program (see make-registration).

set(ZELTO_CLIENTS_FILE "" CACHE FILEPATH "JSON file of the registered clients; without it there are placeholders")

function(zelto_registration target)
  zelto_generated(${target} Accounts/RegistrationInternal.h make-registration "Taking in the registered clients"
                  ${ZELTO_CLIENTS_FILE})
endfunction()
