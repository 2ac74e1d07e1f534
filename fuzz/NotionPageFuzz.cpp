// Whatever a body consists of, its blocks keep to the limits of the service and hold all of its text but
// blanks, and the page of it has a JSON.

#include "Require.h"

#include <ZeltoIntegrations/Notion/NotionExportContentBuilder.h>
#include <ZeltoIntegrations/Notion/NotionPageContent.h>

#include <NotionModel/Page.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zelto {

namespace {

using Component = FormattedBodyComponent;
using Part = Component::TextPart;

// Reads the input byte by byte; zeros behind its end.
class Input {
  public:
    explicit Input(std::string_view bytes) : bytes_(bytes) {}

    bool isEmpty() const { return bytes_.empty(); }

    std::size_t byte() {
        const auto value = bytes_.empty() ? 0 : static_cast<unsigned char>(bytes_.front());
        bytes_.remove_prefix(bytes_.empty() ? 0 : 1);
        return value;
    }

    // A text of the next bytes, repeated so that limits come within reach.
    std::string text() {
        const auto length = std::min(byte(), bytes_.size());
        const auto piece = repairedUTF8(bytes_.substr(0, length));
        bytes_.remove_prefix(length);
        std::string text = piece;
        for (auto times = byte() % 64; times > 0 && made_ < maximumMade; --times) {
            text += piece;
            made_ += piece.size();
        }
        return text;
    }

  private:
    // All repetitions together, so that a run takes little time.
    static constexpr std::size_t maximumMade = 20'000;

    std::string_view bytes_;
    std::size_t made_ = 0;
};

Part partOf(Input& input) {
    const auto shape = input.byte();
    return {.value = input.text(),
            .modifiers = {static_cast<int>(shape & 15)},
            .link = (shape & 16) != 0 ? URL::parse(input.text()) : std::nullopt};
}

Component componentOf(Input& input) {
    const auto shape = input.byte();
    std::vector<Part> parts(shape / 8, partOf(input));
    parts.push_back(partOf(input));
    return shape % 8 == 0 || shape % 8 == 7
               ? Component::text(std::move(parts))
               : Component::header(static_cast<Component::HeaderLevel>(shape % 8), std::move(parts));
}

// The text is well-formed.
void appendWithoutBlanks(std::string& all, std::string_view text) {
    while (!text.empty()) {
        const auto codePoint = text.substr(0, firstCodePoint(text).length);
        all += isBlank(codePoint) ? std::string_view() : codePoint;
        text.remove_prefix(codePoint.size());
    }
}

const std::vector<Part>& partsOf(const Component& component) {
    return std::visit([](const auto& each) -> const std::vector<Part>& { return each.parts; },
                      component.value);
}

std::string textOf(const std::vector<Component>& components) {
    std::string all;
    for (const auto& component : components) {
        for (const auto& part : partsOf(component)) {
            appendWithoutBlanks(all, part.value);
        }
    }
    return all;
}

void checkItem(const notion::RichText& item) {
    const auto& [content, link] = item.text;
    require(!content.empty() && isValidUTF8(content) && item.plain_text == content && !item.href);
    require(utf16Length(content) <= NotionExportContentBuilder::maxLength);
    require(!item.annotations.code && !item.annotations.strikethrough);
    require(!link || item.annotations.color == notion::BlockColor::blue);
}

void checkBody(const std::vector<Component>& components) {
    std::string all;
    for (const auto& block : NotionExportContentBuilder{components}.makeWriteBlocks()) {
        require(block.rich_text.size() <= NotionExportContentBuilder::maxItems);
        for (const auto& item : block.rich_text) {
            checkItem(item);
            appendWithoutBlanks(all, item.text.content);
        }
    }
    const auto whole = textOf(components);
    require(all == whole, "the text is not that of the body", whole);
}

void checkPage(NotionPageContent content) {
    const bool hasLink = content.link.has_value();
    auto page = std::move(content).toWriteBlocks();
    const auto count = page.children.size();
    require(count <= NotionPageContent::maxBlocks + (hasLink ? 1 : 0) && count >= (hasLink ? 1 : 0));
    require(page.leftOutCount == 0 || count == NotionPageContent::maxBlocks + (hasLink ? 1 : 0));
    const notion::PageCreateRequest request{.parent = notion::PageParentType::database("d"),
                                            .properties = {},
                                            .children = std::move(page.children)};
    require(JSONEncoder().encode(request).has_value());
}

} // namespace

} // namespace zelto

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace zelto;
    Input input({reinterpret_cast<const char*>(bytes), size});
    NotionPageContent content;
    const auto shape = input.byte();
    if ((shape & 1) != 0) {
        content.userNote = input.text();
    }
    if ((shape & 2) != 0) {
        content.link = IntegrationLinkComponents{input.text(), input.text()};
    }
    if ((shape & 4) != 0) {
        using Address = IntegrationHeaderComponents::Address;
        const std::vector<Address> addresses(shape, Address::sender({input.text(), input.text()}));
        content.header = IntegrationHeaderComponents{.date = {input.text(), input.text()},
                                                     .sendersInfo = {{input.text(), addresses}}};
    }
    std::vector<Component> components;
    while (!input.isEmpty() && components.size() < 200) {
        components.push_back(componentOf(input));
    }
    checkBody(components);
    NotionExportContentBuilder::linkOf({reinterpret_cast<const char*>(bytes), size});
    content.body = std::move(components);
    checkPage(std::move(content));
    return 0;
}
