#pragma once

#include <ZeltoHost/Storage/AccountMarks.h>
#include <ZeltoHost/Storage/DirectoryIdentity.h>
#include <ZeltoHost/Storage/StorageError.h>

#include <ZeltoCommonLogger/LoggerClient.h>
#include <ZeltoIntegrations/Accounts/ServiceConfigurationsStorage.h>

#include <Platform/Result.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <source_location>

namespace zelto {

class SQLiteConnection;

// The accounts in an SQLite file, "accounts.sqlite" of mode 0600 in a directory of mode 0700. Any thread;
// several processes may have it open at once, and may be killed at any moment. What a call has stored is on
// the disk when it returns. Writing a record replaces it whole: of two simultaneous writes the later one
// stays.
//
// An account is found by its service type and user name, which is what its identifier contains. An account of
// the type whose identifiers are random at each call (Calendar) is therefore found too; it is loaded by the
// identifier of its first saving. Replacing an account keeps its place in the order, which is that of first
// saving.
//
// A record that cannot be read, such as one with a service type of a later version, stays in the file and is
// left out of lists; it counts as a failure.
class SQLiteAccountStorage final : public ServiceConfigurationsStorage, private LoggerClient {
  public:
    // Creates the directory and the file if they are missing. A damaged file is an error, never an empty
    // storage.
    static Result<std::shared_ptr<SQLiteAccountStorage>, StorageError>
    open(const std::filesystem::path& directory);
    // The same for whoever only reads: on a disk that is full or cannot be written to, what is stored is
    // there, and storing fails with `cannotAccess`.
    static Result<std::shared_ptr<SQLiteAccountStorage>, StorageError>
    openForReading(const std::filesystem::path& directory);

    ~SQLiteAccountStorage() override;

    SQLiteAccountStorage(const SQLiteAccountStorage&) = delete;
    SQLiteAccountStorage& operator=(const SQLiteAccountStorage&) = delete;

    // These log a failure and have no result then; lastError() gives it.
    void save(const ServiceAccountConfiguration& configuration) override;
    void remove(const ServiceAccountConfiguration& configuration) override;
    std::optional<ServiceAccountConfiguration> load(const std::string& identifier) override;
    void setLastUsedConfiguration(ServiceType serviceType,
                                  const std::optional<ServiceAccountConfiguration>& configuration) override;
    std::optional<ServiceAccountConfiguration> lastUsedConfiguration(ServiceType serviceType) override;
    std::vector<ServiceAccountConfiguration> loadConfigurations() override;

    // The same with their errors. Removing an absent account is not an error. The account used last is given
    // as it is stored now, or as it was passed if it is not stored; removing an account forgets it.
    Result<void, StorageError> trySave(const ServiceAccountConfiguration& configuration);
    Result<void, StorageError> tryRemove(const ServiceAccountConfiguration& configuration);
    Result<std::optional<ServiceAccountConfiguration>, StorageError> tryLoad(const std::string& identifier);
    Result<void, StorageError>
    trySetLastUsedConfiguration(ServiceType serviceType,
                                const std::optional<ServiceAccountConfiguration>& configuration);
    Result<std::optional<ServiceAccountConfiguration>, StorageError>
    tryLastUsedConfiguration(ServiceType serviceType);

    // Fails if the file cannot be read; records that cannot be read are left out, logged and given by
    // lastError(). The temporary accounts of connecting flows are left out too.
    Result<std::vector<ServiceAccountConfiguration>, StorageError> tryLoadConfigurations();
    // With the temporary ones.
    Result<std::vector<ServiceAccountConfiguration>, StorageError> tryLoadAllConfigurations();

    // What is remembered of an account beside its record; nothing of one that is not stored, and of those in
    // an older file that cannot be written to. Marking an account that is not stored has no effect.
    Result<AccountMarks, StorageError> tryMarks(const ServiceAccountConfiguration& configuration);
    Result<void, StorageError> trySetMarks(const ServiceAccountConfiguration& configuration,
                                           const AccountMarks& marks);

    // Whether accounts that are saved for the first time from now on are those of the sandbox.
    void setMarksNewOfSandbox(bool marks) { marksNewOfSandbox_ = marks; }

    Result<DirectoryIdentity, StorageError> tryDirectoryIdentity();

    // The latest failure of any operation, even if later ones succeeded; `nullopt` if all have succeeded.
    std::optional<StorageError> lastError() const;

  private:
    explicit SQLiteAccountStorage(std::unique_ptr<SQLiteConnection> connection);

    // Runs it with exclusive use of the connection; a failure is logged and remembered.
    template <class Operation>
    auto perform(const char* function, Operation operation,
                 const std::source_location& location = std::source_location::current());
    void note(const StorageError& error, const char* function, const std::source_location& location);

    std::mutex mutex_; // guards the connection
    std::unique_ptr<SQLiteConnection> connection_;
    std::atomic<bool> marksNewOfSandbox_ = false;

    mutable std::mutex errorMutex_;
    std::optional<StorageError> lastError_;
};

} // namespace zelto
