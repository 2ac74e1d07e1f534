#pragma once

#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What a note consists of.
struct EvernoteContent {
    std::string text;
    std::vector<IntegrationsInteractorAttachment> attachments; // that belong to the text
    std::string sourceUrl;

    bool operator==(const EvernoteContent&) const = default;
};

// The remark above the message as HTML, in which "&" stays as it is. Empty for one that is absent or blank.
std::string htmlRemark(const std::optional<std::string>& remark);

} // namespace zelto
