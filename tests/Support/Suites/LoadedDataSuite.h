#pragma once

#include <ZeltoIntegrations/Export/CachedValue.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/ExportScenario.h>
#include <Support/FailingResponses.h>
#include <Support/HostMistakes.h>
#include <Support/NetworkExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace zelto {

// A part of the data, and the value that the account keeps under the key.
template <class Exporter, class T> struct LoadedPart {
    CachedValue<T> Exporter::*member;
    const char* key;
    T value;
};

// What an exporter loads of an account and keeps there, by facts that have
//
//     using Export; using Server;
//     static constexpr auto name;               // in the names of the tests
//     static FullData data();                   // what the server's responses amount to
//     static std::vector<std::string> lines();  // of the requests for it, in order
//     static constexpr auto email;              // as `loadUserEmail` gives it
//     static constexpr auto identifier;         // of an account that is connected with it
//     static auto parts();                      // a tuple with a LoadedPart for each that the account keeps
//
// and, where it is so,
//
//     static constexpr bool areSideBySide;      // the requests, which may then come in any order
//     static constexpr bool loadsWhatIsMissing; // from the service, also when that is not forced
template <class Facts> class LoadedData : public testing::Test {
  protected:
    using Export = typename Facts::Export;
    using Exporter = typename Export::Exporter;
    using Texts = std::vector<std::string>;
    using Value = std::optional<typename Exporter::FullData>;

    // All that fails the loading, at each of its requests.
    void forEachFailure(const std::function<void(const FailingResponse&)>& expect) {
        auto responses = unreadableResponses();
        std::ranges::copy(failingResponses(), std::back_inserter(responses));
        for (const auto& failing : responses) {
            for (const auto& line : Facts::lines()) {
                SCOPED_TRACE(line + " " + failing.name);
                service.respondToLine(line, failing.response);
                expect(failing);
            }
        }
    }

    // The requests so far; in the order of the text where they are sent side by side.
    Texts lines() const { return ordered(service.lines()); }

    static Texts ordered(Texts lines) {
        if constexpr (requires { Facts::areSideBySide; }) {
            std::ranges::sort(lines);
        }
        return lines;
    }

    static Texts expectedLines() { return ordered(Facts::lines()); }

    static constexpr bool loadsWhatIsMissing = requires { Facts::loadsWhatIsMissing; };

    // What loading without force comes to where the account has nothing and the service fails like this.
    void expectNone(IntegrationLoadError error) {
        if constexpr (loadsWhatIsMissing) {
            EXPECT_EQ(one.load(false).error(), error);
        } else {
            EXPECT_EQ(one.load(false).value(), Value());
        }
    }

    static void forEachPart(const auto& function) {
        std::apply([&](const auto&... part) { (function(part), ...); }, Facts::parts());
    }

    static void expectIn(const ServiceAccountConfiguration& account) {
        forEachPart([&]<class T>(const LoadedPart<Exporter, T>& part) {
            EXPECT_EQ(account.getCachedItem<T>(part.key), part.value) << part.key;
        });
    }

    Export one;
    typename Facts::Server service; // behind what its requests write to
};

TYPED_TEST_SUITE_P(LoadedData);

TYPED_TEST_P(LoadedData, ComesFromTheServiceWhenForcedAndFromTheAccountElse) {
    using Value = typename TestFixture::Value;
    if (!this->loadsWhatIsMissing) {
        EXPECT_EQ(this->one.load(false).value(), Value());
        EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
    }
    EXPECT_EQ(this->one.load(!this->loadsWhatIsMissing).value(), Value(TypeParam::data()));
    EXPECT_EQ(this->lines(), this->expectedLines());

    EXPECT_EQ(this->one.load(false).value(), Value(TypeParam::data()));
    EXPECT_EQ(this->lines(), this->expectedLines());

    EXPECT_EQ(this->one.load(true).value(), Value(TypeParam::data()));
    EXPECT_EQ(this->lines(), this->ordered(twice(TypeParam::lines())));
    this->expectIn(this->one.storage->load(this->one.account.identifier()).value());
}

TYPED_TEST_P(LoadedData, IsNoneOrLoadedWithoutOneOfItsParts) {
    using Value = typename TestFixture::Value;
    this->forEachPart([&](const auto& part) {
        ASSERT_TRUE(this->one.load(true));
        ((*this->one.exporter()).*part.member).set(std::nullopt);
        EXPECT_EQ(this->one.load(false).value(),
                  this->loadsWhatIsMissing ? Value(TypeParam::data()) : Value())
            << part.key;
    });
}

