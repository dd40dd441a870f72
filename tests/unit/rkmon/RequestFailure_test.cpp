#include "RequestFailure.h"

#include <NetworkManager.h>

#include <gtest/gtest.h>

namespace {

const RequestContext context{QStringLiteral("list monitorings"), QStringLiteral("http://127.0.0.1:1/"),
                             QStringLiteral("/home/ana/token")};

NetworkExchange exchangeOf(QNetworkReply::NetworkError error, int httpStatus, const char* text = "",
                           const char* method = "GET")
{
    NetworkExchange exchange;
    exchange.method = method;
    exchange.error = error;
    exchange.httpStatus = httpStatus;
    exchange.errorText = QString::fromUtf8(text);
    exchange.bytesReceived = 2;
    return exchange;
}

} // namespace

TEST(RequestFailure, EveryKindHasItsExitCode)
{
    struct Row
    {
        QNetworkReply::NetworkError error;
        int httpStatus;
        ExitCode code;
    };
    const std::vector<Row> rows{
        {QNetworkReply::ConnectionRefusedError, 0, ExitCode::NoConnection},
        {QNetworkReply::HostNotFoundError, 0, ExitCode::NoConnection},
        {QNetworkReply::RemoteHostClosedError, 0, ExitCode::NoConnection},
        {QNetworkReply::RemoteHostClosedError, 200, ExitCode::NoConnection},
        {QNetworkReply::TimeoutError, 0, ExitCode::NoConnection},
        {QNetworkReply::TimeoutError, 200, ExitCode::NoConnection},
        {QNetworkReply::OperationCanceledError, 0, ExitCode::NoConnection},
        {QNetworkReply::SslHandshakeFailedError, 0, ExitCode::NoConnection},
        {QNetworkReply::UnknownNetworkError, 0, ExitCode::NoConnection},
        {QNetworkReply::UnknownProxyError, 0, ExitCode::NoConnection},
        {QNetworkReply::TooManyRedirectsError, 302, ExitCode::Failed},
        {QNetworkReply::AuthenticationRequiredError, 401, ExitCode::NotPermitted},
        {QNetworkReply::ContentAccessDenied, 403, ExitCode::NotPermitted},
        {QNetworkReply::ContentNotFoundError, 404, ExitCode::NotFound},
        {QNetworkReply::ProtocolInvalidOperationError, 400, ExitCode::Failed},
        {QNetworkReply::ContentConflictError, 409, ExitCode::Failed},
        {QNetworkReply::UnknownContentError, 422, ExitCode::Failed},
        {QNetworkReply::InternalServerError, 500, ExitCode::Failed},
        {QNetworkReply::ServiceUnavailableError, 503, ExitCode::Failed},
        {QNetworkReply::ProtocolFailure, 0, ExitCode::Failed},
        {QNetworkReply::ProtocolFailure, 200, ExitCode::Failed},
        {QNetworkReply::UnknownContentError, 200, ExitCode::Failed},
    };
    for (const Row& row : rows) {
        const NetworkExchange exchange = exchangeOf(row.error, row.httpStatus);
        EXPECT_EQ(requestFailure(exchange, context).code(), row.code)
            << row.error << " with status " << row.httpStatus;
    }
}

TEST(RequestFailure, RefusedConnectionAsksForTheService)
{
    const Failure failure =
        requestFailure(exchangeOf(QNetworkReply::ConnectionRefusedError, 0, "whatever"), context);
    EXPECT_EQ(failure.message(), QStringLiteral("cannot reach http://127.0.0.1:1/ (connection refused); is "
                                                "monitor-service running?"));
}

TEST(RequestFailure, TellsTheServicesOwnWords)
{
    const Failure failure = requestFailure(
        exchangeOf(QNetworkReply::ProtocolInvalidOperationError, 400, "name: must not be empty"), context);
    EXPECT_EQ(failure.message(), QStringLiteral("cannot list monitorings: name: must not be empty"));
}

TEST(RequestFailure, WrongTokenNamesItsFile)
{
    const Failure failure =
        requestFailure(exchangeOf(QNetworkReply::AuthenticationRequiredError, 401, "unknown token"), context);
    EXPECT_TRUE(failure.message().contains(context.tokenFile)) << failure.what();
    EXPECT_TRUE(failure.message().contains(QStringLiteral("unknown token"))) << failure.what();
}

TEST(RequestFailure, LostAnswerOfAChangeLeavesItsOutcomeOpen)
{
    const QString open = QStringLiteral("may have been carried out");
    for (const char* method : {"POST", "PUT", "DELETE"}) {
        const auto lost = exchangeOf(QNetworkReply::RemoteHostClosedError, 0, "", method);
        EXPECT_TRUE(requestFailure(lost, context).message().contains(open)) << method;
        const auto late = exchangeOf(QNetworkReply::TimeoutError, 0, "", method);
        EXPECT_TRUE(requestFailure(late, context).message().contains(open)) << method;
        const auto garbled = exchangeOf(QNetworkReply::ProtocolFailure, 200, "", method);
        EXPECT_TRUE(requestFailure(garbled, context).message().contains(open)) << method;
        const auto refused = exchangeOf(QNetworkReply::ContentAccessDenied, 403, "", method);
        EXPECT_FALSE(requestFailure(refused, context).message().contains(open)) << method;
        const auto unsent = exchangeOf(QNetworkReply::ConnectionRefusedError, 0, "", method);
        EXPECT_FALSE(requestFailure(unsent, context).message().contains(open)) << method;
    }
    const auto read = exchangeOf(QNetworkReply::RemoteHostClosedError, 0);
    EXPECT_FALSE(requestFailure(read, context).message().contains(open));
}

TEST(RequestFailure, LostAnswerOfAHarmlessRepetitionAsksForNoLook)
{
    RequestContext harmless = context;
    harmless.repetition = Repetition::IsHarmless;
    for (const auto error : {QNetworkReply::RemoteHostClosedError, QNetworkReply::TimeoutError,
                             QNetworkReply::ProtocolFailure}) {
        const Failure failure = requestFailure(exchangeOf(error, 0, "", "POST"), harmless);
        EXPECT_FALSE(failure.message().contains(QStringLiteral("look before"))) << failure.what();
    }
}
