#include <ZeltoSandbox/Dropbox/DropboxArguments.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumBody = std::size_t{1} << 20;
constexpr const char* noJSON = "could not decode input as JSON";

// Python's names, as in Dropbox's own texts.
std::string_view kindName(const JSONValue& value) {
    switch (value.kind()) {
    case JSONKind::null:
        return "null";
    case JSONKind::boolean:
        return "boolean";
    case JSONKind::int64:
    case JSONKind::uint64:
        return "integer";
    case JSONKind::real:
        return "float";
    case JSONKind::string:
        return "string";
    case JSONKind::array:
        return "list";
    case JSONKind::object:
        break;
    }
    return "dict";
}

std::string expected(std::string_view wanted, const JSONValue& value) {
    return "expected " + std::string(wanted) + ", got " + std::string(kindName(value));
}

std::string valueProblem(const JSONValue& value, const DropboxField& field) {
    switch (field.kind) {
    case DropboxField::Kind::text:
        return value.asString() ? "" : expected("string", value);
    case DropboxField::Kind::flag:
        return value.asBool() ? "" : expected("boolean", value);
    case DropboxField::Kind::number: {
        const auto number = value.asUInt64();
        if (!number) {
            return expected("integer", value);
        }
        return *number >= field.minimum && *number <= field.maximum
                   ? ""
                   : std::to_string(*number) + " is not within range " + std::to_string(field.minimum) +
                         " - " + std::to_string(field.maximum);
    }
    case DropboxField::Kind::value:
        break;
    }
    return "";
}

} // namespace

std::string dropboxProblem(const JSONValue& arguments, std::span<const DropboxField> fields) {
    if (!arguments.asObject()) {
        return expected("object", arguments);
    }
    for (const auto& [name, value] : *arguments.asObject()) {
        const auto field = std::ranges::find(fields, name, &DropboxField::name);
        if (field == fields.end()) {
            return "unknown field '" + name + "'";
        }
        // An optional field may be null.
        if (auto problem = valueProblem(value, *field);
            !problem.empty() && (field->isRequired || !value.isNull())) {
            return name + ": " + problem;
        }
    }
    for (const auto& field : fields) {
        if (field.isRequired && !arguments.find(field.name)) {
            return "missing required field '" + std::string(field.name) + "'";
        }
    }
    return "";
}

Result<JSONValue, std::string> dropboxBody(const SandboxRequest& request) {
    const auto* type = request.head.field("Content-Type");
    const auto charset = type ? headerParameter(*type, "charset") : std::nullopt;
    if (request.contentType != "application/json" ||
        (charset && !equalIgnoringASCIICase(*charset, "utf-8"))) {
        return failure("Bad HTTP \"Content-Type\" header: \"" + (type ? *type : std::string()) +
                       "\".  Expecting one of \"application/json\", \"application/json; charset=utf-8\".");
    }
    if (request.head.field("Dropbox-API-Arg")) {
        return failure(std::string("this endpoint takes its arguments in the body, not in the HTTP header "
                                   "\"Dropbox-API-Arg\""));
    }
    const auto body = SpoolRange::all(request.body);
    auto json = body.size <= maximumBody ? JSONValue::parse(body.text(maximumBody))
                                         : Result<JSONValue, DecodingError>(failure(DecodingError{}));
    return json ? Result<JSONValue, std::string>(*std::move(json))
                : failure("request body: " + std::string(noJSON));
}

Result<JSONValue, std::string> dropboxHeader(const SandboxRequest& request) {
    constexpr std::string_view name = "Dropbox-API-Arg";
    const auto place = "HTTP header \"" + std::string(name) + "\": ";
    const auto* value = request.head.field(name);
    if (!value) {
        return failure("Must provide HTTP header \"" + std::string(name) + "\" or URL parameter \"arg\".");
    }
    if (request.head.count(name) > 1) {
        return failure(place + "given more than once");
    }
    const auto isASCIIText = [](char c) { return c >= ' ' && c <= '~'; };
    auto json = std::ranges::all_of(*value, isASCIIText)
                    ? JSONValue::parse(*value)
                    : Result<JSONValue, DecodingError>(failure(DecodingError{}));
    return json ? Result<JSONValue, std::string>(*std::move(json)) : failure(place + noJSON);
}

std::string textOf(const JSONValue& arguments, std::string_view name, std::string_view instead) {
    const auto* value = arguments.find(name);
    return value && value->asString() ? *value->asString() : std::string(instead);
}

bool flagOf(const JSONValue& arguments, std::string_view name, bool instead) {
    const auto* value = arguments.find(name);
    return value ? value->asBool().value_or(instead) : instead;
}

std::uint64_t numberOf(const JSONValue& arguments, std::string_view name, std::uint64_t instead) {
    const auto* value = arguments.find(name);
    return value ? value->asUInt64().value_or(instead) : instead;
}

std::string asciiJSON(const JSONValue& json) {
    const auto text = json.text().value_or("null");
    std::string ascii;
    const auto escape = [&](char32_t unit) {
        constexpr std::string_view digits = "0123456789abcdef";
        ascii += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4) {
            ascii.push_back(digits[(unit >> shift) & 15]);
        }
    };
    for (std::string_view rest = text; !rest.empty();) {
        const auto [codePoint, length] = firstCodePoint(rest);
        rest.remove_prefix(length);
        if (codePoint < 0x7F) {
            ascii.push_back(static_cast<char>(codePoint));
        } else if (codePoint < 0x10000) {
            escape(codePoint);
        } else {
            escape(0xD800 + ((codePoint - 0x10000) >> 10));
            escape(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
        }
    }
    return ascii;
}

} // namespace zelto::sandbox
