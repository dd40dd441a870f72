#include "DeploymentWithoutExtensions.h"

#include <QHostAddress>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QUrl>

namespace {

const QByteArray endOfHead = QByteArrayLiteral("\r\n\r\n");

// The length of the first whole request; 0 when it has not arrived yet.
int lengthOfRequest(const QByteArray& received)
{
    const int head = received.indexOf(endOfHead);
    if (head < 0) {
        return 0;
    }
    static const QRegularExpression field(QStringLiteral("\r\nContent-Length: *(\\d+)"),
                                          QRegularExpression::CaseInsensitiveOption);
    const QString text = QString::fromLatin1(received.left(head));
    const int length = head + endOfHead.size() + field.match(text).captured(1).toInt();
    return received.size() < length ? 0 : length;
}

bool isExtension(const QByteArray& request)
{
    static const QRegularExpression beyond(QStringLiteral(
        "\\A(GET /monitor-service/(about|projects|projects/[^/?]+|projects/[^/?]+/changes)[ ?]|"
        "GET [^ ]*[?&](samples|rollup)=|PATCH |"
        "DELETE /monitor-service/(pointLocations|historyDatas)/)"));
    return beyond.match(QString::fromLatin1(request)).hasMatch();
}

} // namespace

DeploymentWithoutExtensions::DeploymentWithoutExtensions(const QString& service)
    : m_servicePort(static_cast<quint16>(QUrl(service).port()))
{
    connect(&m_listener, &QTcpServer::newConnection, this, [this] { accept(); });
    if (!m_listener.listen(QHostAddress::LocalHost)) {
        qFatal("the deployment cannot listen: %s", qPrintable(m_listener.errorString()));
    }
}

DeploymentWithoutExtensions::~DeploymentWithoutExtensions()
{
    const QList<QTcpSocket*> sockets = m_listener.findChildren<QTcpSocket*>();
    for (QTcpSocket* socket : sockets) {
        socket->disconnect();
    }
}

QString DeploymentWithoutExtensions::baseAddress() const
{
    return QStringLiteral("http://127.0.0.1:%1/").arg(m_listener.serverPort());
}

void DeploymentWithoutExtensions::accept()
{
    while (QTcpSocket* socket = m_listener.nextPendingConnection()) {
        m_clients.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            const Client client = m_clients.take(socket);
            if (client.service) {
                client.service->disconnectFromHost();
            }
            socket->deleteLater();
        });
    }
}

// A client sends the next request when it has the answer to the last one.
void DeploymentWithoutExtensions::read(QTcpSocket* socket)
{
    QByteArray& received = m_clients[socket].received;
    received += socket->readAll();
    const int length = lengthOfRequest(received);
    if (length == 0) {
        return;
    }
    const QByteArray request = received.left(length);
    received.remove(0, length);
    if (!isExtension(request)) {
        passOn(socket, request);
        return;
    }
    const QByteArray body = R"({"message":"there is no such resource","status":404})";
    socket->write("HTTP/1.1 404 Not Found\r\nContent-Type: application/json\r\nContent-Length: " +
                  QByteArray::number(body.size()) + endOfHead + body);
}

void DeploymentWithoutExtensions::passOn(QTcpSocket* socket, const QByteArray& request)
{
    Client& client = m_clients[socket];
    if (!client.service) {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the listener owns it, as it does the client's
        client.service = new QTcpSocket(&m_listener);
        QTcpSocket* service = client.service;
        connect(service, &QTcpSocket::readyRead, socket,
                [socket, service] { socket->write(service->readAll()); });
        connect(service, &QTcpSocket::disconnected, socket, [socket] { socket->disconnectFromHost(); });
        service->connectToHost(QHostAddress(QHostAddress::LocalHost), m_servicePort);
    }
    client.service->write(request);
    ++m_passedOn;
}
