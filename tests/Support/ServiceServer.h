#pragma once

#include <Support/Replaceable.h>
#include <Support/ServiceRoute.h>
#include <Support/TestHTTPServer.h>

#include <concepts>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The name of the file that a form uploads; `nullopt` for another request.
std::optional<std::string> uploadedFile(const ReceivedRequest& request);

// With "B" for the boundary of a form.
std::string withoutBoundary(const std::string& text);

// What a stand-in of a service must provide: the service's response to a request, on any thread, and a name
// for what a request creates; `nullopt` if it creates nothing. Uploads by a form are recognised without it.
// It may have `tokenPath`, the path of its refreshes, whose response is the token "fresh" and, where each
// refresh token is good once, `freshRefreshToken`; and `comparable`, which replaces what is random in the
// text of a request.
template <class T>
concept PlayedService = requires(const T& service, const ReceivedRequest& request) {
    { service.usualResponse(request) } -> std::same_as<PlayedResponse>;
    { service.madeBy(request) } -> std::same_as<std::optional<std::string>>;
};

// A stand-in of a service, which receives every request while it lives. It begins and ends within the life of
// the service's own members.
template <PlayedService Service> class ServiceServer : public Service {
  public:
    // `nullopt` for the service's own response.
    using Handler = std::function<std::optional<PlayedResponse>(const ReceivedRequest&)>;

    Replaceable<Handler> onRequest;

    // Requests whose text contains the part get this response, instead of what onRequest was before.
    void respondTo(const std::string& part, const PlayedResponse& response) {
        onRequest = [part, response](const ReceivedRequest& request) {
            return request.text().contains(part) ? std::optional(response) : std::nullopt;
        };
    }

    // The same for the requests of this line alone.
    void respondToLine(const std::string& line, const PlayedResponse& response) {
        onRequest = [line, response](const ReceivedRequest& request) {
            const bool isMeant = request.method + " " + request.target == line;
            return isMeant ? std::optional(response) : std::nullopt;
        };
    }

    void refuse(const std::string& part, int status) { respondTo(part, PlayedResponse::json("no", status)); }

    // "POST /1/cards?…", in order.
    std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (const auto& request : server.requests()) {
            lines.push_back(request.method + " " + request.target);
        }
        return lines;
    }

    // "card", "file a.pdf", … for each request that makes something.
    std::vector<std::string> made() const {
        std::vector<std::string> made;
        for (const auto& request : server.requests()) {
            if (auto name = nameOfMade(request)) {
                made.push_back(*std::move(name));
            }
        }
        return made;
    }

    // Whether the last request so far makes something.
    bool lastMakes() const {
        const auto requests = server.requests();
        return !requests.empty() && nameOfMade(requests.back());
    }

    // The text of each request, with "B" for the boundary and without what else is random.
    std::vector<std::string> texts() const {
        auto texts = server.texts();
        for (auto& text : texts) {
            text = withoutBoundary(text);
            if constexpr (requires { Service::comparable(text); }) {
                text = Service::comparable(text);
            }
        }
        return texts;
    }

  private:
    std::optional<std::string> nameOfMade(const ReceivedRequest& request) const {
        if (auto name = Service::madeBy(request)) {
            return name;
        }
        return uploadedFile(request).transform([](const auto& file) { return "file " + file; });
    }

    PlayedResponse respond(const ReceivedRequest& request) const {
        if (const auto handler = onRequest.get(); *handler) {
            if (auto own = (*handler)(request)) {
                return *std::move(own);
            }
        }
        if constexpr (requires { Service::tokenPath; }) {
            if (request.target == Service::tokenPath) {
                std::string token = R"({"access_token":"fresh","expires_in":3600)";
                if constexpr (requires { Service::freshRefreshToken; }) {
                    token += R"(,"refresh_token":")" + std::string(Service::freshRefreshToken) + '"';
                }
                return PlayedResponse::json(token + "}");
            }
        }
        return this->usualResponse(request);
    }

  public:
    // Behind what it uses: no request comes before the rest is there, or after it is gone.
    TestHTTPServer server{[this](const ReceivedRequest& request) { return respond(request); }};

  private:
    const ServiceRoute route_{server};
};

} // namespace zelto
