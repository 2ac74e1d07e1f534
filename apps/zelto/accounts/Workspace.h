#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoHost/Storage/AccountLock.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <filesystem>
#include <memory>
#include <string>

namespace zelto::cli {

// Where this call keeps accounts: --data-dir, else the user's data directory.
std::filesystem::path dataDirectory(const Invocation& invocation);

// Puts the key chain of --keychain in force, which is opened when it is first needed, and the lock that keeps
// refreshes apart between processes.
void installKeyChain(const Invocation& invocation);

// The accounts of a data directory.
class Workspace {
  public:
    // `readOnly`: nothing will be stored, so a directory that is not there is not made either.
    static Outcome<Workspace> open(const Invocation& invocation, bool readOnly = false);

    const std::filesystem::path& directory() const { return directory_; }

    SQLiteAccountStorage& storage() const { return *storage_; }

    // Whether the account was connected in a sandbox.
    Outcome<bool> isOfSandbox(const ServiceAccountConfiguration& account) const;

    // Whether this call's requests go to one.
    bool usesSandbox() const { return usesSandbox_; }

    std::shared_ptr<ServiceConfigurationsStorage> sharedStorage() const { return storage_; }

    // The failure of anything that was stored since the last look, which interfaces cannot report.
    Outcome<void> storageOutcome() const;

    // The account of an identifier, or the account of a service: the one used last, or its only one; where a
    // sandbox is used, one of the sandbox goes before the others, and where none is, one that is of no
    // sandbox. An application without an account gets one, unless nothing may be changed.
    Outcome<ServiceAccountConfiguration> account(const std::string& idOrService, IntegrationsManager& manager,
                                                 bool mayConnect) const;

    // The account of an identifier, or a service's only account, with the same preference for those that go
    // with where the requests go. A failure lists those of a service that has several.
    Outcome<ServiceAccountConfiguration> storedAccount(const std::string& idOrService) const;

    // Takes the account's lock; that this waits for another process is written to standard error.
    Outcome<AccountLock> lock(const std::string& identifier) const;

    // The lock of an account whose token may be refreshed, taken before its secrets are loaded; `nullopt`
    // for all others. The account becomes what it is once nobody else has it.
    Outcome<std::optional<AccountLock>> lockForUse(ServiceAccountConfiguration& account) const;

  private:
    Workspace(std::shared_ptr<SQLiteAccountStorage> storage, std::filesystem::path directory,
              bool usesSandbox)
        : storage_(std::move(storage)), directory_(std::move(directory)), usesSandbox_(usesSandbox) {}

    using Accounts = std::vector<ServiceAccountConfiguration>;

    Outcome<Accounts> suited(Accounts accounts) const;

    std::shared_ptr<SQLiteAccountStorage> storage_;
    std::filesystem::path directory_;
    bool usesSandbox_;
};

// What to do when the service does not take an account's sign-in any more.
std::string reconnectCommand(const ServiceAccountConfiguration& account);

// The failure of a flow that connects an account.
Failure failureOf(const IntegrationAccountCreationError& error);
Failure failureOf(const StorageError& error);

} // namespace zelto::cli
