#pragma once

#include <QByteArray>
#include <QList>
#include <QNetworkReply>
#include <QString>

#include <chrono>

namespace rk {

/// One request as it goes on the wire, and the bounds of its exchange.
struct HttpRequest
{
    QByteArray method;
    QByteArray url; ///< encoded
    QByteArray body;
    QList<QByteArray> headerLines;
    std::chrono::milliseconds deadline{0};
    std::chrono::milliseconds connectTimeout{0};
    qint64 maximumReplySize = 0;
    QByteArray caFile;
    QByteArray proxy;
};

/// What came back. A body is there only when the whole answer arrived undamaged.
struct HttpAnswer
{
    bool isWhole = false;
    int status = 0; ///< 0 when no status line arrived
    QByteArray reason;
    QList<QNetworkReply::RawHeaderPair> headers;
    QByteArray body;
    qint64 bytesReceived = 0;
    /// Why the answer is not whole; NoError when it is, whatever its status.
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QString errorText;

    /// The first header of that name in any case; null when there is none.
    QByteArray header(const char* name) const;
    /// Drops the body and says why there is none.
    void fail(QNetworkReply::NetworkError code, const QString& text);
};

} // namespace rk
