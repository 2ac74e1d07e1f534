#pragma once

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <Platform/Data.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The image at an address that is not a data: URL; `nullopt` if there is none.
using ImageSource = std::function<std::optional<IntegrationsInteractorAttachment>(std::string_view source)>;

// HTML in Evernote's format, with its images as attachments that it refers to by their MD5. Images come from
// data: URLs and from the source; each is attached once, however often it is shown. `notes` gets what the
// result does not have of the HTML.
IntegrationsInteractorEnml enmlContent(std::string html, const IntegrationExportHtmlOptions& options,
                                       ContentNotes* notes, const ImageSource& source = nullptr);

// The hash by which a note refers to a file of these bytes: their MD5 in lower-case hexadecimal digits.
std::string enmlHash(const Data& data);

} // namespace zelto
