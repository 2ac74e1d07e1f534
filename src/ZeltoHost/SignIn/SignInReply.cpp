#include <ZeltoHost/SignIn/SignInReply.h>

#include <Platform/HTTP/SendingErrors.h>
#include <Platform/HTTP/URLSession.h>

#include <future>

namespace zelto {

namespace {

using Reply = Result<SignInReply, SignInError>;

URLSessionConfiguration configurationForSignIn() {
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.maximumResponseSize = 1 << 20;
    configuration.maximumTransferTime = std::chrono::minutes(1);
    return configuration;
}

SignInError errorOf(const URLError& error, const std::string& service) {
    if (error.code == URLErrorCode::cancelled) {
        return {SignInErrorCode::canceled, "The sign-in was canceled."};
    }
    return {SignInErrorCode::connectionError, service + " could not be reached: " + error.message,
            isBeforeSending(error.code)};
}

Reply replyOf(const std::optional<Data>& body, const std::shared_ptr<const URLResponse>& response,
              const std::optional<URLError>& error, const std::string& service) {
    if (error) {
        return failure(errorOf(*error, service));
    }
    const auto head = std::dynamic_pointer_cast<const HTTPURLResponse>(response);
    if (!head) {
        return failure(SignInError{SignInErrorCode::badResponse, service + " did not respond by HTTP."});
    }
    return SignInReply{head->statusCode(), head->header("Location").value_or(""),
                       std::string(viewOf(body.value_or(Data())))};
}

} // namespace

Reply sendForSignIn(URLRequest request, const std::string& service, const std::stop_token& stop) {
    URLSession session(configurationForSignIn());
    // Shared, since the completion's thread may still be using it.
    const auto promise = std::make_shared<std::promise<Reply>>();
    auto reply = promise->get_future();
    const auto task = session.dataTask(std::move(request),
                                       [promise, service](const std::optional<Data>& body,
                                                          const std::shared_ptr<const URLResponse>& response,
                                                          const std::optional<URLError>& error) {
                                           promise->set_value(replyOf(body, response, error, service));
                                       });
    const std::stop_callback cancelling(stop, [&task] { task->cancel(); });
    task->resume();
    return reply.get();
}

} // namespace zelto
