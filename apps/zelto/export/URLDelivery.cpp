#include "export/URLDelivery.h"

#include <ZeltoHost/Process/CommandWords.h>

namespace zelto::cli {

Outcome<std::shared_ptr<URLDelivery>> URLDelivery::from(const Invocation& invocation) {
    auto delivery = std::make_shared<URLDelivery>();
    const auto command = invocation.value("--opener");
    if (command == "-" || invocation.has("--dry-run")) {
        return delivery;
    }
    if (!command) {
        delivery->opener_ = std::make_unique<URLOpener>();
        return delivery;
    }
    auto words = commandWords(*command);
    if (!words) {
        return wrongUsage("--opener " + std::string(words.error().text) + ".");
    }
    delivery->opener_ = std::make_unique<URLOpener>(*std::move(words));
    return delivery;
}

void URLDelivery::open(const URL& url, Callback<bool> done) {
    if (!opener_) {
        {
            const std::lock_guard guard(lock_);
            shownURL_ = url.absoluteString();
        }
        return done(true);
    }
    opener_->open(url, [this, done = std::move(done)](const Result<void, OpenError>& result) mutable {
        if (!result) {
            const std::lock_guard guard(lock_);
            error_ = result.error();
        }
        done(result.has_value());
    });
}

std::optional<std::string> URLDelivery::shownURL() const {
    const std::lock_guard guard(lock_);
    return shownURL_;
}

std::string URLDelivery::failureMessage() const {
    const std::lock_guard guard(lock_);
    return error_ ? error_->message() : "The URL was not opened.";
}

} // namespace zelto::cli
