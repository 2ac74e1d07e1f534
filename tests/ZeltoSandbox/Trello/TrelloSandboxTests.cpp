#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

const std::string host = "api.trello.com";
const std::string unknownID(24, 'a');

class TrelloSandboxTest : public testing::Test {
  protected:
    std::string credentials() const { return "key=k&token=" + token; }

    CallerResponse get(const std::string& target) const {
        const auto separator = target.find('?') == std::string::npos ? "?" : "&";
        return caller.get(host, target + separator + credentials());
    }

    CallerResponse post(const std::string& target, const std::string& header = {}) const {
        const auto separator = target.find('?') == std::string::npos ? "?" : "&";
        return caller.send("POST " + target + separator + credentials() + " HTTP/1.1\r\nHost: " + host +
                           "\r\n" + header + "Content-Length: 0\r\n\r\n");
    }

    std::string firstList() const {
        const auto boards = get("/1/members/me/boards?lists=open").json();
        return *boards.asArray()->front().find("lists")->asArray()->front().find("id")->asString();
    }

    std::string addedCard() const { return post("/1/cards?name=n&idList=" + firstList()).text("id"); }

    CallerResponse attach(const std::string& card, const std::string& body,
                          const std::string& type = "multipart/form-data; boundary=XX") const {
        return caller.post(host, "/1/cards/" + card + "/attachments?" + credentials(), type, body);
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Trello")->accessToken;
};

std::string filePart(const std::string& content, const std::string& name = "a.pdf",
                     const std::string& type = "application/pdf") {
    return "--XX\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + name +
           "\"\r\nContent-Type: " + type + "\r\n\r\n" + content + "\r\n";
}

} // namespace

TEST_F(TrelloSandboxTest, ChecksKeyAndToken) {
    EXPECT_EQ(caller.get(host, "/1/members/me?token=" + token).body, "invalid key");
    EXPECT_EQ(caller.get(host, "/1/members/me?key=k").body, "invalid token");
    const auto refused = caller.get(host, "/1/members/me?key=k&token=wrong");
    EXPECT_EQ(refused.status, 401);
    EXPECT_EQ(refused.body, "invalid token");
    EXPECT_TRUE(refused.field("Content-Type").starts_with("text/plain"));
    caller.server->expireTokens("Trello");
    EXPECT_EQ(get("/1/members/me").body, "expired token");
    const auto other = caller.server->issueTokens("Asana")->accessToken;
    EXPECT_EQ(caller.get(host, "/1/members/me?key=k&token=" + other).body, "invalid token");
}

TEST_F(TrelloSandboxTest, GivesTheFieldsOfTheMemberThatAreAskedFor) {
    const auto response =
        get("/1/members/me?fields=idEnterprise,idPremOrgsAdmin,products,email,fullName,avatarUrl");
    const auto document = response.json();
    const std::vector<std::string> expected = {"id",    "idEnterprise", "idPremOrgsAdmin", "products",
                                               "email", "fullName",     "avatarUrl"};
    std::vector<std::string> keys;
    for (const auto& [key, value] : *document.asObject()) {
        keys.push_back(key);
    }
    EXPECT_EQ(keys, expected);
    EXPECT_TRUE(document.find("products")->asArray()->empty());
    EXPECT_EQ(get("/1/members/me?fields=nonsense").body, "invalid value for fields");
    EXPECT_EQ(caller.control("settings", R"({"plan":"paid"})").status, 204);
    EXPECT_FALSE(get("/1/members/me").json().find("products")->asArray()->empty());
}

