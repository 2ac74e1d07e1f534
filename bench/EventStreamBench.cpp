// Parses event streams of small, medium and large events, in chunks as a network brings them, compared with a
// plain parser that only supports "data" and checks nothing, and with a bare scan for line feeds. The bytes
// are in the processor's cache, as if just received, except for one line of 64 MB. Prints the best of several
// rounds in processor time.

#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

// What any parser must do: find the lines, collect the data, deliver each event.
class PlainParser {
  public:
    std::vector<std::string> append(std::string_view bytes) {
        std::vector<std::string> events;
        for (auto end = bytes.find('\n'); end != bytes.npos; end = bytes.find('\n')) {
            if (line_.empty()) {
                take(bytes.substr(0, end), events);
            } else {
                line_ += bytes.substr(0, end);
                take(std::exchange(line_, {}), events);
            }
            bytes.remove_prefix(end + 1);
        }
        line_ += bytes;
        return events;
    }

  private:
    void take(std::string_view line, std::vector<std::string>& events) {
        if (line.empty()) {
            events.push_back(std::exchange(data_, {}));
        } else if (line.starts_with("data: ")) {
            data_ += line.substr(6);
        }
    }

    std::string line_;
    std::string data_;
};

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

// Passes each chunk of the stream, repeatedly until that many bytes were given.
template <class F> void feed(const std::string& stream, std::size_t chunk, std::size_t wanted, F&& take) {
    for (std::size_t given = 0; given < wanted; given += stream.size()) {
        for (std::size_t at = 0; at < stream.size(); at += chunk) {
            take(std::string_view(stream).substr(at, chunk));
        }
    }
}

void measure(const char* name, const std::string& stream, std::size_t chunk, std::size_t wanted) {
    std::size_t events = 0;
    const auto parsing = best([&] {
        MCPServerSentEventsParser parser;
        events = 0;
        feed(stream, chunk, wanted, [&](std::string_view bytes) {
            const auto some = parser.append(bytes);
            if (!some) {
                std::abort();
            }
            events += some->size();
        });
    });
    const auto plain = best([&] {
        PlainParser parser;
        std::size_t count = 0;
        feed(stream, chunk, wanted, [&](std::string_view bytes) { count += parser.append(bytes).size(); });
        if (count != events) {
            std::abort();
        }
    });
    std::size_t lines = 0;
    const auto scanning = best([&] {
        lines = 0;
        feed(stream, chunk, wanted, [&](std::string_view bytes) { lines += countLines(bytes); });
    });
    if (lines < events) {
        std::abort();
    }
    const auto rate = [&](double seconds) { return static_cast<double>(wanted) / seconds / 1e9; };
    std::printf("%-26s %8zu events %6.2f GB/s %8.2f ms   plain %6.2f GB/s   memchr %6.2f GB/s\n", name,
                events, rate(parsing), parsing * 1e3, rate(plain), rate(scanning));
}

} // namespace
} // namespace zelto

int main() {
    constexpr std::size_t whole = std::size_t{64} << 20;
    constexpr std::size_t usual = std::size_t{64} << 10;
    zelto::measure("100 B, chunks of 64 KiB", zelto::streamOf(100, usual), usual, whole);
    zelto::measure("1 KB, chunks of 64 KiB", zelto::streamOf(1000, usual), usual, whole);
    zelto::measure("1 MB, chunks of 64 KiB", zelto::streamOf(1'000'000, 1), usual, whole);
    zelto::measure("1 MB, one chunk", zelto::streamOf(1'000'000, 1), whole, whole);
    zelto::measure("one line of 64 MB, 1 KiB", zelto::streamOf(whole, whole), 1024, whole);
    zelto::measure("one line of 8 MB, 16 B", zelto::streamOf(whole / 8, whole / 8), 16, whole / 8);
}
