#include <Platform/HTTP/TransferEngineInternal.h>

#include <Platform/Operations/ThreadPool.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zelto {
namespace {

// Each takes a file descriptor, and a process commonly has 1024.
constexpr std::size_t maximumRunning = 256;
constexpr std::size_t maximumIdleHandles = 64;
constexpr long maximumConnections = 256;

constexpr std::chrono::seconds exitGracePeriod{10};
constexpr std::chrono::hours maximumWait{1};

// libcurl 7.88 may leave HTTP/2 data unprocessed until its next round although no socket becomes ready.
constexpr std::chrono::milliseconds maximumWaitOverHTTP2{50};

CURLSH* newShare() {
    CURLSH* share = curl_share_init();
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    return share;
}

CURLM* newMulti() {
    setUpCurl();
    CURLM* multi = curl_multi_init();
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, maximumConnections);
    return multi;
}

} // namespace

TransferEngine& TransferEngine::shared() {
    static auto* engine = new TransferEngine;
    return *engine;
}

TransferEngine::TransferEngine()
    : multi_(newMulti()), share_(newShare()), process_(::getpid()),
      wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    ThreadPool::shared(); // created here, since signals are blocked on the I/O thread
    // Registered after libcurl's set-up, and therefore called before the libraries below it are torn down.
    std::atexit(stopThread);
}

// The host's signals are not delivered to this thread, and a broken pipe is an ordinary error.
bool TransferEngine::startThread() {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        thread_ = std::thread([this] { run(); });
        isRunning_ = true;
    } catch (const std::system_error&) {
        // The next request tries again.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return isRunning_;
}

void TransferEngine::stopThread() {
    auto& engine = shared();
    if (::getpid() != engine.process_) {
        return; // a forked child does not have this thread
    }
    std::unique_lock lock(engine.lock_);
    engine.stops_ = true;
    engine.wake();
    const bool hasStopped =
        engine.hasStopped_.wait_for(lock, exitGracePeriod, [&] { return !engine.isRunning_; });
    lock.unlock();
    if (hasStopped && engine.thread_.joinable()) {
        engine.thread_.join(); // also frees what libraries keep per thread
    }
}

void TransferEngine::begin(std::shared_ptr<URLTransfer> transfer) {
    switch (post({Command::Kind::begin, transfer})) {
    case Posted::taken:
        return;
    case Posted::isStopping:
        transfer->end(URLError{URLErrorCode::cancelled, "The request was not sent, since the process ends."});
        return;
    case Posted::withoutThread:
        transfer->end(URLError{URLErrorCode::cannotConnect,
                               "The request was not sent, since the system has no thread for it."});
        return;
    }
}

void TransferEngine::stop(std::shared_ptr<URLTransfer> transfer) {
    post({Command::Kind::stop, std::move(transfer)});
}

void TransferEngine::proceed(std::shared_ptr<URLTransfer> transfer) {
    post({Command::Kind::proceed, std::move(transfer)});
}

TransferEngine::Posted TransferEngine::post(Command command) {
    bool wakes = false;
    {
        const std::lock_guard guard(lock_);
        if (stops_) {
            return Posted::isStopping;
        }
        if (!isRunning_ && !startThread()) {
            return Posted::withoutThread;
        }
        commands_.push_back(std::move(command));
        wakes = std::exchange(isWaiting_, false);
    }
    if (wakes) {
        wake();
    }
    return Posted::taken;
}

// Writing can only fail when the counter is full, and then the thread wakes anyway.
void TransferEngine::wake() {
    ::eventfd_write(wakeUp_.number(), 1);
}

void TransferEngine::run() {
    rounds_.nextCheck = Clock::time_point::max();
    while (true) {
        {
            const std::lock_guard guard(lock_);
            if (stops_) {
                isRunning_ = false;
                hasStopped_.notify_all();
                return;
            }
            isWaiting_ = false;
            taken_.swap(commands_);
        }
        rounds_.now = Clock::now();
        runCommands();
        int running = 0;
        curl_multi_perform(multi_, &running);
        collectFinished();
        endOverdue();
        wait();
    }
}

void TransferEngine::wait() {
    {
        const std::lock_guard guard(lock_);
        if (!commands_.empty() || stops_) {
            return;
        }
        isWaiting_ = true;
    }
    const bool mayBeHTTP2 =
        std::ranges::any_of(running_, [](const auto& exchange) { return exchange->mayBeHTTP2(); });
    const auto maximum = mayBeHTTP2 ? maximumWaitOverHTTP2 : Clock::duration(maximumWait);
    const auto left = std::min<Clock::duration>(rounds_.nextCheck - rounds_.now, maximum);
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    curl_waitfd wakeUp{wakeUp_.number(), CURL_WAIT_POLLIN, 0};
    curl_multi_poll(multi_, &wakeUp, 1, static_cast<int>(std::max<std::int64_t>(milliseconds, 0)), nullptr);
    if (wakeUp.revents != 0) {
        eventfd_t count = 0;
        ::eventfd_read(wakeUp_.number(), &count);
    }
}

