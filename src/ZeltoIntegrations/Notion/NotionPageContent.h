#pragma once

#include <NotionModel/WriteBlock.h>
#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>
#include <ZeltoIntegrations/Content/IntegrationHeaderComponents.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The blocks of a page, as many as the service takes.
struct NotionPageBlocks {
    std::vector<notion::WriteBlock> children;
    std::size_t leftOutCount = 0; // of the blocks for which there was no room

    bool operator==(const NotionPageBlocks&) const = default;
};

// What a page is composed of. What is absent has no block.
struct NotionPageContent {
    static constexpr std::size_t maxBlocks = 99; // besides the link's

    std::optional<std::string> userNote;
    std::optional<IntegrationHeaderComponents> header;
    std::optional<std::vector<FormattedBodyComponent>> body;
    std::optional<IntegrationLinkComponents> link;

    // The note with a divider behind it, the header's lines in one paragraph, the body, and the link in a
    // paragraph of its own, which is never left out. A header of more texts than a block takes goes on in
    // further paragraphs. The title and the URL of the link stay as they are, however long.
    NotionPageBlocks toWriteBlocks() &&;

    bool operator==(const NotionPageContent&) const = default;
};

} // namespace zelto
