// An event stream gives the same events in pieces of any size, and the same as a simple parser.

#include "Require.h"

#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <regex>

namespace zelto {
namespace {

using Events = std::vector<MCPServerSentEvent>;

// Up to the first line that is not UTF-8, whose call loses its events; in smaller pieces more events may come
// before that call.
std::pair<Events, bool> eventsIn(std::string_view stream, std::size_t piece) {
    MCPServerSentEventsParser parser;
    Events all;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
        auto some = parser.append(stream.substr(at, piece));
        if (!some) {
            return {all, false};
        }
        all.insert(all.end(), some->begin(), some->end());
    }
    auto last = parser.finish();
    if (last) {
        all.insert(all.end(), last->begin(), last->end());
    }
    return {all, last.has_value()};
}

std::optional<std::int64_t> wholeNumber(const std::string& text) {
    static const std::regex pattern("[+-]?[0-9]+");
    if (!std::regex_match(text, pattern)) {
        return std::nullopt;
    }
    try {
        return std::stoll(text);
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
}

// Line by line, each as a whole; `nullopt` if one is not UTF-8.
std::optional<Events> plainEventsIn(std::string_view stream) {
    Events all;
    MCPServerSentEvent next;
    std::vector<std::string> lines;
    while (!stream.empty()) {
        const auto end = stream.find('\n');
        auto line = stream.substr(0, end);
        stream.remove_prefix(end == stream.npos ? stream.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (!isValidUTF8(line)) {
            return std::nullopt;
        }
        if (line.empty()) {
            for (std::size_t index = 0; index < lines.size(); ++index) {
                next.data += (index == 0 ? "" : "\n") + lines[index];
            }
            lines.clear();
            if (!next.data.empty()) {
                all.push_back(next);
            }
            next.event = std::nullopt;
            next.data.clear();
            continue;
        }
        const auto colon = findCharacter(line, ':');
        std::string value(colon ? line.substr(*colon + 1) : "");
        if (prefixCharacters(value, 1) == " ") {
            value.erase(0, 1);
        }
        const auto name = line.substr(0, colon.value_or(line.size()));
        if (name == "data") {
            lines.push_back(value);
        } else if (name == "event") {
            next.event = value;
        } else if (name == "id") {
            next.id = std::make_shared<const std::string>(value);
        } else if (name == "retry") {
            next.retry = wholeNumber(value);
        }
    }
    return all;
}

} // namespace
} // namespace zelto

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    // The first byte repeats the text, so that there are long lines too.
    std::string stream;
    const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
    const auto blank = text.find(' ');
    if (data[0] % 8 == 0 && blank != text.npos) {
        stream = std::string(text.substr(0, blank + 1)) + std::string(data[1] * 64u, 'x');
        stream += text.substr(blank + 1);
    } else {
        stream = text;
    }
    const auto whole = zelto::eventsIn(stream, stream.size() + 1);
    const auto plain = zelto::plainEventsIn(stream);
    zelto::require(whole.second == plain.has_value());
    zelto::require(!plain || whole.first == *plain);
    for (const std::size_t piece : {std::size_t{1}, std::size_t{data[1]} + 1}) {
        const auto pieces = zelto::eventsIn(stream, piece);
        zelto::require(pieces.second == whole.second);
        zelto::require(!whole.second || pieces.first == whole.first);
    }
    return 0;
}
