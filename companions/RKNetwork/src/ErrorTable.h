#pragma once

#include <QNetworkReply>

#include <curl/curl.h>

namespace rk {

/// Qt's code for a libcurl result (libcurl-errors(3)).
QNetworkReply::NetworkError errorOfTransport(CURLcode code);

/// Qt's code for an HTTP status (RFC 9110, 15), the one its own manager gives; NoError for 2xx.
QNetworkReply::NetworkError errorOfStatus(int status);

} // namespace rk
