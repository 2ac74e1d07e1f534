// Cuts texts of 4 MB into pieces of 2000 UTF-16 units, beside a plain count of their units, makes the blocks
// of mails of two sizes, and a whole page with its JSON. Prints the best of several rounds in processor time.

#include <ZeltoIntegrations/Notion/NotionExportContentBuilder.h>
#include <ZeltoIntegrations/Notion/NotionPageContent.h>

#include <NotionModel/Page.h>
#include <Platform/Text.h>
#include <TrovenhalCommon/TextChunks.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelto {

namespace {

constexpr std::size_t textBytes = 4'000'000;
constexpr std::size_t limit = 2000;
constexpr int rounds = 15;

double seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double bestSeconds(const std::function<std::size_t()>& work, std::size_t& result) {
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const auto begin = seconds();
        result = work();
        best = std::min(best, seconds() - begin);
    }
    return best;
}

std::string repeated(std::initializer_list<std::string_view> parts, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) {
        for (const auto part : parts) {
            text += part;
        }
    }
    return text;
}

void measureChunk(const char* name, const std::string& text) {
    std::size_t units = 0;
    std::size_t pieces = 0;
    const auto scan = bestSeconds([&] { return utf16Length(text); }, units);
    const auto cut = bestSeconds([&] { return chunk(text, limit).size(); }, pieces);
    const auto speed = [&](double time) { return static_cast<double>(text.size()) / time / 1e6; };
    std::printf("%-28s scan %6.0f MB/s, chunk %6.0f MB/s, %.2f of it (%zu pieces)\n", name, speed(scan),
                speed(cut), scan / cut, pieces);
}

// Paragraphs of some lines, with a heading every now and then and a part of each paragraph in bold or a link.
std::vector<FormattedBodyComponent> bodyOf(std::size_t bytes) {
    using Part = FormattedBodyComponent::TextPart;
    std::vector<FormattedBodyComponent> components;
    const auto line = repeated({"The quick brown fox jumps over the lazy dog. ", "Größe 😀 日本語. "}, 400);
    const auto url = URL::parse("https://example.org/a/long/path?with=query");
    for (std::size_t size = 0; size < bytes; size += 3 * line.size()) {
        components.push_back(FormattedBodyComponent::text(
            {Part{.value = line}, Part{.value = line, .modifiers = Part::Modifiers::bold},
             Part{.value = line, .link = url}, Part{.value = "\n"}}));
        if (components.size() % 10 == 0) {
            components.push_back(FormattedBodyComponent::header(FormattedBodyComponent::HeaderLevel::h2,
                                                                {Part{.value = "Next"}}));
        }
    }
    return components;
}

void measureBody(const char* name, std::size_t bytes) {
    const NotionExportContentBuilder builder{bodyOf(bytes)};
    std::size_t blocks = 0;
    const auto time = bestSeconds([&] { return builder.makeWriteBlocks().size(); }, blocks);
    std::printf("%-28s %8.2f ms %8.0f MB/s (%zu blocks)\n", name, time * 1e3,
                static_cast<double>(bytes) / time / 1e6, blocks);
}

// A whole page, of as many blocks as the service takes, with its JSON.
void measurePage(const char* name, std::size_t bytes) {
    const NotionPageContent content{.body = bodyOf(bytes)};
    std::size_t size = 0;
    const auto time = bestSeconds(
        [&] {
            notion::PageCreateRequest request{.parent = notion::PageParentType::database("d")};
            request.children = NotionPageContent(content).toWriteBlocks().children;
            return JSONEncoder().encode(request)->size();
        },
        size);
    std::printf("%-28s %8.2f ms %8.0f MB/s (%zu bytes of JSON)\n", name, time * 1e3,
                static_cast<double>(bytes) / time / 1e6, size);
}

} // namespace

} // namespace zelto

int main() {
    using namespace zelto;
    measureChunk("ASCII", repeated({"The quick brown fox jumps over the lazy dog.\r\n"}, textBytes));
    measureChunk("mixed", repeated({"Größe, naïve, 日本語, 😀 e\u0301. "}, textBytes));
    measureChunk("Japanese", repeated({"日本語の文章です。"}, textBytes));
    measureChunk("emoji", repeated({"😀👍🏽👨‍👩‍👧‍👦🇩🇪❤️"}, textBytes));
    measureChunk("flags alone", repeated({"🇩🇪🇫🇷"}, textBytes));
    measureBody("blocks of a mail of 4 MB", 4'000'000);
    measureBody("blocks of a mail of 32 MB", 32'000'000);
    measurePage("page of a mail of 1 MB", 1'000'000);
}
