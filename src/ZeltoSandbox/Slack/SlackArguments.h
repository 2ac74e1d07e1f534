#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/Slack/SlackError.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// What a method is called with: the items of the query, and of a POST's form or JSON object.
class SlackArguments {
  public:
    // A method that takes no JSON ignores it.
    static Result<SlackArguments, SlackError> read(const SandboxRequest& request, bool takesJSON);

    // nullopt for one that is missing, or neither a text nor a number nor true or false.
    std::optional<std::string> text(std::string_view name) const;

    // What Slack remarks about the request: "missing_charset".
    const std::vector<std::string>& warnings() const { return warnings_; }

  private:
    std::optional<SlackError> addBody(const SandboxRequest& request, bool takesJSON);
    std::optional<SlackError> addJSON(const SandboxRequest& request);

    std::vector<URLQueryItem> items_;
    std::vector<std::string> warnings_;
};

} // namespace zelto::sandbox
