#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <ZeltoCommonLogger/LoggerClient.h>

#include <Platform/Data.h>

#include <optional>
#include <string>

namespace zelto {

// The one place where an account's secrets meet the key chain. Nothing is reported to the caller: a failure
// ends in the log, and a secret that could not be saved shows up later as a failed authorisation. What passes
// through is masked in the log from then on. Any thread; two calls on one key are ordered by the key chain
// alone.
class ServiceCredentialsManager : private LoggerClient {
  public:
    // Copies the seven fields, absent ones too; the key of `to` stays.
    static void fill(const ServiceAccountCredentials& from, ServiceAccountCredentials& to);

    static void store(const ServiceAccountCredentials& credentials);
    // Fills the fields that are absent; one that is present stays.
    static void load(ServiceAccountCredentials& credentials);
    static void remove(const ServiceAccountCredentials& credentials);

  private:
    static void store(const Data& value, const std::string& key);
    static std::optional<Data> load(const std::string& key);
    static void remove(const std::string& key);
};

} // namespace zelto
