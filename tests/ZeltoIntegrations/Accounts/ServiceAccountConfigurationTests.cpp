#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

ServiceAccountConfiguration alice(ServiceType type) {
    return {type, "alice", true};
}

std::string encoded(const ServiceAccountConfiguration& configuration) {
    return JSONEncoder().encode(configuration).value();
}

Result<ServiceAccountConfiguration, DecodingError> decoded(const std::string& text) {
    return JSONDecoder().decode<ServiceAccountConfiguration>(text);
}

} // namespace

TEST(ServiceAccountConfiguration, IdentifierIsProductNamePlusUserName) {
    EXPECT_EQ(alice(ServiceType::Asana).identifier(), "Asana+alice");
    EXPECT_EQ(alice(ServiceType::ZoomMeeting).identifier(), "Zoom+alice");
    EXPECT_EQ(alice(ServiceType::G2Meeting).identifier(), "GoTo+alice");
    EXPECT_EQ(alice(ServiceType::MicrosoftTeams).identifier(), "Microsoft Teams+alice");
    EXPECT_EQ(alice(ServiceType::Type2Do).identifier(), "2Do+alice");
    EXPECT_EQ(ServiceAccountConfiguration(ServiceType::ZoomMeeting, std::nullopt, true).identifier(), "Zoom");
    EXPECT_EQ(ServiceAccountConfiguration(ServiceType::ZoomMeeting, "", true).identifier(), "Zoom+");
    EXPECT_EQ(ServiceAccountConfiguration(ServiceType::Bear, " a+b ", true).identifier(), "Bear+ a+b ");
}

TEST(ServiceAccountConfiguration, TwoIdentifiersOfACalendarAccountDiffer) {
    const auto calendar = alice(ServiceType::Calendar);
    EXPECT_NE(calendar.identifier(), calendar.identifier());
    EXPECT_EQ(calendar.identifier().size(), 36u);
}

TEST(ServiceAccountConfiguration, NewAccountHasNoDisplayNameCredentialsOrCachedData) {
    const auto account = alice(ServiceType::Bear);
    EXPECT_EQ(account.userName(), "alice");
    EXPECT_EQ(account.displayName, std::nullopt);
    EXPECT_EQ(account.credentials, std::nullopt);
    EXPECT_TRUE(account.enabled);
    EXPECT_TRUE(account.additionalInfo.empty());
}

TEST(ServiceAccountConfiguration, CopyUnderAnotherNameKeepsAllElse) {
    auto account = alice(ServiceType::Bear);
    account.displayName = "Alice's Bear";
    account.enabled = false;
    account.additionalInfo = {{"a", "b"}};
    const auto credentials = ServiceAccountCredentials::forIdentifier("Bear+bob");

    const ServiceAccountConfiguration copy(account, credentials, "bob");

    EXPECT_EQ(copy.serviceType(), ServiceType::Bear);
    EXPECT_EQ(copy.userName(), "bob");
    EXPECT_EQ(copy.displayName, "Alice's Bear");
    EXPECT_EQ(copy.credentials, credentials);
    EXPECT_FALSE(copy.enabled);
    EXPECT_EQ(copy.additionalInfo, account.additionalInfo);
}

TEST(ServiceAccountConfiguration, JSONHoldsItsKeysInOrderAndNoSecret) {
    auto account = alice(ServiceType::Asana);
    account.displayName = "Work";
    account.credentials = ServiceAccountCredentials::forIdentifier("Asana+alice");
    account.credentials->accessToken = "canary-token";
    account.credentials->password = "canary-password";
    account.additionalInfo = {{"cached_x", "\"1\""}};
    EXPECT_EQ(encoded(account),
              R"({"serviceType":42,"username":"alice","displayName":"Work",)"
              R"("credentials":{"serviceCredentialsKey":"ServiceCredentials - Asana+alice"},)"
              R"("enabled":true,"additionalInfo":{"cached_x":"\"1\""}})");
}

