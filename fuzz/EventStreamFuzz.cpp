// An event stream in pieces of any size gives the same events as in one piece.

#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <cstdlib>

namespace zelto {
namespace {

using Events = std::vector<MCPServerSentEvent>;

// Up to the first line that is not UTF-8, whose call loses its events; those that came before that call may
// be more in smaller pieces.
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

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

} // namespace
} // namespace zelto

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    // The first byte stretches the text, so that long lines come too.
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
    for (const auto& event : whole.first) {
        zelto::require(!event.data.empty());
    }
    for (const std::size_t piece : {std::size_t{1}, std::size_t{data[1]} + 1}) {
        const auto pieces = zelto::eventsIn(stream, piece);
        zelto::require(pieces.second == whole.second);
        zelto::require(!whole.second || pieces.first == whole.first);
    }
    return 0;
}
