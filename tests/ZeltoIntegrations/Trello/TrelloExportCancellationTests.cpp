#include <Support/CancelledExport.h>
#include <Support/Event.h>
#include <Support/MemoryKeyChain.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <iterator>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using Loaded = LoadResult<TrelloFullData>;

// Tells when it is read, and responds once it is released.
class SlowKeyChain final : public LVXKeyChainStore {
  public:
    Result<std::optional<Data>, KeyChainError> read(const std::string&) override {
        asked.set();
        released.wait();
        return dataOf(R"({"accessToken":"token"})");
    }

    Result<void, KeyChainError> write(const std::string&, const Data&) override { return {}; }

    Result<bool, KeyChainError> erase(const std::string&) override { return true; }

    Event asked;
    Event released;
};

std::ptrdiff_t entriesIn(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

using CancelledTrelloExport = CancelledExport<TrelloExport, TrelloServer>;

void attachOne(TrelloExport& one) {
    one.attach("a.txt");
}

} // namespace

TEST(TrelloExportCancellation, HasTheseEvents) {
    TrelloServer service;
    const auto whole = CancelledTrelloExport(service, attachOne).run();
    EXPECT_TRUE(*whole.result);
    EXPECT_EQ(whole.events,
              (Texts{"started", "link", "messagePlainText", "request", "progress", "html", "convert",
                     "progress", "request", "progress", "fetchAttachment", "progress", "request", "progress",
                     "analytics", "storage", "storage", "completion", "ended"}));
    EXPECT_EQ(whole.made, (Texts{"card", "file Title.pdf", "file a.txt"}));
}

TEST(TrelloExportCancellation, AtEachEventEndsOnceAndSendsNothingMore) {
    expectOneEndAtEachCancellation<TrelloExport, TrelloServer>(attachOne);
}

TEST(TrelloExportCancellation, LeavesNoThreadAndNoSocket) {
    TrelloServer service;
    const auto events = CancelledTrelloExport(service, attachOne).run().events;
    const auto cancelAtEach = [&] {
        for (std::size_t at = 0; at < events.size(); ++at) {
            CancelledTrelloExport(service, attachOne, at).run();
        }
    };
    cancelAtEach(); // by then the pool has all the threads that it takes for this
    const auto descriptors = entriesIn("/proc/self/fd");
    const auto threads = entriesIn("/proc/self/task");
    cancelAtEach();
    EXPECT_TRUE(eventually([&] { return entriesIn("/proc/self/fd") <= descriptors; }))
        << entriesIn("/proc/self/fd") << " of " << descriptors;
    EXPECT_TRUE(eventually([&] { return entriesIn("/proc/self/task") <= threads; }))
        << entriesIn("/proc/self/task") << " of " << threads;
}

TEST(TrelloExportCancellation, DoesNotWaitForTheKeyChainAndSendsNothingOnceItIsOpen) {
    TrelloExport one;
    TrelloServer service;
    const auto keyChain = std::make_shared<SlowKeyChain>();
    const InstalledKeyChain installed(keyChain);
    Completed<ExporterResult<void>> completed;
    const auto progress = one.start(completed.callback<TrelloExport::Done>());
    keyChain->asked.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    keyChain->released.set();
    const std::weak_ptr<TrelloExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(isGone(exporter));
    EXPECT_EQ(service.lines(), Texts{});
}

TEST(TrelloExportCancellation, CutsOffARequestThatGetsNoResponse) {
    TrelloExport one;
    Event release;
    Event received;
    TrelloServer service;
    std::shared_ptr<ExportProgress> progress;
    service.onRequest = [&](const ReceivedRequest&) {
        received.set();
        release.wait();
        return std::nullopt;
    };
    Completed<TrelloExport::VoidResult> completed;
    progress = one.start(completed.callback<TrelloExport::Done>());
    received.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    release.set();
}

TEST(TrelloExportCancellation, DoesNotWaitForAHostThatNeverCallsBack) {
    TrelloExport one;
    TrelloServer service;
    Callback<bool> kept;
    Event asked;
    one.interactor->makePdf = [&](const auto&, const auto&, Callback<bool> done) {
        kept = std::move(done);
        asked.set();
    };
    std::atomic<int> completions = 0;
    Completed<TrelloExport::VoidResult> completed;
    const auto progress =
        one.start([&, callback = completed.callback<TrelloExport::Done>()](auto result) mutable {
            ++completions;
            callback(result);
        });
    asked.wait();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(one.exporter()->exportReport().made.size(), 1U);

    // A late callback changes nothing.
    kept(true);
    const std::weak_ptr<TrelloExporter> exporter = one.exporter();
    one.releaseExporter();
    EXPECT_TRUE(isGone(exporter));
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(service.made(), Texts{"card"});
}

TEST(TrelloExportCancellation, OfAnExportLeavesLoadingAndTheNextExportAlone) {
    TrelloExport one;
    TrelloServer service;
    Completed<TrelloExport::VoidResult> completed;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    const auto progress = one.start(completed.callback<TrelloExport::Done>());
    progress->cancel();
    start->set();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    EXPECT_EQ(service.lines(), Texts{});
    EXPECT_TRUE(one.load(true));
    EXPECT_TRUE(one.run());
}

TEST(TrelloExportCancellation, LeavesAnExportAloneThatIsBegunBehindIt) {
    TrelloServer service;
    for (int round = 0; round < 50; ++round) {
        TrelloExport one;
        one.configuration.saveAs = IntegrationExportContentType::backLink;
        const auto start = std::make_shared<Event>();
        one.data->onAsked = [start](const std::string&) { start->wait(); };
        Completed<ExporterResult<void>> first;
        Completed<ExporterResult<void>> second;
        one.start(first.callback<TrelloExport::Done>())->cancel();
        one.start(second.callback<TrelloExport::Done>());
        start->set();
        ASSERT_EQ(first.value().error(), Error::canceled);
        ASSERT_TRUE(second.value());
    }
}

TEST(TrelloExportCancellation, LeavesTheExportThatWaitsBehindItAlone) {
    TrelloExport one;
    TrelloServer service;
    one.configuration.saveAs = IntegrationExportContentType::backLink;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    Completed<ExporterResult<void>> first;
    Completed<ExporterResult<void>> second;
    const auto progress = one.start(first.callback<TrelloExport::Done>());
    one.start(second.callback<TrelloExport::Done>());
    progress->cancel();
    EXPECT_EQ(first.value().error(), Error::canceled);
    EXPECT_EQ(service.lines(), Texts{});
    start->set();
    EXPECT_TRUE(second.value());
    EXPECT_EQ(service.made(), Texts{"card"});
}

TEST(TrelloExportCancellation, LeavesTheLoadingThatWaitsBehindItAlone) {
    TrelloExport one;
    TrelloServer service;
    Completed<TrelloExport::VoidResult> completed;
    Completed<Loaded> loaded;
    const auto start = std::make_shared<Event>();
    one.data->onAsked = [start](const std::string&) { start->wait(); };
    const auto progress = one.start(completed.callback<TrelloExport::Done>());
    one.exporter()->loadData(true, loaded.callback<Callback<Loaded>>());
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    start->set();
    EXPECT_TRUE(loaded.value());
}

} // namespace zelto
