#include <ZeltoIntegrations/Content/IntegrationAttachments.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <algorithm>
#include <iterator>

namespace zelto {

ZELTO_DESCRIBE_ENUM(IntegrationAttachmentState, restricted, allowed, selected);
ZELTO_JSON_RECORD(IntegrationAttachment, id, name, size, state);
ZELTO_JSON_RECORD(IntegrationAttachments, list);

static std::vector<IntegrationAttachment> ofState(const std::vector<IntegrationAttachment>& list,
                                                  IntegrationAttachmentState state) {
    std::vector<IntegrationAttachment> found;
    std::ranges::copy_if(list, std::back_inserter(found),
                         [state](const auto& attachment) { return attachment.state == state; });
    return found;
}

std::vector<IntegrationAttachment> IntegrationAttachments::selected() const {
    return ofState(list, IntegrationAttachmentState::selected);
}

std::vector<IntegrationAttachment> IntegrationAttachments::allowed() const {
    return ofState(list, IntegrationAttachmentState::allowed);
}

std::vector<IntegrationAttachment> IntegrationAttachments::restricted() const {
    return ofState(list, IntegrationAttachmentState::restricted);
}

} // namespace zelto
