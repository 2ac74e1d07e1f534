#include <Support/AsanaExport.h>
#include <Support/HostMistakes.h>
#include <Support/LogCapture.h>

#include <Platform/URLComponents.h>

#include <gtest/gtest.h>

#include <mutex>
#include <tuple>

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

    std::optional<std::string> lastEventError() const {
        return analytics().empty() ? "no event" : analytics().back().exportError;
    }

    static std::string task(const std::string& form, const std::string& token = "token") {
        return "POST /api/1.0/tasks\nContent-Type: application/x-www-form-urlencoded\nAuthorization: Bearer " +
               token + "\nContent-Length: " + std::to_string(form.size()) + "\n\n" + form;
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

TEST_F(AsanaExportTest, StepsShareOneConnection) {
    one.attach("a.txt");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines().size(), 3U);
    EXPECT_EQ(service.server.connectionCount(), 1);
}

TEST_F(AsanaExportTest, OnlySelectedAttachmentsGoAlong) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.attach("c.txt");
    one.configuration.attachments.list[0].state = IntegrationAttachmentState::allowed;
    one.configuration.attachments.list[2].state = IntegrationAttachmentState::restricted;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 4);
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf", "file b.txt"}));
}

TEST_F(AsanaExportTest, WithoutAUserTitleTheMessagesTitleIsTaken) {
    one.configuration.userTitle = std::nullopt;
    one.data->titleText = "Subject/1";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts().front(), task("assignee=u1&name=Subject%2F1&projects=p1&workspace=w1"));
    EXPECT_EQ(service.made(), (Texts{"task", "file Subject_1.pdf"}));
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

TEST_F(AsanaExportTest, OtherTypesAreRefusedAtOnce) {
    one.attach("a.txt");
    for (const auto& type : casesOf<Type>()) {
        if (type.value == Type::pdf) {
            continue;
        }
        one.configuration.saveAs = type.value;
        Completed<AsanaExport::VoidResult> completed;
        const auto progress = one.start(completed.callback<AsanaExport::Done>());
        EXPECT_TRUE(completed.hasCome()) << type.name;
        EXPECT_EQ(completed.value().error(), Error::unsupportedFormat) << type.name;
        EXPECT_EQ(progress->totalUnitCount(), 4) << type.name;
        EXPECT_EQ(lastEventError(), "unsupportedFormat") << type.name;
        EXPECT_EQ(analytics().back().exportType, type.value) << type.name;
    }
    EXPECT_EQ(events(), Texts{});
}

TEST_F(AsanaExportTest, WithoutCredentialsThePdfAloneIsMade) {
    one.account.credentials = std::nullopt;
    one.configuration.saveTo = std::nullopt; // which is looked at behind them
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::oauthError);
    EXPECT_EQ(events(), (Texts{"html", "convert"}));
    EXPECT_EQ(lastEventError(), "oauthError");
}

TEST_F(AsanaExportTest, WithoutATargetThereIsNoTask) {
    one.configuration.saveTo = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(events(), (Texts{"html", "convert"}));
    EXPECT_EQ(one.exporter()->exportReport(), ExportReport());
    EXPECT_EQ(lastEventError(), "createTaskError");
}

TEST_F(AsanaExportTest, WithoutHtmlThereIsNothingOnTheService) {
    one.data->htmlText = std::nullopt;
    one.attach("a.txt");
    EXPECT_EQ(one.run().error(), Error::convertError);
    EXPECT_EQ(events(), Texts{"html"});
    EXPECT_EQ(lastEventError(), "convertError");
}

TEST_F(AsanaExportTest, AFailedConversionIsAConvertErrorAndNothingIsSent) {
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(false); };
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
                            {Refused{"file", "a.txt", ServiceClientError::apiCallError, "no"}}}));
}

