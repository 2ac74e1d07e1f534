#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(IntegrationMeetingTranscriptContent, summary, transcript, notes);
ZELTO_DESCRIBE_ENUM(IntegrationMeetingTranscriptFormat, text, html);
ZELTO_DESCRIBE_ENUM(DataInteractorFetchError, invalidBodyType, emptyExportBody);
ZELTO_DESCRIBE_ENUM(AttachmentFetchError, unknownAttachment, sourceUnreadable, sourceChanged,
                    cannotWriteFile);
ZELTO_DESCRIBE_ENUM(ImportActionType, downloadFile, goToFolder);

} // namespace zelto
