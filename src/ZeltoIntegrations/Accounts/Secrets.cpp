#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <ZeltoIntegrations/Accounts/RegistrationInternal.h>

#include <ZeltoCommonLogger/SecretRegistry.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <mutex>

namespace zelto {

namespace {

// In the order of RegistrationInternal.h, which is made when this is built.
enum Service : std::size_t {
    asana,
    dropbox,
    evernote,
    googleDrive,
    goTo,
    hubspot,
    meisterTask,
    microsoftTeams,
    notion,
    oneNote,
    slack,
    tickTick,
    todoist,
    trello,
    zoom,
    serviceCount
};

static_assert(std::size(registration::serviceNames) == serviceCount);

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

    const Client& operator[](Service service) {
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

const std::string& id(Service service) {
    return Clients::shared()[service].id;
}

const std::string& secret(Service service) {
    return Clients::shared()[service].secret;
}

} // namespace

const std::string& Secrets::asanaClientKey() {
    return id(asana);
}

const std::string& Secrets::asanaClientSecret() {
    return secret(asana);
}

const std::string& Secrets::dropboxClientID() {
    return id(dropbox);
}

const std::string& Secrets::dropboxClientSecret() {
    return secret(dropbox);
}

const std::string& Secrets::evernoteConsumerKey() {
    return id(evernote);
}

const std::string& Secrets::evernoteConsumerSecret() {
    return secret(evernote);
}

const std::string& Secrets::googleDriveClientID() {
    return id(googleDrive);
}

const std::string& Secrets::googleDriveClientSecret() {
    return secret(googleDrive);
}

const std::string& Secrets::goToClientKey() {
    return id(goTo);
}

const std::string& Secrets::goToClientSecret() {
    return secret(goTo);
}

const std::string& Secrets::hubspotClientID() {
    return id(hubspot);
}

const std::string& Secrets::hubspotClientSecret() {
    return secret(hubspot);
}

const std::string& Secrets::meisterTaskClientKey() {
    return id(meisterTask);
}

const std::string& Secrets::meisterTaskClientSecret() {
    return secret(meisterTask);
}

const std::string& Secrets::microsoftTeamsClientKey() {
    return id(microsoftTeams);
}

const std::string& Secrets::microsoftTeamsClientSecret() {
    return secret(microsoftTeams);
}

const std::string& Secrets::notionClientKey() {
    return id(notion);
}

const std::string& Secrets::notionClientSecret() {
    return secret(notion);
}

const std::string& Secrets::oneNoteClientKey() {
    return id(oneNote);
}

const std::string& Secrets::oneNoteClientSecret() {
    return secret(oneNote);
}

const std::string& Secrets::slackClientID() {
    return id(slack);
}

const std::string& Secrets::slackClientSecret() {
    return secret(slack);
}

const std::string& Secrets::tickTickClientKey() {
    return id(tickTick);
}

const std::string& Secrets::tickTickClientSecret() {
    return secret(tickTick);
}

const std::string& Secrets::todoistClientKey() {
    return id(todoist);
}

const std::string& Secrets::todoistClientSecret() {
    return secret(todoist);
}

const std::string& Secrets::trelloClientKey() {
    return id(trello);
}

const std::string& Secrets::trelloClientSecret() {
    return secret(trello);
}

const std::string& Secrets::zoomClientKey() {
    return id(zoom);
}

const std::string& Secrets::zoomClientSecret() {
    return secret(zoom);
}

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
