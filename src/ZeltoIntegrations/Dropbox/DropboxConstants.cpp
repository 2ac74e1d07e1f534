#include <ZeltoIntegrations/Dropbox/DropboxConstants.h>

#include <Platform/NeverDestroyed.h>
#include <Platform/UUID.h>

namespace zelto {

const std::map<std::string, std::string>& DropboxConstants::authorizationURLParameters() {
    static const auto& parameters = neverDestroyed(std::map<std::string, std::string>{
        {"state", uuid()}, {"token_access_type", "offline"}, {"prompt", "login"}});
    return parameters;
}

} // namespace zelto
