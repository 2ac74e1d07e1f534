#include <Support/LogCapture.h>
#include <Support/OneNoteExport.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <mutex>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using Made = ExportReport::Made;
using Refused = ExportReport::Refused;

constexpr auto blueLink = R"(<p style="color:#3e81de; font-size:32px;"><a href="zelto://m">mail</a><br></p>)"
                          "\n<table>From</table>";

class OneNoteExportTest : public testing::Test {
  protected:
    OneNoteExportTest() {
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

    static std::string part(const std::string& name, const std::string& file, const std::string& type,
                            const std::string& content) {
        return "--B\r\nContent-Disposition: form-data; name=\"" + name + "\"; filename=\"" + file +
               "\"\r\nContent-Type: " + type + "\r\n\r\n" + content + "\r\n";
    }

    // The whole request of a page; identifiers are shorter here than on the wire.
    static std::string page(std::size_t length, const std::string& parts) {
        return "POST /v1.0/me/onenote/sections/s1/pages\nContent-Type: multipart/form-data; boundary=B\n"
               "Authorization: Bearer token\nContent-Length: " +
               std::to_string(length) + "\n\n" + parts + "--B--\r\n";
    }

    // Of the only request.
    std::string sentForm() const {
        const auto texts = service.texts();
        EXPECT_EQ(texts.size(), 1U);
        return texts.empty() ? "" : texts.front().substr(texts.front().find("\n\n") + 2);
    }

    static constexpr auto pageLine = "POST /v1.0/me/onenote/sections/s1/pages";

    OneNoteExport one;

  private:
    mutable std::mutex lock_;
    Texts events_;

  protected:
    OneNoteServer service; // behind what its requests write to
};

} // namespace

TEST_F(OneNoteExportTest, AMessageIsItsHTMLBelowTheHeader) {
    one.configuration.saveAs = Type::emailBacklink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts(), Texts{page(268, part("Presentation", "U1", "text/html",
                                                    "<html><body><p>Body</p></body></html>"))});
    IntegrationExportHtmlOptions options;
    options.customHeader = blueLink;
    EXPECT_EQ(one.data->askedHtml(), std::vector{options});
    EXPECT_EQ(one.data->askedLinks(),
              std::vector{IntegrationLinkType::backlink(IntegrationLinkFormat::html)});
    EXPECT_EQ(events(), (Texts{"link", "htmlHeader", "html", pageLine}));
}

TEST_F(OneNoteExportTest, APdfIsAFileOfThePageBelowTheHeader) {
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.texts(),
              Texts{page(723, part("Presentation", "U1", "text/html",
                                   "<html><head><title>Title</title></head><body>" + std::string(blueLink) +
                                       "<object data-attachment=\"Title.pdf\" data=\"name:U2\" "
                                       "type=\"application/pdf\" /></body></html>") +
                                  part("U2", "Title.pdf", "application/pdf",
                                       "%PDF <html><body><p>Body</p></body></html>"))});
    EXPECT_EQ(one.data->askedHtml(), std::vector{IntegrationExportHtmlOptions{}});
    EXPECT_EQ(events(), (Texts{"html", "convert", "link", "htmlHeader", pageLine}));
    EXPECT_EQ(one.progress->totalUnitCount(), 2);
    EXPECT_EQ(one.progress->completedUnitCount(), 2);
}

TEST_F(OneNoteExportTest, AMeetingNoteIsItsSummaryWithTheHeaderInIt) {
    one.configuration.saveAs = Type::mtSummaryBacklink;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(sentForm(), part("Presentation", "U1", "text/html",
                               "<html><body>" + std::string(blueLink) + "<p>Summary</p></body></html>") +
                              "--B--\r\n");
    EXPECT_EQ(events(), (Texts{"link", "htmlHeader", "meetTranscript", pageLine}));
    // The link is in the header alone.
    EXPECT_EQ(one.data->askedLinks(),
              std::vector{IntegrationLinkType::backlink(IntegrationLinkFormat::html)});
}

