#include <Support/Eventually.h>
#include <Support/HostMistakes.h>
#include <Support/SchemeExport.h>

#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>

#include <Platform/ISO8601.h>
#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

#include <atomic>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Texts = std::vector<std::string>;

// What holds for all five.
template <class Exporter> class SchemeExporterURLTest : public testing::Test {
  protected:
    SchemeExport<Exporter> one;
};

using Exporters =
    testing::Types<AgendaExporter, BearExporter, OmniFocusExporter, ThingsExporter, TwoDoExporter>;
TYPED_TEST_SUITE(SchemeExporterURLTest, Exporters);

// The value of the parameter in the URL that was opened, decoded once; Agenda's lies two URLs deep.
std::string parameter(const std::string& url, const std::string& name) {
    const auto start = url.find(name + "=");
    if (start == std::string::npos) {
        return "<none>";
    }
    const auto value = url.substr(start + name.size() + 1);
    return percentDecode(value.substr(0, value.find('&'))).value();
}

// What an exporter opens for an encoded title and text, and the link of FakeDataInteractor.
template <class Exporter> std::string expectedURL(const std::string& title, const std::string& text);

template <> std::string expectedURL<AgendaExporter>(const std::string& title, const std::string& text) {
    const auto project = std::string("Exported%20from%20Zelto");
    const auto note = percentEncode("agenda://x-callback-url/create-note?title=" + title + "&text=" + text);
    const auto create = percentEncode("agenda://x-callback-url/create-project?title=" + project +
                                      "&x-success=" + note.value());
    return "agenda://x-callback-url/open-project?title=" + project + "&x-success=" + note.value() +
           "&x-error=" + create.value();
}

template <> std::string expectedURL<BearExporter>(const std::string& title, const std::string& text) {
    return "bear://x-callback-url/create?title=" + title + "&text=" + text;
}

template <> std::string expectedURL<OmniFocusExporter>(const std::string& title, const std::string& text) {
    return "omnifocus:///add?name=" + title + "&note=" + text + "&autosave=true";
}

template <> std::string expectedURL<ThingsExporter>(const std::string& title, const std::string& text) {
    return "things:add?title=" + title + "&notes=" + text;
}

template <> std::string expectedURL<TwoDoExporter>(const std::string& title, const std::string& text) {
    return "twodo://x-callback-url/add?task=" + title + "&note=" + text +
           "&action=url:mid%3A1%40example%2Eorg";
}

} // namespace

TYPED_TEST(SchemeExporterURLTest, ABodyOfFiveMegabytesArrivesWhole) {
    std::string body;
    while (body.size() < 5'000'000) {
        body += "Zeile mit Umlauten äöü, Кириллица, 😀 & 100 % …\n";
    }
    this->one.data->plainText = body;
    ASSERT_TRUE(this->one.run());
    const auto expected = expectedURL<TypeParam>("Title", percentEncode(body).value());
    EXPECT_TRUE(this->one.openedURL() == expected) << "a body of this size is not to be printed";
}

TYPED_TEST(SchemeExporterURLTest, TitlesOfAllKindsArriveExactlyAsTheyAre) {
    const std::pair<const char*, const char*> rows[] = {
        {"Тест", "%D0%A2%D0%B5%D1%81%D1%82"},
        {"😀", "%F0%9F%98%80"},
        {"a&b", "a%26b"},
        {"100%", "100%25"},
        {"two\nlines", "two%0Alines"},
        {"\r\n", "%0D%0A"},
        {"e\u0301", "e%CC%81"},
        {"-._~", "%2D%2E%5F%7E"},
        {"a b+c", "a%20b%2Bc"},
        {"$(x);'\"", "%24%28x%29%3B%27%22"},
        {"", ""},
    };
    for (const auto& [title, encoded] : rows) {
        this->one.configuration.userTitle = title;
        ASSERT_TRUE(this->one.run());
        EXPECT_EQ(this->one.openedURL(), expectedURL<TypeParam>(encoded, "Body"));
    }
}

TYPED_TEST(SchemeExporterURLTest, ATextCannotAddAParameter) {
    this->one.data->plainText = "x&tags=evil&x-success=javascript:1#y?z";
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(this->one.openedURL(),
              expectedURL<TypeParam>("Title", "x%26tags%3Devil%26x%2Dsuccess%3Djavascript%3A1%23y%3Fz"));
}

TYPED_TEST(SchemeExporterURLTest, AnExportCancelledFromItsProgressHandlerIsCanceledOnce) {
    for (int step = 1; step <= 3; ++step) {
        this->one.onStarted = [&, step](ExportProgress& progress) {
            progress.setProgressHandler([&progress, step](float) {
                if (progress.completedUnitCount() == step) {
                    progress.cancel();
                    progress.cancel();
                }
            });
        };
        EXPECT_EQ(this->one.run().error(), IntegrationExportError::canceled) << step;
        this->one.progress->cancel();
    }
    EXPECT_EQ(this->one.interactor->exportEvents().size(), 3u);
    EXPECT_EQ(this->one.interactor->openedURLs().size(), 1u) << "only the last step opens";
}

