#include <Platform/HTTP/HTTPExchangeInternal.h>

#include <Platform/HTTP/TrafficInternal.h>

#include <algorithm>

namespace zelto {

namespace {

// Of what a server says about a failure nobody reads more, and a compressed body may be a thousand times as
// long as what was sent.
constexpr std::uint64_t maximumErrorBody = std::uint64_t{1} << 20;

bool isError(int status) {
    return status >= 400;
}

} // namespace

// Exceptions must not pass through libcurl; the only one that occurs here is lack of memory.
template <class F> std::size_t HTTPExchange::takenOr(std::size_t refusal, F&& take) {
    try {
        return take();
    } catch (...) {
        failure_ = URLErrorCode::responseTooLarge;
        return refusal;
    }
}

std::size_t HTTPExchange::onHeader(char* data, std::size_t size, std::size_t count, void* exchange) {
    const auto length = size * count;
    // Returning anything but the length ends the transfer.
    auto& self = *static_cast<HTTPExchange*>(exchange);
    return self.takenOr(length + 1, [&] { return self.takeHeadLine({data, length}) ? length : length + 1; });
}

bool HTTPExchange::takeHeadLine(std::string_view line) {
    movedAt_ = rounds_.now;
    countMovedBytes(line.size());
    headSize_ += line.size();
    const auto maximum = transfer_ ? transfer_->session().configuration.maximumHeaderSize : headSize_;
    const auto progress = head_.take(line);
    if (headSize_ > maximum || progress == ResponseHead::Progress::tooManyFields) {
        failure_ = URLErrorCode::responseTooLarge;
        return false;
    }
    if (progress == ResponseHead::Progress::complete && transfer_) {
        headIsComplete();
    }
    return true;
}

void HTTPExchange::headIsComplete() {
    const auto& request = plan_->request;
    if (redirects_ < maximumRedirects) {
        redirect_ = redirectTarget(request.method, request.url, head_.status(), head_.headers());
    }
    contentLength_ = head_.contentLength();
    if (redirect_) {
        beginDraining();
        return;
    }
    transfer_->receiveHead(
        std::make_shared<const HTTPURLResponse>(request.url, head_.status(), head_.takeHeaders()),
        contentLength_.value_or(0));
}

std::size_t HTTPExchange::onBody(char* data, std::size_t size, std::size_t count, void* exchange) {
    auto& self = *static_cast<HTTPExchange*>(exchange);
    return self.takenOr(CURL_WRITEFUNC_ERROR, [&] {
        return self.takeBody({reinterpret_cast<const std::uint8_t*>(data), size * count});
    });
}

std::size_t HTTPExchange::takeBody(std::span<const std::uint8_t> data) {
    movedAt_ = rounds_.now;
    countMovedBytes(data.size());
    if (isDraining_) {
        drained_ += data.size();
        return drained_ <= maximumDrainedBytes ? data.size() : CURL_WRITEFUNC_ERROR;
    }
    if (transfer_->hasEnded()) {
        return data.size(); // the engine has been asked to stop, but has not done so yet
    }
    if (data.size() > transfer_->session().configuration.maximumResponseSize - received_) {
        failure_ = URLErrorCode::responseTooLarge;
        return CURL_WRITEFUNC_ERROR;
    }
    const auto room = isError(head_.status()) ? maximumErrorBody - received_ : data.size();
    const auto taken = data.first(std::min<std::uint64_t>(data.size(), room));
    if (!transfer_->receiveData(taken)) {
        isHeldBack_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    received_ += taken.size();
    isCutOff_ = taken.size() < data.size();
    return isCutOff_ ? CURL_WRITEFUNC_ERROR : data.size();
}

std::size_t HTTPExchange::onRead(char* data, std::size_t size, std::size_t count, void* exchange) {
    return static_cast<HTTPExchange*>(exchange)->giveBody(
        {reinterpret_cast<std::uint8_t*>(data), size * count});
}

std::size_t HTTPExchange::giveBody(std::span<std::uint8_t> buffer) {
    movedAt_ = rounds_.now;
    const auto count = reader_->read(buffer);
    if (!count) {
        failure_ = URLErrorCode::bodyUnreadable;
        return CURL_READFUNC_ABORT;
    }
    sent_ += *count;
    countMovedBytes(*count);
    return *count;
}

int HTTPExchange::onSeek(void* exchange, curl_off_t offset, int origin) {
    auto& self = *static_cast<HTTPExchange*>(exchange);
    if (origin != SEEK_SET || offset != 0 || !self.reader_) {
        return CURL_SEEKFUNC_FAIL;
    }
    self.reader_->rewind();
    self.sent_ = 0;
    return CURL_SEEKFUNC_OK;
}

int HTTPExchange::onReady(void* exchange, char*, char*, int remotePort, int localPort) {
    auto& self = *static_cast<HTTPExchange*>(exchange);
    self.ports_ = {localPort, remotePort};
    return self.maySend() ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

// libcurl itself sends a request again when a reused connection turns out dead.
bool HTTPExchange::maySend() {
    movedAt_ = rounds_.now;
    if (++attempts_ > 1 && !isRepeatable(plan_->request.method)) {
        failure_ = URLErrorCode::connectionLost;
        return false;
    }
    return true;
}

} // namespace zelto
