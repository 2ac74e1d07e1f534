#pragma once

#include <ZeltoHost/Storage/StorageError.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <filesystem>
#include <functional>
#include <string>

namespace zelto {

// One account for one process at a time, for as long as a whole command takes: whoever changes the account's
// record, or removes it, does not do so while another one exports with it. (Refreshes alone are kept apart by
// AccountRefreshLock.) The lock ends with this object, and with its process however
// that ends.
//
// It lies in a file below "locks" in the data directory, whose name says nothing of the account.
class AccountLock {
  public:
    // Waits for as long as another one has it; `onWait` is called once before.
    static Result<AccountLock, StorageError> take(const std::filesystem::path& dataDirectory,
                                                  const std::string& accountIdentifier,
                                                  const std::function<void()>& onWait);

  private:
    explicit AccountLock(FileDescriptor file) : file_(std::move(file)) {}

    FileDescriptor file_;
};

} // namespace zelto
