#pragma once

#include "Support/TemporaryFolder.h"
#include "Support/TestCertificates.h"

#include <cstdint>

#include <sys/types.h>

namespace zelto {

// An external server (nghttpd) that only speaks HTTP/2 over TLS: it serves the files of a folder and echoes
// uploads. Ends with its owner.
class TestHTTP2Server {
  public:
    TestHTTP2Server(const TemporaryFolder& files, const TestCertificate& certificate);
    ~TestHTTP2Server();
    TestHTTP2Server(const TestHTTP2Server&) = delete;
    TestHTTP2Server& operator=(const TestHTTP2Server&) = delete;

    std::uint16_t port() const { return port_; }

  private:
    void stop();

    TemporaryFolder folder_;
    std::uint16_t port_ = 0;
    pid_t process_ = 0;
};

} // namespace zelto
