#include <ZeltoSandbox/JSONBody.h>

namespace zelto::sandbox {

Result<JSONValue, BodyProblem> jsonObject(const SandboxRequest& request, std::uint64_t limit) {
    if (request.contentType != "application/json") {
        return failure(BodyProblem{415, "the Content-Type is not application/json"});
    }
    const auto body = SpoolRange::all(request.body);
    if (body.size > limit) {
        return failure(BodyProblem{413, "the body is larger than " + std::to_string(limit) + " bytes"});
    }
    auto json = JSONValue::parse(body.text(static_cast<std::size_t>(limit)));
    if (!json) {
        return failure(BodyProblem{400, "the body is not JSON: " + json.error().message()});
    }
    if (!json->asObject()) {
        return failure(BodyProblem{400, "the body is not a JSON object"});
    }
    return *std::move(json);
}

const std::string* textMember(const JSONValue& object, std::string_view key) {
    const auto* member = object.find(key);
    return member ? member->asString() : nullptr;
}

} // namespace zelto::sandbox
