#include <ZeltoIntegrations/Notion/NotionPageContent.h>

#include <ZeltoIntegrations/Notion/NotionExportContentBuilder.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>
#include <variant>

namespace zelto {

namespace {

using Items = std::vector<notion::RichText>;
using Blocks = std::vector<notion::WriteBlock>;
using Address = IntegrationHeaderComponents::Address;

constexpr notion::RichText::Annotations plain;
constexpr notion::RichText::Annotations bold{.bold = true};
constexpr notion::RichText::Annotations italic{.italic = true};
constexpr notion::RichText::Annotations linked{
    .bold = true, .underline = true, .color = notion::BlockColor::blue};

// The texts of the header, in their order.
class HeaderText {
  public:
    explicit HeaderText(const IntegrationHeaderComponents& header) {
        for (const auto& line : header.sendersInfo) {
            label(line.text);
            addresses(line.value);
            add("\n");
        }
        if (header.sendersInfo.empty()) {
            add("\n");
        }
        label(header.date.text);
        add(header.date.value);
    }

    Items take() { return std::move(items_); }

  private:
    void add(std::string_view text, const notion::RichText::Annotations& annotations = plain) {
        NotionExportContentBuilder::appendRichText(items_, text, annotations);
    }

    void label(std::string_view text) {
        add(text, bold);
        add(" ");
    }

    void addresses(const std::vector<Address>& all) {
        for (const auto& each : all) {
            if (&each != &all.front()) {
                add(", ");
            }
            std::visit([this](const auto& address) { add(address); }, each.value);
        }
    }

    void add(const Address::NoSender& none) { add(none.text, italic); }

    void add(const Address::Sender& sender) {
        const auto& [name, email] = sender.address;
        if (!name) {
            return add(email);
        }
        add(*name);
        add(" ");
        add(email, italic);
    }

    Items items_;
};

void appendNote(Blocks& blocks, std::string_view note) {
    Items items;
    NotionExportContentBuilder::appendRichText(items, note, plain);
    for (auto& item : items) {
        blocks.push_back(notion::WriteBlock::paragraph({std::move(item)}));
    }
    blocks.push_back(notion::WriteBlock::divider());
}

void appendHeader(Blocks& blocks, const IntegrationHeaderComponents& header) {
    auto items = HeaderText(header).take();
    constexpr auto room = static_cast<std::ptrdiff_t>(NotionExportContentBuilder::maxItems);
    for (auto begin = items.begin(); begin != items.end();) {
        const auto end = begin + std::min(items.end() - begin, room);
        blocks.push_back(
            notion::WriteBlock::paragraph(Items(std::move_iterator(begin), std::move_iterator(end))));
        begin = end;
    }
}

notion::WriteBlock linkBlock(const IntegrationLinkComponents& link) {
    return notion::WriteBlock::paragraph(
        {notion::RichText::of(link.text, linked, notion::NotionLink{link.url})});
}

} // namespace

NotionPageBlocks NotionPageContent::toWriteBlocks() && {
    NotionPageBlocks page;
    auto& blocks = page.children;
    if (userNote) {
        appendNote(blocks, *userNote);
    }
    if (header) {
        appendHeader(blocks, *header);
    }
    if (body) {
        const NotionExportContentBuilder builder{*std::move(body)};
        std::ranges::move(builder.makeWriteBlocks(), std::back_inserter(blocks));
    }
    if (blocks.size() > maxBlocks) {
        page.leftOutCount = blocks.size() - maxBlocks;
        blocks.resize(maxBlocks);
    }
    if (link) {
        blocks.push_back(linkBlock(*link));
    }
    return page;
}

} // namespace zelto
