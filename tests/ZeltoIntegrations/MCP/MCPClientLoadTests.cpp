// Memory and threads that remain after many calls and large responses.

#include "MCPCalls.h"

#include <Support/ProcessMemory.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <optional>

namespace zelto {
namespace {

#ifdef ZELTO_MEMORY_IS_SHADOWED
constexpr std::size_t largeResponse = std::size_t{20} << 20;
constexpr int manyCalls = 2'000;
#else
constexpr std::size_t largeResponse = std::size_t{100} << 20;
constexpr int manyCalls = 10'000;
#endif

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// How much memory grows above its current size during a response whose only text is this line, repeated.
std::size_t growthWith(std::string_view line, bool isStream, std::size_t& received) {
    std::string block;
    while (block.size() < (1u << 20)) {
        block += line;
    }
    MCPServer server([&](const ReceivedRequest& request) {
        const auto head =
            R"({"jsonrpc":"2.0","id":)" + idOf(request) + R"(,"result":{"content":[{"type":"text","text":")";
        const auto play = [head, isStream, &block](const Sender& send) {
            send((isStream ? "data: " : "") + head);
            for (std::size_t sent = 0; sent < largeResponse && send(block); sent += block.size()) {
            }
            send(std::string(R"("}]}})") + (isStream ? "\n\n" : ""));
        };
        auto response = eventStream(play);
        if (!isStream) {
            response.raw->replace(response.raw->find("text/event-stream"), 17, "application/json ");
        }
        return response;
    });
    MCPClient client(server.url());
    EXPECT_TRUE(connect(client));
    std::optional<MCPResult<MCPToolCallResult>> result;
    const auto growth = growthDuring([&] { result = callTool(client, "t"); });
    const auto* text = *result ? std::get_if<MCPContentItem::Text>(&(*result)->content.at(0).value) : nullptr;
    EXPECT_NE(text, nullptr);
    received = text ? text->content.text.size() : 0;
    return growth;
}

TEST(MCPClientLoad, ALargeResponseTakesLessThanThreeTimesItsSize) {
    for (const bool isStream : {false, true}) {
        std::size_t received = 0;
        EXPECT_LT(growthWith("iVBORw0KGgoAAAANSUhEUgAA", isStream, received),
                  3 * largeResponse + memoryOverhead)
            << isStream;
        EXPECT_GE(received, largeResponse);
        EXPECT_LT(growthWith(R"(A line of text \"with\" escapes\n)", isStream, received),
                  3 * largeResponse + memoryOverhead)
            << isStream;
        EXPECT_GT(received, largeResponse / 34 * 30);
    }
}

TEST(MCPClientLoad, AResponseOfVeryManyValuesEndsByALimit) {
    std::string zeros = "[0";
    while (zeros.size() < (40u << 20)) {
        zeros += ",0";
    }
    zeros += "]";
    MCPServer server([&](const ReceivedRequest& request) { return jsonResponse(request, zeros); });
    server.http().stopRecording();
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    std::optional<MCPResult<MCPToolCallResult>> result;
    // The server's copies of the response are in this process too.
    EXPECT_LT(growthDuring([&] { result = callTool(client, "t"); }), 10 * zeros.size() + memoryOverhead);
    EXPECT_EQ(*result, failed(URLError{URLErrorCode::responseTooLarge,
                                       "The response has more than 8388608 values and keys."}));
}

TEST(MCPClientLoad, ManyCallsLeaveMemoryDescriptorsAndThreadsWhereTheyWere) {
    std::atomic<int> answered = 0;
    MCPServer server([&](const ReceivedRequest& request) {
        ++answered;
        const auto result = R"({"content":[{"type":"text","text":"response"}]})";
        return idOf(request).ends_with("0\"") ? eventStream(eventOf(respondTo(idOf(request), result)))
                                              : jsonResponse(request, result);
    });
    server.http().stopRecording();
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    const auto call = [&](int count) {
        for (int index = 0; index < count; ++index) {
            ASSERT_TRUE(callTool(client, "t", JSONValue(index)));
        }
    };
    call(manyCalls / 5);
    const auto memoryBefore = memoryOf("VmRSS:");
    const auto descriptorsBefore = entriesOf("/proc/self/fd");
    const auto threadsBefore = entriesOf("/proc/self/task");
    call(manyCalls);
    EXPECT_EQ(answered, manyCalls / 5 + manyCalls);
    // A leak of some hundred bytes per call is too much.
    EXPECT_LT(memoryOf("VmRSS:"), memoryBefore + manyCalls * std::size_t{100} + memoryOverhead);
    EXPECT_LE(entriesOf("/proc/self/fd"), descriptorsBefore);
    // The pool may have grown in a busy moment; a leak would be one thread per call.
    EXPECT_LE(entriesOf("/proc/self/task"), threadsBefore + 4);
    EXPECT_LT(server.http().connectionCount(), 10);
}

} // namespace
} // namespace zelto
