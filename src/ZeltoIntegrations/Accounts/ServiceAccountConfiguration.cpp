#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <TrovenhalCommon/AnyCodable.h>

namespace zelto {

namespace {

std::string cacheKey(const std::string& key) {
    return "cached_" + key;
}

// An account is worth more than a field of it that may be absent: one of another kind reads as absent.
template <class T>
std::optional<T> optionalOfKind(const JSONReader& reader, std::string_view key, JSONKind kind) {
    const auto member = reader.find(key);
    return member && member->kind() == kind ? std::optional(member->as<T>()) : std::nullopt;
}

} // namespace

ServiceAccountConfiguration::ServiceAccountConfiguration(ServiceType serviceType,
                                                         std::optional<std::string> userName, bool enabled)
    : enabled(enabled), serviceType_(serviceType), userName_(std::move(userName)) {}

ServiceAccountConfiguration::ServiceAccountConfiguration(
    const ServiceAccountConfiguration& configuration,
    std::optional<ServiceAccountCredentials> accountCredentials, std::optional<std::string> userName)
    : ServiceAccountConfiguration(configuration) {
    credentials = std::move(accountCredentials);
    userName_ = std::move(userName);
}

std::string ServiceAccountConfiguration::identifier() const {
    return serviceIdentifier(serviceType_, userName_);
}

bool ServiceAccountConfiguration::operator==(const ServiceAccountConfiguration& other) const {
    return serviceType_ == other.serviceType_ && userName_ == other.userName_ &&
           displayName == other.displayName && credentials == other.credentials && enabled == other.enabled &&
           additionalInfo == other.additionalInfo;
}

std::optional<std::string> ServiceAccountConfiguration::cachedText(const std::string& key) const {
    const auto entry = additionalInfo.find(cacheKey(key));
    return entry == additionalInfo.end() ? std::nullopt : std::optional(entry->second);
}

void ServiceAccountConfiguration::setCachedText(const std::string& key, std::optional<std::string> text) {
    if (text) {
        additionalInfo.insert_or_assign(cacheKey(key), *std::move(text));
    } else {
        additionalInfo.erase(cacheKey(key));
    }
}

void encodeJSON(JSONWriter& writer, const ServiceAccountConfiguration& account) {
    writer.beginObject();
    writer.field("serviceType", account.serviceType());
    writer.field("username", account.userName());
    writer.field("displayName", account.displayName);
    writer.field("credentials", account.credentials);
    writer.field("enabled", account.enabled);
    writer.field("additionalInfo", AnyCodable(account.additionalInfo));
    writer.endObject();
}

ServiceAccountConfiguration makeFromJSON(const JSONReader& reader,
                                         std::type_identity<ServiceAccountConfiguration>) {
    using TextMap = std::map<std::string, std::string>;
    ServiceAccountConfiguration account(reader.required<ServiceType>("serviceType"),
                                        optionalOfKind<std::string>(reader, "username", JSONKind::string),
                                        reader.required<bool>("enabled"));
    account.displayName = optionalOfKind<std::string>(reader, "displayName", JSONKind::string);
    account.credentials = optionalOfKind<ServiceAccountCredentials>(reader, "credentials", JSONKind::object);
    // What is no map of texts reads as an empty one: the cache is lost, the account is not.
    account.additionalInfo =
        reader.required<AnyCodable>("additionalInfo").value<TextMap>().value_or(TextMap());
    return account;
}

} // namespace zelto
