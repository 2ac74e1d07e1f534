// What the sandbox receives over a socket: whatever the bytes, the request is parsed or refused, the parts of
// a form lie within the body, and what is shown of it is UTF-8 without credentials.

#include "Require.h"

#include <ZeltoSandbox/Addressing.h>
#include <ZeltoSandbox/HTTP/RequestParser.h>
#include <ZeltoSandbox/Masking.h>
#include <ZeltoSandbox/OAuth/OAuth1Signature.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>

#include <Platform/UTF8.h>

#include <cstdint>

using namespace zelto;
using namespace zelto::sandbox;

namespace {

constexpr std::uint16_t port = 8377;

void checkShown(const std::string& text) {
    require(isValidUTF8(text), "what is shown is not UTF-8", text);
    require(text.find(secretPrefix) == std::string::npos, "a secret is shown", text);
}

void checkRequest(const SandboxRequest& request) {
    std::uint64_t total = 0;
    for (const auto& part : request.parts) {
        require(part.content.offset + part.content.size <= request.body->size(), "a part is not in the body",
                part.name);
        total += part.content.size;
    }
    require(total <= request.body->size(), "the parts are larger than the body", request.path);
    checkShown(maskedTarget(request.head.target));
    checkShown(shownBody(request));
    for (const auto& field : maskedFields(request.head.fields)) {
        checkShown(field.value);
    }
    if (const auto* header = request.head.field("Authorization")) {
        if (const auto parameters = oauth1HeaderParameters(*header)) {
            oauth1Signature(request.method, request.path, *parameters, "a", "b");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    RequestParser parser(4096, 1 << 20);
    for (std::size_t taken = 1; taken > 0 && !parser.headIsWhole() && !parser.problem();) {
        taken = parser.putHead(bytes);
        bytes.remove_prefix(taken);
    }
    if (!parser.headIsWhole() || parser.problem()) {
        return 0;
    }
    SpoolWriter writer(std::make_shared<SpoolSpace>(1 << 20));
    for (std::size_t taken = 1; taken > 0 && !parser.isWhole() && !parser.problem();) {
        taken = parser.putBody(bytes, writer);
        bytes.remove_prefix(taken);
    }
    const auto* host = parser.head().field("Host");
    auto address = host && parser.head().target.starts_with('/')
                       ? addressOf(*host, parser.head().target, port)
                       : std::nullopt;
    if (parser.isWhole() && !parser.problem() && address && !address->isOwn()) {
        if (const auto request = requestOf(std::move(parser.head()), std::move(*address), writer.finish())) {
            checkRequest(*request);
        }
    }
    return 0;
}
