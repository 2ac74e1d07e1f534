#include "ServiceClientFixture.h"

#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zelto {

// A response and what the host sees of it.
struct ItemResponse {
    std::string id;
    int count = 0;
};

ZELTO_JSON_CODED(ItemResponse);
ZELTO_JSON_RECORD(ItemResponse, id, count);

namespace {

using E = ServiceClientError;
using Texts = std::vector<std::string>;

enum class ItemError { unavailable, unauthorised };

ServiceRequest request() {
    return ServiceRequest("GET", "https://api.example/1/", "items/7");
}

std::string labelOf(ItemResponse response) {
    return response.id + " x " + std::to_string(response.count);
}

// Sends one request, and gets the one response that the test gives.
class MappedRequest : public testing::Test {
  protected:
    // The end of what the function sends by a client of a service that responds so.
    template <class T, class Error, class Send> Result<T, Error> end(PlayedResponse response, Send send) {
        const TestHTTPServer server(Responses{std::move(response)});
        const ServiceRoute route(server);
        ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
        Completed<Result<T, Error>> completed;
        send(client, completed.template callback<Completion<T, Error>>());
        auto result = completed.value();
        EXPECT_EQ(server.texts(), Texts{"GET /1/items/7\nAuthorization: Bearer good-token\n\n"});
        return result;
    }

    template <class T, class Map> ServiceResult<T> mapped(PlayedResponse response, Map map) {
        return end<T, E>(std::move(response), [&](ServiceClient& client, ServiceCompletion<T> done) {
            performMapped<ItemResponse>(client, request(), std::move(map), std::move(done));
        });
    }

    ServiceResult<void> discarded(PlayedResponse response) {
        return end<void, E>(std::move(response), [](ServiceClient& client, ServiceCompletion<void> done) {
            performDiscarding<ItemResponse>(client, request(), std::move(done));
        });
    }

    const PlayedResponse item = PlayedResponse::json(R"({"id":"a","count":3})");
    const PlayedResponse noItem = PlayedResponse::json(R"({"id":"a"})");
};

} // namespace

TEST_F(MappedRequest, CompletesWithWhatTheResponseIsMappedTo) {
    EXPECT_EQ(mapped<std::string>(item, labelOf), "a x 3");
    EXPECT_EQ(mapped<std::string>(item, &ItemResponse::id), "a") << "a member is a mapping";
}

TEST_F(MappedRequest, AMappingThatFailsIsTheError) {
    const auto map = [](const ItemResponse& response) -> ServiceResult<int> {
        if (response.count > 2) {
            return failure(E::itemNotFound);
        }
        return response.count;
    };
    EXPECT_EQ(mapped<int>(item, map), failure(E::itemNotFound));
    EXPECT_EQ(mapped<int>(PlayedResponse::json(R"({"id":"a","count":2})"), map), 2);
}

TEST_F(MappedRequest, AFailureIsNotMapped) {
    const auto map = [](const ItemResponse&) {
        ADD_FAILURE() << "there is no response to map";
        return 0;
    };
    EXPECT_EQ(mapped<int>(noItem, map), failure(E::dataParseError));
    EXPECT_EQ(mapped<int>({.status = 403}, map), failure(E::forbidden));
}

TEST_F(MappedRequest, MayFailWithAnErrorOfAnotherType) {
    const auto send = [](ServiceClient& client, Completion<int, ItemError> done) {
        performMapped<ItemResponse>(
            client, request(),
            [](const ItemResponse& response) -> Result<int, ItemError> {
                return response.count == 3 ? Result<int, ItemError>(3) : failure(ItemError::unavailable);
            },
            [](E error) { return error == E::forbidden ? ItemError::unauthorised : ItemError::unavailable; },
            std::move(done));
    };
    EXPECT_EQ((end<int, ItemError>(item, send)), 3);
    EXPECT_EQ((end<int, ItemError>(PlayedResponse::json(R"({"id":"a","count":2})"), send)),
              failure(ItemError::unavailable))
        << "of the mapping";
    EXPECT_EQ((end<int, ItemError>({.status = 403}, send)), failure(ItemError::unauthorised));
    EXPECT_EQ((end<int, ItemError>({.status = 500}, send)), failure(ItemError::unavailable));
}

TEST_F(MappedRequest, ADiscardedResponseIsASuccessOnlyIfItIsWhatWasAskedFor) {
    EXPECT_EQ(discarded(item), ServiceResult<void>());
    EXPECT_EQ(discarded(noItem), failure(E::dataParseError));
    EXPECT_EQ(discarded({.status = 404}), failure(E::itemNotFound));
}

TEST_F(MappedRequest, WithoutAMappingTheResponseIsTheValue) {
    const auto send = [](ServiceClient& client, ServiceCompletion<ItemResponse> done) {
        performRequest<ItemResponse>(client, request(), std::move(done));
    };
    const auto response = end<ItemResponse, E>(item, send);
    ASSERT_TRUE(response);
    EXPECT_EQ(labelOf(*response), "a x 3");
    EXPECT_EQ((end<ItemResponse, E>({.status = 429}, send)).error(), E::toManyRequests);
}

} // namespace zelto
