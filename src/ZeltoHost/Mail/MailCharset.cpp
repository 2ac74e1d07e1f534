#include <Platform/UTF8.h>
#include <ZeltoHost/Mail/GMimeInternal.h>
#include <ZeltoHost/Mail/MailCharset.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>

namespace zelto {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// Charsets whose names mails use for larger ones.
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> widerCharsets{{
    {"iso-8859-1", "windows-1252"},
    {"latin1", "windows-1252"},
    {"iso-8859-9", "windows-1254"},
    {"gb2312", "gb18030"},
    {"gbk", "gb18030"},
    {"ks_c_5601-1987", "cp949"},
    {"euc-kr", "cp949"},
    {"shift_jis", "cp932"},
    {"utf8", "utf-8"},
}};

bool isCharsetCharacter(char c) {
    return isASCIIAlphanumeric(c) || c == '-' || c == '_' || c == '.' || c == ':' || c == '+';
}

std::string canonicalName(std::string_view charset) {
    std::string name;
    for (const char c : charset) {
        if (isCharsetCharacter(c)) {
            name += toASCIILower(c);
        }
    }
    const auto* wider = std::ranges::find(widerCharsets, name, [](const auto& each) { return each.first; });
    return wider == widerCharsets.end() ? name : std::string(wider->second);
}

// The name after "charset=" near the beginning of an HTML document.
std::string nameInDocument(std::string_view html) {
    auto head = toASCIILower(html.substr(0, 1024));
    const auto found = head.find("charset=");
    if (found == std::string::npos) {
        return {};
    }
    auto begin = head.begin() + static_cast<std::ptrdiff_t>(found + 8);
    begin = std::find_if(begin, head.end(), [](char c) { return c != '"' && c != '\'' && c != ' '; });
    return {begin, std::find_if_not(begin, head.end(), isCharsetCharacter)};
}

class Converter {
  public:
    explicit Converter(const std::string& charset) : handle_(g_iconv_open("UTF-8", charset.c_str())) {}

    ~Converter() {
        if (isOpen()) {
            g_iconv_close(handle_);
        }
    }

    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool isOpen() const { return handle_ != reinterpret_cast<GIConv>(-1); }

    std::string convert(std::string_view bytes) const {
        std::string text;
        std::array<char, 16384> buffer;
        std::string input(bytes);
        char* in = input.data();
        std::size_t left = input.size();
        while (true) {
            char* out = buffer.data();
            std::size_t room = buffer.size();
            const bool flush = left == 0;
            const auto result = g_iconv(handle_, flush ? nullptr : &in, &left, &out, &room);
            const int error = errno;
            text.append(buffer.data(), buffer.size() - room);
            if (result != static_cast<std::size_t>(-1)) {
                if (flush) {
                    return text;
                }
                continue;
            }
            if (error == E2BIG) {
                continue;
            }
            if (left == 0) {
                return text;
            }
            // A byte that the charset does not have, or a character that is cut off at the end.
            text.append(replacement);
            ++in;
            --left;
        }
    }

  private:
    GIConv handle_;
};

std::optional<std::string> converted(std::string_view bytes, const std::string& charset) {
    const Converter converter(charset);
    return converter.isOpen() ? std::optional(repairedUTF8(converter.convert(bytes))) : std::nullopt;
}

std::string guessed(std::string_view bytes) {
    return isValidUTF8(bytes) ? std::string(bytes)
                              : converted(bytes, "windows-1252").value_or(repairedUTF8(bytes));
}

void normalise(std::string& text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark)) {
        text.erase(0, byteOrderMark.size());
    }
    auto out = text.begin();
    for (auto in = text.begin(); in != text.end(); ++in) {
        if (*in == '\r') {
            *out++ = '\n';
            in += in + 1 != text.end() && in[1] == '\n' ? 1 : 0;
        } else if (*in != '\0') {
            *out++ = *in;
        }
    }
    text.erase(out, text.end());
}

std::string decoded(std::string_view bytes, std::string_view charset, bool isHTML) {
    auto name = canonicalName(charset);
    if (name.empty() && isHTML) {
        name = canonicalName(nameInDocument(bytes));
    }
    if (name.empty() || name == "us-ascii" || name == "ascii") {
        return guessed(bytes);
    }
    if (name == "utf-8") {
        return repairedUTF8(bytes);
    }
    auto text = converted(bytes, name);
    return text ? *std::move(text) : guessed(bytes);
}

} // namespace

std::string toUTF8(std::string_view bytes, std::string_view charset, bool isHTML) {
    auto text = decoded(bytes, charset, isHTML);
    normalise(text);
    return text;
}

} // namespace zelto
