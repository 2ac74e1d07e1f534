#include <ZeltoHost/SignIn/SignIn.h>

#include <ZeltoHost/SignIn/AuthorizationCode.h>
#include <ZeltoHost/SignIn/OAuth1.h>
#include <ZeltoHost/SignIn/SignInInboxInternal.h>
#include <ZeltoHost/SignIn/SignInListener.h>
#include <ZeltoHost/SignIn/SignInReply.h>

#include <ZeltoCommonLogger/SecretRegistry.h>

#include <Platform/HTTP/URLResponse.h>
#include <Platform/Text.h>

#include <system_error>
#include <thread>

namespace zelto {

namespace {

using TokenResult = Result<SignInToken, SignInError>;

SignInError refusal(const SignInService& service, OAuth1Step step, const SignInReply& reply) {
    const auto items = parseFormItems(reply.body);
    const auto problem = items ? onlyValue(*items, "oauth_problem") : std::nullopt;
    return {SignInErrorCode::refused, refusalText(service.name, step, reply.status, problem.value_or(""))};
}

Result<OAuth1Token, SignInError> oauth1Token(const SignInService& service, const URL& url, OAuth1Step step,
                                             const OAuth1Credentials& credentials,
                                             const URLQueryItem& parameter, const std::stop_token& stop) {
    URLRequest request(url, "POST");
    signOAuth1(request, credentials, {parameter});
    request.body = HTTPBody(std::string());
    const auto reply = sendForSignIn(std::move(request), service.name, stop);
    if (!reply) {
        return failure(reply.error());
    }
    if (!isSuccess(reply->status)) {
        return failure(refusal(service, step, *reply));
    }
    auto token = readOAuth1Token(reply->body);
    if (!token) {
        return failure(responseWithoutToken(service.name));
    }
    return *std::move(token);
}

bool isBelow(const URL& url, const URL& redirect) {
    return url.scheme() == redirect.scheme() && url.host() == redirect.host() &&
           url.port() == redirect.port() && url.percentEncodedPath() == redirect.percentEncodedPath();
}

std::string counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

SignInError timedOut(const SignInTraffic& traffic) {
    std::string text = "The browser did not come back in time.";
    if (traffic.otherResponses + traffic.refused > 0) {
        text += " " + counted(traffic.refused + traffic.otherResponses, "other request") +
                " came instead, among them " + counted(traffic.otherResponses, "response") +
                " of another sign-in.";
    }
    return {SignInErrorCode::timedOut, text};
}

} // namespace

class SignIn::Work {
  public:
    Work(const SignInService& service, std::chrono::milliseconds limit,
         std::optional<SignInListener> listener, URL redirect)
        : service_(service), limit_(limit), secrets_(SignInSecrets::fresh()), listener_(std::move(listener)),
          redirect_(std::move(redirect)), address_(redirect_) {
        mask(secrets_.verifier);
    }

    const URL& redirect() const { return redirect_; }

    const URL& address() const { return address_; }

    bool listens() const { return listener_.has_value(); }

    Result<void, SignInError> prepare(const std::stop_token& stop) {
        return service_.flow == SignInFlow::oauth1 ? prepareOAuth1(stop) : preparePage();
    }

    PasteOutcome paste(std::string_view text) {
        const auto address = trimmed(text);
        const auto url = URL::parse(address);
        if (!url) {
            // Within an escape.
            return address.starts_with(redirect_.absoluteString()) ? PasteOutcome::cut
                                                                   : PasteOutcome::noAddress;
        }
        if (!isBelow(*url, redirect_)) {
            return redirect_.absoluteString().starts_with(url->absoluteString()) ? PasteOutcome::cut
                                                                                 : PasteOutcome::otherAddress;
        }
        const bool isImplicit = service_.flow == SignInFlow::implicit;
        const auto form = isImplicit && url->fragment() ? url->fragment() : url->query();
        const auto items = parseFormItems(form.value_or(""));
        if (!items || address.ends_with('&') || inbox_->isCut(*items)) {
            return PasteOutcome::cut;
        }
        return inbox_->offer(*items, ResponseOrigin::pasted) ? PasteOutcome::taken
                                                             : PasteOutcome::otherResponse;
    }

    TokenResult finish(const std::stop_token& stop) {
        std::jthread serving;
        try {
            serving = listener_ ? startServing() : std::jthread();
        } catch (const std::system_error&) {
            return failure(SignInError{SignInErrorCode::cannotListen,
                                       "The system has no thread for the browser's response; end other "
                                       "programs and try again."});
        }
        const auto response = inbox_->wait(limit_, stop);
        // The token is fetched while the browser gets its page.
        serving.request_stop();
        if (!response) {
            if (serving.joinable()) {
                serving.join();
            }
            return failure(stop.stop_requested()
                               ? SignInError{SignInErrorCode::canceled, "The sign-in was canceled."}
                               : timedOut(listener_ ? listener_->traffic() : SignInTraffic()));
        }
        auto token = *response ? tokenFor(**response, stop) : failure(response->error());
        if (token && !isUsableToken(token->accessToken)) {
            return failure(responseWithoutToken(service_.name));
        }
        if (!token && inbox_->isPasted()) {
            addDoubt(token.error());
        }
        return token;
    }

