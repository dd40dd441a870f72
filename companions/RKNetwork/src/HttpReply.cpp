#include "HttpReply.h"

#include "Address.h"
#include "ErrorTable.h"
#include "ParallelJson.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QNetworkRequest>
#include <QUrl>

#include <algorithm>
#include <cstring>
#include <utility>

namespace rk {

namespace {

// Nothing below fatal is on before a filter rule says so. Holds neither tokens nor bodies.
Q_LOGGING_CATEGORY(networkLog, "rk.network", QtFatalMsg)

QNetworkAccessManager::Operation operationOf(const QByteArray& method)
{
    if (method == "POST") {
        return QNetworkAccessManager::PostOperation;
    }
    if (method == "GET") {
        return QNetworkAccessManager::GetOperation;
    }
    if (method == "PUT") {
        return QNetworkAccessManager::PutOperation;
    }
    if (method == "DELETE") {
        return QNetworkAccessManager::DeleteOperation;
    }
    return QNetworkAccessManager::CustomOperation;
}

// The text cut to what a message can hold.
QString shortened(const QString& text)
{
    constexpr int most = 500;
    return text.size() <= most ? text : text.left(most) + QStringLiteral("...");
}

} // namespace

HttpReply::HttpReply(HttpRequest request, std::shared_ptr<const ExchangeObservers> observers,
                     const QByteArray& secret)
    : m_transfer(std::move(request), [this] { whenTransferFinished(); }), m_observers(std::move(observers)),
      m_secret(QString::fromLatin1(secret))
{
    open(QIODevice::ReadOnly);
    m_watch.start();
    // The request first: what the reply says of itself is filled in while the service works.
    start();
    const QUrl url(withoutSecrets(m_transfer.request().url));
    setUrl(url);
    setRequest(QNetworkRequest(url));
    setOperation(operationOf(m_transfer.request().method));
}

void HttpReply::start()
{
    const QByteArray& url = m_transfer.request().url;
    m_driver = CurlDriver::ofThisThread();
    if (!m_driver) {
        fail(UnknownNetworkError, QStringLiteral("there is no QCoreApplication to wait in"));
        setFinished(true);
        report();
    } else if (!isWebAddress(url)) {
        m_transfer.fail(
            ProtocolUnknownError,
            QStringLiteral(
                "\"%1\" does not begin with http:// or https:// and a host; is the base address set?")
                .arg(redactedAndShortened(withoutSecrets(url))));
        m_driver->startFailed(m_transfer);
    } else {
        m_driver->start(m_transfer);
    }
}

void HttpReply::cancelTransfer()
{
    if (m_driver) {
        m_driver->cancel(m_transfer);
    }
}

HttpReply::~HttpReply()
{
    if (isFinished()) {
        return;
    }
    cancelTransfer(); // first: the observer may run events
    fail(OperationCanceledError, QStringLiteral("the reply was deleted before it finished"));
    setFinished(true);
    // The application may be gone already, and whoever listened with it.
    if (QCoreApplication::instance()) {
        report();
    }
}

void HttpReply::abort()
{
    if (isFinished()) {
        return;
    }
    cancelTransfer();
    fail(OperationCanceledError, QStringLiteral("the exchange was cancelled"));
    closeExchange();
}

qint64 HttpReply::bytesAvailable() const
{
    return QNetworkReply::bytesAvailable() + m_body.size() - m_readPosition;
}

qint64 HttpReply::readData(char* data, qint64 size)
{
    const qint64 left = m_body.size() - m_readPosition;
    if (left == 0 && isFinished()) {
        return -1;
    }
    const qint64 count = std::min(size, left);
    std::memcpy(data, m_body.constData() + m_readPosition, static_cast<size_t>(count));
    m_readPosition += static_cast<int>(count);
    return count;
}

void HttpReply::whenTransferFinished()
{
    readAnswer(m_transfer.answer());
    closeExchange();
}

// Judges the answer: whole, then its status, then its body.
void HttpReply::readAnswer(const HttpAnswer& answer)
{
    m_status = answer.status;
    m_bytesReceived = answer.bytesReceived;
    for (const RawHeaderPair& header : answer.headers) {
        setRawHeader(header.first, header.second);
    }
    if (m_status != 0) {
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute, m_status);
        setAttribute(QNetworkRequest::HttpReasonPhraseAttribute, QString::fromLatin1(answer.reason));
    }
    if (!answer.isWhole) {
        fail(answer.error, redactedAndShortened(answer.errorText));
        return;
    }
    if (m_status >= 300 && m_status < 400) {
        // What comes with a redirect is not the service's answer, however much it looks like one.
        fail(errorOfStatus(m_status), statusText(answer));
        return;
    }

