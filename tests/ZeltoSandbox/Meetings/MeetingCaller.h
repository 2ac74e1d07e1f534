#pragma once

#include <ZeltoSandbox/SandboxCaller.h>

#include <string>
#include <utility>

namespace zelto {

// Sends requests with JSON to the API of one meeting service.
class MeetingCaller : public SandboxCaller {
  public:
    // `service` is its name in the control API, `key` the one in the state.
    MeetingCaller(std::string host, std::string service, std::string key);

    CallerResponse call(const std::string& method, const std::string& target, const std::string& body = {},
                        const std::string& type = "application/json") const;
    // The JSON of the response to a creation; throws where it is refused, which fails the test.
    JSONValue create(const std::string& target, const std::string& body) const;
    // "zoom.us" and "/j/1", as a browser reaches it.
    CallerResponse open(const std::string& joinURL) const;

    // Of the state: the members of each meeting that was not added by a setting, as
    // "title|start|end|kind|changes|deleted".
    std::vector<std::string> meetings() const;
    // The last meeting of the state.
    JSONValue lastMeeting() const;
    std::size_t meetingCount() const;

    std::string problem() const { return server->requests().back().problem; }

    std::string token;

  private:
    std::string host_;
    std::string key_;
};

} // namespace zelto
