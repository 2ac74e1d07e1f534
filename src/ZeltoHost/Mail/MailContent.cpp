#include <Platform/FileManager.h>
#include <ZeltoHost/Mail/GMimeInternal.h>
#include <ZeltoHost/Mail/MailCharset.h>
#include <ZeltoHost/Mail/MailContent.h>
#include <ZeltoHost/Mail/MailFile.h>
#include <ZeltoHost/Mail/MailFileErrorInternal.h>
#include <ZeltoHost/Mail/MailFlowedText.h>

#include <algorithm>
#include <vector>

namespace zelto {

namespace {

GMimeContentEncoding gmimeEncodingOf(MailEncoding encoding) {
    switch (encoding) {
    case MailEncoding::identity:
        return GMIME_CONTENT_ENCODING_BINARY;
    case MailEncoding::base64:
        return GMIME_CONTENT_ENCODING_BASE64;
    case MailEncoding::quotedPrintable:
        return GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE;
    case MailEncoding::uuencode:
        return GMIME_CONTENT_ENCODING_UUENCODE;
    }
    return GMIME_CONTENT_ENCODING_BINARY;
}

// Undoes a transfer encoding block by block.
class Decoder {
  public:
    explicit Decoder(MailEncoding encoding) {
        gmimeOptions();
        if (encoding != MailEncoding::identity) {
            filter_.reset(g_mime_filter_basic_new(gmimeEncodingOf(encoding), FALSE));
        }
    }

    // Valid until the next block.
    std::string_view decode(std::span<char> block, bool last) {
        if (!filter_) {
            return {block.data(), block.size()};
        }
        char* out = nullptr;
        std::size_t size = 0;
        std::size_t reserved = 0;
        const auto step = last ? g_mime_filter_complete : g_mime_filter_filter;
        step(filter_.get(), block.data(), block.size(), 0, &out, &size, &reserved);
        return {out, size};
    }

  private:
    GLibPointer<GMimeFilter> filter_;
};

} // namespace

Result<void, MailError> decodeContent(const MailFile& file, const MailPart& part,
                                      const std::function<bool(std::string_view)>& sink) {
    Decoder decoder(part.encoding);
    std::vector<char> buffer(64U << 10);
    std::uint64_t offset = part.begin;
    bool last = false;
    while (!last) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), part.end - offset));
        const auto block = std::span(buffer).first(size);
        if (auto read = file.read(offset, block); !read) {
            return read;
        }
        offset += size;
        last = offset == part.end;
        if (!sink(decoder.decode(block, last))) {
            return {};
        }
    }
    return file.isUnchanged() ? Result<void, MailError>() : failure(MailError::changed);
}

Result<std::uint64_t, MailError> decodedSize(const MailFile& file, const MailPart& part) {
    if (part.encoding == MailEncoding::identity) {
        return part.end - part.begin;
    }
    std::uint64_t size = 0;
    const auto decoded = decodeContent(file, part, [&](std::string_view piece) {
        size += piece.size();
        return true;
    });
    return decoded ? Result<std::uint64_t, MailError>(size) : failure(decoded.error());
}

Result<void, MailError> writeContent(const MailFile& file, const MailPart& part,
                                     const std::filesystem::path& path) {
    auto out = FileManager::createFile(path);
    if (!out) {
        return failure(writeErrorOf(out.error()));
    }
    Result<void, FileError> written;
    auto decoded = decodeContent(file, part, [&](std::string_view piece) {
        written = FileManager::writeAll(*out, piece, path);
        return written.has_value();
    });
    if (decoded && !written) {
        decoded = failure(writeErrorOf(written.error()));
    }
    if (!decoded) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    return decoded;
}

Result<std::string, MailError> readContent(const MailFile& file, const MailPart& part, std::size_t limit) {
    std::string content;
    bool fits = true;
    const auto decoded = decodeContent(file, part, [&](std::string_view piece) {
        fits = piece.size() <= limit - content.size();
        if (fits) {
            content.append(piece);
        }
        return fits;
    });
    if (!decoded) {
        return failure(decoded.error());
    }
    return fits ? Result<std::string, MailError>(std::move(content)) : failure(MailError::bodyTooLarge);
}

Result<std::string, MailError> readText(const MailFile& file, const MailPart& part, std::size_t limit) {
    auto content = readContent(file, part, limit);
    if (!content) {
        return content;
    }
    auto text = toUTF8(*content, part.charset, part.mediaType == "text/html");
    return part.flowed && part.mediaType == "text/plain" ? unfoldedFlowedText(text, part.delSp) : text;
}

} // namespace zelto
