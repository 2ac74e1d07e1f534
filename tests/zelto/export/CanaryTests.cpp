#include <zelto/ZeltoProgram.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Platform/Base64.h>
#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("project-kickoff.eml");
constexpr auto passphrase = "canary-passphrase/5+=&%\"Ж";

// One secret for each field that may hold one.
ServiceAccountCredentials canaries(const std::string& identifier) {
    auto credentials = ServiceAccountCredentials::forIdentifier(identifier);
    credentials.accessToken = "canary-access/0+=&%\"Ж";
    credentials.refreshToken = "canary-refresh/1+=&%\"Ж";
    credentials.tokenSecret = "canary-token-secret/2+=&%\"Ж";
    credentials.password = "canary-password/3+=&%\"Ж";
    credentials.additionalInfo = std::map<std::string, std::string>{{"cookie", "canary-additional/6+=&%\"Ж"}};
    return credentials;
}

std::vector<std::string> secretsOf(const ServiceAccountCredentials& credentials) {
    return {*credentials.accessToken,
            *credentials.refreshToken,
            *credentials.tokenSecret,
            *credentials.password,
            credentials.additionalInfo->at("cookie"),
            passphrase};
}

// The middle of what Base64 makes of the secret behind so many other bytes: the same whatever stands around
// it.
std::string base64Middle(const std::string& secret, std::size_t offset) {
    const auto text = base64Encoded(std::string(offset, 'x') + secret);
    constexpr std::size_t group = 4;
    return text.substr(group, text.size() - 2 * group);
}

std::vector<std::string> formsOf(const std::string& secret) {
    return {secret,
            secret.substr(0, secret.find('/')), // whatever becomes of the characters behind it
            percentEncode(secret).value(),
            percentEncode(percentEncode(secret).value()).value(),
            base64Middle(secret, 0),
            base64Middle(secret, 1),
            base64Middle(secret, 2)};
}

// The secrets that are in a text in any form.
std::vector<std::string> found(const std::string& text) {
    std::vector<std::string> all;
    for (const auto& secret : secretsOf(canaries("any"))) {
        for (const auto& form : formsOf(secret)) {
            if (text.find(form) != std::string::npos) {
                all.push_back(form);
            }
        }
    }
    return all;
}

const std::vector<std::string> none;

} // namespace

TEST(Canary, IsFoundInEachFormInAnyPlace) {
    for (const auto& secret : secretsOf(canaries("any"))) {
        for (const std::string before : {"", "a", "ab", "abc", "{\"token\":\""}) {
            EXPECT_NE(found(before + secret + "tail"), none);
            EXPECT_NE(found(before + percentEncode(secret).value()), none);
            EXPECT_NE(found(base64Encoded(before + secret + "tail")), none) << before << secret;
        }
    }
    EXPECT_EQ(found("canary"), none);
}

TEST(Canary, AppearsInNoByteThatTheCommandsWrite) {
    ZeltoProgram zelto;
    zelto.variables["ZELTO_KEYCHAIN_PASSPHRASE"] = passphrase;
    LVXKeyChainStoreFactory::setStore(
        std::make_shared<FileKeyChainStore>(zelto.dataDirectory() / "keychain", passphrase));
    {
        const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory());
        ASSERT_TRUE(storage);
        for (const auto type :
             {ServiceType::Bear, ServiceType::Trello, ServiceType::Things, ServiceType::Hubspot}) {
            ServiceAccountConfiguration account(type, "user", true);
            account.credentials = canaries(account.identifier());
            ServiceCredentialsManager::store(*account.credentials);
            ASSERT_TRUE((*storage)->trySave(account));
        }
    }
    // The secrets are within the program's reach: what was stored comes back.
    auto loaded = ServiceAccountCredentials::forIdentifier("Bear+user");
    ServiceCredentialsManager::load(loaded);
    EXPECT_EQ(secretsOf(loaded), secretsOf(canaries("Bear+user")));

    const auto opener =
        zelto.home.write("opener", "#!/bin/sh\n{ env; printf '%s\\n' \"$@\"; tr '\\0' '\\n' < "
                                   "/proc/$PPID/cmdline; } >> '" +
                                       (zelto.home / "seen").string() + "'\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    const std::vector<ZeltoProgram::Arguments> calls = {
        {"services"},
        {"accounts"},
        {"connect", "bear", "--name", "user"},
        {"connect", "agenda"},
        {"connect", "box"},
        {"config", mail, "--to", "Bear+user"},
        {"config", mail, "--to", "Trello+user"},
        {"preview", mail, "--to", "Things+user"},
        {"export", mail, "--to", "Bear+user", "--opener", opener},
        {"export", mail, "--to", "Things+user", "--opener", "-"},
        {"export", mail, "--to", "Things+user", "--opener", "false"},
        {"export", mail, "--to", "Trello+user", "--dry-run"},
        {"export", mail, "--to", "Hubspot+user", "--contacts", "senderOnly", "--dry-run"},
        {"export", mail, "--to", "omnifocus", "--progress", "json", "--opener", opener},
        {"accounts", "restore", "Trello+user"},
        {"accounts", "remove", "Nobody"},
        {"accounts", "remove", "Bear+user"},
        {"accounts", "remove", "Trello+user"},
        {"completion", "bash"},
        {"nothing"},
        {"--help"},
    };
    for (const auto& call : calls) {
        for (const auto* form : {"--verbose", "--json"}) {
            auto arguments = call;
            arguments.insert(arguments.begin(), {form, "--keychain", "file"});
            const auto outcome = zelto.run(arguments);
            EXPECT_EQ(found(outcome.output + outcome.errorOutput), none) << call.front();
        }
    }
    EXPECT_NE(TemporaryFolder::read(zelto.home / "seen").find("bear://"), std::string::npos);
    for (const auto& [file, content] : ZeltoProgram::filesBelow(zelto.home.path())) {
        EXPECT_EQ(found(content), none) << file;
        EXPECT_EQ(found(file), none);
    }

    // Removing an account has removed its secrets, and those alone.
    auto gone = ServiceAccountCredentials::forIdentifier("Bear+user");
    ServiceCredentialsManager::load(gone);
    EXPECT_EQ(gone.accessToken, std::nullopt);
    auto kept = ServiceAccountCredentials::forIdentifier("Things+user");
    ServiceCredentialsManager::load(kept);
    EXPECT_EQ(kept.accessToken, canaries("any").accessToken);
    LVXKeyChainStoreFactory::setStore(nullptr);
}

TEST(Canary, OfThePassphraseReachesNoProgramThatIsStarted) {
    ZeltoProgram zelto;
    zelto.variables["ZELTO_KEYCHAIN_PASSPHRASE"] = passphrase;
    const auto seen = (zelto.home / "seen").string();
    const auto opener = zelto.home.write("opener", "#!/bin/sh\nenv > '" + seen + "'\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", opener}).status, 0);
    const auto environment = TemporaryFolder::read(seen);
    EXPECT_NE(environment.find("HOME="), std::string::npos);
    EXPECT_EQ(environment.find("ZELTO_KEYCHAIN_PASSPHRASE"), std::string::npos);
    EXPECT_EQ(found(environment), none);
}

} // namespace zelto
