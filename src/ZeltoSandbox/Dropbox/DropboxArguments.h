#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// A field of an endpoint's arguments.
struct DropboxField {
    enum class Kind { text, flag, number, value };

    std::string_view name;
    Kind kind = Kind::value;
    bool isRequired = false;
    std::uint64_t minimum = 0; // of a number
    std::uint64_t maximum = 0;
};

// What is wrong with arguments: a field that is missing, unknown or of another kind. Empty for good ones.
std::string dropboxProblem(const JSONValue& arguments, std::span<const DropboxField> fields);

// The arguments of a request to the API's host, its body as JSON; the text of an error is what Dropbox says.
Result<JSONValue, std::string> dropboxBody(const SandboxRequest& request);

// Those of a request to the content's host, the header "Dropbox-API-Arg", which has to be ASCII.
Result<JSONValue, std::string> dropboxHeader(const SandboxRequest& request);

// The members of checked arguments, or what stands for those that are left out.
std::string textOf(const JSONValue& arguments, std::string_view name, std::string_view instead = {});
bool flagOf(const JSONValue& arguments, std::string_view name, bool instead = false);
std::uint64_t numberOf(const JSONValue& arguments, std::string_view name, std::uint64_t instead);

// JSON in ASCII alone, for a header: all other characters, and U+007F, as "\uXXXX".
std::string asciiJSON(const JSONValue& json);

} // namespace zelto::sandbox
