#pragma once

#include "Support/TemporaryFolder.h"

#include <ctime>
#include <filesystem>
#include <memory>
#include <string>

struct evp_pkey_st;
struct x509_st;

namespace zelto {

// A certificate with its key.
struct TestCertificate {
    std::shared_ptr<evp_pkey_st> key;
    std::shared_ptr<x509_st> certificate;

    std::string pem() const;    // the certificate
    std::string keyPEM() const; // the private key
};

struct TestCertificateOptions {
    std::string names = "DNS:localhost,IP:127.0.0.1"; // in OpenSSL's syntax for a subjectAltName
    long validFrom = -3600;                           // seconds from now
    long validUntil = 3600;
    bool isAuthority = false;
};

// Signed by the issuer, or by itself.
TestCertificate makeTestCertificate(const TestCertificateOptions& options, const TestCertificate* issuer);

} // namespace zelto
