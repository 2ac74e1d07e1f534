#include <Platform/HTTP/HTTPExchangeInternal.h>

#include <Platform/Joined.h>
#include <Platform/NeverDestroyed.h>

#include <algorithm>
#include <limits>
#include <vector>

#include <openssl/ssl.h>

namespace zelto {
namespace {

// Up to this size, a body is sent together with the head.
constexpr std::uint64_t maximumSmallBody = 64 * 1024;

constexpr long piecesOfBody = 256 * 1024;

// Seconds of idleness after which a connection is not reused. An idle connection may be dead, and a request
// that is not repeated then fails: for these the limit is lower.
constexpr long maximumIdleBeforeUnrepeatable = 30;
constexpr long maximumIdle = 118; // what servers commonly allow; libcurl's default
constexpr long maximumConnectionAge = 600;

constexpr std::uint64_t maximumOffset = std::numeric_limits<curl_off_t>::max();

long milliseconds(HTTPExchange::Clock::duration duration) {
    return static_cast<long>(std::chrono::ceil<std::chrono::milliseconds>(duration).count());
}

// In the form in which libcurl lists all encodings that it decodes.
std::string decodableEncodings() {
    const auto features = curl_version_info(CURLVERSION_NOW)->features;
    std::vector<std::string_view> names;
    const auto add = [&](int feature, std::string_view name) {
        if ((features & feature) != 0) {
            names.push_back(name);
        }
    };
    add(CURL_VERSION_LIBZ, "deflate, gzip");
    add(CURL_VERSION_BROTLI, "br");
    add(CURL_VERSION_ZSTD, "zstd");
    return joined(names, ", ");
}

// A host may have set libcurl up before, with the TLS key log that the environment asks for.
CURLcode onSecurity(CURL*, void* context, void*) {
    SSL_CTX_set_keylog_callback(static_cast<SSL_CTX*>(context), nullptr);
    return CURLE_OK;
}

} // namespace

template <class Value> void HTTPExchange::set(CURLoption option, Value value) {
    isPrepared_ = curl_easy_setopt(easy_, option, value) == CURLE_OK && isPrepared_;
}

// False, with the failure noted, when nothing could be sent.
bool HTTPExchange::prepareHop() {
    isPrepared_ = true;
    head_ = {};
    contentLength_ = std::nullopt;
    failure_ = std::nullopt;
    redirect_ = std::nullopt;
    movedAt_ = rounds_.now;
    headSize_ = received_ = sent_ = drained_ = 0;
    acknowledgedAtCheck_ = 0;
    attempts_ = 0;
    isHeldBack_ = isCutOff_ = isDraining_ = false;

    setUpFor(profile());
    setMessage();
    setBody();
    if (!isPrepared_ && !failure_) {
        failure_ = URLErrorCode::cannotConnect;
    }
    scheduleCheck();
    return !failure_;
}

HTTPExchange::Profile HTTPExchange::profile() const {
    const auto& configuration = transfer_->session().configuration;
    const auto& wire = plan_->wire;
    return {wire.isPlain, wire.isLoopback, wire.acceptedEncodings,
            wire.isLoopback ? std::nullopt : configuration.proxy,
            wire.isPlain ? std::nullopt : configuration.certificateAuthorities};
}

// What most requests have in common is set once: it costs as much as everything else. A handle whose last
// transfer did not end well is reset first.
void HTTPExchange::setUpFor(Profile profile) {
    if (std::exchange(endedWell_, false) && profile_ == profile) {
        return;
    }
    curl_easy_reset(easy_);
    profile_ = std::move(profile);
    setConnection();
    setSecurity();
    setProxy();
    setCallbacks();
}

void HTTPExchange::setConnection() {
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a pending name look-up does not block the I/O thread
    set(CURLOPT_SHARE, share_);
    set(CURLOPT_TCP_KEEPALIVE, 1L);
    set(CURLOPT_MAXLIFETIME_CONN, maximumConnectionAge);
    set(CURLOPT_UPLOAD_BUFFERSIZE, piecesOfBody);
    setEncodings();
    if (profile_->isPlain) {
        set(CURLOPT_PROTOCOLS_STR, "http");
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    } else {
        set(CURLOPT_PROTOCOLS_STR, "https");
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        set(CURLOPT_PIPEWAIT, 1L);
    }
}

// Given as an option, libcurl would write the field twice for each request, character by character; given as
// a header line, once. The option is still needed for decoding.
void HTTPExchange::setEncodings() {
    static const auto& decodable = neverDestroyed(decodableEncodings());
    const auto& own = profile_->acceptedEncodings;
    const auto& encodings = own && !own->empty() ? *own : decodable;
    set(CURLOPT_ACCEPT_ENCODING, encodings.c_str());
    encodingsLine_.clear();
    if (!encodings.empty()) {
        appendHeaderLine(encodingsLine_, "Accept-Encoding", encodings);
    }
}

void HTTPExchange::setSecurity() {
    if (profile_->isPlain) {
        return;
    }
    set(CURLOPT_SSL_CTX_FUNCTION, onSecurity);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_PROXY_SSL_VERIFYPEER, 1L);
    set(CURLOPT_PROXY_SSL_VERIFYHOST, 2L);
    // libcurl parses a certificate file once for all connections, but not a certificate directory.
    static const bool hasFile = curl_version_info(CURLVERSION_NOW)->cainfo != nullptr;
    const auto& own = profile_->certificateAuthorities;
    if (own || hasFile) {
        set(CURLOPT_CAPATH, nullptr);
        set(CURLOPT_PROXY_CAPATH, nullptr);
    }
    if (own) {
        set(CURLOPT_CAINFO, own->c_str());
        set(CURLOPT_PROXY_CAINFO, own->c_str());
    }
}

