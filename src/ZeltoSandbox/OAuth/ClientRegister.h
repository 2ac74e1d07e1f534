#pragma once

#include <ZeltoSandbox/SandboxOptions.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The clients whose secrets are known: those of the options, and the placeholders of every service.
class ClientRegister {
  public:
    explicit ClientRegister(std::vector<SandboxClient> clients) : clients_(std::move(clients)) {}

    std::optional<std::string> secretOf(std::string_view service, std::string_view clientID) const {
        const auto found = std::ranges::find_if(clients_, [&](const SandboxClient& client) {
            return client.service == service && client.clientID == clientID;
        });
        if (found != clients_.end()) {
            return found->clientSecret;
        }
        return clientID == "placeholder-id-of-" + std::string(service)
                   ? std::optional("placeholder-secret-of-" + std::string(service))
                   : std::nullopt;
    }

  private:
    std::vector<SandboxClient> clients_;
};

} // namespace zelto::sandbox
