#pragma once

#include "CurlDriver.h"
#include "ExchangeObservers.h"
#include "HttpTransfer.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QPointer>

#include <memory>

namespace rk {

/// The reply of one exchange. It finishes once, when the whole body is there or the exchange failed;
/// readyRead comes just before finished.
class HttpReply : public QNetworkReply
{
public:
    /// Sends the request. `observers` are told when the exchange is over, `secret` is kept out of every text.
    HttpReply(HttpRequest request, std::shared_ptr<const ExchangeObservers> observers,
              const QByteArray& secret);
    /// Cancels an exchange that is not over.
    ~HttpReply() override;

    /// The parsed body: an object or an array, or null when there is none that can be read.
    const QJsonDocument& document() const { return m_document; }

    void abort() override;
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char* data, qint64 size) override;

private:
    void start();
    void cancelTransfer();
    void whenTransferFinished();
    void readAnswer(const HttpAnswer& answer);
    void fail(NetworkError error, const QString& text);
    void closeExchange();
    void report() const;
    QString statusText(const HttpAnswer& answer) const;
    QString redacted(QString text) const;
    QString redactedAndShortened(const QString& text) const;
    void redactMessage();

    HttpTransfer m_transfer;
    QPointer<CurlDriver> m_driver; ///< runs the transfer; null when there is none, or no more
    std::shared_ptr<const ExchangeObservers> m_observers;
    QString m_secret;
    QElapsedTimer m_watch;
    QJsonDocument m_document;
    QByteArray m_body;
    int m_readPosition = 0;
    int m_status = 0;
    qint64 m_bytesReceived = 0;
    QString m_errorText;
};

} // namespace rk
