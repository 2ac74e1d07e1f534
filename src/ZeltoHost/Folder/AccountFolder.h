#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zelto {

class ServiceAccountConfiguration;

// Accounts that are a folder on this machine. Its path is in `additionalInfo` of the account, under a key of
// the service's.
struct AccountFolder {
    // Makes it an account of that folder, whose path is made absolute.
    static void set(ServiceAccountConfiguration& account, const std::string& key,
                    const std::filesystem::path& folder);

    // No value for other accounts.
    static std::optional<std::filesystem::path> of(const ServiceAccountConfiguration& account,
                                                   const std::string& key);
};

} // namespace zelto
