#include <Support/LogCapture.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;

// One answer of a server, and what a client makes of it.
struct Row {
    std::string name;
    PlayedAnswer answer;
    std::string error;
};

const Row rows[] = {
    {"no record", PlayedAnswer::json("{}"), "dataParseError"},
    {"no JSON", PlayedAnswer::json("<html>"), "dataParseError"},
    {"nothing", {.status = 204}, "dataParseError"},
    {"informational only", PlayedAnswer::bytes("HTTP/1.1 100 Continue\r\n\r\n"), "connectionError"},
    {"elsewhere", {.status = 302, .fields = {{"Location", "https://evil.example/"}}}, "apiCallError"},
    {"300", PlayedAnswer::json("no", 300), "apiCallError"},
    {"400", PlayedAnswer::json("invalid id", 400), "apiCallError"},
    {"invalid_grant", PlayedAnswer::json(R"({"error":"invalid_grant"})", 400), "oauthError"},
    {"another error", PlayedAnswer::json(R"({"error":"other"})", 400), "apiCallError"},
    {"401", PlayedAnswer::json("invalid token", 401), "oauthError"},
    {"402", PlayedAnswer::json("no", 402), "apiCallError"},
    {"403", PlayedAnswer::json("no", 403), "forbidden"},
    {"404", PlayedAnswer::json("no", 404), "itemNotFound"},
    {"405", PlayedAnswer::json("no", 405), "apiCallError"},
    {"412", PlayedAnswer::json("no", 412), "apiCallError"},
    {"428", PlayedAnswer::json("no", 428), "apiCallError"},
    {"429", PlayedAnswer::json(R"({"error":"API_TOKEN_LIMIT_EXCEEDED"})", 429), "toManyRequests"},
    {"499", PlayedAnswer::json("no", 499), "apiCallError"},
    {"500", PlayedAnswer::json("no", 500), "serviceInternalError"},
    {"503 that is a 412", PlayedAnswer::json("x ResponseCode 412 x", 503), "invalidAccount"},
    {"500 that is a 403", PlayedAnswer::json("x Status 500 - 403 Forbidden x", 500), "invalidAccount"},
    {"599", PlayedAnswer::json("no", 599), "serviceInternalError"},
    {"reset", PlayedAnswer::reset(), "connectionError"},
    {"cut", PlayedAnswer::bytes("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{\"id\":"), "connectionError"},
    {"no HTTP", PlayedAnswer::bytes("SSH-2.0-OpenSSH\r\n\r\n"), "connectionError"},
};

// Which request of the export gets the answer, and what the export comes to.
struct Step {
    std::string part; // of its line or body
    Error error;
    std::string warning;
    Texts requests;
};

const Step steps[] = {
    {"/1/cards?", Error::createTaskError, "Trello creation card error: ", {"card"}},
    {"Title.pdf",
     Error::uploadAttachmentError,
     "Trello creation attachment error: ",
     {"card", "file Title.pdf", "file a.txt"}},
    {"a.txt",
     Error::uploadAttachmentError,
     "Trello creation attachment error: ",
     {"card", "file Title.pdf", "file a.txt"}},
};

} // namespace

TEST(TrelloExportStatus, IsMappedAtEveryStepAndToldOnce) {
    for (const auto& step : steps) {
        for (const auto& row : rows) {
            SCOPED_TRACE(step.part + " " + row.name);
            TrelloExport one;
            one.attach("a.txt");
            TrelloServer service;
            service.onRequest = [&](const ReceivedRequest& request) {
                const bool isMeant = request.target.find(step.part) != std::string::npos ||
                                     request.body.find(step.part) != std::string::npos;
                auto answer = row.answer;
                return isMeant ? std::optional(answer) : std::nullopt;
            };
            const LogCapture log;
            EXPECT_EQ(one.run().error(), step.error);
            EXPECT_EQ(log.messages(LogLevel::warn), Texts{step.warning + row.error});
            EXPECT_EQ(service.made(), step.requests);
            const auto report = one.exporter()->exportReport();
            ASSERT_EQ(report.refused.size(), 1U);
            EXPECT_EQ(nameOf(report.refused.front().reason), row.error);
            EXPECT_EQ(report.made.size() + 1, step.requests.size());
            EXPECT_EQ(one.interactor->exportEvents().size(), 1U);
            EXPECT_EQ(one.interactor->exportEvents().front().exportError, nameOf(step.error));
        }
    }
}

} // namespace zelto
