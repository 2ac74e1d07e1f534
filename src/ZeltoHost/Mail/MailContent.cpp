#include <Platform/FileManager.h>
#include <Platform/UTF8.h>
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

// Decodes a transfer encoding block by block.
class Decoder {
  public:
    explicit Decoder(MailEncoding encoding) : encoding_(encoding) {
        gmimeOptions();
        switch (encoding) {
        case MailEncoding::identity:
            break;
        case MailEncoding::base64:
            g_mime_encoding_init_decode(&state_, GMIME_CONTENT_ENCODING_BASE64);
            break;
        case MailEncoding::quotedPrintable:
            g_mime_encoding_init_decode(&state_, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
            break;
        case MailEncoding::uuencode: // finding its first line takes a filter
            filter_.reset(g_mime_filter_basic_new(GMIME_CONTENT_ENCODING_UUENCODE, FALSE));
            break;
        }
    }

    // Valid until the next block.
    std::string_view decode(std::span<char> block) {
        switch (encoding_) {
        case MailEncoding::identity:
            return {block.data(), block.size()};
        case MailEncoding::base64:
        case MailEncoding::quotedPrintable:
            return step({block.data(), block.size()});
        case MailEncoding::uuencode:
            break;
        }
        char* out = nullptr;
        std::size_t size = 0;
        std::size_t reserved = 0;
        g_mime_filter_filter(filter_.get(), block.data(), block.size(), 0, &out, &size, &reserved);
        return {out, size};
    }

    // What is left after the last block.
    std::string_view finish() {
        switch (encoding_) {
        case MailEncoding::identity:
        case MailEncoding::uuencode:
            return {};
        case MailEncoding::base64:
            // Some programs omit the padding.
            return state_.state == 2 ? step("==") : state_.state == 3 ? step("=") : std::string_view();
        case MailEncoding::quotedPrintable:
            out_.resize(g_mime_encoding_outlen(&state_, 0) + 8);
            return {out_.data(), g_mime_encoding_flush(&state_, "", 0, out_.data())};
        }
        return {};
    }

  private:
    std::string_view step(std::string_view block) {
        out_.resize(std::max(out_.size(), g_mime_encoding_outlen(&state_, block.size()) + 8));
        return {out_.data(), g_mime_encoding_step(&state_, block.data(), block.size(), out_.data())};
    }

    MailEncoding encoding_;
    GMimeEncoding state_{};
    GLibPointer<GMimeFilter> filter_;
    std::vector<char> out_;
};

} // namespace

Result<void, MailError> decodeContent(const MailFile& file, const MailPart& part,
                                      const std::function<bool(std::string_view)>& sink) {
    Decoder decoder(part.encoding);
    std::vector<char> buffer(64U << 10);
    bool wanted = true;
    for (std::uint64_t offset = part.begin; wanted && offset < part.end;) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), part.end - offset));
        const auto block = std::span(buffer).first(size);
        if (auto read = file.read(offset, block); !read) {
            return read;
        }
        offset += size;
        wanted = sink(decoder.decode(block));
    }
    if (const auto remaining = decoder.finish(); wanted && !remaining.empty()) {
        wanted = sink(remaining);
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

namespace {

struct LimitedContent {
    std::string bytes;
    bool isCut = false;
};

Result<LimitedContent, MailError> readUpTo(const MailFile& file, const MailPart& part, std::size_t limit) {
    LimitedContent content;
    const auto decoded = decodeContent(file, part, [&](std::string_view piece) {
        content.isCut = piece.size() > limit - content.bytes.size();
        content.bytes.append(piece.substr(0, limit - content.bytes.size()));
        return !content.isCut;
    });
    return decoded ? Result<LimitedContent, MailError>(std::move(content)) : failure(decoded.error());
}

// Ends the text before a character that the limit has cut in two.
void cutTo(std::size_t limit, std::string& text) {
    constexpr std::string_view replacement = "\uFFFD";
    if (text.size() > limit) {
        text.resize(limit);
        text = repairedUTF8(text);
    }
    if (text.ends_with(replacement)) {
        text.resize(text.size() - replacement.size());
    }
}

} // namespace

Result<std::string, MailError> readContent(const MailFile& file, const MailPart& part, std::size_t limit) {
    auto content = readUpTo(file, part, limit);
    if (!content) {
        return failure(content.error());
    }
    return content->isCut ? failure(MailError::contentTooLarge)
                          : Result<std::string, MailError>(std::move(content->bytes));
}

Result<MailText, MailError> readText(const MailFile& file, const MailPart& part, std::size_t limit) {
    auto content = readUpTo(file, part, limit);
    if (!content) {
        return failure(content.error());
    }
    MailText read{toUTF8(content->bytes, part.charset, part.mediaType == "text/html"), content->isCut};
    content->bytes = {};
    if (part.flowed && part.mediaType == "text/plain") {
        read.text = unfoldedFlowedText(read.text, part.delSp);
    }
    read.isCut = read.isCut || read.text.size() > limit;
    if (read.isCut) {
        cutTo(limit, read.text);
    }
    return read;
}

} // namespace zelto
