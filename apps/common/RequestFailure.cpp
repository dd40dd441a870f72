#include "RequestFailure.h"

#include <NetworkManager.h>
#include <QRegularExpression>

namespace {

constexpr int unauthorised = 401;
constexpr int forbidden = 403;
constexpr int notFound = 404;
constexpr int firstFailingStatus = 300;
constexpr int firstServerStatus = 500;
constexpr int internalError = 500;

// Errors below this code are those of the connection and of a proxy; those above are about content.
constexpr int endOfConnectionErrors = QNetworkReply::ContentAccessDenied;

bool isWrite(const NetworkExchange& exchange)
{
    return exchange.method != "GET";
}

QString lowerFirst(QString text)
{
    // "HTTP error" keeps its capitals, "Connection refused" does not.
    if (text.size() > 1 && text.at(1).isLower()) {
        text[0] = text.at(0).toLower();
    }
    return text;
}

// The transport's words, or `usual` when it has none.
QString reason(const NetworkExchange& exchange, const QString& usual)
{
    return exchange.errorText.isEmpty() ? usual : exchange.errorText;
}

// Nobody can tell whether a change whose answer was lost was carried out.
QString withUncertainty(const NetworkExchange& exchange, const RequestContext& context,
                        const QString& message)
{
    return isWrite(exchange) && context.repetition == Repetition::MayDouble
               ? message +
                     QStringLiteral("; it may have been carried out all the same: look before you repeat it")
               : message;
}

// The connection ended in the middle of the exchange, `how`.
Failure brokenExchange(const NetworkExchange& exchange, const RequestContext& context, const QString& how,
                       Remedy remedy = Remedy::None)
{
    const QString message = QStringLiteral("cannot %1: %2").arg(context.purpose, how);
    return {FailureKind::NoConnection, withUncertainty(exchange, context, message), remedy};
}

Failure connectionFailure(const NetworkExchange& exchange, const RequestContext& context)
{
    const QString address = context.baseApi;
    const auto cannotReach = [&](const QString& why, const QString& question, Remedy remedy = Remedy::None) {
        return Failure(FailureKind::NoConnection,
                       QStringLiteral("cannot reach %1 (%2); %3").arg(address, why, question), remedy);
    };
    switch (exchange.error) {
    case QNetworkReply::ConnectionRefusedError:
        return cannotReach(QStringLiteral("connection refused"),
                           QStringLiteral("is monitor-service running?"));
    case QNetworkReply::HostNotFoundError:
        return cannotReach(QStringLiteral("host not found"), QStringLiteral("is the address right?"));
    case QNetworkReply::SslHandshakeFailedError:
        return cannotReach(lowerFirst(reason(exchange, QStringLiteral("TLS handshake failed"))),
                           QStringLiteral("is its certificate signed by a trusted one?"),
                           Remedy::TrustCertificate);
    case QNetworkReply::TimeoutError:
        return brokenExchange(exchange, context,
                              QStringLiteral("%1 did not answer within the deadline").arg(address),
                              Remedy::ExtendDeadline);
    case QNetworkReply::RemoteHostClosedError:
        return brokenExchange(
            exchange, context,
            QStringLiteral("the connection to %1 broke before the answer was complete").arg(address));
    case QNetworkReply::OperationCanceledError:
        return {FailureKind::Cancelled,
                withUncertainty(exchange, context,
                                QStringLiteral("cannot %1: it was cancelled").arg(context.purpose))};
    default:
        return brokenExchange(
            exchange, context,
            QStringLiteral("no answer from %1 (%2)")
                .arg(address, lowerFirst(reason(exchange, QStringLiteral("network error")))));
    }
}

// A refused delivery is answered as an internal error, whatever it was refused for; its words tell.
bool isForbiddenDelivery(const NetworkExchange& exchange)
{
    static const QRegularExpression words(
        QStringLiteral("\\A\"[^\"]*\\[\\d+\\][^\"]*\": the token may not "));
    return exchange.httpStatus == internalError && exchange.method == "POST" &&
           words.match(exchange.errorText).hasMatch();
}

Failure refusal(const NetworkExchange& exchange, const RequestContext& context)
{
    const QString words = reason(exchange, QStringLiteral("HTTP status %1").arg(exchange.httpStatus));
    const int status = isForbiddenDelivery(exchange) ? forbidden : exchange.httpStatus;
    switch (status) {
    case unauthorised:
        return {FailureKind::NotPermitted,
                QStringLiteral("cannot %1: the service does not accept the token in %2 (%3)")
                    .arg(context.purpose, context.tokenFile, words)};
    case forbidden:
        return {FailureKind::NotPermitted,
                QStringLiteral("cannot %1: not permitted (%2)").arg(context.purpose, words)};
    case notFound:
        return {FailureKind::NotFound,
                QStringLiteral("cannot %1: not found (%2)").arg(context.purpose, words)};
    default:
        break;
    }
    const Failure failure(FailureKind::Refused, QStringLiteral("cannot %1: %2").arg(context.purpose, words));
    const bool isServersFault = exchange.httpStatus >= firstServerStatus;
    return isServersFault
               ? failure.extended(QStringLiteral("the service's log may say more, or try again later"))
               : failure;
}

} // namespace

Failure requestFailure(const NetworkExchange& exchange, const RequestContext& context)
{
    const bool isRedirect = exchange.error == QNetworkReply::TooManyRedirectsError;
    if (exchange.error < endOfConnectionErrors && !isRedirect) {
        return connectionFailure(exchange, context);
    }
    if (exchange.httpStatus >= firstFailingStatus) {
        return refusal(exchange, context);
    }
    // A success that cannot be read, or no HTTP at all.
    return {FailureKind::BadAnswer,
            withUncertainty(exchange, context,
                            QStringLiteral("cannot %1: the answer of %2 makes no sense (%3); is that "
                                           "the address of monitor-service?")
                                .arg(context.purpose, context.baseApi,
                                     reason(exchange, QStringLiteral("not understood"))))};
}
