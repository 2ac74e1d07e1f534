#pragma once

#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/Export/ContentText.h>
#include <ZeltoIntegrations/Export/WebLinkCache.h>

#include <optional>
#include <utility>

namespace zelto {

// What the exporters share whose service takes the message's text with a link to it, or the link alone. A
// service chooses its links' format, and which link a text carries that has the plain one.
template <class Data, ContentText::Link linkOfText, IntegrationLinkFormat linkFormat>
class TextExporter : public AccountDataExporter<Data> {
  public:
    using AccountDataExporter<Data>::AccountDataExporter;

    // Of the last export; kept in the account.
    WebLinkCache webLinks{*this};

    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const {
        return textContentTypes(target);
    }

    // No value for a type that is not supported, and where the host has no text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion) {
        loadTextPreview(this->dataInteractor(), type, texts, webLinks.settings(), std::move(completion));
    }

  protected:
    static constexpr auto texts = textContents(linkOfText, linkFormat);
};

} // namespace zelto
