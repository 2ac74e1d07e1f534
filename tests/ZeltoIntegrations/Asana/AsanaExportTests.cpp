#include <Support/AsanaExport.h>
#include <Support/LogCapture.h>

#include <Platform/URLComponents.h>

#include <gtest/gtest.h>

#include <mutex>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Made = ExportReport::Made;
using Refused = ExportReport::Refused;

class AsanaExportTest : public testing::Test {
  protected:
    AsanaExportTest() {
        one.data->onAsked = [this](const std::string& what) { happens(what); };
        const auto makePdf = one.interactor->makePdf;
        one.interactor->makePdf = [this, makePdf](const auto& html, const auto& path, Callback<bool> done) {
            happens("convert");
            makePdf(html, path, std::move(done));
        };
        service.onRequest = [this](const ReceivedRequest& request) {
            happens(request.method + " " + request.target);
            return std::nullopt;
        };
    }

    void happens(const std::string& what) {
        const std::lock_guard guard(lock_);
        events_.push_back(what);
    }

    // What the host and the service were asked for, in order.
    Texts events() const {
        const std::lock_guard guard(lock_);
        return events_;
    }

    std::vector<ExportEvent> analytics() const { return one.interactor->exportEvents(); }

    static std::string task(const std::string& form) {
        return "POST /api/1.0/tasks\nContent-Type: application/x-www-form-urlencoded\n"
               "Authorization: Bearer token\nContent-Length: " +
               std::to_string(form.size()) + "\n\n" + form;
    }

    static std::string upload(const std::string& length, const std::string& name, const std::string& type,
                              const std::string& content) {
        return "POST /api/1.0/tasks/t1/attachments\nContent-Type: multipart/form-data; boundary=B\n"
               "Authorization: Bearer token\nContent-Length: " +
               length + "\n\n--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + name +
               "\"\r\nContent-Type: " + type + "\r\n\r\n" + content + "\r\n--B--\r\n";
    }

    static constexpr auto taskLine = "POST /api/1.0/tasks";
    static constexpr auto uploadLine = "POST /api/1.0/tasks/t1/attachments";

    AsanaExport one;

  private:
    mutable std::mutex lock_;
    Texts events_;

  protected:
    AsanaServer service; // behind what its requests write to
};

} // namespace

TEST_F(AsanaExportTest, RequestsAreTheseAndNoOthers) {
    one.configuration.userNote = "a note";
    one.attach("a.txt", "first");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts(), (Texts{task("assignee=u1&name=Title&notes=a%20note&projects=p1&workspace=w1"),
                                      upload("218", "Title.pdf", "application/pdf", "%PDF <p>Body</p>"),
                                      upload("198", "a.txt", "text/plain", "first")}));
}

TEST_F(AsanaExportTest, WithoutANoteTheFormHasNone) {
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts(), (Texts{task("assignee=u1&name=Title&projects=p1&workspace=w1"),
                                      upload("218", "Title.pdf", "application/pdf", "%PDF <p>Body</p>")}));
}

TEST_F(AsanaExportTest, WithoutAttachmentsThereAreThreeUnits) {
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 3);
    EXPECT_EQ(one.progress->completedUnitCount(), 3);
    EXPECT_EQ(events(), (Texts{"html", "convert", taskLine, uploadLine}));
    EXPECT_EQ(one.data->askedHtml(), std::vector{IntegrationExportHtmlOptions{}});
}

TEST_F(AsanaExportTest, ThePdfIsMadeBeforeTheTaskAndEachAttachmentFetchedBeforeItsUpload) {
    for (const auto* name : {"a.txt", "b.txt", "c.txt"}) {
        one.attach(name);
    }
    Completed<AsanaExport::VoidResult> completed;
    const auto progress = one.start(completed.callback<AsanaExport::Done>());
    EXPECT_EQ(progress->totalUnitCount(), 6);
    ASSERT_TRUE(completed.value());
    EXPECT_EQ(progress->completedUnitCount(), 6);
    EXPECT_EQ(events(), (Texts{"html", "convert", taskLine, uploadLine, "fetchAttachment", uploadLine,
                               "fetchAttachment", uploadLine, "fetchAttachment", uploadLine}));
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf", "file a.txt", "file b.txt", "file c.txt"}));
}

TEST_F(AsanaExportTest, TheReportTellsWhatWasMade) {
    one.attach("a.txt");
    EXPECT_EQ(one.exporter()->exportReport(), ExportReport());
    ASSERT_TRUE(one.run());
    EXPECT_EQ(
        one.exporter()->exportReport(),
        (ExportReport{{Made{"task", "Title", "t1"}, Made{"file", "Title.pdf", {}}, Made{"file", "a.txt", {}}},
                      {}}));
}

