// The library's operations over TLS: a service whose certificate is refused gets no byte of a request.

#include "../../support/Text.h"
#include "FaultTest.h"
#include "TestCertificates.h"

#include <NetworkEventLoop.h>
#include <QCoreApplication>
#include <QFile>
#include <QSslSocket>
#include <QTemporaryDir>
#include <RKBaseApi.h>

#include <gmock/gmock.h>

namespace {

using Step = ScriptServer::Step;

constexpr auto refused = QNetworkReply::SslHandshakeFailedError;

class Certificates : public FaultTest
{
protected:
    Certificates()
    {
        EXPECT_TRUE(QSslSocket::supportsSsl());
        makeServer = [this] {
            auto server = std::make_unique<ScriptServer>();
            use(*server, right);
            return server;
        };
        manager.setCaFile(fileOf(authority));
        EXPECT_TRUE(manager.setBearerToken("canary"_q));
    }

    static void use(ScriptServer& server, const TestCertificate& certificate)
    {
        server.useTls(certificate.certificate, certificate.key);
    }

    QString fileOf(const TestAuthority& whose)
    {
        const QString path = m_folder.filePath("ca%1.pem"_q.arg(++m_files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(whose.pem());
        return path;
    }

    // The service shows this certificate instead of the right one, to every operation.
    void expectRefused(const std::string& name, const TestCertificate& certificate)
    {
        spoil = [&](ScriptServer& server) {
            server.hangUp(); // a connection that is kept has seen the right one
            use(server, certificate);
            m_bytesBefore = server.bytesReceived();
        };
        repair = [&](ScriptServer& server) {
            EXPECT_EQ(server.bytesReceived(), m_bytesBefore) << name << ": something was sent";
            use(server, right);
        };
        Fault fault;
        fault.name = name;
        fault.error = refused;
        play(fault);
        report(1);
    }

    const TestAuthority authority;
    const TestCertificate right = authority.issue("IP:127.0.0.1");

private:
    QTemporaryDir m_folder;
    int m_files = 0;
    qint64 m_bytesBefore = 0;
};

TEST_F(Certificates, TheRightOneIsAccepted)
{
    Fault none;
    none.name = "None";
    none.steps = [](const QByteArray& answer) {
        return QList<Step>{Step::bytes(ScriptServer::httpAnswer(200, answer))};
    };
    none.readable = Fault::Readable::Answer;
    play(none);
    report(0);
}

TEST_F(Certificates, SelfSignedIsRefused)
{
    expectRefused("SelfSigned", TestAuthority::selfSigned("IP:127.0.0.1"));
}

TEST_F(Certificates, ExpiredIsRefused)
{
    expectRefused("Expired", authority.issue("IP:127.0.0.1", -3, -2));
}

TEST_F(Certificates, NotYetValidIsRefused)
{
    expectRefused("NotYetValid", authority.issue("IP:127.0.0.1", 2, 3));
}

TEST_F(Certificates, WrongNameIsRefused)
{
    expectRefused("WrongName", authority.issue("DNS:elsewhere.example"));
}

TEST_F(Certificates, WrongAddressIsRefused)
{
    expectRefused("WrongAddress", authority.issue("IP:127.0.0.2"));
}

TEST_F(Certificates, AnotherAuthoritysIsRefused)
{
    expectRefused("AnotherAuthority", TestAuthority().issue("IP:127.0.0.1"));
}

TEST_F(Certificates, TheSystemsAuthoritiesDoNotKnowOurs)
{
    const auto server = makeServer();
    RKBaseApi::GetInstance().setBaseApi(server->baseAddress());
    manager.setCaFile({});
    NetworkEventLoop wait(manager.get(server->baseAddress()), nullptr);
    wait.exec(QEventLoop::AllEvents);
    EXPECT_EQ(wait.error(), refused);
    EXPECT_EQ(server->bytesReceived(), 0);
}

TEST_F(Certificates, AFileThatIsMissingOrNoneIsAFailure)
{
    const auto server = makeServer();
    RKBaseApi::GetInstance().setBaseApi(server->baseAddress());
    for (const QString& file : {"/no/such/file.pem"_q, QCoreApplication::applicationFilePath()}) {
        manager.setCaFile(file);
        NetworkEventLoop wait(manager.get(server->baseAddress()), nullptr);
        wait.exec(QEventLoop::AllEvents);
        EXPECT_EQ(wait.error(), refused) << file.toStdString();
    }
    EXPECT_EQ(server->bytesReceived(), 0);
}

// The server ends the TLS connection the same ways as a plain one.
TEST_F(Certificates, CutRepliesFailOverTlsToo)
{
    for (const QByteArray& head : {QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 200\r\n\r\n"),
                                   QByteArray("HTTP/1.1 200 OK\r\n\r\n")}) {
        for (const Step& end : {Step::fin(), Step::reset()}) {
            Fault fault;
            fault.name = "Cut";
            fault.error = QNetworkReply::RemoteHostClosedError;
            // Without a length and with a regular end, what came is all there is, and no JSON.
            fault.otherError = QNetworkReply::ProtocolFailure;
            fault.steps = [head, end](const QByteArray& answer) {
                return QList<Step>{Step::bytes(head + answer.left(100)), Step::pause(10), end};
            };
            play(fault);
        }
    }
    report(4);
}

TEST_F(Certificates, APlainServerIsNoTlsServer)
{
    spoil = [](ScriptServer& server) {
        server.hangUp();
        server.useTls(QSslCertificate(), QSslKey());
        RKBaseApi::GetInstance().setBaseApi(server.baseAddress().replace("http:"_q, "https:"_q));
    };
    repair = [this](ScriptServer& server) {
        use(server, right);
    };
    Fault fault;
    fault.name = "Plain";
    fault.error = QNetworkReply::TimeoutError; // each side waits for the other to begin
    fault.deadline = 150;
    play(fault);
    report(1);
}

} // namespace
