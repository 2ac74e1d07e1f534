#include <ZeltoIntegrations/Notion/NotionConstants.h>

namespace zelto {

const std::map<std::string, std::string>& NotionConstants::authorizationURLParams() {
    static const std::map<std::string, std::string> parameters = {{"owner", "user"}};
    return parameters;
}

} // namespace zelto
