#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>
#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <Support/Completed.h>
#include <Support/LogCapture.h>
#include <Support/MemoryKeyChain.h>
#include <Support/ServiceServer.h>

#include <Platform/ISO8601.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as a meeting service does, by the facts that MeetingFixture takes.
template <class Facts> struct MeetingService {
    static constexpr std::string_view tokenPath = Facts::tokenPath;
    static constexpr std::string_view freshRefreshToken = "rotated";

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        return request.method == "POST" ? PlayedResponse::json(Facts::created, 201)
                                        : PlayedResponse{.status = 204};
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return request.method == "POST" ? std::optional<std::string>("meeting") : std::nullopt;
    }
};

// A meeting service and its client, by facts that have
//
//     using Client; using Authoriser;
//     static constexpr auto service;           // its type
//     static constexpr auto tokenPath;         // of its refreshes
//     static constexpr auto created;           // its response to a creation
template <class Facts> class MeetingFixture : public testing::Test {
  protected:
    using Client = typename Facts::Client;
    using Made = Result<ConferenceDetails, MeetingCreatorError>;
    using Changed = Result<void, MeetingCreatorError>;

    static ServiceAccountCredentials credentials() {
        auto made = ServiceAccountCredentials::forIdentifier(
            ServiceAccountConfiguration(Facts::service, "me", true).identifier());
        made.accessToken = "token";
        made.expirationDate = Date::distantFuture();
        return made;
    }

    static std::shared_ptr<Client> client(const ServiceAccountCredentials& of = credentials()) {
        return std::make_shared<Client>(std::make_shared<typename Facts::Authoriser>(of));
    }

    static Date at(const std::string& time) { return parseISO8601("2026-12-24T" + time + "Z").value(); }

    static Made create(MeetingCreator& creator, const std::optional<std::string>& title = "Title",
                       std::optional<Date> start = std::nullopt, std::optional<Date> end = std::nullopt) {
        Completed<Made> completed;
        creator.createMeeting(title, start, end,
                              completed.template callback<MeetingCreator::CreationCompletion>());
        return completed.value();
    }

    static Changed update(MeetingCreator& creator, const std::string& id,
                          const std::optional<std::string>& title = "Title",
                          std::optional<Date> start = std::nullopt, std::optional<Date> end = std::nullopt) {
        Completed<Changed> completed;
        creator.updateMeeting(id, title, start, end,
                              completed.template callback<MeetingCreator::ChangeCompletion>());
        return completed.value();
    }

    static Changed remove(MeetingCreator& creator, const std::string& id) {
        Completed<Changed> completed;
        creator.deleteMeeting(id, completed.template callback<MeetingCreator::ChangeCompletion>());
        return completed.value();
    }

    // How each of the three operations ends.
    static std::vector<std::optional<MeetingCreatorError>> endsOfAll(MeetingCreator& creator) {
        const auto errorOf = [](const auto& result) {
            return result ? std::nullopt : std::optional(result.error());
        };
        return {errorOf(create(creator)), errorOf(update(creator, "1")), errorOf(remove(creator, "1"))};
    }

    static std::vector<std::optional<MeetingCreatorError>> all(MeetingCreatorError error) {
        return {error, error, error};
    }

    // The body of the request for a meeting of this time.
    std::string bodyFor(std::optional<Date> start, std::optional<Date> end) {
        EXPECT_TRUE(this->create(*client(), "T", start, end));
        return service.server.requests().back().body;
    }

    MemoryKeyChain keyChain;
    ServiceServer<MeetingService<Facts>> service;
};

} // namespace zelto
