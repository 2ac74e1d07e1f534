#include <ZeltoIntegrations/Notion/NotionConstants.h>

#include <Platform/Lasting.h>

namespace zelto {

const std::map<std::string, std::string>& NotionConstants::authorizationURLParams() {
    static const auto& parameters = lasting(std::map<std::string, std::string>{{"owner", "user"}});
    return parameters;
}

} // namespace zelto
