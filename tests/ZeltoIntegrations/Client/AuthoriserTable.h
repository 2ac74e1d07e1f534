#pragma once

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/AccountAuthoriser.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

enum class RefreshTokenRule { overwritten, replacedIfGiven, kept };

// What one service's authoriser is to do, for the token "token-1" and the refresh token "refresh-1".
struct AuthoriserRow {
    std::string_view name;
    std::unique_ptr<AccountAuthoriser> (*make)(ServiceAccountCredentials);
    std::string signedItem; // the POST of "url=x" to /items?a=1, of Content-Type text/plain
    std::optional<double> margin;
    std::string refresh; // the refresh request
    RefreshTokenRule refreshToken = RefreshTokenRule::kept;
};

const std::vector<AuthoriserRow>& authoriserTable();

inline std::unique_ptr<AccountAuthoriser> authoriserNamed(std::string_view name,
                                                          ServiceAccountCredentials credentials) {
    for (const auto& row : authoriserTable()) {
        if (row.name == name) {
            return row.make(std::move(credentials));
        }
    }
    return nullptr;
}

} // namespace zelto
