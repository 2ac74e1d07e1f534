#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>

#include <Platform/NeverDestroyed.h>

namespace zelto {

const std::map<std::string, std::string>& GoogleDriveConstants::authorizationURLParameters() {
    static const auto& parameters =
        neverDestroyed(std::map<std::string, std::string>{{"prompt", "consent"}, {"access_type", "offline"}});
    return parameters;
}

} // namespace zelto