void TransferEngine::runCommands() {
    for (auto& [kind, transfer] : taken_) {
        switch (kind) {
        case Command::Kind::begin:
            transfer->session().lane.waiting.push_back(transfer);
            fillLane(transfer->sharedSession());
            break;
        case Command::Kind::stop:
            if (transfer->exchange) {
                stopExchange(*transfer->exchange);
            }
            break;
        case Command::Kind::proceed:
            if (transfer->exchange && !transfer->exchange->proceed()) {
                finish(*transfer->exchange, CURLE_WRITE_ERROR);
            }
            break;
        }
    }
    taken_.clear();
}

void TransferEngine::fillLane(const std::shared_ptr<URLSessionState>& session) {
    auto& lane = session->lane;
    const int maximum = std::max(session->configuration.simultaneousTransfers, 1);
    while (lane.inFlight < maximum && !lane.waiting.empty()) {
        if (running_.size() >= maximumRunning) {
            if (!std::exchange(lane.waitsForOthers, true)) {
                heldLanes_.push_back(session);
            }
            return;
        }
        const auto transfer = std::move(lane.waiting.front());
        lane.waiting.pop_front();
        if (auto plan = transfer->takePlan()) {
            start(transfer, std::move(plan));
        }
    }
}

void TransferEngine::fillLanes() {
    while (!heldLanes_.empty() && running_.size() < maximumRunning) {
        const auto session = std::move(heldLanes_.front());
        heldLanes_.pop_front();
        session->lane.waitsForOthers = false;
        fillLane(session);
    }
}

void TransferEngine::start(const std::shared_ptr<URLTransfer>& transfer, std::unique_ptr<TransferPlan> plan) {
    if (idle_.empty()) {
        idle_.push_back(std::make_unique<HTTPExchange>(share_, rounds_));
    }
    auto exchange = std::move(idle_.back());
    idle_.pop_back();
    if (!exchange->begin(transfer, std::move(plan))) {
        exchange->reset();
        idle_.push_back(std::move(exchange));
        return;
    }
    ++transfer->session().lane.inFlight;
    transfer->exchange = exchange.get();
    exchange->place = running_.size();
    running_.push_back(std::move(exchange));
    add(*running_.back());
}

void TransferEngine::add(HTTPExchange& exchange) {
    if (curl_multi_add_handle(multi_, exchange.handle()) != CURLM_OK) {
        finish(exchange, CURLE_FAILED_INIT);
    }
}

void TransferEngine::stopExchange(HTTPExchange& exchange) {
    const auto transfer = exchange.transfer();
    transfer->exchange = nullptr;
    if (!exchange.detach()) {
        curl_multi_remove_handle(multi_, exchange.handle());
        retire(exchange);
    }
    leaveLane(*transfer);
}

void TransferEngine::leaveLane(const URLTransfer& transfer) {
    --transfer.session().lane.inFlight;
    fillLane(transfer.sharedSession());
    fillLanes();
}

void TransferEngine::collectFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        if (message->msg == CURLMSG_DONE) {
            finish(HTTPExchange::of(message->easy_handle), message->data.result);
        }
    }
}

void TransferEngine::finish(HTTPExchange& exchange, CURLcode code) {
    const auto transfer = exchange.transfer();
    curl_multi_remove_handle(multi_, exchange.handle());
    if (exchange.goesOnAfter(code)) {
        add(exchange);
        return;
    }
    retire(exchange);
    if (transfer) {
        transfer->exchange = nullptr;
        leaveLane(*transfer);
    } else {
        fillLanes(); // it has left its own lane already
    }
}

void TransferEngine::retire(HTTPExchange& exchange) {
    exchange.reset();
    const auto place = exchange.place;
    std::swap(running_[place], running_.back());
    running_[place]->place = place;
    auto retired = std::move(running_.back());
    running_.pop_back();
    if (idle_.size() < maximumIdleHandles) {
        idle_.push_back(std::move(retired));
    }
}

void TransferEngine::endOverdue() {
    if (rounds_.now < rounds_.nextCheck) {
        return;
    }
    rounds_.nextCheck = Clock::time_point::max();
    // Backwards: removing one moves the last into its place.
    for (auto place = running_.size(); place-- > 0;) {
        if (place < running_.size()) {
            auto& exchange = *running_[place];
            if (const auto code = exchange.overdue()) {
                finish(exchange, *code);
            }
        }
    }
}

} // namespace zelto
