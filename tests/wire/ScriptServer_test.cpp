#include "ScriptServer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpSocket>

#include <gmock/gmock.h>

namespace {

using Step = ScriptServer::Step;
using testing::ElementsAre;
using testing::Pair;

// A client of plain bytes.
class Client
{
public:
    explicit Client(const ScriptServer& server)
    {
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), server.port());
    }

    void send(const QByteArray& bytes) { m_socket.write(bytes); }

    // What has arrived once `done` holds; everything so far after five seconds.
    template <typename Done>
    QByteArray receiveUntil(Done done)
    {
        QElapsedTimer watch;
        watch.start();
        while (!done(m_received) && watch.elapsed() < 5000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
            m_received += m_socket.readAll();
        }
        return m_received;
    }
    QByteArray receive(const QByteArray& ending)
    {
        return receiveUntil([&](const QByteArray& received) { return received.endsWith(ending); });
    }
    QByteArray receiveUntilClosed()
    {
        return receiveUntil(
            [&](const QByteArray&) { return m_socket.state() == QAbstractSocket::UnconnectedState; });
    }
    void clear() { m_received.clear(); }

    QTcpSocket& socket() { return m_socket; }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
};

} // namespace

TEST(ScriptServer, AnswersARequestAndKeepsItForInspection)
{
    ScriptServer server;
    server.answerJson(200, R"({"a":1})");
    Client client(server);
    client.send("POST /x/y?a=%20&b HTTP/1.1\r\nHost: h\r\nX-One: 1\r\ncontent-length: 3\r\n\r\nabc");
    EXPECT_EQ(client.receive(R"({"a":1})"), "HTTP/1.1 200 Scripted\r\nContent-Type: application/json\r\n"
                                            "Content-Length: 7\r\n\r\n{\"a\":1}");
    ASSERT_EQ(server.requestCount(), 1);
    const ScriptServer::Request request = server.requests().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/x/y?a=%20&b");
    EXPECT_EQ(request.header("x-one"), "1");
    EXPECT_EQ(request.header("Content-Length"), "3");
    EXPECT_TRUE(request.header("Absent").isNull());
    EXPECT_EQ(request.body, "abc");
    EXPECT_EQ(request.connection, 1);
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, WaitsForTheWholeRequest)
{
    ScriptServer server;
    server.answerJson(200, "1");
    Client client(server);
    client.send("PUT / HTTP/1.1\r\nContent-Length: 4\r\n\r\nab");
    ASSERT_TRUE(client.socket().waitForConnected());
    client.socket().flush();
    for (int i = 0; i < 20; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    EXPECT_EQ(server.requestCount(), 0);
    client.send("cd");
    client.receive("\r\n\r\n1");
    ASSERT_EQ(server.requestCount(), 1);
    EXPECT_EQ(server.requests().first().body, "abcd");
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, AnswersSeveralRequestsOfOneConnectionInOrder)
{
    ScriptServer server;
    server.answerJson(200, "1");
    server.answerJson(404, "2");
    Client client(server);
    client.send("GET /1 HTTP/1.1\r\n\r\nGET /2 HTTP/1.1\r\n\r\n");
    const QByteArray received = client.receive("\r\n\r\n2");
    EXPECT_LT(received.indexOf("200 Scripted"), received.indexOf("404 Scripted"));
    EXPECT_EQ(server.connectionCount(), 1);
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, NumbersItsConnections)
{
    ScriptServer server;
    server.answerJson(200, "1");
    server.answerJson(200, "2");
    Client first(server);
    first.send("GET /1 HTTP/1.1\r\n\r\n");
    first.receive("\r\n\r\n1");
    Client second(server);
    second.send("GET /2 HTTP/1.1\r\n\r\n");
    second.receive("\r\n\r\n2");
    ASSERT_EQ(server.requestCount(), 2);
    EXPECT_EQ(server.requests().at(0).connection, 1);
    EXPECT_EQ(server.requests().at(1).connection, 2);
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, PlaysBytesAndPausesThenCloses)
{
    ScriptServer server;
    server.answerRaw({Step::bytes("one"), Step::pause(30), Step::bytes("two"), Step::fin()});
    Client client(server);
    QElapsedTimer watch;
    watch.start();
    client.send("GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receiveUntilClosed(), "onetwo");
    EXPECT_GE(watch.elapsed(), 20);
    EXPECT_EQ(client.socket().error(), QAbstractSocket::RemoteHostClosedError);
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, ResetsAConnection)
{
    ScriptServer server;
    server.answerRaw({Step::reset()});
    Client client(server);
    client.send("GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receiveUntilClosed(), "");
    EXPECT_EQ(client.socket().state(), QAbstractSocket::UnconnectedState);
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, IsNotUsedUpWhileAnAnswerWaits)
{
    ScriptServer server;
    EXPECT_TRUE(server.isUsedUp());
    server.answerRaw({Step::bytes("a"), Step::fin()});
    server.neverAnswer();
    EXPECT_FALSE(server.isUsedUp());
    EXPECT_EQ(server.unansweredSteps(), 3);
}

TEST(ScriptServer, NeverAnswersWhenToldSo)
{
    ScriptServer server;
    server.neverAnswer();
    Client client(server);
    client.send("GET / HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(ScriptServer::runEventsUntil([&] { return server.requestCount() == 1; }));
    EXPECT_TRUE(server.isUsedUp());
    EXPECT_EQ(client.socket().state(), QAbstractSocket::ConnectedState);
}

TEST(ScriptServer, AnUnscriptedRequestIsAnsweredWithAnErrorAndSpoilsTheScript)
{
    ScriptServer server;
    Client client(server);
    client.send("GET / HTTP/1.1\r\n\r\n");
    EXPECT_THAT(client.receive("request\"}").toStdString(), testing::StartsWith("HTTP/1.1 500"));
    EXPECT_EQ(server.unansweredSteps(), 0);
    EXPECT_FALSE(server.isUsedUp());
}

TEST(ScriptServer, CallsOnRequestBeforeItAnswers)
{
    ScriptServer server;
    server.answerJson(200, "1");
    Client client(server);
    int seen = 0;
    qint64 arrivedBefore = -1;
    server.onRequest = [&] {
        seen = server.requestCount();
        arrivedBefore = client.socket().bytesAvailable();
    };
    client.send("GET / HTTP/1.1\r\n\r\n");
    client.receive("\r\n\r\n1");
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(arrivedBefore, 0);
    EXPECT_TRUE(server.isUsedUp());
}

TEST(ScriptServer, ForgetsTheRestOfAnAnswerWhenTheClientHangsUp)
{
    ScriptServer server;
    server.answerRaw({Step::bytes("a"), Step::pause(600000), Step::bytes("b")});
    Client client(server);
    client.send("GET / HTTP/1.1\r\n\r\n");
    client.receive("a");
    EXPECT_EQ(server.unansweredSteps(), 1);
    client.socket().abort();
    EXPECT_TRUE(ScriptServer::runEventsUntil([&] { return server.isUsedUp(); }));
}

TEST(ScriptServer, DecodesATargetByTheBook)
{
    EXPECT_EQ(ScriptServer::decodedPath("/a%2Fb/%C3%A9%3F"), QStringLiteral("/a/b/é?"));
    EXPECT_EQ(ScriptServer::decodedPath("/a?b=%20"), QStringLiteral("/a"));
    EXPECT_THAT(ScriptServer::decodedQuery("/a"), ElementsAre());
    EXPECT_THAT(ScriptServer::decodedQuery("/a?x=1=2&y%26=%2B+&z&=v?w"),
                ElementsAre(Pair(QStringLiteral("x"), QStringLiteral("1=2")),
                            Pair(QStringLiteral("y&"), QStringLiteral("++")),
                            Pair(QStringLiteral("z"), QString()), Pair(QString(), QStringLiteral("v?w"))));
}

TEST(ScriptServer, DecodesNulAndByteOrderMarkAsCharacters)
{
    EXPECT_EQ(ScriptServer::decodedPath("%EF%BB%BFa%00b"),
              QString(QChar(0xFEFF)) + QLatin1Char('a') + QChar(0) + QLatin1Char('b'));
}

TEST(ScriptServer, A204HasNeitherLengthNorBody)
{
    EXPECT_EQ(ScriptServer::httpAnswer(204, {}, {}), "HTTP/1.1 204 Scripted\r\n\r\n");
}
