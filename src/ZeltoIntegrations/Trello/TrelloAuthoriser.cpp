#include <ZeltoIntegrations/Trello/TrelloAuthoriser.h>

#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/URLComponents.h>

#include <utility>
#include <vector>

namespace zelto {

bool TrelloAuthoriser::authorize(URLRequest& request) {
    const auto token = sentToken(accountCredentials().accessToken);
    if (!token) {
        return false;
    }
    auto components = URLComponents::of(request.url);
    // "?" with nothing after it is no item.
    std::erase(components.queryItems, URLQueryItem{});
    components.queryItems.push_back({"key", TrelloConstants::clientKey()});
    components.queryItems.push_back({"token", *token});
    auto url = components.url();
    if (!url) {
        return false;
    }
    request.url = std::move(*url);
    return true;
}

} // namespace zelto