TYPED_TEST(SchemeExporterURLTest, AnExportWithTheStubEndsWithInternalErrorAndKeepsNothing) {
    const DroppedCallbacks dropped;
    Completed<ExporterResult<void>> completed;
    auto exporter = this->one.exporterFor(std::make_shared<IntegrationsDataInteractorStub>());
    const std::weak_ptr<TypeParam> weakly = exporter;
    const auto progress = exporter->export_(
        this->one.configuration, completed.template callback<Completion<void, IntegrationExportError>>());
    exporter.reset();
    EXPECT_EQ(completed.value().error(), IntegrationExportError::internalError);
    EXPECT_TRUE(isGone(weakly));
    EXPECT_EQ(progress->completedUnitCount(), 0);
}

TEST(AgendaExporter, OpensAChainOfThreeURLs) {
    SchemeExport<AgendaExporter> one;
    one.data->plainText = "Body";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(
        one.openedURL(),
        "agenda://x-callback-url/open-project?title=Exported%20from%20Zelto"
        "&x-success=agenda%3A%2F%2Fx%2Dcallback%2Durl%2Fcreate%2Dnote%3Ftitle%3DTitle%26text%3DBody"
        "&x-error=agenda%3A%2F%2Fx%2Dcallback%2Durl%2Fcreate%2Dproject%3Ftitle%3DExported%2520from%2520Zelto"
        "%26x%2Dsuccess%3Dagenda%253A%252F%252Fx%252Dcallback%252Durl%252Fcreate%252Dnote%253Ftitle%253DTitle"
        "%2526text%253DBody");
}

TEST(AgendaExporter, APercentSignOfTheTextIsEncodedTwiceInTheNoteAndThriceInTheErrorRoute) {
    SchemeExport<AgendaExporter> one;
    one.data->plainText = "<%>";
    ASSERT_TRUE(one.run());
    const auto url = one.openedURL();
    const auto errorRoute = url.find("&x-error=");
    EXPECT_NE(url.substr(0, errorRoute).find("%2525"), std::string::npos);
    EXPECT_EQ(url.substr(0, errorRoute).find("%252525"), std::string::npos);
    EXPECT_NE(url.substr(errorRoute).find("%252525"), std::string::npos);
}

TEST(AgendaExporter, ANoteStandsBeforeTheTextBehindASeparator) {
    SchemeExport<AgendaExporter> one;
    one.configuration.userNote = "Mine";
    ASSERT_TRUE(one.run());
    const auto note = parameter(one.openedURL(), "x-success");
    EXPECT_EQ(parameter(note, "text"), "Mine\n------------------\n\nBody");
}

TEST(AgendaExporter, ANoteWithoutTextAddsNoSeparator) {
    SchemeExport<AgendaExporter> one;
    for (const auto* note : {"", " \n\t"}) {
        one.configuration.userNote = note;
        ASSERT_TRUE(one.run());
        EXPECT_EQ(parameter(parameter(one.openedURL(), "x-success"), "text"), "Body");
    }
}

TEST(AgendaExporter, JSONHasItsFieldsInOrder) {
    AgendaConfiguration configuration;
    configuration.userNote = "n";
    configuration.userTitle = "t";
    configuration.supportedContentTypes = {Type::backLink};
    EXPECT_EQ(JSONEncoder().encode(configuration).value(),
              R"({"saveAs":1,"userNote":"n","userTitle":"t","supportedContentTypes":[2]})");
}

TEST(BearExporter, OpensTitleTextAndTags) {
    SchemeExport<BearExporter> one;
    one.configuration.tags = {"a", "b"};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(), "bear://x-callback-url/create?title=Title&text=Body&tags=a,b");
}

TEST(BearExporter, WithoutTagsTheParameterIsMissing) {
    SchemeExport<BearExporter> one;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(), "bear://x-callback-url/create?title=Title&text=Body");
}

TEST(BearExporter, ATagThatHasNoPlaceInAURLGivesCreateUrlError) {
    for (const auto* tag : {"two words", "a&title=b", "a#b"}) {
        SchemeExport<BearExporter> one;
        one.configuration.tags = {tag};
        EXPECT_EQ(one.run(), failure(IntegrationExportError::createUrlError)) << tag;
        EXPECT_EQ(one.openedURL(), "<none>") << tag;
    }
}

TEST(BearExporter, TagsOfTheLastExportAreKept) {
    SchemeExport<BearExporter> one;
    one.configuration.tags = {"a", "b"};
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.exporter()->lastExportTags(), (Texts{"a", "b"}));
    EXPECT_EQ(one.offered().tags, Texts{});
}

