#include <Platform/HTTP/HTTPExchangeInternal.h>

#include <algorithm>
#include <utility>

namespace zelto {
namespace {

constexpr std::chrono::seconds maximumDrainingTime{1};

// How often per time-out an upload is checked: data that the system has buffered keeps moving, which only its
// socket shows.
constexpr int checksOfUpload = 60;

using Clock = HTTPExchange::Clock;

Clock::duration bounded(TimeInterval interval) {
    constexpr TimeInterval minimum{0.001};
    constexpr TimeInterval maximum{365 * 24 * 3600.0};
    return std::chrono::ceil<Clock::duration>(interval > minimum ? std::min(interval, maximum) : minimum);
}

} // namespace

HTTPExchange::HTTPExchange(CURLSH* share, Rounds& rounds)
    : easy_(curl_easy_init()), url_(curl_url()), share_(share), rounds_(rounds) {}

HTTPExchange::~HTTPExchange() {
    curl_easy_cleanup(easy_);
    curl_url_cleanup(url_);
}

HTTPExchange& HTTPExchange::of(CURL* handle) {
    char* exchange = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &exchange);
    return *reinterpret_cast<HTTPExchange*>(exchange);
}

bool HTTPExchange::begin(std::shared_ptr<URLTransfer> transfer, std::unique_ptr<TransferPlan> plan) {
    transfer_ = std::move(transfer);
    plan_ = std::move(plan);
    redirects_ = 0;
    const auto& configuration = transfer_->session().configuration;
    timeout_ = bounded(configuration.timeout.value_or(plan_->request.timeout));
    giveUpAt_ = rounds_.now + bounded(configuration.maximumTransferTime);
    if (easy_ && url_ && prepareHop()) {
        return true;
    }
    transfer_->end(errorOf(failure_.value_or(URLErrorCode::cannotConnect), host()));
    return false;
}

bool HTTPExchange::goesOnAfter(CURLcode code) {
    endedWell_ = code == CURLE_OK && attempts_ == 1;
    if (!transfer_) {
        return false;
    }
    const bool isRedirected = redirect_ && (code == CURLE_OK || isDraining_);
    if (!isRedirected) {
        transfer_->end(errorAfter(code));
        return false;
    }
    auto wire = wireRequest(plan_->request, *redirect_, transfer_->session().configuration);
    if (!wire) {
        transfer_->end(std::move(wire.error()));
        return false;
    }
    ++redirects_;
    plan_->request.url = *std::exchange(redirect_, std::nullopt);
    plan_->wire = *std::move(wire);
    if (prepareHop()) {
        return true;
    }
    transfer_->end(errorOf(failure_.value_or(URLErrorCode::cannotConnect), host()));
    return false;
}

std::optional<URLError> HTTPExchange::errorAfter(CURLcode code) const {
    if (failure_) {
        return errorOf(*failure_, host());
    }
    if (isCutOff_) {
        return std::nullopt;
    }
    if (code == CURLE_OK) {
        return head_.isComplete() ? std::nullopt
                                  : std::optional(errorOf(URLErrorCode::connectionLost, host()));
    }
    return errorOf(code, attempts_ > 0, host(), errorText_.data());
}

std::string HTTPExchange::host() const {
    return plan_->request.url.host();
}

bool HTTPExchange::detach() {
    transfer_ = nullptr;
    curl_off_t received = 0;
    long version = 0;
    curl_easy_getinfo(easy_, CURLINFO_SIZE_DOWNLOAD_T, &received);
    curl_easy_getinfo(easy_, CURLINFO_HTTP_VERSION, &version);
    const bool isShort =
        !contentLength_ || *contentLength_ <= static_cast<std::uint64_t>(received) + maximumDrainedBytes;
    if (!head_.isComplete() || failure_ || !isShort || !isBodySent() || version > CURL_HTTP_VERSION_1_1) {
        return false;
    }
    reader_ = std::nullopt;
    plan_->request.body = std::nullopt;
    if (!isDraining_) {
        beginDraining();
    }
    return !isHeldBack_ || proceed();
}

void HTTPExchange::beginDraining() {
    isDraining_ = true;
    drainUntil_ = rounds_.now + maximumDrainingTime;
    scheduleCheck();
}

bool HTTPExchange::proceed() {
    isHeldBack_ = false;
    movedAt_ = rounds_.now;
    scheduleCheck();
    return curl_easy_pause(easy_, CURLPAUSE_CONT) == CURLE_OK && !failure_;
}

bool HTTPExchange::isBodySent() const {
    return !reader_ || sent_ == bodySize_;
}

void HTTPExchange::scheduleCheck() {
    auto next = giveUpAt_;
    if (isDraining_) {
        next = drainUntil_;
    } else if (!isHeldBack_) {
        next = std::min(next, movedAt_ + timeout_);
        if (reader_) {
            next = std::min(next, rounds_.now + timeout_ / checksOfUpload);
        }
    }
    rounds_.nextCheck = std::min(rounds_.nextCheck, next);
}

std::optional<CURLcode> HTTPExchange::overdue() {
    if (isDraining_ ? rounds_.now >= drainUntil_ : isStalled() || rounds_.now >= giveUpAt_) {
        if (!isDraining_) {
            failure_ = URLErrorCode::timedOut;
        }
        return CURLE_OPERATION_TIMEDOUT;
    }
    scheduleCheck();
    return std::nullopt;
}

bool HTTPExchange::isStalled() {
    if (isHeldBack_) {
        return false;
    }
    checkConnection();
    return rounds_.now >= movedAt_ + timeout_;
}

// A head that arrives byte by byte, and buffered data of an upload, move without a callback. On a connection
// with several streams this says nothing about a single one.
void HTTPExchange::checkConnection() {
    long version = 0;
    curl_easy_getinfo(easy_, CURLINFO_HTTP_VERSION, &version);
    if (attempts_ == 0 || version > CURL_HTTP_VERSION_1_1) {
        return;
    }
    if (const auto movement = rounds_.connections.movement(ports_)) {
        movedAt_ = std::max(movedAt_, rounds_.now - movement->sinceReceived);
        if (reader_ && movement->acknowledged > std::exchange(acknowledgedAtCheck_, movement->acknowledged)) {
            movedAt_ = std::max(movedAt_, rounds_.now - movement->sinceAcknowledged);
        }
    }
}

void HTTPExchange::reset() {
    transfer_ = nullptr;
    plan_ = nullptr;
    redirect_ = std::nullopt;
    reader_ = std::nullopt;
    head_ = {};
    smallBody_ = {};
}

} // namespace zelto