    m_body = answer.body;
    QJsonParseError parsing = {};
    if (!m_body.isEmpty()) {
        m_document = parseJson(m_body, &parsing);
    }
    const NetworkError error = errorOfStatus(m_status);
    if (error != NoError) {
        redactMessage();
        fail(error, statusText(answer));
    } else if (!m_body.isEmpty() && m_document.isNull()) {
        fail(ProtocolFailure, QStringLiteral("the reply is not JSON: %1 at byte %2")
                                  .arg(parsing.errorString())
                                  .arg(parsing.offset));
    } else if (m_body.isEmpty() && operation() == QNetworkAccessManager::GetOperation) {
        // Who asks for alarms and gets nothing must not take it for "no alarms".
        fail(ProtocolFailure, QStringLiteral("the reply is empty"));
    }
}

QString HttpReply::statusText(const HttpAnswer& answer) const
{
    const QString message = m_document.object().value(QLatin1String("message")).toString();
    if (!message.isEmpty()) {
        return message;
    }
    const QString status = QStringLiteral("HTTP status %1 %2")
                               .arg(answer.status)
                               .arg(redactedAndShortened(QString::fromLatin1(answer.reason)))
                               .trimmed();
    const QByteArray location = answer.header("Location");
    if (answer.status < 300 || answer.status >= 400 || location.isEmpty()) {
        return status;
    }
    return QStringLiteral("%1: the service redirects to \"%2\", and redirects are not followed")
        .arg(status, redactedAndShortened(withoutSecrets(location)));
}

// The text without the token, which a service or a proxy may have sent back.
QString HttpReply::redacted(QString text) const
{
    return m_secret.isEmpty() ? text : text.replace(m_secret, QStringLiteral("***"));
}

// In this order: half a token would not be recognised.
QString HttpReply::redactedAndShortened(const QString& text) const
{
    return shortened(redacted(text));
}

// Takes the token out of the "message" of an error reply, which is shown to people.
void HttpReply::redactMessage()
{
    QJsonObject object = m_document.object();
    const auto message = object.find(QLatin1String("message"));
    if (m_secret.isEmpty() || message == object.end() || !message->toString().contains(m_secret)) {
        return;
    }
    *message = redacted(message->toString());
    m_document.setObject(object);
}

void HttpReply::fail(NetworkError error, const QString& text)
{
    m_errorText = redacted(text);
    setError(error, m_errorText);
}

// The last act of an exchange. Each step may run code that deletes the reply.
void HttpReply::closeExchange()
{
    setFinished(true);
    const QPointer<HttpReply> self(this);
    report();
    if (self && m_status != 0) {
        Q_EMIT metaDataChanged();
    }
    if (self && !m_body.isEmpty()) {
        Q_EMIT readyRead();
    }
    if (self && error() != NoError) {
        Q_EMIT errorOccurred(error());
    }
    if (self) {
        Q_EMIT finished();
    }
}

void HttpReply::report() const
{
    const std::shared_ptr<const ExchangeObservers> observers = m_observers; // the reply may go meanwhile
    if (observers->isEmpty() && !networkLog().isDebugEnabled()) {
        return;
    }
    NetworkExchange exchange;
    exchange.method = m_transfer.request().method;
    exchange.url = withoutSecrets(m_transfer.request().url);
    exchange.httpStatus = m_status;
    exchange.error = error();
    exchange.errorText = m_errorText;
    exchange.bytesReceived = m_bytesReceived;
    exchange.microseconds = m_watch.nsecsElapsed() / 1000;
    if (error() == NoError) {
        exchange.answer = m_body; // that of a failure may repeat the token
    }
    qCDebug(networkLog).noquote() << exchange.method << exchange.url << exchange.httpStatus << exchange.error
                                  << exchange.bytesReceived << "bytes" << exchange.microseconds << "us"
                                  << exchange.errorText;
    observers->tell(exchange);
}

} // namespace rk
