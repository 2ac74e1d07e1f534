#pragma once

#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/Completion.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/JSON/JSONError.h>
#include <Platform/Result.h>

#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace zelto {

// The host's provider has no credentials.
struct MCPAuthorizationError {
    std::string message; // one sentence, for people; contains no secret

    bool operator==(const MCPAuthorizationError&) const = default;
};

// How an operation of the MCP client fails: by an error of the protocol, by the connection, by text that is
// not JSON or not of the expected form, by a value that has no JSON, or by the host's provider.
class MCPError {
  public:
    using Value = std::variant<MCPClientError, URLError, DecodingError, EncodingError, MCPAuthorizationError>;

    Value value;

    MCPError(MCPClientError error) : value(std::move(error)) {}

    MCPError(URLError error) : value(std::move(error)) {}

    MCPError(DecodingError error) : value(std::move(error)) {}

    MCPError(EncodingError error) : value(std::move(error)) {}

    MCPError(MCPAuthorizationError error) : value(std::move(error)) {}

    // Null if it is another kind of error.
    const MCPClientError* clientError() const { return std::get_if<MCPClientError>(&value); }

    // For programs: the case of MCPClientError ("sessionExpired"), or "cancelled", "timedOut",
    // "responseTooLarge", "connectionError" for all else of the connection, "decodingError", "encodingError"
    // or "authorizationError".
    std::string_view name() const;

    // For people: what happened, with a period at its end.
    std::string sentence() const;

    // Whether it is this case of MCPClientError.
    template <class Case> bool is() const {
        const auto* error = clientError();
        return error && error->is<Case>();
    }

    bool operator==(const MCPError&) const = default;
};

template <class T> using MCPResult = Result<T, MCPError>;
template <class T> using MCPCompletion = Completion<T, MCPError>;

} // namespace zelto
