#pragma once

#include "NetworkExchange.h"
#include "RKNetworkExport.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QString>

#include <chrono>
#include <memory>

class QJsonArray;
class QJsonObject;

/// The process-wide HTTP client of the monitoring service.
///
/// It sends JSON over HTTP/1.1 and is driven by the event loop of the thread that calls it; one thread at a
/// time may use it. Connections are kept and used again.
///
/// URLs are given raw, as text without percent-encoding: the base address of RKBaseApi stands as configured,
/// and everything after it is encoded so that each character arrives as it was typed (RFC 3986).
///
/// A request is sent at most once, except a GET whose kept connection ended before the first line of an
/// answer had arrived, which is sent once more. Redirects are not followed. An exchange succeeds when the
/// whole answer arrived with a 2xx status and its body is JSON (an object or an array), or is empty and the
/// request was not a GET; everything else is a failure with one of Qt's own codes.
///
/// Every request returns a reply that has not finished yet, also when it cannot be sent; the reply belongs to
/// the caller, as a rule to a NetworkEventLoop. Without a QCoreApplication the reply has failed already.
class RKNETWORK_EXPORT NetworkManager
{
public:
    static NetworkManager& instance();

    /// Starts GET url.
    QNetworkReply* get(const QString& url);
    /// Starts POST url with the compact JSON text of the body.
    QNetworkReply* postJson(const QString& url, const QJsonObject& body);
    /// Starts POST url with the compact JSON text of the body.
    QNetworkReply* postJson(const QString& url, const QJsonArray& body);
    /// Starts PUT url with the compact JSON text of the body.
    QNetworkReply* putJson(const QString& url, const QJsonObject& body);
    /// Starts PATCH url with the compact JSON text of the body.
    QNetworkReply* patchJson(const QString& url, const QJsonObject& body);
    /// Starts DELETE url, without a body, on a connection of its own.
    QNetworkReply* deleteResource(const QString& url);

    /// Cancels every exchange that the calling thread has under way, for a "Cancel" button: each fails with
    /// OperationCanceledError as soon as its wait runs events again, and the operation that waits for it
    /// fails. The service may have carried out a write that was cancelled.
    void abortAll();

    /// Sets the token that is sent as "Authorization: Bearer TOKEN" (RFC 6750) to the scheme, host and port
    /// of RKBaseApi's address and to nothing else. Empty text sends none. Returns false, and keeps the token
    /// it had, when the text holds a control character or one outside ASCII.
    bool setBearerToken(const QString& token);
    /// The longest an exchange may take from the call to the last byte; 30 s at first. Zero or less sets no
    /// limit.
    void setDeadline(std::chrono::milliseconds deadline);
    std::chrono::milliseconds deadline() const;
    /// The longest that finding the host, connecting and the TLS handshake may take; 10 s at first.
    void setConnectTimeout(std::chrono::milliseconds timeout);
    /// The largest body accepted, in bytes after decompression; 256 MiB at first, 1 GiB at most.
    void setMaximumReplySize(qint64 bytes);
    /// A file of PEM certificates that may sign the service's; empty text for the system's own.
    void setCaFile(const QString& path);
    /// A proxy such as "http://proxy.example:3128"; "direct" for none; empty text, as at first, for the one
    /// that the environment names (http_proxy, https_proxy, no_proxy).
    void setProxy(const QString& proxy);
    /// Has the observer called once after every exchange, as long as a copy of what is returned lives;
    /// several are called in the order in which they were added. That is in the thread that began the
    /// exchange and before its wait returns. An observer may begin exchanges of its own and wait for them,
    /// add observers and end observations, its own too.
    Q_REQUIRED_RESULT NetworkObservation addObserver(NetworkObserver observer);
    /// The same for an application that needs one observer for good: it takes the place of the one that was
    /// set before, and stays until an empty function takes it away. Those that were added stay as they are.
    void setObserver(NetworkObserver observer);

    NetworkManager(const NetworkManager&) = delete;
    NetworkManager& operator=(const NetworkManager&) = delete;

private:
    NetworkManager();
    ~NetworkManager();

    QNetworkReply* send(const QByteArray& method, const QString& url, const QByteArray& body);

    struct Settings;
    std::unique_ptr<Settings> m_settings;
};
