#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(IntegrationLinkFormat, raw, html, markdown, mrkdwn);
ZELTO_DESCRIBE_ENUM(IntegrationWebLinkVisibility, onlyMe, anyone, team);

} // namespace zelto
