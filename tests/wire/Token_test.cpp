// The token goes to the service and nowhere else. Each test sends one that would be recognised wherever it
// turned up.

#include "../support/Text.h"
#include "NetworkFixture.h"

#include <QLoggingCategory>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

namespace {

using Step = ScriptServer::Step;

const QString canary = QStringLiteral("Canary-t0ken~+/=.x");

// Everything that was logged, by whomever.
QStringList logged;

void keepLog(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    logged.append(text);
}

class Token : public NetworkFixture
{
protected:
    Token()
    {
        EXPECT_TRUE(manager.setBearerToken(canary));
        GetSoftCache()->setProjectId("p7"_q);
        logged.clear();
        m_handlerBefore = qInstallMessageHandler(&keepLog);
        QLoggingCategory::setFilterRules("*=true"_q);
    }
    ~Token() override
    {
        QLoggingCategory::setFilterRules(QString());
        qInstallMessageHandler(m_handlerBefore);
    }

    static bool holdsToken(const QString& text)
    {
        // A piece of it would be too much, too.
        return text.contains(canary.left(8)) || text.contains(canary.right(8));
    }

    // Neither the observer nor the log nor these texts hold it; the service has got it once per request.
    void expectUnheard(const QStringList& texts = {}) const
    {
        QStringList heard = texts + logged;
        for (const NetworkExchange& exchange : exchanges) {
            heard << exchange.url << exchange.errorText;
        }
        for (const QString& text : qAsConst(heard)) {
            EXPECT_FALSE(holdsToken(text)) << text.toStdString();
        }
        for (const auto& request : server.requests()) {
            EXPECT_EQ(request.header("Authorization"), "Bearer " + canary.toLatin1());
            EXPECT_FALSE(holdsToken(QString::fromLatin1(request.target)));
        }
    }

    RKMonitoringData& data = *RKMonitoringData::instance();

private:
    QtMessageHandler m_handlerBefore = nullptr;
};

// All that is said of a reply.
QStringList saidOf(QNetworkReply* reply)
{
    return {reply->errorString(), reply->url().toString(), reply->request().url().toString(),
            QString::fromLatin1(reply->request().rawHeader("Authorization"))};
}

} // namespace

