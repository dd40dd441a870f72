#include "NetworkManager.h"

#include <QBuffer>
#include <QTimer>

namespace {

// Finishes from the event loop, as a reply from a network would.
class MemoryReply : public QNetworkReply
{
public:
    MemoryReply(const QByteArray& answer, NetworkError error)
    {
        m_answer.setData(answer);
        m_answer.open(QIODevice::ReadOnly);
        open(QIODevice::ReadOnly);
        if (error != NoError) {
            setError(error, QStringLiteral("refused"));
        }
        QTimer::singleShot(0, this, [this] {
            setFinished(true);
            emit finished();
        });
    }

    void abort() override {}
    qint64 bytesAvailable() const override { return m_answer.bytesAvailable() + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char* data, qint64 size) override { return m_answer.read(data, size); }

private:
    QBuffer m_answer;
};

} // namespace

NetworkManager& NetworkManager::instance()
{
    static NetworkManager manager;
    return manager;
}

QNetworkReply* NetworkManager::note(const QByteArray& method, const QString& url, const QJsonValue& body)
{
    requests.append({method, url, body});
    return new MemoryReply(answer, error); // owned by the wait
}

QNetworkReply* NetworkManager::get(const QString& url)
{
    return note("GET", url, {});
}

QNetworkReply* NetworkManager::postJson(const QString& url, const QJsonObject& body)
{
    return note("POST", url, body);
}

QNetworkReply* NetworkManager::postJson(const QString& url, const QJsonArray& body)
{
    return note("POST", url, body);
}

QNetworkReply* NetworkManager::putJson(const QString& url, const QJsonObject& body)
{
    return note("PUT", url, body);
}

QNetworkReply* NetworkManager::deleteResource(const QString& url)
{
    return note("DELETE", url, {});
}
