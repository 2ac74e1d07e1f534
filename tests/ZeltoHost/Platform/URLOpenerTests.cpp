#include <ZeltoHost/Platform/URLOpener.h>

#include <Support/Completed.h>
#include <Support/Eventually.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <optional>

namespace zelto {

namespace {

using namespace std::chrono_literals;
using Outcome = Result<void, OpenError>;

// A program that writes its arguments, each followed by a NUL, to a file.
class Opener {
  public:
    explicit Opener(const std::string& end = "exit 0")
        : path_(folder_.write("opener", "#!/bin/sh\nprintf '%s\\0' \"$@\" > \"$(dirname \"$0\")/opened\"\n" +
                                            end + "\n")) {
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
    }

    std::string path() const { return path_.string(); }

    std::string opened() const { return TemporaryFolder::read(folder_ / "opened"); }

  private:
    TemporaryFolder folder_;
    std::filesystem::path path_;
};

std::string words(const std::vector<std::string>& arguments) {
    std::string all;
    for (const auto& argument : arguments) {
        all += argument + '\0';
    }
    return all;
}

Outcome open(URLOpener& opener, const std::string& text) {
    const auto url = URL::parse(text);
    if (!url) {
        return failure(OpenError{OpenErrorCode::failed, "test", "no URL: " + text});
    }
    Completed<Outcome> opened;
    opener.open(*url, opened.callback<Completion<void, OpenError>>());
    return opened.value();
}

OpenError errorOf(const Outcome& outcome) {
    return outcome ? OpenError{.subject = "none"} : outcome.error();
}

} // namespace

TEST(URLOpener, TheURLIsTheLastArgumentOfTheCommand) {
    const Opener program;
    URLOpener opener({program.path(), "--new", "a b"});
    EXPECT_TRUE(open(opener, "bear://x-callback-url/create?title=a%26b"));
    EXPECT_EQ(program.opened(), words({"--new", "a b", "bear://x-callback-url/create?title=a%26b"}));
}

TEST(URLOpener, NoShellSeesTheURL) {
    const Opener program;
    URLOpener opener({program.path()});
    for (const std::string text :
         {"things:add?title=$(touch%20x)", "things:add?title=$(touch${IFS}x)", "things:;x&y", "bear:'a'",
          "bear:-rf", "omnifocus:///add?name=!!*()~", "agenda://a?b='c';d&&e"}) {
        if (!URL::parse(text)) {
            continue; // such a URL cannot be created
        }
        EXPECT_TRUE(open(opener, text));
        EXPECT_EQ(program.opened(), words({text}));
    }
}

TEST(URLOpener, EachApplicationsSchemeIsOpened) {
    const Opener program;
    URLOpener opener({program.path()});
    for (const std::string text : {"agenda://a", "bear://a", "omnifocus:///add?name=a", "things:add?title=a",
                                   "twodo://a", "https://example.com/a", "http://localhost:8080/a",
                                   "http://127.0.0.1/a", "http://[::1]:80/", "BEAR://a"}) {
        EXPECT_TRUE(open(opener, text)) << text;
        EXPECT_EQ(program.opened(), words({text}));
    }
}

TEST(URLOpener, OtherSchemesAreRefusedBeforeAnythingRuns) {
    const Opener program;
    URLOpener opener({program.path()});
    for (const std::string text :
         {"file:///etc/passwd", "javascript:alert(1)", "http://example.com/", "http://127.0.0.1.example.com/",
          "http://localhost.example.com/", "ftp://localhost/", "data:text/html,a", "vbscript:a", "smb://a/b",
          "bearx://a", "x-bear://a", "mailto:a@b.c", "mid:a@b"}) {
        const auto error = errorOf(open(opener, text));
        EXPECT_EQ(error.code, OpenErrorCode::schemeNotAllowed) << text;
        EXPECT_EQ(error.subject, text.substr(0, text.find(':')));
    }
    EXPECT_EQ(program.opened(), "");
    EXPECT_EQ(errorOf(open(opener, "file:///secret")).message(), "URLs of the scheme 'file' are not opened");
}

TEST(URLOpener, AStatusOtherThanZeroIsAFailure) {
    const Opener program("exit 4");
    URLOpener opener({program.path()});
    const auto error = errorOf(open(opener, "bear://secret"));
    EXPECT_EQ(error, (OpenError{OpenErrorCode::failed, program.path(), "ended with status 4"}));
    EXPECT_EQ(error.message(), "The opener '" + program.path() +
                                   "' ended with status 4; is the application for this URL installed?");
}

TEST(URLOpener, AnOpenerThatHangsIsStopped) {
    const Opener program("sleep 1000");
    URLOpener opener({program.path()}, 200ms);
    const auto error = errorOf(open(opener, "bear://a"));
    EXPECT_EQ(error.code, OpenErrorCode::timedOut);
    EXPECT_EQ(error.message(), "The opener '" + program.path() + "' did not end in time and was stopped");
}

TEST(URLOpener, AMissingOpenerIsReported) {
    URLOpener opener({"zelto-no-such-opener"});
    const auto error = errorOf(open(opener, "bear://a"));
    EXPECT_EQ(error.code, OpenErrorCode::openerMissing);
    EXPECT_EQ(error.message(), "There is no program 'zelto-no-such-opener' to open URLs with; install it "
                               "(xdg-open is in the package xdg-utils) or name another one");
    URLOpener none(std::vector<std::string>{});
    EXPECT_EQ(errorOf(open(none, "bear://a")).code, OpenErrorCode::openerMissing);
}

TEST(URLOpener, AURLThatFitsIntoAnArgumentIsOpenedAndALongerOneIsReported) {
    const Opener program;
    URLOpener opener({program.path()});
    const std::string start = "bear://a?text=";
    const std::string fits = start + std::string(131'071 - start.size(), 'x');
    EXPECT_TRUE(open(opener, fits));
    EXPECT_EQ(program.opened(), words({fits}));
    auto error = errorOf(open(opener, fits + "x"));
    EXPECT_EQ(error.code, OpenErrorCode::tooLong);
    error = errorOf(open(opener, start + std::string(20'000'000, 'x')));
    EXPECT_EQ(error.code, OpenErrorCode::tooLong);
    EXPECT_EQ(error.message(),
              "The URL is too long to be handed to a program (20000014 bytes); leave out a part "
              "of the text, or have the URL printed");
}

TEST(URLOpener, AnApplicationThatTheOpenerLeavesRunningLivesOn) {
    const TemporaryFolder folder;
    const auto go = folder / "go";
    const auto done = folder / "done";
    const auto program =
        folder.write("opener", "#!/bin/sh\n( while [ ! -e '" + go.string() +
                                   "' ]; do sleep 0.01; done; echo out; echo err >&2; touch '" +
                                   done.string() + "' ) &\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    {
        URLOpener opener({program.string()});
        EXPECT_TRUE(open(opener, "bear://a"));
    }
    folder.write("go", "");
    EXPECT_TRUE(eventually([&] { return std::filesystem::exists(done); }));
}

TEST(URLOpener, AProgramThatIsTheApplicationItselfOutlivesTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The ended process runs this test again, and finds the folder in its environment.
    constexpr auto variable = "ZELTO_TEST_OPENER_FOLDER";
    std::optional<TemporaryFolder> made;
    if (std::getenv(variable) == nullptr) {
        ::setenv(variable, made.emplace().path().c_str(), 1);
    }
    const std::filesystem::path folder(std::getenv(variable));
    const auto started = folder / "started";
    const auto go = folder / "go";
    const auto done = folder / "done";
    EXPECT_EXIT(
        {
            const std::string script = "touch '" + started.string() + "'; while [ -d '" + folder.string() +
                                       "' ]; do if [ -e '" + go.string() + "' ]; then exec touch '" +
                                       done.string() + "'; fi; sleep 0.01; done";
            auto* opener = new URLOpener({"/bin/sh", "-c", script});
            opener->open(*URL::parse("bear://a"), [](const Outcome&) {});
            std::_Exit(eventually([&] { return std::filesystem::exists(started); }) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    ::unsetenv(variable);
    made->write("go", "");
    EXPECT_TRUE(eventually([&] { return std::filesystem::exists(done); }));
}

TEST(URLOpener, ItsEndCancelsWhatStillOpens) {
    std::atomic<int> canceled = 0;
    {
        const Opener program("sleep 1000");
        URLOpener opener({program.path()});
        for (int round = 0; round < 5; ++round) {
            opener.open(*URL::parse("bear://a"), [&](const Outcome& outcome) {
                canceled += errorOf(outcome).code == OpenErrorCode::canceled ? 1 : 0;
            });
        }
    }
    EXPECT_EQ(canceled, 5);
}

} // namespace zelto
