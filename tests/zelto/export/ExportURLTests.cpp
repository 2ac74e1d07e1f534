#include <zelto/ZeltoProgram.h>

#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

// The whole URL of each application for a title and a text that are percent-encoded already, as far as one
// level goes.
struct Application {
    const char* name;
    std::string (*url)(const std::string& title, const std::string& text);
};

std::string encoded(const std::string& text) {
    return percentEncode(text).value();
}

std::string agendaURL(const std::string& title, const std::string& text) {
    const auto note = "agenda://x-callback-url/create-note?title=" + title + "&text=" + text;
    const auto create =
        "agenda://x-callback-url/create-project?title=Exported%20from%20Zelto&x-success=" + encoded(note);
    return "agenda://x-callback-url/open-project?title=Exported%20from%20Zelto&x-success=" + encoded(note) +
           "&x-error=" + encoded(create);
}

const Application applications[] = {
    {"agenda", agendaURL},
    {"bear",
     [](const std::string& title, const std::string& text) {
         return "bear://x-callback-url/create?title=" + title + "&text=" + text;
     }},
    {"omnifocus",
     [](const std::string& title, const std::string& text) {
         return "omnifocus:///add?name=" + title + "&note=" + text + "&autosave=true";
     }},
    {"things", [](const std::string& title,
                  const std::string& text) { return "things:add?title=" + title + "&notes=" + text; }},
    {"2do",
     [](const std::string& title, const std::string& text) {
         return "twodo://x-callback-url/add?task=" + title + "&note=" + text +
                "&action=url:mid%3Aid1%40harbour%2Eexample";
     }},
};

// A title as people give it, as a mail's header writes it, and percent-encoded.
struct Title {
    const char* plain;
    const char* header;
    const char* encoded;
};

constexpr Title titles[] = {
    {"Маяк готов",
     "=?UTF-8?B?0JzQsNGP0Log0LPQvtGC0L7Qsg==?=", "%D0%9C%D0%B0%D1%8F%D0%BA%20%D0%B3%D0%BE%D1%82%D0%BE%D0%B2"},
    {"👍🏽 ok 👩‍🚀", "=?UTF-8?Q?=F0=9F=91=8D=F0=9F=8F=BD_ok_=F0=9F=91=A9=E2=80=8D=F0=9F=9A=80?=",
     "%F0%9F%91%8D%F0%9F%8F%BD%20ok%20%F0%9F%91%A9%E2%80%8D%F0%9F%9A%80"},
    {"salt & pepper", "salt & pepper", "salt%20%26%20pepper"},
    {"100% of %41", "100% of %41", "100%25%20of%20%2541"},
    {"one\ntwo\r\nthree", "=?UTF-8?Q?one=0Atwo=0D=0Athree?=", "one%0Atwo%0D%0Athree"},
    {"e\xCC\x81"
     "a\xCC\x8A\xCC\xA3",
     "=?UTF-8?Q?e=CC=81a=CC=8A=CC=A3?=", "e%CC%81a%CC%8A%CC%A3"},
    {"-rf $(x) `y` ;z 'q' \"p\" #?=+/\\", "-rf $(x) `y` ;z 'q' \"p\" #?=+/\\",
     "%2Drf%20%24%28x%29%20%60y%60%20%3Bz%20%27q%27%20%22p%22%20%23%3F%3D%2B%2F%5C"},
};

constexpr auto textOfMail = "Hi%20there%2E%0A%0Amid%3Aid1%40harbour%2Eexample";

} // namespace

TEST(ExportURL, IsExactForEachTitleGivenAsAnOption) {
    const ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", mailWith("other", "Hi there.\r\n"));
    for (const auto& application : applications) {
        for (const auto& title : titles) {
            EXPECT_EQ(zelto.exportedURL({mail, "--to", application.name, "--title", title.plain}),
                      application.url(title.encoded, textOfMail))
                << application.name << ' ' << title.plain;
        }
    }
}

TEST(ExportURL, IsExactForEachSubjectOfAMail) {
    const ZeltoProgram zelto;
    for (const auto& application : applications) {
        for (const auto& title : titles) {
            // A subject is one line: line ends in it read as blanks.
            std::string expected = title.encoded;
            if (expected.starts_with("one%0A")) {
                expected = "one%20two%20three";
            }
            const auto mail = zelto.home.write("mail.eml", mailWith(title.header, "Hi there.\r\n"));
            EXPECT_EQ(zelto.exportedURL({mail, "--to", application.name}),
                      application.url(expected, textOfMail))
                << application.name << ' ' << title.plain;
        }
    }
}

TEST(ExportURL, IsTheLiteralTextOfAWholeChain) {
    const ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", mailWith("A&B 5%", "Hi.\r\n"));
    EXPECT_EQ(
        zelto.exportedURL({mail, "--to", "agenda", "--as", "backLink"}),
        "agenda://x-callback-url/open-project?title=Exported%20from%20Zelto"
        "&x-success=agenda%3A%2F%2Fx%2Dcallback%2Durl%2Fcreate%2Dnote%3Ftitle%3DA%2526B%25205%2525"
        "%26text%3Dmid%253Aid1%2540harbour%252Eexample"
        "&x-error=agenda%3A%2F%2Fx%2Dcallback%2Durl%2Fcreate%2Dproject%3Ftitle%3DExported%2520from"
        "%2520Zelto%26x%2Dsuccess%3Dagenda%253A%252F%252Fx%252Dcallback%252Durl%252Fcreate%252Dnote"
        "%253Ftitle%253DA%252526B%2525205%252525%2526text%253Dmid%25253Aid1%252540harbour%25252Eexample");
}

