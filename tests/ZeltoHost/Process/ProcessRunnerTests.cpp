#include <ZeltoHost/Process/ProcessRunner.h>

#include "Support/HostMistakes.h"

#include <Support/Completed.h>
#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace zelto {

namespace {

ProcessRequest shell(const std::string& script) {
    return {.arguments = {"/bin/sh", "-c", script}};
}

} // namespace

TEST(ProcessRunner, TheCompletionComesWithTheResult) {
    ProcessRunner runner;
    Completed<ProcessResult> ended;
    runner.start(shell("echo out; exit 4"), ended.callback<Callback<ProcessResult>>());
    const auto result = ended.value();
    EXPECT_EQ(result.end, ProcessEnd(ProcessExited{4}));
    EXPECT_EQ(result.output, "out\n");
}

TEST(ProcessRunner, ARequestThatCannotStartCompletesToo) {
    Completed<ProcessResult> ended;
    ProcessRunner runner;
    runner.start({.arguments = {"relative"}}, ended.callback<Callback<ProcessResult>>());
    EXPECT_TRUE(std::holds_alternative<ProcessFailedToStart>(ended.value().end));
}

TEST(ProcessRunner, ProgramsDoNotWaitForEachOther) {
    Event done;
    ProcessRunner runner;
    runner.start(shell("sleep 1000"), [](const ProcessResult&) {});
    runner.start(shell("true"), [&](const ProcessResult&) { done.set(); });
    done.wait();
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
    Event done;
    auto runner = std::make_shared<ProcessRunner>();
    auto& running = *runner;
    running.start(shell("true"), [owner = std::move(runner), &done](const ProcessResult&) mutable {
        owner.reset();
        done.set();
    });
    done.wait();
}

} // namespace zelto
