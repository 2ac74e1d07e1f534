#include <ZeltoIntegrations/Client/OAuthToken.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(OAuthToken, (accessToken, "access_token"), (refreshToken, "refresh_token"),
                  (expiresIn, "expires_in", defaulted));
ZELTO_JSON_RECORD(OAuthErrorBody, error);
ZELTO_JSON_RECORD(Empty);

} // namespace zelto
