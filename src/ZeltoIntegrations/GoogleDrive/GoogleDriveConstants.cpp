#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>

namespace zelto {

const std::map<std::string, std::string>& GoogleDriveConstants::authorizationURLParameters() {
    static const std::map<std::string, std::string> parameters = {{"prompt", "consent"},
                                                                  {"access_type", "offline"}};
    return parameters;
}

} // namespace zelto
