#pragma once

#include <Support/ExportScenario.h>
#include <Support/Gate.h>
#include <Support/HostFailures.h>
#include <Support/HostMistakes.h>
#include <Support/NetworkExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What an export gets from its host and gives to it, for an ExportScenario that also has
//
//     static constexpr int refusedFormatUnits; // how many units an export has whose type is not supported
//     static std::vector<HostFailure> hostFailures(); // with each operation of the host in `events`
template <ExportScenario Scenario> class ExportHost : public testing::Test {
  protected:
    using Texts = std::vector<std::string>;

    // The only event of an export.
    static ExportEvent eventOf(const Prepared<Scenario>& one) {
        const auto events = one.interactor->exportEvents();
        EXPECT_EQ(events.size(), 1U);
        return events.empty() ? ExportEvent() : events.front();
    }

    static std::set<std::pair<std::string, HostMistake>> mistakesInTable() {
        std::set<std::pair<std::string, HostMistake>> all;
        for (const auto& row : Scenario::hostFailures()) {
            for (const auto mistake : row.mistakes) {
                all.emplace(row.operation, mistake);
            }
        }
        return all;
    }

    void expect(const HostFailure& row, HostMistake mistake) {
        Prepared<Scenario> one;
        MistakenHost(row.operation, mistake).applyTo(*one.data, *one.interactor);
        const auto before = std::ssize(service.made());
        EXPECT_EQ(one.run(), row.result);
        const auto made = service.made();
        EXPECT_EQ(Texts(made.begin() + before, made.end()), row.made);
        EXPECT_EQ(one.exporter()->exportReport().made.size(), row.made.size());
        const auto error = row.result ? std::nullopt : std::optional(std::string(nameOf(row.result.error())));
        EXPECT_EQ(eventOf(one).exportError, error);
        EXPECT_TRUE(one.isGoneOnceReleased());
    }

    // Whether the service has the type for a mail or for a meeting note.
    static bool isSupported(IntegrationExportContentType type, Prepared<Scenario>& one) {
        const auto has = [&](IntegrationExportTarget target) {
            return std::ranges::count(one.exporter()->contentTypes(target).supported, type) != 0;
        };
        return has(IntegrationExportTarget::email) || has(IntegrationExportTarget::meetingNote);
    }

    typename Scenario::Server service;
};

TYPED_TEST_SUITE_P(ExportHost);

TYPED_TEST_P(ExportHost, AnExportThatSucceedsSharesOneConnectionAndCompletesItsProgress) {
    Prepared<TypeParam> one;
    EXPECT_EQ(one.run(), ExporterResult<void>());
    EXPECT_EQ(this->service.made(), TypeParam::made());
    const auto requests = std::ranges::count(TypeParam::events(), "request");
    EXPECT_EQ(std::ssize(this->service.lines()), requests);
    EXPECT_EQ(this->service.server.connectionCount(), 1);
    EXPECT_EQ(one.progress->completedUnitCount(), one.progress->totalUnitCount());
    EXPECT_EQ(this->eventOf(one).exportError, std::nullopt);
}

TYPED_TEST_P(ExportHost, FilesStayWhereTheyWereWritten) {
    Prepared<TypeParam> one;
    ASSERT_TRUE(one.run());
    const auto converted = std::ranges::count(TypeParam::events(), "convert");
    ASSERT_EQ(std::ssize(one.pdfPaths), converted);
    for (const auto* paths : {&one.files, &one.pdfPaths}) {
        for (const auto& path : *paths) {
            EXPECT_TRUE(std::filesystem::exists(path)) << path;
        }
    }
}

TYPED_TEST_P(ExportHost, EachMistakeOfTheHostHasTheResultOfItsStep) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    for (const auto& row : TypeParam::hostFailures()) {
        for (const auto mistake : row.mistakes) {
            SCOPED_TRACE(row.operation + " " + std::to_string(static_cast<int>(mistake)));
            this->expect(row, mistake);
        }
    }
}

TYPED_TEST_P(ExportHost, EachMistakeOfTheHostIsKnown) {
    const auto known = this->mistakesInTable();
    for (const auto& operation : hostOperations<TypeParam>()) {
        for (const auto mistake :
             {HostMistake::hasNoValue, HostMistake::throws, HostMistake::dropsItsCallback}) {
            EXPECT_TRUE(known.contains({operation, mistake}))
                << operation << " " << static_cast<int>(mistake);
        }
    }
}

TYPED_TEST_P(ExportHost, OtherTypesAreRefusedAtOnce) {
    using Outcome = Completed<ExporterResult<void>>;
    for (const auto& type : casesOf<IntegrationExportContentType>()) {
        Prepared<TypeParam> one;
        if (this->isSupported(type.value, one)) {
            continue;
        }
        SCOPED_TRACE(type.name);
        one.contentType() = type.value;
        one.data->onAsked = [](const std::string& asked) { ADD_FAILURE() << asked; };
        Outcome outcome;
        const auto progress = one.start(outcome.template callback<typename TypeParam::Export::Done>());
        EXPECT_TRUE(outcome.hasCome());
        EXPECT_EQ(outcome.value(), failure(IntegrationExportError::unsupportedFormat));
        EXPECT_EQ(progress->totalUnitCount(), TypeParam::refusedFormatUnits);
        EXPECT_EQ(this->eventOf(one).exportError, "unsupportedFormat");
        EXPECT_EQ(this->eventOf(one).exportType, type.value);
    }
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
}

TYPED_TEST_P(ExportHost, WithoutCredentialsNothingIsSent) {
    Prepared<TypeParam> one;
    one.account.credentials = std::nullopt;
    EXPECT_EQ(one.run(), failure(IntegrationExportError::oauthError));
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
    EXPECT_EQ(this->eventOf(one).exportError, "oauthError");
    EXPECT_EQ(one.exporter()->exportReport(), ExportReport());
}

TYPED_TEST_P(ExportHost, AProgressHandlerMayHoldItsExporter) {
    Prepared<TypeParam> one;
    const auto gate = std::make_shared<Gate>();
    one.data->onAsked = [gate](const std::string&) { gate->pass(); };
    Completed<ExporterResult<void>> outcome;
    one.start(outcome.template callback<typename TypeParam::Export::Done>())
        ->setProgressHandler([exporter = one.exporter()](float) {});
    gate->open();
    EXPECT_EQ(outcome.value(), ExporterResult<void>());
    EXPECT_TRUE(one.isGoneOnceReleased());
}

REGISTER_TYPED_TEST_SUITE_P(ExportHost, AnExportThatSucceedsSharesOneConnectionAndCompletesItsProgress,
                            FilesStayWhereTheyWereWritten, EachMistakeOfTheHostHasTheResultOfItsStep,
                            EachMistakeOfTheHostIsKnown, OtherTypesAreRefusedAtOnce,
                            WithoutCredentialsNothingIsSent, AProgressHandlerMayHoldItsExporter);

} // namespace zelto