TEST_F(OneNoteExportTest, AnExternalLinkAloneIsThePage) {
    one.configuration.saveAs = Type::externalLink;
    one.configuration.externalLink = "https://example.org/?a=1&b=2";
    one.configuration.userNote = "not written";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(sentForm(), part("Presentation", "U1", "text/html",
                               "<html><head><title>Title</title></head><body><p>"
                               "<a href=\"https://example.org/?a=1&b=2\">https://example.org/?a=1&b=2</a>"
                               "</p></body></html>") +
                              "--B--\r\n");
    EXPECT_EQ(events(), Texts{pageLine});
}

TEST_F(OneNoteExportTest, WithoutAnExternalLinkThereIsNoBody) {
    one.configuration.saveAs = Type::externalLink;
    for (const auto& link :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>(" \n")}) {
        one.configuration.externalLink = link;
        EXPECT_EQ(one.run().error(), Error::createBodyError);
    }
    EXPECT_EQ(events(), Texts{});
}

TEST_F(OneNoteExportTest, ANoteStandsAboveTheBlueLink) {
    one.configuration.userNote = "x";
    ASSERT_TRUE(one.run());
    EXPECT_NE(sentForm().find("<body><p>x<br>______________________________</p>" + std::string(blueLink)),
              std::string::npos);
}

TEST_F(OneNoteExportTest, ThreeAttachmentsAreFetchedBeforeTheOneRequest) {
    one.configuration.saveAs = Type::emailBacklink;
    for (const auto* name : {"a.txt", "b.png", "c"}) {
        one.attach(name, name);
    }
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 5);
    EXPECT_EQ(one.progress->completedUnitCount(), 5);
    EXPECT_EQ(events(), (Texts{"link", "htmlHeader", "html", "fetchAttachment", "fetchAttachment",
                               "fetchAttachment", pageLine}));
    EXPECT_EQ(sentForm(),
              part("Presentation", "U1", "text/html",
                   "<html><body><p>Body</p>"
                   "<object data-attachment=\"a.txt\" data=\"name:U2\" type=\"text/plain\" />"
                   "<object data-attachment=\"b.png\" data=\"name:U3\" type=\"image/png\" />"
                   "<object data-attachment=\"c\" data=\"name:U4\" type=\"application/octet-stream\" />"
                   "</body></html>") +
                  part("U2", "a.txt", "text/plain", "a.txt") + part("U3", "b.png", "image/png", "b.png") +
                  part("U4", "c", "application/octet-stream", "c") + "--B--\r\n");
}

TEST_F(OneNoteExportTest, TwoAttachmentsOfOneNameAreTwoParts) {
    one.attach("a.txt", "first");
    one.attach("a.txt", "second");
    ASSERT_TRUE(one.run());
    const auto form = sentForm();
    EXPECT_NE(form.find("data-attachment=\"a.txt\" data=\"name:U3\""), std::string::npos) << form;
    EXPECT_NE(form.find("data-attachment=\"a.txt\" data=\"name:U4\""), std::string::npos) << form;
    EXPECT_NE(form.find("name=\"U3\"; filename=\"a.txt\""), std::string::npos) << form;
    EXPECT_NE(form.find("name=\"U4\"; filename=\"a.txt\""), std::string::npos) << form;
}

TEST_F(OneNoteExportTest, AFileThatCannotBeReadIsLoggedAndThePageGoesOnWithoutIt) {
    one.configuration.saveAs = Type::emailBacklink;
    one.attach("a.txt");
    one.attach("b.txt");
    one.data->fileOf = [fileOf = one.data->fileOf](std::int64_t id) {
        const auto file = fileOf(id);
        if (id == 0) {
            std::filesystem::remove(file->filePath());
        }
        return file;
    };
    const LogCapture log;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(log.messages(LogLevel::error), Texts{"Failed to create multipartData from file " +
                                                   URL::file(one.files.front()).absoluteString()});
    EXPECT_EQ(sentForm(), part("Presentation", "U1", "text/html",
                               "<html><body><p>Body</p><object data-attachment=\"b.txt\" data=\"name:U2\" "
                               "type=\"text/plain\" /></body></html>") +
                              part("U2", "b.txt", "text/plain", "content") + "--B--\r\n");
    EXPECT_EQ(one.progress->completedUnitCount(), 4);
}

