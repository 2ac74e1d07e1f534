#include <zelto/ZeltoProgram.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

// More elements than are read with their formatting.
std::string mailOfManyElements() {
    std::string mail = "From: a@b.example\r\nSubject: s\r\nContent-Type: text/html\r\n\r\n";
    for (int count = 0; count < 300'000; ++count) {
        mail += "<p>";
    }
    return mail + "the end\r\n";
}

constexpr auto sentence =
    "The message's formatting is too extensive to be exported, and its text is exported "
    "without it.";

TEST(NotesOfContent, AreWarningsOfAnExportThatGoesOn) {
    const ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", mailOfManyElements());
    const auto exported = zelto.run({"export", mail, "--to", "bear", "--opener", "-"});
    EXPECT_EQ(exported.status, 0);
    EXPECT_NE(exported.output.find("text=the%20end"), std::string::npos) << exported.output;
    EXPECT_EQ(exported.errorOutput, "zelto: warning: " + std::string(sentence) + "\n");
}

TEST(NotesOfContent, AreMembersOfTheJSONDocument) {
    const ZeltoProgram zelto;
    const auto mail = zelto.home.write("mail.eml", mailOfManyElements());
    for (const ZeltoProgram::Arguments& arguments :
         {ZeltoProgram::Arguments{"export", mail, "--to", "bear", "--opener", "-", "--json"},
          ZeltoProgram::Arguments{"preview", mail, "--to", "bear", "--json"}}) {
        const auto document = zelto.run(arguments).json();
        const auto* notes = document.find("notes");
        ASSERT_TRUE(notes != nullptr && notes->asArray() != nullptr) << arguments.front();
        JSONObject note;
        note.set("kind", "formattingLeftOut");
        note.set("message", sentence);
        EXPECT_EQ(*notes->asArray(), JSONValue::Array{JSONValue(note)});
    }
}

TEST(NotesOfContent, AMailThatIsReadWholeHasNone) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run(
        {"export", ZeltoProgram::sample("plain-note.eml"), "--to", "bear", "--opener", "-", "--json"});
    EXPECT_EQ(outcome.errorOutput, "");
    EXPECT_EQ(outcome.json().find("notes"), nullptr);
}

} // namespace
} // namespace zelto
