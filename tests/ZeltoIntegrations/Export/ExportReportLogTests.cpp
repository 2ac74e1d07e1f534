#include <ZeltoIntegrations/Export/ExportReportLog.h>

#include <gtest/gtest.h>

#include <thread>

namespace zelto {

namespace {

using Made = ExportReport::Made;
using Refused = ExportReport::Refused;
using Error = ServiceClientError;

} // namespace

TEST(ExportReportLog, ARequestUnderWayIsNotTold) {
    ExportReportLog log;
    EXPECT_EQ(log.report(), ExportReport());
    log.begin("card", "a");
    EXPECT_EQ(log.report(), ExportReport());
}

TEST(ExportReportLog, TellsWhatWasMadeAndRefusedInTheOrderOfTheRequests) {
    ExportReportLog log;
    const auto first = log.begin("card", "a");
    const auto second = log.begin("file", "b");
    const auto third = log.begin("file", "c");
    const auto fourth = log.begin("file", "d");
    log.refused(fourth, Error::forbidden);
    log.made(third, std::nullopt);
    log.refused(second, Error::itemNotFound);
    log.made(first, "1");
    EXPECT_EQ(log.report(), (ExportReport{{Made{"card", "a", "1"}, Made{"file", "c", std::nullopt}},
                                          {Refused{"file", "b", Error::itemNotFound},
                                           Refused{"file", "d", Error::forbidden}}}));
}

TEST(ExportReportLog, ARequestWithoutAnEndIsRefusedOnceTheRunHasEnded) {
    ExportReportLog log;
    log.made(log.begin("card", "a"), "1");
    log.refused(log.begin("file", "b"), Error::forbidden);
    log.begin("file", "c");
    log.close();
    EXPECT_EQ(log.report(), (ExportReport{{Made{"card", "a", "1"}},
                                          {Refused{"file", "b", Error::forbidden},
                                           Refused{"file", "c", Error::connectionError}}}));
}

TEST(ExportReportLog, AnEndThatComesAfterTheRunIsTaken) {
    ExportReportLog log;
    const auto place = log.begin("card", "a");
    log.close();
    log.made(place, "1");
    EXPECT_EQ(log.report(), (ExportReport{{Made{"card", "a", "1"}}, {}}));
}

TEST(ExportReportLog, WhatWasRefusedByARequestThatMakesNothingWasNotSent) {
    ExportReportLog log;
    log.note({.words = "not there"});
    log.refusedUnsent("file", "a", Error::apiCallError);
    log.refusedUnsent("file", "b", Error::connectionError);
    log.close();
    EXPECT_EQ(
        log.report(),
        (ExportReport{
            {},
            {Refused{.kind = "file", .name = "a", .reason = Error::apiCallError, .words = "not there"},
             Refused{
                 .kind = "file", .name = "b", .reason = Error::connectionError, .nothingWasSent = true}}}));
}

TEST(ExportReportLog, WordsOfTheServiceGoToTheRefusalBehindThem) {
    ExportReportLog log;
    const auto first = log.begin("card", "a");
    log.note({.words = "no such list", .nothingWasSent = false});
    log.refused(first, Error::apiCallError);
    const auto second = log.begin("file", "b");
    log.note({.words = "", .nothingWasSent = true});
    log.refused(second, Error::connectionError);
    log.refused(log.begin("file", "c"), Error::forbidden);
    EXPECT_EQ(log.report(), (ExportReport{{},
                                          {Refused{"card", "a", Error::apiCallError, "no such list", false},
                                           Refused{"file", "b", Error::connectionError, "", true},
                                           Refused{"file", "c", Error::forbidden}}}));
}

TEST(ExportReportLog, WordsFromBeforeARequestAreNotItsOwn) {
    ExportReportLog log;
    log.note({.words = "of another", .nothingWasSent = true});
    log.refused(log.begin("card", "a"), Error::forbidden);
    EXPECT_EQ(log.report().refused, (std::vector{Refused{"card", "a", Error::forbidden}}));
}

TEST(ExportReportLog, OfWhatIsTooLargeHasTheSizeOfTheFileElseOfTheRequest) {
    ExportReportLog log;
    const auto note = [&] { log.note({.words = "no", .excessiveSize = 700}); };
    const auto file = log.begin("file", "a", 600);
    note();
    log.refused(file, Error::apiCallError);
    const auto task = log.begin("task", "b");
    note();
    log.refused(task, Error::apiCallError);
    log.refused(log.begin("file", "c", 600), Error::forbidden);
    const auto report = log.report();
    ASSERT_EQ(report.refused.size(), 3U);
    EXPECT_EQ(report.refused[0].excessiveSize, 600U);
    EXPECT_EQ(report.refused[1].excessiveSize, 700U);
    EXPECT_EQ(report.refused[2].excessiveSize, std::nullopt);
}

TEST(ExportReportLog, IsUnsureOfWhatWasSentAndGotNoResponseAlone) {
    for (const auto& each : casesOf<Error>()) {
        const Refused sent{.kind = "card", .name = "a", .reason = each.value};
        EXPECT_EQ(sent.isUnsure(), each.value == Error::connectionError) << each.name;
        const Refused unsent{.kind = "card", .name = "a", .reason = each.value, .nothingWasSent = true};
        EXPECT_FALSE(unsent.isUnsure()) << each.name;
    }
}

TEST(ExportReportLog, TakesRequestsOfManyThreads) {
    ExportReportLog log;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&log] {
                for (int round = 0; round < 100; ++round) {
                    log.made(log.begin("file", "a"), "1");
                    log.refused(log.begin("file", "b"), Error::forbidden);
                    log.report();
                }
            });
        }
    }
    const auto report = log.report();
    EXPECT_EQ(report.made, std::vector(800, Made{"file", "a", "1"}));
    EXPECT_EQ(report.refused, std::vector(800, Refused{"file", "b", Error::forbidden}));
}

TEST(ExportReportLog, LeavesOutWhatWasThereAlready) {
    ExportReportLog log;
    const auto place = log.begin("contact", "a");
    log.note({.words = "exists already"});
    log.withdraw(place);
    log.refused(log.begin("contact", "b"), Error::forbidden);
    log.close();
    EXPECT_EQ(log.report(), (ExportReport{{}, {Refused{"contact", "b", Error::forbidden}}}));
}

TEST(ExportReportLog, BlocksThatAreLeftOutBelongToWhatWasMade) {
    ExportReportLog log;
    log.made(log.begin("page", "a", std::nullopt, 7), "1");
    log.refused(log.begin("page", "b", std::nullopt, 8), Error::forbidden);
    EXPECT_EQ(log.report(),
              (ExportReport{{Made{"page", "a", "1", 7}}, {Refused{"page", "b", Error::forbidden}}}));
}

} // namespace zelto
