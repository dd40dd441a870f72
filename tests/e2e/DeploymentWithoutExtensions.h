#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTcpServer>

class QTcpSocket;

/// A deployment that can what every one can and nothing beyond: it passes requests on to a service and its
/// answers back, but knows no resource and no method that not every one has, and answers 404 to these.
class DeploymentWithoutExtensions : public QObject
{
public:
    /// Listens on a free port of 127.0.0.1; `service` is the service's address, as in
    /// "http://127.0.0.1:8600/".
    explicit DeploymentWithoutExtensions(const QString& service);
    ~DeploymentWithoutExtensions() override;

    QString baseAddress() const;
    /// How many requests it passed on.
    int passedOn() const { return m_passedOn; }

private:
    struct Client
    {
        QByteArray received;
        QTcpSocket* service = nullptr; ///< the listener's
    };

    void accept();
    void read(QTcpSocket* socket);
    void passOn(QTcpSocket* socket, const QByteArray& request);

    quint16 m_servicePort;
    QTcpServer m_listener;
    QHash<QTcpSocket*, Client> m_clients;
    int m_passedOn = 0;
};
