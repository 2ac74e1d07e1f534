#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

#include <array>
#include <cstdlib>
#include <mutex>
#include <pwd.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;

struct CurrentStore {
    std::mutex lock;
    std::shared_ptr<LVXKeyChainStore> chosen;   // by the host
    std::shared_ptr<LVXKeyChainStore> default_; // once needed
};

CurrentStore& current() {
    static CurrentStore store;
    return store;
}

path homeDirectory() {
    if (const char* home = std::getenv("HOME"); home && *home == '/') {
        return home;
    }
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const bool isKnown =
        getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_dir;
    return isKnown ? path(found->pw_dir) : path("/");
}

// $XDG_DATA_HOME, where it is an absolute path, else the place that it stands for.
path dataDirectory() {
    const char* data = std::getenv("XDG_DATA_HOME");
    return data && *data == '/' ? path(data) : homeDirectory() / ".local" / "share";
}

} // namespace

std::shared_ptr<LVXKeyChainStore> LVXKeyChainStoreFactory::keyChainStore() {
    auto& store = current();
    const std::lock_guard guard(store.lock);
    if (store.chosen) {
        return store.chosen;
    }
    if (!store.default_) {
        store.default_ = defaultStore();
    }
    return store.default_;
}

std::shared_ptr<LVXKeyChainStore> LVXKeyChainStoreFactory::defaultStore() {
    if (SecretServiceKeyChainStore::isOffered()) {
        return std::make_shared<SecretServiceKeyChainStore>();
    }
    return std::make_shared<FileKeyChainStore>(dataDirectory() / "zelto" / "keychain");
}

void LVXKeyChainStoreFactory::setStore(std::shared_ptr<LVXKeyChainStore> store) {
    auto& held = current();
    const std::lock_guard guard(held.lock);
    held.chosen.swap(store);
}

} // namespace zelto
