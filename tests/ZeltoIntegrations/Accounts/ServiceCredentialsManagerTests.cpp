#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Support/LogCapture.h>
#include <Support/MemoryKeyChain.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

ServiceAccountCredentials withKeyAlone() {
    return ServiceAccountCredentials::forIdentifier("Asana+alice");
}

ServiceAccountCredentials filled() {
    auto credentials = withKeyAlone();
    credentials.accessToken = "access-1";
    credentials.refreshToken = "refresh-1";
    credentials.tokenSecret = "secret-1";
    credentials.password = "password-1";
    credentials.loginName = "login-1";
    credentials.expirationDate = Date::fromReferenceSeconds(812345678.25);
    credentials.additionalInfo.emplace()["team"] = "T1";
    return credentials;
}

// A key chain that refuses everything.
struct RefusingKeyChain final : LVXKeyChainStore {
    Result<std::optional<Data>, KeyChainError> read(const std::string&) override { return refusal(); }

    Result<void, KeyChainError> write(const std::string&, const Data&) override { return refusal(); }

    Result<bool, KeyChainError> erase(const std::string&) override { return refusal(); }

    static std::unexpected<KeyChainError> refusal() {
        return failure(KeyChainError{KeyChainErrorKind::locked, "the key chain is locked"});
    }
};

