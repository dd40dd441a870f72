#include "TestCertificates.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdint>

namespace {

struct FreeBio
{
    void operator()(BIO* bio) const { BIO_free(bio); }
};
using Bio = std::unique_ptr<BIO, FreeBio>;

// What a PEM writer of OpenSSL's puts into memory.
template <typename Write>
QByteArray written(Write write)
{
    const Bio bio(BIO_new(BIO_s_mem()));
    write(bio.get());
    char* text = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &text);
    return {text, static_cast<int>(size)};
}

constexpr long secondsOfDay = 24 * 3600;

} // namespace

TestAuthority::TestAuthority() : m_key(newKey()), m_certificate(newCertificate(m_key.get(), "Test CA", -1, 1))
{
    X509* certificate = m_certificate.get();
    X509_set_issuer_name(certificate, X509_get_subject_name(certificate));
    extend(certificate, NID_basic_constraints, "critical,CA:TRUE");
    extend(certificate, NID_key_usage, "critical,keyCertSign");
    X509_sign(certificate, m_key.get(), EVP_sha256());
}

QByteArray TestAuthority::pem() const
{
    return pemOf(m_certificate.get());
}

TestCertificate TestAuthority::issue(const QByteArray& name, int firstDay, int lastDay) const
{
    const Key key = newKey();
    const Certificate certificate = newCertificate(key.get(), "Test service", firstDay, lastDay);
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(m_certificate.get()));
    extend(certificate.get(), NID_subject_alt_name, name);
    X509_sign(certificate.get(), m_key.get(), EVP_sha256());
    return asQt(certificate.get(), key.get());
}

TestCertificate TestAuthority::selfSigned(const QByteArray& name)
{
    const Key key = newKey();
    const Certificate certificate = newCertificate(key.get(), "Test service", -1, 1);
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get()));
    extend(certificate.get(), NID_subject_alt_name, name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    return asQt(certificate.get(), key.get());
}

TestAuthority::Key TestAuthority::newKey()
{
    return Key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
}

TestAuthority::Certificate TestAuthority::newCertificate(EVP_PKEY* key, const char* commonName, int firstDay,
                                                         int lastDay)
{
    Certificate certificate(X509_new());
    X509_set_version(certificate.get(), X509_VERSION_3);
    std::uint32_t serial = 0;
    RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial);
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()), serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), firstDay * secondsOfDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lastDay * secondsOfDay);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
    return certificate;
}

void TestAuthority::extend(X509* certificate, int extension, const QByteArray& value)
{
    X509_EXTENSION* made = X509V3_EXT_conf_nid(nullptr, nullptr, extension, value.constData());
    X509_add_ext(certificate, made, -1);
    X509_EXTENSION_free(made);
}

QByteArray TestAuthority::pemOf(X509* certificate)
{
    return written([certificate](BIO* bio) { PEM_write_bio_X509(bio, certificate); });
}

TestCertificate TestAuthority::asQt(X509* certificate, EVP_PKEY* key)
{
    const QByteArray keyPem = written([key](BIO* bio) {
        PEM_write_bio_PrivateKey_traditional(bio, key, nullptr, nullptr, 0, nullptr, nullptr);
    });
    return {QSslCertificate(pemOf(certificate)), QSslKey(keyPem, QSsl::Ec)};
}
