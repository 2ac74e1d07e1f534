#include <Support/LogCapture.h>
#include <Support/Suites/ExportTextSuite.h>
#include <Support/TodoistExport.h>
#include <Support/WithoutLengths.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Made = ExportReport::Made;
using Refused = ExportReport::Refused;

constexpr auto refused = ServiceClientError::apiCallError;

// A request of commands as it goes out, with letters in place of the UUIDs.
std::string syncText(const std::string& commands) {
    const auto body = R"({"resource_types":["notes"],"commands":[)" + commands + "]}";
    return "POST /api/v1/sync\nContent-Type: application/json\nAuthorization: Bearer token\n\n" + body;
}

std::string itemText(const std::string& args) {
    return R"({"type":"item_add","temp_id":"A","uuid":"B","args":{)" + args + "}}";
}

std::string noteText(const std::string& content) {
    return R"({"type":"note_add","temp_id":"C","uuid":"D","args":{"temp_id":"A","content":")" + content +
           R"("}})";
}

struct TodoistText {
    using Export = TodoistExport;
    using Server = TodoistServer;
    static constexpr auto name = "Task";
    static constexpr auto linkFormat = IntegrationLinkFormat::markdown;
    static constexpr int unitCount = 3;

    static IntegrationLinkType linkOfText() { return IntegrationLinkType::altBacklink(linkFormat); }

    static std::string request(const std::optional<std::string>& text) {
        return syncText(itemText(R"("content":"Title","project_id":"p2")") + "," +
                        noteText(text.value_or("[mail](zelto://m)")));
    }

    static ExportReport report() { return {{Made{"task", "Title", "id0"}}, {}}; }

    static TodoistSaveToInfo storedTarget() { return {{.id = "gone"}}; }

    static void withoutTargets(TodoistExporter& exporter) {
        exporter.myProjects.set(std::vector<TodoistProject>());
    }

    static std::optional<TodoistSaveToInfo> offeredTarget() { return {{{"p1", "Inbox"}}}; }
};

class TodoistExportTest : public testing::Test {
  protected:
    std::vector<ExportEvent> events() const { return one.interactor->exportEvents(); }

    ExportReport report() { return one.exporter()->exportReport(); }

    // With letters in place of the UUIDs, and "B" for the boundary of a form.
    Texts texts() const { return withoutLengths(service.texts()); }

    // Refuses the commands of the next export by these statuses, and gives the words that are reported.
    std::string wordsReportedFor(const std::string& status) {
        service.statuses = Texts{status};
        EXPECT_EQ(one.run().error(), Error::createTaskError) << status;
        const auto all = report().refused;
        EXPECT_EQ(all.size(), 1U) << status;
        return all.empty() ? "nothing" : all.front().words;
    }

    TodoistExport one;
    TodoistServer service;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, ExportText, TodoistText, NamedByFacts);

TEST_F(TodoistExportTest, TwoAttachmentsAreUploadedFirstAndAreFourCommandsThen) {
    one.attach("a.txt", "first");
    one.attach("b.txt", "second");
    one.configuration.dueDate = Date::fromUnixSeconds(1'795'253'400); // 2026-11-21T09:30:00Z
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 5);
    EXPECT_EQ(one.progress->completedUnitCount(), 5);
    const auto uploadText = [](const std::string& name, const std::string& content) {
        return "POST /api/v1/uploads\nContent-Type: multipart/form-data; boundary=B\n"
               "Authorization: Bearer token\n\n"
               "--B\r\nContent-Disposition: form-data; name=\"file_name\"\r\n\r\n" +
               name + "\r\n--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + name +
               "\"\r\nContent-Type: text/plain\r\n\r\n" + content + "\r\n--B--\r\n";
    };
    const auto fileNote = [](const std::string& letters, const std::string& name) {
        return R"(,{"type":"note_add","temp_id":")" + letters.substr(0, 1) + R"(","uuid":")" +
               letters.substr(1) +
               R"(","args":{"temp_id":"A","content":"","file_attachment":{"file_name":")" + name +
               R"(","file_size":7,"file_url":"https://files.example/1","upload_state":"completed"}}})";
    };
    EXPECT_EQ(texts(),
              (Texts{uploadText("a.txt", "first"), uploadText("b.txt", "second"),
                     syncText(itemText(R"("content":"Title","project_id":"p2",)"
                                       R"("due":{"date":"2026-11-21T09:30:00"})") +
                              "," + noteText("Body") + fileNote("EF", "a.txt") + fileNote("GH", "b.txt"))}));
    EXPECT_EQ(report(),
              (ExportReport{
                  {Made{"file", "a.txt", {}}, Made{"file", "b.txt", {}}, Made{"task", "Title", "id0"}}, {}}));
}

