#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace zelto {

// How connecting or re-authorising an account failed.
struct IntegrationAccountCreationError {
    // The connected account's identifier is already stored.
    struct AccountAlreadyExist {
        ServiceAccountConfiguration account;
        bool operator==(const AccountAlreadyExist&) const = default;
    };

    // A re-authorisation logged in as somebody else.
    struct AccountMismatch {
        ServiceAccountConfiguration requiredAccount;
        ServiceAccountConfiguration actualAccount;
        bool operator==(const AccountMismatch&) const = default;
    };

    // The account's data could not be fetched.
    struct DataLoadingError {
        std::string words = {};      // the service's own of why, cleaned and cut; empty where it says nothing
        bool nothingWasSent = false; // the service could not be reached at all
        bool operator==(const DataLoadingError&) const = default;
    };

    std::variant<AccountAlreadyExist, AccountMismatch, DataLoadingError> value;

    static IntegrationAccountCreationError accountAlreadyExist(ServiceAccountConfiguration account) {
        return {AccountAlreadyExist{std::move(account)}};
    }

    static IntegrationAccountCreationError accountMismatch(ServiceAccountConfiguration required,
                                                           ServiceAccountConfiguration actual) {
        return {AccountMismatch{std::move(required), std::move(actual)}};
    }

    static IntegrationAccountCreationError dataLoadingError() { return {DataLoadingError()}; }

    static IntegrationAccountCreationError dataLoadingError(DataLoadingError error) {
        return {std::move(error)};
    }

    // The case's name.
    std::string_view name() const {
        constexpr std::string_view names[] = {"accountAlreadyExist", "accountMismatch", "dataLoadingError"};
        return names[value.index()];
    }

    bool operator==(const IntegrationAccountCreationError&) const = default;
};

} // namespace zelto
