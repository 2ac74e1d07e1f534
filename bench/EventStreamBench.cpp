// Cuts event streams of small, middle and large events, in chunks as a network brings them, beside a bare
// scan for line feeds. Prints the best of several rounds in processor time.

#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

namespace zelto {
namespace {

constexpr int rounds = 7;

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

template <class F> double best(F&& work) {
    double least = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const auto start = processorSeconds();
        work();
        least = std::min(least, processorSeconds() - start);
    }
    return least;
}

// A message of that size, in Base64-like text.
std::string streamOf(std::size_t eventSize, std::size_t wanted) {
    const std::string head = R"(data: {"jsonrpc":"2.0","id":"1","result":")";
    const std::string tail = "\"}\n\n";
    std::string event = head;
    while (event.size() + tail.size() < eventSize) {
        event += static_cast<char>('A' + event.size() % 26);
    }
    event += tail;
    std::string stream;
    while (stream.size() < wanted) {
        stream += event;
    }
    return stream;
}

std::size_t countLines(std::string_view chunk) {
    std::size_t lines = 0;
    const char* at = chunk.data();
    const char* const end = at + chunk.size();
    while (const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
        ++lines;
        at = static_cast<const char*>(found) + 1;
    }
    return lines;
}

void measure(const char* name, const std::string& stream, std::size_t chunk) {
    std::size_t events = 0;
    const auto parsing = best([&] {
        MCPServerSentEventsParser parser;
        events = 0;
        for (std::size_t at = 0; at < stream.size(); at += chunk) {
            const auto some = parser.append(std::string_view(stream).substr(at, chunk));
            if (!some) {
                std::abort();
            }
            events += some->size();
        }
    });
    std::size_t lines = 0;
    const auto scanning = best([&] {
        lines = 0;
        for (std::size_t at = 0; at < stream.size(); at += chunk) {
            lines += countLines(std::string_view(stream).substr(at, chunk));
        }
    });
    const auto size = static_cast<double>(stream.size());
    std::printf("%-28s %9zu events  %6.2f GB/s  (memchr %6.2f GB/s, %zu lines)  %8.2f ms\n", name, events,
                size / parsing / 1e9, size / scanning / 1e9, lines, parsing * 1e3);
}

} // namespace
} // namespace zelto

int main() {
    constexpr std::size_t whole = std::size_t{64} << 20;
    constexpr std::size_t usual = std::size_t{64} << 10;
    zelto::measure("100 B, chunks of 64 KiB", zelto::streamOf(100, whole), usual);
    zelto::measure("1 KB, chunks of 64 KiB", zelto::streamOf(1000, whole), usual);
    zelto::measure("1 MB, chunks of 64 KiB", zelto::streamOf(1'000'000, whole), usual);
    zelto::measure("1 MB, one chunk", zelto::streamOf(1'000'000, whole), whole);
    zelto::measure("one line of 64 MB, 1 KiB", zelto::streamOf(whole, whole), 1024);
    zelto::measure("one line of 8 MB, 16 B", zelto::streamOf(whole / 8, whole / 8), 16);
}