TEST(ServiceAccountConfiguration, JSONLeavesOutWhatIsAbsent) {
    EXPECT_EQ(encoded(ServiceAccountConfiguration(ServiceType::Bear, std::nullopt, false)),
              R"({"serviceType":46,"enabled":false,"additionalInfo":{}})");
}

TEST(ServiceAccountConfiguration, JSONReadsBackUnchanged) {
    auto account = alice(ServiceType::Trello);
    account.displayName = "Доска 🐻";
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    account.additionalInfo = {{"cached_a", "[1,2]"}, {"", "empty key"}, {"quote\"", "\\\n"}};
    EXPECT_EQ(decoded(encoded(account)).value(), account);
}

TEST(ServiceAccountConfiguration, AdditionalInfoThatIsNoTextMapDecodesAsEmpty) {
    EXPECT_TRUE(decoded(R"({"serviceType":46,"enabled":true,"additionalInfo":{"a":1}})")
                    .value()
                    .additionalInfo.empty());
    for (const auto* info : {"7", "null", "[]", "\"a\"", R"({"a":"b","c":null})"}) {
        const auto text = R"({"serviceType":46,"enabled":true,"additionalInfo":)" + std::string(info) + "}";
        EXPECT_TRUE(decoded(text).value().additionalInfo.empty()) << info;
    }
}

TEST(ServiceAccountConfiguration, WithoutEnabledItFailsToDecode) {
    EXPECT_FALSE(decoded(R"({"serviceType":46,"additionalInfo":{}})"));
}

TEST(ServiceAccountConfiguration, MissingOrMistypedFieldsFailToDecode) {
    EXPECT_FALSE(decoded(R"({"enabled":true,"additionalInfo":{}})")) << "serviceType is missing";
    EXPECT_FALSE(decoded(R"({"serviceType":46,"enabled":true})")) << "additionalInfo is missing";
    EXPECT_FALSE(decoded(R"({"serviceType":55,"enabled":true,"additionalInfo":{}})")) << "55 is no service";
    EXPECT_FALSE(decoded(R"({"serviceType":"46","enabled":true,"additionalInfo":{}})"));
    EXPECT_FALSE(decoded(R"({"serviceType":46,"enabled":1,"additionalInfo":{}})"));
    EXPECT_FALSE(decoded(R"({"serviceType":46,"enabled":true,"credentials":{},"additionalInfo":{}})"));
}

TEST(ServiceAccountConfiguration, AMistypedOptionalFieldCountsAsAbsent) {
    for (const auto* value : {"5", "true", "[]", "{}", "null"}) {
        const auto account =
            decoded(R"({"serviceType":46,"username":)" + std::string(value) + R"(,"displayName":)" + value +
                    R"(,"enabled":true,"additionalInfo":{}})");
        ASSERT_TRUE(account) << value;
        EXPECT_EQ(*account, ServiceAccountConfiguration(ServiceType(46), std::nullopt, true)) << value;
    }
    for (const auto* value : {"5", "true", "[]", "\"x\"", "null"}) {
        const auto account = decoded(R"({"serviceType":46,"username":"alice","credentials":)" +
                                     std::string(value) + R"(,"enabled":true,"additionalInfo":{}})");
        ASSERT_TRUE(account) << value;
        EXPECT_EQ(*account, ServiceAccountConfiguration(ServiceType(46), "alice", true)) << value;
    }
}

TEST(ServiceAccountConfiguration, EqualityComparesEveryField) {
    const auto account = alice(ServiceType::Bear);
    EXPECT_EQ(account, alice(ServiceType::Bear));
    EXPECT_NE(account, alice(ServiceType::Agenda));
    EXPECT_NE(account, ServiceAccountConfiguration(ServiceType::Bear, "Alice", true));
    EXPECT_NE(account, ServiceAccountConfiguration(ServiceType::Bear, "alice", false));
    auto changed = account;
    changed.displayName = "";
    EXPECT_NE(account, changed) << "absent equals only absent";
    changed = account;
    changed.credentials = ServiceAccountCredentials::forIdentifier("x");
    EXPECT_NE(account, changed);
    changed = account;
    changed.additionalInfo["a"] = "b";
    EXPECT_NE(account, changed);
}

