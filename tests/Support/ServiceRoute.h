#pragma once

#include "Support/TestHTTPServer.h"

#include <Platform/HTTP/URLSessionConfiguration.h>

namespace zelto {

// While this lives, sessions that are made send what is meant for the services to a test server.
class ServiceRoute {
  public:
    explicit ServiceRoute(const TestHTTPServer& server) {
        auto routed = before_;
        routed.route = server.url();
        URLSessionConfiguration::setDefaults(std::move(routed));
    }

    ~ServiceRoute() { URLSessionConfiguration::setDefaults(before_); }

    ServiceRoute(const ServiceRoute&) = delete;
    ServiceRoute& operator=(const ServiceRoute&) = delete;

  private:
    const URLSessionConfiguration before_ = URLSessionConfiguration::ephemeral();
};

} // namespace zelto
