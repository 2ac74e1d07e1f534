#include <Platform/Base64.h>
#include <ZeltoHost/Mail/EncodedWords.h>
#include <ZeltoHost/Mail/GMimeInternal.h>
#include <ZeltoHost/Mail/MailCharset.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <optional>

namespace zelto {

namespace {

struct EncodedWord {
    std::string_view charset;
    bool isBase64; // otherwise quoted-printable
    std::string_view text;
    std::size_t length; // of the whole word
};

// The word "=?charset?B?text?=" or "=?charset?Q?text?=" at the beginning of the text.
std::optional<EncodedWord> wordAt(std::string_view text) {
    const auto charsetEnd = text.find('?', 2);
    if (!text.starts_with("=?") || charsetEnd == std::string_view::npos || text.size() < charsetEnd + 3 ||
        text[charsetEnd + 2] != '?') {
        return std::nullopt;
    }
    const char encoding = toASCIILower(text[charsetEnd + 1]);
    const auto begin = charsetEnd + 3;
    const auto end = text.find('?', begin);
    if ((encoding != 'b' && encoding != 'q') || end == std::string_view::npos || end + 1 == text.size() ||
        text[end + 1] != '=') {
        return std::nullopt;
    }
    const auto content = text.substr(begin, end - begin);
    if (content.find_first_of(" \t") != std::string_view::npos) {
        return std::nullopt;
    }
    // The charset may be followed by a language (RFC 2231): "us-ascii*en".
    const auto charset = text.substr(2, charsetEnd - 2);
    return EncodedWord{charset.substr(0, charset.find('*')), encoding == 'b', content, end + 2};
}

void appendDecoded(std::string& bytes, const EncodedWord& word) {
    std::string text(word.text);
    if (!word.isBase64) {
        std::ranges::replace(text, '_', ' ');
    }
    GMimeEncoding state;
    g_mime_encoding_init_decode(&state, word.isBase64 ? GMIME_CONTENT_ENCODING_BASE64
                                                      : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
    std::string decoded(g_mime_encoding_outlen(&state, text.size()), '\0');
    decoded.resize(g_mime_encoding_flush(&state, text.data(), text.size(), decoded.data()));
    bytes.append(decoded);
}

// The word after blanks: between two words, blanks have no meaning.
std::optional<EncodedWord> wordBehindBlanks(std::string_view& value) {
    const auto next = value.find_first_not_of(" \t");
    auto word = next == 0 || next == std::string_view::npos ? std::nullopt : wordAt(value.substr(next));
    if (word) {
        value.remove_prefix(next);
    }
    return word;
}

// Takes this word and its successors off the beginning of the value and gives their text in UTF-8. A
// character may be split between two words of one charset.
std::string takeRun(std::string_view& value, std::optional<EncodedWord> word) {
    std::string text;
    while (word) {
        const auto charset = word->charset;
        std::string bytes;
        for (; word && equalIgnoringASCIICase(word->charset, charset); word = wordBehindBlanks(value)) {
            appendDecoded(bytes, *word);
            value.remove_prefix(word->length);
        }
        text += toUTF8(bytes, charset, false);
    }
    return text;
}

} // namespace

std::string withUTF8Words(std::string_view value) {
    std::string result;
    while (!value.empty()) {
        const auto start = value.find("=?");
        result.append(value.substr(0, start));
        if (start == std::string_view::npos) {
            break;
        }
        value.remove_prefix(start);
        if (const auto word = wordAt(value)) {
            result.append("=?utf-8?B?").append(base64Encoded(takeRun(value, word))).append("?=");
        } else {
            result.append(value.substr(0, 2));
            value.remove_prefix(2);
        }
    }
    return result;
}

} // namespace zelto
