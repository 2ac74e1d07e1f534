#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// Why a body is not accepted: 413 for one that is too large, 415 for another media type, else 400.
struct BodyProblem {
    int status = 400;
    std::string text;
};

// The request's body, which has to be one JSON object of `limit` bytes at most, sent as application/json.
Result<JSONValue, BodyProblem> jsonObject(const SandboxRequest& request, std::uint64_t limit);

// A member that has to be a text; null if it is missing or of another kind.
const std::string* textMember(const JSONValue& object, std::string_view key);

} // namespace zelto::sandbox
