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

TEST(RequestFailure, TellsTheKind)
{
    struct Row
    {
        QNetworkReply::NetworkError error;
        int httpStatus;
        FailureKind kind;
    };
    const std::vector<Row> rows{
        {QNetworkReply::ConnectionRefusedError, 0, FailureKind::NoConnection},
        {QNetworkReply::HostNotFoundError, 0, FailureKind::NoConnection},
        {QNetworkReply::RemoteHostClosedError, 0, FailureKind::NoConnection},
        {QNetworkReply::RemoteHostClosedError, 200, FailureKind::NoConnection},
        {QNetworkReply::TimeoutError, 0, FailureKind::NoConnection},
        {QNetworkReply::TimeoutError, 200, FailureKind::NoConnection},
        {QNetworkReply::OperationCanceledError, 0, FailureKind::Cancelled},
        {QNetworkReply::SslHandshakeFailedError, 0, FailureKind::NoConnection},
        {QNetworkReply::UnknownNetworkError, 0, FailureKind::NoConnection},
        {QNetworkReply::UnknownProxyError, 0, FailureKind::NoConnection},
        {QNetworkReply::TooManyRedirectsError, 302, FailureKind::Refused},
        {QNetworkReply::AuthenticationRequiredError, 401, FailureKind::NotPermitted},
        {QNetworkReply::ContentAccessDenied, 403, FailureKind::NotPermitted},
        {QNetworkReply::ContentNotFoundError, 404, FailureKind::NotFound},
        {QNetworkReply::ProtocolInvalidOperationError, 400, FailureKind::Refused},
        {QNetworkReply::ContentConflictError, 409, FailureKind::Refused},
        {QNetworkReply::UnknownContentError, 422, FailureKind::Refused},
        {QNetworkReply::InternalServerError, 500, FailureKind::Refused},
        {QNetworkReply::ServiceUnavailableError, 503, FailureKind::Refused},
        {QNetworkReply::ProtocolFailure, 0, FailureKind::BadAnswer},
        {QNetworkReply::ProtocolFailure, 200, FailureKind::BadAnswer},
        {QNetworkReply::UnknownContentError, 200, FailureKind::BadAnswer},
    };
    for (const Row& row : rows) {
        const NetworkExchange exchange = exchangeOf(row.error, row.httpStatus);
        EXPECT_EQ(requestFailure(exchange, context).kind(), row.kind)
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

TEST(RequestFailure, DeliveryIsForbiddenWhenItsWordsSaySo)
{
    const auto kindOf = [](const char* text, const char* method) {
        const RequestContext delivery{QStringLiteral("deliver a.csv"), {}, {}};
        return requestFailure(exchangeOf(QNetworkReply::InternalServerError, 500, text, method), delivery)
            .kind();
    };
    const char* const create =
        "\"[0][0].cellId\": the token may not create in monitorings of category \"Pit\"";
    const char* const edit = "\"[1][0].data[3]\": the token may not edit monitorings of category \"Pit\"";
    EXPECT_EQ(kindOf(create, "POST"), FailureKind::NotPermitted);
    EXPECT_EQ(kindOf(edit, "POST"), FailureKind::NotPermitted);
    EXPECT_EQ(kindOf(create, "GET"), FailureKind::Refused);
    // Words that were sent, and come back.
    EXPECT_EQ(kindOf("there is no monitoring \"\"[0]\": the token may not \"", "POST"), FailureKind::Refused);
    EXPECT_EQ(kindOf("\"x\": the token may not", "POST"), FailureKind::Refused);
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

TEST(RequestFailure, HasARemedyWhereTheUserCanHelp)
{
    EXPECT_EQ(requestFailure(exchangeOf(QNetworkReply::TimeoutError, 0), context).remedy(),
              Remedy::ExtendDeadline);
    EXPECT_EQ(requestFailure(exchangeOf(QNetworkReply::SslHandshakeFailedError, 0), context).remedy(),
              Remedy::TrustCertificate);
    EXPECT_EQ(requestFailure(exchangeOf(QNetworkReply::ConnectionRefusedError, 0), context).remedy(),
              Remedy::None);
    EXPECT_EQ(requestFailure(exchangeOf(QNetworkReply::ContentAccessDenied, 403), context).remedy(),
              Remedy::None);
}
