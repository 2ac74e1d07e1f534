#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(IntegrationExportError, canceled, internalError, createBodyError, convertError,
                    unsupportedFormat, fileAlreadyExists, oauthError, connectionError, createTaskError,
                    uploadAttachmentError, urlEncodeError, createUrlError, xUrlCallbackError);
ZELTO_DESCRIBE_ENUM(IntegrationLoadError, internalError, oauthError, connectionError);

} // namespace zelto
