#pragma once

#include <ZeltoHost/Storage/StorageError.h>
#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <filesystem>
#include <functional>
#include <string>

namespace zelto {

// One account for one process at a time. Whoever may refresh an account's token takes it before the secrets
// are loaded from the key chain: it then sees what another process has refreshed meanwhile, and a refresh
// token that is good for one use is used once. The lock ends with this object, and with its process however
// that ends.
//
// It lies in a file below "locks" in the data directory, whose name tells nothing of the account.
class AccountLock {
  public:
    // Whether the service's tokens are refreshed.
    static bool isNeededFor(ServiceType service);

    // Waits for as long as another one has it; `onWait` is called once before.
    static Result<AccountLock, StorageError> take(const std::filesystem::path& dataDirectory,
                                                  const std::string& accountIdentifier,
                                                  const std::function<void()>& onWait);

  private:
    explicit AccountLock(FileDescriptor file) : file_(std::move(file)) {}

    FileDescriptor file_;
};

} // namespace zelto