std::vector<std::string> errorsOf(const LogCapture& log) {
    std::vector<std::string> errors;
    for (const auto& record : log.records()) {
        if (record.level == LogLevel::error) {
            errors.push_back(record.function + ": " + record.message);
        }
    }
    return errors;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(ServiceCredentialsManager, DistinguishesARecordFromNoneAndFromOneThatCannotBeRead) {
    const MemoryKeyChain keyChain;
    const auto key = withKeyAlone().serviceCredentialsKey;
    const auto stored = [&] { return ServiceCredentialsManager::stored(key); };
    EXPECT_EQ(stored().value(), std::nullopt);
    EXPECT_TRUE(ServiceCredentialsManager::store(filled()));
    EXPECT_EQ(stored().value(), filled());
    keyChain.setText(key, "{}");
    EXPECT_EQ(stored().value(), withKeyAlone());
    keyChain.setText(key, "no JSON");
    EXPECT_EQ(stored().error().kind, KeyChainErrorKind::damaged);
    keyChain.setLocked(true);
    EXPECT_EQ(stored().error().kind, KeyChainErrorKind::locked);
    EXPECT_FALSE(ServiceCredentialsManager::store(filled()));
}

TEST(ServiceCredentialsManager, KnowsARecordThatHoldsTokens) {
    const auto holds = [](const char* record) {
        return ServiceCredentialsManager::holdsTokens(dataOf(record));
    };
    EXPECT_TRUE(holds(R"({"accessToken":"a"})"));
    EXPECT_TRUE(holds(R"({"refreshToken":"r","loginName":"me"})"));
    EXPECT_FALSE(holds(R"({"loginName":"me","password":"p","expirationDate":1})"));
    EXPECT_FALSE(holds("{}"));
    EXPECT_FALSE(holds("no record"));
    EXPECT_FALSE(holds(""));
}

TEST(ServiceAccountCredentials, AFlowsKeyIsOfNoAccountAndNeverTheSame) {
    const auto key = withKeyAlone().serviceCredentialsKey;
    const auto one = ServiceAccountCredentials::flowKey(key);
    EXPECT_TRUE(one.starts_with(key));
    EXPECT_NE(one, ServiceAccountCredentials::flowKey(key));
    EXPECT_TRUE(ServiceAccountCredentials::isFlowKey(one));
    for (const auto& other : {key, std::string(), one.substr(1), one + "0", one.substr(0, one.size() - 1),
                              std::string("ServiceCredentials - "), std::string(100, '-')}) {
        EXPECT_FALSE(ServiceAccountCredentials::isFlowKey(other)) << other;
    }
}

TEST(ServiceCredentialsManager, StoreThenLoadOfARecordWithOnlyTheKeyRestoresAllFields) {
    const MemoryKeyChain keyChain;
    ServiceCredentialsManager::store(filled());
    auto loaded = withKeyAlone();
    ServiceCredentialsManager::load(loaded);
    EXPECT_EQ(loaded, filled());
}

TEST(ServiceCredentialsManager, StoredRecordIsJSONWithoutWhatIsAbsent) {
    const MemoryKeyChain keyChain;
    auto credentials = withKeyAlone();
    credentials.refreshToken = "refresh-1";
    credentials.expirationDate = Date::fromReferenceSeconds(0.5);
    ServiceCredentialsManager::store(credentials);
    EXPECT_EQ(keyChain.text("ServiceCredentials - Asana+alice"),
              R"({"refreshToken":"refresh-1","expirationDate":0.5})");
}

TEST(ServiceCredentialsManager, LoadKeepsWhatIsPresentAndFillsWhatIsAbsent) {
    const MemoryKeyChain keyChain;
    ServiceCredentialsManager::store(filled());
    auto fresh = withKeyAlone();
    fresh.accessToken = "access-2";
    ServiceCredentialsManager::load(fresh);
    EXPECT_EQ(fresh.accessToken, "access-2");
    EXPECT_EQ(fresh.refreshToken, "refresh-1");
}

TEST(ServiceCredentialsManager, LoadReplacesNoneOfTheSevenFieldsThatIsPresent) {
    const MemoryKeyChain keyChain;
    ServiceCredentialsManager::store(filled());
    auto fresh = withKeyAlone();
    fresh.accessToken = "access-2";
    fresh.refreshToken = "refresh-2";
    fresh.tokenSecret = "secret-2";
    fresh.password = "";
    fresh.loginName = "login-2";
    fresh.expirationDate = Date::fromReferenceSeconds(1);
    fresh.additionalInfo.emplace();
    const auto before = fresh;
    ServiceCredentialsManager::load(fresh);
    EXPECT_EQ(fresh, before);
}

TEST(ServiceCredentialsManager, LoadOfAnAbsentKeyLogsTheErrorAndLeavesTheRecord) {
    const MemoryKeyChain keyChain;
    const LogCapture log;
    auto credentials = withKeyAlone();
    credentials.accessToken = "access-1";
    const auto before = credentials;
    ServiceCredentialsManager::load(credentials);
    EXPECT_EQ(credentials, before);
    EXPECT_EQ(
        errorsOf(log),
        (Texts{"load(key:): Failed to load ServiceCredentials - Asana+alice from keychain with error"}));
}

TEST(ServiceCredentialsManager, LoadOfADamagedValueLogsTheErrorAndLeavesTheRecord) {
    const MemoryKeyChain keyChain;
    keyChain.setText("ServiceCredentials - Asana+alice", R"({"accessToken":7})");
    const LogCapture log;
    auto credentials = withKeyAlone();
    ServiceCredentialsManager::load(credentials);
    EXPECT_EQ(credentials, withKeyAlone());
    EXPECT_EQ(errorsOf(log), (Texts{"load(credentials:): Failed to decode service credentials"}));
}

TEST(ServiceCredentialsManager, StoreOfWhatDoesNotEncodeLogsTheErrorAndWritesNothing) {
    const MemoryKeyChain keyChain;
    const LogCapture log;
    auto credentials = withKeyAlone();
    credentials.accessToken = "\xff\xfe";
    ServiceCredentialsManager::store(credentials);
    EXPECT_EQ(keyChain.text("ServiceCredentials - Asana+alice"), std::nullopt);
    EXPECT_EQ(errorsOf(log), (Texts{"store(credentials:): Failed to encode service credentials"}));
}

TEST(ServiceCredentialsManager, StoreThatTheKeyChainRefusesLogsTheError) {
    const InstalledKeyChain keyChain(std::make_shared<RefusingKeyChain>());
    const LogCapture log;
    ServiceCredentialsManager::store(filled());
    EXPECT_EQ(
        errorsOf(log),
        (Texts{
            "store(value:forKey:): Failed to save ServiceCredentials - Asana+alice to keychain with error"}));
}

TEST(ServiceCredentialsManager, LoadAndRemoveThatTheKeyChainRefusesLogTheirErrors) {
    const InstalledKeyChain keyChain(std::make_shared<RefusingKeyChain>());
    const LogCapture log;
    auto credentials = filled();
    ServiceCredentialsManager::load(credentials);
    ServiceCredentialsManager::remove(credentials);
    EXPECT_EQ(credentials, filled());
    EXPECT_EQ(
        errorsOf(log),
        (Texts{"load(key:): Failed to load ServiceCredentials - Asana+alice from keychain with error",
               "remove(key:): Failed to remove ServiceCredentials - Asana+alice to keychain with error"}));
}

TEST(ServiceCredentialsManager, RemoveOfAnAbsentKeyLogsItsErrorAndNothingElse) {
    const MemoryKeyChain keyChain;
    const LogCapture log;
    ServiceCredentialsManager::remove(withKeyAlone());
    EXPECT_EQ(
        errorsOf(log),
        (Texts{"remove(key:): Failed to remove ServiceCredentials - Asana+alice to keychain with error"}));
}

TEST(ServiceCredentialsManager, RemoveTakesTheRecordAway) {
    const MemoryKeyChain keyChain;
    ServiceCredentialsManager::store(filled());
    const LogCapture log;
    ServiceCredentialsManager::remove(filled());
    EXPECT_EQ(keyChain.text("ServiceCredentials - Asana+alice"), std::nullopt);
    EXPECT_EQ(errorsOf(log), Texts());
}

TEST(ServiceCredentialsManager, FillCopiesAnAbsentFieldOverAPresentOneAndLeavesTheKey) {
    auto to = filled();
    auto from = ServiceAccountCredentials::forIdentifier("Asana+bob");
    from.accessToken = "access-2";
    ServiceCredentialsManager::fill(from, to);
    EXPECT_EQ(to.accessToken, "access-2");
    EXPECT_EQ(to.refreshToken, std::nullopt);
    EXPECT_EQ(to.additionalInfo, std::nullopt);
    EXPECT_EQ(to.serviceCredentialsKey, "ServiceCredentials - Asana+alice");
}

TEST(ServiceCredentialsManager, FillCopiesAnAbsentRefreshTokenOverAPresentOne) {
    auto to = filled();
    ServiceCredentialsManager::fill(withKeyAlone(), to);
    EXPECT_EQ(to.refreshToken, std::nullopt);
}

TEST(ServiceCredentialsManager, FillCopiesAllSevenFields) {
    auto to = withKeyAlone();
    ServiceCredentialsManager::fill(filled(), to);
    EXPECT_EQ(to, filled());
}

TEST(ServiceCredentialsManager, WhatWasFilledIsMaskedInTheLog) {
    auto from = withKeyAlone();
    from.accessToken = "canary-that-was-filled";
    auto to = withKeyAlone();
    ServiceCredentialsManager::fill(from, to);
    const LogCapture log;
    Logger::shared().error("it was canary-that-was-filled", "test()");
    EXPECT_FALSE(log.contains("canary"));
}

TEST(ServiceCredentialsManager, WhatWasStoredIsMaskedInTheLog) {
    const MemoryKeyChain keyChain;
    auto credentials = withKeyAlone();
    credentials.accessToken = "canary-in-the-log-1";
    credentials.additionalInfo.emplace()["sessionToken"] = "canary-in-the-log-2";
    ServiceCredentialsManager::store(credentials);
    const LogCapture log;
    Logger::shared().error("it was canary-in-the-log-1, and canary-in-the-log-2", "test()");
    ASSERT_EQ(log.records().size(), 1u);
    EXPECT_EQ(log.records()[0].message.find("canary"), std::string::npos) << log.records()[0].message;
}

} // namespace zelto
