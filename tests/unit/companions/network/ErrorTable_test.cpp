#include "ErrorTable.h"

#include <gtest/gtest.h>

namespace {

using rk::errorOfStatus;
using rk::errorOfTransport;

struct StatusRow
{
    int status;
    int error;
};

class ErrorOfStatus : public testing::TestWithParam<StatusRow>
{
};

struct TransportRow
{
    CURLcode code;
    QNetworkReply::NetworkError error;
};

class ErrorOfTransport : public testing::TestWithParam<TransportRow>
{
};

} // namespace

TEST_P(ErrorOfStatus, IsQtsOwnCode)
{
    EXPECT_EQ(static_cast<int>(errorOfStatus(GetParam().status)), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    ErrorTable, ErrorOfStatus,
    testing::Values(StatusRow{200, 0}, StatusRow{201, 0}, StatusRow{204, 0}, StatusRow{299, 0},
                    StatusRow{301, 10}, StatusRow{304, 10}, StatusRow{308, 10}, StatusRow{400, 302},
                    StatusRow{401, 204}, StatusRow{402, 299}, StatusRow{403, 201}, StatusRow{404, 203},
                    StatusRow{405, 202}, StatusRow{406, 299}, StatusRow{407, 105}, StatusRow{409, 206},
                    StatusRow{410, 207}, StatusRow{413, 299}, StatusRow{418, 302}, StatusRow{422, 299},
                    StatusRow{431, 299}, StatusRow{499, 299}, StatusRow{500, 401}, StatusRow{501, 402},
                    StatusRow{502, 499}, StatusRow{503, 403}, StatusRow{504, 499}, StatusRow{599, 499},
                    StatusRow{0, 399}, StatusRow{101, 399}, StatusRow{600, 399}, StatusRow{999, 399}),
    [](const auto& row) { return std::to_string(row.param.status); });

TEST_P(ErrorOfTransport, IsTheNearestOfQts)
{
    EXPECT_EQ(errorOfTransport(GetParam().code), GetParam().error) << curl_easy_strerror(GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(
    ErrorTable, ErrorOfTransport,
    testing::Values(TransportRow{CURLE_OK, QNetworkReply::NoError},
                    TransportRow{CURLE_URL_MALFORMAT, QNetworkReply::ProtocolUnknownError},
                    TransportRow{CURLE_COULDNT_RESOLVE_HOST, QNetworkReply::HostNotFoundError},
                    TransportRow{CURLE_COULDNT_RESOLVE_PROXY, QNetworkReply::ProxyNotFoundError},
                    TransportRow{CURLE_PROXY, QNetworkReply::UnknownProxyError},
                    TransportRow{CURLE_COULDNT_CONNECT, QNetworkReply::ConnectionRefusedError},
                    TransportRow{CURLE_GOT_NOTHING, QNetworkReply::RemoteHostClosedError},
                    TransportRow{CURLE_PARTIAL_FILE, QNetworkReply::RemoteHostClosedError},
                    TransportRow{CURLE_SEND_ERROR, QNetworkReply::RemoteHostClosedError},
                    TransportRow{CURLE_SEND_FAIL_REWIND, QNetworkReply::RemoteHostClosedError},
                    TransportRow{CURLE_RECV_ERROR, QNetworkReply::RemoteHostClosedError},
                    TransportRow{CURLE_OPERATION_TIMEDOUT, QNetworkReply::TimeoutError},
                    TransportRow{CURLE_SSL_CONNECT_ERROR, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_ENGINE_NOTFOUND, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_ENGINE_SETFAILED, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_CERTPROBLEM, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_CIPHER, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_PEER_FAILED_VERIFICATION, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_ENGINE_INITFAILED, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_CACERT_BADFILE, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_CRL_BADFILE, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_ISSUER_ERROR, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_PINNEDPUBKEYNOTMATCH, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_INVALIDCERTSTATUS, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_SSL_CLIENTCERT, QNetworkReply::SslHandshakeFailedError},
                    TransportRow{CURLE_UNSUPPORTED_PROTOCOL, QNetworkReply::ProtocolFailure},
                    TransportRow{CURLE_WEIRD_SERVER_REPLY, QNetworkReply::ProtocolFailure},
                    TransportRow{CURLE_BAD_CONTENT_ENCODING, QNetworkReply::ProtocolFailure},
                    TransportRow{CURLE_OUT_OF_MEMORY, QNetworkReply::UnknownNetworkError}),
    [](const auto& row) { return "Curl" + std::to_string(row.param.code); });

TEST(ErrorTable, NoFailureOfTheTransportIsASuccess)
{
    for (int code = 1; code < CURL_LAST; ++code) {
        EXPECT_NE(errorOfTransport(static_cast<CURLcode>(code)), QNetworkReply::NoError) << code;
    }
}
