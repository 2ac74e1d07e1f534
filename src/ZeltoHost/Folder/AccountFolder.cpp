#include <ZeltoHost/Folder/AccountFolder.h>

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <system_error>

namespace zelto {

using std::filesystem::path;

void AccountFolder::set(ServiceAccountConfiguration& account, const std::string& key, const path& folder) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(folder, error).lexically_normal();
    // A "/" at the end is no name.
    account.additionalInfo[key] = (absolute.has_filename() ? absolute : absolute.parent_path()).native();
}

std::optional<path> AccountFolder::of(const ServiceAccountConfiguration& account, const std::string& key) {
    const auto folder = account.additionalInfo.find(key);
    if (folder == account.additionalInfo.end() || !path(folder->second).is_absolute()) {
        return std::nullopt;
    }
    return folder->second;
}

} // namespace zelto