TEST_F(TodoistExportTest, AHundredFilesAndMoreGoInOneRequestInTheirOrder) {
    Texts expected;
    for (int i = 0; i < 120; ++i) {
        expected.push_back("file" + std::to_string(i));
        one.attach(expected.back());
    }
    ASSERT_TRUE(one.run());
    const auto commands = TodoistService::commands(service.server.requests().back());
    ASSERT_EQ(commands.size(), 122U);
    Texts names;
    for (std::size_t i = 2; i < commands.size(); ++i) {
        names.push_back(*commands[i].find("args")->find("file_attachment")->find("file_name")->asString());
    }
    EXPECT_EQ(names, expected);
}

TEST_F(TodoistExportTest, HostileTextsArriveAsTheyAre) {
    for (const auto* text : {"\"}}],\"x\":[", "a\r\nHost: evil", "</script>\\u0000", "\xE2\x80\xAE", "",
                             "{\"temp_id\":1}", "%00 &x=1#"}) {
        one.configuration.userTitle = text;
        one.configuration.saveTo = TodoistSaveToInfo{{.id = text}};
        one.data->plainText = text;
        ASSERT_TRUE(one.run()) << text;
        const auto commands = TodoistService::commands(service.server.requests().back());
        ASSERT_EQ(commands.size(), 2U) << text;
        EXPECT_EQ(*commands[0].find("args"), (JSONObject{{"content", text}, {"project_id", text}}));
        EXPECT_EQ(*commands[1].find("args"),
                  (JSONObject{{"temp_id", *commands[0].find("temp_id")}, {"content", text}}));
    }
}

TEST_F(TodoistExportTest, WithoutCredentialsAndFilesNothingIsSentEither) {
    one.account.credentials = std::nullopt;
    EXPECT_EQ(one.run().error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TodoistExportTest, AFailedUploadEndsTheExportAndIsReportedWithWhatWasUploaded) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.attach("c.txt");
    service.refuse("b.txt", 413);
    Texts asked;
    one.data->onAsked = [&](const std::string& what) { asked.push_back(what); };
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(asked, (Texts{"messagePlainText", "fetchAttachment", "fetchAttachment"}));
    EXPECT_EQ(service.made(), (Texts{"file a.txt", "file b.txt"}));
    EXPECT_EQ(report(), (ExportReport{{Made{"file", "a.txt", {}}},
                                      {Refused{"file", "b.txt", refused, "no", false, 7}}}));
}

TEST_F(TodoistExportTest, ARefusedTaskIsAFailureWithTheServicesWords) {
    one.attach("a.txt");
    service.statuses = Texts{R"({"error_code":21,"error":"Project\n not found","http_code":404})",
                             R"({"error":"Task not found"})", R"({"error":"Task not found"})"};
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(log.messages(LogLevel::warn),
              Texts{"Todoist creation task error: apiCallError: Project not found"});
    EXPECT_EQ(report(), (ExportReport{{Made{"file", "a.txt", {}}},
                                      {Refused{"task", "Title", refused, "Project not found"}}}));
    EXPECT_EQ(events().back().exportError, "createTaskError");
}

TEST_F(TodoistExportTest, ARefusedCommentLeavesTheTask) {
    one.attach("a.txt");
    one.attach("b.txt");
    service.statuses = Texts{R"("ok")", R"({"error":"No text"})", R"("ok")", R"({"error_tag":"NO_FILE"})"};
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(log.messages(LogLevel::warn), (Texts{"Todoist creation comment error: apiCallError: No text",
                                                   "Todoist creation comment error: apiCallError: NO_FILE"}));
    EXPECT_EQ(report(), (ExportReport{{Made{"file", "a.txt", {}}, Made{"file", "b.txt", {}},
                                       Made{"task", "Title", "id0"}},
                                      {Refused{"comment", "Title", refused, "No text"},
                                       Refused{"comment", "b.txt", refused, "NO_FILE"}}}));
}