  private:
    std::jthread startServing() {
        return std::jthread([this](const std::stop_token& end) {
            listener_->serve(
                [this](const FormItems& items) { return inbox_->offer(items, ResponseOrigin::browser); },
                end);
        });
    }

    // What the service finds wrong may be what is missing of the address.
    void addDoubt(SignInError& error) const {
        if (error.code == SignInErrorCode::refused) {
            error.message += " Paste the whole address, should it have been cut.";
        } else if (error.code == SignInErrorCode::denied && service_.flow == SignInFlow::oauth1) {
            error.message += " If you have agreed there, the pasted address was cut: paste the whole of it.";
        }
    }

    void mask(const std::string& secret) { masks_.push_back(SecretRegistry::shared().add(secret)); }

    Result<void, SignInError> preparePage() {
        auto page = authorizationPage(service_, redirect_, secrets_);
        if (!page) {
            return failure(SignInError{SignInErrorCode::notOffered, "The address of the page is no URL."});
        }
        address_ = *std::move(page);
        inbox_.emplace(SignInExpectation(service_, secrets_.state));
        return {};
    }

    Result<void, SignInError> prepareOAuth1(const std::stop_token& stop) {
        auto token =
            service_.requestTokenURL
                ? oauth1Token(service_, *service_.requestTokenURL, OAuth1Step::requestToken,
                              {service_.clientID, service_.clientSecret},
                              {"oauth_callback", redirect_.absoluteString()}, stop)
                : failure(SignInError{SignInErrorCode::notOffered, "The service has no request tokens."});
        if (!token) {
            return failure(token.error());
        }
        // Before OAuth 1.0a, someone who began a sign-in could have another user finish it.
        if (!token->callbackIsConfirmed) {
            return failure(responseWithoutToken(service_.name));
        }
        requestToken_ = *std::move(token);
        mask(requestToken_.secret);
        auto page = URLComponents::of(service_.authorizationURL);
        page.setQueryItem("oauth_token", requestToken_.token);
        auto address = page.url();
        if (!address) {
            return failure(responseWithoutToken(service_.name));
        }
        address_ = *std::move(address);
        inbox_.emplace(SignInExpectation(service_, requestToken_.token));
        return {};
    }

    TokenResult tokenFor(const SignInResponse& response, const std::stop_token& stop) {
        mask(response.value);
        switch (service_.flow) {
        case SignInFlow::implicit:
            return signInTokenOf(response.items);
        case SignInFlow::oauth1:
            return tokenForVerifier(response.value, stop);
        case SignInFlow::authorizationCode:
            return tokenForCode(response.value, stop);
        }
        return failure(responseWithoutToken(service_.name));
    }

    TokenResult tokenForCode(const std::string& code, const std::stop_token& stop) {
        const auto reply =
            sendForSignIn(tokenRequest(service_, code, redirect_, secrets_), service_.name, stop);
        return reply ? readSignInToken(service_, reply->status, reply->body) : failure(reply.error());
    }

    TokenResult tokenForVerifier(const std::string& verifier, const std::stop_token& stop) {
        const auto token =
            oauth1Token(service_, service_.tokenURL, OAuth1Step::accessToken,
                        {service_.clientID, service_.clientSecret, requestToken_.token, requestToken_.secret},
                        {"oauth_verifier", verifier}, stop);
        if (!token) {
            return failure(token.error());
        }
        return SignInToken{.accessToken = token->token, .tokenSecret = token->secret};
    }

    const SignInService service_;
    const std::chrono::milliseconds limit_;
    const SignInSecrets secrets_;
    std::optional<SignInListener> listener_;
    const URL redirect_;
    URL address_;
    OAuth1Token requestToken_;
    std::optional<SignInInbox> inbox_;
    std::vector<SecretRegistry::Registration> masks_;
};

SignIn::SignIn(std::unique_ptr<Work> work) : work_(std::move(work)) {}

SignIn::~SignIn() = default;

Result<std::unique_ptr<SignIn>, SignInError>
SignIn::begin(const SignInService& service, const SignInOptions& options, const std::stop_token& stop) {
    const bool takesFragment = service.flow == SignInFlow::implicit;
    std::optional<SignInListener> listener;
    auto redirect = options.redirect;
    // A code or a token that came back over plain http to another machine would be there for all to read.
    if (!redirect || redirect->scheme() == "http") {
        auto made = redirect ? SignInListener::listenAt(*redirect, takesFragment)
                             : SignInListener::listen(service.redirectPath(), takesFragment);
        if (!made) {
            return failure(made.error());
        }
        redirect = made->redirect();
        listener = *std::move(made);
    }
    auto work = std::make_unique<Work>(service, options.limit, std::move(listener), *std::move(redirect));
    if (const auto prepared = work->prepare(stop); !prepared) {
        return failure(prepared.error());
    }
    return std::unique_ptr<SignIn>(new SignIn(std::move(work)));
}

const URL& SignIn::address() const {
    return work_->address();
}

const URL& SignIn::redirect() const {
    return work_->redirect();
}

bool SignIn::listens() const {
    return work_->listens();
}

PasteOutcome SignIn::paste(std::string_view text) {
    return work_->paste(text);
}

TokenResult SignIn::finish(const std::stop_token& stop) {
    return work_->finish(stop);
}

} // namespace zelto
