#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>

#include <Platform/Lasting.h>

namespace zelto {

const std::map<std::string, std::string>& GoogleDriveConstants::authorizationURLParameters() {
    static const auto& parameters =
        lasting(std::map<std::string, std::string>{{"prompt", "consent"}, {"access_type", "offline"}});
    return parameters;
}

} // namespace zelto
