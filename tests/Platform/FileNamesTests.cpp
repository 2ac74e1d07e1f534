#include <Platform/FileNames.h>
#include <Platform/Text.h>

#include <gtest/gtest.h>

using namespace zelto;

namespace {

const std::string eAcute = "\u00e9";

std::string repeated(const std::string& piece, std::size_t count) {
    std::string text;
    for (; count > 0; --count) {
        text += piece;
    }
    return text;
}

} // namespace

TEST(CleanedFileName, LeavesAGoodNameAlone) {
    for (const std::string name :
         {"report.pdf", "a", "\u041e\u0442\u0447\u0451\u0442 2024.docx", "a b (1).tar.gz",
          "\U0001F468\u200D\U0001F469.png", "caf\u00e9 & co, 50%.txt", "no extension", "Constitution.txt",
          "console", "common.c", "a-b_c~d", "'quoted'"}) {
        EXPECT_EQ(cleanedFileName(name), name);
    }
}

TEST(CleanedFileName, IsTheLastComponentAlone) {
    EXPECT_EQ(cleanedFileName("../../x"), "x");
    EXPECT_EQ(cleanedFileName("/etc/passwd"), "passwd");
    EXPECT_EQ(cleanedFileName("..\\..\\x.exe"), "x.exe");
    EXPECT_EQ(cleanedFileName("C:\\Users\\me\\a.doc"), "a.doc");
    EXPECT_EQ(cleanedFileName("a/b\\c"), "c");
}

TEST(CleanedFileName, IsTheFallbackIfNothingIsLeft) {
    for (const std::string name : {"", ".", "..", "...", "/", "a/", "\\", " ", " . . ", "\t\n", "\u202E",
                                   "../..", "\u200B\uFEFF", "\u3000"}) {
        EXPECT_EQ(cleanedFileName(name), "unnamed") << testing::PrintToString(name);
        EXPECT_EQ(cleanedFileName(name, "attachment.bin"), "attachment.bin");
    }
}

TEST(CleanedFileName, IsNeverHidden) {
    EXPECT_EQ(cleanedFileName(".bashrc"), "bashrc");
    EXPECT_EQ(cleanedFileName("..hidden.txt"), "hidden.txt");
    EXPECT_EQ(cleanedFileName(" .profile"), "profile");
    EXPECT_EQ(cleanedFileName("\u202E.profile"), "profile");
}

TEST(CleanedFileName, HasNoControlCharactersAndNoMarksOfDirection) {
    EXPECT_EQ(cleanedFileName(std::string("a\0b.txt", 7)), "ab.txt");
    EXPECT_EQ(cleanedFileName("a\r\nb\x1b[31m\x7f.txt"), "ab[31m.txt");
    EXPECT_EQ(cleanedFileName("invoice\u202Egpj.exe"), "invoicegpj.exe");
    EXPECT_EQ(cleanedFileName("a\u2066b\u2069c\u200Ed\u200Be\uFEFFf\u0085g\u2028h\u00ADi"), "abcdefghi");
}

TEST(CleanedFileName, HasNoCharactersThatWindowsRefuses) {
    EXPECT_EQ(cleanedFileName("a<b>c:d\"e|f?g*h.txt"), "a_b_c_d_e_f_g_h.txt");
    EXPECT_EQ(cleanedFileName("name.txt. . "), "name.txt");
    EXPECT_EQ(cleanedFileName("file.txt:stream"), "file.txt_stream");
}

TEST(CleanedFileName, AvoidsTheNamesThatWindowsReserves) {
    for (const std::string name :
         {"CON", "con", "PRN", "AUX", "NUL", "COM1", "COM9", "LPT1", "lpt9", "COM0", "COM\u00B9", "CONIN$",
          "CONOUT$", "Nul.txt", "con.tar.gz", "com1.log", "CON .txt"}) {
        EXPECT_EQ(cleanedFileName(name), "_" + name);
    }
    for (const std::string name : {"CONTRACT", "COM10", "LPT", "COM", "nullable.txt", "xCON"}) {
        EXPECT_EQ(cleanedFileName(name), name);
    }
}

