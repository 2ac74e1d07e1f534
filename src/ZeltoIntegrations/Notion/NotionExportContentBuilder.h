#pragma once

#include <NotionModel/WriteBlock.h>
#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Turns a formatted body into blocks within the service's limits: 2000 UTF-16 units in a rich text, 100 rich
// texts in a block. Neighbours of one kind become one block; blank texts at the ends of a block go. The time
// that it takes is linear in the size of the body.
struct NotionExportContentBuilder {
    static constexpr std::size_t maxLength = 2000; // of a rich text, in UTF-16 units
    static constexpr std::size_t maxItems = 100;   // in a block

    std::vector<FormattedBodyComponent> bodyComponents;

    std::vector<notion::WriteBlock> makeWriteBlocks() const;

    // Appends the text as rich texts of those annotations and that link, cut where it is too long; none for
    // an empty text.
    static void appendRichText(std::vector<notion::RichText>& items, std::string_view text,
                               const notion::RichText::Annotations& annotations,
                               const std::optional<notion::NotionLink>& link = std::nullopt);

    // What the service takes as a link: an http, https, mailto or tel URL as it stands, a bare e-mail address
    // or telephone number with its scheme in front; of anything else nothing.
    static std::optional<notion::NotionLink> linkOf(std::string_view url);

    bool operator==(const NotionExportContentBuilder&) const = default;
};

} // namespace zelto
