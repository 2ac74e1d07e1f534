#include <zelto/ZeltoProgram.h>

#include <base/Terminal.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("plain-note.eml");

// OSC 52 (the clipboard), OSC 8 (a link), CSI (the screen), C1, DEL, and marks that change the direction.
constexpr auto hostile = "a\x1b]52;c;ZXZpbA==\x07"
                         "b\x1b]8;;http://x\x1b\\c\x1b[2Jd\xC2\x9B"
                         "e\x7F"
                         "f\xE2\x80\xAEg";
constexpr auto escaped =
    "a\\u{1B}]52;c;ZXZpbA==\\u{7}b\\u{1B}]8;;http://x\\u{1B}\\c\\u{1B}[2Jd\\u{9B}e\\u{7F}f"
    "\\u{202E}g";

bool holdsControls(const std::string& text) {
    for (const char* control : {"\x1b", "\x07", "\xC2\x9B", "\x7F", "\xE2\x80\xAE"}) {
        if (text.find(control) != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(OnATerminal, ABarIsShownAndGoneAtTheEnd) {
    ZeltoProgram zelto;
    zelto.variables["NO_COLOR"] = "1";
    const auto shown = zelto.runOnTerminal({"export", mail, "--to", "bear", "--opener", "true"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_TRUE(holds(shown.output, "\r[                              ] 0 %")) << shown.output;
    EXPECT_TRUE(holds(shown.output, "\r[##############################] 100 %\r\x1b[K")) << shown.output;
    EXPECT_TRUE(shown.output.ends_with("\r\x1b[KHanded to Bear.\r\n")) << shown.output;
}

TEST(OnATerminal, NoBarIsShownIfNoneIsWanted) {
    const ZeltoProgram zelto;
    for (const ZeltoProgram::Arguments& arguments :
         {ZeltoProgram::Arguments{"--progress", "none"}, {"--quiet"}}) {
        ZeltoProgram::Arguments all{"export", mail, "--to", "bear", "--opener", "true"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_FALSE(holds(zelto.runOnTerminal(all).output, "%"));
    }
}

TEST(OnATerminal, ColoursAreUsedUnlessNO_COLORIsSetOrTheTerminalIsDumb) {
    ZeltoProgram zelto;
    const ZeltoProgram::Arguments exporting{"export", mail, "--to", "bear", "--opener", "true"};
    EXPECT_TRUE(holds(zelto.runOnTerminal(exporting).output, "\x1b[32m"));
    EXPECT_TRUE(holds(zelto.runOnTerminal({"nothing"}).output, "\x1b[31mzelto:\x1b[0m wrongUsage"));
    zelto.variables["TERM"] = "dumb";
    EXPECT_FALSE(holds(zelto.runOnTerminal(exporting).output, "\x1b"));
    zelto.variables["TERM"] = "xterm";
    zelto.variables["NO_COLOR"] = "1";
    EXPECT_FALSE(holds(zelto.runOnTerminal(exporting).output, "\x1b[3"));
    EXPECT_FALSE(holds(zelto.runOnTerminal({"nothing"}).output, "\x1b"));
    zelto.variables["NO_COLOR"] = "";
    EXPECT_TRUE(holds(zelto.runOnTerminal(exporting).output, "\x1b[32m"));
}

TEST(OnATerminal, ControlCharactersOfNamesAndTextsAreShownEscaped) {
    ZeltoProgram zelto;
    zelto.variables["NO_COLOR"] = "1";
    const auto body =
        zelto.home.write("hostile.eml", "From: a@b.example\r\nSubject: x\r\nMessage-ID: <i@b.example>\r\n"
                                        "Content-Type: text/plain; charset=utf-8\r\n\r\n" +
                                            std::string(hostile) + "\r\n");
    for (const ZeltoProgram::Arguments& arguments :
         {ZeltoProgram::Arguments{"connect", "bear", "--name", hostile},
          {"accounts"},
          {"accounts", "remove", "Bear+" + std::string(hostile) + "x"},
          {"export", mail, "--to", hostile},
          {"export", hostile, "--to", "bear"},
          {"connect", hostile},
          {hostile},
          {"export", mail, "--to", "bear", "--as", hostile},
          {"preview", body, "--to", "things"},
          {"accounts", "remove", "Bear+" + std::string(hostile)}}) {
        const auto shown = zelto.runOnTerminal(arguments);
        EXPECT_FALSE(holdsControls(shown.output)) << shown.output;
        EXPECT_TRUE(holds(shown.output, escaped)) << shown.output;
    }
}

TEST(OnATerminal, JSONHoldsNoControlCharacterEither) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", hostile}).status, 0);
    const auto mailOfHostile = zelto.home.write("mail.eml", mailWith("f\xE2\x80\xAEg\xC2\x9Bh", "Hi."));
    for (const ZeltoProgram::Arguments& arguments : {ZeltoProgram::Arguments{"accounts", "--json"},
                                                     {"config", mailOfHostile, "--to", "things"},
                                                     {"config", mailOfHostile, "--to", "things", "--json"},
                                                     {"export", mail, "--to", hostile, "--json"}}) {
        EXPECT_FALSE(holdsControls(zelto.runOnTerminal(arguments).output));
        EXPECT_FALSE(holdsControls(zelto.run(arguments).output));
    }
    EXPECT_EQ(zelto.run({"config", mailOfHostile, "--to", "things"}).text("userTitle"), "f\xE2\x80\xAEg h");
    EXPECT_EQ(*zelto.run({"accounts", "--json"})
                   .json()
                   .find("accounts")
                   ->asArray()
                   ->front()
                   .find("userName")
                   ->asString(),
              hostile);
}

TEST(OffATerminal, NamesAreWrittenAsTheyAre) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", hostile}).status, 0);
    EXPECT_EQ(zelto.run({"accounts"}).output, "Bear+" + std::string(hostile) + "\n");
}

TEST(OffATerminal, MessagesOnStandardErrorAreEscapedAllTheSame) {
    const ZeltoProgram zelto;
    EXPECT_FALSE(holdsControls(zelto.run({hostile}).errorOutput));
}

TEST(Program, LeavesNoCore) {
    const ZeltoProgram zelto;
    const auto limits = (zelto.home / "limits").string();
    const auto script = zelto.home.write("opener", "#!/bin/sh\ncat /proc/$PPID/limits > '" + limits + "'\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    EXPECT_EQ(zelto.runOnTerminal({"export", mail, "--to", "bear", "--opener", script}).status, 0);
    const auto text = TemporaryFolder::read(limits);
    const auto start = text.find("Max core file size");
    ASSERT_NE(start, std::string::npos);
    const auto line = text.substr(start, text.find('\n', start) - start);
    std::string numbers = line.substr(std::string_view("Max core file size").size());
    std::erase(numbers, ' ');
    EXPECT_EQ(numbers, "00bytes") << line;
}

TEST(TerminalSafeJSON, EscapesWhatControlsTerminalsAndNothingElse) {
    EXPECT_EQ(cli::terminalSafeJSON("\"a\x7F\xC2\x80\xC2\x9F\xC2\xA0\""),
              "\"a\\u007f\\u0080\\u009f\xC2\xA0\"");
    EXPECT_EQ(cli::terminalSafeJSON(
                  "\xD8\x9C\xE2\x80\x8E\xE2\x80\x8F\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA6\xE2\x81\xA9"),
              "\\u061c\\u200e\\u200f\\u2028\\u202e\\u2066\\u2069");
    const auto untouched =
        "{\"a\": \"caf\xC3\xA9 \xE2\x80\x8D \xE2\x80\xAF \xE2\x81\xA5 \xE2\x81\xAA \xF0\x9F\x91\x8D\"}\n\t";
    EXPECT_EQ(cli::terminalSafeJSON(untouched), untouched);
    EXPECT_EQ(cli::terminalSafeJSON("\xC2"), "\xC2");
    EXPECT_EQ(cli::terminalSafeJSON("\xE2\x80"), "\xE2\x80");
}

} // namespace zelto
