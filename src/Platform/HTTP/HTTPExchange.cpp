#include <Platform/HTTP/HTTPExchangeInternal.h>

#include <algorithm>
#include <utility>

namespace zelto {
namespace {

constexpr std::chrono::seconds longestDraining{1};

// What the system has taken of an upload goes on moving, which only a look at its queue shows.
constexpr int looksAtUpload = 4;

using Clock = HTTPExchange::Clock;

Clock::duration bounded(TimeInterval interval) {
    constexpr TimeInterval least{0.001};
    constexpr TimeInterval most{365 * 24 * 3600.0};
    return std::chrono::ceil<Clock::duration>(interval > least ? std::min(interval, most) : least);
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
    patience_ = bounded(configuration.timeout.value_or(plan_->request.timeout));
    giveUpAt_ = rounds_.now + bounded(configuration.longestTransfer);
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
        !contentLength_ || *contentLength_ <= static_cast<std::uint64_t>(received) + mostDrained;
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
    drainUntil_ = rounds_.now + longestDraining;
    scheduleLook();
}

bool HTTPExchange::proceed() {
    isHeldBack_ = false;
    movedAt_ = rounds_.now;
    scheduleLook();
    return curl_easy_pause(easy_, CURLPAUSE_CONT) == CURLE_OK && !failure_;
}

bool HTTPExchange::isBodySent() const {
    return !reader_ || sent_ == bodySize_;
}

void HTTPExchange::scheduleLook() {
    auto next = giveUpAt_;
    if (isDraining_) {
        next = drainUntil_;
    } else if (!isHeldBack_) {
        next = std::min(next, movedAt_ + patience_);
        if (reader_) {
            next = std::min(next, rounds_.now + patience_ / looksAtUpload);
        }
    }
    rounds_.nextLook = std::min(rounds_.nextLook, next);
}

std::optional<CURLcode> HTTPExchange::overdue() {
    if (isDraining_ ? rounds_.now >= drainUntil_ : standsStill() || rounds_.now >= giveUpAt_) {
        if (!isDraining_) {
            failure_ = URLErrorCode::timedOut;
        }
        return CURLE_OPERATION_TIMEDOUT;
    }
    scheduleLook();
    return std::nullopt;
}

bool HTTPExchange::standsStill() {
    if (isHeldBack_) {
        return false;
    }
    lookAtConnection();
    return rounds_.now >= movedAt_ + patience_;
}

// A head that comes byte by byte, and what the system has taken of an upload, move without any call. Where
// many share a connection, it tells nothing of one.
void HTTPExchange::lookAtConnection() {
    long version = 0;
    curl_easy_getinfo(easy_, CURLINFO_HTTP_VERSION, &version);
    if (attempts_ == 0 || version > CURL_HTTP_VERSION_1_1) {
        return;
    }
    if (const auto movement = rounds_.connections.movement(ports_)) {
        movedAt_ = std::max(movedAt_, rounds_.now - movement->sinceReceived);
        if (reader_ && movement->acknowledged > std::exchange(acknowledgedAtLook_, movement->acknowledged)) {
            movedAt_ = rounds_.now;
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
