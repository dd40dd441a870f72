#include "HttpReply.h"

#include "Address.h"
#include "CurlDriver.h"
#include "ErrorTable.h"
#include "Logging.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QNetworkRequest>
#include <QPointer>
#include <QUrl>

#include <algorithm>
#include <cstring>
#include <utility>

// Nothing below fatal is on before a filter rule says so.
Q_LOGGING_CATEGORY(networkLog, "rk.network", QtFatalMsg)

namespace {

QNetworkAccessManager::Operation operationOf(const QByteArray& method)
{
    if (method == "POST")
        return QNetworkAccessManager::PostOperation;
    if (method == "PUT")
        return QNetworkAccessManager::PutOperation;
    if (method == "DELETE")
        return QNetworkAccessManager::DeleteOperation;
    return QNetworkAccessManager::GetOperation;
}

/// The text cut to what a message can hold.
QString shortened(const QString& text)
{
    constexpr int most = 500;
    return text.size() <= most ? text : text.left(most) + QStringLiteral("...");
}

} // namespace

HttpReply::HttpReply(HttpRequest request, NetworkObserver observer, const QByteArray& secret)
    : _transfer(std::move(request), [this] { whenTransferFinished(); }), _observer(std::move(observer)),
      _secret(QString::fromLatin1(secret))
{
    open(QIODevice::ReadOnly);
    _watch.start();
    // The request first: what the reply says of itself is filled in while the service works.
    start();
    const QUrl url(withoutSecrets(_transfer.request().url));
    setUrl(url);
    setRequest(QNetworkRequest(url));
    setOperation(operationOf(_transfer.request().method));
}

void HttpReply::start()
{
    const QByteArray& url = _transfer.request().url;
    CurlDriver* driver = CurlDriver::ofThisThread();
    if (!driver) {
        fail(UnknownNetworkError, QStringLiteral("there is no QCoreApplication to wait in"));
        setFinished(true);
        report();
    } else if (!isWebAddress(url)) {
        HttpAnswer& answer = _transfer.answer();
        answer.error = ProtocolUnknownError;
        answer.errorText =
            QStringLiteral(
                "\"%1\" does not begin with http:// or https:// and a host; is the base address set?")
                .arg(shortened(withoutSecrets(url)));
        driver->startFailed(&_transfer);
    } else {
        driver->start(&_transfer);
    }
}

HttpReply::~HttpReply()
{
    if (isFinished())
        return;
    _transfer.cancel(); // first: the observer may run events
    fail(OperationCanceledError, QStringLiteral("the reply was deleted before it finished"));
    setFinished(true);
    // The application may be gone already, and whoever listened with it.
    if (QCoreApplication::instance())
        report();
}

void HttpReply::abort()
{
    if (isFinished())
        return;
    _transfer.cancel();
    fail(OperationCanceledError, QStringLiteral("the exchange was cancelled"));
    closeExchange();
}

qint64 HttpReply::bytesAvailable() const
{
    return QNetworkReply::bytesAvailable() + _body.size() - _readPosition;
}

qint64 HttpReply::readData(char* data, qint64 size)
{
    const qint64 left = _body.size() - _readPosition;
    if (left == 0 && isFinished())
        return -1;
    const qint64 count = std::min(size, left);
    std::memcpy(data, _body.constData() + _readPosition, static_cast<size_t>(count));
    _readPosition += static_cast<int>(count);
    return count;
}

void HttpReply::whenTransferFinished()
{
    readAnswer(_transfer.answer());
    closeExchange();
}

/// Judges the answer: whole, then its status, then its body.
void HttpReply::readAnswer(const HttpAnswer& answer)
{
    _status = answer.status;
    _bytesReceived = answer.bytesReceived;
    for (const RawHeaderPair& header : answer.headers)
        setRawHeader(header.first, header.second);
    if (_status != 0) {
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute, _status);
        setAttribute(QNetworkRequest::HttpReasonPhraseAttribute, QString::fromLatin1(answer.reason));
    }
    if (!answer.isWhole) {
        fail(answer.error, answer.errorText);
        return;
    }

    _body = answer.body;
    QJsonParseError parsing = {};
    if (!_body.isEmpty())
        _document = QJsonDocument::fromJson(_body, &parsing);
    const NetworkError error = errorOfStatus(_status);
    if (error != NoError) {
        fail(error, statusText(answer));
    } else if (!_body.isEmpty() && _document.isNull()) {
        fail(ProtocolFailure, QStringLiteral("the reply is not JSON: %1 at byte %2")
                                  .arg(parsing.errorString())
                                  .arg(parsing.offset));
    }
}

QString HttpReply::statusText(const HttpAnswer& answer) const
{
    const QString message = _document.object().value(QLatin1String("message")).toString();
    if (!message.isEmpty())
        return message;
    const QString status = QStringLiteral("HTTP status %1 %2")
                               .arg(answer.status)
                               .arg(shortened(QString::fromLatin1(answer.reason)))
                               .trimmed();
    const QByteArray location = answer.header("Location");
    if (answer.status < 300 || answer.status >= 400 || location.isEmpty())
        return status;
    return QStringLiteral("%1: the service redirects to \"%2\", and redirects are not followed")
        .arg(status, shortened(withoutSecrets(location)));
}

void HttpReply::fail(NetworkError error, const QString& text)
{
    _errorText = text;
    if (!_secret.isEmpty())
        _errorText.replace(_secret, QStringLiteral("***"));
    setError(error, _errorText);
}

/// The last act of an exchange. Each step may run code that deletes the reply.
void HttpReply::closeExchange()
{
    setFinished(true);
    const QPointer<HttpReply> self(this);
    report();
    if (self && _status != 0)
        Q_EMIT metaDataChanged();
    if (self && !_body.isEmpty())
        Q_EMIT readyRead();
    if (self && error() != NoError)
        Q_EMIT errorOccurred(error());
    if (self)
        Q_EMIT finished();
}

void HttpReply::report() const
{
    if (!_observer && !networkLog().isDebugEnabled())
        return;
    NetworkExchange exchange;
    exchange.method = _transfer.request().method;
    exchange.url = withoutSecrets(_transfer.request().url);
    exchange.httpStatus = _status;
    exchange.error = error();
    exchange.errorText = _errorText;
    exchange.bytesReceived = _bytesReceived;
    exchange.microseconds = _watch.nsecsElapsed() / 1000;
    qCDebug(networkLog).noquote() << exchange.method << exchange.url << exchange.httpStatus << exchange.error
                                  << exchange.bytesReceived << "bytes" << exchange.microseconds << "us"
                                  << exchange.errorText;
    if (const NetworkObserver observer = _observer) // a copy: the reply may go meanwhile
        observer(exchange);
}
