#include "TunnelProxy.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <utility>

TunnelProxy::TunnelProxy(QByteArray answer, quint16 port) : m_answer(std::move(answer)), m_port(port)
{
    connect(&m_listener, &QTcpServer::newConnection, this, [this] { accept(); });
    if (!m_listener.listen(QHostAddress::LocalHost)) {
        qFatal("the proxy cannot listen: %s", qPrintable(m_listener.errorString()));
    }
}

TunnelProxy::~TunnelProxy()
{
    const QList<QTcpSocket*> sockets = m_listener.findChildren<QTcpSocket*>();
    for (QTcpSocket* socket : sockets) {
        socket->disconnect();
    }
}

QString TunnelProxy::baseAddress() const
{
    return QStringLiteral("http://127.0.0.1:%1/").arg(m_listener.serverPort());
}

void TunnelProxy::accept()
{
    while (QTcpSocket* client = m_listener.nextPendingConnection()) {
        connect(client, &QTcpSocket::readyRead, this, [this, client] { openTunnel(client); });
    }
}

// Once the head of the request is there; the client sends nothing more before it has its answer.
void TunnelProxy::openTunnel(QTcpSocket* client)
{
    if (!client->peek(client->bytesAvailable()).endsWith("\r\n\r\n")) {
        return;
    }
    m_requestHeads.append(client->readAll());
    client->disconnect(this);
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the listener owns it, as it does the client's
    auto* server = new QTcpSocket(&m_listener);
    server->connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
    passOn(client, server);
    passOn(server, client);
    client->write(m_answer);
}

void TunnelProxy::passOn(QTcpSocket* from, QTcpSocket* to)
{
    connect(from, &QTcpSocket::readyRead, to, [from, to] { to->write(from->readAll()); });
    connect(from, &QTcpSocket::disconnected, to, [to] { to->disconnectFromHost(); });
}
