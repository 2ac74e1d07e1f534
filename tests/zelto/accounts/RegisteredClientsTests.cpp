#include "accounts/RegisteredClients.h"
#include <zelto/ZeltoProgram.h>

#include <ZeltoIntegrations/Accounts/Secrets.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>
#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/FileManager.h>

#include <Support/FreshProcess.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace zelto {

TEST(RegisteredClientsDeathTest, ComeFromTheEnvironmentAndLeaveIt) {
    expectInFreshProcess([] {
        ::setenv("ZELTO_TRELLO_CLIENT_ID", "my-own-id", 1);
        ::setenv("ZELTO_TRELLO_CLIENT_SECRET", "my-own-secret", 1);
        ::setenv("ZELTO_GOOGLEDRIVE_CLIENT_ID", "my-drive", 1);
        return cli::useClientsOfEnvironment() && TrelloConstants::clientKey() == "my-own-id" &&
               TrelloConstants::clientSecret() == "my-own-secret" &&
               GoogleDriveConstants::clientID() == "my-drive" &&
               GoogleDriveConstants::clientSecret() == "placeholder-secret-of-GoogleDrive" &&
               !std::getenv("ZELTO_TRELLO_CLIENT_ID") && !std::getenv("ZELTO_TRELLO_CLIENT_SECRET");
    });
}

TEST(RegisteredClients, ThatCannotBeSentAreWrongUsage) {
    for (const auto* variable : {"ZELTO_ZOOM_CLIENT_ID", "ZELTO_ASANA_CLIENT_SECRET"}) {
        for (const auto* value : {"", "a b", "a\nb", "schl\xc3\xbcssel"}) {
            ZeltoProgram zelto;
            zelto.variables[variable] = value;
            const auto outcome = zelto.run({"services", "--json"});
            EXPECT_EQ(outcome.status, 2) << variable;
            EXPECT_EQ(outcome.text("error"), "wrongUsage");
            EXPECT_EQ(outcome.text("message"), "The variable " + std::string(variable) +
                                                   " is empty or holds a character that is no visible one of "
                                                   "ASCII.");
        }
    }
}

TEST(RegisteredClients, ThoseThatAreBuiltInCannotBeReadInTheProgram) {
    const auto program = FileManager::readFile(ZeltoProgram::path());
    ASSERT_TRUE(program && program->size() > 100'000);
    const auto holds = [&](std::string_view text) {
        return ::memmem(program->data(), program->size(), text.data(), text.size()) != nullptr;
    };
    EXPECT_TRUE(holds("https://zoom.us/oauth/token"));
    EXPECT_FALSE(holds("placeholder-id-of-Trello"));
    EXPECT_FALSE(holds("placeholder-secret-of-Trello"));
}

} // namespace zelto
