#include <Support/AsanaExport.h>
#include <Support/CancelledExport.h>
#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using Loaded = LoadResult<AsanaFullData>;
using CancelledAsanaExport = CancelledExport<AsanaExport, AsanaServer>;

void attachOne(AsanaExport& one) {
    one.attach("a.txt");
}

} // namespace

TEST(AsanaExportCancellation, HasTheseEvents) {
    AsanaServer service;
    const auto whole = CancelledAsanaExport(service, attachOne).run();
    EXPECT_TRUE(*whole.result);
    EXPECT_EQ(whole.events, (Texts{"started", "html", "convert", "progress", "request", "progress", "request",
                                   "progress", "fetchAttachment", "request", "progress", "analytics",
                                   "storage", "storage", "completion", "ended"}));
    EXPECT_EQ(whole.made, (Texts{"task", "file Title.pdf", "file a.txt"}));
}

TEST(AsanaExportCancellation, AtEachEventEndsOnceAndSendsNothingMore) {
    expectOneEndAtEachCancellation<AsanaExport, AsanaServer>(attachOne);
}

TEST(AsanaExportCancellation, CutsOffARequestThatGetsNoResponse) {
    AsanaExport one;
    Event release;
    Event received;
    AsanaServer service;
    service.onRequest = [&](const ReceivedRequest&) {
        received.set();
        release.wait();
        return std::nullopt;
    };
    Completed<AsanaExport::VoidResult> completed;
    const auto progress = one.start(completed.callback<AsanaExport::Done>());
    received.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(service.made(), Texts{"task"});
    release.set();
}

TEST(AsanaExportCancellation, DoesNotWaitForAHostThatNeverCallsBack) {
    AsanaExport one;
    AsanaServer service;
    Callback<bool> kept;
    Event asked;
    one.interactor->makePdf = [&](const auto&, const auto&, Callback<bool> done) {
        kept = std::move(done);
        asked.set();
    };
    std::atomic<int> completions = 0;
    Completed<AsanaExport::VoidResult> completed;
    const auto progress =
        one.start([&, callback = completed.callback<AsanaExport::Done>()](auto result) mutable {
            ++completions;
            callback(result);
        });
    asked.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(one.exporter()->exportReport(), ExportReport());

    // A late callback changes nothing.
    kept(true);
    const std::weak_ptr<AsanaExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(isGone(exporter));
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST(AsanaExportCancellation, LeavesTheLoadingThatWaitsBehindItAlone) {
    AsanaExport one;
    AsanaServer service;
    Completed<AsanaExport::VoidResult> completed;
    Completed<Loaded> loaded;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    const auto progress = one.start(completed.callback<AsanaExport::Done>());
    one.exporter()->loadData(true, loaded.callback<Callback<Loaded>>());
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    start->set();
    EXPECT_TRUE(loaded.value());
    EXPECT_EQ(service.made(), Texts{});
}

TEST(AsanaExportCancellation, LeavesTheNextExportOfTheSameExporterAlone) {
    AsanaExport one;
    AsanaServer service;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    Completed<ExporterResult<void>> first;
    Completed<ExporterResult<void>> second;
    const auto progress = one.start(first.callback<AsanaExport::Done>());
    one.start(second.callback<AsanaExport::Done>());
    progress->cancel();
    EXPECT_EQ(first.value().error(), Error::canceled);
    EXPECT_EQ(service.lines(), Texts{});
    start->set();
    EXPECT_TRUE(second.value());
    EXPECT_EQ(service.made(), (Texts{"task", "file Title.pdf"}));
}

TEST(AsanaExportCancellation, SparesARefreshThatWasSentAndKeepsItsToken) {
    AsanaExport one;
    one.expireToken();
    Event release;
    Event received;
    AsanaServer service;
    service.onRequest = [&](const ReceivedRequest&) {
        received.set();
        release.wait();
        return std::nullopt;
    };
    Completed<AsanaExport::VoidResult> completed;
    const auto progress = one.start(completed.callback<AsanaExport::Done>());
    received.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    release.set();
    EXPECT_TRUE(eventually([&] {
        auto stored = *one.account.credentials;
        ServiceCredentialsManager::load(stored);
        return stored.accessToken == "fresh";
    }));
    EXPECT_EQ(service.lines(), Texts{"POST /-/oauth_token"});
}

} // namespace zelto
