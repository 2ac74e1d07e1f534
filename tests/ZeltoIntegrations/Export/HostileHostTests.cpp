#include <Support/Event.h>
#include <Support/HostMistakes.h>
#include <Support/SchemeExport.h>

#include <gtest/gtest.h>

#include <thread>

namespace zelto {

namespace {

using Error = IntegrationExportError;

// 2Do asks for a text and for a link.
class HostileHost : public testing::Test {
  protected:
    SchemeExport<TwoDoExporter> one;

    void throwWhenAsked(const std::string& operation) {
        one.data->onAsked = [operation](const std::string& asked) {
            if (asked == operation) {
                throw std::runtime_error("the host threw");
            }
        };
    }

    // Exports through an exporter that nothing but the export keeps; gives when it was released.
    bool isReleasedAfterExport(Completion<void, Error> completion) {
        auto exporter = one.exporterFor(one.data);
        const std::weak_ptr<TwoDoExporter> weakly = exporter;
        exporter->export_(one.configuration, std::move(completion));
        exporter.reset();
        return isGone(weakly);
    }
};

void throwAnything() {
    throw std::runtime_error("the host threw");
}

} // namespace

TEST_F(HostileHost, ATextThatThrowsCountsAsNoneAndEndsTheExportOnce) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    throwWhenAsked("messagePlainText");
    EXPECT_EQ(one.run().error(), Error::createBodyError);
    EXPECT_TRUE(contained.haveCome(1));
    EXPECT_TRUE(one.interactor->openedURLs().empty());
    EXPECT_EQ(one.interactor->exportEvents().size(), 1u);
}

TEST_F(HostileHost, ALinkThatThrowsCountsAsNone) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    throwWhenAsked("link");
    EXPECT_TRUE(one.run());
    EXPECT_TRUE(contained.haveCome(1));
    EXPECT_EQ(one.interactor->openedURLs().size(), 1u);
}

TEST_F(HostileHost, ATitleThatThrowsEndsTheExportOnce) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.configuration.userTitle = std::nullopt;
    one.data->onTitle = throwAnything;
    EXPECT_EQ(one.run().error(), Error::internalError);
    EXPECT_EQ(one.interactor->exportEvents().at(0).exportError, "internalError");
    EXPECT_TRUE(contained.haveCome(2));
}

TEST_F(HostileHost, AnOpenerThatThrowsEndsTheExportOnce) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.interactor->openURL = [](const URL&, const Callback<bool>&) { throwAnything(); };
    EXPECT_EQ(one.run().error(), Error::xUrlCallbackError);
    EXPECT_TRUE(contained.haveCome(1));
    EXPECT_EQ(one.interactor->exportEvents().size(), 1u);
}

TEST_F(HostileHost, AnOpenerThatThrowsAfterItsCallbackDoesNotChangeTheResult) {
    const ContainedExceptions contained;
    one.interactor->openURL = [](const URL&, Callback<bool> done) {
        done(true);
        throwAnything();
    };
    EXPECT_TRUE(one.run());
    EXPECT_TRUE(contained.haveCome(1));
    EXPECT_EQ(one.interactor->exportEvents().size(), 1u);
}

TEST_F(HostileHost, AProgressHandlerThatThrowsDoesNotStopTheExport) {
    const ContainedExceptions contained;
    one.onStarted = [](ExportProgress& progress) {
        progress.setProgressHandler([](float) { throwAnything(); });
    };
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.progress->completedUnitCount(), 3);
    EXPECT_EQ(contained.count(), 3);
}

TEST_F(HostileHost, AnalyticsStorageAndTitleThatThrowAfterTheExportDoNotKeepItsResultBack) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.interactor->onExportEvent = throwAnything;
    EXPECT_TRUE(one.run());
    one.storage->onChange = throwAnything;
    EXPECT_TRUE(one.run());
    one.data->onTitle = throwAnything;
    EXPECT_TRUE(one.run());
    EXPECT_TRUE(contained.haveCome(6));
    EXPECT_EQ(one.interactor->exportEvents().size(), 3u);
}

TEST_F(HostileHost, ACompletionThatThrowsIsContainedAndTheExporterReleased) {
    const ContainedExceptions contained;
    EXPECT_TRUE(isReleasedAfterExport([](const ExporterResult<void>&) { throwAnything(); }));
    EXPECT_EQ(contained.count(), 1);
}

TEST_F(HostileHost, ACallbackThatIsDroppedUncalledEndsTheExportAndReleasesTheExporter) {
    const DroppedCallbacks dropped;
    one.interactor->openURL = [](const URL&, const Callback<bool>&) {};
    Completed<ExporterResult<void>> completed;
    EXPECT_TRUE(isReleasedAfterExport(completed.callback<Completion<void, Error>>()));
    EXPECT_EQ(completed.value().error(), Error::xUrlCallbackError);
    EXPECT_EQ(dropped.count(), 1);
}

TEST_F(HostileHost, ACallbackThatComesLateOnAnotherThreadEndsTheExport) {
    Callback<bool> done;
    Event isAsked;
    one.interactor->openURL = [&](const URL&, Callback<bool> given) {
        done = std::move(given);
        isAsked.set();
    };
    Completed<ExporterResult<void>> completed;
    auto exporter = one.exporterFor(one.data);
    const std::weak_ptr<TwoDoExporter> weakly = exporter;
    exporter->export_(one.configuration, completed.callback<Completion<void, Error>>());
    exporter.reset();
    isAsked.wait();
    EXPECT_FALSE(completed.hasCome());
    EXPECT_FALSE(weakly.expired());
    std::thread([&] { done(true); }).join();
    EXPECT_TRUE(completed.value());
    EXPECT_TRUE(isGone(weakly));
}

TEST_F(HostileHost, AnExportCanBeStartedFromTheCompletionOfAnother) {
    Completed<ExporterResult<void>> second;
    const auto exporter = one.exporter();
    exporter->export_(one.configuration, [&, exporter](const ExporterResult<void>& first) {
        EXPECT_TRUE(first);
        exporter->export_(one.configuration, second.callback<Completion<void, Error>>());
    });
    EXPECT_TRUE(second.value());
    EXPECT_EQ(one.interactor->openedURLs().size(), 2u);
}

} // namespace zelto