TEST_F(TrelloSandboxTest, ListsBoardsByFilterAndFields) {
    const auto names = [&](const std::string& query) {
        std::vector<std::string> all;
        const auto boards = get("/1/members/me/boards" + query).json();
        for (const auto& board : *boards.asArray()) {
            all.push_back(*board.find("name")->asString());
        }
        return all;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(names(""), (Names{"Mail", "Büro & Zuhause 🏡", "All lists archived", "Closed project"}));
    EXPECT_EQ(names("?filter=open"), (Names{"Mail", "Büro & Zuhause 🏡", "All lists archived"}));
    EXPECT_EQ(names("?filter=closed"), Names{"Closed project"});
    const auto boards = get(
        "/1/members/me/boards?fields=id,name,closed,pinned&lists=open&list_fields=id,name,closed,idBoard");
    EXPECT_TRUE(boards.body.starts_with(
        R"([{"id":"76a3518096ee82924aa147d7","name":"Mail","closed":false,"pinned":true,"lists":[{"id":"930b72e3387b10ed748d6c51","name":"To do","closed":false,"idBoard":"76a3518096ee82924aa147d7"},)"))
        << boards.body;
    const auto listCount = [&](const std::string& which) {
        const auto all = get("/1/members/me/boards?lists=" + which).json();
        const auto* lists = all.asArray()->front().find("lists");
        return lists ? static_cast<int>(lists->asArray()->size()) : -1;
    };
    EXPECT_EQ(listCount("open"), 3);
    EXPECT_EQ(listCount("closed"), 1);
    EXPECT_EQ(listCount("all"), 4);
    EXPECT_EQ(listCount("none"), -1);
    for (const auto* query : {"?filter=x", "?lists=x", "?fields=x", "?list_fields=x"}) {
        EXPECT_EQ(get(std::string("/1/members/me/boards") + query).status, 400) << query;
    }
}

TEST_F(TrelloSandboxTest, MakesACard) {
    const auto list = firstList();
    const auto response = post("/1/cards?name=A%20%26%20B+C&desc=%5Bx%5D%28y%29&idList=" + list);
    ASSERT_EQ(response.status, 200);
    EXPECT_EQ(response.text("name"), "A & B C");
    EXPECT_EQ(response.text("desc"), "[x](y)");
    EXPECT_EQ(response.text("idList"), list);
    EXPECT_EQ(response.text("id").size(), 24U);
    EXPECT_EQ(get("/1/cards/" + response.text("id")).text("name"), "A & B C");
    EXPECT_EQ(get("/1/lists/" + list + "/cards").json().asArray()->size(), 1U);
    const auto byForm =
        caller.postForm(host, "/1/cards?" + credentials(), {{"idList", list}, {"name", "form"}});
    EXPECT_EQ(byForm.text("name"), "form");
}

TEST_F(TrelloSandboxTest, GivesTheCardsOfAListInPages) {
    const auto path = "/1/lists/" + firstList() + "/cards";
    std::vector<std::string> made;
    for (int i = 0; i < 5; ++i) {
        made.push_back(addedCard());
    }
    const auto given = [&](const std::string& query) {
        std::vector<std::string> ids;
        const auto response = get(path + query).json();
        for (const auto& card : *response.asArray()) {
            ids.push_back(*card.find("id")->asString());
        }
        return ids;
    };
    using IDs = std::vector<std::string>;
    EXPECT_EQ(given(""), made);
    EXPECT_EQ(given("?limit=2"), (IDs{made[3], made[4]}));
    EXPECT_EQ(given("?limit=2&before=" + made[3]), (IDs{made[1], made[2]}));
    EXPECT_EQ(given("?limit=2&before=" + made[1]), (IDs{made[0]}));
    EXPECT_EQ(given("?since=" + made[2]), (IDs{made[3], made[4]}));
    EXPECT_EQ(given("?since=" + made[3] + "&before=" + made[1]), IDs());
    EXPECT_EQ(given("?limit=0"), IDs());
    for (const auto* query : {"?limit=x", "?limit=1001", "?limit=-1", "?before=short", "?since=none"}) {
        EXPECT_EQ(get(path + query).status, 400) << query;
    }
}

TEST_F(TrelloSandboxTest, RefusesACardAsTrelloDoes) {
    const auto list = firstList();
    const auto refusal = [&](const std::string& query) {
        const auto response = post("/1/cards?" + query);
        return std::to_string(response.status) + " " + response.body;
    };
    EXPECT_EQ(refusal("name=n"), "400 invalid value for idList");
    EXPECT_EQ(refusal("idList=short"), "400 invalid value for idList");
    EXPECT_EQ(refusal("idList=" + unknownID), "404 The requested resource was not found.");
    EXPECT_EQ(refusal("idList=" + list + "&desc=" + std::string(16385, 'x')), "400 invalid value for desc");
    EXPECT_EQ(refusal("idList=" + list + "&name=" + std::string(16385, 'x')), "400 invalid value for name");
    EXPECT_EQ(post("/1/cards?idList=" + list + "&desc=" + std::string(16384, 'x')).status, 200);
    EXPECT_EQ(get("/1/cards/short").body, "invalid id");
    EXPECT_EQ(get("/1/cards/" + unknownID).status, 404);
    EXPECT_EQ(get("/1/nothing").body, "Cannot GET /1/nothing");
    EXPECT_EQ(post("/1/members/me").status, 404);
}

TEST_F(TrelloSandboxTest, KeepsAnAttachedFileByteForByte) {
    const auto card = addedCard();
    std::string content = "%PDF-";
    for (int i = 0; i < 600'000; ++i) {
        content.push_back(static_cast<char>(i * 7));
    }
    content += "\r\n--XY\r\n--X";
    const auto response = attach(card, filePart(content) + "--XX--\r\n");
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_EQ(response.text("name"), "a.pdf");
    EXPECT_EQ(response.json().find("bytes")->asUInt64(), content.size());
    const auto file = caller.get(caller.ownHost(), "/files/1");
    EXPECT_EQ(file.body, content);
    EXPECT_EQ(file.field("Content-Type"), "application/pdf");
    EXPECT_EQ(caller.get(host, "/1/cards/" + card + "?" + credentials())
                  .json()
                  .find("attachments")
                  ->asArray()
                  ->size(),
              1U);
}

TEST_F(TrelloSandboxTest, AttachesALinkToo) {
    const auto response =
        post("/1/cards/" + addedCard() + "/attachments?url=https%3A%2F%2Fexample.com%2F&name=site");
    EXPECT_EQ(response.text("url"), "https://example.com/");
    EXPECT_EQ(response.json().find("isUpload")->asBool(), false);
    EXPECT_EQ(post("/1/cards/" + addedCard() + "/attachments?url=javascript%3Ax").status, 400);
}

TEST_F(TrelloSandboxTest, RefusesAFileAsTrelloDoes) {
    const auto card = addedCard();
    EXPECT_EQ(attach("short", filePart("x") + "--XX--\r\n").body, "invalid id");
    EXPECT_EQ(attach(unknownID, filePart("x") + "--XX--\r\n").status, 404);
    EXPECT_EQ(attach(card, "--XX--\r\n").status, 400);
    EXPECT_EQ(attach(card, filePart("x") + filePart("y") + "--XX--\r\n").body, "only one file at a time");
    EXPECT_EQ(attach(card, filePart("x")).status, 400);
    EXPECT_EQ(attach(card, filePart("x") + "--XX--\r\n", "multipart/form-data").status, 400);
    EXPECT_EQ(attach(card, filePart("x", "") + "--XX--\r\n").body, "invalid value for file");
    EXPECT_EQ(attach(card, "", "text/plain").body, "No file or url given");
    caller.server->setAttachmentLimit(4);
    EXPECT_EQ(attach(card, filePart("12345") + "--XX--\r\n").status, 413);
    EXPECT_EQ(attach(card, filePart("1234") + "--XX--\r\n").status, 200);
}

TEST_F(TrelloSandboxTest, TakesTenMebibytesOnAFreePlanAnd250OnAPaidOne) {
    const auto card = addedCard();
    const auto one = filePart(std::string(10 << 20, 'x')) + "--XX--\r\n";
    const auto more = filePart(std::string((10 << 20) + 1, 'x')) + "--XX--\r\n";
    EXPECT_EQ(attach(card, one).status, 200);
    EXPECT_EQ(attach(card, more).status, 413);
    caller.control("settings", R"({"plan":"paid"})");
    EXPECT_EQ(attach(card, more).status, 200);
}

TEST_F(TrelloSandboxTest, ServesFilesSoThatNothingOfThemRuns) {
    struct Row {
        const char* name;
        const char* type;
        const char* content;
        const char* servedAs;
        const char* disposition;
    };

    constexpr Row rows[] = {
        {"a.html", "text/html", "<script>", "text/plain; charset=utf-8", "inline"},
        {"a.svg", "image/svg+xml", "<svg onload=x>", "application/octet-stream", "attachment"},
        {"a.js", "text/javascript", "x", "text/plain; charset=utf-8", "inline"},
        {"a.xhtml", "application/xhtml+xml", "<html/>", "application/octet-stream", "attachment"},
        {"a.png", "image/png", "png", "image/png", "inline"},
        {"fake.pdf", "application/pdf", "<script>", "application/octet-stream", "attachment"},
        {"real.pdf", "application/pdf", "%PDF-1.7", "application/pdf", "inline"},
        {"../../x y", "application/x-sh", "x", "application/octet-stream", "attachment"},
    };
    const auto card = addedCard();
    int number = 0;
    for (const auto& row : rows) {
        ASSERT_EQ(attach(card, filePart(row.content, row.name, row.type) + "--XX--\r\n").status, 200)
            << row.name;
        const auto file = caller.get(caller.ownHost(), "/files/" + std::to_string(++number));
        EXPECT_EQ(file.field("Content-Type"), row.servedAs) << row.name;
        EXPECT_TRUE(file.field("Content-Disposition").starts_with(row.disposition)) << row.name;
        EXPECT_EQ(file.field("X-Content-Type-Options"), "nosniff");
        EXPECT_TRUE(file.field("Content-Security-Policy").starts_with("default-src 'none'"));
        EXPECT_EQ(file.field("Content-Disposition").find('/'), std::string::npos);
    }
    for (const auto* path : {"/files/99", "/files/", "/files/1x", "/files/-1", "/files/1/../2"}) {
        EXPECT_EQ(caller.get(caller.ownHost(), path).status, 404) << path;
    }
}

TEST_F(TrelloSandboxTest, ShowsItsBoardsInTheState) {
    post("/1/cards?name=Card&desc=D&idList=" + firstList());
    const auto state = caller.server->state();
    const auto& card = state.find("trello")
                           ->find("boards")
                           ->asArray()
                           ->front()
                           .find("lists")
                           ->asArray()
                           ->front()
                           .find("cards")
                           ->asArray()
                           ->front();
    EXPECT_EQ(*card.find("name")->asString(), "Card");
    EXPECT_EQ(*card.find("desc")->asString(), "D");
    const auto before = firstList();
    caller.server->reset();
    EXPECT_EQ(get("/1/members/me").body, "invalid token");
    token = caller.server->issueTokens("Trello")->accessToken;
    EXPECT_EQ(firstList(), before);
    EXPECT_TRUE(get("/1/lists/" + before + "/cards").json().asArray()->empty());
}

} // namespace zelto
