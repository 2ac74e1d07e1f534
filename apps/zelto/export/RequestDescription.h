#pragma once

#include "base/Terminal.h"
#include "export/SentRequest.h"

#include <Platform/JSON/JSONValue.h>

#include <string>
#include <vector>

namespace zelto::cli {

// Requests as a dry run shows them, with "***" for secrets and for identifiers of clients.

// "requests" of a JSON document.
JSONValue described(const std::vector<SentRequest>& requests);

// Each request after its number: method, URL, headers, and the body, of which a text is shown whole up to a
// limit and a multipart form as the list of its parts.
std::string linesOf(const std::vector<SentRequest>& requests, const Terminal& terminal);

} // namespace zelto::cli
