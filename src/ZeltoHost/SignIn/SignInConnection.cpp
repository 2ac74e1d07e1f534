#include <ZeltoHost/SignIn/SignInConnectionInternal.h>

#include <array>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace zelto {

namespace {

bool mustWait() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

short SignInConnection::awaitedEvents() const {
    return step_ == Step::writing ? POLLOUT : POLLIN;
}

std::optional<SignInRequest> SignInConnection::proceed(const SignInRequestRules& rules) {
    switch (step_) {
    case Step::reading:
        return read(rules);
    case Step::writing:
        write();
        return std::nullopt;
    case Step::leaving:
        leave();
        return std::nullopt;
    case Step::over:
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<SignInRequest> SignInConnection::read(const SignInRequestRules& rules) {
    std::array<char, 4096> piece;
    const auto count = ::recv(socket_.number(), piece.data(), piece.size(), 0);
    if (count < 0 && mustWait()) {
        return std::nullopt;
    }
    if (count <= 0) {
        // Browsers open connections that they may never use.
        step_ = Step::over;
        return received_.empty() ? std::nullopt : std::optional(SignInRequest());
    }
    received_.append(piece.data(), static_cast<std::size_t>(count));
    auto request = readSignInRequest(received_, rules);
    return request.kind == SignInRequestKind::incomplete ? std::nullopt : std::optional(std::move(request));
}

void SignInConnection::respond(std::string_view text, Clock::time_point deadline) {
    if (step_ != Step::reading) {
        return;
    }
    received_.clear();
    unsent_ = text;
    deadline_ = deadline;
    step_ = Step::writing;
    write();
}

void SignInConnection::write() {
    const auto count = ::send(socket_.number(), unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
    if (count < 0) {
        step_ = mustWait() ? step_ : Step::over;
        return;
    }
    unsent_.remove_prefix(static_cast<std::size_t>(count));
    if (unsent_.empty()) {
        // Closing while parts of the request are unread would discard the response.
        ::shutdown(socket_.number(), SHUT_WR);
        step_ = Step::leaving;
    }
}

void SignInConnection::leave() {
    std::array<char, 4096> piece;
    const auto count = ::recv(socket_.number(), piece.data(), piece.size(), 0);
    if (count == 0 || (count < 0 && !mustWait())) {
        step_ = Step::over;
    }
}

} // namespace zelto
