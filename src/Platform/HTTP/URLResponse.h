#pragma once

#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/URL.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

// Whether a status is in the range 200 to 299.
constexpr bool isSuccess(int status) {
    return status >= 200 && status < 300;
}

// The head of a response. Shared and immutable.
class URLResponse {
  public:
    explicit URLResponse(URL url) : url_(std::move(url)) {}

    virtual ~URLResponse() = default;

    // The URL of the last hop, after redirects.
    const URL& url() const { return url_; }

    // For logs and people.
    virtual std::string description() const;

  private:
    URL url_;
};

class HTTPURLResponse final : public URLResponse {
  public:
    HTTPURLResponse(URL url, int statusCode, HTTPHeaders headers)
        : URLResponse(std::move(url)), statusCode_(statusCode), headers_(std::move(headers)) {}

    int statusCode() const { return statusCode_; }

    // The fields of the final response, not of informational ones. The values of a repeated field are joined
    // by ", ".
    const HTTPHeaders& headers() const { return headers_; }

    std::optional<std::string> header(std::string_view name) const { return headers_.value(name); }

    std::string description() const override;

  private:
    int statusCode_;
    HTTPHeaders headers_;
};

} // namespace zelto