TEST(ExportURL, TakesNoteTagsAndDates) {
    const ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", mailWith("T", "Hi.\r\n"));
    const std::string noted = "N%2E%0A%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%2D%0A%0A";
    EXPECT_EQ(
        zelto.exportedURL({mail, "--to", "bear", "--as", "backLink", "--note", "N.", "--tags", "a, b,,c"}),
        "bear://x-callback-url/create?title=T&text=" + noted + "mid%3Aid1%40harbour%2Eexample&tags=a,b,c");
    EXPECT_EQ(zelto.exportedURL({mail, "--to", "things", "--as", "backLink", "--due", "2026-12-24T09:05:00Z",
                                 "--deadline", "2026-12-31"}),
              "things:add?title=T&notes=mid%3Aid1%40harbour%2Eexample&when=02026%2D12%2D24%2009%3A05"
              "&deadline=2026%2D12%2D31");
    EXPECT_EQ(
        zelto.exportedURL({mail, "--to", "2do", "--as", "backLink", "--due", "2026-12-24T09:05:00+01:00"}),
        "twodo://x-callback-url/add?task=T&note=mid%3Aid1%40harbour%2Eexample"
        "&action=url:mid%3Aid1%40harbour%2Eexample&due=2026-12-24&dueTime=08:05");
}

TEST(ExportURL, TakesADateWithoutAZoneInTheSystemsTimeZone) {
    ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", mailWith("T", "Hi.\r\n"));
    const auto configuration = zelto.home.write(
        "things.json", R"({"saveAs": 2, "dueDate": "2026-12-24T09:05", "deadline": "2026-12-31",
                           "userTitle": "T", "supportedContentTypes": []})");
    for (const auto* zone : {"America/New_York", "Pacific/Auckland", "UTC"}) {
        zelto.variables["TZ"] = zone;
        const std::string expected =
            "things:add?title=T&notes=mid%3Aid1%40harbour%2Eexample&when=02026%2D12%2D24%2009%3A05"
            "&deadline=2026%2D12%2D31";
        EXPECT_EQ(zelto.exportedURL({mail, "--to", "things", "--as", "backLink", "--due", "2026-12-24T09:05",
                                     "--deadline", "2026-12-31"}),
                  expected)
            << zone;
        EXPECT_EQ(zelto.exportedURL({mail, "--to", "things", "--config", configuration}), expected) << zone;
    }
}

TEST(ExportURL, HoldsATextOfFiveMegabytes) {
    const ZeltoProgram zelto;
    std::string text;
    while (text.size() < 5'000'000) {
        text += "All work & no play, 100 % of the time: маяк.\n";
    }
    const auto mail = zelto.home.write("mail.eml", mailWith("Long", text));
    const auto expectedText = encoded(text + "\nmid:id1@harbour.example");
    for (const auto& application : applications) {
        EXPECT_TRUE(zelto.exportedURL({mail, "--to", application.name}) ==
                    application.url("Long", expectedText))
            << application.name;
    }
    const auto handed = zelto.run({"export", mail, "--to", "bear", "--opener", "true", "--json"});
    EXPECT_EQ(handed.status, 1);
    EXPECT_EQ(handed.text("error"), "xUrlCallbackError");
    EXPECT_NE(handed.text("message").find("too long to be handed to a program"), std::string::npos);
    EXPECT_EQ(handed.text("next"), "zelto export " + mail.string() + " --to bear --opener - --json");
}

TEST(ExportURL, OfAMailOnStandardInputIsTheSame) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"export", "-", "--to", "things", "--opener", "-"},
                                   mailWith("=?UTF-8?Q?caf=C3=A9?=", "Hi there.\r\n"));
    EXPECT_EQ(outcome.output, std::string("things:add?title=caf%C3%A9&notes=") + textOfMail + "\n");
}

TEST(ExportURL, OfAMeetingNoteHoldsItsSummary) {
    const ZeltoProgram zelto;
    const auto note = zelto.home.write("note.json", R"({"title": "Tide & tables",
        "start": "2025-10-21T14:00:00Z", "end": "2025-10-21T14:45:00Z",
        "organiser": {"email": "mira@harbour.example"},
        "link": "https://notes.harbour.example/43", "summary": {"html": "<p>Up &amp; running</p>"}})");
    EXPECT_EQ(zelto.exportedURL({note, "--to", "things"}),
              "things:add?title=Tide%20%26%20tables&notes=Up%20%26%20running%0A%0A"
              "https%3A%2F%2Fnotes%2Eharbour%2Eexample%2F43");
}

TEST(ExportURL, OfAMailWithoutAnIdentifierNeedsAnotherForm) {
    const ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", "From: a@b.example\r\nSubject: T\r\n\r\nHi.\r\n");
    const auto outcome =
        zelto.run({"export", mail, "--to", "bear", "--as", "backLink", "--opener", "-", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "createBodyError");
}

} // namespace zelto