TEST_F(Token, IsNotSaidAfterASuccess)
{
    server.answerJson(200, R"({"_id":"c5"})");
    RKMonitoring monitoring;
    EXPECT_TRUE(data.getMonitoringById("c5"_q, monitoring, false));
    EXPECT_EQ(exchanges.size(), 1);
    EXPECT_FALSE(logged.isEmpty());
    expectUnheard();
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Token, IsTakenOutOfWhatTheServiceSaysOfIt)
{
    const QByteArray secret = canary.toLatin1();
    const QByteArray far(490, '.'); // so that a text that is cut is cut within it
    const QByteArray message = R"({"message":"unknown token )" + secret + "\"}";
    const QList<QByteArray> answers = {
        ScriptServer::httpAnswer(401, message),
        ScriptServer::httpAnswer(400, R"({"message":")" + far + secret + "\"}"),
        "HTTP/1.1 403 No " + secret + "\r\nContent-Length: 0\r\n\r\n",
        "HTTP/1.1 403 No " + far + secret + "\r\nContent-Length: 0\r\n\r\n",
        ScriptServer::httpAnswer(302, {}, {"Location: http://h/?token=" + secret}),
        ScriptServer::httpAnswer(302, {}, {"Location: http://h/" + far + secret}),
        ScriptServer::httpAnswer(302, {}, {"Location: http://u:" + secret + "@h/"}),
        ScriptServer::httpAnswer(200, "{}", {"Content-Encoding: " + secret}),
        ScriptServer::httpAnswer(200, "{}", {"Content-Length: " + far + secret}),
        ScriptServer::httpAnswer(200, "{" + secret),
        "HTTP/1.1 " + secret + "\r\n\r\n",
        secret,
    };
    for (const QByteArray& answer : answers) {
        server.answerRaw({Step::bytes(answer), Step::fin()});
        QNetworkReply* reply = manager.get(url());
        NetworkEventLoop wait(reply, nullptr);
        wait.exec(QEventLoop::AllEvents);
        EXPECT_FALSE(wait.isSuccessful()) << answer.toStdString();
        expectUnheard(saidOf(reply) << wait.object().value(QLatin1String("message")).toString());
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Token, IsTakenOutOfALongTextWhereverThatIsCut)
{
    // A reason is cut after 500 characters: so that it would be after each character of the token in turn.
    for (int left = 1; left <= canary.size(); ++left) {
        const QString before(500 - left, QLatin1Char('.'));
        server.answerRaw({Step::bytes("HTTP/1.1 403 " + (before + canary).toLatin1() +
                                      " unknown\r\nContent-Length: 0\r\n\r\n")});
        const QString reason = before + "*** unknown"_q;
        const QString shown = reason.size() <= 500 ? reason : reason.left(500) + "..."_q;
        EXPECT_EQ(get().errorText, "HTTP status 403 "_q + shown) << left;
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Token, IsTakenOutOfTheMessageOfARefusedDelivery)
{
    server.answerJson(500, R"({"message":"row 3 of )" + canary.toLatin1() + R"(","status":500})");
    QString message;
    EXPECT_FALSE(data.createPointLocation(QList<QList<RKPointLocation>>{{RKPointLocation()}}, message));
    EXPECT_EQ(message, "row 3 of ***"_q);
    expectUnheard({message});
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Token, IsNotSaidWhenNoAnswerComes)
{
    server.answerRaw({Step::reset()});
    EXPECT_FALSE(data.deleteMonitoring("c5"_q));
    manager.setDeadline(std::chrono::milliseconds(50));
    server.neverAnswer();
    EXPECT_FALSE(data.deleteMonitoring("c5"_q));
    server.setArrival(ScriptServer::Arrival::Refused);
    EXPECT_FALSE(data.deleteMonitoring("c5"_q));
    RKBaseApi::GetInstance().setBaseApi("nowhere"_q);
    EXPECT_FALSE(data.deleteMonitoring("c5"_q));
    EXPECT_EQ(exchanges.size(), 4);
    expectUnheard();
}

TEST_F(Token, DoesNotFollowARedirect)
{
    ScriptServer other;
    for (const int status : {300, 301, 302, 303, 307, 308}) {
        for (const QByteArray& target :
             {other.baseAddress().toLatin1(), "//127.0.0.1:" + QByteArray::number(other.port()) + "/"}) {
            server.answerRaw({Step::bytes(ScriptServer::httpAnswer(status, "{}", {"Location: " + target}))});
            EXPECT_FALSE(get().isSuccessful);
            server.answerRaw({Step::bytes(ScriptServer::httpAnswer(status, "{}", {"Location: " + target}))});
            EXPECT_FALSE(post().isSuccessful);
        }
    }
    EXPECT_EQ(other.connectionCount(), 0);
    expectUnheard();
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Token, GoesToNoOtherOrigin)
{
    ScriptServer other;
    const QString port = QString::number(other.port());
    const QString ownHost = "127.0.0.1:%1"_q.arg(server.port());
    // Another port; one that looks like the service; another name of the same machine.
    for (const QString& address : {other.baseAddress(), "http://%1@127.0.0.1:%2/"_q.arg(ownHost, port),
                                   "http://localhost:%1/"_q.arg(port)}) {
        other.answerJson(200, "{}");
        EXPECT_TRUE(waitFor(manager.get(address)).isSuccessful) << address.toStdString();
        const ScriptServer::Request request = other.requests().last();
        for (const auto& [name, value] : request.headers) {
            EXPECT_FALSE(holdsToken(QString::fromLatin1(value))) << name.toStdString();
        }
    }
    expectUnheard();
    EXPECT_TRUE(other.isUsedUp());
}

TEST_F(Token, IsNotShownToAProxyThatOnlyTunnels)
{
    ScriptServer proxy;
    RKBaseApi::GetInstance().setBaseApi("https://monitoring.invalid/"_q);
    manager.setProxy(proxy.baseAddress());
    proxy.answerRaw({Step::bytes("HTTP/1.1 403 No\r\nContent-Length: 0\r\n\r\n"), Step::fin()});
    EXPECT_FALSE(data.deleteMonitoring("c5"_q));
    ASSERT_EQ(proxy.requestCount(), 1);
    const ScriptServer::Request request = proxy.requests().first();
    EXPECT_EQ(request.method, "CONNECT");
    for (const auto& [name, value] : request.headers) {
        EXPECT_FALSE(holdsToken(QString::fromLatin1(value))) << name.toStdString();
    }
    expectUnheard();
}

TEST_F(Token, APasswordInTheAddressIsNotSaidEither)
{
    // Without the "/", which ends what can hold a password.
    const QString password = QString(canary).remove(QLatin1Char('/'));
    const QString host = "127.0.0.1:%1/"_q.arg(server.port());
    for (const QString& address :
         {"http://user:%1@%2"_q.arg(password, host), "user:%1@%2"_q.arg(password, host),
          "ftp://user:%1@%2"_q.arg(password, host)}) {
        RKBaseApi::GetInstance().setBaseApi(address);
        manager.setBearerToken(QString());
        QNetworkReply* reply = manager.get(address + "x"_q);
        reply->abort();
        NetworkEventLoop wait(reply, nullptr);
        EXPECT_FALSE(data.deleteMonitoring("c5"_q));
        for (const QString& text : saidOf(reply)) {
            EXPECT_FALSE(holdsToken(text)) << text.toStdString();
        }
    }
    for (const NetworkExchange& exchange : qAsConst(exchanges)) {
        EXPECT_FALSE(holdsToken(exchange.url + exchange.errorText)) << exchange.errorText.toStdString();
    }
    for (const QString& text : qAsConst(logged)) {
        EXPECT_FALSE(holdsToken(text)) << text.toStdString();
    }
}

TEST_F(Token, WithALineBreakOrAnotherStrangeCharacterIsRefused)
{
    // Every character that a header must not hold, at the beginning, inside and at the end.
    for (uint c = 0; c < 0x3000; ++c) {
        if (c >= 0x20 && c < 0x7F) {
            continue;
        }
        for (const int at : {0, 6, canary.size()}) {
            QString token = canary;
            token.insert(at, QChar(c));
            EXPECT_FALSE(manager.setBearerToken(token)) << std::hex << c << " at " << at;
        }
    }
    EXPECT_FALSE(manager.setBearerToken(canary + QString::fromUtf8("😀")));
    EXPECT_FALSE(manager.setBearerToken(canary + "\r\nX-Injected: 1"_q));
    // The token from before is still the token.
    server.answerJson(200, "{}");
    EXPECT_TRUE(get().isSuccessful);
    EXPECT_TRUE(server.requests().last().header("X-Injected").isNull());
    expectUnheard();
    EXPECT_TRUE(server.isUsedUp());
}
