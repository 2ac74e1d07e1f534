#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <TrovenhalCommon/KeyChain/KeyChainError.h>
#include <ZeltoCommonLogger/LoggerClient.h>

#include <Platform/Data.h>
#include <Platform/Result.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zelto {

// The one place where an account's secrets meet the key chain. A failure ends in the log, and a secret that
// could not be saved shows up later as a failed authorisation. What passes through is masked in the log from
// then on. Any thread; two calls on one key are ordered by the key chain alone.
class ServiceCredentialsManager : private LoggerClient {
  public:
    // Copies the seven fields, absent ones too; the key of `to` stays.
    static void fill(const ServiceAccountCredentials& from, ServiceAccountCredentials& to);

    // Whether the key chain holds them now.
    static bool store(const ServiceAccountCredentials& credentials);
    // Fills the fields that are absent; one that is present stays.
    static void load(ServiceAccountCredentials& credentials);
    // The record of that key as it lies in the key chain; `nullopt` if there is none. One that cannot be read
    // is an error.
    static Result<std::optional<ServiceAccountCredentials>, KeyChainError>
    stored(const std::string& serviceCredentialsKey);
    static void remove(const ServiceAccountCredentials& credentials);

    // Whether a record as it lies in the key chain holds an access token or a refresh token; false for what
    // is no record.
    static bool holdsTokens(const Data& record);

    // How often this process has removed the record of that key.
    static std::uint64_t removalCount(const std::string& serviceCredentialsKey);
    // Stores only if the record was not removed since that count was taken: whoever obtained tokens meanwhile
    // must not bring an account back.
    static bool storeUnlessRemoved(const ServiceAccountCredentials& credentials, std::uint64_t removalCount);

  private:
    static bool store(const Data& value, const std::string& key);
    static std::optional<Data> load(const std::string& key);
    static void remove(const std::string& key);
};

} // namespace zelto
