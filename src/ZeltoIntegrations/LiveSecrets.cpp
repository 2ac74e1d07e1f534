#include <ZeltoIntegrations/LiveSecrets.h>

#include <ZeltoCommonLogger/SecretRegistry.h>

#include <deque>
#include <functional>
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
        if (registrations_.contains(hash)) {
            return;
        }
        registrations_.emplace(hash, SecretRegistry::shared().add(secret));
        order_.push_back(hash);
        if (order_.size() > maximumCount) {
            registrations_.erase(order_.front());
            order_.pop_front();
        }
    }

  private:
    std::mutex lock_;
    std::unordered_map<std::size_t, SecretRegistry::Registration> registrations_;
    std::deque<std::size_t> order_;
};

} // namespace

void maskInLog(const ServiceAccountCredentials& credentials) {
    static LiveSecrets secrets;
    for (const auto* field : {&credentials.accessToken, &credentials.refreshToken, &credentials.tokenSecret,
                              &credentials.password, &credentials.loginName}) {
        if (*field) {
            secrets.add(**field);
        }
    }
    if (credentials.additionalInfo) {
        for (const auto& [key, value] : *credentials.additionalInfo) {
            secrets.add(value);
        }
    }
}

} // namespace zelto
