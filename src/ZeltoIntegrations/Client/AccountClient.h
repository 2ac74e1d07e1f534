#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>
#include <ZeltoIntegrations/Client/AccountAuthoriser.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <Platform/JSON/JSONDecoder.h>

#include <memory>
#include <utility>

namespace zelto {

// A service's client that acts for an account. The observers get refreshed tokens and what is known of failed
// requests, as AccountAuthoriser and ServiceClient tell; they may be called after the client was released.
// The arguments are those that the client takes beside its authoriser and its decoder.
template <class Client, class Authoriser, class... Arguments>
std::shared_ptr<Client>
makeAccountClient(const ServiceAccountCredentials& credentials, AccountAuthoriser::TokensObserver onTokens,
                  ServiceClient::RefusalObserver onRefusal, const Arguments&... arguments) {
    auto authoriser = std::make_shared<Authoriser>(credentials);
    authoriser->setTokensObserver(std::move(onTokens));
    auto client = std::make_shared<Client>(std::move(authoriser), JSONDecoder(), arguments...);
    client->setRefusalObserver(std::move(onRefusal));
    return client;
}

} // namespace zelto
