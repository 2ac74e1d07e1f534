// The memory of the whole command for a large response.

#include <zelto/EchoingServer.h>
#include <zelto/ZeltoProgram.h>

#include <Support/Sanitizers.h>

#include <Platform/Numbers.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

#if defined(ZELTO_ADDRESS_SANITIZER) || defined(ZELTO_THREAD_SANITIZER)
constexpr std::size_t largeResponse = std::size_t{20} << 20;
constexpr std::size_t overhead = std::size_t{600} << 20; // shadow memory, and memory that is kept when freed
#else
constexpr std::size_t largeResponse = std::size_t{40} << 20;
constexpr std::size_t overhead = std::size_t{32} << 20; // the program itself
#endif

std::string repeated(std::string_view piece) {
    std::string text;
    text.reserve(largeResponse + piece.size());
    while (text.size() < largeResponse) {
        text += piece;
    }
    return text;
}

// How much memory the program took at most.
std::size_t memoryOf(const ZeltoProgram& zelto, const std::string& command) {
    const auto outcome = zelto.runShell(
        "python3 -c 'import resource, subprocess, sys\n"
        "subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)\n"
        "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024, end=\"\")' zelto mcp call " +
        command);
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto size = numberIn<std::size_t>(outcome.output);
    EXPECT_TRUE(size) << outcome.output;
    return size.value_or(0);
}

struct LargeContent {
    std::string begin;
    std::string piece;
    std::string end;
    std::string more = ""; // members of the result
    std::size_t factor = 3;
};

TEST(McpMemory, ALargeResponseTakesLessThanThreeTimesItsSizeAndOneOfManyItemsFour) {
    const std::string beginText = R"({"type":"text","text":")";
    for (const auto& each : std::vector<LargeContent>{
             {beginText, "iVBORw0KGgoAAAANSUhEUgAA", "\"}"},
             {beginText, R"(A line of text with some words.\n)", "\"}"},
             {beginText, R"(A line of text with some words.\n)", "\"}", R"(,"isError":true)"},
             {R"({"type":"image","mimeType":"image/png","data":")", "iVBORw0KGgoAAAANSUhEUgAA", "\"}"},
             {"", beginText + std::string(1000, 'x') + "\"},", R"({"type":"text","text":"last"})", "", 4}}) {
        auto content = each.begin + repeated(each.piece) + each.end;
        MCPServer server([&](const ReceivedRequest& request) {
            if (request.method == "DELETE") {
                return status(200);
            }
            return jsonResponse(request, "{\"content\":[" + content + "]" + each.more + "}");
        });
        server.http().stopRecording();
        const ZeltoProgram zelto;
        for (const std::string options : {"", " --json", " --out out"}) {
            EXPECT_LT(memoryOf(zelto, server.url().absoluteString() + " t" + options),
                      each.factor * content.size() + overhead)
                << each.piece.substr(0, 40) << each.more << options;
        }
    }
}

} // namespace
} // namespace zelto
