#pragma once

#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The image behind an address other than a data: URL; nothing if there is none.
using ImageSource = std::function<std::optional<IntegrationsInteractorAttachment>(std::string_view source)>;

// HTML in Evernote's format, its images as attachments that it refers to by their MD5. Images come from
// data: URLs and from the source; each stands once however often it is shown.
IntegrationsInteractorEnml enmlContent(std::string_view html, const IntegrationExportHtmlOptions& options,
                                       const ImageSource& source = nullptr);

} // namespace zelto
