#include <ZeltoIntegrations/Instapaper/InstapaperAuthoriser.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/UTF8.h>

#include <string>

namespace zelto {

bool InstapaperAuthoriser::authorize(URLRequest& request) {
    const auto credentials = accountCredentials();
    if (!credentials.loginName || !credentials.password || !request.body) {
        return false;
    }
    const auto body = request.body->bytes();
    if (!body || !isValidUTF8(viewOf(*body))) {
        return false;
    }
    request.body->append("&" + ExportServiceHelper::urlEncodedString({{"username", *credentials.loginName},
                                                                      {"password", *credentials.password}}));
    if (request.headers.value("Content-Length")) {
        request.headers.set("Content-Length", std::to_string(request.body->size()));
    }
    return true;
}

} // namespace zelto
