#pragma once

#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// What is shown of a request. Credentials become "***": the values of fields with a secret's name, and
// whatever secret the sandbox has issued itself.
std::vector<HTTPHeaderField> maskedFields(const std::vector<HTTPHeaderField>& fields);
std::string maskedTarget(std::string_view target);

// The beginning of a text, a form with its values, the parts of a multipart form; empty for other bytes.
std::string shownBody(const SandboxRequest& request);

} // namespace zelto::sandbox
