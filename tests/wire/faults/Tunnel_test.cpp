// The service over TLS, through a proxy: what the proxy says of the tunnel is no answer of the service.

#include "../../support/Text.h"
#include "NetworkFixture.h"
#include "TestCertificates.h"
#include "TunnelProxy.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

using Step = ScriptServer::Step;
using testing::StartsWith;

class Tunnel : public NetworkFixture
{
protected:
    Tunnel()
    {
        // A name that never exists (RFC 6761): without the proxy nobody gets anywhere.
        const TestCertificate shown = m_authority.issue("DNS:monitoring.invalid");
        server.useTls(shown.certificate, shown.key);
        QFile file(m_folder.filePath("ca.pem"_q));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(m_authority.pem());
        manager.setCaFile(file.fileName());
        RKBaseApi::GetInstance().setBaseApi("https://monitoring.invalid/"_q);
        EXPECT_TRUE(manager.setBearerToken("canary"_q));
    }

    const QString address = "https://monitoring.invalid/x"_q;

private:
    const TestAuthority m_authority;
    const QTemporaryDir m_folder;
};

} // namespace

TEST_F(Tunnel, WhatTheProxySaysIsNoHeaderOfTheReply)
{
    // Lengths and encodings there mean nothing (RFC 9110, 9.3.6), were they nonsense.
    TunnelProxy proxy("HTTP/1.1 200 Open\r\nX-Proxy: p\r\nContent-Length: many\r\nContent-Length: 5\r\n"
                      "Content-Encoding: br\r\n\r\n",
                      server.port());
    manager.setProxy(proxy.baseAddress());
    server.answerRaw({Step::bytes(ScriptServer::httpAnswer(200, R"({"a":1})", {"X-Service: s"}))});
    QNetworkReply* reply = manager.get(address);
    NetworkEventLoop wait(reply, nullptr);
    wait.exec(QEventLoop::AllEvents);
    EXPECT_TRUE(wait.isSuccessful()) << exchanges.last().errorText.toStdString();
    EXPECT_EQ(wait.object().value("a"_q).toInt(), 1);
    EXPECT_EQ(reply->rawHeaderList(), QList<QByteArray>({"X-Service", "Content-Length"}));
    EXPECT_EQ(reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString(), "Scripted"_q);

    ASSERT_EQ(proxy.requestHeads().size(), 1);
    EXPECT_THAT(proxy.requestHeads().first().toStdString(),
                StartsWith("CONNECT monitoring.invalid:443 HTTP/1.1\r\n"));
    EXPECT_FALSE(proxy.requestHeads().first().contains("canary"));
    ASSERT_EQ(server.requestCount(), 1);
    EXPECT_EQ(server.requests().first().header("Authorization"), "Bearer canary");
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Tunnel, AServiceThatEndsItWithoutAWordHasNotAnswered)
{
    TunnelProxy proxy("HTTP/1.1 200 Open\r\nContent-Length: 0\r\n\r\n", server.port());
    manager.setProxy(proxy.baseAddress());
    for (const QByteArray& begun : {QByteArray(), QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n")}) {
        server.answerRaw({Step::bytes(begun), Step::fin()});
        const Outcome outcome = waitFor(manager.deleteResource(address));
        EXPECT_FALSE(outcome.isSuccessful);
        EXPECT_EQ(outcome.error, QNetworkReply::RemoteHostClosedError) << outcome.errorText.toStdString();
        EXPECT_EQ(exchanges.last().httpStatus, begun.isEmpty() ? 0 : 200);
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(Tunnel, AProxyThatOpensNoneHasNotAnsweredForTheService)
{
    for (const QByteArray status : {"403 No", "404 No Such Host", "407 Who Are You", "503 Not Now"}) {
        TunnelProxy proxy("HTTP/1.1 " + status + "\r\nContent-Length: 15\r\n\r\n{\"message\":\"m\"}",
                          server.port());
        manager.setProxy(proxy.baseAddress());
        const Outcome outcome = waitFor(manager.get(address));
        EXPECT_FALSE(outcome.isSuccessful);
        EXPECT_TRUE(outcome.object.isEmpty());
        EXPECT_EQ(exchanges.last().httpStatus, 0) << outcome.errorText.toStdString();
    }
    EXPECT_EQ(server.requestCount(), 0);
}
