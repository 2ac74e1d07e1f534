#include <Platform/HTTP/CurlInternal.h>

#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>

namespace zelto {
namespace {

// Hides a variable of the environment while it lives.
class HiddenVariable {
  public:
    explicit HiddenVariable(const char* name) : name_(name) {
        if (const char* value = std::getenv(name)) {
            value_ = value;
            ::unsetenv(name);
        }
    }

    ~HiddenVariable() {
        if (value_) {
            ::setenv(name_, value_->c_str(), 1);
        }
    }

    HiddenVariable(const HiddenVariable&) = delete;
    HiddenVariable& operator=(const HiddenVariable&) = delete;

  private:
    const char* const name_;
    std::optional<std::string> value_;
};

URLErrorCode codeOf(CURLcode code, bool wasSent, std::string_view detail) {
    switch (code) {
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
        // libcurl treats an unknown version of HTTP as another protocol.
        return wasSent ? URLErrorCode::badResponse : URLErrorCode::invalidRequest;
    case CURLE_COULDNT_RESOLVE_HOST:
        return URLErrorCode::cannotFindHost;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
    case CURLE_INTERFACE_FAILED:
        return URLErrorCode::cannotConnect;
    case CURLE_OPERATION_TIMEDOUT:
        return URLErrorCode::timedOut;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_USE_SSL_FAILED:
        return URLErrorCode::secureConnection;
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP2:
        return URLErrorCode::badResponse;
    case CURLE_FILESIZE_EXCEEDED:
        return URLErrorCode::responseTooLarge;
    case CURLE_OUT_OF_MEMORY:
        // libcurl's own limits for a header line, and for what is decoded while a transfer is paused.
        return URLErrorCode::responseTooLarge;
    case CURLE_RECV_ERROR:
        if (detail.contains("chunk")) {
            return URLErrorCode::badResponse;
        }
        if (detail.contains("Too large")) {
            return URLErrorCode::responseTooLarge;
        }
        [[fallthrough]];
    default:
        // A connection that is lost before the request was sent was refused by a proxy.
        return wasSent ? URLErrorCode::connectionLost : URLErrorCode::cannotConnect;
    }
}

std::string_view sentenceOf(URLErrorCode code) {
    switch (code) {
    case URLErrorCode::cancelled:
        return "The request was cancelled";
    case URLErrorCode::invalidRequest:
        return "The request cannot be sent";
    case URLErrorCode::cannotFindHost:
        return "The name of the server has no address";
    case URLErrorCode::cannotConnect:
        return "No connection to the server could be made";
    case URLErrorCode::secureConnection:
        return "The connection to the server is not secure";
    case URLErrorCode::connectionLost:
        return "The connection was lost";
    case URLErrorCode::timedOut:
        return "The server did not respond in time";
    case URLErrorCode::bodyUnreadable:
        return "The file to be sent can no longer be read";
    case URLErrorCode::badResponse:
        return "The server's response is malformed";
    case URLErrorCode::responseTooLarge:
        return "The server's response is too large";
    }
    return {};
}

std::string printable(std::string_view text) {
    std::string safe(text);
    for (char& each : safe) {
        each = each >= ' ' && each <= '~' ? each : '?';
    }
    return safe;
}

} // namespace

void setUpCurl() {
    static std::once_flag once;
    std::call_once(once, [] {
        const HiddenVariable keyLog("SSLKEYLOGFILE");
        curl_global_init(CURL_GLOBAL_DEFAULT);
    });
}

URLError errorOf(URLErrorCode code, std::string_view host, std::string_view reason) {
    auto message = std::string(sentenceOf(code)) + " (" + printable(host);
    if (!reason.empty()) {
        message += ": " + printable(reason);
    }
    return {code, message + ")."};
}

URLError errorOf(CURLcode curlCode, bool wasSent, std::string_view host, std::string_view detail) {
    const auto code = codeOf(curlCode, wasSent, detail);
    const bool cameBeforeSending = code == URLErrorCode::cannotFindHost ||
                                   code == URLErrorCode::cannotConnect ||
                                   code == URLErrorCode::secureConnection;
    if (wasSent && cameBeforeSending) {
        return errorOf(URLErrorCode::connectionLost, host);
    }
    if (code == URLErrorCode::timedOut) {
        return errorOf(code, host); // the same text whether libcurl or the engine noticed it
    }
    // For other errors, libcurl's text may quote the server.
    const bool includesDetail = code == URLErrorCode::secureConnection && !detail.empty();
    return errorOf(code, host, includesDetail ? detail : curl_easy_strerror(curlCode));
}

} // namespace zelto
