#include <Support/LogCapture.h>
#include <ZeltoCommonLogger/LoggerClient.h>

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <thread>

namespace zelto {
namespace {

class Talker : private LoggerClient {
  public:
    static void fail() { lvxLogError("it failed", "fail(now:)"); }

    static void wonder() { lvxLogWarn("odd", "wonder()"); }

    static void whisper() { logger().trace("detail", "whisper()"); }
};

TEST(LoggerClient, AnErrorCarriesMessageFunctionFileAndLine) {
    const LogCapture log;
    Talker::fail();
    const auto records = log.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, LogLevel::error);
    EXPECT_EQ(records[0].message, "it failed");
    EXPECT_EQ(records[0].function, "fail(now:)");
    EXPECT_EQ(records[0].file, "LoggerTests.cpp");
    EXPECT_EQ(records[0].client(), "LoggerTests");
    EXPECT_GT(records[0].line, 10u);
}

TEST(LoggerClient, AWarningHasItsOwnLevel) {
    const LogCapture log;
    Talker::wonder();
    EXPECT_EQ(log.messages(LogLevel::warn), std::vector<std::string>{"odd"});
    EXPECT_TRUE(log.messages(LogLevel::error).empty());
}

TEST(Logger, ARecordBearsTheTimeOfTheClock) {
    const ClockOverride clock(Date::fromReferenceSeconds(5));
    const LogCapture log;
    Talker::fail();
    EXPECT_EQ(log.records().at(0).time, Date::fromReferenceSeconds(5));
}

TEST(Logger, NobodyListeningMeansNothingIsEnabled) {
    EXPECT_FALSE(Logger::shared().isEnabled(LogLevel::error));
}

TEST(Logger, TheTraceIsOffUnlessAskedFor) {
    int calls = 0;
    {
        const LogSubscription subscription([&](const LogRecord&) { ++calls; });
        EXPECT_FALSE(Logger::shared().isEnabled(LogLevel::trace));
        EXPECT_TRUE(Logger::shared().isEnabled(LogLevel::info));
        Talker::whisper();
    }
    EXPECT_EQ(calls, 0);
    const LogSubscription subscription([&](const LogRecord&) { ++calls; }, LogLevel::trace);
    Talker::whisper();
    EXPECT_EQ(calls, 1);
}

TEST(Logger, ASinkIsNotCalledAfterItsSubscriptionEnded) {
    int calls = 0;
    {
        const LogSubscription subscription([&](const LogRecord&) { ++calls; });
        Talker::fail();
    }
    Talker::fail();
    EXPECT_EQ(calls, 1);
}

TEST(Logger, ASubscriptionThatEndsWhileALineIsDeliveredDoesNotGetIt) {
    int calls = 0;
    std::optional<LogSubscription> later;
    const LogSubscription first([&](const LogRecord&) { later.reset(); });
    later.emplace([&](const LogRecord&) { ++calls; });
    Talker::fail();
    EXPECT_EQ(calls, 0);
}

TEST(Logger, EachSinkGetsWhatItsLevelAllows) {
    const LogCapture everything(LogLevel::trace);
    const LogCapture errors(LogLevel::error);
    Talker::whisper();
    Talker::wonder();
    Talker::fail();
    EXPECT_EQ(everything.records().size(), 3u);
    EXPECT_EQ(errors.messages(), std::vector<std::string>{"it failed"});
}

TEST(Logger, WhatASinkLogsItselfIsDropped) {
    int calls = 0;
    const LogSubscription subscription([&](const LogRecord&) {
        ++calls;
        Talker::fail();
    });
    Talker::fail();
    EXPECT_EQ(calls, 1);
}

TEST(Logger, ASinkThatThrowsHarmsNobody) {
    const LogSubscription subscription([](const LogRecord&) { throw std::runtime_error("full"); });
    const LogCapture log;
    Talker::fail();
    Talker::fail();
    EXPECT_EQ(log.records().size(), 2u);
}

TEST(Logger, LinesOfManyThreadsAllArrive) {
    const LogCapture log;
    {
        std::vector<std::jthread> threads;
        for (int index = 0; index < 8; ++index) {
            threads.emplace_back([] {
                for (int round = 0; round < 500; ++round) {
                    Talker::fail();
                }
            });
        }
    }
    EXPECT_EQ(log.records().size(), 4000u);
}

TEST(Logger, SubscriptionsComeAndGoWhileOthersLog) {
    std::jthread talker([](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            Talker::fail();
        }
    });
    for (int round = 0; round < 2000; ++round) {
        int calls = 0;
        const LogSubscription subscription([&](const LogRecord&) { ++calls; });
    }
}

} // namespace
} // namespace zelto
