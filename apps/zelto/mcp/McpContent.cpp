#include "mcp/McpContent.h"

#include "base/FileFailure.h"
#include "base/Terminal.h"

#include <Platform/Base64.h>
#include <Platform/FileManager.h>
#include <Platform/FileNames.h>
#include <Platform/MediaTypes.h>
#include <Platform/PercentEncoding.h>
#include <Platform/Text.h>

#include <unistd.h>

namespace zelto::cli {

namespace {

// Bytes that an item holds.
struct Blob {
    std::string kind;     // "image"
    std::string name;     // that the server suggests; may be anything
    std::string mimeType; // "" where the server does not say
    const std::string* base64;
};

std::string lastPartOf(const std::string& uri) {
    auto path = uri.substr(0, uri.find_first_of("?#"));
    while (path.ends_with('/')) {
        path.pop_back();
    }
    const auto part = path.substr(path.rfind('/') + 1);
    return percentDecode(part).value_or(part);
}

std::optional<Blob> blobOf(const MCPContentItem& item) {
    if (const auto* image = std::get_if<MCPContentItem::Image>(&item.value)) {
        return Blob{"image", "", image->content.mimeType, &image->content.data};
    }
    if (const auto* audio = std::get_if<MCPContentItem::Audio>(&item.value)) {
        return Blob{"audio", "", audio->content.mimeType, &audio->content.data};
    }
    const auto* embedded = std::get_if<MCPContentItem::EmbeddedResource>(&item.value);
    if (embedded && embedded->content.resource.blob) {
        const auto& resource = embedded->content.resource;
        return Blob{"resource", lastPartOf(resource.uri), resource.mimeType.value_or(""), &*resource.blob};
    }
    return std::nullopt;
}

const std::string* textOf(const MCPContentItem& item) {
    if (const auto* text = std::get_if<MCPContentItem::Text>(&item.value)) {
        return &text->content.text;
    }
    const auto* embedded = std::get_if<MCPContentItem::EmbeddedResource>(&item.value);
    return embedded && embedded->content.resource.text ? &*embedded->content.resource.text : nullptr;
}

std::string fileNameOf(const Blob& blob, std::size_t number) {
    const auto fallback = blob.kind + "-" + std::to_string(number);
    std::filesystem::path name = cleanedFileName(blob.name, fallback);
    const auto extension = extensionForMediaType(blob.mimeType);
    if (!name.has_extension() && extension) {
        name += "." + std::string(*extension);
    } else if (name == fallback) {
        name += ".bin";
    }
    return name;
}

// "name.png", else "name (1).png"...
Outcome<std::filesystem::path> saved(const std::filesystem::path& folder, const std::filesystem::path& name,
                                     std::string_view bytes) {
    constexpr int maximumTwins = 10'000;
    for (int twin = 0; twin < maximumTwins; ++twin) {
        auto path = folder / name;
        if (twin > 0) {
            path = folder /
                   (name.stem().string() + " (" + std::to_string(twin) + ")" + name.extension().string());
        }
        const auto file = FileManager::createFile(path);
        if (!file && file.error().code == FileErrorCode::alreadyExists) {
            continue;
        }
        if (!file) {
            return failure(failureOf(file.error()));
        }
        if (const auto written = FileManager::writeAll(*file, bytes, path); !written) {
            ::unlink(path.c_str());
            return failure(failureOf(written.error()));
        }
        return path;
    }
    return failure(Failure{"alreadyExists", "There are too many files of the name " + name.string(), ""});
}

// The beginning of a text, with whole code points and with LF behind CR.
std::string_view firstPiece(std::string_view text) {
    constexpr std::size_t size = std::size_t{64} << 10;
    constexpr std::size_t maximumContinuation = 3;
    if (text.size() <= size) {
        return text;
    }
    auto end = size;
    while (end > size - maximumContinuation && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, text[end - 1] == '\r' ? end - 1 : end);
}

// In pieces, since a second copy of the text may be large.
void appendEscaped(std::string_view text, std::string (*escaped)(std::string_view), std::string& to) {
    to.reserve(to.size() + text.size() + 1);
    while (!text.empty()) {
        const auto piece = firstPiece(text);
        to += escaped(piece);
        text.remove_prefix(piece.size());
    }
}

// At least the length of what is shown of the items.
std::size_t lengthOf(const MCPToolCallResult& result) {
    std::size_t length = 0;
    for (const auto& item : result.content) {
        const auto* const text = textOf(item);
        length += text ? text->size() + 1 : 0;
    }
    return length;
}

// Adds what the items come to, one after the other.
class Collector {
  public:
    explicit Collector(const std::optional<std::filesystem::path>& folder) : folder_(folder) {}

    void add(MCPContentItem item) {
        ++number_;
        if (const auto* shown = textOf(item)) {
            appendEscaped(*shown, escapedLines, content.text);
            content.text += shown->ends_with('\n') || shown->empty() ? "" : "\n";
        }
        if (const auto blob = blobOf(item)) {
            addBlob(*blob);
        } else if (!textOf(item)) {
            const auto json = JSONEncoder().encode(item).value_or("null");
            { const auto released = std::move(item); }
            appendEscaped(json, terminalSafeJSON, content.text);
            content.text += '\n';
        }
    }

    // Saves the item's file, if it has one.
    void save(const MCPContentItem& item) {
        ++number_;
        const auto blob = folder_ ? blobOf(item) : std::nullopt;
        const auto bytes = blob ? base64Decoded(*blob->base64) : std::nullopt;
        if (bytes) {
            save(*blob, *bytes);
        }
    }

    McpContent content;

  private:
    void addBlob(const Blob& blob) {
        const auto bytes = base64Decoded(*blob.base64);
        content.text += "[" + blob.kind +
                        (blob.mimeType.empty() ? "" : " " + escapeControlCharacters(blob.mimeType)) + ", " +
                        (bytes ? std::to_string(bytes->size()) + " bytes] " : "not valid Base64] ");
        content.text += !bytes    ? "cannot be saved; --json shows it as it is"
                        : folder_ ? save(blob, *bytes)
                                  : "not saved; --out DIR saves it";
        content.text += '\n';
    }

    // What came of it.
    std::string save(const Blob& blob, std::string_view bytes) {
        auto path = saved(*folder_, fileNameOf(blob, number_), bytes);
        if (!path) {
            content.unsaved.push_back(std::move(path.error()));
            return "cannot be saved: " + escapeControlCharacters(content.unsaved.back().message);
        }
        content.saved.push_back(
            JSONObject{{"item", number_ - 1}, {"path", path->string()}, {"size", bytes.size()}});
        return "saved as " + escapeControlCharacters(path->string());
    }

    const std::optional<std::filesystem::path>& folder_;
    std::size_t number_ = 0;
};

} // namespace

McpContent contentOf(MCPToolCallResult result, const std::optional<std::filesystem::path>& folder) {
    Collector collector(folder);
    collector.content.text.reserve(lengthOf(result));
    for (auto& item : result.content) {
        collector.add(std::move(item));
    }
    return std::move(collector.content);
}

McpContent savedContentOf(const MCPToolCallResult& result,
                          const std::optional<std::filesystem::path>& folder) {
    Collector collector(folder);
    for (const auto& item : result.content) {
        collector.save(item);
    }
    return std::move(collector.content);
}

} // namespace zelto::cli
