#include <Support/LogCapture.h>
#include <ZeltoCommonLogger/LogLine.h>
#include <ZeltoCommonLogger/SecretRegistry.h>
#include <ZeltoCommonLogger/StandardErrorLog.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace zelto {
namespace {

LogRecord recordWith(std::string message) {
    return {.level = LogLevel::error,
            .message = std::move(message),
            .function = "load(key:)",
            .file = "Store.cpp",
            .line = 7,
            .time = Date()};
}

TEST(LogLine, ShowsFileLineFunctionAndMessage) {
    EXPECT_EQ(logLine(recordWith("it failed")), "Store.cpp:7 load(key:): it failed");
}

TEST(LogLine, ALineEndInAMessageForgesNoLine) {
    const auto line = logLine(recordWith("a\nwith status code: 500\r\n2026-01-01T00:00:00Z error fake"));
    EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos);
    EXPECT_NE(line.find("a\\nwith status code: 500\\r\\n2026"), std::string::npos);
}

TEST(LogLine, TerminalControlsShowAsEscapes) {
    const auto line = logLine(recordWith("\x1b]52;c;aGk=\x07 \x7f \xc2\x9b \xe2\x80\xae"));
    EXPECT_EQ(line, "Store.cpp:7 load(key:): \\u{1B}]52;c;aGk=\\u{7} \\u{7F} \\u{9B} \\u{202E}");
}

TEST(LogLine, AMessageOfTheLimitStaysWhole) {
    const std::string body(logMessageLimit, 'x');
    EXPECT_TRUE(logLine(recordWith(body)).ends_with(": " + body));
}

TEST(LogLine, ALongMessageIsCutAndSaysByHowMuch) {
    const std::string body(logMessageLimit + 10, 'x');
    EXPECT_TRUE(logLine(recordWith(body)).ends_with(std::string(logMessageLimit, 'x') + "… (10 bytes more)"));
}

TEST(LogLine, ACutSplitsNoCharacter) {
    // A family of seven code points, 25 bytes, begins one byte before the limit.
    const std::string family = "👨‍👩‍👧‍👦";
    const std::string start(logMessageLimit - 1, 'x');
    EXPECT_TRUE(logLine(recordWith(start + family)).ends_with("x… (25 bytes more)"));
}

TEST(StandardErrorLog, WritesALineWithTimeAndLevel) {
    testing::internal::CaptureStderr();
    {
        const ClockOverride clock(Date::fromUnixSeconds(1'700'000'000.25));
        const auto subscription = logToStandardError();
        Logger::shared().error("broken\x1b[2J", "run()");
        Logger::shared().warn("odd", "run()");
        Logger::shared().info("done", "run()");
        Logger::shared().trace("detail", "run()");
    }
    Logger::shared().error("after", "run()");
    const auto written = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(written.starts_with("2023-11-14T22:13:20.250Z error LogLineTests.cpp:")) << written;
    EXPECT_NE(written.find(" run(): broken\\u{1B}[2J\n"), std::string::npos) << written;
    EXPECT_NE(written.find("Z warning LogLineTests.cpp:"), std::string::npos) << written;
    EXPECT_NE(written.find("Z info LogLineTests.cpp:"), std::string::npos) << written;
    EXPECT_EQ(std::ranges::count(written, '\n'), 3) << written;
}

TEST(StandardErrorLog, ASecretThatTheCutWouldSplitIsMaskedWhole) {
    testing::internal::CaptureStderr();
    const auto secret = SecretRegistry::shared().add("canary-secret-at-the-cut");
    {
        const auto subscription = logToStandardError();
        Logger::shared().error(std::string(logMessageLimit - 10, 'x') + "canary-secret-at-the-cut", "run()");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("canary"), std::string::npos);
}

} // namespace
} // namespace zelto