TEST_F(TodoistExportTest, WhateverIsNotOkIsARefusal) {
    for (const auto* status : {"null", "true", "0", "1e400", "[]", "{}", R"({"error":5})"}) {
        const LogCapture log;
        EXPECT_EQ(wordsReportedFor(status), "");
        EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Todoist creation task error: apiCallError"});
    }
    EXPECT_EQ(wordsReportedFor(R"("OK")"), "OK");
}

TEST_F(TodoistExportTest, TheServicesWordsAreCleanedAndCut) {
    EXPECT_EQ(wordsReportedFor(R"({"error":"a\u0000b\u001b[31m\u202e\r\nc"})"), "a b [31m c");
    EXPECT_EQ(wordsReportedFor(R"({"error":")" + std::string(300, 'x') + R"("})"), std::string(300, 'x'));
    EXPECT_EQ(wordsReportedFor(R"({"error":")" + std::string(10'000, 'x') + R"("})"), std::string(300, 'x'));
    EXPECT_EQ(wordsReportedFor(R"({"error":"bad access_token=abcdefgh here"})"), "bad access_token=*** here");
}

TEST_F(TodoistExportTest, AnErrorOfAnotherCommandIsOfTheTaskThatHasNoStatus) {
    service.respondTo(
        "commands", PlayedResponse::json(R"({"sync_status":{"other":{"error":"no"}},"temp_id_mapping":{}})"));
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(report(), (ExportReport{{}, {Refused{"task", "Title", refused, "no"}}}));
}

TEST_F(TodoistExportTest, ATaskWithoutAStatusCountsAsRefused) {
    service.respondTo("commands", PlayedResponse::json(R"({"sync_status":{},"temp_id_mapping":{}})"));
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(report(), (ExportReport{{}, {Refused{"task", "Title", refused}}}));
}

TEST_F(TodoistExportTest, AnUploadsResponseTooDeepForARequestEndsInATaskError) {
    one.attach("a.txt");
    service.uploadInfo = R"("deep":)" + std::string(510, '[') + std::string(510, ']') + "}";
    EXPECT_EQ(one.run().error(), Error::createTaskError);
}

TEST_F(TodoistExportTest, TwoExportsAtOnceKeepTheirFilesApart) {
    one.attach("a.txt");
    Completed<TodoistExport::VoidResult> first;
    Completed<TodoistExport::VoidResult> second;
    one.start(first.callback<TodoistExport::Done>());
    one.configuration.attachments.list.clear();
    one.start(second.callback<TodoistExport::Done>());
    EXPECT_TRUE(first.value());
    EXPECT_TRUE(second.value());
    ASSERT_EQ(service.made(), (Texts{"file a.txt", "task", "task"}));
    EXPECT_EQ(TodoistService::commands(service.server.requests()[1]).size(), 3U);
    EXPECT_EQ(TodoistService::commands(service.server.requests()[2]).size(), 2U);
}

TEST_F(TodoistExportTest, TheDateIsOfThisTaskAlone) {
    one.configuration.dueDate = Date();
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.offered().dueDate, std::nullopt);
    service.refuse("commands", 404);
    ASSERT_FALSE(one.run());
    EXPECT_EQ(one.offered().dueDate, std::nullopt);
}

TEST_F(TodoistExportTest, AnalyticsNameWhatTheUserChanged) {
    one.data->titleText = "Subject";
    one.configuration.saveAs = Type::backLink;
    one.configuration.dueDate = Date();
    ASSERT_TRUE(one.run());
    EXPECT_EQ(events(), (std::vector{ExportEvent{ServiceType::TodoIst,
                                                 Type::backLink,
                                                 {"saveAs", "dueDate", "userTitle", "project"},
                                                 "test",
                                                 std::nullopt}}));
    // The second time, what is kept of that is what is offered.
    ASSERT_TRUE(one.run());
    EXPECT_EQ(events().back().modifiedFields, (Texts{"dueDate", "userTitle"}));
}

} // namespace zelto
