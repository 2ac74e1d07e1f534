#include <ZeltoSandbox/HTTP/ConnectionInternal.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

SteadyTime after(TimeInterval time) {
    return std::chrono::steady_clock::now() +
           std::chrono::duration_cast<std::chrono::steady_clock::duration>(time);
}

class Connection {
  public:
    Connection(ConnectionShared& shared, int socket, std::uint64_t number)
        : shared_(shared), socket_(socket), number_(number) {}

    void serve() {
        while (!shared_.stop.isRequested() && serveOne()) {
        }
    }

  private:
    // False when the connection has to end.
    bool serveOne() {
        RequestParser parser(shared_.options.maximumHeader, shared_.options.maximumBody);
        if (!readHead(parser)) {
            return false;
        }
        if (const auto refused = shared_.functions.refusal(parser.head())) {
            return refuse(*refused);
        }
        if (parser.head().expectsContinue && !parser.isWhole() &&
            !sendAll(socket_, "HTTP/1.1 100 Continue\r\n\r\n", shared_.options.bodyTimeout)) {
            return false;
        }
        SpoolWriter body(shared_.space);
        if (!readBody(parser, body)) {
            return false;
        }
        const bool keepsAlive = parser.head().keepsAlive;
        const bool hasNoBody = parser.head().method == "HEAD";
        const auto planned = shared_.functions.respond(std::move(parser.head()), body.finish(), number_);
        if (planned.response.stream && !hasNoBody) {
            return sendStream(planned.response);
        }
        return send(planned, keepsAlive, hasNoBody) && keepsAlive;
    }

    bool readHead(RequestParser& parser) {
        auto deadline = after(buffer_.empty() ? shared_.options.idleTimeout : shared_.options.headerTimeout);
        bool begun = !buffer_.empty();
        for (;;) {
            if (!buffer_.empty()) {
                buffer_.erase(0, parser.putHead(buffer_));
            }
            if (parser.problem()) {
                return refuse(*parser.problem());
            }
            if (parser.headIsWhole()) {
                return true;
            }
            if (const auto got = receive(deadline); !got) {
                if (got.error() == SocketEnd::timedOut && begun) {
                    refuse({408, "The request's header did not come in time."});
                }
                return false;
            }
            if (!begun) {
                begun = true;
                deadline = after(shared_.options.headerTimeout);
            }
        }
    }

    bool readBody(RequestParser& parser, SpoolWriter& body) {
        for (;;) {
            takeBody(parser, body);
            if (parser.problem()) {
                body.discard();
                return refuse(*parser.problem());
            }
            if (parser.isWhole()) {
                return true;
            }
            if (const auto got = receive(after(shared_.options.bodyTimeout)); !got) {
                if (got.error() == SocketEnd::timedOut) {
                    refuse({408, "The request's body did not come in time."});
                }
                return false;
            }
        }
    }

    // The parser stops after each piece of a chunked body.
    void takeBody(RequestParser& parser, SpoolWriter& body) {
        std::size_t taken = 0;
        std::size_t last = 1;
        while (last > 0 && taken < buffer_.size() && !parser.isWhole() && !parser.problem()) {
            last = parser.putBody(std::string_view(buffer_).substr(taken), body);
            taken += last;
        }
        buffer_.erase(0, taken);
    }

    Result<std::size_t, SocketEnd> receive(SteadyTime deadline) {
        const auto got = receiveSome(socket_, piece_, deadline);
        if (got) {
            buffer_.append(piece_.data(), *got);
        }
        return got;
    }

    // Always false: the connection ends.
    bool refuse(const RequestProblem& problem) {
        auto response = SandboxResponse::text(problem.text + "\n", problem.status);
        if (sendAll(socket_, responseHead(response, false) + response.body, shared_.options.bodyTimeout)) {
            closeGently(socket_);
        }
        return false;
    }