TEST(ServiceAccountConfiguration, CachedItemLiesUnderItsKeyAsJSON) {
    auto account = alice(ServiceType::Bear);
    account.setCachedItem(std::optional(std::vector<std::string>{"a", "b"}), "tags");
    EXPECT_EQ(account.additionalInfo, (std::map<std::string, std::string>{{"cached_tags", R"(["a","b"])"}}));
    EXPECT_EQ(account.getCachedItem<std::vector<std::string>>("tags"), (std::vector<std::string>{"a", "b"}));
}

TEST(ServiceAccountConfiguration, AbsentCachedItemIsStoredAsNullAndReadsAsNothing) {
    auto account = alice(ServiceType::Bear);
    account.setCachedItem(std::optional<int>(), "count");
    EXPECT_EQ(account.additionalInfo.at("cached_count"), "null");
    EXPECT_EQ(account.getCachedItem<int>("count"), std::nullopt);
    const auto ofOptionalType = account.getCachedItem<std::optional<int>>("count");
    ASSERT_TRUE(ofOptionalType);
    EXPECT_EQ(*ofOptionalType, std::nullopt);
}

TEST(ServiceAccountConfiguration, CachedItemThatDoesNotDecodeIsNothing) {
    auto account = alice(ServiceType::Bear);
    account.additionalInfo["cached_count"] = "many";
    EXPECT_EQ(account.getCachedItem<int>("count"), std::nullopt);
    EXPECT_EQ(account.getCachedItem<int>("absent"), std::nullopt);
}

TEST(ServiceAccountConfiguration, CachedItemThatDoesNotEncodeRemovesTheEntry) {
    auto account = alice(ServiceType::Bear);
    account.setCachedItem(std::optional<std::string>("good"), "text");
    account.setCachedItem(std::optional<std::string>("\xff"), "text");
    EXPECT_TRUE(account.additionalInfo.empty());
}

TEST(ServiceAccountCredentials, EncodedHoldsTheKeyChainKeyAlone) {
    auto credentials = ServiceAccountCredentials::forIdentifier("Asana+alice");
    credentials.accessToken = "token";
    credentials.password = "password";
    credentials.expirationDate = Date::distantFuture();
    EXPECT_EQ(JSONEncoder().encode(credentials).value(),
              R"({"serviceCredentialsKey":"ServiceCredentials - Asana+alice"})");
}

TEST(ServiceAccountCredentials, DecodedHasItsKeyAndNoSecret) {
    const auto text = R"({"serviceCredentialsKey":"k","accessToken":"smuggled"})";
    const auto credentials = JSONDecoder().decode<ServiceAccountCredentials>(text).value();
    EXPECT_EQ(credentials.serviceCredentialsKey, "k");
    EXPECT_EQ(credentials.accessToken, std::nullopt);
    EXPECT_FALSE(JSONDecoder().decode<ServiceAccountCredentials>("{}"));
}

TEST(ServiceAccountCredentials, EqualityComparesAllEightFields) {
    const auto credentials = ServiceAccountCredentials::forIdentifier("a");
    const auto differs = [&](auto change) {
        auto changed = credentials;
        change(changed);
        return changed != credentials;
    };
    EXPECT_EQ(credentials, ServiceAccountCredentials::forIdentifier("a"));
    EXPECT_NE(credentials, ServiceAccountCredentials::forIdentifier("b"));
    EXPECT_TRUE(differs([](auto& c) { c.accessToken = "x"; }));
    EXPECT_TRUE(differs([](auto& c) { c.refreshToken = "x"; }));
    EXPECT_TRUE(differs([](auto& c) { c.tokenSecret = "x"; }));
    EXPECT_TRUE(differs([](auto& c) { c.password = "x"; }));
    EXPECT_TRUE(differs([](auto& c) { c.loginName = "x"; }));
    EXPECT_TRUE(differs([](auto& c) { c.expirationDate = Date::distantFuture(); }));
    EXPECT_TRUE(differs([](auto& c) { c.additionalInfo.emplace(); }));
}

} // namespace zelto
