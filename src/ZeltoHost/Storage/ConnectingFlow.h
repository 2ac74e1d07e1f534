#pragma once

#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <filesystem>
#include <memory>
#include <string>

namespace zelto {

// The note of a flow that connects an account: a key in the key chain that it uses, either one of its own or,
// until the account's record is saved, that of a new account. It lies in a file below "flows" in the data
// directory, which is locked while this lives and goes with it, so that what a killed process left is found
// and nothing of a flow under way is touched. Made for IntegrationsManager::setFlowNote.
class ConnectingFlow {
  public:
    static Result<std::shared_ptr<ConnectingFlow>, StorageError>
    begin(const std::filesystem::path& dataDirectory, const std::string& serviceCredentialsKey);
    ~ConnectingFlow();
    ConnectingFlow(const ConnectingFlow&) = delete;
    ConnectingFlow& operator=(const ConnectingFlow&) = delete;

    // Removes the secrets and the temporary accounts of flows that have ended without doing so, and the
    // secrets of new accounts that were not saved. What cannot be removed now stays noted; nothing is removed
    // if the accounts cannot be read. Opens the key chain only if there is something to remove.
    static void removeLeftovers(const std::filesystem::path& dataDirectory, SQLiteAccountStorage& storage);

  private:
    ConnectingFlow(FileDescriptor file, std::filesystem::path path)
        : file_(std::move(file)), path_(std::move(path)) {}

    const FileDescriptor file_;
    const std::filesystem::path path_;
};

} // namespace zelto