TEST_F(AsanaExportTest, AnAttachmentThatTheHostDoesNotHaveIsAnInternalErrorAndStops) {
    one.attach("a.txt");
    one.attach("b.txt");
    const auto fileOf = one.data->fileOf;
    one.data->fileOf = [&](std::int64_t id) { return id == 0 ? std::nullopt : fileOf(id); };
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf"}));
    EXPECT_EQ(events(), (Texts{"html", "convert", taskLine, uploadLine, "fetchAttachment"}));
    EXPECT_EQ(lastEventError(), "internalError");
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

TEST_F(AsanaExportTest, APdfThatTheHostSaysItMadeAndDidNotIsNotSent) {
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(true); };
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(log.messages(LogLevel::error), Texts{"Failed to uploadFile - no file on path"});
    EXPECT_EQ(service.made(), Texts{"task"});
}

TEST_F(AsanaExportTest, AnAttachmentThatIsNoFileIsNotUploaded) {
    one.attach("a.txt");
    one.data->fileOf = [](std::int64_t) { return URL::parse("https://example.org/a.txt"); };
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf"}));
}

TEST_F(AsanaExportTest, FilesStayWhereTheyWereWritten) {
    one.attach("a.txt");
    ASSERT_TRUE(one.run());
    EXPECT_TRUE(std::filesystem::exists(one.pdfPaths.at(0)));
    EXPECT_TRUE(std::filesystem::exists(one.files.at(0)));
}

TEST_F(AsanaExportTest, WhatTheNextExportStartsWithIsStoredAfterSuccessAndAfterFailure) {
    for (const bool succeeds : {true, false}) {
        AsanaExport each;
        each.configuration.userNote = "note";
        each.configuration.saveTo->project.id = succeeds ? "good" : "bad";
        service.onRequest = [succeeds](const auto&) {
            return succeeds ? std::nullopt : std::optional(PlayedResponse::json("no", 404));
        };
        ASSERT_EQ(each.run().has_value(), succeeds);
        const auto next = each.offered();
        EXPECT_EQ(next.saveTo, each.configuration.saveTo);
        EXPECT_EQ(next.saveAs, Type::pdf);
        EXPECT_EQ(next.userNote, std::nullopt);
        EXPECT_EQ(each.exporter()->lastExportContentType(), Type::pdf);
        const auto stored = each.storage->load(each.account.identifier()).value();
        EXPECT_EQ(stored.getCachedItem<AsanaSaveToInfo>("lastExportInfo"), each.configuration.saveTo);
    }
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

TEST_F(AsanaExportTest, AStaleTokenIsRefreshedOnceAndTheNewOneUsedByEveryStep) {
    one.expireToken();
    one.attach("a.txt");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines(), (Texts{"POST /-/oauth_token", taskLine, uploadLine, uploadLine}));
    const auto requests = service.server.requests();
    for (std::size_t i = 1; i < requests.size(); ++i) {
        EXPECT_EQ(requests[i].headers.value("Authorization"), "Bearer fresh") << i;
    }
    EXPECT_EQ(service.texts()[1], task("assignee=u1&name=Title&projects=p1&workspace=w1", "fresh"));
}

TEST_F(AsanaExportTest, ATokenThatCannotBeRefreshedMakesNoTask) {
    one.expireToken();
    service.respondTo("/-/oauth_token", PlayedResponse::json(R"({"error":"invalid_grant"})", 400));
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::createTaskError);
    EXPECT_EQ(service.lines(), Texts{"POST /-/oauth_token"});
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Asana creation task error: authorizationError"});
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

TEST_F(AsanaExportTest, AHostThatThrowsEndsTheExportThere) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.attach("a.txt");
    const std::tuple<std::string, Error, Texts> rows[] = {
        {"html", Error::convertError, {}},
        {"fetchAttachment", Error::internalError, {"task", "file Title.pdf"}}};
    for (const auto& [operation, error, made] : rows) {
        one.data->onAsked = [&](const std::string& asked) {
            if (asked == operation) {
                throw std::runtime_error("the host threw");
            }
        };
        const auto before = std::ssize(service.made());
        EXPECT_EQ(one.run().error(), error) << operation;
        const auto all = service.made();
        EXPECT_EQ(Texts(all.begin() + before, all.end()), made) << operation;
    }
    EXPECT_TRUE(contained.haveCome(2));
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
