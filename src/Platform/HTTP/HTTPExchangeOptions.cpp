#include <Platform/HTTP/HTTPExchangeInternal.h>

#include <Platform/Joined.h>
#include <Platform/NeverDestroyed.h>

#include <algorithm>
#include <limits>
#include <vector>

#include <openssl/ssl.h>

namespace zelto {
namespace {

// Up to here a body goes out together with the head.
constexpr std::uint64_t largestSmallBody = 64 * 1024;

constexpr long piecesOfBody = 256 * 1024;

// A connection that rested is likelier to be dead, which costs what is not repeated its attempt.
constexpr long restBeforeUnrepeatable = 30;
constexpr long longestRest = 118; // what servers commonly allow; libcurl's own
constexpr long longestConnection = 600;

constexpr std::uint64_t largestOffset = std::numeric_limits<curl_off_t>::max();

long milliseconds(HTTPExchange::Clock::duration duration) {
    return static_cast<long>(std::chrono::ceil<std::chrono::milliseconds>(duration).count());
}

// As libcurl itself writes it for all that it can decode.
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
    isPrepared_ = true;
    head_ = {};
    contentLength_ = std::nullopt;
    failure_ = std::nullopt;
    redirect_ = std::nullopt;
    movedAt_ = rounds_.now;
    headSize_ = received_ = sent_ = drained_ = 0;
    acknowledgedAtLook_ = 0;
    attempts_ = 0;
    isHeldBack_ = isDraining_ = false;

    setUpFor(profile());
    setMessage();
    setBody();
    if (!isPrepared_ && !failure_) {
        failure_ = URLErrorCode::cannotConnect;
    }
    scheduleLook();
    return !failure_;
}

HTTPExchange::Profile HTTPExchange::profile() const {
    const auto& configuration = transfer_->session().configuration;
    const auto& wire = plan_->wire;
    return {wire.isPlain, wire.isLoopback, wire.acceptedEncodings,
            wire.isLoopback ? std::nullopt : configuration.proxy,
            wire.isPlain ? std::nullopt : configuration.certificateAuthorities};
}

// What most requests have in common is set once, since it costs as much as the rest of a request's setting
// up. A handle whose last transfer did not go smoothly is begun afresh.
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
    set(CURLOPT_QUICK_EXIT, 1L); // a name that is being looked up does not hold up the I/O thread
    set(CURLOPT_SHARE, share_);
    set(CURLOPT_TCP_KEEPALIVE, 1L);
    set(CURLOPT_MAXLIFETIME_CONN, longestConnection);
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

// Out of the option libcurl would write the field twice for each request, character by character; what stands
// among the header lines it writes once. The option still says that it decodes.
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
    // libcurl parses a file of certificates once for all connections, but not a directory of them.
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

// From here on, each option is set for each hop.
void HTTPExchange::setMessage() {
    const auto& method = plan_->request.method;
    setURL();
    set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(patience_));
    set(CURLOPT_MAXAGE_CONN, isRepeatable(method) ? longestRest : restBeforeUnrepeatable);
    // The length that a HEAD tells is of nothing that comes.
    const auto largest = method == "HEAD" ? largestOffset : transfer_->session().configuration.largestAnswer;
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(std::min(largest, largestOffset)));
    setHeaderLines();
}

// A URL that it takes apart itself, libcurl puts together again, which costs twice as much. One request often
// asks for what the one before it did.
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

// libcurl only reads the list, so that it can point to the lines where they are.
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
    if (!tellsBody(plan_->request)) {
        set(CURLOPT_POSTFIELDS, nullptr);
        set(CURLOPT_HTTPGET, 1L);
        set(CURLOPT_NOBODY, method == "HEAD" ? 1L : 0L);
    } else if (bodySize_ <= largestSmallBody) {
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
    // Each of these ways has a method of its own.
    const bool isOwn = !tellsBody(plan_->request) && (method == "GET" || method == "HEAD");
    set(CURLOPT_CUSTOMREQUEST, isOwn ? nullptr : method.c_str());
}

} // namespace zelto
