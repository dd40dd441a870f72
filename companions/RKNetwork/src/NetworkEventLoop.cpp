#include "NetworkEventLoop.h"

#include "CurlDriver.h"
#include "HttpReply.h"
#include "NetworkManager.h"
#include "ParallelJson.h"

#include <QCoreApplication>
#include <QJsonValue>
#include <QTimer>

#include <algorithm>
#include <optional>

NetworkEventLoop::NetworkEventLoop(QNetworkReply* reply, QObject* parent) : QObject(parent), m_reply(reply) {}

NetworkEventLoop::~NetworkEventLoop()
{
    // Not deleteLater: many operations in one slot would hold all their replies until it returns.
    delete m_reply.data(); // NOLINT(cppcoreguidelines-owning-memory): handed over by the constructor
}

int NetworkEventLoop::exec(QEventLoop::ProcessEventsFlags flags)
{
    const QPointer<NetworkEventLoop> self(this); // an event may delete the wait, too
    if (m_reply && !m_reply->isFinished() && QCoreApplication::instance()) {
        runEvents(flags & ~QEventLoop::ProcessEventsFlags(QEventLoop::ExcludeSocketNotifiers));
    }
    const bool finished = self && m_reply && m_reply->isFinished();
    if (self && m_reply && !finished) {
        m_reply->abort();
    }
    if (self) {
        readReply();
    }
    return finished ? 0 : -1;
}

void NetworkEventLoop::runEvents(QEventLoop::ProcessEventsFlags flags)
{
    const QPointer<QNetworkReply> reply = m_reply;
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply, &QObject::destroyed, &loop, &QEventLoop::quit);

    // Replies of our own keep their deadline themselves.
    std::optional<QTimer> deadline;
    if (!dynamic_cast<rk::HttpReply*>(reply.data()) && NetworkManager::instance().deadline().count() > 0) {
        deadline.emplace();
        QObject::connect(&*deadline, &QTimer::timeout, reply.data(), &QNetworkReply::abort);
        deadline->setSingleShot(true);
        deadline->start(NetworkManager::instance().deadline());
    }

    // QEventLoop::exec returns at once, without running a single event, when the thread was told to quit
    // earlier; nothing public says so, but the dispatcher turns when it does run.
    const rk::CurlDriver* driver = rk::CurlDriver::ofThisThread();
    const quint64 turns = driver ? driver->turns() : 0;
    loop.exec(flags);
    if (!driver || rk::CurlDriver::ofThisThread() != driver || driver->turns() != turns) {
        return;
    }
    while (reply && !reply->isFinished()) {
        loop.processEvents(flags | QEventLoop::WaitForMoreEvents);
    }
}

void NetworkEventLoop::readReply()
{
    if (!m_reply) {
        m_error = QNetworkReply::OperationCanceledError;
        return;
    }
    m_error = m_reply->error();
    if (const auto* own = dynamic_cast<rk::HttpReply*>(m_reply.data())) {
        m_body = own->document();
        return;
    }
    const QByteArray text = m_reply->readAll();
    m_body = rk::parseJson(text);
    if (m_error == QNetworkReply::NoError && !text.isEmpty() && m_body.isNull()) {
        m_error = QNetworkReply::ProtocolFailure;
    }
}

bool NetworkEventLoop::isSuccessful() const
{
    return m_error == QNetworkReply::NoError;
}

QNetworkReply::NetworkError NetworkEventLoop::error() const
{
    return m_error;
}

QJsonObject NetworkEventLoop::object() const
{
    return m_body.object();
}

QList<QJsonObject> NetworkEventLoop::objectList() const
{
    const QJsonArray elements = m_body.array();
    QList<QJsonObject> objects;
    objects.reserve(elements.size());
    for (const QJsonValue& element : elements) {
        if (!element.isObject()) {
            return {};
        }
        objects.append(element.toObject());
    }
    return objects;
}

QJsonArray NetworkEventLoop::array() const
{
    return m_body.array();
}
