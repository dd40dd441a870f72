#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QSslKey>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

/// A certificate and its key, made for one test.
struct TestCertificate
{
    QSslCertificate certificate;
    QSslKey key;
};

/// A certificate authority that lives as long as a test, with elliptic-curve keys (RFC 5280, RFC 5480).
class TestAuthority
{
public:
    TestAuthority();

    /// Its own certificate, as a CA file holds it.
    QByteArray pem() const;

    /// A certificate for `name`, an entry of subjectAltName such as "IP:127.0.0.1" or "DNS:pit.example",
    /// valid from so many days from now to so many.
    TestCertificate issue(const QByteArray& name, int firstDay = -1, int lastDay = 1) const;
    /// One that nobody but its own key has signed.
    static TestCertificate selfSigned(const QByteArray& name);

private:
    struct FreeKey
    {
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };
    struct FreeCertificate
    {
        void operator()(X509* certificate) const { X509_free(certificate); }
    };
    using Key = std::unique_ptr<EVP_PKEY, FreeKey>;
    using Certificate = std::unique_ptr<X509, FreeCertificate>;

    static Key newKey();
    static Certificate newCertificate(EVP_PKEY* key, const char* commonName, int firstDay, int lastDay);
    static void extend(X509* certificate, int extension, const QByteArray& value);
    static QByteArray pemOf(X509* certificate);
    static TestCertificate asQt(X509* certificate, EVP_PKEY* key);

    Key m_key;
    Certificate m_certificate;
};
