#pragma once

#include <Support/CancelledExport.h>
#include <Support/Gate.h>
#include <Support/KeptCallback.h>
#include <Support/MemoryKeyChain.h>

#include <Platform/Operations/ThreadPool.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace zelto {

// A key chain that is open once the gate is.
class SlowKeyChain final : public LVXKeyChainStore {
  public:
    Result<std::optional<Data>, KeyChainError> read(const std::string&) override {
        gate.pass();
        return dataOf(R"({"accessToken":"token"})");
    }

    Result<void, KeyChainError> write(const std::string&, const Data&) override { return {}; }

    Result<bool, KeyChainError> erase(const std::string&) override { return true; }

    Gate gate;
};

inline std::ptrdiff_t entriesIn(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

// Makes the pool start all the threads that it keeps.
inline void startLastingPoolThreads() {
    const auto count = static_cast<std::ptrdiff_t>(std::max(4U, std::thread::hardware_concurrency()));
    const auto all = std::make_shared<std::latch>(count);
    for (std::ptrdiff_t index = 0; index < count; ++index) {
        ThreadPool::shared().post([all] { all->arrive_and_wait(); });
    }
    all->wait();
}

// What cancelling an export comes to, for an ExportScenario.
template <ExportScenario Scenario> class ExportCancellation : public testing::Test {
  protected:
    using Texts = std::vector<std::string>;
    using Done = typename Scenario::Export::Done;
    using Outcome = Completed<ExporterResult<void>>;

    // How many requests there are before the first call of the operation.
    static std::ptrdiff_t requestsBefore(const std::string& operation) {
        const auto events = Scenario::events();
        return std::count(events.begin(), std::ranges::find(events, operation), "request");
    }

    static ExporterResult<void> canceled() { return failure(IntegrationExportError::canceled); }

    // The export waits for the gate when it asks the host first.
    static std::shared_ptr<Gate> holdStart(Prepared<Scenario>& one) {
        auto gate = std::make_shared<Gate>();
        one.data->onAsked = [gate](const std::string&) { gate->pass(); };
        return gate;
    }

    static std::shared_ptr<ExportProgress> start(Prepared<Scenario>& one, Outcome& outcome) {
        return one.start(outcome.template callback<Done>());
    }

    // Cancels an export that waits for the operation, which then ends in vain.
    void expectNoWaitFor(const std::string& operation, Prepared<Scenario>& one,
                         const std::function<void()>& wait, const std::function<void()>& end) {
        const auto linesBefore = std::ssize(service.lines());
        const auto madeBefore = service.made().size();
        const auto expectedLines = linesBefore + requestsBefore(operation);
        std::atomic<int> completions = 0;
        Outcome outcome;
        const auto progress =
            one.start([&, callback = outcome.template callback<Done>()](auto result) mutable {
                ++completions;
                callback(result);
            });
        wait();
        progress->cancel();
        EXPECT_EQ(outcome.value(), canceled());
        const auto report = one.exporter()->exportReport();
        EXPECT_EQ(report.made.size(), service.made().size() - madeBefore);
        EXPECT_EQ(report.refused.size(), 0U);

        end();
        EXPECT_TRUE(one.isGoneOnceReleased());
        EXPECT_EQ(completions, 1);
        EXPECT_EQ(std::ssize(service.lines()), expectedLines);
    }

    typename Scenario::Server service;
};

TYPED_TEST_SUITE_P(ExportCancellation);

TYPED_TEST_P(ExportCancellation, HasTheseEvents) {
    const auto whole = CancelledExport<TypeParam>(this->service).run();
    EXPECT_TRUE(*whole.result);
    EXPECT_EQ(whole.events, TypeParam::events());
    EXPECT_EQ(whole.made, TypeParam::made());
}

TYPED_TEST_P(ExportCancellation, AtEachEventEndsOnceAndSendsNothingMore) {
    expectOneEndAtEachCancellation<TypeParam>();
}

TYPED_TEST_P(ExportCancellation, LeavesNoThreadAndNoSocket) {
    const auto count = TypeParam::events().size();
    const auto cancelAtEach = [&] {
        for (std::size_t at = 0; at < count; ++at) {
            CancelledExport<TypeParam>(this->service, at).run();
        }
    };
    cancelAtEach(); // what is made once and stays is there after that
    startLastingPoolThreads();
    const auto descriptors = entriesIn("/proc/self/fd");
    const auto threads = entriesIn("/proc/self/task");
    cancelAtEach();
    EXPECT_TRUE(eventually([&] { return entriesIn("/proc/self/fd") <= descriptors; }))
        << entriesIn("/proc/self/fd") << " of " << descriptors;
    EXPECT_TRUE(eventually([&] { return entriesIn("/proc/self/task") <= threads; }))
        << entriesIn("/proc/self/task") << " of " << threads;
}

TYPED_TEST_P(ExportCancellation, CutsOffARequestThatGetsNoResponse) {
    const auto whole = CancelledExport<TypeParam>(this->service).run();
    Prepared<TypeParam> one;
    const auto gate = std::make_shared<Gate>();
    this->service.onRequest = [gate](const auto&) {
        gate->pass();
        return std::nullopt;
    };
    typename TestFixture::Outcome outcome;
    const auto progress = this->start(one, outcome);
    gate->waitUntilReached();
    progress->cancel();
    EXPECT_EQ(outcome.value(), this->canceled());
    auto lines = whole.lines;
    lines.push_back(whole.lines.front());
    EXPECT_EQ(this->service.lines(), lines);
    gate->open();
    EXPECT_TRUE(one.isGoneOnceReleased());
}

TYPED_TEST_P(ExportCancellation, DoesNotWaitForAHostThatHasNotCalledBack) {
    for (const auto& operation : hostOperations<TypeParam>()) {
        SCOPED_TRACE(operation);
        Prepared<TypeParam> one;
        const auto kept = KeptCallback::of(operation, *one.data, *one.interactor);
        // A late callback changes nothing.
        this->expectNoWaitFor(
            operation, one, [&] { kept->wait(); }, [&] { kept->call(); });
    }
}

TYPED_TEST_P(ExportCancellation, DoesNotWaitForAHostThatHasNotReturned) {
    for (const auto& operation : hostOperations<TypeParam>()) {
        SCOPED_TRACE(operation);
        Prepared<TypeParam> one;
        const auto gate = std::make_shared<Gate>();
        one.data->onAsked = [gate, operation](const std::string& asked) {
            if (asked == operation) {
                gate->pass();
            }
        };
        one.interactor->makePdf = [gate, operation, makePdf = one.interactor->makePdf](
                                      const auto& html, const auto& path, Callback<bool> done) {
            if (operation == "convert") {
                gate->pass();
            }
            makePdf(html, path, std::move(done));
        };
        this->expectNoWaitFor(
            operation, one, [&] { gate->waitUntilReached(); }, [&] { gate->open(); });
    }
}

TYPED_TEST_P(ExportCancellation, DoesNotWaitForTheKeyChainAndSendsNothingOnceItIsOpen) {
    Prepared<TypeParam> one;
    const auto keyChain = std::make_shared<SlowKeyChain>();
    const InstalledKeyChain installed(keyChain);
    typename TestFixture::Outcome outcome;
    const auto progress = this->start(one, outcome);
    keyChain->gate.waitUntilReached();
    progress->cancel();
    EXPECT_EQ(outcome.value(), this->canceled());
    keyChain->gate.open();
    EXPECT_TRUE(one.isGoneOnceReleased());
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
}

TYPED_TEST_P(ExportCancellation, LeavesTheLoadingThatWaitsBehindItAlone) {
    Prepared<TypeParam> one;
    using Loaded = Result<void, IntegrationLoadError>;
    typename TestFixture::Outcome outcome;
    Completed<Loaded> loaded;
    const auto gate = this->holdStart(one);
    const auto progress = this->start(one, outcome);
    one.exporter()->fetchServiceData(loaded.template callback<Completion<void, IntegrationLoadError>>());
    progress->cancel();
    EXPECT_EQ(outcome.value(), this->canceled());
    gate->open();
    EXPECT_EQ(loaded.value(), Loaded());
    EXPECT_EQ(this->service.made(), std::vector<std::string>{});
    EXPECT_TRUE(one.isGoneOnceReleased());
}

TYPED_TEST_P(ExportCancellation, LeavesTheExportThatWaitsBehindItAlone) {
    Prepared<TypeParam> one;
    typename TestFixture::Outcome first;
    typename TestFixture::Outcome second;
    const auto gate = this->holdStart(one);
    const auto progress = this->start(one, first);
    this->start(one, second);
    progress->cancel();
    EXPECT_EQ(first.value(), this->canceled());
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
    gate->open();
    EXPECT_EQ(second.value(), ExporterResult<void>());
    EXPECT_EQ(this->service.made(), TypeParam::made());
    EXPECT_TRUE(one.isGoneOnceReleased());
}

TYPED_TEST_P(ExportCancellation, LeavesAnExportAloneThatIsBegunBehindIt) {
    for (int round = 0; round < 50; ++round) {
        Prepared<TypeParam> one;
        const auto gate = this->holdStart(one);
        typename TestFixture::Outcome first;
        typename TestFixture::Outcome second;
        this->start(one, first)->cancel();
        this->start(one, second);
        gate->open();
        ASSERT_EQ(first.value(), this->canceled());
        ASSERT_EQ(second.value(), ExporterResult<void>());
        EXPECT_TRUE(one.isGoneOnceReleased());
    }
}

TYPED_TEST_P(ExportCancellation, LeavesLoadingAndExportingOfTheSameExporterPossible) {
    Prepared<TypeParam> one;
    typename TestFixture::Outcome outcome;
    const auto gate = this->holdStart(one);
    this->start(one, outcome)->cancel();
    gate->open();
    EXPECT_EQ(outcome.value(), this->canceled());
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
    EXPECT_TRUE(one.fetch());
    EXPECT_TRUE(one.run());
    EXPECT_EQ(this->service.made(), TypeParam::made());
    EXPECT_TRUE(one.isGoneOnceReleased());
}

REGISTER_TYPED_TEST_SUITE_P(ExportCancellation, HasTheseEvents, AtEachEventEndsOnceAndSendsNothingMore,
                            LeavesNoThreadAndNoSocket, CutsOffARequestThatGetsNoResponse,
                            DoesNotWaitForAHostThatHasNotCalledBack, DoesNotWaitForAHostThatHasNotReturned,
                            DoesNotWaitForTheKeyChainAndSendsNothingOnceItIsOpen,
                            LeavesTheLoadingThatWaitsBehindItAlone, LeavesTheExportThatWaitsBehindItAlone,
                            LeavesAnExportAloneThatIsBegunBehindIt,
                            LeavesLoadingAndExportingOfTheSameExporterPossible);

} // namespace zelto
