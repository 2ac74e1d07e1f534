#pragma once

#include "CommandLine.h"
#include "Outcome.h"

#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <filesystem>
#include <memory>
#include <string>

namespace zelto::cli {

// Where this call keeps accounts: --data-dir, else the user's data directory.
std::filesystem::path dataDirectory(const Invocation& invocation);

// Puts the key chain of --keychain in force; it is opened when it is first needed.
void installKeyChain(const Invocation& invocation);

// The accounts of a data directory.
class Workspace {
  public:
    // `readOnly`: nothing will be stored, so a directory that is not there is not made either.
    static Outcome<Workspace> open(const Invocation& invocation, bool readOnly = false);

    SQLiteAccountStorage& storage() const { return *storage_; }

    std::shared_ptr<ServiceConfigurationsStorage> sharedStorage() const { return storage_; }

    // The failure of anything that was stored since the last look, which interfaces cannot report.
    Outcome<void> storageOutcome() const;

    // The account of an identifier, or the account of a service: the one used last, or its only one. An
    // application without an account gets one, unless nothing may be changed.
    Outcome<ServiceAccountConfiguration> account(const std::string& idOrService, IntegrationsManager& manager,
                                                 bool mayConnect) const;

  private:
    explicit Workspace(std::shared_ptr<SQLiteAccountStorage> storage) : storage_(std::move(storage)) {}

    std::shared_ptr<SQLiteAccountStorage> storage_;
};

// The failure of a flow that connects an account.
Failure failureOf(const IntegrationAccountCreationError& error);
Failure failureOf(const StorageError& error);

} // namespace zelto::cli
