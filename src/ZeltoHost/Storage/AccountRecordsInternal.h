#pragma once

// For sources only.

#include <ZeltoHost/Storage/AccountMarks.h>
#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <vector>

namespace zelto {

// The operations of SQLiteAccountStorage on its connection.

// `isOfSandbox`: the mark of an account that is not stored yet; a stored one keeps its own.
Result<void, StorageError> storeAccount(SQLiteConnection& connection,
                                        const ServiceAccountConfiguration& account, bool isOfSandbox);

Result<AccountMarks, StorageError> accountMarks(SQLiteConnection& connection,
                                                const ServiceAccountConfiguration& account);

Result<void, StorageError> markAccount(SQLiteConnection& connection,
                                       const ServiceAccountConfiguration& account, const AccountMarks& marks);

Result<void, StorageError> deleteAccount(SQLiteConnection& connection,
                                         const ServiceAccountConfiguration& account);

Result<std::optional<ServiceAccountConfiguration>, StorageError>
accountWithIdentifier(SQLiteConnection& connection, const std::string& identifier);

Result<void, StorageError> rememberLastUsed(SQLiteConnection& connection, ServiceType type,
                                            const std::optional<ServiceAccountConfiguration>& account);

Result<std::optional<ServiceAccountConfiguration>, StorageError> lastUsedAccount(SQLiteConnection& connection,
                                                                                 ServiceType type);

struct StoredAccounts {
    std::vector<ServiceAccountConfiguration> accounts; // in the order of first saving
    std::vector<StorageError> unreadable;
};

Result<StoredAccounts, StorageError> allAccounts(SQLiteConnection& connection);

} // namespace zelto
