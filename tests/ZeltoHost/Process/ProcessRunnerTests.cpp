#include <ZeltoHost/Process/ProcessRunner.h>

#include "Support/HostMistakes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>

namespace zelto {

namespace {

using namespace std::chrono_literals;

ProcessRequest shell(const std::string& script) {
    return {.arguments = {"/bin/sh", "-c", script}};
}

} // namespace

TEST(ProcessRunner, TheCompletionComesWithTheResult) {
    ProcessRunner runner;
    std::promise<ProcessResult> promise;
    auto future = promise.get_future();
    runner.start(shell("echo out; exit 4"), [&](const ProcessResult& result) { promise.set_value(result); });
    ASSERT_EQ(future.wait_for(60s), std::future_status::ready);
    const auto result = future.get();
    EXPECT_EQ(result.end, ProcessEnd(ProcessExited{4}));
    EXPECT_EQ(result.output, "out\n");
}

TEST(ProcessRunner, ARequestThatCannotStartCompletesToo) {
    std::promise<ProcessResult> promise;
    auto future = promise.get_future();
    ProcessRunner runner;
    runner.start({.arguments = {"relative"}},
                 [&](const ProcessResult& result) { promise.set_value(result); });
    ASSERT_EQ(future.wait_for(60s), std::future_status::ready);
    EXPECT_TRUE(std::holds_alternative<ProcessFailedToStart>(future.get().end));
}

TEST(ProcessRunner, ProgramsDoNotWaitForEachOther) {
    ProcessRunner runner;
    std::promise<void> done;
    auto future = done.get_future();
    runner.start(shell("sleep 1000"), [](const ProcessResult&) {});
    runner.start(shell("true"), [&](const ProcessResult&) { done.set_value(); });
    EXPECT_EQ(future.wait_for(60s), std::future_status::ready);
}

TEST(ProcessRunner, ItsEndStopsProgramsAndWaitsForTheirCompletions) {
    std::atomic<int> stopped = 0;
    {
        ProcessRunner runner;
        for (int each = 0; each < 10; ++each) {
            runner.start(shell("sleep 1000"), [&](const ProcessResult& result) {
                stopped += result.end == ProcessEnd(ProcessStopped{}) ? 1 : 0;
            });
        }
    }
    EXPECT_EQ(stopped, 10);
}

TEST(ProcessRunner, WhatACompletionThrowsIsContained) {
    const ContainedExceptions contained;
    ProcessRunner runner;
    runner.start(shell("true"), [](const ProcessResult&) { throw std::runtime_error("thrown"); });
    EXPECT_TRUE(contained.haveCome(1));
}

TEST(ProcessRunner, ACompletionMayReleaseTheRunner) {
    std::promise<void> done;
    auto future = done.get_future();
    auto runner = std::make_shared<ProcessRunner>();
    auto& running = *runner;
    running.start(shell("true"), [owner = std::move(runner), &done](const ProcessResult&) mutable {
        owner.reset();
        done.set_value();
    });
    EXPECT_EQ(future.wait_for(60s), std::future_status::ready);
}

} // namespace zelto
