#include <Platform/Base64.h>
#include <ZeltoHost/Mail/EncodedWords.h>

#include <Platform/ASCII.h>

#include <glib.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace zelto {

namespace {

struct EncodedWord {
    std::string_view charset;
    std::string_view text;
    std::size_t length; // of the whole word
};

// The word "=?charset?B?text?=" at the beginning of the text.
std::optional<EncodedWord> base64WordAt(std::string_view text) {
    const auto charsetEnd = text.find('?', 2);
    if (!text.starts_with("=?") || charsetEnd == std::string_view::npos || text.size() < charsetEnd + 3 ||
        (text[charsetEnd + 1] | 0x20) != 'b' || text[charsetEnd + 2] != '?') {
        return std::nullopt;
    }
    const auto begin = charsetEnd + 3;
    const auto end = text.find('?', begin);
    if (end == std::string_view::npos || end + 1 == text.size() || text[end + 1] != '=') {
        return std::nullopt;
    }
    const auto content = text.substr(begin, end - begin);
    if (content.find_first_of(" \t") != std::string_view::npos) {
        return std::nullopt;
    }
    return EncodedWord{text.substr(2, charsetEnd - 2), content, end + 2};
}

void appendDecoded(std::string& bytes, std::string_view base64) {
    const std::string text(base64);
    gsize size = 0;
    const std::unique_ptr<guchar, decltype(&g_free)> decoded(g_base64_decode(text.c_str(), &size), &g_free);
    bytes.append(reinterpret_cast<const char*>(decoded.get()), size);
}

} // namespace

std::string joiningEncodedWords(std::string_view value) {
    std::string result;
    while (!value.empty()) {
        const auto start = value.find("=?");
        result.append(value.substr(0, start));
        if (start == std::string_view::npos) {
            break;
        }
        value.remove_prefix(start);
        auto word = base64WordAt(value);
        if (!word) {
            result.append(value.substr(0, 2));
            value.remove_prefix(2);
            continue;
        }
        const auto charset = word->charset;
        std::string bytes;
        while (word && equalIgnoringASCIICase(word->charset, charset)) {
            appendDecoded(bytes, word->text);
            value.remove_prefix(word->length);
            const auto next = value.find_first_not_of(" \t");
            word =
                next == 0 || next == std::string_view::npos ? std::nullopt : base64WordAt(value.substr(next));
            if (word && equalIgnoringASCIICase(word->charset, charset)) {
                value.remove_prefix(next);
            }
        }
        result.append("=?").append(charset).append("?B?").append(base64Encoded(bytes)).append("?=");
    }
    return result;
}

} // namespace zelto
