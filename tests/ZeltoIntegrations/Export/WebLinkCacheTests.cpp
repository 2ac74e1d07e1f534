#include <ZeltoIntegrations/Export/WebLinkCache.h>

#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <gtest/gtest.h>

#include <limits>

namespace zelto {

namespace {

using Visibility = IntegrationWebLinkVisibility;

// Its texts carry web links.
class LinkingExporter final : public ServiceExporter {
  public:
    using ServiceExporter::ServiceExporter;

    WebLinkCache webLinks{*this};
};

struct Configuration {
    Visibility webLinkVisibility = Visibility::onlyMe;
    std::optional<std::uint64_t> teamId;

    bool operator==(const Configuration&) const = default;
};

class WebLinkCacheTest : public testing::Test {
  protected:
    std::shared_ptr<LinkingExporter> exporterOf(const ServiceAccountConfiguration& ofAccount) {
        return std::make_shared<LinkingExporter>(ofAccount, storage,
                                                 std::make_shared<FakePlatformInteractor>(),
                                                 std::make_shared<FakeDataInteractor>(), "test", true);
    }

    ServiceAccountConfiguration stored() const { return storage->load(account.identifier()).value(); }

    const ServiceAccountConfiguration account{ServiceType::TodoIst, "alice", true};
    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    std::shared_ptr<LinkingExporter> exporter = exporterOf(account);
};

} // namespace

TEST_F(WebLinkCacheTest, WithoutAnExportOnlyTheUserMayOpenALink) {
    EXPECT_EQ(exporter->webLinks.settings(), WebLinkSettings());
    Configuration configuration{.webLinkVisibility = Visibility::team, .teamId = 7};
    exporter->webLinks.offerTo(configuration);
    EXPECT_EQ(configuration, Configuration());
}

TEST_F(WebLinkCacheTest, WhatWasChosenIsOfferedToTheNextExportOfTheAccount) {
    for (const auto& chosen :
         {Configuration{.webLinkVisibility = Visibility::team,
         .teamId = std::numeric_limits<std::uint64_t>::max()},
          Configuration{.webLinkVisibility = Visibility::anyone, .teamId = 0},
          Configuration{.webLinkVisibility = Visibility::onlyMe, .teamId = std::nullopt}}) {
        exporter->webLinks.storeFrom(chosen);
        const auto next = exporterOf(stored());
        Configuration offered{.webLinkVisibility = Visibility::anyone, .teamId = 1};
        next->webLinks.offerTo(offered);
        EXPECT_EQ(offered, chosen);
        EXPECT_EQ(next->webLinks.settings(), webLinkSettingsOf(chosen));
    }
}

TEST_F(WebLinkCacheTest, IsKeptInTheAccountUnderTheseKeys) {
    exporter->webLinks.storeFrom(Configuration{.webLinkVisibility = Visibility::team, .teamId = 7});
    EXPECT_EQ(stored().getCachedItem<Visibility>("lastWebLinkVisibility"), Visibility::team);
    EXPECT_EQ(stored().getCachedItem<std::uint64_t>("lastTeamId"), 7U);
    exporter->webLinks.storeFrom(Configuration{});
    EXPECT_EQ(stored().getCachedItem<std::uint64_t>("lastTeamId"), std::nullopt);
}

TEST_F(WebLinkCacheTest, AValueThatIsNoneOfItsKindCountsAsAbsent) {
    exporter->setCachedValue(std::optional<int>(3), "lastWebLinkVisibility");
    exporter->setCachedValue(std::optional<int>(-1), "lastTeamId");
    EXPECT_EQ(exporter->webLinks.settings(), WebLinkSettings());
}

TEST_F(WebLinkCacheTest, SettingsOfAConfigurationAreItsFields) {
    EXPECT_EQ(webLinkSettingsOf(Configuration{.webLinkVisibility = Visibility::team, .teamId = 7}),
              (WebLinkSettings{.visibility = Visibility::team, .teamId = 7}));
}

} // namespace zelto
