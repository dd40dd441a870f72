#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTcpServer>

class QTcpSocket;

/// A proxy on the loopback that answers every CONNECT (RFC 9110, 9.3.6) alike and then passes bytes on, both
/// ways, to one server, whatever host was asked for.
class TunnelProxy : public QObject
{
public:
    /// `answer` is the whole head that it answers with; `port` is the server's, on 127.0.0.1.
    TunnelProxy(QByteArray answer, quint16 port);
    ~TunnelProxy() override;

    QString baseAddress() const;
    /// The heads of the requests that it was asked with, in order of arrival.
    const QList<QByteArray>& requestHeads() const { return m_requestHeads; }

private:
    void accept();
    void openTunnel(QTcpSocket* client);
    static void passOn(QTcpSocket* from, QTcpSocket* to);

    QByteArray m_answer;
    quint16 m_port;
    QTcpServer m_listener;
    QList<QByteArray> m_requestHeads;
};
