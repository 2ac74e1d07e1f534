#include <ZeltoIntegrations/Trello/TrelloAuthoriser.h>
#include <ZeltoIntegrations/Trello/TrelloClient.h>
#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

class TrelloClientTest : public testing::Test {
  protected:
    std::shared_ptr<TrelloClient> client(const std::string& token = "token") {
        ServiceAccountCredentials credentials;
        credentials.accessToken = token;
        return std::make_shared<TrelloClient>(std::make_shared<TrelloAuthoriser>(credentials), JSONDecoder());
    }

    ServiceResult<std::string> addCard(const std::optional<std::string>& name,
                                       const std::optional<std::string>& description,
                                       const std::string& list) {
        Completed<ServiceResult<std::string>> completed;
        client()->addCard(name, description, list, completed.callback<ServiceCompletion<std::string>>());
        return completed.value();
    }

    ServiceResult<void> addAttachment(const std::filesystem::path& file, const std::string& card) {
        Completed<ServiceResult<void>> completed;
        client()->addAttachment(file, card, completed.callback<ServiceCompletion<void>>());
        return completed.value();
    }

    using Fetch = void (TrelloClient::*)(TrelloClient::Boards);

    ServiceResult<std::vector<TrelloBoard>> boards(Fetch fetch) {
        Completed<ServiceResult<std::vector<TrelloBoard>>> completed;
        ((*client()).*fetch)(completed.callback<TrelloClient::Boards>());
        return completed.value();
    }

    // What stands behind the operation's own query.
    const std::string signature = "key=" + TrelloConstants::clientKey() + "&token=token";
    const std::string boardsRequest =
        "GET "
        "/1/members/me/boards?fields=id,name,closed,pinned&list_fields=id,name,closed,idBoard&lists=open&" +
        signature + "\n\n";
    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    TrelloServer service;
};

} // namespace

TEST_F(TrelloClientTest, BoardsAreAskedForWithTheirOpenLists) {
    service.boards = R"([{"id":"b2","closed":true,"pinned":false,"lists":[]},)"
                     R"({"id":"b1","name":"Work","closed":false,"pinned":true,"lists":[)"
                     R"({"id":"l1","idBoard":"b1","name":"To Do","closed":false},)"
                     R"({"id":"l0","closed":true},{"name":"no id","closed":false}]}])";
    const TrelloList open{.id = "l1", .idBoard = "b1", .name = "To Do"};
    const TrelloBoard work{
        .id = "b1", .name = "Work", .pinned = true, .lists = {open, {.id = "l0", .closed = true}}};
    EXPECT_EQ(boards(&TrelloClient::getAllBoards).value(),
              (std::vector<TrelloBoard>{{.id = "b2", .closed = true}, work}));

    auto active = work;
    active.removeClosedLists();
    EXPECT_EQ(boards(&TrelloClient::getAllActiveBoards).value(), std::vector{active});
    EXPECT_EQ(service.texts(), (Texts{boardsRequest, boardsRequest}));
}

TEST_F(TrelloClientTest, UserIsAskedForByName) {
    Completed<ServiceResult<TrelloUser>> completed;
    client()->getUser(completed.callback<ServiceCompletion<TrelloUser>>());
    EXPECT_EQ(completed.value().value(), (TrelloUser{.email = "me@example.org", .fullName = "Me"}));
    EXPECT_EQ(
        service.texts(),
        Texts{"GET /1/members/me?fields=idEnterprise,idPremOrgsAdmin,products,email,fullName,avatarUrl&" +
              signature + "\n\n"});
}

TEST_F(TrelloClientTest, CardTravelsInTheQuery) {
    EXPECT_EQ(addCard("a+b & c=d; 100 % ä/#?", "[m](x://y?z=1&w)", "l1").value(), "c1");
    EXPECT_EQ(service.lines(), Texts{"POST /1/cards?desc=%5Bm%5D(x://y?z%3D1%26w)&idList=l1&"
                                     "name=a%2Bb%20%26%20c%3Dd%3B%20100%20%25%20%C3%A4/%23?&" +
                                     signature});
    EXPECT_EQ(service.server.requests().front().bodySize, 0U);
    EXPECT_EQ(service.server.requests().front().headers.value("Content-Length"), "0");
}

TEST_F(TrelloClientTest, WhatACardDoesNotHaveIsLeftOut) {
    EXPECT_TRUE(addCard(std::nullopt, std::nullopt, "l1"));
    EXPECT_TRUE(addCard("", "", "l1"));
    EXPECT_EQ(service.lines(), (Texts{"POST /1/cards?idList=l1&" + signature,
                                      "POST /1/cards?desc=&idList=l1&name=&" + signature}));
}

TEST_F(TrelloClientTest, AttachmentIsOneFileOfAForm) {
    EXPECT_TRUE(addAttachment(folder.write("a \"b\".txt", "content\r\n"), "c1"));
    EXPECT_EQ(service.texts(),
              Texts{"POST /1/cards/c1/attachments?" + signature +
                    "\nContent-Type: multipart/form-data; boundary=B\nContent-Length: 210\n\n"
                    "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a %22b%22.txt\"\r\n"
                    "Content-Type: text/plain\r\n\r\ncontent\r\n\r\n--B--\r\n"});
}

TEST_F(TrelloClientTest, AnIdentifierStaysInItsPlace) {
    EXPECT_TRUE(addAttachment(folder.write("a", "x"), "../x?y=1#z/%41"));
    EXPECT_EQ(service.lines(), Texts{"POST /1/cards/..%2Fx%3Fy=1%23z%2F%2541/attachments?" + signature});
}

TEST_F(TrelloClientTest, AnAttachmentWithoutFileOrCardIsNotSent) {
    EXPECT_EQ(addAttachment("", "c1").error(), Error::internalError);
    EXPECT_EQ(addAttachment(folder.write("a", "x"), "").error(), Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TrelloClientTest, WithoutATokenNothingIsSent) {
    Completed<ServiceResult<TrelloUser>> completed;
    std::make_shared<TrelloClient>(std::make_shared<TrelloAuthoriser>(ServiceAccountCredentials()),
                                   JSONDecoder())
        ->getUser(completed.callback<ServiceCompletion<TrelloUser>>());
    EXPECT_EQ(completed.value().error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TrelloClientTest, AResponseWithoutTheIdIsNotDecoded) {
    service.onRequest = [](const auto&) { return PlayedResponse::json("{}"); };
    EXPECT_EQ(addCard("n", "d", "l1").error(), Error::dataParseError);
    EXPECT_EQ(addAttachment(folder.write("a", "x"), "c1").error(), Error::dataParseError);
}

TEST_F(TrelloClientTest, AHundredThousandBoardsTakeLinearTime) {
    // A tree ten times as large must not take a hundred times as long; quadratic work would run for minutes.
    std::string text = "[";
    constexpr auto count = 100'000;
    for (int i = 0; i < count; ++i) {
        const auto id = std::to_string(i);
        text += (i == 0 ? "" : ",") + std::string(R"({"id":"b)") + id + R"(","name":"Board )" + id +
                R"(","closed":false,"pinned":false,"lists":[{"id":"l)" + id +
                R"(","name":"To Do","closed":false}]})";
    }
    service.boards = text + "]";
    const auto all = boards(&TrelloClient::getAllActiveBoards).value();
    ASSERT_EQ(all.size(), std::size_t{count});
    EXPECT_EQ(all.back().lists.front().id, "l99999");
}

} // namespace zelto
