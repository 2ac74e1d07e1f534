#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <charconv>
#include <utility>

namespace zelto {

namespace {

// From here on a value is moved out of the buffer rather than copied.
constexpr std::size_t longValue = std::size_t{64} << 10;

std::optional<std::int64_t> decimalInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    std::int64_t value = 0;
    const auto* const end = text.data() + text.size();
    const auto [read, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && read == end ? std::optional(value) : std::nullopt;
}

bool isASCII(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

bool beginsWithBlank(std::string_view value) {
    return value.starts_with(' ') &&
           (value.size() == 1 || isASCII(value[1]) || prefixCharacters(value, 1) == " ");
}

} // namespace

MCPServerSentEventsParser::Events MCPServerSentEventsParser::append(std::string_view bytes) {
    return processBufferedLines(bytes, false);
}

MCPServerSentEventsParser::Events MCPServerSentEventsParser::finish() {
    return processBufferedLines({}, true);
}

MCPServerSentEventsParser::Events MCPServerSentEventsParser::processBufferedLines(std::string_view bytes,
                                                                                  bool flushTrailingLine) {
    std::string joined;
    if (pendingHasLines_) {
        joined = std::exchange(pendingBytes_, {});
        joined += bytes;
        bytes = joined;
        pendingHasLines_ = false;
    }
    std::vector<MCPServerSentEvent> events;
    for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        lineIsPending_ = !pendingBytes_.empty();
        if (lineIsPending_) {
            pendingBytes_ += bytes.substr(0, end);
        }
        const bool isText =
            process(lineIsPending_ ? std::string_view(pendingBytes_) : bytes.substr(0, end), events);
        bytes.remove_prefix(end + 1);
        pendingBytes_.clear();
        if (!isText) {
            pendingBytes_ = bytes;
            pendingHasLines_ = true;
            return failure(MCPClientError::invalidServerSentEventsUTF8());
        }
    }
    pendingBytes_ += bytes;
    if (flushTrailingLine && !pendingBytes_.empty()) {
        lineIsPending_ = true;
        const bool isText = process(pendingBytes_, events);
        pendingBytes_.clear();
        if (!isText) {
            return failure(MCPClientError::invalidServerSentEventsUTF8());
        }
    }
    return events;
}

// False for a line that is not UTF-8.
bool MCPServerSentEventsParser::process(std::string_view line, std::vector<MCPServerSentEvent>& events) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (line.empty()) {
        dispatchEvent(events);
        return true;
    }
    if (!isValidUTF8(line)) {
        return false;
    }
    if (line.front() == ':') {
        return true;
    }
    const auto colon = findCharacter(line, ':');
    if (!colon) {
        setField(line, {});
        return true;
    }
    auto value = line.substr(*colon + 1);
    if (beginsWithBlank(value)) {
        value.remove_prefix(1);
    }
    setField(line.substr(0, *colon), value);
    return true;
}

void MCPServerSentEventsParser::setField(std::string_view name, std::string_view value) {
    if (name == "data") {
        appendData(value);
    } else if (name == "event") {
        eventName_ = value;
    } else if (name == "id") {
        eventID_ = value;
    } else if (name == "retry") {
        retry_ = decimalInteger(value);
    }
}

void MCPServerSentEventsParser::appendData(std::string_view value) {
    if (hasData_) {
        data_ += '\n';
    }
    if (lineIsPending_ && data_.empty() && value.size() >= longValue) {
        const auto begin = static_cast<std::size_t>(value.data() - pendingBytes_.data());
        data_ = std::exchange(pendingBytes_, {});
        data_.resize(begin + value.size());
        data_.erase(0, begin);
    } else {
        data_ += value;
    }
    hasData_ = true;
}

void MCPServerSentEventsParser::dispatchEvent(std::vector<MCPServerSentEvent>& events) {
    auto name = std::exchange(eventName_, std::nullopt);
    auto data = std::exchange(data_, {});
    hasData_ = false;
    if (!data.empty()) {
        events.push_back({std::move(name), std::move(data), eventID_, retry_});
    }
}

} // namespace zelto
