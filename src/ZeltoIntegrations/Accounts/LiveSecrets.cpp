#include <ZeltoIntegrations/Accounts/LiveSecrets.h>

#include <ZeltoCommonLogger/LogMasking.h>
#include <ZeltoCommonLogger/SecretRegistry.h>

#include <functional>
#include <iterator>
#include <list>
#include <mutex>
#include <unordered_map>

namespace zelto {

namespace {

// Each refresh of a token brings new secrets; a client that runs for months must not keep them all.
constexpr std::size_t maximumCount = 1024;

class LiveSecrets {
  public:
    void add(const std::string& secret) {
        const auto hash = std::hash<std::string>()(secret);
        const std::lock_guard guard(lock_);
        if (const auto known = places_.find(hash); known != places_.end()) {
            secrets_.splice(secrets_.end(), secrets_, known->second);
            return;
        }
        secrets_.push_back({hash, SecretRegistry::shared().add(secret)});
        places_.emplace(hash, std::prev(secrets_.end()));
        if (secrets_.size() > maximumCount) {
            places_.erase(secrets_.front().hash);
            secrets_.pop_front();
        }
    }

  private:
    struct Secret {
        std::size_t hash;
        SecretRegistry::Registration registration;
    };

    std::mutex lock_;
    std::list<Secret> secrets_; // the one passed last at the end
    std::unordered_map<std::size_t, std::list<Secret>::iterator> places_;
};

} // namespace

void maskInLog(const ServiceAccountCredentials& credentials) {
    // Never destroyed: other threads may still pass secrets when the process ends.
    static auto& secrets = *new LiveSecrets;
    for (const auto* field : {&credentials.accessToken, &credentials.refreshToken, &credentials.tokenSecret,
                              &credentials.password}) {
        if (*field) {
            secrets.add(**field);
        }
    }
    if (credentials.additionalInfo) {
        for (const auto& [key, value] : *credentials.additionalInfo) {
            if (isSecretKey(key)) {
                secrets.add(value);
            }
        }
    }
}

} // namespace zelto
