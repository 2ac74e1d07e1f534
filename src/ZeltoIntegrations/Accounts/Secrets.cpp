#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <ZeltoIntegrations/Accounts/RegistrationInternal.h>

#include <ZeltoCommonLogger/SecretRegistry.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <mutex>

namespace zelto {

namespace {

constexpr auto serviceCount = std::size(registration::serviceNames);

struct Client {
    std::string id;
    std::string secret;
};

std::string unscrambled(const registration::Scrambled& scrambled) {
    std::string text(scrambled.size, '\0');
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto key = registration::key[(scrambled.offset + index) % std::size(registration::key)];
        text[index] = static_cast<char>(registration::bytes[scrambled.offset + index] ^ key);
    }
    return text;
}

class Clients {
  public:
    static Clients& shared() {
        static auto& clients = *new Clients;
        return clients;
    }

    bool override_(std::size_t service, std::optional<std::string> id, std::optional<std::string> secret) {
        const std::lock_guard guard(lock_);
        if (wasRead_) {
            return false;
        }
        auto& client = clients_[service];
        client.id = std::move(id).value_or(client.id);
        client.secret = std::move(secret).value_or(client.secret);
        return true;
    }

    const Client& operator[](std::size_t service) {
        std::call_once(reading_, [this] { read(); });
        return clients_[service];
    }

  private:
    Clients() {
        for (std::size_t service = 0; service < serviceCount; ++service) {
            clients_[service] = {unscrambled(registration::clientIDs[service]),
                                 unscrambled(registration::clientSecrets[service])};
        }
    }

    void read() {
        const std::lock_guard guard(lock_);
        wasRead_ = true;
        for (std::size_t service = 0; service < serviceCount; ++service) {
            masks_[service] = SecretRegistry::shared().add(clients_[service].secret);
        }
    }

    std::mutex lock_;
    std::once_flag reading_;
    bool wasRead_ = false;
    std::array<Client, serviceCount> clients_;
    std::array<SecretRegistry::Registration, serviceCount> masks_;
};

const std::string& id(std::size_t service) {
    return Clients::shared()[service].id;
}

const std::string& secret(std::size_t service) {
    return Clients::shared()[service].secret;
}

} // namespace

#include <ZeltoIntegrations/Accounts/SecretsGettersInternal.inc>

bool Secrets::overrideClient(std::string_view serviceName, std::optional<std::string> clientID,
                             std::optional<std::string> clientSecret) {
    const auto names = serviceNames();
    const auto service = std::ranges::find(names, serviceName);
    return service != names.end() &&
           Clients::shared().override_(static_cast<std::size_t>(service - names.begin()), std::move(clientID),
                                       std::move(clientSecret));
}

std::span<const std::string_view> Secrets::serviceNames() {
    return registration::serviceNames;
}

const std::string& Secrets::webSite() {
    static const auto& site = *new std::string(registration::webSite);
    return site;
}

} // namespace zelto
