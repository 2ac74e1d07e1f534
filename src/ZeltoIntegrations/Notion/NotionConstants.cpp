#include <ZeltoIntegrations/Notion/NotionConstants.h>

#include <Platform/NeverDestroyed.h>

namespace zelto {

const std::map<std::string, std::string>& NotionConstants::authorizationURLParams() {
    static const auto& parameters = neverDestroyed(std::map<std::string, std::string>{{"owner", "user"}});
    return parameters;
}

} // namespace zelto