TEST(CleanedFileName, IsNeverAnOption) {
    EXPECT_EQ(cleanedFileName("-rf"), "_rf");
    EXPECT_EQ(cleanedFileName(" -rf"), "_rf");
    EXPECT_EQ(cleanedFileName(".-rf"), "_rf");
}

TEST(CleanedFileName, RepairsWhatIsNotUTF8) {
    EXPECT_EQ(cleanedFileName("a\xff.txt"), "a\uFFFD.txt");
    EXPECT_EQ(cleanedFileName("a\x80/\xe2\x82"), "\uFFFD");
}

TEST(CleanedFileName, IsCutBeforeItsExtension) {
    EXPECT_EQ(cleanedFileName(std::string(300, 'a') + ".pdf"), std::string(236, 'a') + ".pdf");
    EXPECT_EQ(cleanedFileName(repeated(eAcute, 300) + ".tar"), repeated(eAcute, 118) + ".tar");
    EXPECT_EQ(cleanedFileName("a." + std::string(300, 'b')), "a." + std::string(238, 'b'));
    EXPECT_LE(cleanedFileName(std::string(10'000, ' ') + "x" + std::string(10'000, ' ') + "y.txt").size(),
              240u);
    EXPECT_EQ(cleanedFileName(std::string(239, 'a') + " b.c"), std::string(238, 'a') + ".c");
}

TEST(CleanedFileName, StaysAsItIsWhenCleanedAgain) {
    for (const std::string name :
         {"../../x", " .-.a", "CON", "...", "a\xff\u202E.b ", "-.-", "<", ". CON", "._con"}) {
        const auto once = cleanedFileName(name);
        EXPECT_EQ(cleanedFileName(once), once) << name;
    }
}

TEST(FileNameCutTo, KeepsANameThatFits) {
    EXPECT_EQ(fileNameCutTo("abc.txt", 7), "abc.txt");
    EXPECT_EQ(fileNameCutTo("", 0), "");
}

TEST(FileNameCutTo, TakesWholeCharactersAwayBeforeTheExtension) {
    EXPECT_EQ(fileNameCutTo("abcdefg.txt", 8), "abcd.txt");
    EXPECT_EQ(fileNameCutTo("ab\u00e9.txt", 7), "ab.txt");
    EXPECT_EQ(fileNameCutTo("abe\u0301.txt", 8), "ab.txt");
    EXPECT_EQ(fileNameCutTo("abcdefgh", 5), "abcde");
    EXPECT_EQ(fileNameCutTo(".bashrc-is-long", 7), ".bashrc");
    EXPECT_EQ(fileNameCutTo("abcdef.extension", 12), "ab.extension");
    EXPECT_EQ(fileNameCutTo("abcdef.extension", 10), "abcdef.ext");
    EXPECT_EQ(fileNameCutTo("\u00e9bc.txt", 5), "\u00e9bc.");
    EXPECT_EQ(fileNameCutTo(std::string(300, '\xff') + ".txt", 255), std::string(251, '\xff') + ".txt");
}

TEST(NumberedFileName, PutsTheNumberBeforeTheExtension) {
    EXPECT_EQ(numberedFileName("report.pdf", 1), "report (1).pdf");
    EXPECT_EQ(numberedFileName("report.pdf.part", 12), "report.pdf (12).part");
    EXPECT_EQ(numberedFileName("report", 2), "report (2)");
    EXPECT_EQ(numberedFileName(".bashrc", 1), ".bashrc (1)");
}

TEST(NumberedFileName, FitsWhatFileSystemsAllow) {
    const std::string longest(251, 'a');
    EXPECT_EQ(numberedFileName(longest + ".pdf", 12), longest.substr(0, 246) + " (12).pdf");
    EXPECT_EQ(numberedFileName(std::string(255, 'a'), 1), longest + " (1)");
}
