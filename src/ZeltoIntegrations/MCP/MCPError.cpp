#include <ZeltoIntegrations/MCP/MCPError.h>

namespace zelto {

namespace {

std::string_view nameOf(URLErrorCode code) {
    switch (code) {
    case URLErrorCode::cancelled:
        return "cancelled";
    case URLErrorCode::timedOut:
        return "timedOut";
    case URLErrorCode::responseTooLarge:
        return "responseTooLarge";
    case URLErrorCode::invalidRequest:
    case URLErrorCode::cannotFindHost:
    case URLErrorCode::cannotConnect:
    case URLErrorCode::secureConnection:
    case URLErrorCode::connectionLost:
    case URLErrorCode::bodyUnreadable:
    case URLErrorCode::badResponse:
        break;
    }
    return "connectionError";
}

struct Namer {
    std::string_view operator()(const MCPClientError& error) const { return error.caseName(); }

    std::string_view operator()(const URLError& error) const { return nameOf(error.code); }

    std::string_view operator()(const DecodingError&) const { return "decodingError"; }

    std::string_view operator()(const EncodingError&) const { return "encodingError"; }

    std::string_view operator()(const MCPAuthorizationError&) const { return "authorizationError"; }
};

struct Describer {
    std::string operator()(const MCPClientError& error) const { return error.sentence(); }

    std::string operator()(const URLError& error) const { return error.message; }

    std::string operator()(const DecodingError& error) const {
        return "The server's response is not what it should be: " + error.message();
    }

    std::string operator()(const EncodingError& error) const {
        return "What was to be sent has no JSON: " + error.message();
    }

    std::string operator()(const MCPAuthorizationError& error) const { return error.message; }
};

} // namespace

std::string_view MCPError::name() const {
    return std::visit(Namer(), value);
}

std::string MCPError::sentence() const {
    auto text = std::visit(Describer(), value);
    if (!text.ends_with('.')) {
        text += '.';
    }
    return text;
}

} // namespace zelto
