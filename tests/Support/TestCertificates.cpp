#include "TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace zelto {
namespace {

void addExtension(X509* certificate, int type, const std::string& value) {
    const std::unique_ptr<X509_EXTENSION, void (*)(X509_EXTENSION*)> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, type, value.c_str()), X509_EXTENSION_free);
    if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1) {
        throw std::runtime_error("no certificate extension " + value);
    }
}

template <class F> std::string written(F&& write) {
    const std::unique_ptr<BIO, int (*)(BIO*)> memory(BIO_new(BIO_s_mem()), BIO_free);
    write(memory.get());
    char* text = nullptr;
    const auto length = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

} // namespace

TestCertificate makeTestCertificate(const TestCertificateOptions& options, const TestCertificate* issuer) {
    static long serial = 0;
    const std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::shared_ptr<X509> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), options.validFrom);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), options.validUntil);
    X509_set_pubkey(certificate.get(), key.get());
    const auto name = "test " + std::to_string(serial);
    auto* const subject = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(),
                         issuer ? X509_get_subject_name(issuer->certificate.get()) : subject);
    addExtension(certificate.get(), NID_basic_constraints,
                 options.isAuthority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    if (!options.names.empty()) {
        addExtension(certificate.get(), NID_subject_alt_name, options.names);
    }
    if (X509_sign(certificate.get(), issuer ? issuer->key.get() : key.get(), EVP_sha256()) == 0) {
        throw std::runtime_error("no certificate could be signed");
    }
    return {key, certificate};
}

std::string TestCertificate::pem() const {
    return written([&](BIO* to) { PEM_write_bio_X509(to, certificate.get()); });
}

std::string TestCertificate::keyPEM() const {
    return written(
        [&](BIO* to) { PEM_write_bio_PrivateKey(to, key.get(), nullptr, nullptr, 0, nullptr, nullptr); });
}

} // namespace zelto
