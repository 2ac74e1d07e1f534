#include <ZeltoHost/Process/CommandWords.h>

#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace zelto {

namespace {

using Words = std::vector<std::string>;

std::string faultOf(std::string_view command) {
    const auto words = commandWords(command);
    return words ? "none" : std::string(words.error().text);
}

class PathOverride {
  public:
    explicit PathOverride(const std::string& path) : before_(std::getenv("PATH")) {
        ::setenv("PATH", path.c_str(), 1);
    }

    ~PathOverride() { ::setenv("PATH", before_.c_str(), 1); }

  private:
    std::string before_;
};

} // namespace

TEST(CommandWords, BlanksPartThem) {
    EXPECT_EQ(commandWords("open"), Words{"open"});
    EXPECT_EQ(commandWords("  open  -n\t--new \n"), (Words{"open", "-n", "--new"}));
}

TEST(CommandWords, QuotesAndBackslashesKeepThemTogether) {
    EXPECT_EQ(commandWords(R"('a b' "c d" e\ f)"), (Words{"a b", "c d", "e f"}));
    EXPECT_EQ(commandWords(R"(x'a "b'y"c 'd")"), (Words{R"(xa "byc 'd)"}));
    EXPECT_EQ(commandWords(R"("a\"b\\c\d" 'e\f')"), (Words{R"(a"b\c\d)", R"(e\f)"}));
    EXPECT_EQ(commandWords(R"(a "" '')"), (Words{"a", "", ""}));
    EXPECT_EQ(commandWords("a \\\\ \\'"), (Words{"a", "\\", "'"}));
}

TEST(CommandWords, NothingIsExpanded) {
    EXPECT_EQ(commandWords("a $HOME `b` $(c) ~ * ; | & > < #d"),
              (Words{"a", "$HOME", "`b`", "$(c)", "~", "*", ";", "|", "&", ">", "<", "#d"}));
}

TEST(CommandWords, ACommandThatIsNoneIsRefused) {
    EXPECT_EQ(faultOf(""), "names no program");
    EXPECT_EQ(faultOf(" \t"), "names no program");
    EXPECT_EQ(faultOf("'' a"), "names no program");
    EXPECT_EQ(faultOf("a 'b"), "leaves a quote or a backslash open");
    EXPECT_EQ(faultOf("a \"b\\\""), "leaves a quote or a backslash open");
    EXPECT_EQ(faultOf("a b\\"), "leaves a quote or a backslash open");
    EXPECT_EQ(faultOf(std::string_view("a\0b", 3)), "holds a NUL");
}

TEST(CommandWords, AProgramIsSearchedInTheAbsoluteFoldersOfPath) {
    const TemporaryFolder folder;
    const auto program = folder.write("tool", "#!/bin/sh\n");
    folder.write("text", "no program");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    std::filesystem::create_directory(folder / "folder");
    const PathOverride path("relative::.:/no/such/folder:" + folder.path().string());
    EXPECT_EQ(findProgram("tool"), program);
    EXPECT_EQ(findProgram("text"), std::nullopt);
    EXPECT_EQ(findProgram("folder"), std::nullopt);
    EXPECT_EQ(findProgram("missing"), std::nullopt);
    EXPECT_EQ(findProgram(""), std::nullopt);
}

TEST(CommandWords, ANameWithASlashIsAPathMadeAbsolute) {
    EXPECT_EQ(findProgram("/bin/sh"), std::filesystem::path("/bin/sh"));
    EXPECT_EQ(findProgram("/no/such/program"), std::nullopt);
    const TemporaryFolder folder;
    const auto program = folder.write("tool", "#!/bin/sh\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(findProgram("./tool"), std::filesystem::current_path() / "./tool");
    EXPECT_EQ(findProgram("tool"), std::nullopt);
    std::filesystem::current_path(before);
}

} // namespace zelto
