#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace zelto {

// The kinds of content in a tool's result, as in "type".
enum class MCPContentItemRawType { text, image, audio, resource, resourceLink };
ZELTO_ENUM(MCPContentItemRawType);
ZELTO_JSON_CODED(MCPContentItemRawType);

struct MCPTextContent {
    std::string text;
    std::optional<JSONValue> annotations = {};
    std::optional<JSONValue> metadata = {}; // "_meta"

    bool operator==(const MCPTextContent&) const = default;
};

ZELTO_JSON_CODED(MCPTextContent);

// An image or a sound.
struct MCPBinaryContent {
    MCPContentItemRawType contentType{}; // "type"
    std::string data;                    // Base64, as the server sent it
    std::string mimeType;
    std::optional<JSONValue> annotations = {};
    std::optional<JSONValue> metadata = {}; // "_meta"

    bool operator==(const MCPBinaryContent&) const = default;
};

ZELTO_JSON_CODED(MCPBinaryContent);

// The content of an embedded resource: text, or bytes in Base64 as the server sent them.
struct MCPContentItemResource {
    std::string uri;
    std::optional<std::string> mimeType = {};
    std::optional<std::string> text = {};
    std::optional<std::string> blob = {};
    std::optional<JSONValue> metadata = {}; // "_meta"

    bool operator==(const MCPContentItemResource&) const = default;
};

ZELTO_JSON_CODED(MCPContentItemResource);

struct MCPResourceContent {
    MCPContentItemResource resource;
    std::optional<JSONValue> annotations = {};
    std::optional<JSONValue> metadata = {}; // "_meta"

    bool operator==(const MCPResourceContent&) const = default;
};

ZELTO_JSON_CODED(MCPResourceContent);

struct MCPResourceLinkContent {
    std::string uri;
    std::optional<std::string> name = {};
    std::optional<std::string> title = {};
    std::optional<std::string> description = {};
    std::optional<std::string> mimeType = {};
    std::optional<JSONValue> annotations = {};
    std::optional<JSONValue> metadata = {}; // "_meta"

    bool operator==(const MCPResourceLinkContent&) const = default;
};

ZELTO_JSON_CODED(MCPResourceLinkContent);

// One piece of a tool's result. An unknown type is kept whole and written back unchanged; a known type that
// lacks a required key fails to decode.
class MCPContentItem {
  public:
    using RawType = MCPContentItemRawType;
    using Resource = MCPContentItemResource;

    struct Text {
        MCPTextContent content;
        bool operator==(const Text&) const = default;
    };

    struct Image {
        MCPBinaryContent content;
        bool operator==(const Image&) const = default;
    };

    struct Audio {
        MCPBinaryContent content;
        bool operator==(const Audio&) const = default;
    };

    struct EmbeddedResource {
        MCPResourceContent content;
        bool operator==(const EmbeddedResource&) const = default;
    };

    struct ResourceLink {
        MCPResourceLinkContent content;
        bool operator==(const ResourceLink&) const = default;
    };

    struct Unknown {
        std::string type;
        JSONValue payload; // the whole object, including "type"
        bool operator==(const Unknown&) const = default;
    };

    using Value = std::variant<Text, Image, Audio, EmbeddedResource, ResourceLink, Unknown>;

    Value value;

    static MCPContentItem text(MCPTextContent content) { return {Text{std::move(content)}}; }

    static MCPContentItem image(MCPBinaryContent content) { return {Image{std::move(content)}}; }

    static MCPContentItem audio(MCPBinaryContent content) { return {Audio{std::move(content)}}; }

    static MCPContentItem resource(MCPResourceContent content) {
        return {EmbeddedResource{std::move(content)}};
    }

    static MCPContentItem resourceLink(MCPResourceLinkContent content) {
        return {ResourceLink{std::move(content)}};
    }

    static MCPContentItem unknown(std::string type, JSONValue payload) {
        return {Unknown{std::move(type), std::move(payload)}};
    }

    bool operator==(const MCPContentItem&) const = default;
};

ZELTO_JSON_CODED(MCPContentItem);

} // namespace zelto
