#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoHost/Platform/URLOpener.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace zelto::cli {

// What becomes of the URL of an export: opened by a program, or shown (--opener -, --dry-run).
class URLDelivery {
  public:
    static Outcome<std::shared_ptr<URLDelivery>> from(const Invocation& invocation);

    void open(const URL& url, Callback<bool> done);

    // The URL, where it is to be shown.
    std::optional<std::string> shownURL() const;
    // Why it was not opened.
    std::string failureMessage() const;

  private:
    std::unique_ptr<URLOpener> opener_; // null to show it
    mutable std::mutex lock_;
    std::optional<std::string> shownURL_;
    std::optional<OpenError> error_;
};

} // namespace zelto::cli
