#include <ZeltoCommonLogger/SecretRegistry.h>

#include <ZeltoCommonLogger/SecretIndexInternal.h>

#include <map>
#include <mutex>
#include <utility>

namespace zelto {

namespace {

struct Registered {
    std::mutex lock;
    std::uint64_t lastID = 0;
    std::map<std::uint64_t, std::shared_ptr<const SecretForms>> secrets;
    std::shared_ptr<const SecretIndex> index; // made when it is next needed
};

// Never destroyed: other statics may hold registrations.
Registered& registered() {
    static auto& all = *new Registered;
    return all;
}

} // namespace

SecretRegistry& SecretRegistry::shared() {
    static SecretRegistry registry;
    return registry;
}

SecretRegistry::Registration SecretRegistry::add(std::string_view secret) {
    if (secret.size() < minimumLength) {
        return {};
    }
    auto forms = std::make_shared<const SecretForms>(secret);
    auto& all = registered();
    const std::lock_guard guard(all.lock);
    all.secrets.emplace(++all.lastID, std::move(forms));
    all.index = nullptr;
    return Registration(all.lastID);
}

SecretRegistry::Registration::~Registration() {
    if (id_ == 0) {
        return;
    }
    auto& all = registered();
    const std::lock_guard guard(all.lock);
    all.index = nullptr;
    all.secrets.erase(id_);
}

SecretRegistry::Registration::Registration(Registration&& other) noexcept
    : id_(std::exchange(other.id_, 0)) {}

SecretRegistry::Registration& SecretRegistry::Registration::operator=(Registration&& other) noexcept {
    std::swap(id_, other.id_);
    return *this;
}

std::shared_ptr<const SecretIndex> currentSecretIndex() {
    auto& all = registered();
    const std::lock_guard guard(all.lock);
    if (!all.index) {
        SecretIndex::Secrets secrets;
        for (const auto& [id, secret] : all.secrets) {
            secrets.push_back(secret);
        }
        all.index = std::make_shared<const SecretIndex>(std::move(secrets));
    }
    return all.index;
}

} // namespace zelto
