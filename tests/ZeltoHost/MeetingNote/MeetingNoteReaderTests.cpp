#include <ZeltoHost/Mail/MailSamples.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>

namespace zelto {
namespace {

using testing::fileWith;

MeetingNoteError errorOf(std::string_view json) {
    const auto note = MeetingNoteReader::parse(json);
    EXPECT_FALSE(note.has_value()) << json;
    return note ? MeetingNoteError{} : note.error();
}

TEST(MeetingNoteReader, ReadsEveryField) {
    const auto note = MeetingNoteReader::parse(R"({"title": "a\nb", "start": "2025-10-21T14:30:00+02:00",
        "end": "2025-10-21T13:00:00Z", "organiser": {"email": "o@x.example", "name": "O P"},
        "attendees": [{"email": "a@x.example"}], "link": "app://note/1", "webLink": "https://x.example/1",
        "summary": {"html": "<p>s</p>"}, "notes": "n", "transcript": {"text": "t"}, "unknown": 1})");
    ASSERT_TRUE(note.has_value()) << note.error().message;
    EXPECT_EQ(note->title, "a b");
    EXPECT_EQ(note->start, Date::fromUnixSeconds(1761049800));
    EXPECT_EQ(note->end, Date::fromUnixSeconds(1761051600));
    EXPECT_EQ(note->organiser, (MeetingNoteParty{"o@x.example", "O P"}));
    EXPECT_EQ(note->attendees, (std::vector<MeetingNoteParty>{{"a@x.example", std::nullopt}}));
    EXPECT_EQ(note->link, "app://note/1");
    EXPECT_EQ(note->summary, (MeetingNoteText{"<p>s</p>", true}));
    EXPECT_EQ(note->notes, (MeetingNoteText{"n", false}));
    EXPECT_EQ(note->transcript, (MeetingNoteText{"t", false}));
}

TEST(MeetingNoteReader, OnlyTheTitleMustBeThere) {
    EXPECT_TRUE(MeetingNoteReader::parse(R"({"title": ""})").has_value());
    EXPECT_TRUE(MeetingNoteReader::parse("\xEF\xBB\xBF{\"title\": \"x\", \"summary\": null}").has_value());
    EXPECT_NE(errorOf("{}").message.find("title"), std::string::npos);
}

TEST(MeetingNoteReader, AMeetingMayHaveAStartOrAnEndAlone) {
    const auto begun = MeetingNoteReader::parse(R"({"title": "x", "start": "2025-10-21T13:00:00Z"})");
    ASSERT_TRUE(begun.has_value());
    EXPECT_EQ(begun->end, std::nullopt);
    const auto ended = MeetingNoteReader::parse(R"({"title": "x", "end": "2025-10-21T13:00:00Z"})");
    ASSERT_TRUE(ended.has_value());
    EXPECT_EQ(ended->start, std::nullopt);
}

TEST(MeetingNoteReader, AWebLinkMayBeOfPlainHTTP) {
    EXPECT_EQ(MeetingNoteReader::parse(R"({"title": "x", "webLink": "http://x.example/"})")->webLink,
              "http://x.example/");
}

TEST(MeetingNoteReader, ErrorsNameTheField) {
    const std::vector<std::pair<std::string, std::string>> rows{
        {R"("start": "tomorrow")", "start"},
        {R"("start": "2025-10-21T14:00:00Z", "end": "2025-10-21T13:00:00Z")", "\"end\""},
        {R"("organiser": {"name": "x"})", "organiser"},
        {R"("organiser": {"email": "nobody"})", "organiser.email"},
        {R"("attendees": [{"email": "a@b.example"}, {"email": "b"}])", "attendees[1].email"},
        {R"("attendees": "all")", "attendees"},
        {R"("link": "not a url")", "\"link\""},
        {R"("link": "javascript:alert")", "\"link\""},
        {R"("link": "file:///etc/passwd")", "\"link\""},
        {R"("webLink": "ftp://x.example")", "\"webLink\""},
        {R"("webLink": "not a url")", "\"webLink\""},
        {R"("summary": 5)", "summary"},
        {R"("summary": {})", "summary"},
        {R"("notes": {"text": "a", "html": "b"})", "notes"},
    };
    for (const auto& [field, named] : rows) {
        const auto error = errorOf("{\"title\": \"x\", " + field + "}");
        EXPECT_EQ(error.code, MeetingNoteErrorCode::invalidNote) << field;
        EXPECT_NE(error.message.find(named), std::string::npos) << error.message;
    }
}

TEST(MeetingNoteReader, SaysWhatIsNoJSON) {
    for (const std::string_view json :
         {"", "Subject: a mail\n\n", "{\"title\": \"x\"", "{\"title\": \"\xFF\"}"}) {
        EXPECT_EQ(errorOf(json).code, MeetingNoteErrorCode::notJSON) << json;
    }
    EXPECT_EQ(errorOf(std::string(1'000'000, '[')).code, MeetingNoteErrorCode::notJSON);
    EXPECT_EQ(errorOf("[]").code, MeetingNoteErrorCode::invalidNote);
}

TEST(MeetingNoteReader, SaysWhenTheFileCannotBeRead) {
    EXPECT_EQ(MeetingNoteReader::open("/nowhere/note.json").error().code, MeetingNoteErrorCode::notFound);
    EXPECT_EQ(MeetingNoteReader::open(std::filesystem::temp_directory_path()).error().code,
              MeetingNoteErrorCode::unreadable);
    EXPECT_EQ(MeetingNoteReader::open("/" + std::string(300, 'n')).error().code,
              MeetingNoteErrorCode::unreadable);
    const auto path = fileWith("{}", "big.json");
    EXPECT_EQ(MeetingNoteReader::open(path / "note.json").error().code, MeetingNoteErrorCode::notFound);
    std::filesystem::resize_file(path, (64U << 20) + 1);
    EXPECT_EQ(MeetingNoteReader::open(path).error().code, MeetingNoteErrorCode::tooLarge);
}

TEST(MeetingNoteReader, ANoteIsTheSameAfterItsJSON) {
    const auto note = MeetingNoteReader::open(testing::exampleMail("weekly-planning.json"));
    ASSERT_TRUE(note.has_value());
    const auto json = JSONEncoder{DateStrategy::iso8601}.encode(*note);
    ASSERT_TRUE(json.has_value());
    EXPECT_EQ(MeetingNoteReader::parse(*json), *note);
}

} // namespace
} // namespace zelto