TEST_F(AsanaExportTest, WithoutATargetThePdfAloneIsMade) {
    one.configuration.saveTo = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(events(), (Texts{"html", "convert"}));
}

TEST_F(AsanaExportTest, WithoutCredentialsThePdfAloneIsMadeAndTheTargetDoesNotMatter) {
    one.account.credentials = std::nullopt;
    one.configuration.saveTo = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::oauthError);
    EXPECT_EQ(events(), (Texts{"html", "convert"}));
}

TEST_F(AsanaExportTest, WithoutHtmlTheHostIsAskedForNothingElse) {
    one.data->htmlText = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::convertError);
    EXPECT_EQ(events(), Texts{"html"});
}

TEST_F(AsanaExportTest, AFailureStopsTheStepsBehindItUncalled) {
    one.attach("a.txt");
    one.attach("b.txt");
    service.refuse("a.txt", 413);
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(events(), (Texts{"html", "convert", "fetchAttachment"}));
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf", "file a.txt"}));
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Asana creation attachment error: apiCallError"});
    EXPECT_EQ(one.exporter()->exportReport(),
              (ExportReport{{Made{"task", "Title", "t1"}, Made{"file", "Title.pdf", {}}},
                            {Refused{"file", "a.txt", ServiceClientError::apiCallError, "no", false, 7}}}));
}

TEST_F(AsanaExportTest, BehindAnAttachmentThatTheHostDoesNotHaveNothingIsAskedFor) {
    one.attach("a.txt");
    one.attach("b.txt");
    const auto fileOf = one.data->fileOf;
    one.data->fileOf = [&](std::int64_t id) { return id == 0 ? std::nullopt : fileOf(id); };
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(events(), (Texts{"html", "convert", taskLine, uploadLine, "fetchAttachment"}));
}

TEST_F(AsanaExportTest, AFileThatVanishesBeforeItsUploadIsLoggedAndNotSent) {
    one.attach("a.txt");
    const auto fileOf = one.data->fileOf;
    one.data->fileOf = [&](std::int64_t id) {
        const auto file = fileOf(id);
        std::filesystem::remove(file->filePath());
        return file;
    };
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(log.messages(LogLevel::error), Texts{"Failed to uploadFile - no file on path"});
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Asana creation attachment error: internalError"});
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf"}));
    EXPECT_EQ(one.exporter()->exportReport().refused,
              (std::vector{Refused{"file", "a.txt", ServiceClientError::internalError, "", true}}));
}

TEST_F(AsanaExportTest, TheNoteIsNotOfferedAgain) {
    one.configuration.userNote = "note";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.offered().userNote, std::nullopt);
}

TEST_F(AsanaExportTest, AnalyticsNameWhatTheUserChanged) {
    one.data->titleText = "Subject";
    one.configuration.userNote = "note";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(analytics(), (std::vector{ExportEvent{ServiceType::Asana,
                                                    Type::pdf,
                                                    {"userTitle", "userNote", "workspace", "project", "user"},
                                                    "test",
                                                    std::nullopt}}));
    // The second time, that target is what is offered.
    ASSERT_TRUE(one.run());
    EXPECT_EQ(analytics().back().modifiedFields, (Texts{"userTitle", "userNote"}));
}

TEST_F(AsanaExportTest, AnIdentifierOfATaskStaysInItsPlace) {
    service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        if (request.target != "/api/1.0/tasks") {
            return std::nullopt;
        }
        return PlayedResponse::json(R"({"data":{"gid":"../users/me?x="}})", 201);
    };
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines(), (Texts{taskLine, "POST /api/1.0/tasks/..%2Fusers%2Fme%3Fx=/attachments"}));
}

TEST_F(AsanaExportTest, HostileTextsArriveAsTheyAre) {
    for (const auto* title :
         {"=cmd|' /C calc'!A0", "../../etc/passwd", "-rf", "$(x);`y`", "a\r\nHost: evil",
          "x&assignee=other&projects=stolen", "<script>alert(1)</script>", "%00%0d%0a", ""}) {
        one.configuration.userTitle = title;
        one.configuration.userNote = title;
        ASSERT_TRUE(one.run()) << title;
        const auto requests = service.server.requests();
        const auto& form = requests.at(requests.size() - 2);
        const auto url = URL::parse("http://host/?" + form.body).value();
        EXPECT_EQ(URLComponents::of(url).queryItems, (std::vector<URLQueryItem>{{"assignee", "u1"},
                                                                                {"name", title},
                                                                                {"notes", title},
                                                                                {"projects", "p1"},
                                                                                {"workspace", "w1"}}))
            << title;
        // One part, whatever the file is called.
        const auto& body = requests.back().body;
        EXPECT_EQ(body.find("Content-Disposition"), body.rfind("Content-Disposition")) << title;
        EXPECT_EQ(body.find("evil\r\n"), std::string::npos);
    }
}

} // namespace zelto
