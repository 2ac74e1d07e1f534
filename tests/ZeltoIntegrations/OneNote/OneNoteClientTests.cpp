#include <ZeltoIntegrations/OneNote/OneNoteAuthoriser.h>
#include <ZeltoIntegrations/OneNote/OneNoteClient.h>
#include <ZeltoIntegrations/OneNote/OneNoteConstants.h>

#include <Platform/PercentEncoding.h>

#include <Support/OneNoteExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

class OneNoteClientTest : public testing::Test {
  protected:
    static ServiceAccountCredentials credentials() {
        ServiceAccountCredentials credentials;
        credentials.accessToken = "token";
        credentials.expirationDate = Date::distantFuture();
        return credentials;
    }

    static std::shared_ptr<OneNoteClient> client(const ServiceAccountCredentials& of = credentials()) {
        return std::make_shared<OneNoteClient>(std::make_shared<OneNoteAuthoriser>(of), JSONDecoder(),
                                               [](const auto& text) { return text.contains('@'); });
    }

    static ServiceResult<OneNoteFullData> notebooks(const std::shared_ptr<OneNoteClient>& of = client()) {
        Completed<ServiceResult<OneNoteFullData>> completed;
        of->fetchNotebooks(completed.callback<ServiceCompletion<OneNoteFullData>>());
        return completed.value();
    }

    static ServiceResult<void> note(const std::string& section,
                                    const std::vector<ExporterHelperMultipartData>& parts) {
        Completed<ServiceResult<void>> completed;
        client()->createNoteInSection(section, parts, completed.callback<ServiceCompletion<void>>());
        return completed.value();
    }

    static std::string get(const std::string& path, const std::string& token = "token") {
        return "GET /v1.0/" + path + "\nAuthorization: Bearer " + token + "\n\n";
    }

    Texts sortedTexts() const {
        auto texts = service.texts();
        std::ranges::sort(texts);
        return texts;
    }

    MemoryKeyChain keyChain;
    OneNoteServer service;
};

} // namespace

TEST_F(OneNoteClientTest, NotebooksAreThreeRequestsSideBySide) {
    // None gets its response before all three have come.
    const auto all = std::make_shared<std::latch>(3);
    service.onRequest = [all](const auto&) {
        all->arrive_and_wait();
        return std::nullopt;
    };
    EXPECT_EQ(notebooks().value(),
              (OneNoteFullData{.user = {.id = "u1", .name = "Me", .email = "me@example.org"},
                               .notebooks = {oneNoteNotebook()}}));
    EXPECT_EQ(sortedTexts(), (Texts{get("me"), get("me/onenote/notebooks"), get("me/onenote/sections")}));
}

TEST_F(OneNoteClientTest, AFailureWaitsForTheOtherRequestsAndTheFirstOneCounts) {
    service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        if (request.target == "/v1.0/me") {
            return std::nullopt;
        }
        return PlayedResponse::json("no", request.target.ends_with("/notebooks") ? 403 : 404);
    };
    EXPECT_EQ(notebooks().error(), Error::forbidden);
    EXPECT_EQ(service.lines().size(), 3U);
}

TEST_F(OneNoteClientTest, FurtherPagesOfALongListAreNotRead) {
    service.notebooks =
        R"({"@odata.nextLink":"https://graph.microsoft.com/v1.0/me/onenote/notebooks?$skip=20",)"
        R"("value":[{"id":"n1","displayName":"Work"}]})";
    EXPECT_TRUE(notebooks());
    EXPECT_EQ(service.lines().size(), 3U);
}

TEST_F(OneNoteClientTest, APageIsAFormOfItsParts) {
    EXPECT_TRUE(note("1-a!s b/ä", {{.name = "Presentation",
                                    .dataId = "p",
                                    .contentType = "text/html",
                                    .data = HTTPBody("<html></html>")},
                                   {.name = "n\"1",
                                    .dataId = "a\r\n\"b\".txt",
                                    .contentType = "text/plain",
                                    .data = HTTPBody("\x00\r\n--x")}}));
    EXPECT_EQ(service.texts(),
              Texts{"POST /v1.0/me/onenote/sections/1-a!s%20b%2F%C3%A4/pages\n"
                    "Content-Type: multipart/form-data; boundary=B\nAuthorization: Bearer token\n"
                    "Content-Length: 365\n\n"
                    "--B\r\nContent-Disposition: form-data; name=\"Presentation\"; filename=\"p\"\r\n"
                    "Content-Type: text/html\r\n\r\n<html></html>\r\n"
                    "--B\r\nContent-Disposition: form-data; name=\"n%221\"; "
                    "filename=\"a%0D%0A%22b%22.txt\"\r\n"
                    "Content-Type: text/plain\r\n\r\n\r\n--B--\r\n"});
}

TEST_F(OneNoteClientTest, APageNeedsNoRecord) {
    for (const auto& response : {PlayedResponse::json("{}"), PlayedResponse{.status = 204}}) {
        service.onRequest = [response](const auto&) { return response; };
        EXPECT_TRUE(note("s1", {}));
    }
    service.onRequest = [](const auto&) { return PlayedResponse::json("<html>"); };
    EXPECT_EQ(note("s1", {}).error(), Error::dataParseError);
}

TEST_F(OneNoteClientTest, AStaleTokenIsRefreshedOnceForTheThreeRequests) {
    auto stale = credentials();
    stale.refreshToken = "refresh/1";
    stale.expirationDate = Date::fromReferenceSeconds(0);
    EXPECT_TRUE(notebooks(client(stale)));
    const auto form =
        "client%5Fid=" + *percentEncode(OneNoteConstants::clientKey()) +
        "&client%5Fsecret=" + *percentEncode(OneNoteConstants::clientSecret()) +
        "&grant%5Ftype=refresh%5Ftoken&redirect%5Furi=" + *percentEncode(OneNoteConstants::redirectURL()) +
        "&refresh%5Ftoken=refresh%2F1&scope=" + *percentEncode(std::string(OneNoteConstants::scope));
    auto expected = Texts{
        "POST /common/oauth2/v2.0/token\nContent-Type: application/x-www-form-urlencoded\nContent-Length: " +
            std::to_string(form.size()) + "\n\n" + form,
        get("me", "fresh"), get("me/onenote/notebooks", "fresh"), get("me/onenote/sections", "fresh")};
    EXPECT_EQ(service.texts().front(), expected.front());
    std::ranges::sort(expected);
    EXPECT_EQ(sortedTexts(), expected);
}

TEST_F(OneNoteClientTest, WithoutATokenNothingIsSent) {
    auto empty = credentials();
    empty.accessToken = std::nullopt;
    EXPECT_EQ(notebooks(client(empty)).error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(OneNoteClientTest, AReleasedClientStillCompletes) {
    Completed<ServiceResult<OneNoteFullData>> completed;
    client()->fetchNotebooks(completed.callback<ServiceCompletion<OneNoteFullData>>());
    EXPECT_TRUE(completed.value());
}

} // namespace zelto
