#pragma once

#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What a note consists of.
struct EvernoteContent {
    std::string text;
    std::vector<IntegrationsInteractorAttachment> attachments; // that belong to the text
    std::string sourceUrl;

    bool operator==(const EvernoteContent&) const = default;
};

// The remark above the message as HTML. Empty for one that is absent or blank.
std::string htmlRemark(const std::optional<std::string>& remark);

// A link of the user's as HTML. In it and in a remark, markup characters are written as entities but "&",
// which stays.
std::string htmlLink(std::string_view url);

} // namespace zelto