    bool send(const PlannedResponse& planned, bool keepsAlive, bool hasNoBody) {
        if (planned.delay && !shared_.stop.waitFor(*planned.delay)) {
            return false;
        }
        if (planned.resets && !planned.cutAfter) {
            resetWhenClosed(socket_);
            return false;
        }
        const auto& response = planned.response;
        const bool silent = hasNoBody || response.status == 204 || response.status == 304;
        auto head = responseHead(response, keepsAlive, claimedLength(planned));
        if (silent) {
            return sendBytes(head);
        }
        if (planned.lengthError != 0 || planned.cutAfter || planned.stallAfter) {
            sendBroken(planned, head);
            return false;
        }
        if (!response.file && !planned.slowBody) {
            return sendBytes(head + response.body);
        }
        return sendBytes(head) && sendBody(response, planned.slowBody);
    }

    bool sendBody(const SandboxResponse& response, std::optional<std::uint32_t> slow) {
        if (response.file) {
            return sendFile(*response.file, slow);
        }
        return slow ? sendSlowly(response.body, *slow) : sendBytes(response.body);
    }

    static std::uint64_t claimedLength(const PlannedResponse& planned) {
        const auto length = bodyLength(planned.response);
        const auto error = planned.lengthError;
        return error < 0 ? length - std::min(length, static_cast<std::uint64_t>(-error))
                         : length + static_cast<std::uint64_t>(error);
    }

    // A body that does not arrive as the header says; the connection ends with it.
    void sendBroken(const PlannedResponse& planned, const std::string& head) {
        auto response = planned.response;
        const auto length = bodyLength(response);
        const auto end = std::min(planned.cutAfter.value_or(length), planned.stallAfter.value_or(length));
        if (response.file) {
            response.file->size = std::min(end, length);
        } else {
            response.body.resize(static_cast<std::size_t>(std::min(end, length)));
        }
        if (!sendBytes(head) || !sendBody(response, planned.slowBody)) {
            return;
        }
        if (planned.stallAfter && *planned.stallAfter == end && end < length) {
            waitForEndByPeer();
        } else if (planned.resets) {
            resetWhenClosed(socket_);
        } else {
            closeGently(socket_);
        }
    }

    void waitForEndByPeer() {
        constexpr std::chrono::milliseconds pause{20};
        while (!isClosedByPeer(socket_) && shared_.stop.waitFor(pause)) {
        }
    }

    // Always false: the connection ends with it.
    bool sendStream(const SandboxResponse& response) {
        auto bytes = responseHead(response, false);
        while (sendBytes(bytes) && !shared_.stop.isRequested() && !isClosedByPeer(socket_)) {
            bytes = response.stream();
        }
        return false;
    }

    bool sendBytes(std::string_view bytes) {
        return sendAll(socket_, bytes, shared_.options.bodyTimeout).has_value();
    }

    bool sendFile(const SpoolRange& file, std::optional<std::uint32_t> slow) {
        std::string piece(std::size_t{256} << 10, '\0');
        for (std::uint64_t position = 0; position < file.size;) {
            const auto count = file.read(position, piece);
            const auto bytes = std::string_view(piece).substr(0, count);
            if (count == 0 || !(slow ? sendSlowly(bytes, *slow) : sendBytes(bytes))) {
                return false;
            }
            position += count;
        }
        return true;
    }

    bool sendSlowly(std::string_view bytes, std::uint32_t bytesPerSecond) {
        constexpr std::size_t stepsPerSecond = 20;
        const auto step = std::max<std::size_t>(1, bytesPerSecond / stepsPerSecond);
        const auto pause =
            std::chrono::duration<double>(static_cast<double>(step) / std::max(1U, bytesPerSecond));
        while (!bytes.empty()) {
            const auto piece = bytes.substr(0, step);
            if (!sendBytes(piece) || !shared_.stop.waitFor(pause)) {
                return false;
            }
            bytes.remove_prefix(piece.size());
        }
        return true;
    }

    ConnectionShared& shared_;
    int socket_;
    std::uint64_t number_;
    std::string buffer_; // received, and not yet parsed
    std::array<char, 65536> piece_;
};

} // namespace

void serveConnection(ConnectionShared& shared, int socket, std::uint64_t number) {
    Connection(shared, socket, number).serve();
}

} // namespace zelto::sandbox