void HTTPExchange::setProxy() {
    if (profile_->isLoopback) {
        set(CURLOPT_PROXY, "");
        set(CURLOPT_NOPROXY, "*");
    } else if (profile_->proxy) {
        set(CURLOPT_PROXY, profile_->proxy->c_str());
        set(CURLOPT_NOPROXY, "");
    }
    set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

void HTTPExchange::setCallbacks() {
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_ERRORBUFFER, errorText_.data());
    set(CURLOPT_HEADERFUNCTION, onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_READFUNCTION, onRead);
    set(CURLOPT_READDATA, this);
    set(CURLOPT_SEEKFUNCTION, onSeek);
    set(CURLOPT_SEEKDATA, this);
    set(CURLOPT_PREREQFUNCTION, onReady);
    set(CURLOPT_PREREQDATA, this);
    rounds_.connections.attach(easy_);
}

// From here on, options are set for each hop.
void HTTPExchange::setMessage() {
    const auto& method = plan_->request.method;
    setURL();
    set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(timeout_));
    set(CURLOPT_MAXAGE_CONN, isRepeatable(method) ? maximumIdle : maximumIdleBeforeUnrepeatable);
    // A HEAD response has no body, whatever its Content-Length.
    const auto maximum =
        method == "HEAD" ? maximumOffset : transfer_->session().configuration.maximumResponseSize;
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(std::min(maximum, maximumOffset)));
    setHeaderLines();
}

// A URL given as text is parsed by libcurl and put together again, which costs twice as much. Consecutive
// requests often have the same URL.
void HTTPExchange::setURL() {
    const auto& text = plan_->wire.url;
    if (text != urlText_) {
        urlText_.clear();
        if (curl_url_set(url_, CURLUPART_URL, text.c_str(), CURLU_PATH_AS_IS) == CURLUE_OK) {
            urlText_ = text;
        } else {
            isPrepared_ = false;
        }
    }
    set(CURLOPT_URL, text.c_str());
    set(CURLOPT_CURLU, url_);
}

// libcurl only reads the list, so its nodes can point into the text.
void HTTPExchange::setHeaderLines() {
    headerList_.clear();
    for (auto* lines : {&encodingsLine_, &plan_->wire.headerLines}) {
        for (std::size_t start = 0; start < lines->size(); start = lines->find('\0', start) + 1) {
            headerList_.push_back({lines->data() + start, nullptr});
        }
    }
    for (std::size_t index = 1; index < headerList_.size(); ++index) {
        headerList_[index - 1].next = &headerList_[index];
    }
    set(CURLOPT_HTTPHEADER, headerList_.empty() ? nullptr : headerList_.data());
}

void HTTPExchange::setBody() {
    const auto& method = plan_->request.method;
    const auto& body = plan_->request.body;
    bodySize_ = body ? body->size() : 0;
    if (!declaresBody(plan_->request)) {
        set(CURLOPT_POSTFIELDS, nullptr);
        set(CURLOPT_HTTPGET, 1L);
        set(CURLOPT_NOBODY, method == "HEAD" ? 1L : 0L);
    } else if (bodySize_ <= maximumSmallBody) {
        smallBody_.resize(static_cast<std::size_t>(bodySize_));
        const std::span bytes(reinterpret_cast<std::uint8_t*>(smallBody_.data()), smallBody_.size());
        if (bodySize_ > 0 && !HTTPBody::Reader(*body).read(bytes)) {
            failure_ = URLErrorCode::bodyUnreadable;
        }
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDS, smallBody_.data());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(bodySize_));
    } else {
        reader_.emplace(*body);
        set(CURLOPT_POSTFIELDS, nullptr);
        set(CURLOPT_UPLOAD, 1L);
        set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(bodySize_));
    }
    // Each of the ways above implies a method of its own.
    const bool isOwn = !declaresBody(plan_->request) && (method == "GET" || method == "HEAD");
    set(CURLOPT_CUSTOMREQUEST, isOwn ? nullptr : method.c_str());
}

} // namespace zelto
