#include "TestHTTP2Server.h"

#include "Support/Eventually.h"
#include "Support/LoopbackSocket.h"

#include <csignal>
#include <stdexcept>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace zelto {
namespace {

// Debian's place for it, which is not in every user's PATH.
constexpr const char* program = "/usr/sbin/nghttpd";

} // namespace

TestHTTP2Server::TestHTTP2Server(const TemporaryFolder& files, const TestCertificate& certificate) {
    const auto keyFile = folder_.write("key.pem", certificate.keyPEM());
    const auto certificateFile = folder_.write("certificate.pem", certificate.pem());
    // It cannot let the system choose a port, and a port that was free may be taken meanwhile.
    for (int attempt = 0; attempt < 20; ++attempt) {
        port_ = LoopbackListener().port();
        const auto port = std::to_string(port_);
        process_ = ::fork();
        if (process_ == 0) {
            ::execl(program, program, "--echo-upload", "--address=127.0.0.1", "--htdocs",
                    files.path().c_str(), port.c_str(), keyFile.c_str(), certificateFile.c_str(), nullptr);
            ::_exit(127);
        }
        bool hasEnded = false;
        const bool isSettled = eventually([&] {
            hasEnded = ::waitpid(process_, nullptr, WNOHANG) != 0;
            return hasEnded || LoopbackSocket::connect(port_);
        });
        if (isSettled && !hasEnded) {
            return;
        }
        if (!hasEnded) {
            stop();
        }
    }
    throw std::runtime_error(std::string(program) + " does not start");
}

TestHTTP2Server::~TestHTTP2Server() {
    stop();
}

void TestHTTP2Server::stop() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

} // namespace zelto
