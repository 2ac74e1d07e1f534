#include <Platform/HTTP/HTTPExchangeInternal.h>

#include <algorithm>
#include <limits>

#include <openssl/ssl.h>

namespace zelto {
namespace {

// Up to here a body goes out together with the head.
constexpr std::uint64_t largestSmallBody = 64 * 1024;

constexpr long piecesOfBody = 256 * 1024;

// A connection that rested is likelier to be dead, which costs what is not repeated its attempt.
constexpr long restBeforeUnrepeatable = 30;
constexpr long longestConnection = 600;

constexpr std::uint64_t largestOffset = std::numeric_limits<curl_off_t>::max();

long milliseconds(HTTPExchange::Clock::duration duration) {
    return static_cast<long>(std::chrono::ceil<std::chrono::milliseconds>(duration).count());
}

// A host may have set libcurl up before, with the key log that the environment asks for.
CURLcode onSecurity(CURL*, void* context, void*) {
    SSL_CTX_set_keylog_callback(static_cast<SSL_CTX*>(context), nullptr);
    return CURLE_OK;
}

} // namespace

template <class Value> void HTTPExchange::set(CURLoption option, Value value) {
    isPrepared_ = curl_easy_setopt(easy_, option, value) == CURLE_OK && isPrepared_;
}

// False, with the failure noted, when there is nothing that could be sent.
bool HTTPExchange::prepareHop() {
    curl_easy_reset(easy_);
    isPrepared_ = true;
    head_ = {};
    failure_ = std::nullopt;
    redirect_ = std::nullopt;
    errorText_[0] = '\0';
    movedAt_ = rounds_.now;
    headSize_ = received_ = sent_ = drained_ = 0;
    acknowledgedAtLook_ = 0;
    attempts_ = 0;
    isHeldBack_ = isDraining_ = false;

    const auto& wire = plan_->wire;
    setConnection(wire);
    setSecurity(wire);
    setProxy(wire);
    setMessage(wire);
    setBody();
    setCallbacks();
    if (!isPrepared_ && !failure_) {
        failure_ = URLErrorCode::cannotConnect;
    }
    scheduleLook();
    return !failure_;
}

void HTTPExchange::setConnection(const WireRequest& wire) {
    set(CURLOPT_URL, wire.url.c_str());
    set(CURLOPT_PROTOCOLS_STR, wire.isPlain ? "http" : "https");
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a name that is being looked up does not hold up the I/O thread
    set(CURLOPT_SHARE, share_);
    set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(patience_));
    set(CURLOPT_TCP_KEEPALIVE, 1L);
    set(CURLOPT_MAXLIFETIME_CONN, longestConnection);
    if (!isRepeatable(plan_->request.method)) {
        set(CURLOPT_MAXAGE_CONN, restBeforeUnrepeatable);
    }
    if (wire.isPlain) {
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    } else {
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        set(CURLOPT_PIPEWAIT, 1L);
    }
}

void HTTPExchange::setSecurity(const WireRequest& wire) {
    if (wire.isPlain) {
        return;
    }
    set(CURLOPT_SSL_CTX_FUNCTION, onSecurity);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_PROXY_SSL_VERIFYPEER, 1L);
    set(CURLOPT_PROXY_SSL_VERIFYHOST, 2L);
    // libcurl parses a file of certificates once for all connections, but not a directory of them.
    static const bool hasFile = curl_version_info(CURLVERSION_NOW)->cainfo != nullptr;
    const auto& own = transfer_->session().configuration.certificateAuthorities;
    if (own || hasFile) {
        set(CURLOPT_CAPATH, nullptr);
        set(CURLOPT_PROXY_CAPATH, nullptr);
    }
    if (own) {
        set(CURLOPT_CAINFO, own->c_str());
        set(CURLOPT_PROXY_CAINFO, own->c_str());
    }
}

void HTTPExchange::setProxy(const WireRequest& wire) {
    const auto& proxy = transfer_->session().configuration.proxy;
    if (wire.isLoopback) {
        set(CURLOPT_PROXY, "");
        set(CURLOPT_NOPROXY, "*");
    } else if (proxy) {
        set(CURLOPT_PROXY, proxy->c_str());
        set(CURLOPT_NOPROXY, "");
    }
    set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

void HTTPExchange::setMessage(const WireRequest& wire) {
    setHeaderLines(wire.headerLines);
    set(CURLOPT_ACCEPT_ENCODING, wire.acceptedEncodings ? wire.acceptedEncodings->c_str() : "");
    const auto& method = plan_->request.method;
    if (method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
    } else if (method != "GET") {
        set(CURLOPT_CUSTOMREQUEST, method.c_str());
    }
    const auto largest = transfer_->session().configuration.largestAnswer;
    if (method != "HEAD") {
        set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(std::min(largest, largestOffset)));
    }
}

// libcurl only reads the list, so that it can point to the lines where they are.
void HTTPExchange::setHeaderLines(const std::vector<std::string>& lines) {
    headerList_.resize(lines.size());
    for (std::size_t index = 0; index < lines.size(); ++index) {
        headerList_[index].data = const_cast<char*>(lines[index].c_str());
        headerList_[index].next = index + 1 < lines.size() ? &headerList_[index + 1] : nullptr;
    }
    set(CURLOPT_HTTPHEADER, headerList_.data());
}

void HTTPExchange::setBody() {
    const auto& [url, method, policy, timeout, headers, body] = plan_->request;
    const bool tellsEmptyBody = method == "POST" || method == "PUT" || method == "PATCH";
    bodySize_ = body ? body->size() : 0;
    if (bodySize_ == 0 && !tellsEmptyBody) {
        return;
    }
    if (bodySize_ <= largestSmallBody) {
        smallBody_.resize(static_cast<std::size_t>(bodySize_));
        const std::span bytes(reinterpret_cast<std::uint8_t*>(smallBody_.data()), smallBody_.size());
        if (bodySize_ > 0 && !HTTPBody::Reader(*body).read(bytes)) {
            failure_ = URLErrorCode::bodyUnreadable;
        }
        set(CURLOPT_POSTFIELDS, smallBody_.data());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(bodySize_));
    } else {
        reader_.emplace(*body);
        set(CURLOPT_UPLOAD, 1L);
        set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(bodySize_));
        set(CURLOPT_UPLOAD_BUFFERSIZE, piecesOfBody);
        set(CURLOPT_READFUNCTION, onRead);
        set(CURLOPT_READDATA, this);
        set(CURLOPT_SEEKFUNCTION, onSeek);
        set(CURLOPT_SEEKDATA, this);
    }
    // Either of the two ways has a method of its own.
    set(CURLOPT_CUSTOMREQUEST, method.c_str());
}

void HTTPExchange::setCallbacks() {
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_ERRORBUFFER, errorText_.data());
    set(CURLOPT_HEADERFUNCTION, onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_PREREQFUNCTION, onReady);
    set(CURLOPT_PREREQDATA, this);
    rounds_.connections.attach(easy_);
}

} // namespace zelto
