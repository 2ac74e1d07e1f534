#pragma once

#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/FakeAuthoriser.h>
#include <Support/ServiceRoute.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>

#include <memory>
#include <string>
#include <vector>

namespace zelto {

using Responses = std::vector<PlayedResponse>;

inline URLRequest itemRequest(std::string method = "GET", const std::string& path = "/items") {
    return URLRequest(*URL::parse("https://api.example" + path), std::move(method));
}

inline bool isRefresh(const ReceivedRequest& request) {
    return request.target.ends_with("/token");
}

inline const PlayedResponse& freshToken() {
    static const auto response = PlayedResponse::json(R"({"access_token":"new-token","expires_in":3600})");
    return response;
}

// What goes over the wire: the text of a signed GET of an item, and of a refresh.
inline std::string signedRequest(const std::string& token, const std::string& path = "/items") {
    return "GET " + path + "\nAuthorization: Bearer " + token + "\n\n";
}

template <class T = std::string> ServiceResult<T> performed(ServiceClient& client, URLRequest request) {
    Completed<ServiceResult<T>> end;
    client.perform<T>(std::move(request), nullptr, end.template callback<ServiceCompletion<T>>());
    return end.value();
}

// Many requests and their ends.
class Requests {
  public:
    Requests(ServiceClient& client, int count) : ends_(static_cast<std::size_t>(count)) {
        for (auto& end : ends_) {
            client.perform<std::string>(itemRequest(), nullptr,
                                        end.callback<ServiceCompletion<std::string>>());
        }
    }

    bool allEndWith(const ServiceResult<std::string>& expected) {
        bool all = true;
        for (auto& end : ends_) {
            all = end.value() == expected && all;
        }
        return all;
    }

    std::vector<Completed<ServiceResult<std::string>>>& ends() { return ends_; }

  private:
    std::vector<Completed<ServiceResult<std::string>>> ends_;
};

} // namespace zelto
