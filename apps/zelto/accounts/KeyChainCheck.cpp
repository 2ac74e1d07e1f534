#include "accounts/KeyChainCheck.h"

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Platform/Crypto/RandomBytes.h>
#include <Platform/UUID.h>

namespace zelto::cli {

namespace {

Failure failureOf(const KeyChainError& error) {
    return {"keyChainError", error.message, NextCommand::again("--keychain", "file")};
}

Failure doesNotKeep() {
    return {"keyChainError", "The key chain does not give back what is stored in it.",
            NextCommand::again("--keychain", "file")};
}

} // namespace

Outcome<void> probeKeyChain() {
    const auto store = LVXKeyChainStoreFactory::keyChainStore();
    const auto key = "Zelto probe - " + uuid();
    const auto value = dataOf(randomToken());
    if (const auto written = store->write(key, value); !written) {
        return failure(failureOf(written.error()));
    }
    const auto read = store->read(key);
    const auto erased = store->erase(key);
    if (!read) {
        return failure(failureOf(read.error()));
    }
    if (*read != value) {
        return failure(doesNotKeep());
    }
    if (!erased) {
        return failure(failureOf(erased.error()));
    }
    return {};
}

Outcome<bool> hasRecord(const std::optional<ServiceAccountCredentials>& credentials) {
    if (!credentials) {
        return false;
    }
    const auto read = LVXKeyChainStoreFactory::keyChainStore()->read(credentials->serviceCredentialsKey);
    return read ? Outcome<bool>(read->has_value()) : failure(failureOf(read.error()));
}

Outcome<void> checkStored(const ServiceAccountCredentials& credentials) {
    ServiceAccountCredentials stored;
    stored.serviceCredentialsKey = credentials.serviceCredentialsKey;
    ServiceCredentialsManager::load(stored);
    if (stored != credentials) {
        return failure(doesNotKeep());
    }
    return {};
}

} // namespace zelto::cli
