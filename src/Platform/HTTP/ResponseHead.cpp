#include <Platform/HTTP/ResponseHeadInternal.h>

#include <Platform/Numbers.h>
#include <Platform/UTF8.h>

#include <charconv>
#include <string>

namespace zelto {
namespace {

// Each field is searched for among those before it, so their number is limited.
constexpr int maximumFields = 2000;

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Old servers send Latin-1: what is not UTF-8 is read as that.
std::string readable(std::string_view bytes) {
    if (isValidUTF8(bytes)) {
        return std::string(bytes);
    }
    std::string text;
    for (const char each : bytes) {
        appendUTF8(text, static_cast<unsigned char>(each));
    }
    return text;
}

int statusOf(std::string_view line) {
    int status = 0;
    if (const auto blank = line.find(' '); blank != line.npos) {
        line.remove_prefix(blank + 1);
        std::from_chars(line.data(), line.data() + line.size(), status);
    }
    return status;
}

} // namespace

ResponseHead::Progress ResponseHead::take(std::string_view line) {
    if (isComplete_) {
        return Progress::going;
    }
    if (line.starts_with("HTTP/")) {
        *this = {};
        status_ = statusOf(line);
        return Progress::going;
    }
    if (line.find_first_not_of(blanks) != line.npos) {
        return takeField(line);
    }
    isComplete_ = status_ >= 200;
    return isComplete_ ? Progress::complete : Progress::going;
}

ResponseHead::Progress ResponseHead::takeField(std::string_view line) {
    if (++fieldCount_ > maximumFields) {
        return Progress::tooManyFields;
    }
    const bool continuesLine = line.front() == ' ' || line.front() == '\t';
    const auto colon = line.find(':');
    if (!continuesLine && colon != line.npos) {
        lastName_ = readable(trimmed(line.substr(0, colon)));
    } else if (!continuesLine || lastName_.empty()) {
        return Progress::going;
    }
    auto value = readable(trimmed(continuesLine ? line : line.substr(colon + 1)));
    headers_.append(lastName_, std::move(value), continuesLine ? " " : ", ");
    return Progress::going;
}

std::optional<std::uint64_t> ResponseHead::contentLength() const {
    const auto text = headers_.value("Content-Length");
    return text && !headers_.contains("Transfer-Encoding") ? numberIn<std::uint64_t>(*text) : std::nullopt;
}

} // namespace zelto
