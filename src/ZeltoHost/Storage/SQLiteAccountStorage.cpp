#include <ZeltoHost/Storage/SQLiteAccountStorage.h>

#include <ZeltoHost/Storage/AccountFileInternal.h>
#include <ZeltoHost/Storage/AccountRecordsInternal.h>
#include <ZeltoHost/Storage/DataDirectory.h>
#include <ZeltoHost/Storage/DirectoryIdentityInternal.h>

#include <vector>

namespace zelto {

namespace {

bool isTemporary(const ServiceAccountConfiguration& account) {
    return account.credentials &&
           ServiceAccountCredentials::isFlowKey(account.credentials->serviceCredentialsKey);
}

bool mayStillBeRead(StorageErrorCode code) {
    return code == StorageErrorCode::noSpace || code == StorageErrorCode::readOnly ||
           code == StorageErrorCode::cannotAccess;
}

} // namespace

Result<std::shared_ptr<SQLiteAccountStorage>, StorageError>
SQLiteAccountStorage::open(const std::filesystem::path& directory) {
    if (auto prepared = prepareDataDirectory(directory); !prepared) {
        return failure(prepared.error());
    }
    auto connection = openAccountFile(directory);
    if (!connection) {
        return failure(connection.error());
    }
    return std::shared_ptr<SQLiteAccountStorage>(new SQLiteAccountStorage(std::move(*connection)));
}

Result<std::shared_ptr<SQLiteAccountStorage>, StorageError>
SQLiteAccountStorage::openForReading(const std::filesystem::path& directory) {
    auto storage = open(directory);
    if (storage || !mayStillBeRead(storage.error().code)) {
        return storage;
    }
    auto connection = readAccountFile(directory);
    if (!connection) {
        return storage;
    }
    return std::shared_ptr<SQLiteAccountStorage>(new SQLiteAccountStorage(std::move(connection)));
}

SQLiteAccountStorage::SQLiteAccountStorage(std::unique_ptr<SQLiteConnection> connection)
    : connection_(std::move(connection)) {}

SQLiteAccountStorage::~SQLiteAccountStorage() = default;

void SQLiteAccountStorage::note(const StorageError& error, const char* function,
                                const std::source_location& location) {
    lvxLogError(error.message(), function, location);
    const std::lock_guard lock(errorMutex_);
    lastError_ = error;
}

template <class Operation>
auto SQLiteAccountStorage::perform(const char* function, Operation operation,
                                   const std::source_location& location) {
    auto result = [&]() -> decltype(operation(*connection_)) {
        const std::lock_guard lock(mutex_);
        if (connection_->hasMoved()) {
            return failure(StorageError{StorageErrorCode::moved, connection_->path(), {}});
        }
        return operation(*connection_);
    }();
    if (!result) {
        note(result.error(), function, location);
    }
    return result;
}

Result<void, StorageError> SQLiteAccountStorage::trySave(const ServiceAccountConfiguration& configuration) {
    return perform("save(configuration:)", [&](auto& connection) {
        return storeAccount(connection, configuration, marksNewOfSandbox_);
    });
}

Result<AccountMarks, StorageError>
SQLiteAccountStorage::tryMarks(const ServiceAccountConfiguration& configuration) {
    return perform("marks(configuration:)",
                   [&](auto& connection) { return accountMarks(connection, configuration); });
}

Result<void, StorageError> SQLiteAccountStorage::trySetMarks(const ServiceAccountConfiguration& configuration,
                                                             const AccountMarks& marks) {
    return perform("setMarks(configuration:marks:)",
                   [&](auto& connection) { return markAccount(connection, configuration, marks); });
}

Result<DirectoryIdentity, StorageError> SQLiteAccountStorage::tryDirectoryIdentity() {
    return perform("directoryIdentity()", [](auto& connection) { return directoryIdentity(connection); });
}

Result<void, StorageError> SQLiteAccountStorage::tryRemove(const ServiceAccountConfiguration& configuration) {
    return perform("remove(configuration:)",
                   [&](auto& connection) { return deleteAccount(connection, configuration); });
}

Result<std::optional<ServiceAccountConfiguration>, StorageError>
SQLiteAccountStorage::tryLoad(const std::string& identifier) {
    return perform("load(withIdentifier:)",
                   [&](auto& connection) { return accountWithIdentifier(connection, identifier); });
}

Result<void, StorageError> SQLiteAccountStorage::trySetLastUsedConfiguration(
    ServiceType serviceType, const std::optional<ServiceAccountConfiguration>& configuration) {
    return perform("setLastUsedConfiguration(serviceType:configuration:)", [&](auto& connection) {
        return rememberLastUsed(connection, serviceType, configuration);
    });
}

Result<std::optional<ServiceAccountConfiguration>, StorageError>
SQLiteAccountStorage::tryLastUsedConfiguration(ServiceType serviceType) {
    return perform("lastUsedConfiguration(serviceType:)",
                   [&](auto& connection) { return lastUsedAccount(connection, serviceType); });
}

Result<std::vector<ServiceAccountConfiguration>, StorageError> SQLiteAccountStorage::tryLoadConfigurations() {
    auto accounts = tryLoadAllConfigurations();
    if (accounts) {
        std::erase_if(*accounts, isTemporary);
    }
    return accounts;
}

Result<std::vector<ServiceAccountConfiguration>, StorageError>
SQLiteAccountStorage::tryLoadAllConfigurations() {
    constexpr auto function = "loadConfigurations()";
    auto stored = perform(function, [](auto& connection) { return allAccounts(connection); });
    if (!stored) {
        return failure(stored.error());
    }
    for (const auto& error : stored->unreadable) {
        note(error, function, std::source_location::current());
    }
    return std::move(stored->accounts);
}

void SQLiteAccountStorage::save(const ServiceAccountConfiguration& configuration) {
    (void)trySave(configuration);
}

void SQLiteAccountStorage::remove(const ServiceAccountConfiguration& configuration) {
    (void)tryRemove(configuration);
}

std::optional<ServiceAccountConfiguration> SQLiteAccountStorage::load(const std::string& identifier) {
    return tryLoad(identifier).value_or(std::nullopt);
}

void SQLiteAccountStorage::setLastUsedConfiguration(
    ServiceType serviceType, const std::optional<ServiceAccountConfiguration>& configuration) {
    (void)trySetLastUsedConfiguration(serviceType, configuration);
}

std::optional<ServiceAccountConfiguration>
SQLiteAccountStorage::lastUsedConfiguration(ServiceType serviceType) {
    return tryLastUsedConfiguration(serviceType).value_or(std::nullopt);
}

std::vector<ServiceAccountConfiguration> SQLiteAccountStorage::loadConfigurations() {
    return tryLoadConfigurations().value_or(std::vector<ServiceAccountConfiguration>());
}

std::optional<StorageError> SQLiteAccountStorage::lastError() const {
    const std::lock_guard lock(errorMutex_);
    return lastError_;
}

} // namespace zelto
