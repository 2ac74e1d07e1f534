#pragma once

#include "Support/TestHTTPServer.h"

#include <Platform/HTTP/URLSessionConfiguration.h>

namespace zelto {

// As long as this lives, new sessions send requests to the services to this address.
class ServiceRoute {
  public:
    explicit ServiceRoute(const URL& address) {
        auto routed = before_;
        routed.route = address;
        URLSessionConfiguration::setDefaults(std::move(routed));
    }

    explicit ServiceRoute(const TestHTTPServer& server) : ServiceRoute(server.url()) {}

    ~ServiceRoute() { URLSessionConfiguration::setDefaults(before_); }

    ServiceRoute(const ServiceRoute&) = delete;
    ServiceRoute& operator=(const ServiceRoute&) = delete;

  private:
    const URLSessionConfiguration before_ = URLSessionConfiguration::ephemeral();
};

} // namespace zelto
