#pragma once

#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <Platform/Data.h>
#include <Platform/JSON/JSONCoding.h>

#include <string>
#include <vector>

namespace zelto {

// A file of a note, with its bytes in memory. In JSON the bytes are Base64 text.
struct EvernoteAttachment {
    std::string name;
    std::string mimeType;
    Data data;

    bool operator==(const EvernoteAttachment&) const = default;
};

ZELTO_JSON_CODED(EvernoteAttachment);

// Field by field.
EvernoteAttachment toEvernoteAttachment(IntegrationsInteractorAttachment attachment);
IntegrationsInteractorAttachment toIntegrationsInteractorAttachment(EvernoteAttachment attachment);

std::vector<EvernoteAttachment>
toEvernoteAttachments(std::vector<IntegrationsInteractorAttachment> attachments);
std::vector<IntegrationsInteractorAttachment>
toIntegrationsInteractorAttachments(std::vector<EvernoteAttachment> attachments);

} // namespace zelto
