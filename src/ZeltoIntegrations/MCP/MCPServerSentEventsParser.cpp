#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <Platform/ASCII.h>
#include <Platform/Growth.h>
#include <Platform/Numbers.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <utility>

namespace zelto {

namespace {

constexpr std::size_t longLine = 4096;
constexpr std::size_t largestReserve = std::size_t{4} << 20;
constexpr std::string_view dataField = "data:";

std::optional<std::int64_t> decimalInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    return numberIn<std::int64_t>(text);
}

bool beginsWithBlank(std::string_view value) {
    return value.starts_with(' ') &&
           (value.size() == 1 || isASCII(value[1]) || prefixCharacters(value, 1) == " ");
}

} // namespace

bool MCPServerSentEvent::operator==(const MCPServerSentEvent& other) const {
    const bool isSameID = id && other.id ? *id == *other.id : id == other.id;
    return isSameID && event == other.event && data == other.data && retry == other.retry;
}

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
    std::size_t text = 0; // how many of the bytes are known to be UTF-8
    for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        const auto line = bytes.substr(0, end);
        bool isText = false;
        if (hasPartialLine()) {
            isText = endPartialLine(line, events);
        } else {
            // Checking all bytes at once is faster than line by line.
            text = text < end ? validUTF8Length(bytes) : text;
            isText = process(line, text >= end, events);
        }
        bytes.remove_prefix(end + 1);
        text -= std::min(text, end + 1);
        if (!isText) {
            pendingBytes_ = bytes;
            pendingHasLines_ = true;
            return failure(MCPClientError::invalidServerSentEventsUTF8());
        }
    }
    keepPartialLine(bytes);
    if (flushTrailingLine && hasPartialLine() && !endPartialLine({}, events)) {
        return failure(MCPClientError::invalidServerSentEventsUTF8());
    }
    return events;
}

void MCPServerSentEventsParser::keepPartialLine(std::string_view bytes) {
    if (openLine_) {
        return appendToOpenLine(bytes);
    }
    pendingBytes_ += bytes;
    const std::string_view line = pendingBytes_;
    // After the colon and the blank there must be no character that combines with them.
    if (line.size() >= longLine && line.starts_with(dataField) && isASCII(line[dataField.size()]) &&
        isASCII(line[dataField.size() + 1])) {
        openLine(line.substr(dataField.size() + (line[dataField.size()] == ' ' ? 1 : 0)));
        pendingBytes_.clear();
    }
}

bool MCPServerSentEventsParser::hasPartialLine() const {
    return openLine_ || !pendingBytes_.empty();
}

bool MCPServerSentEventsParser::endPartialLine(std::string_view remaining,
                                               std::vector<MCPServerSentEvent>& events) {
    if (openLine_) {
        appendToOpenLine(remaining);
        return closeOpenLine();
    }
    pendingBytes_ += remaining;
    const bool isText = process(pendingBytes_, isValidUTF8(pendingBytes_), events);
    pendingBytes_.clear();
    return isText;
}

void MCPServerSentEventsParser::openLine(std::string_view value) {
    data_.reserve(std::min(lastSize_, largestReserve));
    OpenLine line{.before = data_.size()};
    if (hasData_) {
        data_ += '\n';
    }
    line.validated = data_.size();
    openLine_ = line;
    appendToOpenLine(value);
}

// Validates the bytes while they are in the cache; a character may be split between two pieces.
void MCPServerSentEventsParser::appendToOpenLine(std::string_view bytes) {
    reserveFor(bytes.size(), data_);
    data_ += bytes;
    openLine_->validated += validUTF8Length(std::string_view(data_).substr(openLine_->validated));
}

bool MCPServerSentEventsParser::closeOpenLine() {
    const auto line = *std::exchange(openLine_, std::nullopt);
    if (line.validated != data_.size()) {
        data_.resize(line.before);
        return false;
    }
    if (data_.ends_with('\r')) {
        data_.pop_back();
    }
    hasData_ = true;
    return true;
}

// False for a line that is not UTF-8.
bool MCPServerSentEventsParser::process(std::string_view line, bool isText,
                                        std::vector<MCPServerSentEvent>& events) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (line.empty()) {
        dispatchEvent(events);
        return true;
    }
    if (!isText) {
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
        if (hasData_) {
            data_ += '\n';
        }
        data_ += value;
        hasData_ = true;
    } else if (name == "event") {
        eventName_ = value;
    } else if (name == "id") {
        eventID_ = std::make_shared<const std::string>(value);
    } else if (name == "retry") {
        retry_ = decimalInteger(value);
    }
}

void MCPServerSentEventsParser::dispatchEvent(std::vector<MCPServerSentEvent>& events) {
    auto name = std::exchange(eventName_, std::nullopt);
    auto data = std::exchange(data_, {});
    hasData_ = false;
    lastSize_ = data.size();
    if (!data.empty()) {
        events.push_back({std::move(name), std::move(data), eventID_, retry_});
    }
}

} // namespace zelto
