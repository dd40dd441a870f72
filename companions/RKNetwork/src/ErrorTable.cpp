#include "ErrorTable.h"

namespace rk {

QNetworkReply::NetworkError errorOfTransport(CURLcode code)
{
    switch (code) {
    case CURLE_OK:
        return QNetworkReply::NoError;
    case CURLE_URL_MALFORMAT:
        return QNetworkReply::ProtocolUnknownError;
    case CURLE_COULDNT_RESOLVE_HOST:
        return QNetworkReply::HostNotFoundError;
    case CURLE_COULDNT_RESOLVE_PROXY:
        return QNetworkReply::ProxyNotFoundError;
    case CURLE_PROXY:
        return QNetworkReply::UnknownProxyError;
    case CURLE_COULDNT_CONNECT:
        return QNetworkReply::ConnectionRefusedError;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_SEND_FAIL_REWIND:
    case CURLE_RECV_ERROR:
        return QNetworkReply::RemoteHostClosedError;
    case CURLE_OPERATION_TIMEDOUT:
        return QNetworkReply::TimeoutError;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CLIENTCERT:
        return QNetworkReply::SslHandshakeFailedError;
    // libcurl answers "unsupported protocol" to bytes that are no HTTP/1 answer; schemes are checked before.
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
        return QNetworkReply::ProtocolFailure;
    default:
        return QNetworkReply::UnknownNetworkError;
    }
}

QNetworkReply::NetworkError errorOfStatus(int status)
{
    switch (status) {
    case 400:
    case 418:
        return QNetworkReply::ProtocolInvalidOperationError;
    case 401:
        return QNetworkReply::AuthenticationRequiredError;
    case 403:
        return QNetworkReply::ContentAccessDenied;
    case 404:
        return QNetworkReply::ContentNotFoundError;
    case 405:
        return QNetworkReply::ContentOperationNotPermittedError;
    case 407:
        return QNetworkReply::ProxyAuthenticationRequiredError;
    case 409:
        return QNetworkReply::ContentConflictError;
    case 410:
        return QNetworkReply::ContentGoneError;
    case 500:
        return QNetworkReply::InternalServerError;
    case 501:
        return QNetworkReply::OperationNotImplementedError;
    case 503:
        return QNetworkReply::ServiceUnavailableError;
    default:
        break;
    }
    if (status >= 200 && status < 300) {
        return QNetworkReply::NoError;
    }
    // A redirect is one more than the none that are followed.
    if (status >= 300 && status < 400) {
        return QNetworkReply::TooManyRedirectsError;
    }
    if (status >= 400 && status < 500) {
        return QNetworkReply::UnknownContentError;
    }
    if (status >= 500 && status < 600) {
        return QNetworkReply::UnknownServerError;
    }
    return QNetworkReply::ProtocolFailure;
}

} // namespace rk