TYPED_TEST_P(LoadedData, WithoutCredentialsIsAnOauthError) {
    this->one.account.credentials = std::nullopt;
    EXPECT_EQ(this->one.load(true).error(), IntegrationLoadError::oauthError);
    EXPECT_EQ(this->one.fetch().error(), IntegrationLoadError::oauthError);
    this->expectNone(IntegrationLoadError::oauthError);
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
}

TYPED_TEST_P(LoadedData, IsNoneAfterAnyFailureAtAnyRequest) {
    this->forEachFailure([&](const FailingResponse& failing) {
        this->one.releaseExporter();
        EXPECT_EQ(this->one.load(true).error(), loadErrorOf(failing));
        EXPECT_EQ(this->one.fetch().error(), loadErrorOf(failing));
        this->expectNone(loadErrorOf(failing));
    });
}

TYPED_TEST_P(LoadedData, StaysAfterAnyFailureAtAnyRequest) {
    ASSERT_TRUE(this->one.load(true));
    this->forEachFailure([&](const FailingResponse& failing) {
        EXPECT_EQ(this->one.load(true).error(), loadErrorOf(failing));
        EXPECT_EQ(this->one.load(false).value(), typename TestFixture::Value(TypeParam::data()));
        EXPECT_EQ(this->one.exporter()->loadUserEmail(), TypeParam::email);
    });
}

TYPED_TEST_P(LoadedData, KeepsWhatTheServiceSaysOfAFailureUntilTheNextLoading) {
    EXPECT_EQ(this->one.exporter()->lastRefusal(), std::nullopt);
    this->service.respondToLine(TypeParam::lines().front(),
                                PlayedResponse::json(R"({"message":"not today"})", 403));
    EXPECT_FALSE(this->one.load(true));
    EXPECT_EQ(this->one.exporter()->lastRefusal(), (ServiceRefusal{"not today", false}));
    this->service.respondToLine(TypeParam::lines().front(), PlayedResponse::reset());
    EXPECT_FALSE(this->one.load(true));
    EXPECT_EQ(this->one.exporter()->lastRefusal(), (ServiceRefusal{"", false}));
}

TYPED_TEST_P(LoadedData, IsFetchedByForceAndNamesTheUser) {
    EXPECT_EQ(this->one.exporter()->loadUserEmail(), std::nullopt);
    EXPECT_TRUE(this->one.fetch());
    EXPECT_TRUE(this->one.fetch());
    EXPECT_EQ(this->lines(), this->ordered(twice(TypeParam::lines())));
    EXPECT_EQ(this->one.exporter()->loadUserEmail(), TypeParam::email);
}

TYPED_TEST_P(LoadedData, InAStorageThatThrowsIsAnInternalErrorAndTheNextLoadingRuns) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    this->one.storage->onChange = [] { throw std::runtime_error("the storage threw"); };
    EXPECT_EQ(this->one.load(true).error(), IntegrationLoadError::internalError);
    this->one.storage->onChange = [] {};
    EXPECT_EQ(this->one.load(true).value(), typename TestFixture::Value(TypeParam::data()));
}

TYPED_TEST_P(LoadedData, NamesAnAccountThatIsConnectedAndIsKeptInIt) {
    IntegrationsManager manager(
        this->one.storage, this->one.interactor, [](const auto&) { return true; }, "");
    ServiceAccountConfiguration fresh(this->one.account.serviceType(), std::nullopt, true);
    fresh.credentials = ServiceAccountCredentials::forIdentifier("new");
    fresh.credentials->accessToken = "token";
    fresh.credentials->expirationDate = Date::distantFuture();
    Completed<Result<ServiceAccountConfiguration, IntegrationAccountCreationError>> completed;
    manager.trySaveServiceConfiguration(
        fresh, completed.template callback<IntegrationsManager::AccountCompletion>());
    const auto connected = completed.value();
    ASSERT_TRUE(connected);
    EXPECT_EQ(connected->identifier(), TypeParam::identifier);
    this->expectIn(*connected);
    this->expectIn(this->one.storage->load(TypeParam::identifier).value());
    EXPECT_NE(manager.createServiceExporter<typename TestFixture::Exporter>(*connected, this->one.data),
              nullptr);
}

REGISTER_TYPED_TEST_SUITE_P(LoadedData, ComesFromTheServiceWhenForcedAndFromTheAccountElse,
                            IsNoneOrLoadedWithoutOneOfItsParts, WithoutCredentialsIsAnOauthError,
                            IsNoneAfterAnyFailureAtAnyRequest, StaysAfterAnyFailureAtAnyRequest,
                            KeepsWhatTheServiceSaysOfAFailureUntilTheNextLoading,
                            IsFetchedByForceAndNamesTheUser,
                            InAStorageThatThrowsIsAnInternalErrorAndTheNextLoadingRuns,
                            NamesAnAccountThatIsConnectedAndIsKeptInIt);

} // namespace zelto
