#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QString>

#include <functional>
#include <memory>

/// What is known of one exchange when it is over.
struct NetworkExchange
{
    QByteArray method;
    QString url;        ///< as sent, without user name and password
    int httpStatus = 0; ///< 0 when no answer arrived
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    /// For people; empty after success. The "message" of the service's error reply when it has one, else what
    /// the transport or HTTP has to say. Never holds a token.
    QString errorText;
    qint64 bytesReceived = 0; ///< of the body, as they came over the wire
    qint64 microseconds = 0;  ///< from the call to the end of the exchange
    QByteArray answer; ///< the body after success, decompressed; shares its memory with the reply, not a copy
};

/// What is called when an exchange is over.
using NetworkObserver = std::function<void(const NetworkExchange&)>;

/// Holds an observer in place: it is called as long as a copy of this lives, and never afterwards.
using NetworkObservation = std::shared_ptr<const void>;
