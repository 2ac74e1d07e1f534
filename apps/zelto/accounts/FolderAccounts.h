#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <optional>
#include <string>

// Accounts that are a folder on this machine: exports become files in it that the service imports, and
// nothing is sent.

namespace zelto::cli {

// Whether accounts of the service may be folders; others of it cannot be used by this program.
bool takesFolder(ServiceType type);

// Whether the service reads the files of the folder by an import; others have the folder itself.
bool importsFiles(ServiceType type);

// What connects an account of a service, be it a folder or not.
std::string connectCommand(ServiceType type);

bool isFolderAccount(const ServiceAccountConfiguration& account);

// The account with the folder of --folder, which is made and can be used; `nullopt` without that option.
Outcome<std::optional<ServiceAccountConfiguration>> folderAccount(const Invocation& invocation,
                                                                  ServiceAccountConfiguration account);

} // namespace zelto::cli