TEST(BearExporter, ANoteStandsBeforeTheTextBehindASeparator) {
    SchemeExport<BearExporter> one;
    one.configuration.userNote = "Mine";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(parameter(one.openedURL(), "text"), "Mine\n------------------\n\nBody");
    one.configuration.userNote = "";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(parameter(one.openedURL(), "text"), "Body");
}

TEST(BearExporter, JSONHasItsFieldsInOrder) {
    BearExportConfiguration configuration;
    configuration.tags = {"x"};
    EXPECT_EQ(JSONEncoder().encode(configuration).value(),
              R"({"saveAs":1,"tags":["x"],"supportedContentTypes":[]})");
}

TEST(OmniFocusExporter, OpensNameNoteAndAutosave) {
    SchemeExport<OmniFocusExporter> one;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(), "omnifocus:///add?name=Title&note=Body&autosave=true");
}

TEST(OmniFocusExporter, ADueDateIsWrittenInTheUsersLocaleAndEncoded) {
    SchemeExport<OmniFocusExporter> one;
    one.configuration.dueDate = parseISO8601("2026-03-05T14:07:00Z");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(), "omnifocus:///add?name=Title&note=Body&autosave=true"
                               "&due=2026%2C%20Mar%2C%205%2C%2002%3A07%20PM");
}

TEST(OmniFocusExporter, JSONHasItsFieldsInOrder) {
    OmniFocusConfiguration configuration;
    configuration.dueDate = Date::fromReferenceSeconds(60);
    configuration.userTitle = "t";
    EXPECT_EQ(JSONEncoder().encode(configuration).value(),
              R"({"saveAs":1,"dueDate":60,"userTitle":"t","supportedContentTypes":[]})");
}

TEST(ThingsExporter, WithNeitherDateThereIsNoWhenAndNoDeadline) {
    SchemeExport<ThingsExporter> one;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(), "things:add?title=Title&notes=Body");
}

TEST(ThingsExporter, TheYearOfWhenIsPaddedToFiveDigitsAndThatOfTheDeadlineIsNot) {
    SchemeExport<ThingsExporter> one;
    one.configuration.dueDate = parseISO8601("2026-03-05T14:07:00Z");
    one.configuration.deadline = parseISO8601("2026-04-01T00:00:00Z");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(), "things:add?title=Title&notes=Body"
                               "&when=02026%2D03%2D05%2014%3A07&deadline=2026%2D04%2D01");
}

TEST(ThingsExporter, JSONHasItsFieldsInOrder) {
    ThingsConfiguration configuration;
    configuration.dueDate = Date::fromReferenceSeconds(1);
    configuration.deadline = Date::fromReferenceSeconds(2);
    EXPECT_EQ(JSONEncoder().encode(configuration).value(),
              R"({"saveAs":1,"dueDate":1,"deadline":2,"supportedContentTypes":[]})");
}

TEST(TwoDoExporter, TheLinkIsTheActionApartFromTheText) {
    SchemeExport<TwoDoExporter> one;
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(),
              "twodo://x-callback-url/add?task=Title&note=Body&action=url:mid%3A1%40example%2Eorg");
}

TEST(TwoDoExporter, WithoutALinkThereIsNoAction) {
    SchemeExport<TwoDoExporter> one;
    for (const auto& link : {std::optional<std::string>(), std::optional<std::string>("")}) {
        one.data->linkText = link;
        ASSERT_TRUE(one.run());
        EXPECT_EQ(one.openedURL(), "twodo://x-callback-url/add?task=Title&note=Body");
    }
}

TEST(TwoDoExporter, TheDueDateIsTwoPartsThatAreNotEncoded) {
    SchemeExport<TwoDoExporter> one;
    one.data->linkText = std::nullopt;
    one.configuration.dueDate = parseISO8601("2026-03-05T14:07:00Z");
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.openedURL(),
              "twodo://x-callback-url/add?task=Title&note=Body&due=2026-03-05&dueTime=14:07");
}

TEST(TwoDoExporter, JSONHasItsFieldsInOrder) {
    TwoDoConfiguration configuration;
    configuration.dueDate = Date::fromReferenceSeconds(1.5);
    EXPECT_EQ(JSONEncoder().encode(configuration).value(),
              R"({"saveAs":1,"dueDate":1.5,"supportedContentTypes":[]})");
}

TEST(SchemeExporters, HaveTheirApplicationsSchemeWord) {
    EXPECT_STREQ(AgendaExporter::urlHost, "agenda");
    EXPECT_STREQ(BearExporter::urlHost, "bear");
    EXPECT_STREQ(OmniFocusExporter::urlHost, "omnifocus");
    EXPECT_STREQ(ThingsExporter::urlHost, "things");
    EXPECT_STREQ(TwoDoExporter::urlHost, "twodo");
}

} // namespace zelto