TEST_F(OneNoteExportTest, AnAttachmentThatTheHostDoesNotHaveEndsTheExportWithoutAPage) {
    one.attach("a.txt");
    one.attach("b.txt");
    one.data->fileOf = [fileOf = one.data->fileOf](std::int64_t id) {
        return id == 0 ? std::nullopt : fileOf(id);
    };
    EXPECT_EQ(one.run().error(), Error::uploadAttachmentError);
    EXPECT_EQ(events(), (Texts{"html", "convert", "link", "htmlHeader", "fetchAttachment"}));
}

TEST_F(OneNoteExportTest, ASectionOfAnotherNotebookIsRefusedBeforeAnythingIsAskedFor) {
    for (const auto& notebookId : {std::optional<std::string>(), std::optional<std::string>("n2")}) {
        one.configuration.saveTo->section.notebookId = notebookId;
        EXPECT_EQ(one.run().error(), Error::internalError);
    }
    EXPECT_EQ(events(), Texts{});
}

TEST_F(OneNoteExportTest, WithoutATargetAnExportWithoutCredentialsIsOneWithoutATarget) {
    one.account.credentials = std::nullopt;
    one.configuration.saveTo = std::nullopt;
    EXPECT_EQ(one.run().error(), Error::internalError);
}

TEST_F(OneNoteExportTest, APdfThatWasNotWrittenIsLoggedAndNoPageIsMade) {
    one.interactor->makePdf = [](const auto&, const auto&, Callback<bool> done) { done(true); };
    const LogCapture log;
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    const auto errors = log.messages(LogLevel::error);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(errors.front().starts_with("Failed to create multipartData from file file:///"))
        << errors.front();
    EXPECT_TRUE(errors.front().ends_with("/Title.pdf")) << errors.front();
}

TEST_F(OneNoteExportTest, HTMLThatIsEmptyIsNone) {
    one.configuration.saveAs = Type::emailBacklink;
    one.data->htmlText = "";
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    one.configuration.saveAs = Type::mtSummaryBacklink;
    one.data->summaryHTML = "";
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(OneNoteExportTest, HTMLThatIsNotUTF8IsNotSent) {
    one.configuration.saveAs = Type::emailBacklink;
    one.data->htmlText = "<html><body>\xFF</body></html>";
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(OneNoteExportTest, TheReportTellsOfThePage) {
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.exporter()->exportReport(), (ExportReport{{Made{"page", "Title", {}}}, {}}));
    service.respondTo("/pages", PlayedResponse::json(
                                    R"({"error":{"code":"30103","message":"The section is full."}})", 507));
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(one.exporter()->exportReport(),
              (ExportReport{{},
                            {Refused{"page", "Title", ServiceClientError::serviceInternalError,
                                     "The section is full.", false}}}));
}

TEST_F(OneNoteExportTest, AnalyticsNameWhatTheUserChanged) {
    one.data->titleText = "Subject";
    one.configuration.userNote = "note";
    ASSERT_TRUE(one.run());
    const auto events = one.interactor->exportEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events.front(),
              (ExportEvent{ServiceType::OneNote,
                           Type::pdf,
                           {"saveAs", "userNote", "userTitle", "externalLink", "notebook", "section"},
                           "test",
                           std::nullopt}));
}

TEST_F(OneNoteExportTest, AnIdentifierOfASectionStaysInItsPlace) {
    one.configuration.saveTo->section.id = "../me?x=";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(service.lines(), Texts{"POST /v1.0/me/onenote/sections/..%2Fme%3Fx=/pages"});
}

TEST_F(OneNoteExportTest, HostileTextsStayTexts) {
    one.attach("\"><script>&.txt");
    for (const auto* title : {"</title><script>alert(1)</script>", "a\r\n--B\r\nContent-Type: x", "\"", ""}) {
        one.configuration.userTitle = title;
        one.configuration.userNote = title;
        ASSERT_TRUE(one.run()) << title;
        const auto form = service.texts().back();
        const auto html = form.substr(0, form.find("</html>"));
        EXPECT_EQ(html.find("<script>"), std::string::npos) << html;
        EXPECT_EQ(html.find("</title>"), html.rfind("</title>")) << html;
        EXPECT_NE(html.find("data-attachment=\"&quot;&gt;&lt;script&gt;&amp;.txt\""), std::string::npos);
        EXPECT_NE(form.find("filename=\"%22><script>&.txt\""), std::string::npos);
    }
}

} // namespace zelto
