#include <Platform/HTTP/URLSession.h>

#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"
#include "Support/TestTLSServer.h"

#include <gtest/gtest.h>

#include <openssl/ssl.h>

namespace zelto {
namespace {

class URLSessionTLS : public testing::Test {
  protected:
    const TemporaryFolder folder;
    const TestCertificate authority = makeTestCertificate({.names = "", .isAuthority = true}, nullptr);
    const std::filesystem::path authorityFile = folder.write("authority.pem", authority.pem());

    URLSessionConfiguration trusting() const {
        auto configuration = URLSessionConfiguration::ephemeral();
        configuration.certificateAuthorities = authorityFile;
        return configuration;
    }

    // How a request ends; if it was refused, nothing of it may have been sent.
    static std::string endOf(const TestTLSServer& server, const URLSessionConfiguration& configuration,
                             const std::string& host = "localhost") {
        const int before = server.requestCount();
        URLSession session(configuration);
        URLRequest request(server.url(host), "POST");
        request.headers.set("Authorization", "Bearer secret");
        const auto end = TaskEnd::of(session, request);
        if (!end.error) {
            return end.text();
        }
        EXPECT_EQ(server.requestCount(), before);
        EXPECT_FALSE(end.error->message.contains("secret")) << end.error->message;
        return std::string(nameOf(end.error->code)) + ": " + end.error->message;
    }

    static std::string refusal(const std::string& reason, const std::string& host = "localhost") {
        return "secureConnection: The connection to the server is not secure (" + host + ": " + reason + ").";
    }
};

TEST_F(URLSessionTLS, AServerWithATrustedCertificateIsReachedByNameAndAddress) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, &authority)});
    for (const auto* host : {"localhost", "127.0.0.1"}) {
        EXPECT_EQ(endOf(server, trusting(), host), "secure");
        EXPECT_EQ(endOf(server, trusting(), host), "secure");
        EXPECT_EQ(server.protocol(), "TLSv1.3");
    }
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST_F(URLSessionTLS, Version12IsTheOldest) {
    const auto certificate = makeTestCertificate({}, &authority);
    const TestTLSServer good({.certificate = certificate, .newestVersion = TLS1_2_VERSION});
    EXPECT_EQ(endOf(good, trusting()), "secure");
    EXPECT_EQ(good.protocol(), "TLSv1.2");
    for (const int version : {TLS1_1_VERSION, TLS1_VERSION}) {
        const TestTLSServer old({.certificate = certificate, .newestVersion = version});
        EXPECT_TRUE(endOf(old, trusting()).starts_with("secureConnection: ")) << version;
        EXPECT_EQ(old.connectionCount(), 1);
    }
}

TEST_F(URLSessionTLS, ACertificateOfAnAuthorityThatIsNotTrustedIsRefused) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, &authority)});
    EXPECT_EQ(endOf(server, URLSessionConfiguration::ephemeral()),
              refusal("SSL certificate problem: unable to get local issuer certificate"));
}

TEST_F(URLSessionTLS, AConnectionOfATrustingSessionServesNoOther) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, &authority)});
    EXPECT_EQ(endOf(server, trusting()), "secure");
    EXPECT_TRUE(endOf(server, URLSessionConfiguration::ephemeral()).starts_with("secureConnection: "));
    EXPECT_EQ(endOf(server, trusting()), "secure");
}

TEST_F(URLSessionTLS, ACertificateThatSignedItselfIsRefused) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, nullptr)});
    EXPECT_EQ(endOf(server, trusting()), refusal("SSL certificate problem: self-signed certificate"));
}

TEST_F(URLSessionTLS, ACertificateOutOfItsTimeIsRefused) {
    const TestTLSServer expired({.certificate = makeTestCertificate({.validUntil = -60}, &authority)});
    EXPECT_EQ(endOf(expired, trusting()), refusal("SSL certificate problem: certificate has expired"));
    const TestTLSServer early({.certificate = makeTestCertificate({.validFrom = 600}, &authority)});
    EXPECT_EQ(endOf(early, trusting()), refusal("SSL certificate problem: certificate is not yet valid"));
}

TEST_F(URLSessionTLS, ACertificateForAnotherNameIsRefused) {
    const TestTLSServer server(
        {.certificate = makeTestCertificate({.names = "DNS:example.com,DNS:*.localhost"}, &authority)});
    for (const auto* host : {"localhost", "127.0.0.1"}) {
        EXPECT_TRUE(endOf(server, trusting(), host).starts_with("secureConnection: ")) << host;
    }
}

TEST_F(URLSessionTLS, AServerWithoutTLSIsRefused) {
    ScriptedServer plain([](Conversation& conversation) {
        conversation.read(10);
        conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    });
    URLSession session(trusting());
    const auto url = URL::parse("https://localhost:" + std::to_string(plain.port()) + "/");
    EXPECT_EQ(TaskEnd::of(session, URLRequest(*url)).code(), URLErrorCode::secureConnection);
}

TEST_F(URLSessionTLS, AFileOfAuthoritiesThatCannotBeReadTrustsNobody) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, &authority)});
    for (const auto& file : {folder / "absent.pem", folder.write("empty.pem", "nothing"), folder.path()}) {
        auto configuration = URLSessionConfiguration::ephemeral();
        configuration.certificateAuthorities = file;
        EXPECT_TRUE(endOf(server, configuration).starts_with("secureConnection: ")) << file;
    }
}

TEST_F(URLSessionTLS, NoVariableOfTheEnvironmentAddsAuthorities) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, &authority)});
    for (const auto* name : {"SSL_CERT_FILE", "CURL_CA_BUNDLE", "REQUESTS_CA_BUNDLE"}) {
        ::setenv(name, authorityFile.c_str(), 1);
        EXPECT_TRUE(endOf(server, URLSessionConfiguration::ephemeral()).starts_with("secureConnection: "));
        ::unsetenv(name);
    }
}

TEST_F(URLSessionTLS, AResponseThatIsShorterThanItsLengthIsNotWhole) {
    const TestTLSServer server({.certificate = makeTestCertificate({}, &authority),
                                .cutResponse = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf of it"});
    URLSession session(trusting());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).code(), URLErrorCode::connectionLost);
}

} // namespace
} // namespace zelto
