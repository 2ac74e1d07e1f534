#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <Support/LogCapture.h>

#include <Support/FreshProcess.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace zelto {

TEST(SecretsDeathTest, AreReplacedBeforeTheirFirstUseAlone) {
    expectInFreshProcess([] {
        return Secrets::overrideClient("Zoom", "id-1", std::nullopt) &&
               Secrets::overrideClient("Zoom", "id-2", "secret-2") &&
               !Secrets::overrideClient("zoom", "id-3", "secret-3") &&
               !Secrets::overrideClient("", "id-3", "secret-3") && Secrets::zoomClientKey() == "id-2" &&
               Secrets::zoomClientSecret() == "secret-2" &&
               !Secrets::overrideClient("Zoom", "id-4", "secret-4") &&
               !Secrets::overrideClient("Asana", "id-4", "secret-4") && Secrets::zoomClientKey() == "id-2" &&
               Secrets::asanaClientKey() == "placeholder-id-of-Asana";
    });
}

TEST(Secrets, AreOfFifteenServices) {
    const std::vector<std::string_view> expected = {
        "Asana",  "Dropbox", "Evernote", "GoogleDrive", "GoTo",    "Hubspot", "MeisterTask", "MicrosoftTeams",
        "Notion", "OneNote", "Slack",    "TickTick",    "Todoist", "Trello",  "Zoom"};
    const auto names = Secrets::serviceNames();
    EXPECT_EQ(std::vector(names.begin(), names.end()), expected);
}

TEST(Secrets, AreReadOnce) {
    EXPECT_EQ(&Secrets::trelloClientSecret(), &Secrets::trelloClientSecret());
    EXPECT_EQ(&Secrets::webSite(), &Secrets::webSite());
}

TEST(Secrets, AreMaskedInTheLogOnceTheyAreRead) {
    const auto secret = Secrets::trelloClientSecret();
    const LogCapture log;
    Logger::shared().error("it is " + secret, "test()");
    EXPECT_EQ(log.messages(), std::vector<std::string>{"it is ***"});
}

} // namespace zelto
