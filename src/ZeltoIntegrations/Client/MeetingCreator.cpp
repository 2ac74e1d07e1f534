#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <Platform/EnumDescription.h>

#include <utility>

namespace zelto {

ZELTO_DESCRIBE_ENUM(MeetingCreatorError, oauthError, invalidAccount, serviceError, internalError,
                    itemNotFound, forbidden);

MeetingCreatorError meetingCreatorError(ServiceClientError error) {
    switch (error) {
    case ServiceClientError::internalError:
    case ServiceClientError::connectionError:
    case ServiceClientError::dataParseError:
    case ServiceClientError::toManyRequests:
        return MeetingCreatorError::internalError;
    case ServiceClientError::serviceInternalError:
    case ServiceClientError::apiCallError:
        return MeetingCreatorError::serviceError;
    case ServiceClientError::authorizationError:
    case ServiceClientError::oauthError:
        return MeetingCreatorError::oauthError;
    case ServiceClientError::invalidAccount:
        return MeetingCreatorError::invalidAccount;
    case ServiceClientError::itemNotFound:
        return MeetingCreatorError::itemNotFound;
    case ServiceClientError::forbidden:
        return MeetingCreatorError::forbidden;
    }
    std::unreachable();
}

} // namespace zelto
