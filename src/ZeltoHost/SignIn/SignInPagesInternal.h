#pragma once

// For sources only.

#include <string>

namespace zelto {

// The listener's responses, head and body. They are constant: nothing from outside is shown, and the content
// security policy allows no other content.

// For the expected response of the service.
const std::string& takenResponse();
// For every other request.
const std::string& refusedResponse();
// For a service's response after "#", which a browser does not send: the page posts it, and removes it from
// the history.
const std::string& fragmentResponse();

} // namespace zelto
