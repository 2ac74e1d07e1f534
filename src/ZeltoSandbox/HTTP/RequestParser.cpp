#include <ZeltoSandbox/HTTP/RequestParser.h>

#include <Platform/ASCII.h>

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/error.hpp>

namespace zelto::sandbox {

namespace http = boost::beast::http;
using boost::beast::error_code;
using BeastText = boost::beast::string_view;

class RequestParser::Implementation final : public http::basic_parser<true> {
  public:
    Implementation(std::size_t maximumHeader, std::uint64_t maximumBody) : maximumHeader_(maximumHeader) {
        header_limit(static_cast<std::uint32_t>(maximumHeader));
        body_limit(maximumBody);
    }

    std::size_t take(std::string_view bytes, SpoolWriter* body) {
        body_ = body;
        error_code error;
        const auto taken = put(boost::asio::const_buffer(bytes.data(), bytes.size()), error);
        if (error == http::error::need_more) {
            if (bytes.size() - taken > maximumHeader_) {
                fail(http::error::header_limit);
            }
        } else if (error) {
            fail(error);
        }
        return taken;
    }

    RequestHead head;
    std::optional<RequestProblem> problem;

  private:
    void fail(error_code error) {
        if (problem) {
            return;
        }
        if (error == http::error::header_limit) {
            problem = {431, "The request's header is too large."};
        } else if (error == http::error::body_limit) {
            problem = {413, "The request's body is too large."};
        } else {
            problem = {400, "The request is no HTTP/1.1: " + error.message() + "."};
        }
    }

    void keep(BeastText bytes, error_code& error) {
        const auto kept = body_->append({bytes.data(), bytes.size()});
        if (!kept) {
            problem = kept.error() == SpoolError::noRoom
                          ? RequestProblem{507, "The sandbox holds as much as it may; reset it."}
                          : RequestProblem{507, "The sandbox cannot write to the temporary directory."};
            error = http::error::body_limit;
        }
    }

    void on_request_impl(http::verb, BeastText method, BeastText target, int version, error_code&) override {
        head.method = std::string(method);
        head.target = std::string(target);
        isOld_ = version < 11;
    }

    void on_response_impl(int, BeastText, int, error_code&) override {}

    void on_field_impl(http::field, BeastText name, BeastText value, error_code&) override {
        head.fields.push_back({std::string(name), std::string(value)});
    }

    void on_header_impl(error_code&) override {
        head.keepsAlive = keep_alive();
        if (const auto length = content_length()) {
            head.contentLength = *length;
        }
        const auto* expected = head.field("Expect");
        head.expectsContinue = !isOld_ && expected && equalIgnoringASCIICase(*expected, "100-continue");
    }

    void on_body_init_impl(const boost::optional<std::uint64_t>&, error_code&) override {}

    std::size_t on_body_impl(BeastText bytes, error_code& error) override {
        keep(bytes, error);
        return bytes.size();
    }

    void on_chunk_header_impl(std::uint64_t, BeastText, error_code&) override {}

    std::size_t on_chunk_body_impl(std::uint64_t, BeastText bytes, error_code& error) override {
        keep(bytes, error);
        return bytes.size();
    }

    void on_finish_impl(error_code&) override {}

    std::size_t maximumHeader_;
    SpoolWriter* body_ = nullptr;
    bool isOld_ = false;
};

RequestParser::RequestParser(std::size_t maximumHeader, std::uint64_t maximumBody)
    : implementation_(std::make_unique<Implementation>(maximumHeader, maximumBody)) {}

RequestParser::~RequestParser() = default;

std::size_t RequestParser::putHead(std::string_view bytes) {
    return implementation_->take(bytes, nullptr);
}

std::size_t RequestParser::putBody(std::string_view bytes, SpoolWriter& body) {
    return implementation_->take(bytes, &body);
}

bool RequestParser::headIsWhole() const {
    return implementation_->is_header_done();
}

bool RequestParser::isWhole() const {
    return implementation_->is_done();
}

const std::optional<RequestProblem>& RequestParser::problem() const {
    return implementation_->problem;
}

RequestHead& RequestParser::head() {
    return implementation_->head;
}

} // namespace zelto::sandbox
