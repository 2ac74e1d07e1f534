#include "mcp/McpFailures.h"

#include <Platform/HTTP/SendingErrors.h>
#include <Platform/UTF8.h>

namespace zelto::cli {

namespace {

using Error = MCPClientError;

// What comes from a header may be no text.
JSONValue textOrNull(const std::optional<std::string>& text) {
    return text ? JSONValue(repairedUTF8(*text)) : JSONValue();
}

// The payload of a case. That of a failing tool is not here: it may be large.
struct Payload {
    JSONObject operator()(const Error::InvalidJSONRPCVersion& error) const {
        return {{"version", textOrNull(error.version)}};
    }

    JSONObject operator()(const Error::UnsupportedProtocolVersion& error) const {
        return {{"version", error.version}};
    }

    JSONObject operator()(const Error::JSONRPCFailure& error) const {
        JSONObject members{{"code", error.error.code}, {"message", error.error.message}};
        if (error.error.data) {
            members.set("data", *error.error.data);
        }
        return members;
    }

    JSONObject operator()(const Error::ToolCallFailed&) const { return {}; }

    JSONObject operator()(const Error::InvalidAuthorizationResourceMetadata& error) const {
        return {{"value", repairedUTF8(error.value)}};
    }

    JSONObject operator()(const Error::AuthorizationRequired& error) const {
        return {{"resourceMetadataURL", error.resourceMetadataURL.absoluteString()}};
    }

    JSONObject operator()(const Error::AuthorizationChallenge& error) const {
        return {{"header", textOrNull(error.header)}};
    }

    JSONObject operator()(const Error::UnexpectedHTTPStatus& error) const {
        return {{"status", error.status}};
    }

    JSONObject operator()(const Error::UnsupportedHTTPContentType& error) const {
        return {{"contentType", textOrNull(error.contentType)}};
    }

    JSONObject operator()(const Error::InvalidJSONRPCIdentifier&) const { return {}; }

    JSONObject operator()(const Error::MissingJSONRPCResult&) const { return {}; }

    JSONObject operator()(const Error::AuthorizationChallengeMissingResourceMetadata&) const { return {}; }

    JSONObject operator()(const Error::InvalidServerSentEventsUTF8&) const { return {}; }

    JSONObject operator()(const Error::InvalidHTTPResponse&) const { return {}; }

    JSONObject operator()(const Error::EndpointNotFound&) const { return {}; }

    JSONObject operator()(const Error::SessionExpired&) const { return {}; }

    JSONObject operator()(const Error::MissingJSONRPCResponse&) const { return {}; }
};

bool asksForToken(const MCPError& error) {
    return error.is<Error::AuthorizationRequired>() ||
           error.is<Error::AuthorizationChallengeMissingResourceMetadata>();
}

} // namespace

Failure failureOf(const MCPError& error) {
    Failure failure{.name = std::string(error.name()), .message = error.sentence()};
    if (const auto* urlError = std::get_if<URLError>(&error.value)) {
        failure.nothingWasSent = isBeforeSending(urlError->code);
    }
    if (asksForToken(error)) {
        failure.message += " Give a token by --header-stdin.";
        failure.next = NextCommand::againWith("--header-stdin");
    }
    if (const auto* clientError = error.clientError()) {
        failure.members = std::visit(Payload(), clientError->value);
    }
    return failure;
}

} // namespace zelto::cli
