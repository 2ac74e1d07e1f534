#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

namespace zelto {

ConfigurationDiff& ConfigurationDiff::attachments(const IntegrationAttachments& original,
                                                  const IntegrationAttachments& user,
                                                  bool attachmentsAreSelectedByDefault) {
    const auto offered = attachmentsAreSelectedByDefault ? original.allowed() : original.selected();
    return field("attachments", offered.size(), user.selected().size());
}

} // namespace zelto
